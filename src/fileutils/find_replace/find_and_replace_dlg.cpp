#include "fileutils/find_replace/find_and_replace_dlg.h"

#include "fileutils/dialog_pages.h"
#include "fileutils/fileutils_resource.h"
#include "fileutils/fileutils_texts.h"
#include "fileutils/target_pattern.h"
#include "win32/window_text.h"

namespace FileUtils {
namespace {

using namespace Ui;

using namespace Quorvane::SDK;
namespace Option = QVFindAndReplace::Option;

constexpr ListEntry kFindTargets[] = {
    {Text::SaveAs, Option::SaveAs},
    {Text::WriteAndKeepBackup, Option::KeepBackup},
    {Text::WriteAndDeleteBackup, Option::DropBackup},
};
constexpr ListEntry kModes[] = {
    {Text::ModeOne, Option::ModeOne},
    {Text::ModeMany, Option::ModeMany},
    {Text::ModeManySame, Option::ModeManySame},
    {Text::ModeMultiline, Option::ModeMultiline},
};

constexpr UINT kCountReady = WM_APP + 1;
constexpr UINT_PTR kCountTimer = 1;
constexpr UINT kCountPause = 300;  // milliseconds without a change

// Keeps the extension, lies beside the original, and cannot be the original itself.
constexpr wchar_t kNewName[] = L"*_new.*";

constexpr OptionBox kFindBoxes[] = {
    {IDC_REGULAR_EXPRESSION, Option::RegularExpression},
    {IDC_WILDCARD, Option::Wildcard},
    {IDC_IGNORE_CASE, Option::IgnoreCase},
    {IDC_FORCE_UTF8, Option::ForceUtf8},
    {IDC_SILENT, Option::Silent},
    // Hidden and disabled, and a box all the same. compatibility: 8
    {IDC_REPLACE_ALL, Option::ReplaceAll},
};

constexpr Anchor kFindAnchors[] = {
    {IDC_HEADING, 0, 0, 100, 0},
    {IDC_FILES, 0, 0, 100, 40},
    {IDC_TARGET_LABEL, 0, 40, 0, 40},
    {IDC_TARGET, 0, 40, 0, 40},
    {IDC_FILE_NAME_LABEL, 0, 40, 0, 40},
    {IDC_FILE_NAME, 0, 40, 100, 40},
    {IDC_FIND_LABEL, 0, 40, 50, 40},
    {IDC_FIND, 0, 40, 50, 100},
    {IDC_REPLACEMENT_LABEL, 50, 40, 100, 40},
    {IDC_REPLACEMENT, 50, 40, 100, 100},
    {IDC_MODE_LABEL, 0, 100, 0, 100},
    {IDC_MODE, 0, 100, 0, 100},
    {IDC_REGULAR_EXPRESSION, 0, 100, 0, 100},
    {IDC_WILDCARD, 0, 100, 0, 100},
    {IDC_IGNORE_CASE, 0, 100, 0, 100},
    {IDC_FORCE_UTF8, 50, 100, 50, 100},
    {IDC_SILENT, 50, 100, 50, 100},
    {IDC_REPLACE_ALL, 50, 100, 50, 100},
    {IDC_REASON, 0, 100, 100, 100},
    {IDOK, 100, 100, 100, 100},
    {IDCANCEL, 100, 100, 100, 100},
};

}  // namespace

FindAndReplaceDlg::FindAndReplaceDlg(HostTexts texts, std::vector<std::wstring> files, FindAndReplaceRequest request)
    : Dialog(IDD_FIND_AND_REPLACE),
      m_texts(std::move(texts)),
      m_files(std::move(files)),
      m_request(std::move(request)) {}

std::optional<FindAndReplaceRequest> FindAndReplaceDlg::Show(HWND owner) {
    return ShowModal(owner) == IDOK ? std::optional(m_request) : std::nullopt;
}

bool FindAndReplaceDlg::OnInit() {
    m_count.emplace(m_files, GetWindow(), kCountReady);
    MakeResizable(kFindAnchors);
    FillList(Item(IDC_FILES), m_files);
    // A target must be one: without any the files would be written over with no backup.
    FillCombo(Item(IDC_TARGET), m_texts, kFindTargets, m_request.options, Option::KeepBackup);
    FillCombo(Item(IDC_MODE), m_texts, kModes, m_request.options, Option::ModeOne);
    SetBoxes(GetWindow(), kFindBoxes, m_request.options);
    for (const int edit : {IDC_FIND, IDC_REPLACEMENT}) SendMessageW(Item(edit), EM_LIMITTEXT, kLongestFindText, 0);
    SetTextOf(Item(IDC_FIND), WithEditBreaks(m_request.find));
    SetTextOf(Item(IDC_REPLACEMENT), WithEditBreaks(m_request.replacement));
    SetTextOf(Item(IDC_FILE_NAME), m_request.targetPattern);
    ProposeFileName();
    Refresh();
    SetFocus(Item(IDC_FIND));
    SendMessageW(Item(IDC_FIND), EM_SETSEL, 0, -1);
    return false;
}

bool FindAndReplaceDlg::OnCommand(int id, int notification) {
    if (id == IDOK) {
        FindAndReplaceRequest request = FromControls();
        if (!WhyNotStart(request, m_files).empty()) return true;
        m_request = std::move(request);
        End(IDOK);
        return true;
    }
    if (id == IDC_TARGET && notification == CBN_SELCHANGE) ProposeFileName();
    if (notification != BN_CLICKED && notification != CBN_SELCHANGE && notification != EN_CHANGE) return false;
    if (id == IDCANCEL || id == IDC_FILES) return false;
    Refresh();
    return true;
}

bool FindAndReplaceDlg::OnMessage(UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_DESTROY) m_count.reset();
    if (!m_count) return false;
    if (message == WM_TIMER && wParam == kCountTimer) {
        KillTimer(GetWindow(), kCountTimer);
        m_count->Begin(FromControls());
        return true;
    }
    if (message != kCountReady) return false;
    if (const auto count = m_count->Take()) ShowCount(*count);
    return true;
}

