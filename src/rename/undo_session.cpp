#include "rename/undo_session.h"

#include <algorithm>
#include <array>
#include <cwchar>
#include <optional>
#include <utility>

#include "rename/name_template.h"
#include "win32/code_page.h"
#include "win32/text.h"

namespace BatchRename {
namespace {

constexpr std::wstring_view kInfo = L"[INFO]";
constexpr std::wstring_view kFiles = L"[FILES]";
constexpr std::wstring_view kUnfinished = L"# unfinished";
constexpr std::wstring_view kReached = L"#@ ";
constexpr std::wstring_view kStep = L"#> ";
constexpr std::wstring_view kFailedStep = L"#= ";
constexpr std::wstring_view kLineEnd = L"\r\n";

/// An entry's number at the beginning of `text`, which is cut off with the "|" after it; nothing when there is none.
std::optional<size_t> TakeEntryNumber(std::wstring_view& text, size_t entryCount) {
    const size_t end = std::min(text.find_first_not_of(L"0123456789"), text.size());
    if (end == 0 || end > 9) return std::nullopt;
    const auto number = static_cast<size_t>(Win32::LeadingNumber<int64_t>(text.substr(0, end)));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (number >= entryCount) return std::nullopt;
    return number;
}

class Reader {
public:
    explicit Reader(BatchRenameUndo& session) : m_session(session) {}

    void Read(std::wstring_view text) {
        while (!text.empty()) {
            const size_t end = text.find(L'\n');
            const bool isWhole = end != std::wstring_view::npos;
            std::wstring_view line = text.substr(0, end);
            if (isWhole && line.ends_with(L'\r')) line.remove_suffix(1);
            ReadLine(line, isWhole);
            text.remove_prefix(isWhole ? end + 1 : text.size());
        }
    }

private:
    void ReadLine(std::wstring_view line, bool isWhole) {
        if (line.empty() || line.front() == L';') return;
        if (line.front() == L'#') {
            // A line that was cut off announces a step that was never taken.
            if (isWhole) ReadProgress(line);
            return;
        }
        line = Win32::Trimmed(line);
        if (line == kInfo)
            m_section = Section::Info;
        else if (line == kFiles)
            m_section = Section::Files;
        else if (m_section == Section::Info)
            ReadInfo(line);
        else if (m_section == Section::Files)
            ReadEntry(line);
    }

    void ReadInfo(std::wstring_view line) {
        const size_t colon = line.find(L':');
        if (colon == std::wstring_view::npos) return;
        const std::wstring_view key = Win32::Trimmed(line.substr(0, colon));
        const std::wstring_view value = Win32::Trimmed(line.substr(colon + 1));
        if (key == L"Date") m_session.time = TimeOfSeconds(Win32::LeadingNumber<int64_t>(value));
        if (key == L"HaveRestored") m_session.haveRestored = Win32::LeadingNumber<int64_t>(value) != 0;
    }

    void ReadEntry(std::wstring_view line) {
        std::array<std::wstring_view, 3> fields;
        size_t count = 0;
        for (;;) {
            const size_t bar = line.find(L'|');
            if (count == fields.size()) return;
            fields[count++] = line.substr(0, bar);
            if (bar == std::wstring_view::npos) break;
            line.remove_prefix(bar + 1);
        }
        if (count != fields.size()) return;
        UndoEntry entry;
        entry.location = fields[0];
        entry.oldName = fields[1];
        entry.newName = fields[2];
        m_session.entries.push_back(std::move(entry));
    }

    void ReadProgress(std::wstring_view line) {
        if (line == kUnfinished) {
            m_session.isUnfinished = true;
        } else if (line.starts_with(kReached)) {
            line.remove_prefix(kReached.size());
            const auto number = TakeEntryNumber(line, m_session.entries.size());
            if (number) m_session.entries[*number].reached = line;
        } else if (line.starts_with(kStep)) {
            line.remove_prefix(kStep.size());
            const auto number = TakeEntryNumber(line, m_session.entries.size());
            if (!number || line.empty()) return;
            CompleteStep();
            m_begun = number;
            m_session.entries[*number].begun = line;
        } else if (line.starts_with(kFailedStep)) {
            line.remove_prefix(kFailedStep.size());
            const auto number = TakeEntryNumber(line, m_session.entries.size());
            if (!number) return;
            m_session.entries[*number].begun.clear();
            m_begun.reset();
        }
    }

