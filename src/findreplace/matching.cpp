#include "findreplace/matching.h"

#include <algorithm>
#include <utility>

#include "findreplace/line_edit.h"
#include "findreplace/line_matcher.h"
#include "findreplace/request.h"
#include "findreplace/wildcard.h"

namespace QVFindAndReplace {
namespace {

namespace ErrorCode = QVUtils::ErrorCode;
using QVUtils::QVUtilsException;

constexpr uint32_t kContextLines = 3;
constexpr uint32_t kMultilineContextLines = 4;
constexpr size_t kContextUnits = 2000;  // a longer line is cut around the match
constexpr uint32_t kNoLine = 0xFFFFFFFF;

template <class CharT>
class Engine {
public:
    using View = std::basic_string_view<CharT>;
    using Text = std::basic_string<CharT>;

    Engine(TextDocumentT<CharT>& document, Request& request, IFindAndReplaceCallback* callback,
           SearchPosition& position, QVUtils::Progress* progress)
        : m_document(document),
          m_lines(document.GetLines()),
          m_request(request),
          m_items(request.GetItems(document.GetKind(), CharT())),
          m_callback(callback),
          m_position(position),
          m_progress(progress),
          m_mode(request.GetMode()),
          m_isWildcard((request.GetOptions() & Option::Wildcard) != 0),
          m_ignoreCase((request.GetOptions() & Option::IgnoreCase) != 0) {}

    void Run() {
        if (m_mode == Mode::Multiline) return ApplyMultiline();
        for (const auto& [item, replacement] : PairsOf(m_items, m_mode)) Apply(*item, *replacement);
    }

private:
    /// What is looked for in single lines, and what becomes of it.
    struct Pair {
        std::unique_ptr<LineMatcher<CharT>> matcher;
        const Text* replacement;     // null when the encoding cannot hold it
        std::vector<Text> inserted;  // lines added after the line for each hit
        Text shown;                  // the replacement as a question shows it
    };

    // In single lines.

    void Apply(const Converted<CharT>& item, const Converted<CharT>& replacement) {
        if (!item || item->empty()) return;
        auto matcher = m_isWildcard ? WildcardMatcher(*item) : MakePlainMatcher<CharT>(*item, m_ignoreCase);
        const Text* const text = replacement ? &*replacement : nullptr;
        Apply(Pair{std::move(matcher), text, {}, text ? *text : Text()});
    }

    std::unique_ptr<LineMatcher<CharT>> WildcardMatcher(const Text& item) {
        if (!m_ignoreCase) return MakeWildcardMatcher<CharT>(item, false);
        return MakeWildcardMatcher<CharT>(item, true, m_request.GetFolding(m_document.GetKind(), CharT()));
    }

    void Apply(const Pair& pair) {
        if (!BeginSearch(*pair.matcher)) return;
        if (m_progress) pair.matcher->CallWhileSearching([this] { m_progress->KeepAlive(); });
        for (uint32_t line = 0; !m_isStopped && NextLine(*pair.matcher, line); ++line) EditLine(pair, line);
    }

    void EditLine(const Pair& pair, uint32_t line) {
        m_edit.Begin(m_lines.GetLine(line));
        m_lineInEdit = line;
        for (Span span; !m_edit.IsFinished() && pair.matcher->Find(m_edit.GetAhead(), span);) {
            KeepAlive();
            if (m_edit.PassReplacement(span)) continue;
            if (!pair.replacement) ThrowUnrepresentable();
            const auto column = static_cast<uint32_t>(m_edit.GetColumn() + span.start);
            const Match match = {line, column, line, static_cast<uint32_t>(column + span.length)};
            if (MustAsk() && !Confirm(match, pair.shown)) {
                if (m_isStopped) break;
                m_edit.Skip(span);
                continue;
            }
            if (span.length > 0 || !pair.replacement->empty()) {
                RefuseCut(line, match.startColumn);
                RefuseCut(line, match.endColumn);
            }
            m_edit.Replace(span, *pair.replacement, *pair.matcher);
            for (const Text& text : pair.inserted) m_lines.InsertLine(line, text);
            m_document.CountChange();
        }
        if (m_edit.IsChanged()) KeepEdit(line);
        m_lineInEdit = kNoLine;
    }

