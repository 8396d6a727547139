// log.h - where the library's log lines go: standard output, unless that is to be quiet, and the end of a file.
#pragma once

#include <cstdarg>
#include <mutex>
#include <string>

#include "host/app/output.h"
#include "win32/handle.h"

namespace QVHost {

class Log {
public:
    /// `file`: "" for none; it is appended to, made when missing.
    /// @throws HostError when the file cannot be opened
    Log(Output& output, const std::wstring& file, bool quiet);
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;
    ~Log();

    /// One line. Line breaks in it become blanks: a reader counts on one line an entry.
    void Write(std::wstring_view text, Tone tone = Tone::Plain);
    /// False when the file has not taken everything so far.
    bool Flush();

private:
    void FlushFile();

    Output& m_output;
    std::wstring m_path;
    bool m_quiet;
    bool m_isWhole = true;
    std::mutex m_mutex;
    Win32::FileHandle m_file;
    std::string m_pending;
};

/// A text of any length by the system's own formatting: `%s` is UTF-16, `%I64d` is known. Empty when the format cannot
/// be formatted.
std::wstring FormatLine(const wchar_t* format, va_list arguments);

}  // namespace QVHost
