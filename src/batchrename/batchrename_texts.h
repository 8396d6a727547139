// batchrename_texts.h - the texts of Batch Rename that the host's language files hold, each number in this one place.
#pragma once

#include "sdk/words.h"

namespace BatchRename::Text {

using namespace Quorvane::SDK::TextIdLiterals;
using Quorvane::SDK::CountedText;
using Quorvane::SDK::OwnText;
using Quorvane::SDK::TextId;

inline constexpr TextId Menu = 2006_m;
inline constexpr TextId Command = 10_c;

// The menu of tags.
inline constexpr TextId NameTag = 300_m;
inline constexpr TextId ExtensionTag = 301_m;
inline constexpr TextId CounterTag = 302_m;
inline constexpr TextId FolderTag = 303_m;
inline constexpr TextId YearTag = 304_m;
inline constexpr TextId MonthTag = 305_m;
inline constexpr TextId DayTag = 306_m;
inline constexpr TextId HourTag = 307_m;
inline constexpr TextId MinuteTag = 308_m;
inline constexpr TextId SecondTag = 309_m;
inline constexpr TextId PropertyTag = 310_m;

// The menu of profiles.
inline constexpr TextId SaveProfile = 320_m;
inline constexpr TextId DeleteProfile = 321_m;
inline constexpr TextId NoProfiles = 322_m;

// The choices of the rule.
inline constexpr TextId CaseUnchanged = 330_d;
inline constexpr TextId CaseLowerBoth = 331_d;
inline constexpr TextId CaseUpperBoth = 332_d;
inline constexpr TextId CaseLowerName = 333_d;
inline constexpr TextId CaseUpperName = 334_d;
inline constexpr TextId CaseLowerExtension = 335_d;
inline constexpr TextId CaseUpperExtension = 336_d;
inline constexpr TextId CaseWords = 337_d;
inline constexpr TextId CaseSentence = 338_d;
inline constexpr TextId ScopeBoth = 340_d;
inline constexpr TextId ScopeName = 341_d;
inline constexpr TextId ScopeExtension = 342_d;

// The menu of the list's rows; a key stands after a tab.
inline constexpr TextId NameRow = 350_m;
inline constexpr TextId DropRowName = 351_m;
inline constexpr TextId CheckRows = 352_m;
inline constexpr TextId UncheckRows = 353_m;
inline constexpr TextId TakeOutRows = 354_m;
inline constexpr TextId KeepRows = 355_m;
inline constexpr TextId CopyRows = 356_m;
inline constexpr TextId SelectAllRows = 357_m;
inline constexpr TextId NextProblem = 358_m;
inline constexpr TextId OpenRowFolder = 359_m;

// What the list says of a row.
inline constexpr OwnText WillBeRenamed = {400_d, L"Will be renamed"};
inline constexpr OwnText WillBeRestored = {401_d, L"Will be restored"};
inline constexpr OwnText ByHand = {402_d, L"%s, by hand"};
inline constexpr OwnText NotChecked = {403_d, L"Not checked"};
inline constexpr OwnText Unchanged = {404_d, L"Unchanged"};
inline constexpr OwnText Renamed = {405_d, L"Renamed"};
inline constexpr OwnText Restored = {406_d, L"Restored"};
inline constexpr OwnText IgnoredBecause = {407_d, L"Ignored: %s"};
inline constexpr OwnText FailedBecause = {408_d, L"Failed: %s"};

// The status bar: counts.
inline constexpr CountedText WouldRename = {{410_d, L"%d of %d item will be renamed"},
                                            {411_d, L"%d of %d items will be renamed"}};
inline constexpr CountedText WouldRestore = {{412_d, L"%d of %d item will be restored"},
                                             {413_d, L"%d of %d items will be restored"}};
inline constexpr OwnText LeftOut = {414_d, L", %d not checked"};
inline constexpr CountedText Problems = {{415_d, L", %d problem (F8)"}, {416_d, L", %d problems (F8)"}};
inline constexpr CountedText UnusableNames = {{417_d, L"%d name cannot be used; the status column says why."},
                                              {418_d, L"%d names cannot be used; the status column says why."}};
inline constexpr CountedText RenameOthers = {{419_d, L"Rename the other one?"}, {420_d, L"Rename the other %d?"}};
inline constexpr OwnText CountRenamed = {421_d, L"%d Renamed"};
inline constexpr OwnText CountRestored = {422_d, L"%d Restored"};
inline constexpr OwnText CountIgnored = {423_d, L"%d Ignored"};
inline constexpr OwnText CountFailed = {424_d, L"%d Failed"};

// One find and replace pair, tried on the names.
inline constexpr OwnText ExpressionInvalid = {430_d, L"The expression is not valid: %s"};
inline constexpr OwnText TypeTextToFind = {431_d, L"Type the text to find."};
inline constexpr CountedText OneNameTried = {{432_d, L"%d of %d name matches"}, {433_d, L"%d of %d name match"}};
inline constexpr CountedText NamesTried = {{434_d, L"%d of %d names matches"}, {435_d, L"%d of %d names match"}};
inline constexpr CountedText FirstNamesTried = {{436_d, L"%d of the first %d names matches"},
                                                {437_d, L"%d of the first %d names match"}};
inline constexpr OwnText ModeRegex = {440_d, L"Regular expression"};
inline constexpr OwnText ModePlain = {441_d, L"Plain text"};
inline constexpr OwnText ModeEveryMatch = {442_d, L", every match"};
inline constexpr OwnText ModeFirstMatch = {443_d, L", first match"};
inline constexpr OwnText ModeCaseCounts = {444_d, L", case counts"};
inline constexpr OwnText ModeAnyCase = {445_d, L", any case"};
inline constexpr OwnText ModeNameOnly = {446_d, L", name only"};
inline constexpr OwnText ModeExtensionOnly = {447_d, L", extension only"};
inline constexpr OwnText ModeWholeName = {448_d, L", name and extension"};
inline constexpr OwnText GroupWhole = {500_d, L"$&&\tthe whole match"};
inline constexpr OwnText GroupFirst = {501_d, L"$1\tfirst group"};
inline constexpr OwnText GroupSecond = {502_d, L"$2\tsecond group"};
inline constexpr OwnText GroupThird = {503_d, L"$3\tthird group"};
inline constexpr OwnText GroupFourth = {504_d, L"$4\tfourth group"};
inline constexpr OwnText GroupFifth = {505_d, L"$5\tfifth group"};
inline constexpr OwnText GroupDollar = {506_d, L"$$\ta dollar sign"};

// The status bar: what is under way.
inline constexpr OwnText ExpressionOfPairInvalid = {450_d, L"Expression %d is not valid: %s"};
inline constexpr OwnText LookingForSession = {451_d, L"Looking for the files of the session..."};
inline constexpr OwnText NoFiles = {452_d, L"No files"};
inline constexpr OwnText Computing = {453_d, L"Computing the new names..."};
inline constexpr OwnText OutOfDate = {454_d, L"The new names are not up to date."};
inline constexpr OwnText ProblemsFirst = {455_d,
                                          L"Rows can be moved when problems do not stand first: click on \"Status\"."};
inline constexpr OwnText AskingForFiles = {456_d, L"Asking for the selected files..."};
inline constexpr OwnText NoAnswerYet = {
    457_d, L"The file manager has not answered yet. The list stays as it is until it does."};
inline constexpr OwnText RunNotStarted = {458_d, L"The run could not be started; the system has no thread for it."};
inline constexpr OwnText Restoring = {459_d, L"Restoring..."};
inline constexpr OwnText Renaming = {460_d, L"Renaming..."};
inline constexpr OwnText RestoringSome = {461_d, L"Restoring: %d of %d"};
inline constexpr OwnText RenamingSome = {462_d, L"Renaming: %d of %d"};
inline constexpr OwnText WithoutUndo = {463_d, L"%s, without undo"};
inline constexpr OwnText Unrecorded = {464_d, L"This run cannot be recorded for undo (error %d); it goes on without."};
inline constexpr OwnText Stopping = {465_d, L"Stopping after the current file..."};

// The window and its questions.
inline constexpr OwnText CurrentName = {470_d, L"Current name"};
inline constexpr OwnText NewName = {471_d, L"New name"};
inline constexpr OwnText Status = {472_d, L"Status"};
inline constexpr OwnText Location = {473_d, L"Location"};
inline constexpr OwnText OldName = {474_d, L"Old name"};
inline constexpr OwnText OutdatedName = {475_d, L"New name (not up to date)"};
inline constexpr OwnText NamesOfSession = {476_d, L"The names of a restore come from its session."};
inline constexpr OwnText FolderNotOpened = {477_d, L"The folder could not be opened: %s"};
inline constexpr OwnText DeleteThisProfile = {478_d, L"Delete the profile \"%s\"?"};
inline constexpr OwnText ProfilesSaved = {479_d, L"The profiles are saved."};
inline constexpr OwnText ProfilesNotSaved = {
    480_d, L"The profiles could not be written; the log says why. They are kept until the file manager ends."};
inline constexpr OwnText Find = {483_d, L"Find"};
inline constexpr OwnText ReplaceWith = {484_d, L"Replace with"};
inline constexpr OwnText Stop = {485_d, L"&Stop"};
inline constexpr OwnText GoOn = {486_d, L"Go on with re&st"};
inline constexpr OwnText Start = {487_d, L"&Start"};
inline constexpr OwnText ReplaceProfile = {498_d, L"There is a profile \"%s\" already. Replace it?"};

// The undo manager.
inline constexpr OwnText TimeOfRun = {490_d, L"Date and time when files was renamed"};
inline constexpr OwnText Items = {491_d, L"Items :"};
inline constexpr OwnText State = {492_d, L"State"};
inline constexpr OwnText Unfinished = {493_d, L"Did not come to its end"};
inline constexpr CountedText DeleteSessions = {{494_d, L"Delete this session?"}, {495_d, L"Delete %d sessions?"}};
inline constexpr OwnText WhatStays = {496_d, L"What it renamed stays as it is, and can no longer be undone."};
inline constexpr OwnText SessionsNotDeleted = {497_d, L"%d of the sessions could not be deleted (error %d)."};

/// Why a row keeps its name, and what a run and the expressions fail with: the texts of engine and log.
// clang-format off
inline constexpr OwnText kReasons[] = {
    {510_d, L"it is not checked"},
    {511_d, L"it has its old name"},
    {512_d, L"the name stays the same"},
    {513_d, L"the path would be too long"},
    {514_d, L"the folder cannot be read, error %s"},
    {515_d, L"there is no such item any more"},
    {516_d, L"the item is gone; another one has its name now"},
    {517_d, L"the item is in the list twice"},
    {518_d, L"\"%s\" would be the name of more than one item"},
    {519_d, L"\"%s\" is there already"},
    {520_d, L"\"%s\" is the name of an item that keeps it"},
    {521_d, L"the path will have %s characters; many programs open no more than %s"},
    {522_d, L"a regular expression takes too long on this name"},
    {523_d, L"a regular expression needs too much memory on this name"},
    {524_d, L"a replacement makes the name endless"},
    {525_d, L"the template asks for a property that is not known"},
    {526_d, L"the run was stopped before"},
    {527_d, L"it waited for \"%s\", which could not be renamed"},
    {528_d, L"it could not be recorded for undo: %s"},
    {529_d, L"%s; it is now named \"%s\""},
    {530_d, L"error %s: %s"},
    {531_d, L"error %s"},
    {532_d, L"The new names could not be computed; there may be too little memory."},
    {533_d, L"The run failed before its end. The undo manager shows what was renamed."},
    {534_d, L"The renames could not be recorded for undo (error %s)."},
    {535_d, L"a name inside [: :], [. .] or [= =] is unknown"},
    {536_d, L"a class inside [: :] is unknown"},
    {537_d, L"a backslash stands before a character that needs none, or at the end"},
    {538_d, L"a number after a backslash names a group that is not there"},
    {539_d, L"a \"[\" has no \"]\""},
    {540_d, L"a \"(\" or \")\" has no counterpart, or a sign such as \"*\" has nothing before it to repeat"},
    {541_d, L"a \"{\" has no \"}\""},
    {542_d, L"what stands between \"{\" and \"}\" is no count"},
    {543_d, L"a range inside [ ] runs backwards or is cut off"},
    {544_d, L"the expression is too large"},
    {545_d, L"the expression is not valid"},
};
// clang-format on

/// All of them, so that a test can look for each in the language files.
// clang-format off
inline constexpr TextId kAll[] = {
    Menu, Command, NameTag, ExtensionTag, CounterTag, FolderTag, YearTag, MonthTag, DayTag, HourTag, MinuteTag,
    SecondTag, PropertyTag, SaveProfile, DeleteProfile, NoProfiles, CaseUnchanged, CaseLowerBoth, CaseUpperBoth,
    CaseLowerName, CaseUpperName, CaseLowerExtension, CaseUpperExtension, CaseWords, CaseSentence, ScopeBoth,
    ScopeName, ScopeExtension, NameRow, DropRowName, CheckRows, UncheckRows, TakeOutRows, KeepRows, CopyRows,
    SelectAllRows, NextProblem, OpenRowFolder};
// clang-format on

/// Those with an English text of their own, likewise.
// clang-format off
inline constexpr OwnText kOwn[] = {
    WillBeRenamed, WillBeRestored, ByHand, NotChecked, Unchanged, Renamed, Restored, IgnoredBecause, FailedBecause,
    WouldRename.one, WouldRename.others, WouldRestore.one, WouldRestore.others, LeftOut, Problems.one,
    Problems.others, UnusableNames.one, UnusableNames.others, RenameOthers.one, RenameOthers.others, CountRenamed,
    CountRestored, CountIgnored, CountFailed, ExpressionInvalid, TypeTextToFind, OneNameTried.one,
    OneNameTried.others, NamesTried.one, NamesTried.others, FirstNamesTried.one, FirstNamesTried.others, ModeRegex,
    ModePlain, ModeEveryMatch, ModeFirstMatch, ModeCaseCounts, ModeAnyCase, ModeNameOnly, ModeExtensionOnly,
    ModeWholeName, GroupWhole, GroupFirst, GroupSecond, GroupThird, GroupFourth, GroupFifth, GroupDollar,
    ExpressionOfPairInvalid, LookingForSession, NoFiles, Computing, OutOfDate, ProblemsFirst, AskingForFiles,
    NoAnswerYet, RunNotStarted, Restoring, Renaming, RestoringSome, RenamingSome, WithoutUndo, Unrecorded, Stopping,
    CurrentName, NewName, Status, Location, OldName, OutdatedName, NamesOfSession, FolderNotOpened,
    DeleteThisProfile, ProfilesSaved, ProfilesNotSaved, Find, ReplaceWith, Stop, GoOn, Start, ReplaceProfile,
    TimeOfRun, Items, State, Unfinished, DeleteSessions.one, DeleteSessions.others, WhatStays, SessionsNotDeleted};
// clang-format on

}  // namespace BatchRename::Text
