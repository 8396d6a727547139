// What File Utils registers with a host, seen through the host's own listings, and what its simplest commands do.

#include <regex>

#include "fileutils/command_runner.h"
#include "fileutils/control_panel/control_panel.h"

namespace {

using namespace QVTest;
using Texts = std::vector<std::string>;

Texts AllMatches(const std::string& text, const char* expression) {
    const std::regex pattern(expression);
    Texts found;
    for (auto at = std::sregex_iterator(text.begin(), text.end(), pattern); at != std::sregex_iterator(); ++at)
        found.push_back((*at)[1]);
    return found;
}

TEST(Registration, MenusHoldTheCommandsInTheirOrder) {
    const std::string menus = CommandRunner().Run({L"menus"}).out;
    const Texts expected = {"30000", "30001", "30002", "30010", "30020", "30101", "30102", "30103", "30110", "30200",
                            "30201", "30150", "30151", "30210", "30211", "30300", "30310", "30311", "30350", "31000"};
    EXPECT_EQ(AllMatches(menus, R"(\n +(3\d{4})  )"), expected) << menus;
    EXPECT_EQ(AllMatches(menus, R"((0x[0-9A-F]+\+\w))"), (Texts{"0x0049+J", "0x004D+J", "0x0049+K"}));
}

TEST(Registration, ControlPanelFollowsTheHostsFlags) {
    const std::pair<Words, size_t> cases[] = {{{}, 0},
                                              {{L"--can-elevate"}, 62},
                                              {{L"--can-elevate", L"--column-d"}, 58},
                                              {{L"--can-elevate", L"--column-d", L"--column-e"}, 58}};
    for (const auto& [options, items] : cases) {
        const std::string menus = CommandRunner().Run(Joined({L"menus"}, options)).out;
        EXPECT_EQ(AllMatches(menus, R"(\n +(61\d\d) )").size(), items) << menus;
        EXPECT_EQ(Holds(menus, "Control panel"), items > 0);
        EXPECT_EQ(Holds(menus, "SideShow"), items == 62);
    }
}

Words g_launched;

TEST(OpenControlPanelItem, StartsTheControlPanelWithItsName) {
    for (const uint32_t index : {0u, 26u, 63u, 1000u})
        FileUtils::OpenControlPanelItem(index, [](const wchar_t* program, const wchar_t* words) {
            g_launched.insert(g_launched.end(), {program, words});
        });
    EXPECT_EQ(g_launched, (Words{L"Control.exe", L"/name Microsoft.iSCSIInitiator"}));
}

TEST(Registration, CustomCommandsHaveTheirParametersInOrder) {
    const std::string commands = CommandRunner().Run({L"commands"}).out;
    EXPECT_EQ(AllMatches(commands, R"((\w+ \(\d+\)):)"),
              (Texts{"CreateLink (30351)", "SortLines (30352)", "FindAndReplace (30353)"}))
        << commands;
    EXPECT_EQ(AllMatches(commands, R"(\n  (\w+) +\w+ +required)"),
              (Texts{"LNKTYPE", "LNKSRC", "LNKTRG", "FILE", "FILE", "FIND", "REPLACEWITH"}));
    EXPECT_EQ(AllMatches(commands, R"(\n  (\w+) +number)"), (Texts{"LNKTYPE", "KEEPTOP", "KEEPBOTTOM", "LINEOFFSET"}));
    EXPECT_EQ(AllMatches(commands, R"(\n  ([A-Z0-9]+) +(?:text|number|switch))").size(), 4u + 22u + 13u);
    EXPECT_EQ(commands.find("97c"), std::string::npos);  // every description has its text
}

TEST(Registration, UnknownCommandsAreNotHandled) {
    for (const wchar_t* const id : {L"29999", L"30009", L"30352", L"20500", L"6099", L"7101"})
        EXPECT_EQ(CommandRunner().Run({L"command", id}).status, 1) << id;
    for (const wchar_t* id : {L"6100", L"6163", L"7100"}) EXPECT_EQ(CommandRunner().Run({L"command", id}).status, 0);
}

}  // namespace
