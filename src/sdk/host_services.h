// host_services.h - everything that the host offers an extension, reached through one object.
#pragma once

#include <cstdint>

#include "sdk/file_list.h"
#include "sdk/host_objects.h"
#include "sdk/menus_and_commands.h"
#include "sdk/plugin_interface.h"
#include "sdk/services.h"
#include "sdk/text_format.h"

namespace Quorvane::SDK {

/// Kinds and levels of IHostServices::Log.
namespace LogKind {
inline constexpr uint32_t Success = 10;
inline constexpr uint32_t Failure = 30;
}  // namespace LogKind
inline constexpr uint32_t kLogLevel = 1;

/// The host's services object. It outlives every call into the library; QVBatchRename alone ends its use by Release.
/// Where a comment says so, the slot is this library's choice: the contract leaves its place open.
class IHostServices {
public:
    virtual intptr_t Reserved0() { return 0; }  // slot 0
    virtual intptr_t Reserved1() { return 0; }  // slot 1
    virtual void Release() = 0;                 // slot 2: the library is done with the services object
    virtual intptr_t Reserved3() { return 0; }  // slot 3
    virtual HWND GetMainWindow() = 0;           // slot 4: parent of message boxes; may be null
    virtual intptr_t Reserved5() { return 0; }  // slot 5
    virtual intptr_t Reserved6() { return 0; }  // slot 6
    virtual uint16_t GetTextModule(const char* extensionId) = 0;           // slot 7
    virtual intptr_t Reserved8() { return 0; }                             // slot 8
    virtual intptr_t Reserved9() { return 0; }                             // slot 9
    virtual intptr_t Reserved10() { return 0; }                            // slot 10
    virtual intptr_t Reserved11() { return 0; }                            // slot 11
    virtual intptr_t Reserved12() { return 0; }                            // slot 12
    virtual intptr_t Reserved13() { return 0; }                            // slot 13
    virtual intptr_t Reserved14() { return 0; }                            // slot 14
    virtual const wchar_t* GetText(TextId id) = 0;                         // slot 15: host-owned, never null
    virtual const wchar_t* GetModuleText(uint16_t module, TextId id) = 0;  // slot 16: host-owned, never null
    virtual intptr_t Reserved17() { return 0; }                            // slot 17
    virtual intptr_t Reserved18() { return 0; }                            // slot 18
    virtual intptr_t Reserved19() { return 0; }                            // slot 19
    virtual intptr_t Reserved20() { return 0; }                            // slot 20
    virtual intptr_t Reserved21() { return 0; }                            // slot 21
    virtual intptr_t Reserved22() { return 0; }                            // slot 22
    virtual intptr_t Reserved23() { return 0; }                            // slot 23
    virtual intptr_t Reserved24() { return 0; }                            // slot 24
    virtual intptr_t Reserved25() { return 0; }                            // slot 25
    virtual intptr_t Reserved26() { return 0; }                            // slot 26
    virtual intptr_t Reserved27() { return 0; }                            // slot 27
    virtual intptr_t Reserved28() { return 0; }                            // slot 28
    virtual intptr_t Reserved29() { return 0; }                            // slot 29
    virtual intptr_t Reserved30() { return 0; }                            // slot 30
    virtual intptr_t Reserved31() { return 0; }                            // slot 31
    virtual uint32_t RunHostCommand(uint32_t command, IFileList* list, uint32_t flags, uintptr_t zero) = 0;  // slot 32
    virtual intptr_t Reserved33() { return 0; }                                                              // slot 33
    virtual ICommandFactory* GetCommandFactory() = 0;                                                        // slot 34
    virtual IMenuBuilder* GetMenuBuilder() = 0;                                                              // slot 35
    virtual ICustomCommandRegistry* GetCustomCommandRegistry(const char* moduleName) = 0;  // slot 36: may be null
    virtual intptr_t Reserved37() { return 0; }                                            // slot 37
    virtual intptr_t Reserved38() { return 0; }                                            // slot 38
    virtual intptr_t Reserved39() { return 0; }                                            // slot 39
    virtual intptr_t Reserved40() { return 0; }                                            // slot 40
    virtual intptr_t Reserved41() { return 0; }                                            // slot 41
    virtual IXmlService* GetXmlService(const wchar_t* path, uint32_t mode) = 0;            // slot 42: may be null
    virtual intptr_t Reserved43() { return 0; }                                            // slot 43
    virtual ISettings* GetSettings() = 0;  // slot 44: null: nothing is loaded or saved
    /// slot 45: this library's choice; ends in a separator
    virtual uint32_t GetConfigurationFolder(wchar_t* buffer, uint32_t capacity) = 0;
    virtual intptr_t Reserved46() { return 0; }                                             // slot 46
    virtual intptr_t Reserved47() { return 0; }                                             // slot 47
    virtual intptr_t Reserved48() { return 0; }                                             // slot 48
    virtual intptr_t Reserved49() { return 0; }                                             // slot 49
    virtual intptr_t Reserved50() { return 0; }                                             // slot 50
    virtual intptr_t Reserved51() { return 0; }                                             // slot 51
    virtual intptr_t Reserved52() { return 0; }                                             // slot 52
    virtual intptr_t Reserved53() { return 0; }                                             // slot 53
    virtual intptr_t Reserved54() { return 0; }                                             // slot 54
    virtual intptr_t Reserved55() { return 0; }                                             // slot 55
    virtual intptr_t Reserved56() { return 0; }                                             // slot 56
    virtual intptr_t Reserved57() { return 0; }                                             // slot 57
    virtual intptr_t Reserved58() { return 0; }                                             // slot 58
    virtual intptr_t Reserved59() { return 0; }                                             // slot 59
    virtual intptr_t Reserved60() { return 0; }                                             // slot 60
    virtual intptr_t Reserved61() { return 0; }                                             // slot 61
    virtual intptr_t Reserved62() { return 0; }                                             // slot 62
    virtual void* AcquireService(uint32_t number, uint32_t zero, const wchar_t* path) = 0;  // slot 63: may be null
    virtual intptr_t Reserved64() { return 0; }                                             // slot 64
    virtual void ReleaseService(void* service, uint32_t number) = 0;                        // slot 65
    virtual intptr_t Reserved66() { return 0; }                                             // slot 66
    virtual intptr_t Reserved67() { return 0; }                                             // slot 67
    virtual intptr_t Reserved68() { return 0; }                                             // slot 68
    virtual intptr_t Reserved69() { return 0; }                                             // slot 69
    virtual intptr_t Reserved70() { return 0; }                                             // slot 70
    virtual intptr_t Reserved71() { return 0; }                                             // slot 71
    virtual intptr_t Reserved72() { return 0; }                                             // slot 72
    virtual intptr_t Reserved73() { return 0; }                                             // slot 73
    virtual intptr_t Reserved74() { return 0; }                                             // slot 74
    virtual intptr_t Reserved75() { return 0; }                                             // slot 75
    virtual intptr_t Reserved76() { return 0; }                                             // slot 76
    virtual intptr_t Reserved77() { return 0; }                                             // slot 77
    virtual intptr_t Reserved78() { return 0; }                                             // slot 78
    virtual intptr_t Reserved79() { return 0; }                                             // slot 79
    virtual intptr_t Reserved80() { return 0; }                                             // slot 80
    virtual intptr_t Reserved81() { return 0; }                                             // slot 81
    virtual intptr_t Reserved82() { return 0; }                                             // slot 82
    virtual intptr_t Reserved83() { return 0; }                                             // slot 83
    virtual intptr_t Reserved84() { return 0; }                                             // slot 84
    virtual intptr_t Reserved85() { return 0; }                                             // slot 85
    virtual intptr_t Reserved86() { return 0; }                                             // slot 86
    virtual intptr_t Reserved87() { return 0; }                                             // slot 87
    virtual intptr_t Reserved88() { return 0; }                                             // slot 88
    virtual intptr_t Reserved89() { return 0; }                                             // slot 89
    virtual intptr_t Reserved90() { return 0; }                                             // slot 90
    virtual intptr_t Reserved91() { return 0; }                                             // slot 91
    virtual intptr_t Reserved92() { return 0; }                                             // slot 92
    virtual intptr_t Reserved93() { return 0; }                                             // slot 93
    virtual intptr_t Reserved94() { return 0; }                                             // slot 94
    virtual intptr_t Reserved95() { return 0; }                                             // slot 95
    virtual intptr_t Reserved96() { return 0; }                                             // slot 96
    virtual intptr_t Reserved97() { return 0; }                                             // slot 97
    virtual intptr_t Reserved98() { return 0; }                                             // slot 98
    virtual intptr_t Reserved99() { return 0; }                                             // slot 99
    virtual intptr_t Reserved100() { return 0; }                                            // slot 100
    virtual intptr_t Reserved101() { return 0; }                                            // slot 101
    virtual intptr_t Reserved102() { return 0; }                                            // slot 102
    virtual intptr_t Reserved103() { return 0; }                                            // slot 103
    virtual intptr_t Reserved104() { return 0; }                                            // slot 104
    virtual intptr_t Reserved105() { return 0; }                                            // slot 105
    virtual intptr_t Reserved106() { return 0; }                                            // slot 106
    virtual intptr_t Reserved107() { return 0; }                                            // slot 107
    virtual intptr_t Reserved108() { return 0; }                                            // slot 108
    virtual intptr_t Reserved109() { return 0; }                                            // slot 109
    virtual intptr_t Reserved110() { return 0; }                                            // slot 110
    virtual bool IsElevated() = 0;                // slot 111: the host runs with administrator rights
    virtual bool CanElevate() = 0;                // slot 112: an elevated second process is possible
    virtual bool UseColumnD() = 0;                // slot 113
    virtual bool UseColumnE() = 0;                // slot 114
    virtual intptr_t Reserved115() { return 0; }  // slot 115
    virtual intptr_t Reserved116() { return 0; }  // slot 116
    virtual intptr_t Reserved117() { return 0; }  // slot 117
    virtual intptr_t Reserved118() { return 0; }  // slot 118
    virtual intptr_t Reserved119() { return 0; }  // slot 119
    virtual intptr_t Reserved120() { return 0; }  // slot 120
    virtual intptr_t Reserved121() { return 0; }  // slot 121
    virtual intptr_t Reserved122() { return 0; }  // slot 122
    virtual intptr_t Reserved123() { return 0; }  // slot 123
    virtual intptr_t Reserved124() { return 0; }  // slot 124
    virtual intptr_t Reserved125() { return 0; }  // slot 125
    virtual intptr_t Reserved126() { return 0; }  // slot 126
    virtual intptr_t Reserved127() { return 0; }  // slot 127
    virtual intptr_t Reserved128() { return 0; }  // slot 128
    virtual IFileList* CreateFileList() = 0;      // slot 129: empty; ended by its Release
    /// slot 130: this library's choice; may be null
    virtual IProgress* OpenProgress(const wchar_t* title, uint32_t total) = 0;
    virtual intptr_t Reserved131() { return 0; }  // slot 131
    virtual intptr_t Reserved132() { return 0; }  // slot 132
    virtual IChoiceList* CreateChoiceList() = 0;  // slot 133
    virtual intptr_t Reserved134() { return 0; }  // slot 134
    virtual intptr_t Reserved135() { return 0; }  // slot 135
    virtual intptr_t Reserved136() { return 0; }  // slot 136
    /// slot 137: printf-style, `%s` is UTF-16
    virtual void Log(uint32_t level, uint32_t kind, const wchar_t* format, ...) = 0;
    virtual intptr_t Reserved138() { return 0; }  // slot 138
    virtual intptr_t Reserved139() { return 0; }  // slot 139
    virtual intptr_t Reserved140() { return 0; }  // slot 140
    virtual intptr_t Reserved141() { return 0; }  // slot 141
    virtual intptr_t Reserved142() { return 0; }  // slot 142
    virtual intptr_t Reserved143() { return 0; }  // slot 143
    virtual intptr_t Reserved144() { return 0; }  // slot 144
    virtual intptr_t Reserved145() { return 0; }  // slot 145
    /// slot 146: coded as MessageBoxW
    virtual uint32_t MessageBox(const wchar_t* message, const wchar_t* caption, uint32_t style) = 0;
    /// slot 147: in: the text proposed
    virtual bool ShowInputDialog(TextId prompt, wchar_t* buffer, uint32_t capacity) = 0;
    virtual bool ShowChoiceDialog(ChoiceRequest* request) = 0;  // slot 148

protected:
    ~IHostServices() = default;
};

}  // namespace Quorvane::SDK
