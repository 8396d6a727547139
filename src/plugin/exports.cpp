// exports.cpp - the library's only door: three undecorated functions.
#include "plugin/catalogue.h"

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

}  // extern "C"
