#include "fileutils/find_replace/find_replace_form.h"

#include <algorithm>

#include "fileutils/fileutils_texts.h"
#include "fileutils/target_pattern.h"
#include "findreplace/wildcard.h"
#include "win32/code_page.h"
#include "win32/text.h"

namespace FileUtils {
namespace {

using Quorvane::SDK::FormatText;
using Quorvane::SDK::TextArgument;
using Quorvane::SDK::TextId;
namespace Option = QVFindAndReplace::Option;
using QVFindAndReplace::Mode;
using QVUtils::EncodingKind;

QVFindAndReplace::Converted<char> ToNarrow(const std::wstring& text, EncodingKind kind) {
    return Win32::ToCodePage(text, kind == EncodingKind::Utf8 ? Win32::kUtf8CodePage : Win32::kThreadCodePage);
}

/// The wildcards of a request that cannot be read. Multiline looks for plain text whatever the box says.
std::wstring FindWildcardFault(const FindAndReplaceRequest& request) {
    const Mode mode = QVFindAndReplace::ModeOf(request.options);
    if (!(request.options & Option::Wildcard) || mode == Mode::Multiline) return {};
    std::vector<std::wstring> patterns = QVFindAndReplace::SplitItems(request.find);
    if (mode == Mode::One && patterns.size() > 1) patterns.resize(1);
    for (const std::wstring& pattern : patterns) {
        try {
            QVFindAndReplace::MakeWildcardMatcher(pattern, (request.options & Option::IgnoreCase) != 0);
        } catch (const std::regex_error&) {
            return L"This wildcard cannot be read (braces hold a count, as in x{2}): " + pattern;
        }
    }
    return {};
}

/// Sentences, one after the other.
class Sentences {
public:
    explicit Sentences(const Ui::HostTexts& texts) : m_texts(texts) {}

    void Add(TextId text, std::initializer_list<TextArgument> arguments = {}) {
        if (!m_line.empty()) m_line += L' ';
        m_line += FormatText(Text(text), arguments);
    }
    /// One of two texts by the number, which is their first argument; none for 0.
    void AddNumber(TextId one, TextId many, uint32_t number, const std::wstring& more = {}) {
        if (number > 0) Add(number == 1 ? one : many, {number, more});
    }
    std::wstring Text(TextId text) const { return m_texts(text); }
    std::wstring Take() { return std::move(m_line); }

private:
    const Ui::HostTexts& m_texts;
    std::wstring m_line;
};

std::wstring DescribeMatches(const Sentences& sentences, const CountSummary& count) {
    const std::wstring matches = count.matches == 1 ? sentences.Text(Text::OneMatch)
                                                    : FormatText(sentences.Text(Text::Matches), {count.matches});
    return count.isWhole ? matches : FormatText(sentences.Text(Text::AtLeast), {matches});
}

}  // namespace

QVFindAndReplace::Request EngineRequest(uint32_t options, const std::wstring& find, const std::wstring& replacement) {
    return {options, find, replacement, ToNarrow};
}

std::wstring WhyNotStart(const FindAndReplaceRequest& request, std::span<const std::wstring> files) {
    // The engine's own messages: what the dialog says beforehand is what a run would fail with.
    if (const char* const fault = EngineRequest(request.options, request.find, request.replacement).FindFault())
        return Win32::FromCodePage(fault, Win32::kUtf8CodePage);
    // A run in the mode One that looks for nothing does nothing, and says nothing about it. Here it can be said.
    const std::vector<std::wstring> items = QVFindAndReplace::SplitItems(request.find);
    if (QVFindAndReplace::ModeOf(request.options) == Mode::One && (items.empty() || items.front().empty()))
        return L"There is no text to find in the first line.";
    std::wstring reason = FindWildcardFault(request);
    if (!reason.empty() || !TakesFileName(request.options)) return reason;
    return WhyNotATarget(request.targetPattern, files);
}

void CountSummary::Add(const QVFindAndReplace::FileCount& count, bool dependsOnEncoding) {
    isWhole &= count.isWhole;
    if (count.errorCode != 0 && failed++ == 0) failure = count.error;
    if (count.errorCode != 0) return;
    notText += count.kind == EncodingKind::NotText;
    eightBit += count.kind == EncodingKind::CodePage || count.kind == EncodingKind::Utf8;
    utf8 += count.looksLikeUtf8 && dependsOnEncoding;
    if (count.changes == 0) return;
    matches += count.changes;
    ++filesWithMatches;
    loneBreaks += count.hasLoneBreaks;
    mixedBreaks += count.hasMixedBreaks;
}

std::wstring DescribeUnused(const Ui::HostTexts& texts, const FindAndReplaceRequest& request) {
    const Mode mode = QVFindAndReplace::ModeOf(request.options);
    const bool hasFindLines = QVFindAndReplace::SplitItems(request.find).size() > 1;
    const bool hasReplacementLines = QVFindAndReplace::SplitItems(request.replacement).size() > 1;
    Sentences sentences(texts);
    if (mode == Mode::One && (hasFindLines || hasReplacementLines)) sentences.Add(Text::FirstLinesAlone);
    if (mode == Mode::ManySame && hasReplacementLines) sentences.Add(Text::FirstReplacementAlone);
    if (mode == Mode::Multiline && (request.options & Option::Wildcard)) sentences.Add(Text::NoWildcardsOverLines);
    return sentences.Take();
}

std::wstring DescribeCount(const Ui::HostTexts& texts, const FindAndReplaceRequest& request, size_t files,
                           const CountSummary& count) {
    Sentences sentences(texts);
    if (count.matches == 0 && count.isWhole)
        sentences.Add(Text::NoMatch);
    else if (files == 1)
        sentences.Add(Text::MatchesInFile, {DescribeMatches(sentences, count)});
    else
        sentences.Add(Text::MatchesInFiles,
                      {DescribeMatches(sentences, count), count.filesWithMatches, static_cast<uint64_t>(files)});
    const std::wstring failure = Win32::FromCodePage(count.failure, Win32::kUtf8CodePage);
    sentences.AddNumber(Text::OneFails, Text::SeveralFail, count.failed, failure);
    sentences.AddNumber(Text::OneIsNotText, Text::SeveralAreNotText, count.notText);
    sentences.AddNumber(Text::OneHoldsUtf8, Text::SeveralHoldUtf8, count.utf8);
    const bool ignoresCase = (request.options & Option::IgnoreCase) != 0 && count.eightBit > 0;
    const bool isPlain =
        !(request.options & Option::Wildcard) || QVFindAndReplace::ModeOf(request.options) == Mode::Multiline;
    if (ignoresCase && isPlain && Win32::ToUpperCase(request.find) != Win32::ToLowerCase(request.find))
        sentences.Add(Text::CaseCountsInPlain);
    const auto isOther = [](wchar_t unit) { return unit >= 0x80 && Win32::UpperWide(unit) != Win32::LowerWide(unit); };
    if (ignoresCase && !isPlain && std::ranges::any_of(request.find, isOther)) sentences.Add(Text::CaseOfAsciiAlone);
    sentences.AddNumber(Text::LoneBreaksInOne, Text::LoneBreaksInSeveral, count.loneBreaks);
    sentences.AddNumber(Text::MixedBreaksInOne, Text::MixedBreaksInSeveral, count.mixedBreaks);
    return sentences.Take();
}

}  // namespace FileUtils
