#include "security/acl_info.h"

#include "security/file_descriptor.h"

namespace Security {
namespace {

constexpr uint32_t kReading = FILE_READ_DATA | FILE_READ_ATTRIBUTES;
constexpr uint32_t kWriting = FILE_WRITE_DATA | FILE_APPEND_DATA | FILE_WRITE_EA | FILE_WRITE_ATTRIBUTES;
constexpr uint32_t kExecuting = FILE_READ_DATA | FILE_EXECUTE;
static_assert(kReading == 0x81 && kWriting == 0x116 && kExecuting == 0x21);

}  // namespace

uint32_t CACLInfo::GetEffectiveRights(uint32_t& mask) const {
    mask = 0;
    FileDescriptor descriptor;
    if (!descriptor.Read(m_system, m_path, DACL_SECURITY_INFORMATION)) return kNoRights;
    BOOL isPresent = FALSE;
    BOOL isDefault = FALSE;
    PACL list = nullptr;
    if (!GetSecurityDescriptorDacl(descriptor.Get(), &isPresent, &list, &isDefault) || !isPresent || !list)
        return kNoRights;
    wchar_t user[] = L"CURRENT_USER";
    TRUSTEE_W trustee = {};
    BuildTrusteeWithNameW(&trustee, user);
    // Its result says no more than the mask: where it fails, the mask stays 0 and nothing is allowed.
    ACCESS_MASK allowed = 0;
    m_system.getEffectiveRights(list, &trustee, &allowed);
    mask = allowed;
    return ERROR_SUCCESS;
}

std::wstring RightsText(uint32_t mask) {
    const auto letter = [&](uint32_t needed, wchar_t name) { return (mask & needed) == needed ? name : L' '; };
    return {letter(kReading, L'R'), letter(kWriting, L'W'), letter(kExecuting, L'X')};
}

}  // namespace Security
