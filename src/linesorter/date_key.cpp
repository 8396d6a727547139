#include "linesorter/date_key.h"

#include <array>
#include <ctime>
#include <limits>
#include <optional>
#include <string>

#include "linesorter/sort_key.h"

namespace QVLineSorter {
namespace {

constexpr std::array<std::string_view, 7> kDayNames = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                       "Thursday", "Friday", "Saturday"};
constexpr std::array<std::string_view, 7> kShortDayNames = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
// "Mars": so "March" fits %b and no %B. compatibility: 14
constexpr std::array<std::string_view, 12> kMonthNames = {"January",   "February", "Mars",     "April",
                                                          "May",       "June",     "July",     "August",
                                                          "September", "October",  "November", "December"};
constexpr std::array<std::string_view, 12> kShortMonthNames = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                               "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::array<std::string_view, 2> kDayHalves = {"am", "pm"};

/// Numbers from a file may be of any size: what does not fit into a field wraps, as it would in the runtime.
constexpr int32_t Wrap(int64_t number) {
    return static_cast<int32_t>(number);
}

template <class CharT>
constexpr CharT LowerCase(CharT unit) {
    return unit >= CharT('A') && unit <= CharT('Z') ? static_cast<CharT>(unit + 0x20) : unit;
}

/// The text still to be read.
template <class CharT>
class DateText {
public:
    explicit DateText(std::basic_string_view<CharT> text) : m_text(text) {}

    bool AtEnd() const { return m_position == m_text.size(); }
    size_t Position() const { return m_position; }

    void SkipWhiteSpace() {
        while (!AtEnd() && IsWhiteSpace(m_text[m_position])) ++m_position;
    }
    bool SkipOne() {
        if (AtEnd()) return false;
        ++m_position;
        return true;
    }
    bool Take(CharT unit) {
        if (AtEnd() || m_text[m_position] != unit) return false;
        ++m_position;
        return true;
    }
    /// A number in the manner of strtol: cut to the range of 32 bits.
    std::optional<int64_t> TakeNumber() {
        const ParsedInteger parsed = ParseInteger(m_text.substr(m_position));
        if (parsed.length == 0) return std::nullopt;
        m_position += parsed.length;
        if (parsed.value > std::numeric_limits<int32_t>::max()) return std::numeric_limits<int32_t>::max();
        if (parsed.value < std::numeric_limits<int32_t>::min()) return std::numeric_limits<int32_t>::min();
        return parsed.value;
    }
    /// The index of the first word that the text goes on with, whatever the case of its letters.
    template <size_t count>
    std::optional<int32_t> TakeWord(const std::array<std::string_view, count>& words) {
        for (size_t i = 0; i < count; ++i) {
            if (!GoesOnWith(words[i])) continue;
            m_position += words[i].size();
            return static_cast<int32_t>(i);
        }
        return std::nullopt;
    }

private:
    bool GoesOnWith(std::string_view word) const {
        if (m_text.size() - m_position < word.size()) return false;
        for (size_t i = 0; i < word.size(); ++i)
            if (LowerCase(m_text[m_position + i]) != static_cast<CharT>(LowerCase(word[i]))) return false;
        return true;
    }

