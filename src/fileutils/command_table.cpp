#include "fileutils/command_table.h"

#include "fileutils/access/security_work.h"
#include "fileutils/commands.h"
#include "fileutils/control_panel/control_panel.h"
#include "fileutils/fileutils_texts.h"
#include "fileutils/ids.h"
#include "fileutils/links/link_creation.h"
#include "fileutils/names/quick_rename.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;

constexpr CommandRow kMenuCommands[] = {
    // id    submenu  text    shortcut     handler
    {CommandId::UpperCaseNames, Text::NamesMenu, Text::UpperCaseNames, 0x0049004A, RunQuickRename},
    {CommandId::LowerCaseNames, Text::NamesMenu, Text::LowerCaseNames, 0x004D004A, RunQuickRename},
    {CommandId::CapitaliseNames, Text::NamesMenu, Text::CapitaliseNames, kNoShortcut, RunQuickRename},
    {CommandId::ReplaceInNames, Text::NamesMenu, Text::ReplaceInNames, kNoShortcut, RunReplaceInNames},
    {CommandId::RenameGroup, Text::NamesMenu, Text::RenameGroup, kNoShortcut, RunRenameGroup},
    {CommandId::LineEndsToLf, Text::TextMenu, Text::LineEndsToLf, kNoShortcut, RunTextConversion},
    {CommandId::LineEndsToCrLf, Text::TextMenu, Text::LineEndsToCrLf, 0x0049004B, RunTextConversion},
    {CommandId::LineEndsToCr, Text::TextMenu, Text::LineEndsToCr, kNoShortcut, RunTextConversion},
    {CommandId::TabsToSpaces, Text::TextMenu, Text::TabsToSpaces, kNoShortcut, RunTextConversion},
    {CommandId::ReadableXml, Text::TextMenu, Text::ReadableXml, kNoShortcut, RunXmlConversion},
    {CommandId::CompactXml, Text::TextMenu, Text::CompactXml, kNoShortcut, RunXmlConversion},
    {CommandId::SortLines, Text::TextMenu, Text::SortLines, kNoShortcut, RunSortLinesDialog},
    {CommandId::FindAndReplace, Text::TextMenu, Text::FindAndReplace, kNoShortcut, RunFindAndReplaceDialog},
    {CommandId::EncodeBase64, Text::EncodingMenu, Text::EncodeBase64, kNoShortcut, RunBase64},
    {CommandId::DecodeBase64, Text::EncodingMenu, Text::DecodeBase64, kNoShortcut, RunBase64},
    {CommandId::TakeOwnership, Text::SecurityMenu, Text::TakeOwnership, kNoShortcut, RunTakeOwnership},
    {CommandId::ResetAccess, Text::SecurityMenu, Text::ResetAccess, kNoShortcut, RunResetAccess},
    {CommandId::GrantAccess, Text::SecurityMenu, Text::GrantAccess, kNoShortcut, RunGrantAccess},
    {CommandId::CreateLinks, Text::LinksMenu, Text::CreateLinks, kNoShortcut, RunCreateLinks},
};

constexpr CommandRange kCommandsWithoutEntry[] = {
    {CommandId::UnderscoreToBlank, CommandId::DotToBlank, RunQuickRename},
    {CommandId::FirstControlPanel, CommandId::LastControlPanel, RunControlPanelCommand},
};

constexpr uint32_t kSwitch = ParameterFlags::Switch;
constexpr uint32_t kText = ParameterFlags::Text;
constexpr uint32_t kNumber = ParameterFlags::Number;
constexpr uint32_t kRequired = ParameterFlags::Required;

constexpr ParameterRow kCreateLinkParameters[] = {
    {Parameter::LinkType, kRequired | kNumber, Text::LinkType},
    {Parameter::LinkPath, kRequired | kText, Text::LinkPath},
    {Parameter::LinkTarget, kRequired | kText, Text::LinkTarget},
    {Parameter::AsAdministrator, kSwitch, Text::AsAdministrator},
};

constexpr ParameterRow kSortLinesParameters[] = {
    {Parameter::File, kRequired | kText, Text::FileToSort},
    {Parameter::Target, kText, Text::Target},
    {Parameter::SortBy, kText, Text::SortBy},
    {Parameter::KeepTop, kNumber, Text::KeepTop},
    {Parameter::KeepBottom, kNumber, Text::KeepBottom},
    {Parameter::LineOffset, kNumber, Text::LineOffset},
    {Parameter::SkipLeadingSpace, kSwitch, Text::SkipLeadingSpace},
    {Parameter::IgnoreCase, kSwitch, Text::IgnoreCase},
    {Parameter::LanguageOrder, kSwitch, Text::LanguageOrder},
    {Parameter::NaturalNumberOrder, kSwitch, Text::NaturalNumberOrder},  // compatibility: 17
    {Parameter::Reverse, kSwitch, Text::Reverse},
    {Parameter::Overwrite, kSwitch, Text::Overwrite},
    {Parameter::SortAs, kText, Text::SortAs},
    {Parameter::DateFormat, kText, Text::DateFormat},
    {Parameter::ItemSeparator, kText, Text::ItemSeparator},
    {Parameter::ItemNumber, kText, Text::ItemNumber},            // compatibility: 17
    {Parameter::SubstringLength, kText, Text::SubstringLength},  // compatibility: 17
    {Parameter::EndCharacter, kText, Text::EndCharacter},
    {Parameter::EndAtWhiteSpace, kSwitch, Text::EndAtWhiteSpace},
    {Parameter::KeepBackup, kSwitch, Text::KeepBackup},
    {Parameter::Delete, kSwitch, Text::DeleteBackup},
    {Parameter::Silent, kSwitch, Text::Silent},
};

constexpr ParameterRow kFindAndReplaceParameters[] = {
    {Parameter::File, kRequired | kText, Text::FileToChange},
    {Parameter::Target, kText, Text::Target},
    {Parameter::Find, kRequired | kText, Text::FindText},
    {Parameter::ReplaceWith, kRequired | kText, Text::ReplaceWith},
    {Parameter::Mode, kText, Text::FindMode},
    {Parameter::ReplaceAll, kSwitch, Text::ReplaceAll},
    {Parameter::IgnoreCase, kSwitch, Text::IgnoreCase},  // compatibility: 7
    {Parameter::ForceUtf8, kSwitch, Text::ForceUtf8},
    {Parameter::Wildcard, kSwitch, Text::Wildcard},
    {Parameter::Overwrite, kSwitch, Text::Overwrite},
    {Parameter::KeepBackup, kSwitch, Text::KeepBackup},
    {Parameter::Delete, kSwitch, Text::DeleteBackup},
    {Parameter::Silent, kSwitch, Text::Silent},
};

constexpr CustomCommandRow kCustomCommands[] = {
    {"CreateLink", CustomCommandId::CreateLink, Text::CreateLinkCommand, kCreateLinkParameters, RunCreateLinkCommand},
    {"SortLines", CustomCommandId::SortLines, Text::SortLinesCommand, kSortLinesParameters, RunSortLinesCommand},
    {"FindAndReplace", CustomCommandId::FindAndReplace, Text::FindAndReplaceCommand, kFindAndReplaceParameters,
     RunFindAndReplaceCommand},
};

constexpr ElevatedRow kElevatedRequests[] = {
    {RequestId::TakeOwnership, AnswerTakeOwnershipRequest},
    {RequestId::GrantAccess, AnswerGrantAccessRequest},
    {RequestId::ResetAccess, AnswerResetAccessRequest},
    {RequestId::CreateLink, AnswerCreateLinkRequest},
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
