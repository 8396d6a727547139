// library_flags_test.cpp - the built library as the system's loader sees it.
#include <cctype>

#include "support/replaced_imports.h"
#include "support/services_of_host.h"

using namespace QVTest;

TEST(Library, IsProtectedAgainstInjectedCode) {
    const InProcessHost host;
    const auto* const begin = reinterpret_cast<const char*>(host.Library());
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(begin);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(begin + dos->e_lfanew);
    const WORD flags = headers->OptionalHeader.DllCharacteristics;
    EXPECT_TRUE(flags & IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE) << "its address is random";
    EXPECT_TRUE(flags & 0x0020) << "in the whole 64-bit range";
    EXPECT_TRUE(flags & IMAGE_DLLCHARACTERISTICS_NX_COMPAT) << "data is never executed";
    EXPECT_GT(headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_BASERELOC].Size, 0u) << "and it can move";
    const auto* section = reinterpret_cast<const IMAGE_SECTION_HEADER*>(
        reinterpret_cast<const char*>(&headers->OptionalHeader) + headers->FileHeader.SizeOfOptionalHeader);
    for (int at = 0; at < headers->FileHeader.NumberOfSections; ++at, ++section) {
        const bool isCode = (section->Characteristics & IMAGE_SCN_MEM_EXECUTE) != 0;
        EXPECT_FALSE(isCode && (section->Characteristics & IMAGE_SCN_MEM_WRITE)) << section->Name;
    }
}

// Windows, the shell and COM take as long to load as everything else a command needs, and most commands do without.
TEST(Library, NeedsFewOfTheSystemsLibrariesToStart) {
    const InProcessHost host;
    const std::string known = " advapi32.dll kernel32.dll msvcrt.dll ";
    for (std::string name : ImportedLibraries(host.Library())) {
        for (char& letter : name) letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
        EXPECT_NE(known.find(" " + name + " "), std::string::npos) << name;
    }
}
