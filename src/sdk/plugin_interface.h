// plugin_interface.h - what the host calls on an extension.
#pragma once

#include <cstdint>

#include "win32/windows.h"

namespace Quorvane::SDK {

class ICustomCommandCall;
class IFileItem;
class IHostServices;
class IRequestMessage;

// How every interface in this folder is written.
//
// Binary contract: slots count from 0 in declaration order and never move; a slot without use is declared as Reserved
// and keeps its number. Hence no virtual destructor and no overloaded names (compilers lay those out differently), and
// only scalars and pointers as arguments and results. Who made an object ends it, by the Release of its interface or by
// the export `Delete`; nothing is thrown across a slot.

/// The face of "File Utils" and "Batch Rename".
class IPluginInterface {
public:
    virtual uint32_t Init(IHostServices* services) = 0;                                    // slot 0: 1 on success
    virtual uint32_t GetType() = 0;                                                        // slot 1
    virtual uint32_t SetHost(IHostServices* services) = 0;                                 // slot 2: 1
    virtual const char* GetId() = 0;                                                       // slot 3: 32 digits
    virtual bool PreTranslateMessage(MSG* message, uint32_t flags) = 0;                    // slot 4: true when eaten
    virtual uint32_t OnCommand(uint32_t id, uintptr_t first, uintptr_t second) = 0;        // slot 5: 0 not handled
    virtual uint32_t Reserved6() { return 0; }                                             // slot 6
    virtual uint32_t OnCustomCommand(ICustomCommandCall* call) = 0;                        // slot 7: 0 not handled
    virtual uint32_t OnElevatedRequest(uint32_t requestId, IRequestMessage* message) = 0;  // slot 8: 0 not handled
    virtual uint32_t Reserved9() { return 0; }                                             // slot 9
    virtual uint32_t Reserved10() { return 0; }                                            // slot 10
    virtual uint32_t Shutdown() = 0;                                                       // slot 11: 0
    virtual uint32_t Reserved12() { return 0; }                                            // slot 12
    virtual uint32_t Reserved13() { return 0; }                                            // slot 13
    virtual uint32_t Reserved14() { return 0; }                                            // slot 14

protected:
    ~IPluginInterface() = default;
};
static_assert(sizeof(IPluginInterface) == sizeof(void*), "the table and nothing else");

/// The face of "NTFS Properties". Only slot 3 is the host's word; the places of the others are this library's choice:
/// the first four as in IPluginInterface, then the operations that only a provider of file properties has.
class IFileProperties {
public:
    virtual uint32_t Init(IHostServices* services) = 0;     // slot 0: registers the properties; 0
    virtual uint32_t GetType() = 0;                         // slot 1
    virtual uint32_t SetHost(IHostServices* services) = 0;  // slot 2: 1
    virtual const char* GetId() = 0;                        // slot 3
    /// slot 4: writes the value of property `propertyId` (at most `capacity` units with the closing zero) and returns
    /// 1, or returns 0 when the item has none. May be called from any thread of the host.
    virtual uint32_t GetValue(IFileItem* item, wchar_t* text, uint32_t capacity, uint16_t propertyId) = 0;
    virtual bool ClearCache() = 0;  // slot 5: false

protected:
    ~IFileProperties() = default;
};
static_assert(sizeof(IFileProperties) == sizeof(void*), "the table and nothing else");

/// Housekeeping ids that the host sends to OnCommand beside an extension's own.
inline constexpr uint32_t kCommandShutdown = 20002;
inline constexpr uint32_t kCommandIdle = 20500;

}  // namespace Quorvane::SDK
