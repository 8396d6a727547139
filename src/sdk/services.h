// services.h - the service objects that the host hands out on request, and the records that travel through them.
#pragma once

#include <cstdint>

#include "sdk/file_list.h"
#include "sdk/rename_result.h"

namespace Quorvane::SDK {

/// Numbers for IHostServices::AcquireService.
namespace ServiceNumber {
inline constexpr uint32_t FileOperations = 3000;
inline constexpr uint32_t FolderRefresh = 3010;
inline constexpr uint32_t PropertySet = 3100;
inline constexpr uint32_t ElevatedChannel = 3250;
}  // namespace ServiceNumber

/// Renames that are carried out together when the batch is committed.
class IRenameBatch {
public:
    virtual intptr_t Reserved0() { return 0; }                                           // slot 0
    virtual bool AddRename(IFileItem* item, const wchar_t* newName, uint32_t zero) = 0;  // slot 1

protected:
    ~IRenameBatch() = default;
};

/// One rename that is handed to the host. How the record looks is this library's choice.
struct RenameRowInfo {
    uint32_t row;              // the number by which the callback hears of it
    uint32_t reserved;         // 0
    const wchar_t* path;       // of the file or folder now
    const wchar_t* newName;    // within its folder
    const wchar_t* asideName;  // a name in the same folder to go through where the system needs one; null: the host's
};

/// Service 3000. The host reports renames that the system refuses; the library does not repeat it.
class IFileOperations {
public:
    virtual intptr_t Reserved0() { return 0; }     // slot 0
    virtual intptr_t Reserved1() { return 0; }     // slot 1
    virtual intptr_t Reserved2() { return 0; }     // slot 2
    virtual intptr_t Reserved3() { return 0; }     // slot 3
    virtual intptr_t Reserved4() { return 0; }     // slot 4
    virtual intptr_t Reserved5() { return 0; }     // slot 5
    virtual intptr_t Reserved6() { return 0; }     // slot 6
    virtual intptr_t Reserved7() { return 0; }     // slot 7
    virtual intptr_t Reserved8() { return 0; }     // slot 8
    virtual intptr_t Reserved9() { return 0; }     // slot 9
    virtual intptr_t Reserved10() { return 0; }    // slot 10
    virtual intptr_t Reserved11() { return 0; }    // slot 11
    virtual intptr_t Reserved12() { return 0; }    // slot 12
    virtual intptr_t Reserved13() { return 0; }    // slot 13
    virtual bool Exists(const wchar_t* path) = 0;  // slot 14
    virtual intptr_t Reserved15() { return 0; }    // slot 15
    virtual intptr_t Reserved16() { return 0; }    // slot 16
    /// slot 17: an item for a path, null when there is no such file or folder; ended by IFileItem::Release.
    virtual IFileItem* CreateFileItem(const wchar_t* path, uint32_t one) = 0;
    virtual bool SetFileList(IFileList* list) = 0;                               // slot 18
    virtual intptr_t Reserved19() { return 0; }                                  // slot 19
    virtual intptr_t Reserved20() { return 0; }                                  // slot 20
    virtual intptr_t Reserved21() { return 0; }                                  // slot 21
    virtual intptr_t Reserved22() { return 0; }                                  // slot 22
    virtual intptr_t Reserved23() { return 0; }                                  // slot 23
    virtual intptr_t Reserved24() { return 0; }                                  // slot 24
    virtual intptr_t Reserved25() { return 0; }                                  // slot 25
    virtual intptr_t Reserved26() { return 0; }                                  // slot 26
    virtual intptr_t Reserved27() { return 0; }                                  // slot 27
    virtual intptr_t Reserved28() { return 0; }                                  // slot 28
    virtual intptr_t Reserved29() { return 0; }                                  // slot 29
    virtual intptr_t Reserved30() { return 0; }                                  // slot 30
    virtual intptr_t Reserved31() { return 0; }                                  // slot 31
    virtual intptr_t Reserved32() { return 0; }                                  // slot 32
    virtual intptr_t Reserved33() { return 0; }                                  // slot 33
    virtual intptr_t Reserved34() { return 0; }                                  // slot 34
    virtual intptr_t Reserved35() { return 0; }                                  // slot 35
    virtual intptr_t Reserved36() { return 0; }                                  // slot 36
    virtual intptr_t Reserved37() { return 0; }                                  // slot 37
    virtual intptr_t Reserved38() { return 0; }                                  // slot 38
    virtual intptr_t Reserved39() { return 0; }                                  // slot 39
    virtual intptr_t Reserved40() { return 0; }                                  // slot 40
    virtual intptr_t Reserved41() { return 0; }                                  // slot 41
    virtual intptr_t Reserved42() { return 0; }                                  // slot 42
    virtual intptr_t Reserved43() { return 0; }                                  // slot 43
    virtual intptr_t Reserved44() { return 0; }                                  // slot 44
    virtual intptr_t Reserved45() { return 0; }                                  // slot 45
    virtual intptr_t Reserved46() { return 0; }                                  // slot 46
    virtual intptr_t Reserved47() { return 0; }                                  // slot 47
    virtual intptr_t Reserved48() { return 0; }                                  // slot 48
    virtual intptr_t Reserved49() { return 0; }                                  // slot 49
    virtual intptr_t Reserved50() { return 0; }                                  // slot 50
    virtual intptr_t Reserved51() { return 0; }                                  // slot 51
    virtual intptr_t Reserved52() { return 0; }                                  // slot 52
    virtual intptr_t Reserved53() { return 0; }                                  // slot 53
    virtual intptr_t Reserved54() { return 0; }                                  // slot 54
    virtual intptr_t Reserved55() { return 0; }                                  // slot 55
    virtual intptr_t Reserved56() { return 0; }                                  // slot 56
    virtual intptr_t Reserved57() { return 0; }                                  // slot 57
    virtual intptr_t Reserved58() { return 0; }                                  // slot 58
    virtual intptr_t Reserved59() { return 0; }                                  // slot 59
    virtual intptr_t Reserved60() { return 0; }                                  // slot 60
    virtual intptr_t Reserved61() { return 0; }                                  // slot 61
    virtual intptr_t Reserved62() { return 0; }                                  // slot 62
    virtual intptr_t Reserved63() { return 0; }                                  // slot 63
    virtual IRenameBatch* CreateRenameBatch() = 0;                               // slot 64
    virtual void EndRenameBatch(IRenameBatch* batch) = 0;                        // slot 65
    virtual uint32_t CommitRenameBatch(IRenameBatch* batch, uint32_t zero) = 0;  // slot 66: a Windows error code
    /// slot 67: this library's choice. Renames one row after the other, in this order, and never onto a name in use;
    /// gives the number of rows begun.
    virtual uint32_t RenameRows(const RenameRowInfo* rows, uint32_t count, IRenameResultCallback* callback) = 0;
    /// slot 68: this library's choice. The text of a property of the file or folder at `path`, copied as from
    /// IFileItem; `format` may be "". False when the host knows no such property.
    virtual bool GetPropertyText(const wchar_t* path, const wchar_t* name, const wchar_t* format, wchar_t* buffer,
                                 uint32_t capacity) = 0;
    /// slot 69: this library's choice. The name of a property, counted from 0, for GetPropertyText. False beyond the
    /// last.
    virtual bool GetPropertyName(uint32_t index, wchar_t* buffer, uint32_t capacity) = 0;

protected:
    ~IFileOperations() = default;
};

/// Service 3010.
class IFolderRefresh {
public:
    virtual void RefreshFolder(const wchar_t* location) = 0;  // slot 0

protected:
    ~IFolderRefresh() = default;
};

/// One column that a provider of file properties offers.
struct PropertyDefinition {
    uint16_t id;
    uint16_t defaultWidth;
    uint16_t valueType;
    uint32_t flags;
    const wchar_t* key;
    const wchar_t* displayName;
};

/// Service 3100; its slots are this library's choice.
class IPropertySet {
public:
    virtual void SetExtension(const char* extensionId, const wchar_t* groupName) = 0;  // slot 0
    virtual bool AddDefinition(const PropertyDefinition* definition) = 0;              // slot 1

protected:
    ~IPropertySet() = default;
};

/// Collects the fields of an elevated request.
class IRequestWriter {
public:
    virtual intptr_t Reserved0() { return 0; }          // slot 0
    virtual void WriteNumber(uint32_t value) = 0;       // slot 1
    virtual intptr_t Reserved2() { return 0; }          // slot 2
    virtual void WriteString(const wchar_t* text) = 0;  // slot 3
    virtual intptr_t Reserved4() { return 0; }          // slot 4
    virtual const void* GetData() = 0;                  // slot 5
    virtual uint32_t GetSize() = 0;                     // slot 6: bytes
    virtual void Release() = 0;                         // slot 7

protected:
    ~IRequestWriter() = default;
};

/// Service 3250: the way to the same extension in the elevated host process.
class IElevatedChannel {
public:
    virtual bool Connect() = 0;                                                      // slot 0
    virtual intptr_t Reserved1() { return 0; }                                       // slot 1
    virtual intptr_t Reserved2() { return 0; }                                       // slot 2
    virtual intptr_t Reserved3() { return 0; }                                       // slot 3
    virtual intptr_t Reserved4() { return 0; }                                       // slot 4
    virtual intptr_t Reserved5() { return 0; }                                       // slot 5
    virtual intptr_t Reserved6() { return 0; }                                       // slot 6
    virtual intptr_t Reserved7() { return 0; }                                       // slot 7
    virtual intptr_t Reserved8() { return 0; }                                       // slot 8
    virtual IRequestWriter* CreateWriter() = 0;                                      // slot 9
    virtual uint32_t Send(uint32_t requestId, const void* data, uint32_t size) = 0;  // slot 10: Windows error code
    virtual void Close() = 0;                                                        // slot 11

protected:
    ~IElevatedChannel() = default;
};

/// Reads a request's fields back. Both reads answer false, and change nothing, when the data ends too early; what they
/// hand out stays valid as long as the data.
class IRequestReader {
public:
    virtual bool Attach(const void* data, uint32_t size) = 0;  // slot 0
    virtual intptr_t Reserved1() { return 0; }                 // slot 1
    virtual bool ReadString(const wchar_t** text) = 0;         // slot 2: ends with a zero unit
    virtual bool ReadNumber(uint32_t* value) = 0;              // slot 3
    virtual intptr_t Reserved4() { return 0; }                 // slot 4
    virtual void Release() = 0;                                // slot 5

protected:
    ~IRequestReader() = default;
};

/// An elevated request as it arrives; given to IPluginInterface::OnElevatedRequest.
class IRequestMessage {
public:
    virtual intptr_t Reserved0() { return 0; }                                                  // slot 0
    virtual const void* GetData() = 0;                                                          // slot 1
    virtual uint32_t GetSize() = 0;                                                             // slot 2: bytes
    virtual void Reply(uint32_t one, uint32_t result, uintptr_t zero, uintptr_t alsoZero) = 0;  // slot 3
    virtual intptr_t Reserved4() { return 0; }                                                  // slot 4
    virtual intptr_t Reserved5() { return 0; }                                                  // slot 5
    virtual IRequestReader* CreateReader() = 0;                                                 // slot 6

protected:
    ~IRequestMessage() = default;
};

}  // namespace Quorvane::SDK
