// fileutils_texts.h - the texts of File Utils that the host's language files hold, each number in this one place. Those
// of the control panel's menu stand in its table.
#pragma once

#include "sdk/words.h"

namespace FileUtils::Text {

using namespace Quorvane::SDK::TextIdLiterals;
using Quorvane::SDK::CountedText;
using Quorvane::SDK::OwnText;
using Quorvane::SDK::TextId;

// Menus, in the order in which they are built.
inline constexpr TextId RootMenu = 2004_m;
inline constexpr TextId NamesMenu = 2001_m;
inline constexpr TextId TextMenu = 2002_m;
inline constexpr TextId EncodingMenu = 2003_m;
inline constexpr TextId SecurityMenu = 2300_m;
inline constexpr TextId LinksMenu = 2400_m;

// Menu commands.
inline constexpr TextId UpperCaseNames = 2100_m;
inline constexpr TextId LowerCaseNames = 2101_m;
inline constexpr TextId CapitaliseNames = 2102_m;
inline constexpr TextId ReplaceInNames = 2110_m;
inline constexpr TextId RenameGroup = 2120_m;
inline constexpr TextId LineEndsToLf = 2201_m;
inline constexpr TextId LineEndsToCrLf = 2202_m;
inline constexpr TextId LineEndsToCr = 2203_m;
inline constexpr TextId TabsToSpaces = 2204_m;
inline constexpr TextId ReadableXml = 2210_m;
inline constexpr TextId CompactXml = 2211_m;
inline constexpr TextId SortLines = 2220_m;
inline constexpr TextId FindAndReplace = 2221_m;
inline constexpr TextId EncodeBase64 = 2240_m;  // also the caption of its question
inline constexpr TextId DecodeBase64 = 2241_m;  // likewise
inline constexpr TextId TakeOwnership = 2301_m;
inline constexpr TextId ResetAccess = 2310_m;
inline constexpr TextId GrantAccess = 2311_m;
inline constexpr TextId CreateLinks = 2401_m;

// Custom commands and their parameters.
inline constexpr TextId CreateLinkCommand = 50_c;
inline constexpr TextId LinkType = 51_c;
inline constexpr TextId LinkPath = 52_c;
inline constexpr TextId LinkTarget = 53_c;
inline constexpr TextId AsAdministrator = 54_c;
inline constexpr TextId SortLinesCommand = 60_c;
inline constexpr TextId FileToSort = 61_c;
inline constexpr TextId Target = 62_c;
inline constexpr TextId SortBy = 63_c;
inline constexpr TextId KeepTop = 64_c;
inline constexpr TextId KeepBottom = 65_c;
inline constexpr TextId LineOffset = 66_c;
inline constexpr TextId SkipLeadingSpace = 67_c;
inline constexpr TextId IgnoreCase = 68_c;
inline constexpr TextId LanguageOrder = 69_c;
inline constexpr TextId NaturalNumberOrder = 70_c;
inline constexpr TextId Reverse = 71_c;
inline constexpr TextId Overwrite = 72_c;
inline constexpr TextId SortAs = 73_c;
inline constexpr TextId DateFormat = 74_c;
inline constexpr TextId ItemSeparator = 75_c;
inline constexpr TextId ItemNumber = 76_c;
inline constexpr TextId SubstringLength = 77_c;
inline constexpr TextId EndCharacter = 78_c;
inline constexpr TextId EndAtWhiteSpace = 79_c;
inline constexpr TextId KeepBackup = 80_c;
inline constexpr TextId DeleteBackup = 81_c;
inline constexpr TextId Silent = 82_c;
inline constexpr TextId FindAndReplaceCommand = 90_c;
inline constexpr TextId FileToChange = 91_c;
inline constexpr TextId FindText = 92_c;
inline constexpr TextId ReplaceWith = 93_c;
inline constexpr TextId ReplaceAll = 94_c;
inline constexpr TextId FindMode = 95_c;
inline constexpr TextId ForceUtf8 = 96_c;
inline constexpr TextId Wildcard = 97_c;

// Renaming from the panel.
inline constexpr TextId RenameTitle = 10_c;
inline constexpr TextId RenameQuestion = 11_c;  // one argument: the number of items
inline constexpr TextId NewGroupName = 12_c;

// Conversions.
inline constexpr TextId ConvertTitle = 14_c;
inline constexpr TextId ConvertQuestion = 15_c;  // one argument: the number of files
inline constexpr TextId TabWidthPrompt = 16_c;
inline constexpr TextId TabWidthTitle = 17_c;
inline constexpr TextId DecodedFileExists = 210_e;  // one argument: its name

// Access rights.
inline constexpr TextId AccessDialog = 200_d;
inline constexpr TextId Account = 202_d;
inline constexpr TextId FindAccount = 203_d;
inline constexpr TextId AccessRights = 204_d;
inline constexpr TextId GrantPermissions = 205_d;
inline constexpr TextId AccessNote = 207_d;
inline constexpr TextId ReadAndExecute = 210_d;
inline constexpr TextId ReadWriteAndExecute = 211_d;
inline constexpr TextId Modify = 212_d;
inline constexpr TextId AllRights = 213_d;
inline constexpr TextId ResetAccessTitle = 250_d;
inline constexpr TextId ResetAccessQuestion = 251_d;
inline constexpr TextId Cancel = 3_g;
inline constexpr TextId AccessDeniedTitle = 10_e;
inline constexpr TextId FailureTitle = 11_e;
inline constexpr TextId AccessDenied = 100_e;
inline constexpr TextId GrantAccessFailed = 120_e;    // one argument: the error code
inline constexpr TextId ResetAccessFailed = 125_e;    // likewise
inline constexpr TextId TakeOwnershipFailed = 126_e;  // likewise

// The dialogs over files.
inline constexpr TextId SortSaveAs = 427_d;
inline constexpr TextId WriteAndKeepBackup = 428_d;
inline constexpr TextId WriteAndDeleteBackup = 429_d;
inline constexpr TextId SortAsText = 440_d;
inline constexpr TextId SortAsNumber = 442_d;
inline constexpr TextId SortAsDate = 443_d;
inline constexpr TextId SaveAs = 508_d;
inline constexpr TextId ModeOne = 511_d;
inline constexpr TextId ModeMany = 512_d;
inline constexpr TextId ModeManySame = 513_d;
inline constexpr TextId ModeMultiline = 514_d;

// What the line beside the buttons of find and replace says.
inline constexpr TextId OneMatch = 530_d;
inline constexpr TextId Matches = 531_d;         // one argument: how many
inline constexpr TextId AtLeast = 532_d;         // one argument: one of the two above
inline constexpr TextId MatchesInFile = 533_d;   // one argument: the same
inline constexpr TextId MatchesInFiles = 534_d;  // three arguments: the same, files with matches, all files
inline constexpr TextId NoMatch = 535_d;
inline constexpr TextId OneFails = 536_d;      // two arguments: 1, why
inline constexpr TextId SeveralFail = 537_d;   // two arguments: how many, why the first does
inline constexpr TextId OneIsNotText = 538_d;  // one argument here and below: how many files
inline constexpr TextId SeveralAreNotText = 539_d;
inline constexpr TextId OneHoldsUtf8 = 540_d;
inline constexpr TextId SeveralHoldUtf8 = 541_d;
inline constexpr TextId LoneBreaksInOne = 542_d;
inline constexpr TextId LoneBreaksInSeveral = 543_d;
inline constexpr TextId MixedBreaksInOne = 544_d;
inline constexpr TextId MixedBreaksInSeveral = 545_d;
inline constexpr TextId CaseCountsInPlain = 546_d;  // no arguments from here on
inline constexpr TextId CaseOfAsciiAlone = 547_d;
inline constexpr TextId FirstLinesAlone = 548_d;
inline constexpr TextId FirstReplacementAlone = 549_d;
inline constexpr TextId NoWildcardsOverLines = 550_d;

// Runs over files.
inline constexpr TextId FindReplaceTitle = 521_d;
inline constexpr TextId FindReplaceOverwrite = 522_d;  // one argument: the path of the target
inline constexpr TextId FindReplaceDoneOne = 523_d;    // two arguments: changes, files
inline constexpr TextId FindReplaceDoneMany = 524_d;   // likewise
inline constexpr TextId SortTitle = 571_d;
inline constexpr TextId SortDone = 573_d;       // one argument: the number of files
inline constexpr TextId SortOverwrite = 575_d;  // one argument: the path of the target
inline constexpr TextId SortFailed = 581_d;     // one argument: the files that failed or were skipped

// What the sorter's log notes of lines: how many of all of them, and what they lack.
inline constexpr CountedText LinesOf = {{590_d, L"%d of %d line"}, {591_d, L"%d of %d lines"}};
inline constexpr CountedText LinesTooShort = {{592_d, L"%s ends before the place where the key begins"},
                                              {593_d, L"%s end before the place where the key begins"}};
inline constexpr CountedText LinesWithoutNumber = {{594_d, L"%s has no number"}, {595_d, L"%s have no number"}};
inline constexpr CountedText LinesWithoutDate = {{596_d, L"%s has no date that fits the format"},
                                                 {597_d, L"%s have no date that fits the format"}};

// Links.
inline constexpr OwnText LinkColumn = {600_d, L"Link"};
inline constexpr OwnText TargetColumn = {601_d, L"Leads to"};
inline constexpr OwnText HardLink = {602_d, L"Hard link"};
inline constexpr OwnText Junction = {603_d, L"Junction"};
inline constexpr OwnText SymbolicLink = {604_d, L"Symbolic link"};
inline constexpr OwnText Shortcut = {605_d, L"Shortcut"};
inline constexpr OwnText LookingAtLinks = {606_d, L"Looking at the links..."};
inline constexpr OwnText FolderNeeded = {607_d, L"A folder is needed."};
inline constexpr OwnText LinkNotCreated = {608_d, L"The link could not be created. The log says why."};
inline constexpr OwnText LinksNotCreated = {609_d, L"%d of %d links could not be created. The log says why."};
inline constexpr OwnText CreateLinksTitle = {610_d, L"Create links"};

// Text in names.
inline constexpr OwnText PartName = {620_d, L"the name"};
inline constexpr OwnText PartExtension = {621_d, L"the extension"};
inline constexpr OwnText PartBoth = {622_d, L"name and extension"};
inline constexpr OwnText NothingToFind = {623_d, L"There is no text to find."};
inline constexpr OwnText NoNameHoldsIt = {624_d, L"No name holds this text."};
inline constexpr CountedText NamesChange = {{625_d, L"%d name will change."}, {626_d, L"%d names will change."}};
inline constexpr CountedText NamesStay = {{618_d, L"%d name stays as it is."}, {619_d, L"%d names stay as they are."}};
inline constexpr OwnText NameImpossible = {627_d, L"\"%s\" cannot be a name: %s."};
inline constexpr OwnText MoreImpossible = {628_d, L" So it is with %d names."};

// Access, and the question about a match.
inline constexpr OwnText NoSuchAccount = {630_d, L"There is no user or group of this name."};
inline constexpr OwnText FileOfFiles = {640_d, L"F&ile %d of %d:"};
inline constexpr OwnText MatchInLine = {641_d, L"&Match %d in line %d:"};

/// Why a dialog cannot start, and what may surprise: texts of the engines and of the forms, which know no host.
// clang-format off
inline constexpr OwnText kReasons[] = {
    {650_d, L"\"%s\": %s."},
    {651_d, L"Find match are too short. Atleast one character need"},
    {652_d, L"To few find items. Atleast one must be set"},
    {653_d, L"Find and Replace item do not match"},
    {654_d, L"There is no text to find in the first line."},
    {655_d, L"This wildcard cannot be read (braces hold a count, as in x{2}): %s"},
    {656_d, L"Several files would be saved as %s. A * stands for each original's name."},
    {657_d, L"Save as needs a file name, such as *_new.*"},
    {658_d, L"A file name has none of \\ / : < > | \" ? in it. A * stands for the original's name."},
    {660_d, L"Item Separator is one character; \\t stands for a tab."},
    {661_d, L"Item is a number of 1 or more."},
    {662_d, L"End character is one character or none; \\t stands for a tab."},
    {663_d, L"Entire lines have no number and no date to sort by: choose a substring or an item."},
    {664_d, L"Numbers are read from %s characters at most: Substring lenght counts for them too."},
    {665_d, L"Dates need a format: the button < has examples."},
    {666_d, L"%s is a number from 0 to 4294967295."},
    {667_d, L"Start Line"},
    {668_d, L"End Line"},
    {669_d, L"Start at line position"},
    {670_d, L"Item"},
    {671_d, L"Substring lenght"},
    {672_d, L"Substring lenght is above 63, the longest number key."},
    {673_d, L"The date format is longer than 127 characters."},
    {674_d, L"The date format uses %s, which is not supported."},
    {675_d, L"the path would be too long"},
    {676_d, L"there is no such item any more"},
    {677_d, L"\"%s\" would be the name of more than one item"},
    {678_d, L"\"%s\" is there already"},
    {679_d, L"\"%s\" is the name of an item that keeps it"},
    {680_d, L"There is too little memory to look at all links."},
    {681_d, L"A link has no name: %s"},
    {682_d, L"Two links have the same name: %s"},
    {683_d, L"This cannot be a name: %s"},
    {684_d, L"This name is in use: %s"},
    {685_d, L"There is no folder %s"},
    {686_d, L"A hard link cannot lead to a folder: %s"},
    {687_d, L"A hard link cannot lead to another volume: %s"},
    {688_d, L"A junction cannot lead to a file: %s"},
    {689_d, L"A junction cannot lead to another computer: %s"},
};
// clang-format on

/// All of them, so that a test can look for each in the language files.
// clang-format off
inline constexpr TextId kAll[] = {
    RootMenu, NamesMenu, TextMenu, EncodingMenu, SecurityMenu, LinksMenu, UpperCaseNames, LowerCaseNames,
    CapitaliseNames, ReplaceInNames, RenameGroup, LineEndsToLf, LineEndsToCrLf, LineEndsToCr, TabsToSpaces,
    ReadableXml, CompactXml, SortLines, FindAndReplace, EncodeBase64, DecodeBase64, TakeOwnership, ResetAccess,
    GrantAccess, CreateLinks, CreateLinkCommand, LinkType, LinkPath, LinkTarget, AsAdministrator, SortLinesCommand,
    FileToSort, Target, SortBy, KeepTop, KeepBottom, LineOffset, SkipLeadingSpace, IgnoreCase, LanguageOrder,
    NaturalNumberOrder, Reverse, Overwrite, SortAs, DateFormat, ItemSeparator, ItemNumber, SubstringLength,
    EndCharacter, EndAtWhiteSpace, KeepBackup, DeleteBackup, Silent, FindAndReplaceCommand, FileToChange, FindText,
    ReplaceWith, ReplaceAll, FindMode, ForceUtf8, Wildcard, RenameTitle, RenameQuestion, NewGroupName, ConvertTitle,
    ConvertQuestion, TabWidthPrompt, TabWidthTitle, DecodedFileExists, AccessDialog, Account, FindAccount,
    AccessRights, GrantPermissions, AccessNote, ReadAndExecute, ReadWriteAndExecute, Modify, AllRights,
    ResetAccessTitle, ResetAccessQuestion, Cancel, AccessDeniedTitle, FailureTitle, AccessDenied, GrantAccessFailed,
    ResetAccessFailed, TakeOwnershipFailed, SortSaveAs, WriteAndKeepBackup, WriteAndDeleteBackup, SortAsText,
    SortAsNumber, SortAsDate, SaveAs, ModeOne, ModeMany, ModeManySame, ModeMultiline, OneMatch, Matches, AtLeast,
    MatchesInFile, MatchesInFiles, NoMatch, OneFails, SeveralFail, OneIsNotText, SeveralAreNotText, OneHoldsUtf8,
    SeveralHoldUtf8, LoneBreaksInOne, LoneBreaksInSeveral, MixedBreaksInOne, MixedBreaksInSeveral, CaseCountsInPlain,
    CaseOfAsciiAlone, FirstLinesAlone, FirstReplacementAlone, NoWildcardsOverLines, FindReplaceTitle,
    FindReplaceOverwrite, FindReplaceDoneOne, FindReplaceDoneMany, SortTitle, SortDone, SortOverwrite, SortFailed};
// clang-format on

/// Those with an English text of their own, likewise.
// clang-format off
inline constexpr OwnText kOwn[] = {
    LinesOf.one, LinesOf.others, LinesTooShort.one, LinesTooShort.others, LinesWithoutNumber.one,
    LinesWithoutNumber.others, LinesWithoutDate.one, LinesWithoutDate.others, LinkColumn, TargetColumn, HardLink, Junction, SymbolicLink, Shortcut, LookingAtLinks, FolderNeeded,
    LinkNotCreated, LinksNotCreated, CreateLinksTitle, PartName, PartExtension, PartBoth, NothingToFind,
    NoNameHoldsIt, NamesChange.one, NamesChange.others, NamesStay.one, NamesStay.others, NameImpossible, MoreImpossible, NoSuchAccount, FileOfFiles,
    MatchInLine};
// clang-format on

}  // namespace FileUtils::Text
