#include "host/contract/file_operations.h"

#include <algorithm>
#include <cstdint>

#include "host/app/host_text.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace QVHost {
namespace {

constexpr std::wstring_view kDefaultDate = L"yyyy-MM-dd";

std::wstring Padded(int value, size_t width) {
    std::wstring digits = std::to_wstring(value);
    if (digits.size() < width) digits.insert(0, width - digits.size(), L'0');
    return digits;
}

struct DateParts {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
};

std::wstring FormatDate(const DateParts& date, std::wstring_view format) {
    const struct {
        std::wstring_view letters;
        int value;
        size_t width;
    } parts[] = {
        {L"yyyy", date.year, 4}, {L"yy", date.year % 100, 2}, {L"MM", date.month, 2},  {L"M", date.month, 1},
        {L"dd", date.day, 2},    {L"d", date.day, 1},         {L"HH", date.hour, 2},   {L"H", date.hour, 1},
        {L"mm", date.minute, 2}, {L"m", date.minute, 1},      {L"ss", date.second, 2}, {L"s", date.second, 1},
    };
    if (format.empty()) format = kDefaultDate;
    std::wstring text;
    while (!format.empty()) {
        const auto part =
            std::ranges::find_if(parts, [&](const auto& each) { return format.starts_with(each.letters); });
        if (part == std::end(parts)) {
            text += format.front();
            format.remove_prefix(1);
        } else {
            text += Padded(part->value, part->width);
            format.remove_prefix(part->letters.size());
        }
    }
    return text;
}

std::wstring FormatSize(uint64_t bytes, std::wstring_view unit) {
    constexpr uint64_t kKilo = 1024;
    uint64_t divisor = 1;
    if (EqualIgnoringCase(unit, L"KB")) divisor = kKilo;
    if (EqualIgnoringCase(unit, L"MB")) divisor = kKilo * kKilo;
    if (EqualIgnoringCase(unit, L"GB")) divisor = kKilo * kKilo * kKilo;
    return std::to_wstring(bytes / divisor + (bytes % divisor != 0 ? 1 : 0));
}

std::wstring LocalDate(const FILETIME& time, std::wstring_view format) {
    FILETIME local = {};
    SYSTEMTIME parts = {};
    SYSTEMTIME universal = {};
    // By the rules of the date itself: a file of last winter shows its winter time in summer too.
    if (!FileTimeToSystemTime(&time, &universal) || !SystemTimeToTzSpecificLocalTime(nullptr, &universal, &parts)) {
        if (!FileTimeToLocalFileTime(&time, &local) || !FileTimeToSystemTime(&local, &parts)) return {};
    }
    return FormatDate({parts.wYear, parts.wMonth, parts.wDay, parts.wHour, parts.wMinute, parts.wSecond}, format);
}

using Read = std::wstring (*)(const WIN32_FILE_ATTRIBUTE_DATA&, std::wstring_view format);

struct Property {
    const wchar_t* name;
    Read read;
};

constexpr Property kProperties[] = {
    {L"size",
     [](const WIN32_FILE_ATTRIBUTE_DATA& data, std::wstring_view format) {
         if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) return std::wstring();
         return FormatSize(static_cast<uint64_t>(data.nFileSizeHigh) << 32 | data.nFileSizeLow, format);
     }},
    {L"modified", [](const WIN32_FILE_ATTRIBUTE_DATA& data,
                     std::wstring_view format) { return LocalDate(data.ftLastWriteTime, format); }},
    {L"created", [](const WIN32_FILE_ATTRIBUTE_DATA& data,
                    std::wstring_view format) { return LocalDate(data.ftCreationTime, format); }},
    {L"accessed", [](const WIN32_FILE_ATTRIBUTE_DATA& data,
                     std::wstring_view format) { return LocalDate(data.ftLastAccessTime, format); }},
};

}  // namespace

const wchar_t* PropertyName(size_t index) {
    return index < std::size(kProperties) ? kProperties[index].name : nullptr;
}

std::optional<std::wstring> PropertyText(const std::wstring& path, const std::wstring& name,
                                         const std::wstring& format) {
    for (const Property& property : kProperties) {
        if (!EqualIgnoringCase(property.name, name)) continue;
        WIN32_FILE_ATTRIBUTE_DATA data = {};
        const bool isThere = GetFileAttributesExW(Win32::ExtendedPath(path).c_str(), GetFileExInfoStandard, &data);
        return isThere ? property.read(data, format) : std::wstring();
    }
    return std::nullopt;
}

}  // namespace QVHost
