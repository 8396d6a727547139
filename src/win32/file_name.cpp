#include "win32/file_name.h"

#include <algorithm>
#include <array>

#include "win32/text.h"

namespace Win32 {
namespace {

/// The place of the first half pair; npos when every surrogate has its partner.
size_t FindLoneSurrogate(std::wstring_view name) {
    for (size_t at = 0; at < name.size(); ++at) {
        if (IsHighSurrogate(name[at]) && at + 1 < name.size() && IsLowSurrogate(name[at + 1]))
            ++at;
        else if (IsSurrogate(name[at]))
            return at;
    }
    return std::wstring_view::npos;
}

/// A device's name counts with any extension, with blanks before it, and with superscript digits for the ports. The
/// list is that of Windows' naming conventions, with the clock of older systems.
bool IsReserved(std::wstring_view name) {
    std::wstring_view base = name.substr(0, std::min(name.find(L'.'), name.size()));
    while (base.ends_with(L' ')) base.remove_suffix(1);
    if (base.size() < 3 || base.size() > 7) return false;
    std::wstring upper(base);
    std::ranges::transform(upper, upper.begin(), UpperAscii<wchar_t>);
    for (const wchar_t* device : {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$", L"CLOCK$"})
        if (upper == device) return true;
    if (upper.size() != 4 || (!upper.starts_with(L"COM") && !upper.starts_with(L"LPT"))) return false;
    const wchar_t digit = upper[3];
    return IsDigit(digit) || digit == 0xB9 || digit == 0xB2 || digit == 0xB3;
}

std::wstring Shown(wchar_t unit) {
    if (unit >= L' ' && !IsSurrogate(unit)) return std::wstring(L"\"") + unit + L"\"";
    constexpr wchar_t kDigits[] = L"0123456789ABCDEF";
    std::wstring text = L"U+";
    for (int shift = 12; shift >= 0; shift -= 4) text += kDigits[(unit >> shift) & 0xF];
    return text;
}

}  // namespace

bool IsForbiddenInNames(wchar_t unit) {
    // One bit for each ASCII character: every unit of every name is asked about.
    static constexpr std::array<uint64_t, 2> kForbidden = [] {
        std::array<uint64_t, 2> bits = {0xFFFFFFFF, 0};
        for (const wchar_t each : std::wstring_view(L"\\/:*?\"<>|")) bits[each / 64] |= uint64_t(1) << (each % 64);
        return bits;
    }();
    return unit < 0x80 && (kForbidden[unit / 64] >> (unit % 64) & 1) != 0;
}

NameCheck CheckFileName(std::wstring_view name) {
    if (name.empty()) return {NameFault::Empty, 0};
    const auto forbidden = std::ranges::find_if(name, IsForbiddenInNames);
    if (forbidden != name.end()) return {NameFault::InvalidCharacter, static_cast<size_t>(forbidden - name.begin())};
    const size_t lone = FindLoneSurrogate(name);
    if (lone != std::wstring_view::npos) return {NameFault::LoneSurrogate, lone};
    if (IsReserved(name)) return {NameFault::Reserved, 0};
    // The system would silently drop them, and the file would get another name than the one asked for.
    if (name.back() == L'.' || name.back() == L' ') return {NameFault::TrailingDotOrBlank, name.size() - 1};
    if (name.size() > kLongestName) return {NameFault::TooLong, kLongestName};
    return {};
}

bool IsVerbatimName(std::wstring_view name) {
    const NameFault fault = CheckFileName(name).fault;
    return fault == NameFault::Reserved || (fault == NameFault::TrailingDotOrBlank && name != L"." && name != L"..");
}

std::wstring DescribeNameFault(std::wstring_view name, const NameCheck& check) {
    switch (check.fault) {
        case NameFault::None: return {};
        case NameFault::Empty: return L"the name is empty";
        case NameFault::InvalidCharacter:
            return L"the character " + Shown(name[check.position]) + L" cannot be in a name";
        case NameFault::LoneSurrogate:
            return L"the character " + Shown(name[check.position]) + L" is half of a surrogate pair";
        case NameFault::Reserved: return L"the name is reserved for a device";
        case NameFault::TrailingDotOrBlank:
            return name.back() == L'.' ? L"a name cannot end with a dot" : L"a name cannot end with a blank";
        case NameFault::TooLong:
            return L"the name has " + std::to_wstring(name.size()) + L" characters, " + std::to_wstring(kLongestName) +
                   L" are possible";
    }
    return {};
}

}  // namespace Win32