    /// A short text is copied, which lets the edit use its memory again; a long one is not copied once more.
    void KeepEdit(uint32_t line) {
        constexpr size_t kLongUnits = 16384;
        if (m_edit.GetDone().size() < kLongUnits)
            m_lines.SetLine(line, m_edit.GetDone(), m_edit.GetAhead());
        else
            m_lines.SetLine(line, m_edit.TakeText());
    }

    /// Called with each step, of which a thousand take no time that a person sees.
    void KeepAlive() {
        if (m_progress && ++m_steps % 1024 == 0) m_progress->KeepAlive();
    }

    // Going from line to line, with one look at a whole stretch of untouched lines.

    /// False when nothing can be found at all: then the line table is not even made.
    bool BeginSearch(const LineMatcher<CharT>& matcher) {
        m_stretchEnd = 0;
        return !m_lines.AreAllUntouched() || matcher.FindCandidate(m_lines.GetText());
    }

    /// Moves `line` on to the next line, itself included, that may have a hit.
    bool NextLine(const LineMatcher<CharT>& matcher, uint32_t& line) {
        while (line < m_lines.GetCount()) {
            KeepAlive();
            if (m_lines.IsUntouched(line)) {
                FindStretchEnd(line);
                const auto& first = m_lines.GetRecord(line);
                const auto& last = m_lines.GetRecord(m_stretchEnd - 1);
                const View stretch(first.text, static_cast<size_t>(last.text + last.length - first.text));
                if (const CharT* const at = matcher.FindCandidate(stretch)) {
                    line = m_lines.FindLineOf(at, line, m_stretchEnd);
                    return true;
                }
                line = m_stretchEnd;
            } else {
                if (!m_lines.GetRecord(line).isRemoved && matcher.FindCandidate(m_lines.GetLine(line))) return true;
                ++line;
            }
        }
        return false;
    }

    /// Nothing touches the lines ahead of a search while it runs, so a stretch found once stays one.
    void FindStretchEnd(uint32_t line) {
        if (line < m_stretchEnd) return;
        m_stretchEnd = m_lines.GetCount();
        if (m_lines.AreAllUntouched()) return;
        const uint32_t count = m_stretchEnd;
        m_stretchEnd = line;
        while (m_stretchEnd < count && m_lines.IsUntouched(m_stretchEnd)) ++m_stretchEnd;
    }

    // Over several lines.

    void ApplyMultiline() {
        if (!AreConverted(m_items.find)) return;
        // A replacement without any line counts as one empty line: something must take the match's place.
        std::vector<Converted<CharT>> converted = m_items.replacement;
        if (converted.empty()) converted.emplace_back(Text());
        const bool isConverted = AreConverted(converted);
        const std::vector<Text> replacement = isConverted ? Values(converted) : std::vector<Text>();
        const std::vector<Text> find = Values(m_items.find);
        if (find.size() > 1) {
            ApplyOverLines(find, replacement);
        } else if (!find.front().empty()) {
            // One find line is found within lines; further replacement lines follow as lines of their own.
            Pair pair{MakePlainMatcher<CharT>(find.front(), m_ignoreCase), nullptr, replacement, Join(replacement)};
            if (isConverted) {
                pair.replacement = &replacement.front();
                pair.inserted.erase(pair.inserted.begin());
            }
            Apply(pair);
        }
    }

    /// The first find line may begin anywhere in its line, the last must begin the line that it is compared with.
    /// `replacement` is empty when the encoding cannot hold it.
    void ApplyOverLines(const std::vector<Text>& find, const std::vector<Text>& replacement) {
        const size_t startColumn = std::exchange(m_position.column, 0);
        const auto matcher = MakePlainMatcher<CharT>(find.front(), m_ignoreCase);
        if (!find.front().empty() && !BeginSearch(*matcher)) return;
        const Text shown = Join(replacement);
        Match match;  // the search goes on from its end
        match.endColumn = static_cast<uint32_t>(startColumn);
        while (!m_isStopped && FindLines(find, *matcher, match)) {
            if (replacement.empty()) ThrowUnrepresentable();
            if (!MustAsk() || Confirm(match, shown)) ReplaceLines(match, replacement);
        }
    }

