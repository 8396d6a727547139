// link_rules.h - which links cannot work, told before anything is made.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_set>

namespace FileUtils {

/// Keeps what it has learnt of the last folders, so that thousands of links in one cost one look at it. What changes
/// there meanwhile is found when the links are made: none takes the place of a file.
class LinkRules {
public:
    /// Why a link of this LinkType cannot be made, in a sentence for people; "" when nothing speaks against it: a name
    /// that exists or cannot be one, a folder that does not exist, a hard link to a folder or to another volume, a
    /// junction to a file or to another machine.
    std::wstring WhyNot(uint32_t type, const std::wstring& link, const std::wstring& target, bool targetIsFolder);

private:
    struct Folder {
        bool isKnown = false;
        bool exists = false;
        bool isListed = false;
        std::unordered_set<std::wstring> names;  // in upper case
        std::wstring path;
        std::wstring volume;
    };
    void LookAt(const std::wstring& folder);

    Folder m_folder;  // of the last link
    std::wstring m_targetFolder;
    std::wstring m_targetVolume;
};

}  // namespace FileUtils
