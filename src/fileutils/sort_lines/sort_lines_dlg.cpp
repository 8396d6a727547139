#include "fileutils/sort_lines/sort_lines_dlg.h"

#include "fileutils/dialog_pages.h"
#include "fileutils/fileutils_resource.h"
#include "fileutils/fileutils_texts.h"
#include "fileutils/target_pattern.h"
#include "win32/handle.h"
#include "win32/window_text.h"

namespace FileUtils {
namespace {

using namespace Ui;

using namespace Quorvane::SDK;
namespace SortOption = QVLineSorter::SortOption;

constexpr ListEntry kSortTargets[] = {
    {Text::SortSaveAs, SortOption::SaveAs},
    {Text::WriteAndKeepBackup, SortOption::KeepBackup},
    {Text::WriteAndDeleteBackup, SortOption::DeleteBackup},
};
constexpr ListEntry kMethods[] = {
    {Text::SortAsText, SortOption::AsText},
    {Text::SortAsNumber, SortOption::AsNumber},
    {Text::SortAsDate, SortOption::AsDate},
};

// Radio buttons answer as boxes do.
constexpr OptionBox kSortBoxes[] = {
    {IDC_KEY_LINE, SortOption::EntireLine},
    {IDC_KEY_SUBSTRING, SortOption::Substring},
    {IDC_KEY_ITEM, SortOption::Item},
    {IDC_SKIP_SPACES, SortOption::SkipLeadingSpaces},
    {IDC_END_AT_WHITESPACE, SortOption::EndAtWhiteSpace},
    {IDC_LANGUAGE_ORDER, SortOption::LanguageOrder},
    {IDC_SORT_IGNORE_CASE, SortOption::IgnoreCase},
    {IDC_NATURAL_NUMBERS, SortOption::NaturalNumbers},
    {IDC_REVERSE, SortOption::Reverse},
    {IDC_REMOVE_DUPLICATES, SortOption::RemoveDuplicates},  // always disabled: it goes through as it came
    {IDC_REMOVE_BLANK_LINES, SortOption::RemoveBlankLines},
};

struct TextField {
    int control;
    std::wstring SortForm::*text;
    WPARAM longest;  // UTF-16 units
};
constexpr WPARAM kLongestNumber = 10;  // digits of 2^32
constexpr TextField kTextFields[] = {
    {IDC_FILE_NAME, &SortForm::saveAsName, MAX_PATH},
    {IDC_KEEP_TOP, &SortForm::keepTop, kLongestNumber},
    {IDC_KEEP_BOTTOM, &SortForm::keepBottom, kLongestNumber},
    {IDC_LINE_OFFSET, &SortForm::linePosition, kLongestNumber},
    {IDC_SUBSTRING_LENGTH, &SortForm::substringLength, kLongestNumber},
    {IDC_END_CHARACTER, &SortForm::endCharacter, 2},  // \t
    {IDC_ITEM_SEPARATOR, &SortForm::itemSeparator, 2},
    {IDC_ITEM_NUMBER, &SortForm::itemNumber, kLongestNumber},
    {IDC_DATE_FORMAT, &SortForm::dateFormat, QVLineSorter::kLongestDateFormat},
};

struct DateFormat {
    const wchar_t* format;
    const wchar_t* example;
};
constexpr DateFormat kDateFormats[] = {
    {L"%Y-%m-%d", L"2014-11-21"},
    {L"%Y-%m-%d %H:%M:%S", L"2014-11-21 13:44:48"},
    {L"%d/%m/%y", L"23/11/14"},
    {L"%d/%m/%Y", L"23/11/2014"},
    {L"%d/%m/%Y %I:%M:%S %p", L"23/11/2014 1:44:48 pm"},
    {L"%d %b %Y", L"23 Nov 2014"},
    {L"%b %d %H:%M:%S %Y", L"Nov 11 13:44:48 2014"},
    {L"%d %b %Y %H:%M:%S", L"11 Nov 2014 13:44:48"},
};

constexpr wchar_t kSortedName[] = L"*_sorted.*";

// A higher window shows more files, a wider one longer paths; the fields below stay together.
constexpr Anchor kSortAnchors[] = {
    {IDC_WARNING, 0, 0, 100, 0},
    {IDC_FILES, 0, 0, 100, 100},
    {IDC_TARGET_LABEL, 0, 100, 0, 100},
    {IDC_TARGET, 0, 100, 0, 100},
    {IDC_FILE_NAME_LABEL, 0, 100, 0, 100},
    {IDC_FILE_NAME, 0, 100, 100, 100},
    {IDC_KEEP_GROUP, 0, 100, 100, 100},
    {IDC_KEEP_TOP_LABEL, 0, 100, 0, 100},
    {IDC_KEEP_TOP, 0, 100, 0, 100},
    {IDC_KEEP_TOP_NOTE, 0, 100, 0, 100},
    {IDC_KEEP_BOTTOM_LABEL, 0, 100, 0, 100},
    {IDC_KEEP_BOTTOM, 0, 100, 0, 100},
    {IDC_KEEP_BOTTOM_NOTE, 0, 100, 0, 100},
    {IDC_KEY_GROUP, 0, 100, 0, 100},
    {IDC_LINE_OFFSET_LABEL, 0, 100, 0, 100},
    {IDC_LINE_OFFSET, 0, 100, 0, 100},
    {IDC_SKIP_SPACES, 0, 100, 0, 100},
    {IDC_KEY_LINE, 0, 100, 0, 100},
    {IDC_KEY_SUBSTRING, 0, 100, 0, 100},
    {IDC_KEY_ITEM, 0, 100, 0, 100},
    {IDC_SUBSTRING_LENGTH_LABEL, 0, 100, 0, 100},
    {IDC_SUBSTRING_LENGTH, 0, 100, 0, 100},
    {IDC_END_CHARACTER_LABEL, 0, 100, 0, 100},
    {IDC_END_CHARACTER, 0, 100, 0, 100},
    {IDC_END_AT_WHITESPACE, 0, 100, 0, 100},
    {IDC_ITEM_SEPARATOR_LABEL, 0, 100, 0, 100},
    {IDC_ITEM_SEPARATOR, 0, 100, 0, 100},
    {IDC_ITEM_NUMBER_LABEL, 0, 100, 0, 100},
    {IDC_ITEM_NUMBER, 0, 100, 0, 100},
    {IDC_ORDER_GROUP, 0, 100, 100, 100},
    {IDC_SORT_METHOD_LABEL, 0, 100, 0, 100},
    {IDC_SORT_METHOD, 0, 100, 100, 100},
    {IDC_DATE_FORMAT_LABEL, 0, 100, 0, 100},
    {IDC_DATE_FORMAT, 0, 100, 100, 100},
    {IDC_DATE_MENU, 100, 100, 100, 100},
    {IDC_LANGUAGE_ORDER, 0, 100, 0, 100},
    {IDC_SORT_IGNORE_CASE, 0, 100, 0, 100},
    {IDC_NATURAL_NUMBERS, 0, 100, 0, 100},
    {IDC_REVERSE, 0, 100, 0, 100},
    {IDC_REMOVE_DUPLICATES, 0, 100, 0, 100},
    {IDC_REMOVE_BLANK_LINES, 0, 100, 0, 100},
    {IDC_REASON, 0, 100, 100, 100},
    {IDOK, 100, 100, 100, 100},
    {IDCANCEL, 100, 100, 100, 100},
};

struct MenuTraits {
    using Raw = HMENU;
    static Raw Empty() noexcept { return nullptr; }
    static void Close(Raw raw) noexcept { DestroyMenu(raw); }
};
using MenuHandle = Win32::UniqueHandle<MenuTraits>;

/// At the mouse, which is over the button when it was pressed with it; else below the button.
POINT MenuPlace(HWND button) {
    RECT rect = {};
    GetWindowRect(button, &rect);
    POINT mouse = {};
    if (GetCursorPos(&mouse) && PtInRect(&rect, mouse)) return mouse;
    return {rect.left, rect.bottom};
}

}  // namespace

SortLinesDlg::SortLinesDlg(HostTexts texts, std::vector<std::wstring> files, QVLineSorter::SortRequest request)
    : Dialog(IDD_SORT_LINES), m_texts(std::move(texts)), m_files(std::move(files)), m_request(std::move(request)) {}

std::optional<QVLineSorter::SortRequest> SortLinesDlg::Show(HWND owner) {
    return ShowModal(owner) == IDOK ? std::optional(m_request) : std::nullopt;
}

bool SortLinesDlg::OnInit() {
    MakeResizable(kSortAnchors);
    FillList(Item(IDC_FILES), m_files);
    for (const TextField& field : kTextFields) SendMessageW(Item(field.control), EM_LIMITTEXT, field.longest, 0);
    ToControls(FormOf(m_request));
    ProposeFileName();
    Refresh();
    SetFocus(Item(IDC_TARGET));
    return false;
}

void SortLinesDlg::ToControls(const SortForm& form) {
    FillCombo(Item(IDC_TARGET), m_texts, kSortTargets, form.options, SortOption::KeepBackup);
    FillCombo(Item(IDC_SORT_METHOD), m_texts, kMethods, form.options, SortOption::AsText);
    SetBoxes(GetWindow(), kSortBoxes, form.options);
    for (const TextField& field : kTextFields) SetTextOf(Item(field.control), form.*field.text);
}

SortForm SortLinesDlg::FromControls() const {
    SortForm form;
    form.options =
        SelectedBit(Item(IDC_TARGET)) | SelectedBit(Item(IDC_SORT_METHOD)) | BitsOfBoxes(GetWindow(), kSortBoxes);
    for (const TextField& field : kTextFields) form.*field.text = Win32::WindowText(Item(field.control));
    return form;
}

bool SortLinesDlg::OnCommand(int id, int notification) {
    if (id == IDOK) {
        SortReading reading = RequestOf(FromControls(), m_request, m_files);
        if (!reading.fault.empty()) return true;
        m_request = std::move(reading.request);
        End(IDOK);
        return true;
    }
    if (notification != BN_CLICKED && notification != CBN_SELCHANGE && notification != EN_CHANGE) return false;
    if (id == IDCANCEL || id == IDC_FILES) return false;
    if (id == IDC_DATE_MENU) PickDateFormat();
    if (id == IDC_TARGET) ProposeFileName();
    Refresh();
    return true;
}

void SortLinesDlg::ProposeFileName() {
    const bool savesAs = EnabledFor(SelectedBit(Item(IDC_TARGET))).fileName;
    SetTextOf(Item(IDC_FILE_NAME), ProposedFileName(savesAs, Win32::WindowText(Item(IDC_FILE_NAME)), kSortedName));
}

void SortLinesDlg::PickDateFormat() {
    const MenuHandle menu(CreatePopupMenu());
    UINT_PTR number = 0;  // 0 means that nothing was chosen
    for (const auto& [format, example] : kDateFormats) {
        const std::wstring text = std::wstring(format) + L'\t' + example;
        AppendMenuW(menu.Get(), MF_STRING, ++number, text.c_str());
    }
    const POINT place = MenuPlace(Item(IDC_DATE_MENU));
    const int chosen = TrackPopupMenuEx(menu.Get(), TPM_RETURNCMD | TPM_NONOTIFY | TPM_RIGHTBUTTON, place.x, place.y,
                                        GetWindow(), nullptr);
    if (chosen > 0) SetTextOf(Item(IDC_DATE_FORMAT), kDateFormats[chosen - 1].format);
}

void SortLinesDlg::Refresh() {
    const SortForm form = FromControls();
    const SortEnabling enabled = EnabledFor(form.options);
    EnableWithLabel(Item(IDC_FILE_NAME), enabled.fileName);
    EnableWithLabel(Item(IDC_SUBSTRING_LENGTH), enabled.substring);
    EnableWithLabel(Item(IDC_END_CHARACTER), enabled.substring);
    EnableWindow(Item(IDC_END_AT_WHITESPACE), enabled.substring);
    EnableWithLabel(Item(IDC_ITEM_SEPARATOR), enabled.item);
    EnableWithLabel(Item(IDC_ITEM_NUMBER), enabled.item);
    // Disabled at first, as text is the method at first: a format is of use to dates alone.
    EnableWithLabel(Item(IDC_DATE_FORMAT), enabled.dateFormat);
    EnableWindow(Item(IDC_DATE_MENU), enabled.dateFormat);
    EnableWindow(Item(IDC_SORT_IGNORE_CASE), enabled.ignoreCase);
    EnableWindow(Item(IDC_NATURAL_NUMBERS), enabled.naturalNumbers);

    const SortReading reading = RequestOf(form, m_request, m_files);
    SetTextOf(Item(IDC_REASON), Reason(reading.fault.empty() ? reading.hint : reading.fault, Say()));
    EnableWindow(Item(IDOK), reading.fault.empty());
}

}  // namespace FileUtils
