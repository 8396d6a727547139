// successor_test.cpp - what a file is stays, on systems that have more of it than the test platform: rights,
// attributes, streams and links are answered by replaced calls, or made by this platform's own commands.
#include <random>

#include "support/replaced_imports.h"
#include "support/temporary_folder.h"
#include "textio/replace_file.h"
#include "win32/path.h"

#include <winioctl.h>

using namespace QVUtils;
using namespace QVTest;

namespace {

using Bytes = std::vector<std::byte>;

void WriteNew(DataWriter& writer) {
    writer.Write("new", 3);
}

uint32_t ErrorOf(const ReplaceRequest& request, const WriteContent& write, const Win32::FileState& original) {
    try {
        return ReplaceFileContent(request, write, original);
    } catch (const QVUtilsException& failure) {
        return failure.GetErrorCode();
    }
}

ReplacedImport Replace(const char* name, auto* function) {
    return {GetModuleHandleW(nullptr), name, reinterpret_cast<void*>(function)};
}
template <auto* function>
auto Real(const char* name) {
    const auto address = GetProcAddress(GetModuleHandleW(L"kernel32"), name);
    return reinterpret_cast<decltype(function)>(reinterpret_cast<void*>(address));
}

// A system with rights: of each file by its number, and of new files.
std::map<uint64_t, Bytes> g_rights;
Bytes g_inherited;
bool g_refusesLists = false;
bool g_pretends = false;  // refuses, and says that it does not
bool g_refusesOwner = false;

Bytes& RightsOf(HANDLE file) {
    Win32::FileStamp stamp;
    Win32::GetStamp(file, stamp);
    return g_rights.try_emplace(stamp.index, g_inherited).first->second;
}

BOOL WINAPI GetRights(HANDLE file, SECURITY_INFORMATION, void* descriptor, DWORD capacity, DWORD* size) {
    const Bytes& rights = RightsOf(file);
    *size = static_cast<DWORD>(rights.size());
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return capacity >= rights.size() && memcpy(descriptor, rights.data(), rights.size());
}

/// `before` with the parts of `given` that `information` names.
Bytes Merged(void* before, void* given, SECURITY_INFORMATION information) {
    const auto from = [&](SECURITY_INFORMATION part) { return information & part ? given : before; };
    BOOL isPresent = FALSE;
    BOOL isDefault = FALSE;
    PSID sid = nullptr;
    ACL* list = nullptr;
    SECURITY_DESCRIPTOR merged = {};
    InitializeSecurityDescriptor(&merged, SECURITY_DESCRIPTOR_REVISION);
    GetSecurityDescriptorOwner(from(OWNER_SECURITY_INFORMATION), &sid, &isDefault);
    SetSecurityDescriptorOwner(&merged, sid, FALSE);
    GetSecurityDescriptorGroup(from(GROUP_SECURITY_INFORMATION), &sid, &isDefault);
    SetSecurityDescriptorGroup(&merged, sid, FALSE);
    GetSecurityDescriptorSacl(from(LABEL_SECURITY_INFORMATION), &isPresent, &list, &isDefault);
    SetSecurityDescriptorSacl(&merged, isPresent, list, FALSE);
    void* const source = from(DACL_SECURITY_INFORMATION);
    GetSecurityDescriptorDacl(source, &isPresent, &list, &isDefault);
    SetSecurityDescriptorDacl(&merged, isPresent, list, FALSE);
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD number = 0;
    GetSecurityDescriptorControl(source, &control, &number);
    const bool keepsMark = source == before || (control & SE_DACL_AUTO_INHERIT_REQ);
    if (!keepsMark) control &= ~SE_DACL_AUTO_INHERITED;
    constexpr SECURITY_DESCRIPTOR_CONTROL kKept = SE_DACL_PROTECTED | SE_DACL_AUTO_INHERITED;
    SetSecurityDescriptorControl(&merged, kKept, control & kKept);
    Bytes bytes(4096);
    number = static_cast<DWORD>(bytes.size());
    EXPECT_TRUE(MakeSelfRelativeSD(&merged, bytes.data(), &number));
    bytes.resize(GetSecurityDescriptorLength(bytes.data()));
    return bytes;
}

BOOL WINAPI SetRights(HANDLE file, SECURITY_INFORMATION information, void* descriptor) {
    const bool isOwner = information & (OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION);
    SetLastError(ERROR_ACCESS_DENIED);
    if (isOwner ? g_refusesOwner : g_refusesLists) return g_pretends;
    Bytes& rights = RightsOf(file);
    rights = Merged(rights.data(), descriptor, information);
    return TRUE;
}

/// Explicit, inherited, protected, with denials, without a list, with an empty one, with a label.
Bytes RandomRights(std::mt19937& random) {
    const auto one = [&](auto&&... texts) {
        const std::wstring all[] = {texts...};
        return all[random() % std::size(all)];
    };
    std::wstring text = L"O:" + one(L"BA", L"SY") + L"G:" + one(L"BA", L"BU") + L"D:";
    const size_t count = random() % 6;
    text += count == 5 ? L"NO_ACCESS_CONTROL" : one(L"", L"P", L"AI", L"PAI");
    for (size_t entry = 0; count < 5 && entry < count; ++entry)
        text += L"(" + one(L"A", L"D") + one(L";;", L";ID;") + one(L"FA", L"FR", L"0x1200a9", L"SD") + L";;;" +
                one(L"BA", L"WD", L"BU", L"AU") + L")";
    text += one(L"", L"", L"S:(ML;;NW;;;LW)");
    PSECURITY_DESCRIPTOR raw = nullptr;
    EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(text.c_str(), SDDL_REVISION_1, &raw, nullptr));
    const Win32::LocalMemory descriptor(raw);
    return Merged(raw, raw, 0);
}

