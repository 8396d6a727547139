// item_identity.h - which file or folder something is, whatever it is called and whatever folder of its volume it is
// in.
#pragma once

#include <cstdint>

namespace Win32 {

struct ItemIdentity {
    uint32_t volume = 0;  // serial number
    uint64_t index = 0;   // of the item on the volume; 0: not known
    // Of a file whose number a new item may get once it is deleted (its upper 16 bits, which count that, are 0): when
    // it was written and read last, in 100 nanoseconds since 1601. 0: the number alone tells. A folder has none, since
    // what is put into it changes them.
    uint64_t written = 0;
    uint64_t accessed = 0;

    explicit operator bool() const { return index != 0; }
    /// False for a folder whose number another folder may have by now. Another number still is another folder.
    bool IsUnique() const { return index >> 48 != 0 || written != 0; }
};

/// A file that was written or read since stays the same; one with the number of a file that was deleted has been both.
/// A folder with that number has no times, and is another item.
inline bool IsSameItem(const ItemIdentity& left, const ItemIdentity& right) {
    if (left.volume != right.volume || left.index != right.index) return false;
    const bool isOneKind = (left.written == 0) == (right.written == 0);
    return isOneKind && (left.written == right.written || left.accessed == right.accessed);
}

}  // namespace Win32
