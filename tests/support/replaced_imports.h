// replaced_imports.h - puts a test's own functions in the place of system calls that a loaded module imports: so the
// built library can be made to fail where no real disk would.
#pragma once

#include <vector>

#include "win32/windows.h"

namespace QVTest {

/// One import of one module, replaced while the object lives.
class ReplacedImport {
public:
    /// Does nothing when the module does not import `name`.
    ReplacedImport(HMODULE module, const char* name, void* replacement);
    ReplacedImport(ReplacedImport&& other) noexcept : m_place(other.m_place), m_original(other.m_original) {
        other.m_place = nullptr;
    }
    ReplacedImport& operator=(ReplacedImport&&) = delete;
    ~ReplacedImport();

    /// What stood there; null when nothing was replaced.
    void* Original() const { return m_original; }

private:
    void** m_place = nullptr;
    void* m_original = nullptr;
};

/// "LIBRARY.dll" names that the module imports from.
std::vector<const char*> ImportedLibraries(HMODULE module);

}  // namespace QVTest
