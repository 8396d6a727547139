// Walks every dialog as the resources have it and in each language of the stand-in host, in two sizes: at 100 % and, by
// a font of half the size again, at 150 %.
#include <algorithm>
#include <cwctype>
#include <map>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "batchrename/dialogs/batchrename_resource.h"
#include "batchrename/dialogs/rename_dialog_pages.h"
#include "fileutils/dialog_pages.h"
#include "fileutils/fileutils_resource.h"
#include "host/contract/language.h"
#include "host/contract/whole_file.h"
#include "ui/activation_context.h"
#include "ui/controls.h"
#include "ui/dialog.h"
#include "win32/path.h"
#include "win32/window_text.h"

namespace {

constexpr WORD kDialogs[] = {IDD_FIND_AND_REPLACE, IDD_CONFIRM_REPLACE, IDD_SORT_LINES,  IDD_REPLACE_IN_NAMES,
                             IDD_CREATE_LINKS,     IDD_CHANGE_ACCESS,   IDD_RULE_PANEL,  IDD_ADD_TAG,
                             IDD_UNDO_MANAGER,     IDD_RENAME_ITEM,     IDD_SAVE_PROFILE};
constexpr WORD kPointSizes[] = {8, 12};

constexpr LONG kScreenHeight = 768 - 100;  // lines of a small screen, less a caption and a bar at its edge

/// A copy of a dialog's template with another size of its font.
std::vector<WORD> TemplateWithFont(WORD dialog, WORD points) {
    const HRSRC resource = FindResourceW(Ui::OwnModule(), MAKEINTRESOURCEW(dialog), RT_DIALOG);
    const auto* const words = reinterpret_cast<const WORD*>(Ui::DialogResource(dialog));
    std::vector<WORD> copy(words, words + SizeofResource(Ui::OwnModule(), resource) / sizeof(WORD));
    size_t at = 13 + 2;  // the head of fixed size; no menu and no window class take a word each
    while (copy[at] != 0) ++at;
    copy[at + 1] = points;
    return copy;
}

INT_PTR CALLBACK HandleNothing(HWND, UINT, WPARAM, LPARAM) {
    return FALSE;
}

constexpr const wchar_t* kLanguages[] = {L"", L"qvhost-english.txt", L"qvhost-german.txt"};  // "": the resources'

std::unique_ptr<QVHost::LanguageTexts> ReadLanguage(const wchar_t* file) {
    auto texts = std::make_unique<QVHost::LanguageTexts>();
    std::string bytes;
    EXPECT_EQ(QVHost::ReadWholeFile(Win32::JoinPath(Win32::FolderOf(QV_HOST_PROGRAM), file), bytes), 0u);
    texts->Read(bytes);
    return texts;
}

/// Gives a dialog of ours the texts of a language file. Each control with a text has one there.
void ShowLanguage(HWND window, WORD dialog, const wchar_t* file) {
    const auto texts = ReadLanguage(file);
    const std::span<const Ui::DialogPage> ours = BatchRename::DialogPages();
    const bool isRenamers = std::ranges::find(ours, dialog, &Ui::DialogPage::dialog) != ours.end();
    const std::span<const Ui::DialogPage> pages = isRenamers ? ours : FileUtils::DialogPages();
    const auto text = [&](Quorvane::SDK::TextId id) {
        const wchar_t* const found = texts->Find(isRenamers ? L"QVBatchRename" : L"", id);
        const uint32_t number = id >> 16;
        constexpr uint32_t kSameInAll[] = {10201, 10301, 10701, 10801, 11001, IDC_DATE_MENU};  // "OK" and "<"
        EXPECT_TRUE(std::ranges::find(kSameInAll, number) != std::end(kSameInAll) ||
                    Quorvane::SDK::IsHostText(found, id))
            << number;
        return found;
    };
    Ui::ShowTexts(window, dialog, text, std::ranges::find(pages, dialog, &Ui::DialogPage::dialog)->texts);
}

class OpenDialog {
public:
    OpenDialog(WORD dialog, WORD points, const wchar_t* language = L"") : m_template(TemplateWithFont(dialog, points)) {
        const Ui::ActivationContext context;
        m_window = CreateDialogIndirectParamW(Ui::OwnModule(), reinterpret_cast<const DLGTEMPLATE*>(m_template.data()),
                                              GetDesktopWindow(), HandleNothing, 0);  // a panel needs a parent
        if (*language) ShowLanguage(m_window, dialog, language);
    }
    ~OpenDialog() { DestroyWindow(m_window); }
    OpenDialog(const OpenDialog&) = delete;
    OpenDialog& operator=(const OpenDialog&) = delete;

