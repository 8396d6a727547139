#include "security/privilege.h"

#include "security/enabled_privileges.h"

namespace {

using QVTest::IsEnabled;
using Security::ScopedPrivilege;

TEST(ScopedPrivilege, LastsAsLongAsAnyObjectNeedsIt) {
    ASSERT_FALSE(IsEnabled(SE_TAKE_OWNERSHIP_NAME));
    {
        ScopedPrivilege first(SE_TAKE_OWNERSHIP_NAME);
        EXPECT_TRUE(first.Succeeded());
        EXPECT_TRUE(first.HasChangedToken());
        { const ScopedPrivilege second(SE_TAKE_OWNERSHIP_NAME); }
        EXPECT_TRUE(IsEnabled(SE_TAKE_OWNERSHIP_NAME)) << "the second object has not taken it away";
    }
    EXPECT_FALSE(IsEnabled(SE_TAKE_OWNERSHIP_NAME));
    { EXPECT_FALSE(ScopedPrivilege(SE_CHANGE_NOTIFY_NAME).HasChangedToken()); }
    EXPECT_TRUE(IsEnabled(SE_CHANGE_NOTIFY_NAME)) << "it was enabled before";
}

TEST(ScopedPrivilege, TellsWhyItIsNotThere) {
    const ScopedPrivilege notHeld(SE_CREATE_TOKEN_NAME);
    EXPECT_FALSE(notHeld.Succeeded());
    EXPECT_EQ(notHeld.Error(), 0u) << "the calls themselves succeed";
    const ScopedPrivilege unknown(L"SeNoSuchPrivilege");
    EXPECT_FALSE(unknown.Succeeded());
    EXPECT_EQ(unknown.Error(), static_cast<uint32_t>(ERROR_NO_SUCH_PRIVILEGE));
    const ScopedPrivilege notAsked(SE_TAKE_OWNERSHIP_NAME, false);
    EXPECT_TRUE(notAsked.Succeeded());
    EXPECT_FALSE(IsEnabled(SE_TAKE_OWNERSHIP_NAME));
}

}  // namespace
