// targets.h - the fuzz targets: each takes any bytes at all, feeds them to one core, and ends the process when the core
// does something that it must not. Sanitizers see the rest.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace QVFuzz {

using Bytes = std::span<const uint8_t>;

struct Target {
    const char* name;  // also of the folder with its seeds
    void (*run)(Bytes bytes);
};

/// Those that this platform can run: the contract with the host needs Windows' 16-bit wchar_t.
std::span<const Target> Targets();

// One file each in targets/.
void RunEncoding(Bytes bytes);
void RunDocument(Bytes bytes);
void RunMatching(Bytes bytes);
void RunWildcard(Bytes bytes);
void RunSortKeys(Bytes bytes);
void RunSortLines(Bytes bytes);
void RunDateKeys(Bytes bytes);
void RunNameTemplate(Bytes bytes);
void RunSearchAndReplace(Bytes bytes);
void RunRegex(Bytes bytes);
void RunRenamePlan(Bytes bytes);
void RunUndoSession(Bytes bytes);
void RunBase64(Bytes bytes);
void RunMimeHeader(Bytes bytes);
void RunTextConversion(Bytes bytes);
void RunStreamRecords(Bytes bytes);
void RunJunction(Bytes bytes);
void RunXmlLayout(Bytes bytes);
void RunProfiles(Bytes bytes);
void RunElevatedRequest(Bytes bytes);

}  // namespace QVFuzz
