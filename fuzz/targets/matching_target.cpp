// Find and replace in all modes of plain text: against the position rule carried out character by character.
#include "findreplace/matching.h"

#include <vector>

#include "findreplace/passing_lines.h"
#include "findreplace/passing_pairs.h"
#include "findreplace/text_blocks.h"
#include "fuzz/input.h"
#include "fuzz/text_writer.h"
#include "win32/text.h"

namespace QVFuzz {
namespace {

using namespace QVFindAndReplace;

constexpr size_t kLongestLine = 1 << 16;  // of the reference; pairs may double a line again and again

template <class CharT>
using Text = std::basic_string<CharT>;

struct TooMuch {};

/// The first place of `item` in `text` from `from` on; npos: none.
template <class CharT>
size_t FindPlainly(const Text<CharT>& text, size_t from, const Text<CharT>& item, bool ignoreCase) {
    const auto fold = [&](CharT unit) {
        if (!ignoreCase || sizeof(CharT) == 1) return unit;
        return static_cast<CharT>(Win32::UpperWide(static_cast<wchar_t>(unit)));
    };
    if (!ignoreCase) {
        for (; from + item.size() <= text.size(); ++from) {
            if (text.compare(from, item.size(), item) == 0) return from;
            if (text[from] == 0) return Text<CharT>::npos;
        }
        return Text<CharT>::npos;
    }
    size_t matched = 0;
    for (; from < text.size(); ++from) {
        matched = fold(text[from]) == fold(item[matched]) ? matched + 1 : 0;
        if (matched == item.size()) return from + 1 - matched;
    }
    return Text<CharT>::npos;
}

template <class CharT>
uint32_t ApplyPlainly(std::vector<Text<CharT>>& lines, const Text<CharT>& item, const Text<CharT>& replacement,
                      bool ignoreCase) {
    uint32_t changes = 0;
    if (item.empty()) return 0;
    for (Text<CharT>& line : lines) {
        size_t putEnd = 0;  // of the last replacement
        for (size_t position = 0; position <= line.size();) {
            const size_t at = FindPlainly(line, position, item, ignoreCase);
            if (at == Text<CharT>::npos) break;
            if (at + item.size() <= putEnd) {  // it would be found there without end
                position = putEnd;
                continue;
            }
            line.replace(at, item.size(), replacement);
            position = at + item.size();
            putEnd = at + replacement.size();
            ++changes;
            if (line.size() > kLongestLine) throw TooMuch();
        }
    }
    return changes;
}

/// Text of lines without an LF inside, each ended by LF.
template <class CharT>
std::vector<Text<CharT>> CutPlainly(const Text<CharT>& text) {
    std::vector<Text<CharT>> lines;
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find(CharT('\n'), at), text.size());
        lines.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return lines;
}

class Narrowing {
public:
    Converted<char> operator()(const WideString& text, QVUtils::EncodingKind) const {
        std::string narrow;
        for (const WideChar unit : text) {
            if (unit > 0xFF) return std::nullopt;
            narrow += static_cast<char>(unit);
        }
        return narrow;
    }
};

/// Answers the questions of a run with the fuzzer's bytes, and looks at what it is shown.
class Answers final : public IFindAndReplaceCallback {
public:
    explicit Answers(std::string answers) : m_answers(std::move(answers)) {}
    void SetCurrentFile(const wchar_t*) override {}
    void EndOfFile() override {}
    void ReportErrorW(const wchar_t*, uint32_t) override {}
    void ReportErrorA(const char*, uint32_t) override {}
    uint32_t ConfirmW(const WideChar* context, QVUtils::EncodingKind, const Match& match, const WideChar*,
                      uint32_t) override {
        return Answer(std::basic_string_view<WideChar>(context).size(), match);
    }
    uint32_t ConfirmA(const char* context, QVUtils::EncodingKind, const Match& match, const char*, uint32_t) override {
        return Answer(std::string_view(context).size(), match);
    }
    bool IsCancelled() override { return false; }

private:
    uint32_t Answer(size_t contextSize, const Match& match) {
        // A zero in the text ends what can be measured here.
        if (contextSize >= match.contextOffset) Require(match.startLine <= match.endLine, "a match runs forwards");
        if (m_next == m_answers.size()) return Answer::ReplaceAll;
        return static_cast<uint8_t>(m_answers[m_next++]) % 6;
    }

