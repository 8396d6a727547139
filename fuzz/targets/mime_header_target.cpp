// MIME headers: names that come from files never leave their folder, and sizes stay inside the bytes.
#include "fileutils/conversions/mime_header.h"
#include "win32/file_name.h"

#include "fuzz/input.h"

namespace QVFuzz {

void RunMimeHeader(Bytes bytes) {
    const Exact<char> exact(Input(bytes).Rest());
    const std::string_view header = exact.View();
    Require(FileUtils::HeaderSize(header) <= header.size(), "a header lies in the bytes");
    const std::string_view name = FileUtils::NameInHeader(header);
    Require(
        name.empty() || (name.data() >= header.data() && name.data() + name.size() <= header.data() + header.size()),
        "so does its name");
    const std::wstring wide = Widened<wchar_t>(name);
    if (Win32::IsFileName(wide)) {
        Require(wide.find_first_of(L"\\/:*?\"<>|") == std::wstring::npos && wide != L"." && wide != L"..",
                "a plain name leads nowhere else");
        const std::string again = FileUtils::MimeHeader(name);
        Require(FileUtils::HeaderSize(again) == again.size() && FileUtils::NameInHeader(again) == name,
                "our own header is read back");
    }
    Win32::IsFileName(Widened<wchar_t>(header));
}

}  // namespace QVFuzz
