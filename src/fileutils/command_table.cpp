#include "fileutils/command_table.h"

#include "fileutils/access/grant_access_command.h"
#include "fileutils/access/reset_access_command.h"
#include "fileutils/access/security_requests.h"
#include "fileutils/access/take_ownership_command.h"
#include "fileutils/control_panel/control_panel.h"
#include "fileutils/conversions/base64_command.h"
#include "fileutils/conversions/text_conversion_command.h"
#include "fileutils/conversions/xml_conversion_command.h"
#include "fileutils/find_replace/find_replace_command.h"
#include "fileutils/links/create_link_command.h"
#include "fileutils/links/create_links_command.h"
#include "fileutils/links/link_creation.h"
#include "fileutils/names/quick_rename.h"
#include "fileutils/names/quick_rename_command.h"
#include "fileutils/names/rename_group_command.h"
#include "fileutils/names/replace_in_names_command.h"
#include "fileutils/sort_lines/sort_lines_command.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;

constexpr CommandRow kMenuCommands[] = {
    // id    submenu  text    shortcut     handler
    {30000, 2001_m, 2100_m, 0x0049004A, RunQuickRename},
    {30001, 2001_m, 2101_m, 0x004D004A, RunQuickRename},
    {30002, 2001_m, 2102_m, kNoShortcut, RunQuickRename},
    {30010, 2001_m, 2110_m, kNoShortcut, RunReplaceInNames},
    {30020, 2001_m, 2120_m, kNoShortcut, RunRenameGroup},
    {30101, 2002_m, 2201_m, kNoShortcut, RunTextConversion},
    {30102, 2002_m, 2202_m, 0x0049004B, RunTextConversion},
    {30103, 2002_m, 2203_m, kNoShortcut, RunTextConversion},
    {30110, 2002_m, 2204_m, kNoShortcut, RunTextConversion},
    {30200, 2002_m, 2210_m, kNoShortcut, RunXmlConversion},
    {30201, 2002_m, 2211_m, kNoShortcut, RunXmlConversion},
    {30150, 2002_m, 2220_m, kNoShortcut, RunSortLinesDialog},
    {30151, 2002_m, 2221_m, kNoShortcut, RunFindAndReplaceDialog},
    {30210, 2003_m, 2240_m, kNoShortcut, RunBase64},
    {30211, 2003_m, 2241_m, kNoShortcut, RunBase64},
    {30300, 2300_m, 2301_m, kNoShortcut, RunTakeOwnership},
    {30310, 2300_m, 2310_m, kNoShortcut, RunResetAccess},
    {30311, 2300_m, 2311_m, kNoShortcut, RunGrantAccess},
    {30350, 2400_m, 2401_m, kNoShortcut, RunCreateLinks},
};

constexpr CommandRange kCommandsWithoutEntry[] = {
    {30003, kLastQuickRename, RunQuickRename},
    {kFirstControlPanelCommand, kLastControlPanelCommand, RunControlPanelCommand},
};

constexpr uint32_t kSwitch = ParameterFlags::Switch;
constexpr uint32_t kText = ParameterFlags::Text;
constexpr uint32_t kNumber = ParameterFlags::Number;
constexpr uint32_t kRequired = ParameterFlags::Required;

constexpr ParameterRow kCreateLinkParameters[] = {
    {"LNKTYPE", kRequired | kNumber, 51_c},
    {"LNKSRC", kRequired | kText, 52_c},
    {"LNKTRG", kRequired | kText, 53_c},
    {"ASADMIN", kSwitch, 54_c},
};

constexpr ParameterRow kSortLinesParameters[] = {
    {"FILE", kRequired | kText, 61_c},
    {"TARGET", kText, 62_c},
    {"SORTBY", kText, 63_c},
    {"KEEPTOP", kNumber, 64_c},
    {"KEEPBOTTOM", kNumber, 65_c},
    {"LINEOFFSET", kNumber, 66_c},
    {"SKIPLEADINGSPACE", kSwitch, 67_c},
    {"IGNORECASE", kSwitch, 68_c},
    {"LANGUAGEORDER", kSwitch, 69_c},
    {"NATRUALNUMORDER", kSwitch, 70_c},  // spelled so on purpose: scripts use it
    {"REVERSE", kSwitch, 71_c},
    {"OVERWRITE", kSwitch, 72_c},
    {"SORTAS", kText, 73_c},
    {"DATEFORMAT", kText, 74_c},
    {"ITEMSEP", kText, 75_c},
    {"ITEM", kText, 76_c},       // a number, yet registered as text: scripts rely on that too
    {"SUBSTRLEN", kText, 77_c},  // likewise
    {"ENDCHAR", kText, 78_c},
    {"ENDATWHITESPACE", kSwitch, 79_c},
    {"KEEPBACKUP", kSwitch, 80_c},
    {"DELETE", kSwitch, 81_c},
    {"SILENT", kSwitch, 82_c},
};

constexpr ParameterRow kFindAndReplaceParameters[] = {
    {"FILE", kRequired | kText, 91_c},
    {"TARGET", kText, 62_c},
    {"FIND", kRequired | kText, 92_c},
    {"REPLACEWITH", kRequired | kText, 93_c},
    {"MODE", kText, 95_c},
    {"REPLACEALL", kSwitch, 94_c},
    {"IGNORECASE", kSwitch, 68_c},  // registered, never read: see the command
    {"FORCEUTF8", kSwitch, 96_c},
    {"WILDCARD", kSwitch, 97_c},
    {"OVERWRITE", kSwitch, 72_c},
    {"KEEPBACKUP", kSwitch, 80_c},
    {"DELETE", kSwitch, 81_c},
    {"SILENT", kSwitch, 82_c},
};

constexpr CustomCommandRow kCustomCommands[] = {
    {"CreateLink", 30351, 50_c, kCreateLinkParameters, RunCreateLinkCommand},
    {"SortLines", 30352, 60_c, kSortLinesParameters, RunSortLinesCommand},
    {"FindAndReplace", 30353, 90_c, kFindAndReplaceParameters, RunFindAndReplaceCommand},
};

constexpr ElevatedRow kElevatedRequests[] = {
    {kTakeOwnershipRequest, AnswerTakeOwnershipRequest},
    {kGrantAccessRequest, AnswerGrantAccessRequest},
    {kResetAccessRequest, AnswerResetAccessRequest},
    {kCreateLinkRequest, AnswerCreateLinkRequest},
};

}  // namespace

std::span<const CommandRow> MenuCommands() {
    return kMenuCommands;
}
std::span<const CommandRange> CommandsWithoutEntry() {
    return kCommandsWithoutEntry;
}
std::span<const CustomCommandRow> CustomCommands() {
    return kCustomCommands;
}
std::span<const ElevatedRow> ElevatedRequests() {
    return kElevatedRequests;
}

}  // namespace FileUtils