    /// The next step was announced, so the one before was taken.
    void CompleteStep() {
        if (!m_begun) return;
        UndoEntry& entry = m_session.entries[*m_begun];
        entry.reached = std::exchange(entry.begun, {});
    }

    enum class Section { None, Info, Files };

    BatchRenameUndo& m_session;
    Section m_section = Section::None;
    std::optional<size_t> m_begun;
};

void AppendLine(std::wstring& text, std::wstring_view line) {
    text += line;
    text += kLineEnd;
}

std::wstring FormatProgress(std::wstring_view mark, size_t entry, std::wstring_view name) {
    std::wstring line(mark);
    line += std::to_wstring(entry) + L'|';
    line += name;
    line += kLineEnd;
    return line;
}

}  // namespace

BatchRenameUndo RecordSession(const RenameItems& rows, bool onlyRenamed, const CalendarTime& time) {
    BatchRenameUndo session;
    session.time = time;
    for (const auto& row : rows) {
        if (onlyRenamed && row->state != RowState::Renamed) continue;
        UndoEntry entry;
        entry.location = row->location;
        entry.newName = row->newName;
        entry.oldName = row->currentName;
        session.entries.push_back(std::move(entry));
    }
    return session;
}

std::wstring FormatSession(const BatchRenameUndo& session) {
    std::wstring text;
    AppendLine(text, kInfo);
    AppendLine(text, L"Date : " + std::to_wstring(SecondsOf(session.time)));
    AppendLine(text, L"Items : " + std::to_wstring(session.entries.size()));
    AppendLine(text, session.haveRestored ? L"HaveRestored : 1" : L"HaveRestored : 0");
    AppendLine(text, L"");
    AppendLine(text, kFiles);
    for (const UndoEntry& entry : session.entries)
        AppendLine(text, entry.location + L'|' + entry.oldName + L'|' + entry.newName);
    if (!session.isUnfinished) return text;
    AppendLine(text, kUnfinished);
    for (size_t at = 0; at < session.entries.size(); ++at)
        if (!session.entries[at].reached.empty()) text += FormatProgress(kReached, at, session.entries[at].reached);
    return text;
}

std::wstring FormatStep(size_t entry, std::wstring_view name) {
    return FormatProgress(kStep, entry, name);
}

std::wstring FormatFailedStep(size_t entry) {
    return std::wstring(kFailedStep) + std::to_wstring(entry) + std::wstring(kLineEnd);
}

void ParseSession(std::wstring_view text, BatchRenameUndo& session) {
    session.time = {};
    session.haveRestored = false;
    session.isUnfinished = false;
    session.entries.clear();
    Reader(session).Read(text);
}

std::wstring DecodeSession(std::string_view bytes) {
    constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
    if (bytes.starts_with(kUtf8Mark)) return Win32::FromCodePage(bytes.substr(kUtf8Mark.size()), Win32::kUtf8CodePage);
    const bool isBigEndian = bytes.starts_with("\xFE\xFF");
    if (isBigEndian || bytes.starts_with("\xFF\xFE")) bytes.remove_prefix(2);
    std::wstring text(bytes.size() / 2, L'\0');
    for (size_t at = 0; at < text.size(); ++at) {
        const auto first = static_cast<uint8_t>(bytes[at * 2]);
        const auto second = static_cast<uint8_t>(bytes[at * 2 + 1]);
        text[at] = static_cast<wchar_t>(isBigEndian ? first << 8 | second : second << 8 | first);
    }
    return text;
}

const std::wstring& FileNameOf(BatchRenameUndo& session) {
    if (!session.fileName.empty()) return session.fileName;
    const CalendarTime& time = session.time;
    std::wstring& name = session.fileName;
    name = L"BatchRenameUndoData-";
    AppendNumber(name, time.year, 0);
    for (const int part : {time.month, time.day}) {
        name += L'-';
        AppendNumber(name, part, 2);
    }
    name += L'-';
    for (const int part : {time.hour, time.minute, time.second}) AppendNumber(name, part, 2);
    name += L".dat";
    return name;
}

}  // namespace BatchRename