std::wstring ListsOf(Bytes rights) {
    wchar_t* text = nullptr;
    EXPECT_TRUE(ConvertSecurityDescriptorToStringSecurityDescriptorW(
        rights.data(), SDDL_REVISION_1, DACL_SECURITY_INFORMATION | LABEL_SECURITY_INFORMATION, &text, nullptr));
    const Win32::LocalMemory owner(text);
    return text ? text : L"";
}
bool HaveSameLists(const Bytes& left, const Bytes& right) {
    return ListsOf(left) == ListsOf(right);
}

/// The system's replacement, which leaves the file with what its folder hands down.
BOOL WINAPI ReplaceAndWiden(LPCWSTR target, LPCWSTR from, LPCWSTR backup, DWORD flags, LPVOID one, LPVOID two) {
    if (!Real<&ReplaceFileW>("ReplaceFileW")(target, from, backup, flags, one, two)) return FALSE;
    g_rights[StateOf(target).stamp.index] = g_inherited;
    return TRUE;
}

}  // namespace

TEST(Successor, HasTheRightsOfTheOriginalToTheLastBit) {
    const auto get = Replace("GetKernelObjectSecurity", GetRights);
    const auto set = Replace("SetKernelObjectSecurity", SetRights);
    const auto replace = Replace("ReplaceFileW", ReplaceAndWiden);
    std::mt19937 random(20);
    for (int round = 0; round < 200; ++round) {
        const TemporaryFolder folder;
        const std::wstring path = folder.Write(L"a", "old");
        g_rights.clear();
        g_inherited = RandomRights(random);
        g_refusesLists = random() % 5 == 0;
        g_refusesOwner = random() % 3 == 0;
        g_pretends = random() % 2 == 0;
        Win32::FileState original = StateOf(path);
        const Bytes wanted = RandomRights(random);
        g_rights[original.stamp.index] = original.rights = wanted;
        if (random() % 4 == 0) original.attributes |= FILE_ATTRIBUTE_COMPRESSED;  // the system is asked first
        const auto look = [&](DataWriter& writer) {
            WriteNew(writer);
            EXPECT_TRUE(HaveSameLists(StateOf(folder / folder.List().back()).rights, wanted));
        };
        const ReplaceRequest request = {.target = path, .keepBackup = round % 2 == 0, .dropBackup = round % 2 != 0};
        const uint32_t error = ErrorOf(request, look, original);
        const bool isLike = HaveSameLists(g_inherited, wanted);
        EXPECT_EQ(error != 0, g_refusesLists && !isLike) << round << ", error " << error;
        EXPECT_EQ(folder.Read(L"a"), error ? "old" : "new");
        EXPECT_TRUE(HaveSameLists(StateOf(path).rights, wanted)) << round;
        EXPECT_TRUE(error || g_refusesOwner || StateOf(path).rights == wanted) << round;
        EXPECT_TRUE(error || !request.keepBackup || StateOf(path + L".bak").rights == wanted) << round;
    }
}

