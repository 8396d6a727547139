#include "batchrename/profiles.h"

#include <sstream>

#include <gtest/gtest.h>

#include "host/host_services.h"
#include "host/session.h"
#include "support/temporary_folder.h"

namespace {

using namespace BatchRename;
using namespace QVTest;

/// A host without a library, with a configuration folder of its own.
class ProfilesHost {
public:
    QVHost::HostServices& Services() { return m_services; }
    const TemporaryFolder& Folder() const { return m_folder; }
    std::string Log() {
        m_output.Flush();
        return m_out.str();
    }
    std::string File() const { return m_folder.Read(L"BatchRenameProfiles.xml"); }

private:
    static QVHost::HostOptions Options(const std::wstring& folder) {
        QVHost::HostOptions options;
        options.config = folder;
        return options;
    }

    TemporaryFolder m_folder;
    std::ostringstream m_out;
    std::istringstream m_in;
    QVHost::Output m_output{m_out, m_out, false};
    QVHost::HostEnvironment m_environment = {
        .out = m_out, .error = m_out, .in = m_in, .program = {}, .readAnswer = {}, .progressWatch = {}};
    QVHost::HostState m_state = QVHost::MakeHostState(Options(m_folder.Path()), m_environment, m_output);
    QVHost::HostServices m_services{m_state, 0, {}};
};

RenameProfile Full() {
    RenameProfile profile;
    profile.name = L" a \"b\" & <c>\t\xD83D\xDE00 ";
    profile.nameTemplate = L"  [N] & \"[C]\" <\x00E4> ";
    profile.extensionTemplate = L" ";
    profile.counter = {-5, 10, 3};
    profile.caseValue = RenameOption::CapitaliseWords;
    profile.searchOptions = RenameOption::RegularExpression | RenameOption::CaseSensitive | RenameOption::ScopeName;
    profile.items = {{L" a\tb\r\nc\n", L"'\"&<>"}, {L"", L" "}, {L"x", L""}};
    return profile;
}

TEST(ProfileStore, GivesBackExactlyWhatWasSaved) {
    ProfilesHost host;
    RenameProfile plain;
    plain.name = L"plain";
    ProfileStore store;
    ASSERT_TRUE(store.Load(&host.Services()));
    store.Add(Full());
    store.Add(plain);
    store.Add(plain);
    ASSERT_TRUE(store.Save() && store.WasWritten()) << host.Log();
    ProfileStore reread;
    reread.Load(&host.Services());
    ASSERT_EQ(reread.Profiles().size(), 3u);
    EXPECT_EQ(reread.Profiles()[0], Full()) << host.File();
    EXPECT_EQ(reread.Profiles()[1], plain);
    EXPECT_EQ(reread.Delete(L"plain"), 2u);
    EXPECT_EQ(reread.Delete(L"Plain"), 0u);
    EXPECT_TRUE(reread.Save());
    store.Load(&host.Services());
    EXPECT_EQ(store.Profiles().size(), 1u);
    EXPECT_EQ(host.Folder().List(), std::vector<std::wstring>{L"BatchRenameProfiles.xml"});
}

TEST(ProfileStore, KeepsTheLayoutOfTheFile) {
    ProfilesHost host;
    RenameProfile profile;
    profile.name = L"p";
    profile.nameTemplate = L"[N]";
    profile.searchOptions = RenameOption::ScopeExtension | RenameOption::ReplaceAll;
    profile.items = {{L"a", L"b"}};
    ProfileStore store;
    store.Load(&host.Services());
    store.Add(profile);
    store.Save();
    std::string text = host.File();
    std::erase_if(text, [](char each) { return each == '\n' || each == '\r' || each == '\t'; });
    EXPECT_EQ(text,
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?><BatchRename><profile name=\"p\"><filename>[N]</filename>"
              "<extension/><counter startat=\"0\" stepby=\"0\" digits=\"0\"/><case value=\"0\"/>"
              "<searchandreplace replaceall=\"1\" casesensative=\"0\" regex=\"0\" replaceparts=\"3\">"
              "<item find=\"a\" replacewith=\"b\"/></searchandreplace></profile></BatchRename>");
    // The scope of the extension alone comes back as both: on purpose.
    store.Load(&host.Services());
    EXPECT_EQ(store.Profiles()[0].searchOptions, RenameOption::ScopeBoth | RenameOption::ReplaceAll);
}

TEST(ProfileStore, ReadsWhatIsThere) {
    ProfilesHost host;
    host.Folder().Write(
        L"BatchRenameProfiles.xml",
        "<BatchRename><other/><profile><filename>lost</filename></profile><profile name='b'>"
        "<counter startat='x' digits='4'/><searchandreplace replaceall='2' regex='yes' casesensative='1'"
        " replaceparts='9'><item/><item find='f'/></searchandreplace></profile></BatchRename>");
    ProfileStore store;
    store.Load(&host.Services());
    ASSERT_EQ(store.Profiles().size(), 2u);
    EXPECT_EQ(store.Profiles()[0], RenameProfile());
    EXPECT_EQ(store.Profiles()[1].counter, (CounterSettings{0, 0, 4}));
    EXPECT_EQ(store.Profiles()[1].searchOptions, RenameOption::CaseSensitive | RenameOption::ScopeBoth);
    EXPECT_EQ(store.Profiles()[1].items, (SearchAndReplaceItems{{L"", L""}, {L"f", L""}}));
}

TEST(ProfileStore, KeepsAFileAsideThatItCannotRead) {
    for (const char* damaged : {"<BatchRename><profile name='a'>", "", "no document"}) {
        ProfilesHost host;
        host.Folder().Write(L"BatchRenameProfiles.xml", damaged);
        ProfileStore store;
        EXPECT_TRUE(store.Load(&host.Services()));
        EXPECT_TRUE(store.Profiles().empty());
        EXPECT_EQ(host.Log().find("kept as"), std::string::npos);
        store.Add(Full());
        EXPECT_TRUE(store.Save());
        EXPECT_EQ(host.Folder().Read(L"BatchRenameProfiles.xml.damaged"), damaged);
        EXPECT_NE(host.Log().find("kept as"), std::string::npos);
        store.Load(&host.Services());
        EXPECT_EQ(store.Profiles().size(), 1u);
    }
}

TEST(ProfileStore, LeavesTheFileAloneWhenAProfileCannotBeWritten) {
    ProfilesHost host;
    ProfileStore store;
    store.Load(&host.Services());
    store.Add(Full());
    store.Save();
    const std::string before = host.File();
    RenameProfile bad;
    bad.name = L"a\x01";
    store.Add(bad);
    EXPECT_TRUE(store.Save());
    EXPECT_FALSE(store.WasWritten());
    EXPECT_EQ(host.File(), before);
    ProfileStore none;
    EXPECT_FALSE(none.Load(nullptr));
    EXPECT_FALSE(none.Save());
}

}  // namespace