    std::basic_string_view<CharT> m_text;
    size_t m_position = 0;
};

/// A format that one letter stands for, or "".
constexpr std::string_view FormatOfLetter(char letter) {
    switch (letter) {
        case 'D': return "%m/%d/%y";
        case 'R': return "%H:%M";
        case 'T':
        case 'X': return "%H:%M:%S";
        case 'r': return "%I:%M:%S %p";
        case 'x': return "%Y:%m:%d";  // compatibility: 15
        default: return {};
    }
}

template <class CharT, class FormatCharT>
bool ReadByFormat(DateText<CharT>& text, std::basic_string_view<FormatCharT> format, CalendarFields& fields);

/// Reads what one conversion letter stands for.
template <class CharT, class FormatCharT>
bool ReadConversion(DateText<CharT>& text, FormatCharT letter, CalendarFields& fields) {
    const auto number = [&](auto&& store) {
        const std::optional<int64_t> value = text.TakeNumber();
        if (value) store(*value);
        return value.has_value();
    };
    const auto word = [&](const auto& words, auto&& store) {
        const std::optional<int32_t> index = text.TakeWord(words);
        if (index) store(*index);
        return index.has_value();
    };
    const bool isAscii = letter == (letter & 0x7F);
    const char ascii = isAscii ? static_cast<char>(letter) : '\0';
    if (const std::string_view format = FormatOfLetter(ascii); !format.empty())
        return ReadByFormat(text, format, fields);
    switch (ascii) {
        case '%': return text.Take(CharT('%'));
        case 'n': return text.Take(CharT('\n'));
        case 't': return text.Take(CharT('\t'));
        case 'A': return word(kDayNames, [&](int32_t n) { fields.dayOfWeek = n; });
        case 'a': return word(kShortDayNames, [&](int32_t n) { fields.dayOfWeek = n; });
        case 'B': return word(kMonthNames, [&](int32_t n) { fields.month = n; });
        case 'b':
        case 'h': return word(kShortMonthNames, [&](int32_t n) { fields.month = n; });
        case 'C': return number([&](int64_t n) { fields.year = Wrap((n - 19) * 100); });
        case 'd':
        case 'e': return number([&](int64_t n) { fields.dayOfMonth = Wrap(n); });
        case 'H':
        case 'k': return number([&](int64_t n) { fields.hour = Wrap(n); });
        case 'I':
        case 'l': return number([&](int64_t n) { fields.hour = n == 12 ? 0 : Wrap(n); });
        case 'j': return number([&](int64_t n) { fields.dayOfYear = Wrap(n - 1); });
        case 'M': return number([&](int64_t n) { fields.minute = Wrap(n); });
        case 'm': return number([&](int64_t n) { fields.month = Wrap(n - 1); });
        case 'p':
            return word(kDayHalves, [&](int32_t half) {
                if (half == 1) fields.hour = fields.hour == 0 ? 12 : Wrap(int64_t{fields.hour} + 12);
            });
        case 'S': return number([&](int64_t n) { fields.second = Wrap(n); });
        // A week alone names no day, so its number is read and changes no field.
        case 'U':
        case 'V':
        case 'W': return number([](int64_t) {});
        case 'u': return number([&](int64_t n) { fields.dayOfWeek = Wrap(n - 1); });
        case 'w': return number([&](int64_t n) { fields.dayOfWeek = Wrap(n); });
        case 'Y': return number([&](int64_t n) { fields.year = Wrap(n - 1900); });
        case 'y': return number([&](int64_t n) { fields.year = Wrap(n < 70 ? n + 100 : n); });
        default: return text.Take(CharT('%')) || (text.SkipOne() && text.Take(static_cast<CharT>(letter)));
    }
}

/// Where the conversion letter stands that belongs to the percent sign at `percent`; the format's end when there is
/// none.
template <class FormatCharT>
size_t ConversionLetter(std::basic_string_view<FormatCharT> format, size_t percent) {
    size_t letter = percent + 1;
    while (letter < format.size() && (format[letter] == FormatCharT('E') || format[letter] == FormatCharT('O')))
        ++letter;
    return letter;
}

template <class CharT, class FormatCharT>
bool ReadByFormat(DateText<CharT>& text, std::basic_string_view<FormatCharT> format, CalendarFields& fields) {
    for (size_t i = 0; i < format.size(); ++i) {
        const FormatCharT unit = format[i];
        if (IsWhiteSpace(unit)) {
            text.SkipWhiteSpace();
        } else if (unit != FormatCharT('%')) {
            if (!text.Take(static_cast<CharT>(unit))) return false;
        } else {
            i = ConversionLetter(format, i);
            const bool isLast = i >= format.size();  // a percent sign at the end stands for itself
            if (isLast) return text.Take(CharT('%'));
            if (!ReadConversion(text, format[i], fields)) return false;
        }
    }
    return true;
}

int64_t RuntimeTimeOf(const CalendarFields& fields) {
    std::tm calendar = {};
    calendar.tm_sec = fields.second;
    calendar.tm_min = fields.minute;
    calendar.tm_hour = fields.hour;
    calendar.tm_mday = fields.dayOfMonth;
    calendar.tm_mon = fields.month;
    calendar.tm_year = fields.year;
    calendar.tm_wday = fields.dayOfWeek;
    calendar.tm_yday = fields.dayOfYear;
    calendar.tm_isdst = fields.daylightSaving;
#ifdef _WIN32
    const int64_t time = _mktime64(&calendar);
#else
    const int64_t time = std::mktime(&calendar);
#endif
    return time < 0 ? kNoDateKey
                    : time;  // some runtimes count backwards before 1970, others fail: all such keys are equal
}

}  // namespace