namespace {

FILE_BASIC_INFO g_basic = {};
USHORT g_compression = 0;
std::wstring g_moved;

BOOL WINAPI SetInformation(HANDLE file, FILE_INFO_BY_HANDLE_CLASS kind, void* information, DWORD size) {
    if (kind == FileBasicInfo) memcpy(&g_basic, information, sizeof(g_basic));
    return Real<&SetFileInformationByHandle>("SetFileInformationByHandle")(file, kind, information, size);
}
BOOL WINAPI Control(HANDLE, DWORD code, void* in, DWORD, void*, DWORD, DWORD*, OVERLAPPED*) {
    if (code == FSCTL_SET_COMPRESSION) memcpy(&g_compression, in, sizeof(g_compression));
    return TRUE;
}
BOOL WINAPI Refuse(LPCWSTR, LPCWSTR, LPCWSTR, DWORD, LPVOID, LPVOID) {
    SetLastError(ERROR_NOT_SUPPORTED);
    return FALSE;
}
BOOL WINAPI MoveAsideOnly(LPCWSTR target, LPCWSTR, LPCWSTR backup, DWORD, LPVOID, LPVOID) {
    EXPECT_TRUE(MoveFileExW(target, backup, MOVEFILE_REPLACE_EXISTING));
    SetLastError(ERROR_UNABLE_TO_MOVE_REPLACEMENT_2);
    return FALSE;
}
BOOL WINAPI SaveFirst(LPCWSTR target, LPCWSTR from, LPCWSTR backup, DWORD flags, LPVOID one, LPVOID two) {
    {
        const Win32::FileHandle other(CreateFileW(target, FILE_APPEND_DATA, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        DWORD size = 0;
        EXPECT_TRUE(WriteFile(other.Get(), "+", 1, &size, nullptr));
    }
    return Real<&ReplaceFileW>("ReplaceFileW")(target, from, backup, flags, one, two);
}

}  // namespace

TEST(Successor, OfAFileThatTheSystemReplacesIsMadeByHandWhereItRefuses) {
    const auto real = Real<&ReplaceFileW>("ReplaceFileW");
    const struct {
        const char* why;
        decltype(&ReplaceFileW) replace;
        uint32_t error;
        const char* content;
        const char* backup;
    } cases[] = {
        {"replaced", real, 0, "new", "old"},
        {"refused", Refuse, 0, "new", "old"},
        {"ended half way", MoveAsideOnly, 0, "new", "old"},
        {"saved by another program meanwhile", SaveFirst, ErrorCode::ReadFault, "old+", nullptr},
    };
    for (const auto& [why, function, error, content, backup] : cases)
        for (const bool keeps : {true, false}) {
            const TemporaryFolder folder;
            const std::wstring path = folder.Write(L"a", "old");
            Contents expected = {{L"a", content}, {L"a.bak", "other's"}};
            folder.Write(L"a.bak", "other's");
            if (keeps && backup) expected[L"a_(0002).bak"] = backup;
            Win32::FileState original = StateOf(path);
            original.attributes |= FILE_ATTRIBUTE_COMPRESSED;
            g_compression = 0;
            const auto replace = Replace("ReplaceFileW", function);
            const auto control = Replace("DeviceIoControl", Control);
            EXPECT_EQ(ErrorOf({path, false, keeps, !keeps}, WriteNew, original), error) << why;
            EXPECT_EQ(folder.ReadAll(), expected) << why;
            EXPECT_EQ(g_compression, function == Refuse ? COMPRESSION_FORMAT_DEFAULT : 0) << why;
        }
}

TEST(Successor, HasAttributesAndCreationTimeOfTheOriginal) {
    const auto set = Replace("SetFileInformationByHandle", SetInformation);
    const TemporaryFolder folder;
    const std::wstring path = folder.Write(L"a", "old");
    Win32::FileState original = StateOf(path);
    original.creationTime -= 10'000'000;
    original.attributes = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED | FILE_ATTRIBUTE_READONLY;
    EXPECT_EQ(ErrorOf({path, false, true, false}, WriteNew, original), 0u);
    EXPECT_EQ(g_basic.CreationTime.QuadPart, original.creationTime);
    EXPECT_EQ(g_basic.FileAttributes, original.attributes);
}

/// Files of killed runs go; those of other programs, and one that is being written, stay.
TEST(Successor, LeftoversGoWhenNobodyHoldsThem) {
    const TemporaryFolder folder;
    const auto write = [&](const std::wstring& path) { return folder.Write(path.substr(path.rfind(L'\\') + 1), "x"); };
    const std::wstring left = write(Win32::TemporaryNameBeside(folder / L"a"));
    SetFileAttributesW(left.c_str(), FILE_ATTRIBUTE_READONLY);
    const std::wstring strange = write(L"\\~qv" + std::wstring(32, L'0') + L".tmp");
    const std::wstring living = Win32::TemporaryNameBeside(folder / L"a");
    Win32::Successor held = Win32::CreateSuccessor(living, StateOf(strange));
    ASSERT_TRUE(held.file);
    Win32::RemoveLeftovers(folder.Path());
    EXPECT_FALSE(Win32::Exists(left));
    EXPECT_TRUE(Win32::Exists(strange));
    held.file.reset();
    EXPECT_TRUE(Win32::Exists(living));
    EXPECT_EQ(Win32::CreateSuccessor(strange, StateOf(strange)).error, uint32_t{ERROR_FILE_EXISTS});
}

namespace {

/// Runs a line of this platform's own shell in the folder. Its exit status, "" on a platform without one.
std::string RunShell(const TemporaryFolder& folder, const std::wstring& line) {
    const TemporaryFolder answer;
    const std::wstring place = L"../" + std::wstring(Win32::FileNameOf(answer.Path()));
    std::wstring arguments =
        L"sh -c \"( " + line + L" ); echo $? > " + place + L"/status; mv " + place + L"/status " + place + L"/done\"";
    const HANDLE change = FindFirstChangeNotificationW(answer.Path().c_str(), FALSE, FILE_NOTIFY_CHANGE_FILE_NAME);
    STARTUPINFOW start = {};
    start.cb = sizeof(start);
    PROCESS_INFORMATION started = {};
    if (!CreateProcessW(L"\\\\?\\unix\\bin\\sh", arguments.data(), nullptr, nullptr, FALSE, 0, nullptr,
                        folder.Path().c_str(), &start, &started))
        return {};
    // Nothing of it can be waited for, or is to be closed.
    while (!Win32::Exists(answer / L"done")) {
        WaitForSingleObject(change, INFINITE);
        FindNextChangeNotification(change);
    }
    FindCloseChangeNotification(change);
    return answer.Read(L"done");
}

}  // namespace

TEST(Successor, NeverLetsMoreUsersInThanTheOriginal) {
    for (const wchar_t* mode : {L"400", L"600", L"640", L"755"})
        for (const wchar_t* folderMode : {L"700", L"755", L"777"}) {
            const TemporaryFolder folder;
            const std::wstring path = folder.Write(L"a", "old");
            const std::wstring prepare = std::wstring(L"chmod ") + mode + L" a; chmod " + folderMode + L" .";
            if (RunShell(folder, prepare).empty()) GTEST_SKIP() << "no platform with modes";
            const auto narrow = [&](const std::wstring& names) {
                return L"for f in " + names + L"; do test $((0$(stat -c %a $f) & ~0" + mode +
                       L")) -eq 0 || exit 1; done";
            };
            const auto look = [&](DataWriter& writer) {
                WriteNew(writer);
                EXPECT_EQ(RunShell(folder, narrow(L"~qv*")), "0\n") << mode;
            };
            EXPECT_EQ(ErrorOf({path, false, true, false}, look, StateOf(path)), 0u);
            EXPECT_EQ(RunShell(folder, narrow(L"a a.bak")), "0\n") << mode;
        }
}

TEST(Successor, OfALinksTargetTakesItsPlaceAndTheLinkStays) {
    for (const ReplaceRequest& way : {ReplaceRequest{L"", true}, ReplaceRequest{L"", false, true}}) {
        const TemporaryFolder folder;
        if (RunShell(folder, L"mkdir sub; echo old > sub/real; ln -s sub/real link").empty()) GTEST_SKIP();
        ReplaceRequest request = way;
        request.target = folder / L"link";
        EXPECT_EQ(ReplaceFileContent(request, WriteNew), 0u);
        EXPECT_EQ(RunShell(folder, L"test -L link && test $(cat sub/real) = new"), "0\n");
        EXPECT_EQ(Win32::Exists(folder / L"sub\\real.bak"), way.keepBackup);
        EXPECT_EQ(folder.List(), (std::vector<std::wstring>{L"link", L"sub"}));
        RunShell(folder, L"rm link");  // which the system here would follow
    }
}
