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

void WriteSuccessor(DataWriter& writer) {
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

// A system with rights, of each file by its number and of new files: the parts of a descriptor as texts.
using Rights = std::map<SECURITY_INFORMATION, std::wstring>;
constexpr SECURITY_INFORMATION kLists = DACL_SECURITY_INFORMATION | LABEL_SECURITY_INFORMATION;
constexpr wchar_t kLabel[] = L"S:(ML;;NW;;;LW)";
std::map<uint64_t, Rights> g_rights;
Rights g_inherited;
bool g_refusesLists = false;
bool g_refusesOwner = false;
bool g_pretends = false;  // refuses, and says that it does not

Rights& RightsOf(HANDLE file) {
    Win32::FileStamp stamp;
    Win32::GetStamp(file, stamp);
    return g_rights.try_emplace(stamp.index, g_inherited).first->second;
}
Rights& RightsOf(const std::wstring& path) {
    return g_rights.at(StateOf(path).stamp.index);
}

BOOL WINAPI GetRights(HANDLE file, SECURITY_INFORMATION, void* descriptor, DWORD capacity, DWORD* size) {
    std::wstring text;
    for (const auto& part : RightsOf(file)) text += part.second;
    PSECURITY_DESCRIPTOR raw = nullptr;
    EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(text.c_str(), SDDL_REVISION_1, &raw, size));
    const Win32::LocalMemory owner(raw);
    *size = GetSecurityDescriptorLength(raw);
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return capacity >= *size && memcpy(descriptor, raw, *size);
}

std::wstring TextOf(void* descriptor, SECURITY_INFORMATION part) {
    wchar_t* text = nullptr;
    // A label stands in a list of another name, and the system here cannot spell it: there is only one.
    const SECURITY_INFORMATION asked = part == LABEL_SECURITY_INFORMATION ? SACL_SECURITY_INFORMATION : part;
    EXPECT_TRUE(ConvertSecurityDescriptorToStringSecurityDescriptorW(descriptor, 1, asked, &text, nullptr));
    const Win32::LocalMemory owner(text);
    if (asked != part) return text && wcschr(text, L'(') ? kLabel : L"";
    return text ? text : L"";
}

BOOL WINAPI SetRights(HANDLE file, SECURITY_INFORMATION information, void* descriptor) {
    SetLastError(ERROR_ACCESS_DENIED);
    if (information & kLists ? g_refusesLists : g_refusesOwner) return g_pretends;
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    GetSecurityDescriptorControl(descriptor, &control, &revision);
    for (auto& [part, text] : RightsOf(file)) {
        if (!(information & part)) continue;
        text = TextOf(descriptor, part);
        // That entries are inherited is a mark that must be asked for.
        const size_t mark = text.find(control & SE_DACL_AUTO_INHERIT_REQ ? L"AR" : L"AI");
        if (part == DACL_SECURITY_INFORMATION && mark < text.find(L'(')) text.erase(mark, 2);
    }
    return TRUE;
}

/// Explicit, inherited, protected, with denials, without a list, with an empty one, with a label.
Rights RandomRights(std::mt19937& random) {
    const auto one = [&](auto&&... texts) {
        const std::wstring all[] = {texts...};
        return all[random() % std::size(all)];
    };
    const size_t count = random() % 6;
    std::wstring list = L"D:" + (count == 5 ? L"NO_ACCESS_CONTROL" : one(L"", L"P", L"AI", L"PAI"));
    for (size_t entry = 0; count < 5 && entry < count; ++entry)
        list += L"(" + one(L"A", L"D") + one(L";;", L";ID;") + one(L"FA", L"FR", L"0x1200a9", L"SD") + L";;;" +
                one(L"BA", L"WD", L"BU", L"AU") + L")";
    Rights rights = {{OWNER_SECURITY_INFORMATION, L"O:" + one(L"BA", L"SY")},
                     {GROUP_SECURITY_INFORMATION, L"G:" + one(L"BA", L"BU")},
                     {DACL_SECURITY_INFORMATION, list},
                     {LABEL_SECURITY_INFORMATION, one(L"", L"", kLabel)}};
    for (auto& [part, text] : rights) {
        PSECURITY_DESCRIPTOR raw = nullptr;
        ConvertStringSecurityDescriptorToSecurityDescriptorW(text.c_str(), SDDL_REVISION_1, &raw, nullptr);
        const Win32::LocalMemory owner(raw);
        text = raw ? TextOf(raw, part) : text;  // as the system spells it
    }
    return rights;
}