    std::string m_answers;
    size_t m_next = 0;
};

bool SharesALetter(std::string_view left, std::string_view right) {
    return std::ranges::any_of(left, [&](char unit) {
        const auto other = static_cast<char>((unit | 0x20) >= 'a' && (unit | 0x20) <= 'z' ? unit ^ 0x20 : unit);
        return unit != '\n' && (right.find(unit) != right.npos || right.find(other) != right.npos);
    });
}

template <class CharT>
std::string Saved(const Lines<CharT>& lines, QVUtils::LineBreak style) {
    TextWriter writer;
    writer.SetLineBreak(QVUtils::LineBreakBytes<CharT>(style));
    lines.Save(writer, style);
    return writer.text;
}

/// What comes of a text that passes in blocks, before its breaks become alike.
template <class CharT, class Passing>
Text<CharT> PassedThrough(Passing& passing, std::basic_string_view<CharT> text, size_t blockSize, bool cutsLines,
                          uint64_t& changes) {
    using Blocks = TextBlocks<CharT>;
    const auto size = static_cast<uint32_t>(text.size() * sizeof(CharT));
    QVUtils::MemoryDataReader reader(text.data(), size, false);
    Blocks blocks(reader, 0, blockSize, size, cutsLines ? Blocks::Cut::AnywhereInLongLines : Blocks::Cut::AfterLines,
                  4);
    Text<CharT> passed;
    for (bool hasBlock = true; hasBlock;) {
        typename Blocks::View block;
        hasBlock = blocks.Next(block);
        const Exact<CharT> exact(block);
        passed += passing.Replace(exact.View(), cutsLines ? blocks.EndsLine() : blocks.IsAtEnd(), changes);
        blocks.GiveBack(passing.GetLeft());
    }
    return passed;
}

/// Without a table of lines, in blocks, must come out what came out with one.
template <class CharT>
void ComparePassing(Request& request, QVUtils::EncodingKind kind, std::basic_string_view<CharT> text, size_t blockSize,
                    const Lines<CharT>* lines, uint64_t expected) {
    Text<CharT> passed;
    uint64_t changes = 0;
    if (auto pairs = PassingPairs<CharT>::Make(request, kind))
        passed = PassedThrough<CharT>(*pairs, text, blockSize, true, changes);
    else if (auto several = PassingLines<CharT>::Make(request, kind))
        passed = PassedThrough<CharT>(*several, text, blockSize, false, changes);
    else
        return;
    Require(lines, "what passes is never refused");
    Require(changes == expected, "as many changes as with a table of lines");
    auto style = QVUtils::LineBreak::None;
    for (uint32_t line = lines->GetCount(); line-- > 0;)
        if (lines->GetRecord(line).breakLength > 0) style = lines->GetRecord(line).lineBreak;
    Lines<CharT> joined;
    joined.Reset(passed);
    Require(Saved(joined, style) == Saved(*lines, style), "the same text as with a table of lines");
}

template <class CharT>
void Match(uint32_t options, const std::string& find, const std::string& replacement, const std::string& text,
           const std::string& answers, size_t blockSize) {
    const auto wideFind = Widened<WideChar>(find);
    const auto wideReplacement = Widened<WideChar>(replacement);
    const Exact<CharT> document(Widened<CharT>(text));
    Request request(options, wideFind, wideReplacement, Narrowing());
    // What the plain way can do: modes within lines, texts that are the same in every encoding.
    const bool isAscii =
        std::ranges::all_of(find + replacement, [](char unit) { return static_cast<uint8_t>(unit) < 0x80; });
    const bool isPlain = request.GetMode() != Mode::Multiline && isAscii && !request.FindFault() && answers.empty() &&
                         (find + replacement + text).find('\r') == std::string::npos;
    // Without the plain way nothing tells beforehand how often pairs that feed each other make a line longer.
    if (!isPlain && request.GetMode() != Mode::Multiline && SharesALetter(find, replacement)) return;
    auto lines = CutPlainly<CharT>(Text<CharT>(document.View()));
    uint32_t expected = 0;
    const bool ignoreCase = (options & Option::IgnoreCase) != 0;
    try {
        if (isPlain) {
            auto items = CutPlainly<CharT>(Widened<CharT>(find));
            auto with = CutPlainly<CharT>(Widened<CharT>(replacement));
            if (request.GetMode() == Mode::None) items = {Widened<CharT>(find)}, with = {Widened<CharT>(replacement)};
            if (request.GetMode() == Mode::One) items.resize(1);
            if (with.empty()) with = {Text<CharT>()};
            for (size_t at = 0; at < items.size(); ++at)
                expected +=
                    ApplyPlainly(lines, items[at], request.GetMode() == Mode::Many ? with[at] : with[0], ignoreCase);
        }
    } catch (const TooMuch&) {
        return;
    }
    TextDocumentT<CharT> target(sizeof(CharT) == 1 ? QVUtils::EncodingKind::CodePage : QVUtils::EncodingKind::Utf16);
    target.GetLines().Reset(document.View());
    Answers callback(answers);
    try {
        const uint64_t changes = FindAndReplace(target, request, answers.empty() ? nullptr : &callback);
        if (answers.empty())
            ComparePassing(request, target.GetKind(), document.View(), blockSize, &target.GetLines(), changes);
        if (!isPlain) return;
        Require(changes == expected, "as many changes as the plain way");
        const uint32_t count = target.GetLines().GetCount();
        Require(changes == 0 || count == lines.size(), "as many lines");
        for (uint32_t line = 0; changes > 0 && line < count; ++line)
            Require(target.GetLines().GetLine(line) == std::basic_string_view<CharT>(lines[line]), "the same text");
    } catch (const QVUtils::QVUtilsException&) {
        Require(!isPlain, "nothing plain is refused");
        if (answers.empty()) ComparePassing<CharT>(request, target.GetKind(), document.View(), blockSize, nullptr, 0);
    }
}

}  // namespace

void RunMatching(Bytes bytes) {
    if (bytes.size() > 4096) return;
    Input input(bytes);
    constexpr uint32_t kModes[] = {0, Option::ModeOne, Option::ModeMany, Option::ModeManySame, Option::ModeMultiline};
    const uint8_t shape = input.Byte();
    const uint32_t options = kModes[shape % 8 % 5] | (shape & 8 ? Option::IgnoreCase : 0);
    const std::string find = input.Text();
    const std::string replacement = input.Text();
    const std::string answers = input.Text();
    const std::string text(input.Rest());
    const size_t blockSize = size_t{1} << shape / 16;
    Match<char>(options, find, replacement, text, answers, blockSize);
    Match<WideChar>(options, find, replacement, text, answers, blockSize);
}

}  // namespace QVFuzz
