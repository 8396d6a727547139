#include "host/contract/settings_file.h"

#include <sstream>

#include "host_runner.h"
#include "win32/handle.h"

namespace {

using namespace QVTest;

TEST(Settings, LastFromRunToRun) {
    const HostRunner host;
    EXPECT_EQ(host.Call({L"Settings", L"SET=gr\u00FCn \"x\"\n"}).out, "text <none> number 0\n");
    EXPECT_EQ(host.Call({L"Settings", L"SET="}).out, "text <gr\xC3\xBCn \"x\" > number 1\n");
    EXPECT_EQ(host.Call({L"Settings"}).out, "text <> number 2\n");
    const std::wstring path = host.Folder() / L"config\\settings.json";
    Win32::FileHandle lock(CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_NE(host.Call({L"Settings", L"SET=y"}).error.find("stays as it is"), std::string::npos);
    lock.Reset();
    EXPECT_EQ(host.Call({L"Settings"}).out, "text <> number 2\n") << "a file that cannot be read is left alone";
}

TEST(Settings, KeepADamagedFileAsideAndSayIt) {
    const HostRunner host;
    CreateDirectoryW((host.Folder() / L"config").c_str(), nullptr);
    for (const char* damaged : {"{ \"half\": ", "[1, 2]"}) {
        host.Folder().Write(L"config\\settings.json", damaged);
        const HostRun run = host.Call({L"Settings", L"SET=y"});
        EXPECT_EQ(run.out, "text <none> number 0\n");
        EXPECT_NE(run.error.find("is damaged; it is kept as"), std::string::npos) << run.error;
    }
    EXPECT_EQ(host.Folder().Read(L"config\\settings.json.damaged"), "{ \"half\": ");
    EXPECT_EQ(host.Folder().Read(L"config\\settings.json.damaged-2"), "[1, 2]");
    EXPECT_EQ(host.Call({L"Settings"}).out, "text <y> number 1\n");
}

TEST(Settings, HoldTextsAndNumbersOfTheRightKind) {
    const TemporaryFolder folder;
    const std::wstring path = folder.Write(
        L"s.json", R"({"ext":{"s":{"text":"t","number":5,"minus":-1,"large":4294967296,"half":1.5}},"odd":7})");
    std::ostringstream out;
    QVHost::Output output(out, out, false);
    QVHost::SettingsFile file(output, path);
    EXPECT_EQ(file.Text(L"ext", L"s", L"text"), L"t");
    EXPECT_EQ(file.Number(L"ext", L"s", L"number"), 5u);
    for (const wchar_t* key : {L"minus", L"large", L"half", L"text", L"none"})
        EXPECT_EQ(file.Number(L"ext", L"s", key), std::nullopt);
    EXPECT_EQ(file.Text(L"ext", L"s", L"number"), std::nullopt);
    EXPECT_EQ(file.Text(L"odd", L"s", L"text"), std::nullopt);
    EXPECT_FALSE(file.SetText(L"ext", L"s", L"text", L"\xD800"));
    EXPECT_TRUE(file.SetText(L"odd", L"s", L"text", L"now a section"));
    EXPECT_TRUE(file.Save());
    QVHost::SettingsFile again(output, path);
    EXPECT_EQ(again.Text(L"odd", L"s", L"text"), L"now a section");
    EXPECT_EQ(again.Text(L"ext", L"s", L"text"), L"t");
    EXPECT_EQ(folder.List(), std::vector<std::wstring>{L"s.json"});
}

}  // namespace