bool HaveSameLists(const Rights& left, const Rights& right) {
    return left.at(DACL_SECURITY_INFORMATION) == right.at(DACL_SECURITY_INFORMATION) &&
           left.at(LABEL_SECURITY_INFORMATION) == right.at(LABEL_SECURITY_INFORMATION);
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
        const Rights wanted = RandomRights(random);
        g_rights[StateOf(path).stamp.index] = wanted;
        Win32::FileState original = StateOf(path);
        if (random() % 4 == 0) original.attributes |= FILE_ATTRIBUTE_COMPRESSED;  // the system is asked first
        const auto look = [&](DataWriter& writer) {
            WriteSuccessor(writer);
            const std::wstring beside = folder / folder.List().back();
            StateOf(beside);
            EXPECT_TRUE(HaveSameLists(RightsOf(beside), wanted));
            const Win32::FileHandle intruder(
                CreateFileW(beside.c_str(), GENERIC_READ, Win32::kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
            EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
        };
        const ReplaceRequest request = {
            .target = folder / L"A", .keepBackup = round % 2 == 0, .dropBackup = round % 2 != 0};
        const uint32_t error = ErrorOf(request, look, original);
        StateOf(path);
        EXPECT_EQ(error != 0, g_refusesLists && !HaveSameLists(g_inherited, wanted)) << round << ", error " << error;
        EXPECT_EQ(folder.Read(L"a"), error ? "old" : "new");
        EXPECT_EQ(folder.List().front(), L"a") << "the name stays as it stands on disk";
        EXPECT_TRUE(g_refusesOwner ? HaveSameLists(RightsOf(path), wanted) : RightsOf(path) == wanted) << round;
        EXPECT_TRUE(error || !request.keepBackup || RightsOf(path + L".bak") == wanted) << round;
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

/// Before anything is moved away from its name, another program does the same with it.
BOOL WINAPI SaveByMovingFirst(LPCWSTR from, LPCWSTR to, DWORD flags) {
    const auto move = Real<&MoveFileExW>("MoveFileExW");
    if (std::wstring_view(to).ends_with(L".bak")) {
        EXPECT_TRUE(move(from, (std::wstring(from) + L".old").c_str(), 0));
        const Win32::FileHandle other(CreateFileW(from, GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
        DWORD size = 0;
        EXPECT_TRUE(WriteFile(other.Get(), "other", 5, &size, nullptr));
    }
    return move(from, to, flags);
}

}  // namespace

TEST(Successor, GivesWayToAFileThatTookTheNameMeanwhile) {
    for (const bool keeps : {true, false}) {
        const TemporaryFolder folder;
        const std::wstring path = folder.Write(L"a", "old");
        const auto move = Replace("MoveFileExW", SaveByMovingFirst);
        EXPECT_EQ(ErrorOf({path, false, keeps, !keeps}, WriteNew, StateOf(path)), ErrorCode::ReadFault);
        EXPECT_EQ(folder.ReadAll(), (Contents{{L"a", "other"}, {L"a.old", "old"}}));
    }
}

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
            EXPECT_EQ(ErrorOf({path, false, keeps, !keeps}, WriteSuccessor, original), error) << why;
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
    EXPECT_EQ(ErrorOf({path, false, true, false}, WriteSuccessor, original), 0u);
    EXPECT_EQ(g_basic.CreationTime.QuadPart, original.creationTime);
    EXPECT_EQ(g_basic.FileAttributes, original.attributes);
}

namespace {

std::string g_order;

BOOL WINAPI Flush(HANDLE file) {
    g_order += "flush ";
    return Real<&FlushFileBuffers>("FlushFileBuffers")(file);
}
BOOL WINAPI Move(LPCWSTR from, LPCWSTR to, DWORD flags) {
    g_order += "move ";
    return Real<&MoveFileExW>("MoveFileExW")(from, to, flags);
}

}  // namespace

TEST(ReplaceRecord, IsFlushedBeforeItTakesItsName) {
    const auto flush = Replace("FlushFileBuffers", Flush);
    const auto move = Replace("MoveFileExW", Move);
    const TemporaryFolder folder;
    for (const char* text : {"new", "another"}) {
        g_order.clear();
        EXPECT_EQ(ReplaceRecord(folder / L"a", text, true), 0u);
        EXPECT_EQ(g_order, "flush move ");
        EXPECT_EQ(folder.ReadAll(), (Contents{{L"a", text}}));
    }
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
    for (const DWORD access : {DWORD{GENERIC_READ}, DWORD{GENERIC_WRITE}}) {
        const Win32::FileHandle other(
            CreateFileW(living.c_str(), access, Win32::kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_FALSE(other) << "nobody sees or changes it before it is whole";
    }
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
                WriteSuccessor(writer);
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
        EXPECT_EQ(ReplaceFileContent(request, WriteSuccessor), 0u);
        EXPECT_EQ(RunShell(folder, L"test -L link && test $(cat sub/real) = new"), "0\n");
        EXPECT_EQ(Win32::Exists(folder / L"sub\\real.bak"), way.keepBackup);
        EXPECT_EQ(folder.List(), (std::vector<std::wstring>{L"link", L"sub"}));
        RunShell(folder, L"rm link");  // which the system here would follow
    }
}

TEST(Successor, OfAFileWhoseNameDiffersInLettersCaseLeavesTheSourceAlone) {
    const TemporaryFolder folder;
    const std::wstring source = folder.Write(L"a", "old");
    const FileDataReader reader(source);
    EXPECT_TRUE(OriginalOf(reader, source, folder / L"A")) << "one file, called by two names";
    if (RunShell(folder, L"echo other > A").empty()) GTEST_SKIP() << "the folder holds one of the two";
    ReplaceFileContent({.target = folder / L"A", .mayOverwrite = true}, WriteNew,
                       OriginalOf(reader, source, folder / L"A"));
    EXPECT_EQ(RunShell(folder, L"test $(cat a)$(cat A) = oldnew"), "0\n");
}
