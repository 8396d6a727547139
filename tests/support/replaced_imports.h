// replaced_imports.h - puts a test's own functions in the place of system calls that a loaded module imports: so the
// built library can be made to fail where no real disk would.
#pragma once

#include <vector>

#include "win32/windows.h"

namespace QVTest {

/// One function in a table of loaded code, replaced while the object lives.
class ReplacedFunction {
public:
    /// Does nothing when there is no such place.
    ReplacedFunction(void** place, void* replacement);
    ReplacedFunction(ReplacedFunction&& other) noexcept : m_place(other.m_place), m_original(other.m_original) {
        other.m_place = nullptr;
    }
    ReplacedFunction& operator=(ReplacedFunction&&) = delete;
    ~ReplacedFunction();

    /// What stood there; null when nothing was replaced.
    void* Original() const { return m_original; }

private:
    void** m_place = nullptr;
    void* m_original = nullptr;
};

/// One import of one module. Does nothing when the module does not import `name`.
struct ReplacedImport : ReplacedFunction {
    ReplacedImport(HMODULE module, const char* name, void* replacement);
};

/// One slot in the table of a class: for all objects of the class of `object`.
struct ReplacedSlot : ReplacedFunction {
    template <class Function>
    ReplacedSlot(void* object, size_t slot, Function* replacement)
        : ReplacedFunction(*static_cast<void***>(object) + slot, reinterpret_cast<void*>(replacement)) {}
};

/// "LIBRARY.dll" names that the module imports from.
std::vector<const char*> ImportedLibraries(HMODULE module);

/// In the place of Sleep: patience that a test has not.
inline void WINAPI PauseShortly(DWORD milliseconds) {
    Sleep(milliseconds / 10);
}

}  // namespace QVTest
