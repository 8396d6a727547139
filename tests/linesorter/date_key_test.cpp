#include "linesorter/date_key.h"

#include <cstdlib>
#include <ctime>

#include "linesorter/sample_lines.h"

namespace {

using namespace QVLineSorter;
using QVTest::As;

constexpr int kFails = -1;

TEST(ParseDate, ReadsEveryConversionInBothWidths) {
    const struct {
        const char *format, *text;
        int read;  // characters, or kFails
        CalendarFields expected;
    } cases[] = {
        {"%d/%m/%Y", "31/12/2023", 10, {.dayOfMonth = 31, .month = 11, .year = 123}},
        {"%Y-%m-%d %H:%M:%S",
         "2014-11-21 13:44:48 x",
         19,
         {.second = 48, .minute = 44, .hour = 13, .dayOfMonth = 21, .month = 10, .year = 114}},
        {"  %d  %m", "3 \t 4", 5, {.dayOfMonth = 3, .month = 3}},
        {"%e%k", "7 -8", 4, {.hour = -8, .dayOfMonth = 7}},
        {"%d", "99999999999999999999", 20, {.dayOfMonth = INT32_MAX}},
        {"%Y", "-99999999999", 12, {.year = 2147481748}},  // wraps
        {"%A %a", "MONDAY tue", 10, {.dayOfWeek = 2}},
        {"%d %B %Y", "5 Mars 2020", 11, {.dayOfMonth = 5, .month = 2, .year = 120}},
        {"%C", "20", 2, {.year = 100}},
        {"%y", "69", 2, {.year = 169}},
        {"%y", "70", 2, {.year = 70}},
        {"%I:%M %p", "12:30 am", 8, {.minute = 30, .hour = 0}},
        {"%I:%M %p", "12:30 PM", 8, {.minute = 30, .hour = 12}},
        {"%p", "xm", kFails, {}},
        {"%j %u %w", "33 1 5", 6, {.dayOfWeek = 5, .dayOfYear = 32}},
        {"%D", "11/23/14", 8, {.dayOfMonth = 23, .month = 10, .year = 114}},
        {"%R", "13:44", 5, {.minute = 44, .hour = 13}},
        {"%T|%X", "01:02:03|04:05:06", 17, {.second = 6, .minute = 5, .hour = 4}},
        {"%r", "01:02:03 pm", 11, {.second = 3, .minute = 2, .hour = 13}},
        {"%Ed%Om%EOY", "1 2 2014", 8, {.dayOfMonth = 1, .month = 1, .year = 114}},
        {"%q", "%", 1, {}},
        {"%q", "", kFails, {}},
        {"T%H", "t1", kFails, {}},
    };
    for (const auto& c : cases)
        QVTest::InBothWidths([&]<class CharT>(CharT) {
            CalendarFields fields;
            const size_t read = ParseDate<CharT>(As<CharT>(c.text), As<CharT>(c.format), fields);
            EXPECT_EQ(read, c.read == kFails ? kNoDate : static_cast<size_t>(c.read)) << c.format << " on " << c.text;
            EXPECT_EQ(fields, c.expected) << c.format << " on " << c.text;
        });
}

// Local time, with the daylight-saving flag off; -1 for what is no date, or lies before 1970.
TEST(DateKey, IsTheRuntimesAnswerWhateverWasRememberedBefore) {
    _putenv_s("TZ", "EST5EDT");
    _tzset();
    DateKeyReader reader;
    QVTest::Random random(12345);
    const auto below = [&](uint32_t limit) { return static_cast<int>(random.Below(limit)); };
    for (int i = 0; i < 2000; ++i) {
        std::tm date = {};
        date.tm_year = (i % 99 == 0 ? -50 : i % 3 == 0 ? 123 : 68) + below(8);
        date.tm_mon = below(14) - 1;
        date.tm_mday = below(34);
        date.tm_hour = below(30);
        date.tm_min = below(70);
        date.tm_sec = below(70);
        char text[100];
        std::snprintf(text, sizeof text, "%d-%d-%d %d:%d:%d", date.tm_year + 1900, date.tm_mon + 1, date.tm_mday,
                      date.tm_hour, date.tm_min, date.tm_sec);
        const int64_t expected = std::max<int64_t>(_mktime64(&date), -1);
        QVTest::InBothWidths([&]<class CharT>(CharT) {
            EXPECT_EQ(reader.Read<CharT>(As<CharT>(text), As<CharT>("%Y-%m-%d %H:%M:%S")), expected) << text;
        });
    }
    EXPECT_EQ(reader.Read<char>("1 May", "%Y"), -1);
    _putenv_s("TZ", "");
    _tzset();
}

TEST(FindUnsupportedConversion, SeesThroughModifiersAndNotIntoLiterals) {
    for (const wchar_t* format : {L"%d/%m/%Y", L"%%c", L"Zc%", L"%E", L"%C%z", L""})
        EXPECT_EQ(FindUnsupportedConversion(format), 0) << format;
    for (const wchar_t* format : {L"%Z", L"%d %c", L"%Ec", L"%OZ", L"%EOc", L"%%%c"})
        EXPECT_EQ(FindUnsupportedConversion(format), std::wstring(format).back()) << format;
}

}  // namespace
