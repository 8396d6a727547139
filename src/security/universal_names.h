// universal_names.h - the shares of mapped drives, asked for once and kept.
#pragma once

#include <map>
#include <mutex>
#include <string>

#include "security/security_system.h"

namespace Security {

/// May be used from any thread.
class UniversalNames {
public:
    /// The share (`\\server\share`) that `path` leads to, a drive or a path on it. False for a drive that is none of a
    /// network; that is asked again the next time, since a drive may be mapped at any moment.
    bool Find(const std::wstring& path, const SecuritySystem& system, std::wstring& name);
    void Clear();

private:
    std::mutex m_mutex;
    std::map<wchar_t, std::wstring> m_names;  // by the drive's letter
};

/// The text between the two leading backslashes of a share's path and the next one: `server` of `\\server\share\a`,
/// also when it is written `\\?\UNC\server\share\a`. "" when it is no such path.
std::wstring ServerOf(const std::wstring& sharePath);

}  // namespace Security
