// ids.h - the numbers and names by which File Utils is known: to the host, to scripts, to its own elevated side. Each
// stands here and nowhere else; they are part of what users have in their configurations, so none ever changes.
#pragma once

#include <cstdint>

namespace FileUtils {

inline constexpr char kExtensionId[] = "7c1d4e0a9b2f4c6d8e3a5b1f0c9d2e47";
inline constexpr char kModuleName[] = "QV.Utils";  // of the custom commands

/// Commands of menus and shortcuts.
namespace CommandId {
inline constexpr uint32_t UpperCaseNames = 30000;
inline constexpr uint32_t LowerCaseNames = 30001;
inline constexpr uint32_t CapitaliseNames = 30002;
inline constexpr uint32_t UnderscoreToBlank = 30003;  // this and the five after it are in no menu
inline constexpr uint32_t UnderscoreToDot = 30004;
inline constexpr uint32_t BlankToUnderscore = 30005;
inline constexpr uint32_t BlankToDot = 30006;
inline constexpr uint32_t DotToUnderscore = 30007;
inline constexpr uint32_t DotToBlank = 30008;
inline constexpr uint32_t ReplaceInNames = 30010;
inline constexpr uint32_t RenameGroup = 30020;
inline constexpr uint32_t LineEndsToLf = 30101;
inline constexpr uint32_t LineEndsToCrLf = 30102;
inline constexpr uint32_t LineEndsToCr = 30103;
inline constexpr uint32_t TabsToSpaces = 30110;
inline constexpr uint32_t SortLines = 30150;
inline constexpr uint32_t FindAndReplace = 30151;
inline constexpr uint32_t ReadableXml = 30200;
inline constexpr uint32_t CompactXml = 30201;
inline constexpr uint32_t EncodeBase64 = 30210;
inline constexpr uint32_t DecodeBase64 = 30211;
inline constexpr uint32_t TakeOwnership = 30300;
inline constexpr uint32_t ResetAccess = 30310;
inline constexpr uint32_t GrantAccess = 30311;
inline constexpr uint32_t CreateLinks = 30350;
/// Each control panel command is the first plus an item's index; the last is included.
inline constexpr uint32_t FirstControlPanel = 6100;
inline constexpr uint32_t LastControlPanel = 7100;
}  // namespace CommandId

/// Commands for scripts.
namespace CustomCommandId {
inline constexpr uint32_t CreateLink = 30351;
inline constexpr uint32_t SortLines = 30352;
inline constexpr uint32_t FindAndReplace = 30353;
}  // namespace CustomCommandId

/// Requests to the elevated side.
namespace RequestId {
inline constexpr uint32_t TakeOwnership = 5000;
inline constexpr uint32_t GrantAccess = 5001;
inline constexpr uint32_t ResetAccess = 5003;
inline constexpr uint32_t CreateLink = 5004;
}  // namespace RequestId

/// Parameters of the custom commands, as scripts spell them.
namespace Parameter {
inline constexpr char LinkType[] = "LNKTYPE";
inline constexpr char LinkPath[] = "LNKSRC";
inline constexpr char LinkTarget[] = "LNKTRG";
inline constexpr char AsAdministrator[] = "ASADMIN";

inline constexpr char File[] = "FILE";
inline constexpr char Target[] = "TARGET";
inline constexpr char Overwrite[] = "OVERWRITE";
inline constexpr char KeepBackup[] = "KEEPBACKUP";
inline constexpr char Delete[] = "DELETE";
inline constexpr char Silent[] = "SILENT";
inline constexpr char IgnoreCase[] = "IGNORECASE";

inline constexpr char SortBy[] = "SORTBY";
inline constexpr char SortAs[] = "SORTAS";
inline constexpr char KeepTop[] = "KEEPTOP";
inline constexpr char KeepBottom[] = "KEEPBOTTOM";
inline constexpr char LineOffset[] = "LINEOFFSET";
inline constexpr char SkipLeadingSpace[] = "SKIPLEADINGSPACE";
inline constexpr char LanguageOrder[] = "LANGUAGEORDER";
inline constexpr char NaturalNumberOrder[] = "NATRUALNUMORDER";  // spelled so in scripts
inline constexpr char Reverse[] = "REVERSE";
inline constexpr char DateFormat[] = "DATEFORMAT";
inline constexpr char ItemSeparator[] = "ITEMSEP";
inline constexpr char ItemNumber[] = "ITEM";
inline constexpr char SubstringLength[] = "SUBSTRLEN";
inline constexpr char EndCharacter[] = "ENDCHAR";
inline constexpr char EndAtWhiteSpace[] = "ENDATWHITESPACE";

inline constexpr char Find[] = "FIND";
inline constexpr char ReplaceWith[] = "REPLACEWITH";
inline constexpr char Mode[] = "MODE";
inline constexpr char ReplaceAll[] = "REPLACEALL";
inline constexpr char ForceUtf8[] = "FORCEUTF8";
inline constexpr char Wildcard[] = "WILDCARD";
/// Not registered: a host that can show what would change sets it, and scripts of others never see it.
inline constexpr char Preview[] = "PREVIEW";
}  // namespace Parameter

}  // namespace FileUtils
