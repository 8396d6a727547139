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

/// A library whose pauses take a tenth of their time: a person is waited for nowhere in a test.
class HurriedLibrary {
public:
    explicit HurriedLibrary(HMODULE library)
        : m_sleep(library, "Sleep", reinterpret_cast<void*>(&SleepShortly)),
          m_wait(library, "SleepConditionVariableSRW", reinterpret_cast<void*>(&WaitShortly)) {}

private:
    static void WINAPI SleepShortly(DWORD milliseconds) { Sleep(milliseconds / 10); }
    static BOOL WINAPI WaitShortly(CONDITION_VARIABLE* condition, SRWLOCK* lock, DWORD milliseconds, ULONG flags) {
        return SleepConditionVariableSRW(condition, lock, milliseconds == INFINITE ? INFINITE : milliseconds / 10,
                                         flags);
    }

    ReplacedImport m_sleep;
    ReplacedImport m_wait;
};

}  // namespace QVTest
