#include "support/replaced_imports.h"

#include <cstdint>
#include <string_view>

namespace QVTest {
namespace {

/// Tables of the loaded image, by their distance from its beginning.
template <class Table>
Table* TableAt(HMODULE module, DWORD offset) {
    return reinterpret_cast<Table*>(reinterpret_cast<uint8_t*>(module) + offset);
}

IMAGE_IMPORT_DESCRIPTOR* ImportsOf(HMODULE module) {
    const auto* const dos = TableAt<IMAGE_DOS_HEADER>(module, 0);
    const auto* const headers = TableAt<IMAGE_NT_HEADERS>(module, static_cast<DWORD>(dos->e_lfanew));
    return TableAt<IMAGE_IMPORT_DESCRIPTOR>(
        module, headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress);
}

void** PlaceOf(HMODULE module, std::string_view name) {
    for (const auto* library = ImportsOf(module); library->Name != 0; ++library) {
        const auto* wanted = TableAt<IMAGE_THUNK_DATA>(module, library->OriginalFirstThunk);
        auto* place = TableAt<void*>(module, library->FirstThunk);
        for (; wanted->u1.AddressOfData != 0; ++wanted, ++place) {
            if (IMAGE_SNAP_BY_ORDINAL(wanted->u1.Ordinal)) continue;
            const auto* const entry =
                TableAt<IMAGE_IMPORT_BY_NAME>(module, static_cast<DWORD>(wanted->u1.AddressOfData));
            if (name == reinterpret_cast<const char*>(entry->Name)) return place;
        }
    }
    return nullptr;
}

void Put(void** place, void* function) {
    DWORD protection = 0;
    VirtualProtect(place, sizeof(*place), PAGE_READWRITE, &protection);
    *place = function;
    VirtualProtect(place, sizeof(*place), protection, &protection);
}

}  // namespace

ReplacedImport::ReplacedImport(HMODULE module, const char* name, void* replacement)
    : ReplacedFunction(PlaceOf(module, name), replacement) {}

ReplacedFunction::ReplacedFunction(void** place, void* replacement) : m_place(place) {
    if (!m_place) return;
    m_original = *m_place;
    Put(m_place, replacement);
}

ReplacedFunction::~ReplacedFunction() {
    if (m_place) Put(m_place, m_original);
}

std::vector<const char*> ImportedLibraries(HMODULE module) {
    std::vector<const char*> names;
    for (const auto* library = ImportsOf(module); library->Name != 0; ++library)
        names.push_back(TableAt<const char>(module, library->Name));
    return names;
}

}  // namespace QVTest
