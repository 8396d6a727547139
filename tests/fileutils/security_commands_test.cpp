// Taking ownership, resetting and granting access: messages of the elevated channel, the common frame of the three
// commands, and the commands with their dialog, in one process and across the real channel.
#include <regex>

#include "fileutils/access/account_picker.h"
#include "fileutils/access/change_access_dlg.h"
#include "fileutils/access/security_work.h"
#include "fileutils/command_runner.h"
#include "fileutils/commands.h"
#include "fileutils/elevated_request.h"
#include "fileutils/fileutils_resource.h"
#include "fuzz/elevated_message.h"
#include "host/elevated/elevated_protocol.h"
#include "security/account_names.h"
#include "security/enabled_privileges.h"
#include "support/replaced_imports.h"
#include "support/services_of_host.h"
#include "win32/files.h"
#include "win32/text.h"

namespace {

using namespace FileUtils;
using QVHost::Bytes;
using namespace QVTest;
namespace SDK = Quorvane::SDK;

constexpr wchar_t kGrantTitle[] = L"Add File Access";
constexpr uint32_t kMalformed = ERROR_INVALID_PARAMETER;

/// Numbers and texts as a request holds them.
template <class... Field>
Bytes Request(const Field&... fields) {
    Bytes bytes;
    const auto append = [&](const auto& field) {
        if constexpr (std::is_integral_v<std::decay_t<decltype(field)>>)
            QVHost::AppendNumber(bytes, field);
        else
            QVHost::AppendString(bytes, field);
    };
    (append(fields), ...);
    return bytes;
}

/// Sees each change of an owner that this program makes by itself. The table of the system's calls takes the import
/// with its first use, so it is replaced before.
int g_newOwners = 0;
DWORD WINAPI Change(LPWSTR path, SE_OBJECT_TYPE type, SECURITY_INFORMATION parts, PSID owner, PSID group, PACL list,
                    PACL systemList) {
    EXPECT_EQ(IsEnabled(SE_TAKE_OWNERSHIP_NAME), parts == OWNER_SECURITY_INFORMATION);
    g_newOwners += parts == OWNER_SECURITY_INFORMATION ? 1 : 0;
    const auto real = reinterpret_cast<decltype(&SetNamedSecurityInfoW)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"advapi32"), "SetNamedSecurityInfoW")));
    return real(path, type, parts, owner, group, list, systemList);
}
const ReplacedImport g_seenChanges(GetModuleHandleW(nullptr), "SetNamedSecurityInfoW",
                                   reinterpret_cast<void*>(&Change));

TEST(ElevatedRequests, AreCarriedOutWhenTheyAreWholeAndNotOtherwise) {
    ServicesOfHost host(QV_HOST_PROGRAM);
    const TemporaryFolder folder;
    const std::wstring file = folder.Write(L"a", "x");
    const std::wstring link = folder / L"link";
    using Handler = uint32_t (*)(SDK::IHostServices&, SDK::IRequestMessage&);
    const auto answer = [&](Handler handler, const Bytes& bytes) {
        QVFuzz::ElevatedMessage message(bytes);
        EXPECT_EQ(handler(host.Services(), message), 1u);
        return message.Result();
    };
    const std::tuple<const char*, Handler, Bytes> requests[] = {
        {"ownership", AnswerTakeOwnershipRequest, Request(2, file, file)},
        {"reset", AnswerResetAccessRequest, Request(1, file)},
        {"grant", AnswerGrantAccessRequest, Request(0x1200A9, L"Everyone", 1, file)},
        {"link", AnswerCreateLinkRequest, Request(1, link, file, 0)},
    };
    g_newOwners = 0;
    for (const auto& [why, handler, whole] : requests) {
        for (size_t size = 0; size < whole.size(); ++size)
            EXPECT_EQ(answer(handler, Bytes(whole.begin(), whole.begin() + ptrdiff_t(size))), kMalformed)
                << why << size;
        EXPECT_FALSE(Win32::Exists(link));
        for (const size_t padding : {0, 1, 2, 4}) {
            Bytes padded = whole;
            padded.resize(padded.size() + padding);
            EXPECT_EQ(answer(handler, padded), 0u) << why << padding;
            DeleteFileW(link.c_str());
        }
    }
    EXPECT_EQ(g_newOwners, 8);
    const std::pair<const char*, Bytes> grants[] = {
        {"rights that no file has", Request(0x10000000, L"Everyone", 1, file)},
        {"no account", Request(1, L"", 1, file)},
        {"a path beyond all", Request(1, L"Everyone", 1, L"C:\\" + std::wstring(40000, L'a'))},
        {"a count beyond all bytes", Request(1, L"Everyone", 0xFFFFFFFF, file)},
    };
    for (const auto& [why, bytes] : grants) EXPECT_EQ(answer(AnswerGrantAccessRequest, bytes), kMalformed) << why;
    EXPECT_EQ(answer(AnswerGrantAccessRequest, Request(1, L"no such account", 1, file)), ERROR_NONE_MAPPED + 0u);
    EXPECT_EQ(answer(AnswerCreateLinkRequest, Request(1, link, file, 2)), kMalformed) << "neither file nor folder";
    for (const Handler handler : {AnswerTakeOwnershipRequest, AnswerResetAccessRequest})
        EXPECT_EQ(answer(handler, Request(2, file, L"a.txt")), kMalformed);
    EXPECT_EQ(answer(AnswerGrantAccessRequest, Request(1, L"Everyone", 2, file, L"a.txt")), kMalformed);
    const std::wstring core = LR"(\??\)" + folder.Path();
    for (const uint32_t type : {1u, 2u, 4u}) {
        EXPECT_EQ(answer(AnswerCreateLinkRequest, Request(type, L"link", file, 0)), kMalformed) << type;
        EXPECT_EQ(answer(AnswerCreateLinkRequest, Request(type, link, L"a", 0)), kMalformed) << type;
        EXPECT_EQ(answer(AnswerCreateLinkRequest, Request(type, link, core, 1)) == kMalformed, type != 2) << type;
    }
    EXPECT_EQ(answer(AnswerCreateLinkRequest, Request(3, link, LR"(..\a)", 0)), 0u);
}

