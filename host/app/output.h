// output.h - the two streams of a run, in UTF-8 with LF line ends: standard output for results and log lines, standard
// error for everything about the run; and the log over them. Where there is a panel, it shows every line too. May be
// used from any thread.
#pragma once

#include <mutex>
#include <ostream>
#include <string>
#include <string_view>

#include "host/app/json_report.h"
#include "host/contract/panel_view.h"
#include "win32/handle.h"

namespace QVHost {

class Output {
public:
    /// `flushLines`: somebody is watching standard output as it comes.
    Output(std::ostream& out, std::ostream& error, bool flushLines)
        : m_out(out), m_error(error), m_flushLines(flushLines) {}
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    ~Output() { Flush(); }

    /// From now on the panel shows the lines as well; null: no more. To be set while one thread alone writes.
    void ShowIn(IPanelView* panel);
    /// From now on lines, notes and items go into the report and nowhere else; null: no more. To be set while one
    /// thread alone writes.
    void CollectIn(Report* report);
    bool IsCollecting() const { return m_report != nullptr; }
    /// False without a report: then the caller has a line to write.
    bool Item(const JsonFields& item);
    /// Of a custom command, for the report if there is one.
    void Result(uint32_t code, const std::wstring& text);

    /// One line of standard output. Kept until there is a block of them or something needs the order.
    void Line(std::wstring_view text, Tone tone = Tone::Plain);
    /// Lines of standard output that are in UTF-8 already; the last one has its end too.
    void Lines(std::string_view lines);
    /// One line of standard error, after all output so far.
    void Note(std::wstring_view text, Tone tone = Tone::Note);
    /// Standard error without a line end: a prompt, or a line that is written over by the next.
    void Prompt(std::wstring_view text);
    /// False when standard output has not taken everything so far. The first time standard error names the reason.
    bool Flush();

private:
    void FlushLines();
    void ReportLoss(unsigned long error);

    std::mutex m_mutex;
    std::ostream& m_out;
    std::ostream& m_error;
    bool m_flushLines;
    std::string m_pending;
    bool m_isWhole = true;
    IPanelView* m_panel = nullptr;
    Report* m_report = nullptr;
};

/// Where the library's log lines go: standard output, unless that is to be quiet, and the end of a file.
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

}  // namespace QVHost
