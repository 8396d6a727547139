// stream_records.h - counts the named streams in the block of records that the system gives for a file. Pure bytes: no
// handle, no system call.
#pragma once

#include <cstdint>
#include <span>

namespace Security {

/// What a file has beside its content.
struct StreamFigures {
    uint32_t count = 0;
    uint64_t allocatedSize = 0;  // bytes on disk, not of data
    bool operator==(const StreamFigures&) const = default;
};

/// `block` holds records one after the other, all numbers little-endian: offset of the next record from this one (4
/// bytes, 0 in the last), length of the name in bytes (4), size of the data (8), size on disk (8), name in UTF-16. A
/// block of zeros is a file without named streams.
///
/// The first record is never counted: it is a file's own content. A folder has no such content, so there the first
/// named stream goes uncounted; so the columns of both are computed alike. compatibility: 35
///
/// The walk ends at a record that does not lie within the block, or lies within the one before it: what is whole up to
/// there counts.
StreamFigures FiguresOfStreams(std::span<const uint8_t> block);

}  // namespace Security
