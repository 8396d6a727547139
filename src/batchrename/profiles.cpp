#include "batchrename/profiles.h"

#include <algorithm>
#include <cwchar>
#include <functional>
#include <iterator>
#include <limits>
#include <utility>

#include "sdk/owners.h"
#include "win32/files.h"
#include "win32/handle.h"
#include "win32/path.h"
#include "win32/text.h"
#include "win32/windows.h"

namespace BatchRename {

using namespace Quorvane::SDK;

namespace {

// In units. Buffers have one more than the host is told of: the text ends there whatever the host does.
constexpr uint32_t kProfileFolderCapacity = 1024;
constexpr uint32_t kTextCapacity = kLongestProfileText + 1;
constexpr uint32_t kIndented = 1;
constexpr int kMostKeptFiles = 1000;

// A pair that is switched off, with its place among all pairs, counted from 0. It is no "item": readers that know no
// such pairs would apply it. compatibility: 27
constexpr wchar_t kSwitchedOff[] = L"switchedoff";

// "replaceparts" as numbers.
constexpr int kPartsBoth = 1;
constexpr int kPartsName = 2;
constexpr int kPartsExtension = 3;

std::wstring AttributeOf(IXmlElement& element, const wchar_t* name) {
    wchar_t buffer[kTextCapacity + 1] = {};
    return element.GetAttribute(name, buffer, kTextCapacity) ? buffer : L"";
}

std::wstring TextOf(IXmlElement& element) {
    wchar_t buffer[kTextCapacity + 1] = {};
    element.GetText(buffer, kTextCapacity);
    return buffer;
}

/// 0 for a missing attribute and for one that is no number.
int32_t NumberOf(IXmlElement& element, const wchar_t* name) {
    return Win32::LeadingNumber<int32_t>(AttributeOf(element, name));
}

uint32_t ReadSearchOptions(IXmlElement& search) {
    uint32_t options = 0;
    if (NumberOf(search, L"replaceall") == 1) options |= RenameOption::ReplaceAll;
    if (NumberOf(search, L"casesensative") == 1) options |= RenameOption::CaseSensitive;
    if (NumberOf(search, L"regex") == 1) options |= RenameOption::RegularExpression;
    // 3, the extension alone, is written but reads as both.
    // compatibility: 27
    options |= NumberOf(search, L"replaceparts") == kPartsName ? RenameOption::ScopeName : RenameOption::ScopeBoth;
    return options;
}

SearchAndReplaceItem ReadItem(IXmlElement& item) {
    return {AttributeOf(item, L"find"), AttributeOf(item, L"replacewith")};
}

/// Those that are switched off are in the order of their places.
SearchAndReplaceItems ReadItems(IXmlElement& search) {
    SearchAndReplaceItems items;
    IXmlElement* next = search.FirstChild(L"item");
    const auto takeUpTo = [&](int32_t place) {
        for (; next && std::cmp_less(items.size(), place); next = next->NextSibling(L"item"))
            items.push_back(ReadItem(*next));
    };
    for (IXmlElement* off = search.FirstChild(kSwitchedOff); off; off = off->NextSibling(kSwitchedOff)) {
        takeUpTo(NumberOf(*off, L"place"));
        items.push_back(ReadItem(*off));
        items.back().isOn = false;
    }
    takeUpTo(std::numeric_limits<int32_t>::max());
    return items;
}

RenameProfile ReadProfile(IXmlElement& element) {
    RenameProfile profile;
    wchar_t name[kTextCapacity + 1] = {};
    if (!element.GetAttribute(L"name", name, kTextCapacity)) return profile;
    profile.name = name;
    if (IXmlElement* const child = element.FirstChild(L"filename")) profile.nameTemplate = TextOf(*child);
    if (IXmlElement* const child = element.FirstChild(L"extension")) profile.extensionTemplate = TextOf(*child);
    if (IXmlElement* const child = element.FirstChild(L"counter"))
        profile.counter = {NumberOf(*child, L"startat"), NumberOf(*child, L"stepby"), NumberOf(*child, L"digits")};
    if (IXmlElement* const child = element.FirstChild(L"case"))
        profile.caseValue = static_cast<uint32_t>(NumberOf(*child, L"value"));
    IXmlElement* const search = element.FirstChild(L"searchandreplace");
    if (!search) return profile;
    profile.searchOptions = ReadSearchOptions(*search);
    profile.items = ReadItems(*search);
    return profile;
}

/// False when a part could not be made: an incomplete profile must not take the place of a complete one.
class Writer {
public:
    bool Write(IXmlElement& root, const RenameProfile& profile) {
        IXmlElement* const element = Child(&root, L"profile");
        Attribute(element, L"name", profile.name);
        Text(Child(element, L"filename"), profile.nameTemplate);
        Text(Child(element, L"extension"), profile.extensionTemplate);
        IXmlElement* const counter = Child(element, L"counter");
        Number(counter, L"startat", profile.counter.start);
        Number(counter, L"stepby", profile.counter.step);
        Number(counter, L"digits", profile.counter.digits);
        Number(Child(element, L"case"), L"value", static_cast<int32_t>(profile.caseValue));
        if (!profile.items.empty()) WriteSearch(Child(element, L"searchandreplace"), profile);
        return m_isWhole;
    }

private:
    void WriteSearch(IXmlElement* search, const RenameProfile& profile) {
        const uint32_t options = profile.searchOptions;
        Number(search, L"replaceall", options & RenameOption::ReplaceAll ? 1 : 0);
        Number(search, L"casesensative", options & RenameOption::CaseSensitive ? 1 : 0);
        Number(search, L"regex", options & RenameOption::RegularExpression ? 1 : 0);
        Number(search, L"replaceparts", PartsOf(options));
        for (const SearchAndReplaceItem& item : profile.items)
            if (item.isOn) WriteItem(Child(search, L"item"), item);
        for (size_t place = 0; place < profile.items.size(); ++place) {
            if (profile.items[place].isOn) continue;
            IXmlElement* const element = Child(search, kSwitchedOff);
            Number(element, L"place", static_cast<int32_t>(place));
            WriteItem(element, profile.items[place]);
        }
    }