TEST(ElevatedPaths, AreThoseOfFilesAndFolders) {
    const std::tuple<const wchar_t*, bool, bool> cases[] = {
        {LR"(C:\)", true, true},
        {LR"(c:/a\..\b.txt)", true, true},
        {LR"(\\server\share\a b)", true, true},
        {LR"(\\?\C:\nul)", true, true},
        {L"C:\\half \xD800", true, true},
        {LR"(\\?\unc\server\share\a.)", true, true},
        {LR"(..\a)", false, true},
        {LR"(CURRENT_USER\Software)", false, true},
        {L"", false, false},
        {L"C:a", false, false},
        {LR"(1:\a)", false, false},
        {LR"(C:\a:stream\b)", false, false},
        {L"a::$DATA", false, false},
        {LR"(C:\a\NUL)", false, false},
        {LR"(C:\a\nul .txt)", false, false},
        {LR"(\\.\PhysicalDrive0)", false, false},
        {LR"(\\?\GLOBALROOT\Device\Null)", false, false},
        {LR"(\\?\pipe\a)", false, false},
        {LR"(\??\C:\a)", false, false},
        {LR"(\\server\Pipe\a)", false, false},
        {LR"(\\server\pipe.\a)", false, false},
        {LR"(\\?\UNC\.\share\a)", false, false},
        {LR"(\\server\ipc$)", false, false},
        {LR"(\\server)", false, false},
    };
    for (const auto& [path, isFull, isSymbolicLinkTarget] : cases) {
        EXPECT_EQ(IsFullFilePath(path), isFull) << testing::PrintToString(path);
        EXPECT_EQ(IsSymbolicLinkTarget(path), isSymbolicLinkTarget) << testing::PrintToString(path);
    }
}

TEST(TakeOwnership, StopsAtTheFirstFailureShowsItAndTheNewOwners) {
    for (const bool elevates : {false, true})
        for (const bool exists : {false, true}) {
            QVHost::HostOptions options;
            options.canElevate = elevates;
            options.answers = {L"ok"};
            ServicesOfHost host(QV_HOST_PROGRAM, options);
            int refreshCount = 0;
            FakePanel panel([&] { return host.State().selection; }, [&](const std::wstring&) { ++refreshCount; });
            host.State().panel = &panel;
            const TemporaryFolder folder;
            QVHost::FileItem& item = host.Select(folder.Write(L"a", "x"));
            item.StoreProperty(1, L"somebody");
            host.Select(exists ? folder.Write(L"b", "x") : folder / L"none");
            host.Select(folder.Write(L"c", "x"));
            g_newOwners = 0;
            EXPECT_EQ(RunTakeOwnership(host.Services(), 30300), 1u);
            EXPECT_EQ(g_newOwners, elevates ? 0 : exists ? 3 : 2);
            const bool failsElsewhere = elevates && !exists;
            EXPECT_EQ(refreshCount, failsElsewhere ? 0 : 1) << elevates << exists << host.Notes();
            SDK::StoredPropertyValue value = {};
            EXPECT_EQ(item.QueryProperty(1, 1, &value) == 0, !failsElsewhere) << "the host computes the owner anew";
            EXPECT_EQ(Holds(host.Notes(), "Access rights: The ownership could not be taken (error 2)."), !exists);
            const auto isTold = [&](const wchar_t* name) {
                return Holds(host.Log(), "[Security] - Ownership taken : " + Win32::ToUtf8(folder / name));
            };
            EXPECT_EQ(isTold(L"a"), !failsElsewhere) << host.Log();
            EXPECT_EQ(isTold(L"c"), exists) << host.Log();
        }
}

