#include "host/contract/settings_file.h"

#include <sstream>

#include "support/temporary_folder.h"

namespace {

using namespace QVTest;

/// What a run of the host reads, sets under "ext", "s", "text" where `value` is given, and saves.
struct SettingsRun {
    explicit SettingsRun(const std::wstring& path, const wchar_t* value = nullptr) {
        QVHost::Output output(m_out, m_out, false);
        QVHost::SettingsFile file(output, path);
        text = file.Text(L"ext", L"s", L"text");
        isSaved = value && file.SetText(L"ext", L"s", L"text", value) && file.Save();
        said = m_out.str();
    }

    std::optional<std::wstring> text;
    bool isSaved = false;
    std::string said;

private:
    std::ostringstream m_out;
};

TEST(Settings, LastFromRunToRunAndKeepADamagedFileAside) {
    const TemporaryFolder folder;
    const std::wstring path = folder / L"settings.json";
    for (const wchar_t* value : {L"gr\u00FCn \"x\"\n", L""}) {
        EXPECT_TRUE(SettingsRun(path, value).isSaved);
        EXPECT_EQ(SettingsRun(path).text, value);
    }
    {
        const Win32::FileHandle lock(CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_NE(SettingsRun(path, L"y").said.find("stays as it is"), std::string::npos);
    }
    EXPECT_EQ(SettingsRun(path).text, L"") << "a file that cannot be read is left alone";
    for (const char* damaged : {"{ \"half\": ", "[1, 2]"}) {
        folder.Write(L"settings.json", damaged);
        const SettingsRun run(path, L"y");
        EXPECT_EQ(run.text, std::nullopt);
        EXPECT_NE(run.said.find("is damaged; it is kept as"), std::string::npos) << run.said;
    }
    EXPECT_EQ(folder.Read(L"settings.json.damaged"), "{ \"half\": ");
    EXPECT_EQ(folder.Read(L"settings.json.damaged-2"), "[1, 2]");
    EXPECT_EQ(SettingsRun(path).text, L"y");
}

TEST(Settings, OfTwoRunsAtOnceAreAllKept) {
    const TemporaryFolder folder;
    std::ostringstream out;
    QVHost::Output output(out, out, false);
    QVHost::SettingsFile one(output, folder / L"s.json");
    QVHost::SettingsFile other(output, folder / L"s.json");
    for (QVHost::SettingsFile* file : {&one, &other})
        EXPECT_TRUE(file->SetNumber(L"ext", L"s", file == &one ? L"one" : L"other", 1) && file->Save());
    QVHost::SettingsFile both(output, folder / L"s.json");
    EXPECT_TRUE(both.Number(L"ext", L"s", L"one") && both.Number(L"ext", L"s", L"other"));
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
