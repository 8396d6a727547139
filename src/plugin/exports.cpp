// exports.cpp - the library's only door: three undecorated functions, and what the system calls when it loads it.
#include "plugin/catalogue.h"
#include "plugin/exception_reserve.h"
#include "win32/windows.h"

using namespace Quorvane::SDK;

extern "C" {

bool GetExtensionInfo(uint32_t index, ExtensionInfo* record) {
    return Plugin::DescribeExtension(index, record);
}

IPluginInterface* Create(uint32_t index) {
    return Plugin::CreateExtension(index);
}

bool Delete(IPluginInterface* object, uint32_t index) {
    return Plugin::DeleteExtension(object, index);
}

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) Plugin::PrepareExceptionReserve();
    return TRUE;
}

}  // extern "C"