TEST(SecurityWork, TellsADeniedAccessInWordsAndOnce) {
    QVHost::HostOptions options;
    options.answers = {L"ok"};
    ServicesOfHost host(QV_HOST_PROGRAM, options);
    for (const wchar_t* path : {L"C:\\1", L"C:\\2"}) host.Select(path);
    const SecurityWork work = {.requestId = 1,
                               .failureText = SDK::MakeTextId(126, 'e'),
                               .done = L"Changed",
                               .writeRequest = [](SDK::IRequestWriter&) {},
                               .change = [](const std::wstring&) { return uint32_t{ERROR_ACCESS_DENIED}; }};
    EXPECT_TRUE(RunSecurityWork(host.Services(), GatherSecuritySelection(host.Services()), work));
    EXPECT_EQ(host.Notes().find("[question]"), host.Notes().rfind("[question]")) << "one message";
    EXPECT_TRUE(Holds(host.Notes(), "Access denied: Access is denied. Administrator rights may be needed."));
}

TEST(GrantAndResetAccess, ChangeTheItemsBeforeTheOneThatFailsAndAskBeforeTheyTakeBack) {
    EXPECT_EQ(CommandRunner().Run({L"command", L"30311"}).status, 0) << "nothing is selected, nothing is offered";
    for (const Words& more : {Words(), {L"--can-elevate"}}) {
        const CommandRunner runner;
        const std::wstring first = runner.Write(L"a", "x"), third = runner.Write(L"c", "x");
        // Written like this, a path has no drive in front and is refused.
        const std::wstring second = L"\\\\?\\" + runner.Write(L"b", "x");
        ASSERT_FALSE(IsOpenToAll(AccessListOf(first).data()));
        const HostRun granted =
            runner.RunDriven(Joined({L"command", L"30311", first, second, third}, more), [](DialogDriver& driver) {
                const DrivenDialog dialog = driver.WaitFor(kGrantTitle);
                EXPECT_EQ(dialog.Text(IDC_ACCESS_ACCOUNT), Security::CurrentAccountName());
                EXPECT_EQ(dialog.Selected(IDC_ACCESS_RIGHTS), 0);
                dialog.Enter(IDC_ACCESS_ACCOUNT, L"no such account");
                dialog.Press(IDOK);
                EXPECT_EQ(dialog.Text(IDC_REASON), L"There is no user or group of this name.");
                dialog.Enter(IDC_ACCESS_ACCOUNT, L"");
                EXPECT_TRUE(!dialog.IsEnabled(IDOK) && dialog.Text(IDC_REASON).empty());
                dialog.Enter(IDC_ACCESS_ACCOUNT, L" Everyone ");
                dialog.Select(IDC_ACCESS_RIGHTS, 3);
                dialog.PressAndClose(IDOK);
            });
        EXPECT_TRUE(Holds(granted.error, "The access could not be granted (error "));
        EXPECT_FALSE(IsOpenToAll(AccessListOf(third).data()));
        const std::regex before("Before : O:S-[-0-9]+.*D:.*\\(.* : .*\\\\[ab]\n");
        const std::sregex_iterator told(granted.out.begin(), granted.out.end(), before);
        // Told by the process that changes them and, where that is another, by this one too.
        EXPECT_EQ(std::distance(told, std::sregex_iterator()), more.empty() ? 2 : 4) << granted.out;
        EXPECT_TRUE(granted.out.starts_with("[Security] - Before : ")) << "told before anything is changed";
        const Words reset = Joined({L"command", L"30310", first}, more);
        EXPECT_TRUE(Holds(runner.Run(reset, {L"no"}).error, "Reset access rights"));
        EXPECT_TRUE(IsOpenToAll(AccessListOf(first).data()));
        const HostRun run = runner.Run(reset, {L"yes"});
        EXPECT_EQ(run.status, 0) << run.error;
        EXPECT_FALSE(IsOpenToAll(AccessListOf(first).data()));
    }
}

TEST(AccountOfSelection, IsDomainAndName) {
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {L"WinNT://OFFICE/editor", L"OFFICE\\editor"},
        {L"WinNT://WORKGROUP/DESK/editor,user", L"DESK\\editor"},
        {L"WinNT://Everyone", L"Everyone"},
        {L"WinNT://", L"name"},
        {L"LDAP://CN=editor,DC=office", L"name"},
        {L"", L"name"},
    };
    for (const auto& [path, account] : cases) EXPECT_EQ(AccountOfSelection(path, L"name"), account);
}

TEST(ChangeAccessDlg, TakesTheAccountThatWasFound) {
    std::wstring picked;
    FileUtils::ChangeAccessDlg dialog([](SDK::TextId) { return L"text"; }, L"",
                                      [](const std::wstring&) { return true; },
                                      [&](HWND) { return std::exchange(picked, L"D\\found"); });
    std::optional<FileUtils::AccessChoice> choice;
    const auto person = [](const DrivenDialog& open) {
        open.Press(IDC_ACCESS_FIND);
        EXPECT_FALSE(open.IsEnabled(IDOK)) << "cancelled";
        open.Press(IDC_ACCESS_FIND);
        open.Select(IDC_ACCESS_RIGHTS, 2);
        open.PressAndClose(IDOK);
    };
    WhileShown(L"Add File Access", person, [&] { choice = dialog.Show(nullptr); });
    ASSERT_TRUE(choice);
    EXPECT_EQ(choice->account, L"D\\found");
    EXPECT_EQ(choice->mask, 0x1301BFu);
}

}  // namespace