wchar_t FindUnsupportedConversion(std::wstring_view format) {
    for (size_t i = 0; i < format.size(); ++i) {
        if (format[i] != L'%') continue;
        i = ConversionLetter(format, i);
        if (i < format.size() && (format[i] == L'Z' || format[i] == L'c')) return format[i];
    }
    return 0;
}

template <class CharT>
size_t ParseDate(std::basic_string_view<CharT> text, std::basic_string_view<CharT> format, CalendarFields& fields) {
    DateText<CharT> reader(text);
    return ReadByFormat(reader, format, fields) ? reader.Position() : kNoDate;
}

template <class CharT>
int64_t DateKeyReader::Read(std::basic_string_view<CharT> text, std::basic_string_view<CharT> format) {
    CalendarFields fields;
    ParseDate(text, format, fields);
    if (fields.year > 1900) fields.year -= 1900;  // a full year that came in through %y
    return TimeOf(fields);
}

int64_t DateKeyReader::TimeOf(const CalendarFields& fields) {
    // The daylight-saving flag is always 0, so a day's times all lie the same distance after its midnight. Only for
    // usual values, far from the ends of what the runtime converts, may the sum stand for its answer.
    const auto within = [](int32_t value, int32_t first, int32_t last) { return value >= first && value <= last; };
    const bool isUsual = within(fields.year, 71, 1000) && within(fields.month, 0, 11) &&
                         within(fields.dayOfMonth, 1, 31) && within(fields.hour, 0, 23) &&
                         within(fields.minute, 0, 59) && within(fields.second, 0, 60);
    if (!isUsual) return RuntimeTimeOf(fields);
    const bool isRemembered = m_midnight >= 0 && m_day.dayOfMonth == fields.dayOfMonth && m_day.month == fields.month &&
                              m_day.year == fields.year;
    if (!isRemembered) {
        m_day = {.dayOfMonth = fields.dayOfMonth, .month = fields.month, .year = fields.year};
        m_midnight = RuntimeTimeOf(m_day);
        if (m_midnight < 0) return RuntimeTimeOf(fields);
    }
    return m_midnight + int64_t{fields.hour} * 3600 + int64_t{fields.minute} * 60 + fields.second;
}

#define QV_INSTANTIATE(CharT)                                                                                 \
    template size_t ParseDate(std::basic_string_view<CharT>, std::basic_string_view<CharT>, CalendarFields&); \
    template int64_t DateKeyReader::Read(std::basic_string_view<CharT>, std::basic_string_view<CharT>);
QV_INSTANTIATE(char)
#ifdef _WIN32
QV_INSTANTIATE(wchar_t)
#else
QV_INSTANTIATE(char16_t)
#endif
#undef QV_INSTANTIATE

}  // namespace QVLineSorter
