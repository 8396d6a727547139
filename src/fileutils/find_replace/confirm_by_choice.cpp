#include "fileutils/find_replace/confirm_replace_dlg.h"

#include <algorithm>
#include <iterator>

#include "sdk/owners.h"
#include "win32/code_page.h"
#include "win32/path.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;
namespace Answer = QVFindAndReplace::Answer;

struct ChoiceRow {
    const wchar_t* text;
    uint32_t answer;
};
constexpr ChoiceRow kChoices[] = {
    {L"Replace", Answer::Replace}, {L"Replace All", Answer::ReplaceAll}, {L"Find Next", Answer::FindNext},
    {L"Skip File", kSkipFile},     {L"Cancel", Answer::Cancel},
};

/// The match in its line, between brackets, and what would take its place; at most `capacity` - 1 units.
std::wstring DescribeMatch(const ConfirmQuestion& question, size_t capacity) {
    constexpr size_t kAround = 30;
    constexpr size_t kPart = 60;
    // Nobody can switch the reading here, so lines that are UTF-8 are shown so, whatever the file counts as. What is
    // put in is in the encoding that the file counts as.
    const bool isUtf8 = question.kind == QVUtils::EncodingKind::Utf8;
    const MatchView view = ViewOf(question, isUtf8 || Win32::IsValidUtf8(question.rawContext));
    const std::wstring& replacement = isUtf8 ? view.replacement : question.replacement;
    const std::wstring_view context = view.context;
    const size_t start = std::min(view.matchOffset, context.size());
    const size_t end = std::min(start + view.matchLength, context.size());
    const size_t lineStart = context.substr(0, start).find_last_of(L"\r\n") + 1;  // npos + 1 is 0
    const size_t from = std::max(lineStart, start > kAround ? start - kAround : 0);
    const size_t lineEnd = std::min(context.find_first_of(L"\r\n", end), context.size());

    std::wstring text(Win32::FileNameOf(question.fileName));
    text += L" (line " + std::to_wstring(question.match.startLine + 1) + L"): ";
    text += context.substr(from, start - from);
    text += L'[';
    text += context.substr(start, std::min(end - start, kPart));
    text += L']';
    text += context.substr(end, std::min(lineEnd - end, kAround));
    text += L" -> [" + replacement.substr(0, kPart) + L']';
    text.resize(std::min(text.size(), capacity - 1));
    return text;
}

}  // namespace

uint32_t ConfirmByChoice::Ask(const ConfirmQuestion& question) {
    const Owned<IChoiceList> choices(m_host.CreateChoiceList());
    if (!choices) return Answer::Cancel;
    for (const ChoiceRow& row : kChoices) choices->AddChoice(row.text);
    ChoiceRequest request = {};
    FillField(request.prompt, DescribeMatch(question, std::size(request.prompt)));
    FillField(request.title, L"Find and Replace");
    request.choices = choices.get();
    if (!m_host.ShowChoiceDialog(&request) || request.position >= std::size(kChoices)) return Answer::Cancel;
    return kChoices[request.position].answer;
}

}  // namespace FileUtils
