#include "host/contract/settings_file.h"

#include <array>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "host/app/host_text.h"
#include "host/contract/host_boundary.h"
#include "host/contract/whole_file.h"
#include "textio/replace_file.h"
#include "win32/code_page.h"
#include "win32/files.h"
#include "win32/folder.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace QVHost {
namespace {

constexpr int kJsonIndent = 2;
constexpr int kMostSaves = 20;
constexpr int kMostDamagedFiles = 1000;

bool IsMissing(uint32_t error) {
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

/// Extension, section, key.
using Names = std::array<std::string, 3>;

Names NamesOf(const std::wstring& extension, const wchar_t* section, const wchar_t* key) {
    return {ToUtf8(extension), ToUtf8(section), ToUtf8(key)};
}

nlohmann::json& PlaceOf(nlohmann::json& values, const Names& names) {
    nlohmann::json* place = &values;
    for (const std::string& name : names) {
        // A hand-edited file may have something else at a section's place; it gives way to the section.
        if (!place->is_object()) *place = nlohmann::json::object();
        place = &(*place)[name];
    }
    return *place;
}

}  // namespace

class SettingsFile::Values {
public:
    /// Null where there is no such value.
    const nlohmann::json* Find(const Names& names) const {
        const nlohmann::json* place = &m_values;
        for (const std::string& name : names) {
            if (!place->is_object()) return nullptr;
            const auto entry = place->find(name);
            if (entry == place->end()) return nullptr;
            place = &*entry;
        }
        return place;
    }

    void Set(const Names& names, nlohmann::json value) {
        nlohmann::json& entry = PlaceOf(m_values, names);
        if (entry == value && entry.type() == value.type()) return;
        entry = value;
        m_changes.push_back({names, std::move(value)});
    }

    /// False, and nothing taken over, for what is no JSON object.
    bool Read(std::string_view bytes) {
        nlohmann::json values = nlohmann::json::parse(bytes, nullptr, false);
        if (!values.is_object()) return false;
        m_values = std::move(values);
        return true;
    }

    /// What a file that has values of its own by now becomes.
    std::string Merged(const Values& file) const {
        nlohmann::json values = file.m_values;
        for (const Change& change : m_changes) PlaceOf(values, change.names) = change.value;
        return values.dump(kJsonIndent) + "\n";
    }

    bool HasChanges() const { return !m_changes.empty(); }
    void ForgetChanges() { m_changes.clear(); }

private:
    struct Change {
        Names names;
        nlohmann::json value;
    };