FindAndReplaceRequest FindAndReplaceDlg::FromControls() const {
    FindAndReplaceRequest request;
    request.options =
        SelectedBit(Item(IDC_TARGET)) | SelectedBit(Item(IDC_MODE)) | BitsOfBoxes(GetWindow(), kFindBoxes);
    request.find = Win32::WindowText(Item(IDC_FIND));
    request.replacement = Win32::WindowText(Item(IDC_REPLACEMENT));
    request.targetPattern = Win32::WindowText(Item(IDC_FILE_NAME));
    return request;
}

void FindAndReplaceDlg::ProposeFileName() {
    const bool savesAs = TakesFileName(SelectedBit(Item(IDC_TARGET)));
    SetTextOf(Item(IDC_FILE_NAME), ProposedFileName(savesAs, Win32::WindowText(Item(IDC_FILE_NAME)), kNewName));
}

void FindAndReplaceDlg::Refresh() {
    const FindAndReplaceRequest request = FromControls();
    EnableWithLabel(Item(IDC_FILE_NAME), TakesFileName(request.options));
    const std::wstring reason = WhyNotStart(request, m_files);
    SetTextOf(Item(IDC_REASON), reason.empty() ? DescribeUnused(m_texts, request) : Reason(reason, Say()));
    EnableWindow(Item(IDOK), reason.empty());
    m_count->Cancel();
    if (reason.empty())
        SetTimer(GetWindow(), kCountTimer, kCountPause, nullptr);
    else
        KillTimer(GetWindow(), kCountTimer);
}

void FindAndReplaceDlg::ShowCount(const CountSummary& count) {
    const FindAndReplaceRequest request = FromControls();
    const std::wstring unused = DescribeUnused(m_texts, request);
    std::wstring line = DescribeCount(m_texts, request, m_files.size(), count);
    if (!unused.empty()) line += L' ' + unused;
    SetTextOf(Item(IDC_REASON), line);
}

}  // namespace FileUtils