    /// The next match from the end of the last one on. An empty first find line is found where the search stands, in
    /// any line.
    bool FindLines(const std::vector<Text>& find, LineMatcher<CharT>& matcher, Match& match) {
        uint32_t line = match.endLine;
        size_t column = match.endColumn;
        while (line < m_lines.GetCount()) {
            if (!m_position.isLastBlock && line + find.size() > m_lines.GetCount()) {
                m_position.line = line;
                m_position.column = column;
                return false;
            }
            const View text = m_lines.GetLine(line);
            Span span;
            const bool isHit = column <= text.size() &&
                               (find.front().empty() || matcher.Find(text.substr(column), span)) &&
                               RestFits(find, line);
            if (isHit) {
                match.startLine = line;
                match.startColumn = static_cast<uint32_t>(column + span.start);
                match.endLine = static_cast<uint32_t>(line + find.size() - 1);
                match.endColumn = static_cast<uint32_t>(find.back().size());
                return true;
            }
            column = 0;
            ++line;
            // Only the line where the search stood may be touched; the lines after it are not.
            if (!find.front().empty() && !NextLine(matcher, line)) return false;
        }
        return false;
    }

    /// Do the find lines after the first fit after `line`? Of those in the middle the last two are never compared,
    /// and with four find lines or fewer no line is. compatibility: 3
    bool RestFits(const std::vector<Text>& find, uint32_t line) const {
        const size_t count = m_lines.GetCount();
        const size_t last = line + find.size() - 1;
        if (last - 1 > count || last >= count) return false;
        for (size_t i = 1; i + 4 <= find.size(); ++i)
            if (m_lines.GetLine(static_cast<uint32_t>(line + i)) != find[i]) return false;
        const View beginning = m_lines.GetLine(static_cast<uint32_t>(last)).substr(0, find.back().size());
        Span span;
        return beginning == find.back() ||
               (m_ignoreCase && MakePlainMatcher<CharT>(find.back(), true)->Find(beginning, span));
    }

    /// With a single replacement line the match's last line stays as it is: only a second one would take the place of
    /// what was found there. compatibility: 3
    void ReplaceLines(const Match& match, const std::vector<Text>& replacement) {
        if (match.startLine >= m_lines.GetCount() || match.endLine >= m_lines.GetCount())
            throw QVUtilsException(ErrorCode::InvalidParameter, "Line index out of range");
        RefuseCut(match.startLine, match.startColumn);
        RefuseCut(match.endLine, match.endColumn);
        const View start = m_lines.GetLine(match.startLine).substr(0, match.startColumn);
        m_lines.SetLine(match.startLine, start, replacement.front());
        for (uint32_t line = match.startLine + 1; line < match.endLine; ++line) m_lines.RemoveLine(line);
        for (size_t i = 1; i + 1 < replacement.size(); ++i) m_lines.InsertLine(match.startLine, replacement[i]);
        if (replacement.size() > 1) {
            const View rest = m_lines.GetLine(match.endLine).substr(match.endColumn);
            m_lines.SetLine(match.endLine, replacement.back(), rest);
        }
        m_document.CountChange();
    }

    static bool AreConverted(const std::vector<Converted<CharT>>& items) {
        return std::all_of(items.begin(), items.end(), [](const Converted<CharT>& item) { return item.has_value(); });
    }
    static std::vector<Text> Values(const std::vector<Converted<CharT>>& items) {
        std::vector<Text> values;
        values.reserve(items.size());
        for (const Converted<CharT>& item : items) values.push_back(*item);
        return values;
    }
    static Text Join(const std::vector<Text>& lines) {
        Text joined;
        for (const Text& line : lines) {
            if (&line != &lines.front()) joined += {CharT('\r'), CharT('\n')};
            joined += line;
        }
        return joined;
    }

    // Questions.

    bool MustAsk() const { return m_callback && !m_document.ReplacesAll(); }

    /// Asks whether to replace a match. Cancelling ends a Multiline request quietly (m_isStopped; compatibility: 4),
    /// and any other one as a failure. @throws QVUtilsException (code 1223)
    bool Confirm(const Match& match, const Text& replacement) {
        const bool isMultiline = m_mode == Mode::Multiline;
        const uint32_t length = isMultiline ? kZeroTerminated : static_cast<uint32_t>(replacement.size());
        Match shown = match;
        const Text context = MakeContext(shown, isMultiline ? kMultilineContextLines : kContextLines);
        const uint32_t answer = Ask(context.c_str(), shown, replacement.c_str(), length);
        if (answer == Answer::ReplaceAll) m_document.SetReplacesAll();
        if (answer == Answer::Cancel) {
            if (!isMultiline) throw QVUtilsException(ErrorCode::Cancelled, "Operation cancelled by user");
            m_isStopped = true;
        }
        return answer == Answer::Replace || answer == Answer::ReplaceToo || answer == Answer::ReplaceAll;
    }

