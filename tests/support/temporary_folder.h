// temporary_folder.h - a folder of its own for each test that touches files, and short ways to fill and read it.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace QVTest {

/// Of a folder, by name.
using Contents = std::map<std::wstring, std::string>;

/// Made empty, removed with everything in it (read-only files too) at the end.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::wstring& Path() const { return m_path; }
    /// The full path of an entry, which need not exist.
    std::wstring operator/(std::wstring_view name) const;

    /// Writes a file and gives its full path.
    std::wstring Write(std::wstring_view name, std::string_view bytes) const;
    /// The file's bytes; a missing file fails the test and gives "".
    std::string Read(std::wstring_view name) const;
    /// Names of all entries, sorted.
    std::vector<std::wstring> List() const;
    /// All files with their bytes: what is lost and what is left behind shows in one comparison. A folder has none.
    Contents ReadAll() const;
    /// Makes a folder in it and gives its full path.
    std::wstring MakeFolder(std::wstring_view name) const;

private:
    std::wstring m_path;
};

/// `text` as UTF-16 little-endian bytes, without a mark.
std::string Utf16(std::wstring_view text);

}  // namespace QVTest