    void WriteItem(IXmlElement* element, const SearchAndReplaceItem& item) {
        Attribute(element, L"find", item.find);
        Attribute(element, L"replacewith", item.replaceWith);
    }

    static int PartsOf(uint32_t options) {
        if (options & RenameOption::ScopeBoth) return kPartsBoth;
        if (options & RenameOption::ScopeName) return kPartsName;
        return options & RenameOption::ScopeExtension ? kPartsExtension : kPartsBoth;
    }

    IXmlElement* Child(IXmlElement* parent, const wchar_t* name) {
        IXmlElement* const child = parent ? parent->AddChild(name) : nullptr;
        m_isWhole = m_isWhole && child;
        return child;
    }
    void Attribute(IXmlElement* element, const wchar_t* name, const std::wstring& value) {
        m_isWhole = m_isWhole && element && element->SetAttribute(name, value.c_str());
    }
    void Number(IXmlElement* element, const wchar_t* name, int32_t value) {
        Attribute(element, name, std::to_wstring(value));
    }
    void Text(IXmlElement* element, const std::wstring& text) {
        m_isWhole = m_isWhole && element && element->SetText(text.c_str());
    }

    bool m_isWhole = true;
};

/// Keeps other stores from reading the file before this one has written it.
class SaveLock {
public:
    explicit SaveLock(const std::wstring& path) : m_mutex(CreateMutexW(nullptr, FALSE, NameOf(path).c_str())) {
        // Less than a shutdown waits for the window's thread, which may be this one. A store that does not come to its
        // end is not waited for: each writes the file whole.
        constexpr DWORD kPatience = 3000;  // milliseconds
        const DWORD answer = m_mutex ? WaitForSingleObject(m_mutex.Get(), kPatience) : WAIT_FAILED;
        m_isHeld = answer == WAIT_OBJECT_0 || answer == WAIT_ABANDONED;
    }
    SaveLock(const SaveLock&) = delete;
    SaveLock& operator=(const SaveLock&) = delete;
    ~SaveLock() {
        if (m_isHeld) ReleaseMutex(m_mutex.Get());
    }

private:
    /// A name holds no backslash.
    static std::wstring NameOf(const std::wstring& path) {
        return L"QVUtils-profiles-" + std::to_wstring(std::hash<std::wstring>()(Win32::ToUpperCase(path)));
    }

