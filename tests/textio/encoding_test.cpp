#include "textio/encoding.h"

#include <string>

#include <gtest/gtest.h>

using namespace QVUtils;
using namespace std::string_literals;

namespace {

EncodingKind Detect(const std::string& bytes) {
    return DetectEncoding(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
}

}  // namespace

TEST(DetectEncoding, AppliesItsRulesInOrder) {
    constexpr auto kCodePage = EncodingKind::CodePage;
    constexpr auto kUtf16 = EncodingKind::Utf16;
    constexpr auto kUtf8 = EncodingKind::Utf8;
    constexpr auto kNotText = EncodingKind::NotText;
    const std::tuple<const char*, std::string, EncodingKind> cases[] = {
        {"no bytes are text", "", kCodePage},
        {"one letter", "A", kCodePage},
        {"a UTF-16 mark wins over what follows", "\xFF\xFE plain", kUtf16},
        {"half a mark is not one", "\xFF", kNotText},
        {"five small units without a mark", "A\0B\0C\0D\0E\0"s, kUtf16},
        {"nine bytes are not five units", "A\0B\0C\0D\0E"s, kNotText},
        {"a zero unit among them", "A\0B\0\0\0D\0E\0"s, kNotText},
        {"a UTF-8 mark wins over binary bytes", "\xEF\xBB\xBF\x01\x02\x03\x04", kUtf8},
        {"a declaration of UTF-8", "<?xml version='1.0' encoding=\"UTF-8\"?>\n\x01\x02\x03", kUtf8},
        {"a declaration in lower case decides nothing", "<?xml encoding=\"utf-8\"?>\n", kCodePage},
        {"a declaration without a line end", "<?xml encoding=\"UTF-8\"?>", kCodePage},
        {"a zero byte before the line end", "<?xml \"UTF-8\"\0?>\n"s, kCodePage},
        {"the name behind the first line", "<?xml ?>\nUTF-8", kCodePage},
        {"another case of the element", "<?XML \"UTF-8\"?>\n", kCodePage},
        {"20 of 100 suspicious", std::string(80, 'a') + std::string(20, '\x01'), kCodePage},
        {"21 of 100 suspicious", std::string(79, 'a') + std::string(21, '\x01'), kNotText},
        {"3 of 14: the share is cut to an integer", std::string(11, 'a') + "\x01\x01\x01", kNotText},
        {"tab and line ends are text", "\t\r\n\t\r\n", kCodePage},
        {"shift-out is not", "\x0E", kNotText},
        {"the middle of the upper half is text", "\xB0\xC4\xDF", kCodePage},
        {"the rest of it is not", "\x80\xAF\xE0\xE4\xFF", kNotText},
        {"delete is not", "\x7F", kNotText},
    };
    for (const auto& [why, bytes, expected] : cases) EXPECT_EQ(Detect(bytes), expected) << why;
}

TEST(ByteOrderMarkSize, CountsOnlyTheMarkOfItsKind) {
    const uint8_t utf8[] = {0xEF, 0xBB, 0xBF};
    const uint8_t utf16[] = {0xFF, 0xFE, 0x41};
    EXPECT_EQ(ByteOrderMarkSize(EncodingKind::Utf8, utf8, 3), 3u);
    EXPECT_EQ(ByteOrderMarkSize(EncodingKind::Utf8, utf8, 2), 0u);
    EXPECT_EQ(ByteOrderMarkSize(EncodingKind::Utf16, utf16, 3), 2u);
    EXPECT_EQ(ByteOrderMarkSize(EncodingKind::CodePage, utf8, 3), 0u);
}
