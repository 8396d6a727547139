// The control panel: its menu under every combination of the host's flags, and what opening an item starts.
#include "fileutils/control_panel/control_panel.h"

#include <regex>

#include "fileutils/command_runner.h"

namespace {

using namespace FileUtils;
using QVTest::CommandRunner;

std::ptrdiff_t Count(const std::string& text, const char* expression) {
    const std::regex pattern(expression);
    return std::distance(std::sregex_iterator(text.begin(), text.end(), pattern), {});
}

TEST(ControlPanelMenu, FollowsTheHostsFlags) {
    const CommandRunner runner;
    const std::pair<std::vector<std::wstring>, int> cases[] = {
        {{}, 0},
        {{L"--can-elevate"}, 62},
        {{L"--can-elevate", L"--column-d"}, 58},
        {{L"--can-elevate", L"--column-d", L"--column-e"}, 58},
    };
    for (const auto& [options, items] : cases) {
        const std::string listing = runner.Run(QVTest::Joined({L"menus"}, options)).out;
        EXPECT_EQ(Count(listing, R"(\n +61\d\d )"), items) << listing;
        EXPECT_EQ(Count(listing, "Control panel"), items > 0 ? 1 : 0);
        EXPECT_EQ(Count(listing, "SideShow"), items == 62 ? 1 : 0);
    }
}

std::vector<std::wstring> g_launched;

TEST(OpenControlPanelItem, StartsTheControlPanelWithItsName) {
    const std::pair<uint32_t, std::vector<std::wstring>> cases[] = {
        {61, {L"Control.exe", L"/name Microsoft.FileHistory"}},
        {10, {L"Control.exe", L"/name Microsoft.DefaultLocation"}},
        {26, {L"Control.exe", L"/name Microsoft.iSCSIInitiator"}},
        {0, {}},
        {63, {}},
        {1000, {}},
    };
    for (const auto& [index, launched] : cases) {
        g_launched.clear();
        OpenControlPanelItem(index, [](const wchar_t* program, const wchar_t* words) {
            g_launched = {program, words};
        });
        EXPECT_EQ(g_launched, launched) << index;
    }
}

}  // namespace
