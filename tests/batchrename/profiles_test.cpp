#include "batchrename/profiles.h"

#include "support/services_of_host.h"

namespace {

using namespace BatchRename;
using namespace QVTest;

constexpr wchar_t kFile[] = L"BatchRenameProfiles.xml";

/// A host without a library, and the profiles in its configuration folder.
struct ProfilesHost : ServicesOfHost {
    ProfilesHost() : ServicesOfHost(QV_HOST_PROGRAM) {}
    /// A store that has read the file, with one more profile.
    ProfileStore StoreWith(const RenameProfile& profile) {
        ProfileStore store;
        EXPECT_TRUE(store.Load(&Services()));
        store.Add(profile);
        return store;
    }
    std::vector<RenameProfile> Profiles() {
        ProfileStore store;
        store.Load(&Services());
        return store.Profiles();
    }
    std::string File() const { return Settings().Read(kFile); }
};

RenameProfile Full() {
    RenameProfile profile;
    profile.name = L" a \"b\" & <c>\t\xD83D\xDE00 ";
    profile.nameTemplate = L"  [N] & \"[C]\" <\x00E4> ";
    profile.extensionTemplate = L" ";
    profile.counter = {-5, 10, 3};
    profile.caseValue = RenameOption::CapitaliseWords;
    profile.searchOptions = RenameOption::RegularExpression | RenameOption::CaseSensitive | RenameOption::ScopeName;
    profile.items = {{L"1", L"", false}, {L" a\tb\r\nc\n", L"'\"&<>"}, {L"", L" "}, {L"x", L"", false}, {L"y", L""}};
    return profile;
}

TEST(ProfileStore, GivesBackExactlyWhatWasSaved) {
    ProfilesHost host;
    RenameProfile plain;
    plain.name = L"plain";
    ProfileStore store = host.StoreWith(Full());
    store.Add(plain);
    store.Add(plain);
    ASSERT_TRUE(store.Save() && store.WasWritten()) << host.Log();
    EXPECT_EQ(host.Profiles(), (std::vector{Full(), plain, plain})) << host.File();
    EXPECT_EQ(store.Delete(L"plain"), 2u);
    EXPECT_EQ(store.Delete(L"Plain"), 0u);
    EXPECT_TRUE(store.Save());
    EXPECT_EQ(host.Profiles(), std::vector{Full()});
    EXPECT_EQ(host.Settings().List(), std::vector<std::wstring>{kFile});
    // What another store has saved meanwhile stays.
    ProfileStore other = host.StoreWith(plain);
    store.Add(plain);
    store.Delete(Full().name);
    EXPECT_TRUE(other.Save() && store.Save());
    EXPECT_EQ(host.Profiles(), (std::vector{plain, plain}));
}

// Other versions read the file: its names, odd spellings included, stay as they are.
TEST(ProfileStore, KeepsTheLayoutOfTheFile) {
    ProfilesHost host;
    RenameProfile profile;
    profile.name = L"p";
    profile.nameTemplate = L"[N]";
    profile.searchOptions = RenameOption::ScopeExtension | RenameOption::ReplaceAll;
    profile.items = {{L"off", L"", false}, {L"a", L"b"}};
    host.StoreWith(profile).Save();
    std::string text = host.File();
    std::erase_if(text, [](char each) { return each == '\n' || each == '\r' || each == '\t'; });
    EXPECT_EQ(text,
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?><BatchRename><profile name=\"p\"><filename>[N]</filename>"
              "<extension/><counter startat=\"0\" stepby=\"0\" digits=\"0\"/><case value=\"0\"/>"
              "<searchandreplace replaceall=\"1\" casesensative=\"0\" regex=\"0\" replaceparts=\"3\">"
              "<item find=\"a\" replacewith=\"b\"/><switchedoff place=\"0\" find=\"off\" "
              "replacewith=\"\"/></searchandreplace></profile></BatchRename>");
    // The scope of the extension alone comes back as both: on purpose.
    EXPECT_EQ(host.Profiles().at(0).searchOptions, RenameOption::ScopeBoth | RenameOption::ReplaceAll);
}

TEST(ProfileStore, ReadsWhatIsThere) {
    ProfilesHost host;
    host.Settings().Write(
        kFile,
        "<BatchRename><other/><profile><filename>lost</filename></profile><profile name='b'>"
        "<counter startat='x' digits='4'/><searchandreplace replaceall='2' regex='yes' casesensative='1'"
        " replaceparts='9'><item/><item find='f'/></searchandreplace></profile></BatchRename>");
    const std::vector<RenameProfile> profiles = host.Profiles();
    ASSERT_EQ(profiles.size(), 2u);
    EXPECT_EQ(profiles[0], RenameProfile());
    EXPECT_EQ(profiles[1].counter, (CounterSettings{0, 0, 4}));
    EXPECT_EQ(profiles[1].searchOptions, RenameOption::CaseSensitive | RenameOption::ScopeBoth);
    EXPECT_EQ(profiles[1].items, (SearchAndReplaceItems{{L"", L""}, {L"f", L""}}));
}

TEST(ProfileStore, KeepsAFileAsideThatItCannotRead) {
    for (const char* damaged : {"<BatchRename><profile name='a'>", "", "no document"}) {
        ProfilesHost host;
        host.Settings().Write(kFile, damaged);
        ProfileStore store = host.StoreWith(Full());
        EXPECT_EQ(store.Profiles().size(), 1u);
        EXPECT_EQ(host.Log().find("kept as"), std::string::npos) << "not before there is something to write";
        EXPECT_TRUE(store.Save());
        EXPECT_EQ(host.Settings().Read(L"BatchRenameProfiles.xml.damaged"), damaged);
        EXPECT_NE(host.Log().find("kept as"), std::string::npos);
        EXPECT_EQ(host.Profiles().size(), 1u);
    }
}

TEST(ProfileStore, LeavesTheFileAloneWhenAProfileCannotBeWritten) {
    ProfilesHost host;
    ProfileStore store = host.StoreWith(Full());
    store.Save();
    const std::string before = host.File();
    RenameProfile bad;
    bad.name = L"a\x01";
    store.Add(bad);
    EXPECT_TRUE(store.Save());
    EXPECT_FALSE(store.WasWritten());
    EXPECT_EQ(host.File(), before);
    ProfileStore none;
    EXPECT_FALSE(none.Load(nullptr) || none.Save());
}

}  // namespace