    Win32::KernelHandle m_mutex;
    bool m_isHeld = false;
};

}  // namespace

std::vector<RenameProfile> ReadProfiles(IXmlElement& root) {
    std::vector<RenameProfile> profiles;
    for (IXmlElement* profile = root.FirstChild(L"profile"); profile; profile = profile->NextSibling(L"profile"))
        profiles.push_back(ReadProfile(*profile));
    return profiles;
}

RuleDefinition RuleOf(const RenameProfile& profile) {
    RuleDefinition rule;
    rule.nameTemplate = profile.nameTemplate;
    rule.extensionTemplate = profile.extensionTemplate;
    rule.counter = profile.counter;
    rule.items = std::make_shared<const SearchAndReplaceItems>(profile.items);
    rule.options = profile.caseValue | profile.searchOptions;
    return rule;
}

RenameProfile ProfileOf(const std::wstring& name, const RuleDefinition& rule) {
    RenameProfile profile;
    profile.name = name;
    profile.nameTemplate = rule.nameTemplate;
    profile.extensionTemplate = rule.extensionTemplate;
    profile.counter = rule.counter;
    profile.caseValue = rule.options & RenameOption::CaseMask;
    profile.searchOptions = rule.options & ~RenameOption::CaseMask;
    if (rule.items) profile.items = *rule.items;
    return profile;
}

bool ProfileStore::Load(IHostServices* services, const wchar_t* fileName) {
    m_services = services;
    m_profiles.clear();
    m_changes.clear();
    m_isUnreadable = false;
    if (!services) return false;
    wchar_t folder[kProfileFolderCapacity + 1] = {};
    services->GetConfigurationFolder(folder, kProfileFolderCapacity);
    m_path = std::wstring(folder) + fileName;
    const Owned<IXmlService> xml(services->GetXmlService(m_path.c_str(), 0));
    if (!xml) return false;
    ReadAgain(*xml);
    return true;
}

/// Where there is no file the profiles stay as they are known.
void ProfileStore::ReadAgain(IXmlService& xml) {
    const Owned<IXmlDocument> document(xml.Load(m_path.c_str(), 0));
    IXmlElement* const root = document ? document->GetRoot() : nullptr;
    m_isUnreadable = !root && Win32::Exists(m_path);
    if (!root) return;
    m_profiles = ReadProfiles(*root);
    for (const Change& change : m_changes) Apply(change);
}

bool ProfileStore::Save() {
    m_wasWritten = false;
    if (!m_services) return false;
    const Owned<IXmlService> xml(m_services->GetXmlService(m_path.c_str(), 0));
    if (!xml) return false;
    const SaveLock lock(m_path);
    ReadAgain(*xml);
    const Owned<IXmlDocument> document(xml->CreateDocument());
    IXmlElement* const root = document ? document->CreateRoot(L"BatchRename") : nullptr;
    if (!root) return false;
    const bool isWhole =
        std::ranges::all_of(m_profiles, [&](const RenameProfile& profile) { return Writer().Write(*root, profile); });
    if (!isWhole) {
        Log(L"a profile holds a character that cannot be saved; the file stays as it is", m_path);
        return true;
    }
    if (m_isUnreadable && !KeepUnreadableFile()) return true;
    m_wasWritten = xml->Save(document.get(), m_path.c_str(), kIndented, nullptr);
    if (m_wasWritten)
        m_changes.clear();
    else
        Log(L"the profiles cannot be saved", m_path);
    return true;
}

/// The file may be somebody's work, damaged by a slip of the hand: it is not ours to write over.
bool ProfileStore::KeepUnreadableFile() {
    uint32_t error = ERROR_ALREADY_EXISTS;
    for (int number = 1; number <= kMostKeptFiles && error == ERROR_ALREADY_EXISTS; ++number) {
        const std::wstring kept = m_path + (number == 1 ? L".damaged" : L".damaged-" + std::to_wstring(number));
        error = Win32::MoveFileTo(m_path, kept);
        if (error != ERROR_SUCCESS) continue;
        m_isUnreadable = false;
        Log(L"the profiles could not be read; the file is kept as", kept);
        return true;
    }
    Log(L"the profiles could not be read and cannot be moved aside; nothing is saved", m_path);
    return false;
}

void ProfileStore::Log(const wchar_t* what, const std::wstring& detail) {
    m_services->Log(kLogLevel, LogKind::Failure, L"[Batch Rename] - %s : %s", what, detail.c_str());
}

const RenameProfile* ProfileStore::Find(const std::wstring& name) const {
    const auto found = std::ranges::find(m_profiles, name, &RenameProfile::name);
    return found == m_profiles.end() ? nullptr : &*found;
}

void ProfileStore::Make(Change change) {
    Apply(change);
    m_changes.push_back(std::move(change));
}

void ProfileStore::Apply(const Change& change) {
    const std::wstring& name = change.profile.name;
    if (change.kind == ChangeKind::Delete) {
        std::erase_if(m_profiles, [&](const RenameProfile& profile) { return profile.name == name; });
        return;
    }
    const auto found = std::ranges::find(m_profiles, name, &RenameProfile::name);
    if (change.kind == ChangeKind::Set && found != m_profiles.end())
        *found = change.profile;
    else
        m_profiles.push_back(change.profile);
}

size_t ProfileStore::Delete(const std::wstring& name) {
    const size_t before = m_profiles.size();
    Change change = {ChangeKind::Delete, {}};
    change.profile.name = name;
    Make(std::move(change));
    return before - m_profiles.size();
}

}  // namespace BatchRename
