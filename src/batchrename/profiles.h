// profiles.h - named rename rules, kept in one XML file in the host's configuration folder. The XML text is the host's;
// the elements, their order and what they mean are ours.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "rename/rename_rule.h"
#include "sdk/host_services.h"

namespace BatchRename {

struct RenameProfile {
    std::wstring name;
    std::wstring nameTemplate;
    std::wstring extensionTemplate;
    CounterSettings counter = {0, 0, 0};
    uint32_t caseValue = 0;      // the case bits of RenameOption
    uint32_t searchOptions = 0;  // its other bits
    SearchAndReplaceItems items;

    bool operator==(const RenameProfile&) const = default;
};

/// The rule that a profile stands for, and the opposite.
RuleDefinition RuleOf(const RenameProfile& profile);
RenameProfile ProfileOf(const std::wstring& name, const RuleDefinition& rule);

/// The profiles of a document, in its order. What is missing or no number is empty or 0.
std::vector<RenameProfile> ReadProfiles(Quorvane::SDK::IXmlElement& root);

/// The longest text that a profile gives back whole, in UTF-16 units: the reader's buffer takes 1,024.
inline constexpr size_t kLongestProfileText = 1023;

class ProfileStore {
public:
    /// Reads the file `fileName` of the host's configuration folder, and keeps its path for saving. False only when the
    /// host or its XML service is missing; a file that is missing or cannot be read leaves the list empty.
    bool Load(Quorvane::SDK::IHostServices* services, const wchar_t* fileName = L"BatchRenameProfiles.xml");

    /// Writes all profiles: those that are in the file by now, with what was added, set and deleted here since they
    /// were read. One store saves at a time, in all processes of the user's session. False when the document could not
    /// be made, true also when it could not be written: see WasWritten. A file that Load could not read is kept under
    /// another name first, and the host's log says so.
    bool Save();

    /// Whether the last Save came to its end on disk; a failure is in the host's log too.
    bool WasWritten() const { return m_wasWritten; }

    /// In file order. Names need not be unique.
    const std::vector<RenameProfile>& Profiles() const { return m_profiles; }
    /// The first one of this name; null when there is none.
    const RenameProfile* Find(const std::wstring& name) const;
    void Add(const RenameProfile& profile) { Make({ChangeKind::Add, profile}); }
    /// Takes the place of the first one of its name, or goes to the end.
    void Set(const RenameProfile& profile) { Make({ChangeKind::Set, profile}); }
    /// Removes every profile of exactly this name; the number removed.
    size_t Delete(const std::wstring& name);

private:
    enum class ChangeKind : uint8_t { Add, Set, Delete };
    struct Change {
        ChangeKind kind;
        RenameProfile profile;  // of one to delete, the name
    };

    void Make(Change change);
    void Apply(const Change& change);
    void ReadAgain(Quorvane::SDK::IXmlService& xml);
    bool KeepUnreadableFile();
    void Log(const wchar_t* what, const std::wstring& detail);

    Quorvane::SDK::IHostServices* m_services = nullptr;
    std::wstring m_path;
    std::vector<RenameProfile> m_profiles;
    std::vector<Change> m_changes;  // that are not in the file yet
    bool m_isUnreadable = false;    // the file is there and holds something that is no document
    bool m_wasWritten = true;
};

}  // namespace BatchRename