    HWND Window() const { return m_window; }
    std::vector<HWND> Controls() const {
        std::vector<HWND> controls;
        for (HWND child = GetWindow(m_window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
            controls.push_back(child);
        return controls;
    }

private:
    std::vector<WORD> m_template;
    HWND m_window = nullptr;
};

std::wstring ClassOf(HWND window) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, 64);
    return name;
}

LONG ButtonKind(HWND button) {
    return GetWindowLongW(button, GWL_STYLE) & BS_TYPEMASK;
}

bool IsGroupBox(HWND control) {
    return ClassOf(control) == L"Button" && ButtonKind(control) == BS_GROUPBOX;
}

RECT RectIn(HWND dialog, HWND control) {
    RECT rect = {};
    GetWindowRect(control, &rect);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

/// What a text needs on the screen, in pixels, in the font of its control; the mark of an access key takes no space. A
/// label may have several lines.
SIZE SizeOfText(HWND control, const std::wstring& text) {
    const HDC context = GetDC(control);
    const HGDIOBJ before = SelectObject(context, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
    RECT rect = {};
    GetClientRect(control, &rect);
    DrawTextW(context, text.c_str(), -1, &rect,
              DT_CALCRECT | (ClassOf(control) == L"Static" ? DT_WORDBREAK : DT_SINGLELINE));
    SelectObject(context, before);
    ReleaseDC(control, context);
    return {rect.right, rect.bottom};
}

/// What a control takes for itself beside its text.
LONG Frame(HWND control) {
    if (ClassOf(control) != L"Button") return 0;
    const LONG kind = ButtonKind(control);
    if (kind == BS_PUSHBUTTON || kind == BS_DEFPUSHBUTTON) return 8;
    return GetSystemMetrics(SM_CXMENUCHECK) + 4;
}

wchar_t AccessKeyOf(const std::wstring& text) {
    const size_t mark = text.find(L'&');
    return mark == std::wstring::npos || mark + 1 == text.size() ? L'\0'
                                                                 : static_cast<wchar_t>(towlower(text[mark + 1]));
}

std::string Name(HWND control) {
    const std::wstring text = Win32::WindowText(control);
    return "control " + std::to_string(GetDlgCtrlID(control)) + " \"" + std::string(text.begin(), text.end()) + "\"";
}

TEST(Layout, EverythingFitsAndNothingOverlaps) {
    for (size_t walk = 0; walk < std::size(kDialogs) * std::size(kLanguages); ++walk)
        for (const WORD points : kPointSizes) {
            const WORD dialog = kDialogs[walk / std::size(kLanguages)];
            const size_t language = walk % std::size(kLanguages);
            SCOPED_TRACE("dialog " + std::to_string(dialog) + ", " + std::to_string(points) + " points, language " +
                         std::to_string(language));
            const OpenDialog open(dialog, points, kLanguages[language]);
            ASSERT_TRUE(open.Window());
            RECT client = {};
            GetClientRect(open.Window(), &client);
            EXPECT_LE(client.bottom, kScreenHeight);
            const std::vector<HWND> controls = open.Controls();
            for (size_t i = 0; i < controls.size(); ++i) {
                const HWND control = controls[i];
                const RECT rect = RectIn(open.Window(), control);
                RECT common = {};
                EXPECT_TRUE(IntersectRect(&common, &rect, &client) && EqualRect(&common, &rect))
                    << Name(control) << " leaves the dialog";
                const std::wstring windowClass = ClassOf(control);
                if (windowClass == L"Button" || windowClass == L"Static") {
                    const SIZE text = SizeOfText(control, Win32::WindowText(control));
                    EXPECT_LE(text.cx + Frame(control), rect.right - rect.left) << Name(control);
                    EXPECT_LE(text.cy, rect.bottom - rect.top) << Name(control);
                }
                if (IsGroupBox(control)) continue;
                for (size_t j = i + 1; j < controls.size(); ++j) {
                    const RECT other = RectIn(open.Window(), controls[j]);
                    EXPECT_TRUE(IsGroupBox(controls[j]) || !IntersectRect(&common, &rect, &other))
                        << Name(control) << " overlaps " << Name(controls[j]);
                }
            }
        }
}

TEST(Layout, EveryControlIsWithinReachOfTheKeyboard) {
    for (size_t walk = 0; walk < std::size(kDialogs) * std::size(kLanguages); ++walk) {
        const WORD dialog = kDialogs[walk / std::size(kLanguages)];
        const size_t language = walk % std::size(kLanguages);
        SCOPED_TRACE("dialog " + std::to_string(dialog) + ", language " + std::to_string(language));
        const OpenDialog open(dialog, kPointSizes[0], kLanguages[language]);
        ASSERT_TRUE(open.Window());
        std::map<wchar_t, HWND> keys;
        HWND before = nullptr;
        for (const HWND control : open.Controls()) {
            const std::string name = Name(control);
            const std::wstring windowClass = ClassOf(control);
            const bool isField = windowClass == L"Edit" || windowClass == L"ComboBox" || windowClass == L"ListBox" ||
                                 windowClass == L"SysListView32";
            // Screen readers name a field by the text before it, and the text's key leads to the field.
            EXPECT_TRUE(!isField || (before && ClassOf(before) == L"Static" && !Win32::WindowText(before).empty()))
                << name;
            const bool isStop = isField || (windowClass == L"Button" && !IsGroupBox(control));
            const bool needsStop = isStop && ButtonKind(control) != BS_AUTORADIOBUTTON;
            EXPECT_TRUE(!needsStop || (GetWindowLongW(control, GWL_STYLE) & WS_TABSTOP)) << name;
            const wchar_t key = windowClass == L"Edit" ? L'\0' : AccessKeyOf(Win32::WindowText(control));
            EXPECT_TRUE(!key || keys.emplace(key, control).second) << name << " has the key of " << Name(keys[key]);
            before = control;
        }
        if (dialog == IDD_RULE_PANEL) continue;  // Enter in one of its fields starts no run
        EXPECT_EQ(SendMessageW(open.Window(), DM_GETDEFID, 0, 0), MAKELONG(IDOK, DC_HASDEFID));
        EXPECT_TRUE(GetDlgItem(open.Window(), IDCANCEL));
    }
}

TEST(Layout, EveryTipIsSaidOfAControl) {
    for (const std::span<const Ui::DialogPage> pages : {FileUtils::DialogPages(), BatchRename::DialogPages()})
        for (const Ui::DialogPage& page : pages) {
            const OpenDialog open(page.dialog, kPointSizes[0]);
            for (const Ui::Tip& tip : page.tips)
                EXPECT_TRUE(GetDlgItem(open.Window(), tip.control)) << page.dialog << ": " << tip.control;
        }
}

}  // namespace
