#include "host/rename/rename_rows.h"

#include "host_runner.h"
#include "sdk/owners.h"
#include "support/services_of_host.h"
#include "win32/windows.h"

namespace {

using namespace QVTest;
using QVHost::RenameRow;
using Names = std::vector<std::wstring>;

TEST(RenameRows, LetRowsTakeEachOthersNames) {
    const Names three = {L"x", L"a", L"b"};
    const struct {
        const char* why;
        std::vector<std::pair<std::wstring, std::wstring>> renames;
        Names files;  // before: each holds its own name
        Names after;  // names that hold, in this order, the content of `files`
        std::vector<uint32_t> errors;
    } cases[] = {
        {"the name is in use", {{L"a", L"b"}}, {L"a", L"b"}, {L"a", L"b"}, {183}},
        {"a chain, first row first", {{L"a", L"b"}, {L"b", L"c"}}, {L"a", L"b"}, {L"b", L"c"}, {0, 0}},
        {"a chain into a circle", {{L"x", L"a"}, {L"a", L"b"}, {L"b", L"a"}}, three, three, {183, 183, 183}},
        {"a chain against a wall", {{L"a", L"b"}, {L"b", L"c"}}, {L"a", L"b", L"c"}, {L"a", L"b", L"c"}, {183, 183}},
        {"two rows for one name", {{L"a", L"c"}, {L"b", L"c"}}, {L"a", L"b"}, {L"a", L"b"}, {183, 183}},
        {"case alone", {{L"a", L"A"}}, {L"a"}, {L"A"}, {0}},
        {"no file name", {{L"a", L"b\\c"}, {L"b", L"c"}}, {L"a", L"b"}, {L"a", L"c"}, {123, 0}},
        {"a name that cannot be", {{L"a", L""}, {L"b", L"c:d"}}, {L"a", L"b"}, {L"a", L"b"}, {123, 123}},
        {"a name that is too long", {{L"a", std::wstring(256, L'n')}}, {L"a"}, {L"a"}, {206}},
        {"a missing file", {{L"none", L"c"}}, {L"a"}, {L"a"}, {2}},
    };
    ServicesOfHost host(BesideThisProgram(L"qvhost.exe"));
    const Quorvane::SDK::AcquiredService<Quorvane::SDK::IFileOperations> files(
        host.Services(), Quorvane::SDK::ServiceNumber::FileOperations);
    for (const auto& c : cases) {
        const TemporaryFolder folder;
        const auto contentOf = [](const std::wstring& name) { return std::string(name.begin(), name.end()); };
        for (const std::wstring& name : c.files) folder.Write(name, contentOf(name));
        std::vector<RenameRow> rows;
        for (const auto& [from, to] : c.renames) rows.push_back({folder / from, to, 0, {}});
        RenameRows(rows, *files.Get());
        for (size_t at = 0; at < rows.size(); ++at) EXPECT_EQ(rows[at].error, c.errors[at]) << c.why << " row " << at;
        Names expected = c.after;
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(folder.List(), expected) << c.why;
        for (size_t at = 0; at < c.files.size(); ++at)
            EXPECT_EQ(folder.Read(c.after[at]), contentOf(c.files[at])) << c.why;
    }
}

}  // namespace
