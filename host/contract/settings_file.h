// settings_file.h - the settings of all extensions, in one JSON file: extension id, section, key. Texts are strings,
// numbers are numbers.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "host/app/output.h"
#include "sdk/host_objects.h"

namespace QVHost {

class SettingsFile {
public:
    /// Reads the file when it is there. One that cannot be understood is moved aside (`.damaged`, `.damaged-2`, ...)
    /// and the run begins without settings; one that cannot be read is left alone and never written over. "" for
    /// settings that end with the run.
    SettingsFile(Output& output, std::wstring path);
    ~SettingsFile();

    std::optional<std::wstring> Text(const std::wstring& extension, const wchar_t* section, const wchar_t* key);
    std::optional<uint32_t> Number(const std::wstring& extension, const wchar_t* section, const wchar_t* key);
    /// False for a text that UTF-8 cannot hold (a lone surrogate): better refused than changed.
    bool SetText(const std::wstring& extension, const wchar_t* section, const wchar_t* key, const wchar_t* text);
    bool SetNumber(const std::wstring& extension, const wchar_t* section, const wchar_t* key, uint32_t value);

    /// Puts what was changed into the file as it is by now (another run or an editor may have saved it), whole or not
    /// at all. False, and a line on standard error, when that failed.
    bool Save();

private:
    class Values;  // the JSON library's headers cost each file that includes them two seconds

    uint32_t SaveChanges();
    void KeepDamagedFile();

    Output& m_output;
    std::wstring m_path;
    std::mutex m_mutex;
    std::unique_ptr<Values> m_values;
    bool m_mayWrite = true;
};

/// The view of one extension.
class ExtensionSettings final : public Quorvane::SDK::ISettings {
public:
    ExtensionSettings(SettingsFile& file, std::wstring extension) : m_file(file), m_extension(std::move(extension)) {}

    bool GetString(uint32_t one, const wchar_t* section, const wchar_t* key, wchar_t* buffer,
                   uint32_t capacity) override;
    bool GetNumber(uint32_t one, const wchar_t* section, const wchar_t* key, uint32_t* value) override;
    bool SetString(uint32_t one, const wchar_t* section, const wchar_t* key, const wchar_t* text) override;
    bool SetNumber(uint32_t one, const wchar_t* section, const wchar_t* key, uint32_t value) override;

private:
    SettingsFile& m_file;
    std::wstring m_extension;
};

}  // namespace QVHost
