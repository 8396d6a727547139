#include "fileutils/mime_header.h"

#include <algorithm>

namespace FileUtils {
namespace {

constexpr size_t kLongestName = 255;  // units, of every file system in use

/// Takes the first line off `rest`, without its LF or CR LF. False when there is none that ends.
bool TakeLine(std::string_view& rest, std::string_view& line) {
    const size_t end = rest.find('\n');
    if (end == std::string_view::npos) return false;
    line = rest.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    rest.remove_prefix(end + 1);
    return true;
}

char LowerCase(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool BeginsWithField(std::string_view line, std::string_view field) {
    return line.size() > field.size() && line[field.size()] == ':' &&
           std::ranges::equal(line.substr(0, field.size()), field, {}, LowerCase, LowerCase);
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

/// What a device name is compared without: the extension, and the blanks before it.
std::wstring_view BaseOf(std::wstring_view name) {
    name = name.substr(0, name.find(L'.'));
    while (name.ends_with(L' ')) name.remove_suffix(1);
    return name;
}

bool IsDeviceName(std::wstring_view name) {
    std::wstring base(BaseOf(name));
    for (wchar_t& unit : base)
        if (unit >= L'a' && unit <= L'z') unit = static_cast<wchar_t>(unit - L'a' + L'A');
    for (const wchar_t* device : {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$", L"CLOCK$"})
        if (base == device) return true;
    // COM and LPT with a digit, of which the system knows three written small and high up too.
    const bool hasNumber = base.starts_with(L"COM") || base.starts_with(L"LPT");
    return hasNumber && base.size() == 4 &&
           std::wstring_view(L"0123456789\u00B9\u00B2\u00B3").find(base[3]) != std::wstring_view::npos;
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

bool IsPlainFileName(std::wstring_view name) {
    if (name.empty() || name.size() > kLongestName || name.ends_with(L'.') || name.ends_with(L' ')) return false;
    const auto isForbidden = [](wchar_t unit) {
        return unit < L' ' || std::wstring_view(L"<>:\"/\\|?*").find(unit) != std::wstring_view::npos;
    };
    return std::ranges::none_of(name, isForbidden) && !IsDeviceName(name);
}

}  // namespace FileUtils
