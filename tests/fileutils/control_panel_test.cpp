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
    for (const uint32_t index : {0u, 26u, 63u, 1000u})
        OpenControlPanelItem(index, [](const wchar_t* program, const wchar_t* words) {
            g_launched.insert(g_launched.end(), {program, words});
        });
    EXPECT_EQ(g_launched, (std::vector<std::wstring>{L"Control.exe", L"/name Microsoft.iSCSIInitiator"}));
}

}  // namespace
