// file_list.h - files as the host hands them out: one item, a list of items, and what can be done to them in one go.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Quorvane::SDK {

/// What the host's worker already knows of a property of an item. The layout after the status is this library's
/// choice; the size is the host's.
struct StoredPropertyValue {
    int32_t status;  // negative: `text` holds the value
    uint32_t reserved;
    wchar_t text[524];
};
static_assert(sizeof(StoredPropertyValue) == 1056);

/// One file or folder. Texts are copied with a closing zero, cut at `capacity` units; the result is the text's length
/// in units without the zero.
class IFileItem {
public:
    virtual uint32_t GetName(wchar_t* buffer, uint32_t capacity) = 0;      // slot 0
    virtual intptr_t Reserved1() { return 0; }                             // slot 1
    virtual uint32_t GetLocation(wchar_t* buffer, uint32_t capacity) = 0;  // slot 2: the folder that holds the item
    virtual uint32_t GetPath(wchar_t* buffer, uint32_t capacity) = 0;      // slot 3
    virtual intptr_t Reserved4() { return 0; }                             // slot 4
    virtual intptr_t Reserved5() { return 0; }                             // slot 5
    virtual intptr_t Reserved6() { return 0; }                             // slot 6
    virtual intptr_t Reserved7() { return 0; }                             // slot 7
    virtual intptr_t Reserved8() { return 0; }                             // slot 8
    virtual uint32_t GetAttributes() = 0;                                  // slot 9: as GetFileAttributesW gives them
    // Slots 10 to 12 are this library's choice.
    virtual bool GetStoredProperty(uint16_t module, uint16_t propertyId, StoredPropertyValue* value) = 0;  // slot 10
    virtual int32_t IsRemote() = 0;              // slot 11: above 0 when another machine should resolve names
    virtual void Release() = 0;                  // slot 12: only for items from IFileOperations::CreateFileItem
    virtual intptr_t Reserved13() { return 0; }  // slot 13
    virtual intptr_t Reserved14() { return 0; }  // slot 14
    virtual intptr_t Reserved15() { return 0; }  // slot 15
    virtual intptr_t Reserved16() { return 0; }  // slot 16
    virtual intptr_t Reserved17() { return 0; }  // slot 17
    virtual intptr_t Reserved18() { return 0; }  // slot 18
    virtual intptr_t Reserved19() { return 0; }  // slot 19
    virtual intptr_t Reserved20() { return 0; }  // slot 20
    virtual intptr_t Reserved21() { return 0; }  // slot 21
    virtual intptr_t Reserved22() { return 0; }  // slot 22
    virtual intptr_t Reserved23() { return 0; }  // slot 23
    virtual intptr_t Reserved24() { return 0; }  // slot 24
    virtual intptr_t Reserved25() { return 0; }  // slot 25
    virtual intptr_t Reserved26() { return 0; }  // slot 26
    virtual intptr_t Reserved27() { return 0; }  // slot 27
    virtual intptr_t Reserved28() { return 0; }  // slot 28
    virtual intptr_t Reserved29() { return 0; }  // slot 29
    virtual intptr_t Reserved30() { return 0; }  // slot 30
    virtual intptr_t Reserved31() { return 0; }  // slot 31
    virtual intptr_t Reserved32() { return 0; }  // slot 32
    virtual intptr_t Reserved33() { return 0; }  // slot 33
    virtual intptr_t Reserved34() { return 0; }  // slot 34
    virtual uint32_t QueryProperty(uint16_t propertyId, uint32_t one, StoredPropertyValue* value) = 0;  // slot 35
    virtual void RefreshProperty(uint32_t one) = 0;                                                     // slot 36

protected:
    ~IFileItem() = default;
};

/// An ordered list of items. The list holds its own reference to each: an item given to AddItem stays the caller's to
/// release, and one from GetItem lives as long as the list.
class IFileList {
public:
    virtual intptr_t Reserved0() { return 0; }       // slot 0
    virtual bool AddItem(IFileItem* item) = 0;       // slot 1
    virtual intptr_t Reserved2() { return 0; }       // slot 2
    virtual uint32_t GetCount() = 0;                 // slot 3
    virtual IFileItem* GetItem(uint32_t index) = 0;  // slot 4: null beyond the end
    virtual intptr_t Reserved5() { return 0; }       // slot 5
    virtual intptr_t Reserved6() { return 0; }       // slot 6
    virtual intptr_t Reserved7() { return 0; }       // slot 7
    virtual intptr_t Reserved8() { return 0; }       // slot 8
    virtual intptr_t Reserved9() { return 0; }       // slot 9
    virtual intptr_t Reserved10() { return 0; }      // slot 10
    virtual intptr_t Reserved11() { return 0; }      // slot 11
    virtual void Release() = 0;                      // slot 12

protected:
    ~IFileList() = default;
};

/// Host commands for IHostServices::RunHostCommand.
namespace HostCommand {
inline constexpr uint32_t GroupItems = 21110;      // fills the list with the items of the focused item's group
inline constexpr uint32_t HasFocusedItem = 21111;  // nonzero when there is a focused item
inline constexpr uint32_t MarkFiles = 21120;       // hands a list back to be marked in the panel; flags: MarkKind
inline constexpr uint32_t GetSelection = 21215;    // fills the list with the panel's selected items
}  // namespace HostCommand

/// Flags of GetSelection, passed as the host defines them.
namespace SelectionFlags {
inline constexpr uint32_t Names = 16;
inline constexpr uint32_t Files = 18;
inline constexpr uint32_t Access = 19;
}  // namespace SelectionFlags

/// Flags of MarkFiles. That skipped files are marked as well is this library's choice.
namespace MarkKind {
inline constexpr uint32_t Done = 0;
inline constexpr uint32_t Failed = 1;
inline constexpr uint32_t Skipped = 2;
}  // namespace MarkKind

}  // namespace Quorvane::SDK
