// The control panel: its menu under every combination of the host's flags, and what opening an item starts.
#include "fileutils/control_panel.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "fileutils/command_runner.h"

namespace {

using namespace FileUtils;
using QVTest::CommandRun;
using QVTest::CommandRunner;

size_t Count(const std::string& text, const std::string& part) {
    size_t count = 0;
    for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size()) ++count;
    return count;
}

size_t LinesWithCommand(const std::string& listing) {
    size_t count = 0;
    for (const ControlPanelItem& item : ControlPanelItems())
        count += Count(listing, std::to_string(kFirstControlPanelCommand + item.index));
    return count;
}

TEST(ControlPanelMenu, FollowsTheHostsFlags) {
    const CommandRunner runner;
    const struct {
        std::vector<std::wstring> options;
        size_t items;
    } cases[] = {
        {{}, 0},
        {{L"--column-d", L"--column-e"}, 0},
        {{L"--can-elevate"}, 62},
        {{L"--can-elevate", L"--column-e"}, 62},
        {{L"--can-elevate", L"--column-d"}, 58},
        {{L"--can-elevate", L"--column-d", L"--column-e"}, 58},
    };
    for (const auto& c : cases) {
        std::vector<std::wstring> words = {L"menus"};
        words.insert(words.end(), c.options.begin(), c.options.end());
        const std::string listing = runner.Run(words).log;
        EXPECT_EQ(LinesWithCommand(listing), c.items) << listing;
        EXPECT_EQ(Count(listing, "Control panel"), c.items > 0 ? 1u : 0u);
        EXPECT_EQ(Count(listing, "SideShow"), c.items == 62 ? 1u : 0u);
    }
}

TEST(ControlPanelMenu, HasItsCategoriesInOrder) {
    const std::string listing = CommandRunner().Run({L"menus", L"--can-elevate"}).log;
    size_t last = listing.find("Control panel");
    ASSERT_NE(last, std::string::npos) << listing;
    for (const char* text : {"System and Security", "Action Center", "Windows Update", "Network and Internet",
                             "Hardware and sound", "Programs", "Accounts and Family safety", "Ease of Access", "Other",
                             "Biometric Devices", "Default Locations", "Troubleshooting"}) {
        const size_t at = listing.find(text, last);
        EXPECT_NE(at, std::string::npos) << text;
        last = std::max(last, std::min(at, listing.size()));
    }
}

TEST(ControlPanelItems, BelongToACategoryEach) {
    EXPECT_EQ(ControlPanelItems().size(), 62u);
    for (const ControlPanelItem& item : ControlPanelItems())
        EXPECT_EQ(std::ranges::count(ControlPanelCategories(), item.category, &ControlPanelCategory::number), 1)
            << item.index;
}

std::vector<std::wstring> g_launched;

void Record(const wchar_t* program, const wchar_t* arguments) {
    g_launched = {program, arguments};
}

TEST(OpenControlPanelItem, StartsTheControlPanelWithItsName) {
    const struct {
        uint32_t index;
        std::vector<std::wstring> launched;
    } cases[] = {
        {61, {L"Control.exe", L"/name Microsoft.FileHistory"}},
        {10, {L"Control.exe", L"/name Microsoft.DefaultLocation"}},
        {26, {L"Control.exe", L"/name Microsoft.iSCSIInitiator"}},
        {0, {}},
        {63, {}},
        {1000, {}},
    };
    for (const auto& c : cases) {
        g_launched.clear();
        OpenControlPanelItem(c.index, Record);
        EXPECT_EQ(g_launched, c.launched) << c.index;
    }
}

TEST(ControlPanelCommand, IsHandledForEveryIdOfItsRange) {
    const CommandRunner runner;
    for (const wchar_t* id : {L"6100", L"6163", L"7100"}) EXPECT_EQ(runner.Run({L"command", id}).status, 0) << id;
    for (const wchar_t* id : {L"6099", L"7101"}) EXPECT_EQ(runner.Run({L"command", id}).status, 1) << id;
}

}  // namespace
