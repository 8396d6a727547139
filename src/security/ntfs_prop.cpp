#include "security/ntfs_prop.h"

#include "sdk/extension_info.h"

namespace Security {

using namespace Quorvane::SDK;

uint32_t NTFSProp::Init(IHostServices*) {
    return 0;
}

uint32_t NTFSProp::GetType() {
    return kTypeFlagsProperties;
}

uint32_t NTFSProp::SetHost(IHostServices* services) {
    m_services = services;
    return 1;
}

uint32_t NTFSProp::GetValue(IFileItem*, wchar_t*, uint32_t, uint16_t) {
    return 0;
}

}  // namespace Security
