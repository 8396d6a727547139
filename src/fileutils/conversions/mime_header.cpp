#include "fileutils/conversions/mime_header.h"

#include <algorithm>

#include "win32/text.h"

namespace FileUtils {
namespace {

/// Takes the first line off `rest`, without its LF or CR LF. False when there is none that ends.
bool TakeLine(std::string_view& rest, std::string_view& line) {
    const size_t end = rest.find('\n');
    if (end == std::string_view::npos) return false;
    line = rest.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    rest.remove_prefix(end + 1);
    return true;
}

bool BeginsWithField(std::string_view line, std::string_view field) {
    return line.size() > field.size() && line[field.size()] == ':' &&
           std::ranges::equal(line.substr(0, field.size()), field, {}, Win32::LowerAscii<char>,
                              Win32::LowerAscii<char>);
}

/// A field's name is letters, digits and marks without a blank, up to the colon.
bool IsField(std::string_view line) {
    const size_t colon = line.find(':');
    if (colon == 0 || colon == std::string_view::npos) return false;
    return std::ranges::all_of(line.substr(0, colon), [](char unit) { return unit > ' ' && unit < 0x7F; });
}

/// The size of a header made of fields; 0 when there is none.
size_t SizeOfFields(std::string_view bytes) {
    std::string_view rest = bytes;
    std::string_view line;
    bool isMime = false;
    bool isFirst = true;
    while (TakeLine(rest, line)) {
        if (line.empty()) return isMime ? bytes.size() - rest.size() : 0;
        const bool continues = !isFirst && (line.front() == ' ' || line.front() == '\t');
        if (!continues && !IsField(line)) return 0;
        isMime = isMime || BeginsWithField(line, "MIME-Version") || BeginsWithField(line, "Content-Transfer-Encoding");
        isFirst = false;
    }
    return 0;
}

/// The size of a header in which anything may stand between its name and its empty line; 0 when that is not found.
size_t SizeByLines(std::string_view bytes) {
    constexpr size_t kArea = 4096;
    constexpr int kMostLines = 11;
    constexpr int kFirstEmptyLine = 4;
    const std::string_view area = bytes.substr(0, kArea);
    std::string_view rest = area;
    std::string_view line;
    for (int number = 1; number <= kMostLines && TakeLine(rest, line); ++number)
        if (line.empty() && number >= kFirstEmptyLine) return area.size() - rest.size();
    return 0;
}

}  // namespace

std::string MimeHeader(std::string_view name) {
    std::string header = "MIME-Version: 1.0\r\nContent-Type: application/octet-stream; name=\"";
    header.append(name);
    header += "\"\r\nContent-Transfer-Encoding: base64\r\nContent-Disposition: attachment; filename=\"";
    header.append(name);
    header += "\"\r\n\r\n";
    return header;
}

std::string_view NameInHeader(std::string_view bytes) {
    constexpr std::string_view kBefore = "name=\"";
    std::string_view rest = bytes.substr(0, kNameArea);
    std::string_view line;
    if (!TakeLine(rest, line) || line.find("MIME-Version") == std::string_view::npos) return {};
    line = rest.substr(0, rest.find('\n'));
    const size_t before = line.find(kBefore);
    if (before == std::string_view::npos) return {};
    const std::string_view name = line.substr(before + kBefore.size());
    const size_t quote = name.find('"');
    return quote == std::string_view::npos ? std::string_view() : name.substr(0, quote);
}

size_t HeaderSize(std::string_view bytes) {
    const size_t size = SizeOfFields(bytes.substr(0, kHeaderArea));
    if (size > 0 || NameInHeader(bytes).empty()) return size;
    return SizeByLines(bytes);
}

}  // namespace FileUtils