    nlohmann::json m_values = nlohmann::json::object();
    std::vector<Change> m_changes;
};

SettingsFile::~SettingsFile() = default;

SettingsFile::SettingsFile(Output& output, std::wstring path)
    : m_output(output), m_path(std::move(path)), m_values(std::make_unique<Values>()) {
    m_mayWrite = !m_path.empty();
    if (!m_mayWrite) return;
    std::string bytes;
    const uint32_t error = ReadWholeFile(m_path, bytes);
    if (IsMissing(error)) return;
    if (error != ERROR_SUCCESS) {
        m_mayWrite = false;
        m_output.Note(L"[settings] " + m_path + L" cannot be read and stays as it is: " + DescribeError(error));
        return;
    }
    if (!m_values->Read(bytes)) KeepDamagedFile();
}

void SettingsFile::KeepDamagedFile() {
    uint32_t error = ERROR_ALREADY_EXISTS;
    for (int number = 1; number <= kMostDamagedFiles && error == ERROR_ALREADY_EXISTS; ++number) {
        const std::wstring kept = m_path + (number == 1 ? L".damaged" : L".damaged-" + std::to_wstring(number));
        error = Win32::MoveFileTo(m_path, kept);
        if (error != ERROR_SUCCESS) continue;
        m_output.Note(L"[settings] " + m_path + L" is damaged; it is kept as " + std::wstring(Win32::FileNameOf(kept)) +
                      L", and this run begins without settings");
        return;
    }
    m_mayWrite = false;
    m_output.Note(L"[settings] " + m_path + L" is damaged and cannot be moved aside; it stays as it is: " +
                  DescribeError(error));
}

std::optional<std::wstring> SettingsFile::Text(const std::wstring& extension, const wchar_t* section,
                                               const wchar_t* key) {
    const std::lock_guard lock(m_mutex);
    const nlohmann::json* value = m_values->Find(NamesOf(extension, section, key));
    if (!value || !value->is_string()) return std::nullopt;
    return FromUtf8(value->get_ref<const std::string&>());
}

std::optional<uint32_t> SettingsFile::Number(const std::wstring& extension, const wchar_t* section,
                                             const wchar_t* key) {
    const std::lock_guard lock(m_mutex);
    const nlohmann::json* value = m_values->Find(NamesOf(extension, section, key));
    if (!value || !value->is_number_unsigned() || value->get<uint64_t>() > UINT32_MAX) return std::nullopt;
    return value->get<uint32_t>();
}

bool SettingsFile::SetText(const std::wstring& extension, const wchar_t* section, const wchar_t* key,
                           const wchar_t* text) {
    std::optional<std::string> bytes = Win32::ToCodePage(text, Win32::kUtf8CodePage);
    if (!bytes) return false;
    const std::lock_guard lock(m_mutex);
    m_values->Set(NamesOf(extension, section, key), std::move(*bytes));
    return true;
}

bool SettingsFile::SetNumber(const std::wstring& extension, const wchar_t* section, const wchar_t* key,
                             uint32_t value) {
    const std::lock_guard lock(m_mutex);
    m_values->Set(NamesOf(extension, section, key), value);
    return true;
}

bool SettingsFile::Save() {
    const std::lock_guard lock(m_mutex);
    if (!m_values->HasChanges() || !m_mayWrite) return true;
    uint32_t error = Win32::MakeFolders(Win32::FolderOf(m_path));
    if (error == ERROR_SUCCESS) error = SaveChanges();
    // Another run has saved since the file was read.
    for (int attempt = 1; attempt < kMostSaves && (error == ERROR_READ_FAULT || error == ERROR_ALREADY_EXISTS);
         ++attempt)
        error = SaveChanges();
    if (error != ERROR_SUCCESS) {
        m_output.Note(L"[settings] " + m_path + L" cannot be saved: " + DescribeError(error));
        return false;
    }
    m_values->ForgetChanges();
    return true;
}

/// Windows error code, 0 for success.
uint32_t SettingsFile::SaveChanges() {
    std::string bytes;
    std::optional<Win32::FileState> original;
    const uint32_t error = ReadWholeFile(m_path, bytes, original);
    if (error != ERROR_SUCCESS && !IsMissing(error)) return error;
    Values file;
    if (original && !file.Read(bytes)) {
        KeepDamagedFile();
        if (!m_mayWrite) return ERROR_INVALID_DATA;
        original.reset();
    }
    return QVUtils::ReplaceRecord(m_path, m_values->Merged(original ? file : *m_values), original.has_value(),
                                  original);
}

bool ExtensionSettings::GetString(uint32_t, const wchar_t* section, const wchar_t* key, wchar_t* buffer,
                                  uint32_t capacity) {
    return Guarded(false, [&] {
        if (!section || !key || !buffer || capacity == 0) return false;
        const std::optional<std::wstring> text = m_file.Text(m_extension, section, key);
        if (text) CopyText(*text, buffer, capacity);
        return text.has_value();
    });
}

bool ExtensionSettings::GetNumber(uint32_t, const wchar_t* section, const wchar_t* key, uint32_t* value) {
    return Guarded(false, [&] {
        if (!section || !key || !value) return false;
        const std::optional<uint32_t> number = m_file.Number(m_extension, section, key);
        if (number) *value = *number;
        return number.has_value();
    });
}

bool ExtensionSettings::SetString(uint32_t, const wchar_t* section, const wchar_t* key, const wchar_t* text) {
    return Guarded(false, [&] { return section && key && text && m_file.SetText(m_extension, section, key, text); });
}

bool ExtensionSettings::SetNumber(uint32_t, const wchar_t* section, const wchar_t* key, uint32_t value) {
    return Guarded(false, [&] { return section && key && m_file.SetNumber(m_extension, section, key, value); });
}

}  // namespace QVHost