    uint32_t Ask(const CharT* context, const Match& match, const CharT* replacement, uint32_t length) {
        if constexpr (sizeof(CharT) == 1)
            return m_callback->ConfirmA(context, m_document.GetKind(), match, replacement, length);
        else
            return m_callback->ConfirmW(context, m_document.GetKind(), match, replacement, length);
    }

    /// The line before the match and `lineCount` - 1 lines from its own on, as far as there are such lines, joined by
    /// CR LF, with blanks for zero characters. Tells `match` where in this text it stands.
    Text MakeContext(Match& match, uint32_t lineCount) const {
        Text context;
        const uint32_t first = match.startLine == 0 ? 0 : match.startLine - 1;
        const uint32_t end = std::min(m_lines.GetCount(), match.startLine + lineCount - 1);
        for (uint32_t line = first; line < end; ++line) {
            if (line > first) context += {CharT('\r'), CharT('\n')};
            if (line != match.startLine) {
                context += PartOf(line, 0, kContextUnits);
                continue;
            }
            const size_t from = match.startColumn > kContextUnits / 2 ? match.startColumn - kContextUnits / 2 : 0;
            match.contextOffset = static_cast<uint32_t>(context.size() + match.startColumn - from);
            const bool endsHere = match.startLine == match.endLine;
            const size_t length = endsHere ? match.endColumn - match.startColumn : kContextUnits;
            context += PartOf(line, from, match.startColumn - from + length + kContextUnits / 2);
            match.contextLength = static_cast<uint32_t>(std::min(length, context.size() - match.contextOffset));
        }
        // Those who are asked see the text up to its first zero, which may be one of the file's.
        std::ranges::replace(context, CharT(0), CharT(' '));
        return context;
    }

    /// Part of a line as it stands, also of the one that is being edited.
    Text PartOf(uint32_t line, size_t from, size_t length) const {
        return line == m_lineInEdit ? m_edit.GetPart(from, length) : Text(m_lines.GetLine(line).substr(from, length));
    }

    /// Wildcards stand for single units, so a match may begin or end inside of a character. Replaced, it would leave a
    /// part of one that means nothing. In a code page it is not known where characters begin.
    void RefuseCut(uint32_t line, size_t column) const {
        if (m_document.GetKind() == QVUtils::EncodingKind::CodePage) return;
        const size_t before = std::min(column, kMostUnits);
        const Text around = PartOf(line, column - before, before + kMostUnits);
        if (CutsCharacter(View(around).substr(0, before), View(around).substr(before)))
            throw QVUtilsException(ErrorCode::NoUnicodeTranslation,
                                   "A match begins or ends in the middle of a character");
    }

    [[noreturn]] static void ThrowUnrepresentable() {
        throw QVUtilsException(ErrorCode::NoUnicodeTranslation,
                               "The replacement text has characters that this file's encoding cannot hold");
    }

    TextDocumentT<CharT>& m_document;
    Lines<CharT>& m_lines;
    Request& m_request;
    const Items<CharT>& m_items;
    IFindAndReplaceCallback* m_callback;
    SearchPosition& m_position;
    QVUtils::Progress* const m_progress;
    uint32_t m_steps = 0;
    const Mode m_mode;
    const bool m_isWildcard;
    const bool m_ignoreCase;
    bool m_isStopped = false;
    LineEdit<CharT> m_edit;
    uint32_t m_lineInEdit = kNoLine;
    uint32_t m_stretchEnd = 0;  // no line from where the search stands to this one is touched
};

}  // namespace

template <class CharT>
uint64_t FindAndReplace(TextDocumentT<CharT>& document, Request& request, IFindAndReplaceCallback* callback,
                        SearchPosition* position, QVUtils::Progress* progress) {
    if (const char* const fault = request.FindFault())
        throw QVUtilsException(QVUtils::ErrorCode::InvalidParameter, fault);
    SearchPosition wholeText;
    Engine<CharT>(document, request, callback, position ? *position : wholeText, progress).Run();
    return document.GetChangeCount();
}

template uint64_t FindAndReplace(TextDocumentT<char>&, Request&, IFindAndReplaceCallback*, SearchPosition*,
                                 QVUtils::Progress*);
template uint64_t FindAndReplace(TextDocumentT<WideChar>&, Request&, IFindAndReplaceCallback*, SearchPosition*,
                                 QVUtils::Progress*);

}  // namespace QVFindAndReplace
