// batchrename_texts.h - the texts of Batch Rename that the host's language files hold, each number in this one place.
#pragma once

#include "sdk/text_format.h"

namespace BatchRename::Text {

using namespace Quorvane::SDK::TextIdLiterals;
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

/// All of them, so that a test can look for each in the language files.
// clang-format off
inline constexpr TextId kAll[] = {
    Menu, Command, NameTag, ExtensionTag, CounterTag, FolderTag, YearTag, MonthTag, DayTag, HourTag, MinuteTag,
    SecondTag, PropertyTag, SaveProfile, DeleteProfile, NoProfiles, CaseUnchanged, CaseLowerBoth, CaseUpperBoth,
    CaseLowerName, CaseUpperName, CaseLowerExtension, CaseUpperExtension, CaseWords, CaseSentence, ScopeBoth,
    ScopeName, ScopeExtension, NameRow, DropRowName, CheckRows, UncheckRows, TakeOutRows, KeepRows, CopyRows,
    SelectAllRows, NextProblem, OpenRowFolder};
// clang-format on

}  // namespace BatchRename::Text
