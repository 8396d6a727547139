// output.h - the two streams of a run, in UTF-8 with LF line ends: standard output for results and log lines, standard
// error for everything about the run. Where there is a panel, it shows every line too. May be used from any thread.
#pragma once

#include <mutex>
#include <ostream>
#include <string>
#include <string_view>

#include "host/contract/panel_view.h"

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

    /// One line of standard output. Kept until there is a block of them or something needs the order.
    void Line(std::wstring_view text, Tone tone = Tone::Plain);
    /// Lines of standard output that are in UTF-8 already; the last one has its end too.
    void Lines(std::string_view lines);
    /// One line of standard error, behind all output so far.
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
};

}  // namespace QVHost
