#include "host/rename/rename_rows.h"

#include "host_runner.h"
#include "sdk/owners.h"
#include "support/services_of_host.h"
#include "win32/windows.h"

namespace {

using namespace QVTest;

// The order of chains and circles is held by the tests of the batch renamer's run, which does it.
TEST(RenameRows, LetRowsTakeEachOthersNamesAndReportEachError) {
    const struct {
        const wchar_t *from, *to;
        uint32_t error;
    } cases[] = {
        {L"chain1", L"chain2", 0}, {L"chain2", L"chain3", 0}, {L"wall1", L"wall2", 183}, {L"two1", L"both", 183},
        {L"two2", L"both", 183},   {L"case", L"CASE", 0},     {L"out", L"b\\c", 123},    {L"none", L"", 123},
        {L"odd", L"c:d", 123},     {L"gone", L"c", 2},        {L"long", nullptr, 206},
    };
    ServicesOfHost host(BesideThisProgram(L"qvhost.exe"));
    const Quorvane::SDK::AcquiredService<Quorvane::SDK::IFileOperations> files(
        host.Services(), Quorvane::SDK::ServiceNumber::FileOperations);
    const TemporaryFolder folder;
    folder.Write(L"wall2", "wall2");
    Contents expected = folder.ReadAll();
    std::vector<QVHost::RenameRow> rows;
    for (const auto& c : cases) {
        const std::wstring from = c.from, to = c.to ? c.to : std::wstring(256, L'n');
        const std::string content(from.begin(), from.end());
        if (c.error != ERROR_FILE_NOT_FOUND) folder.Write(from, content);
        if (c.error != ERROR_FILE_NOT_FOUND) expected[c.error ? from : to] = content;
        rows.push_back({folder / from, to, 0, {}});
    }
    RenameRows(rows, *files.Get());
    for (size_t at = 0; at < rows.size(); ++at) EXPECT_EQ(rows[at].error, cases[at].error) << at;
    EXPECT_EQ(folder.ReadAll(), expected);
}

}  // namespace
