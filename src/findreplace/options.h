// options.h - the option word of find and replace: at once the request, what travels to the callback, and the setting
// that is stored. Its bits never change their meaning.
#pragma once

#include <cstdint>

namespace QVFindAndReplace {

namespace Option {
inline constexpr uint32_t ModeOne = 0x1;
inline constexpr uint32_t ModeMany = 0x2;
inline constexpr uint32_t ModeManySame = 0x4;
inline constexpr uint32_t ModeMultiline = 0x8;
inline constexpr uint32_t IgnoreCase = 0x100;
inline constexpr uint32_t ReplaceAll = 0x200;         // no questions
inline constexpr uint32_t RegularExpression = 0x400;  // stored, but the engine never looks at it
inline constexpr uint32_t ForceUtf8 = 0x800;          // 8-bit text counts as UTF-8
inline constexpr uint32_t Silent = 0x1000;            // no dialogs and no message boxes
inline constexpr uint32_t Wildcard = 0x2000;
inline constexpr uint32_t SaveAs = 0x10000000;  // write to a separate target
inline constexpr uint32_t KeepBackup = 0x20000000;
inline constexpr uint32_t DropBackup = 0x40000000;  // back up while writing, delete the backup afterwards
inline constexpr uint32_t Overwrite = 0x80000000;   // of an existing "Save as" target
}  // namespace Option

enum class Mode { None, One, Many, ManySame, Multiline };

/// The mode of an option word; when several bits are set, the most particular mode wins.
constexpr Mode ModeOf(uint32_t options) {
    if (options & Option::ModeMultiline) return Mode::Multiline;
    if (options & Option::ModeMany) return Mode::Many;
    if (options & Option::ModeManySame) return Mode::ManySame;
    if (options & Option::ModeOne) return Mode::One;
    return Mode::None;
}

}  // namespace QVFindAndReplace
