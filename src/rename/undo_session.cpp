#include "rename/undo_session.h"

#include <algorithm>
#include <array>
#include <cwchar>
#include <limits>
#include <optional>
#include <unordered_map>
#include <utility>

#include "rename/name_template.h"
#include "win32/code_page.h"
#include "win32/text.h"

namespace BatchRename {
namespace {

constexpr std::wstring_view kInfo = L"[INFO]";
constexpr std::wstring_view kFiles = L"[FILES]";
constexpr std::wstring_view kUnfinished = L"# unfinished";
constexpr std::wstring_view kIdentity = L"#& ";
constexpr std::wstring_view kOpen = L"#? ";
constexpr std::wstring_view kReached = L"#@ ";
constexpr std::wstring_view kStep = L"#> ";
constexpr std::wstring_view kFailedStep = L"#= ";
constexpr std::wstring_view kLineEnd = L"\r\n";
constexpr size_t kLongestEntry = 32767 + 2 * (255 + 1);  // units: the longest path, and two names
constexpr size_t kNoEntry = std::numeric_limits<size_t>::max();
constexpr std::wstring_view kHexadecimal = L"0123456789abcdef";

/// An entry's number at the beginning of `text`, which is cut off with the "|" after it; nothing when there is none.
std::optional<size_t> TakeEntryNumber(std::wstring_view& text) {
    const size_t end = std::min(text.find_first_not_of(L"0123456789"), text.size());
    if (end == 0 || end > 9) return std::nullopt;
    const auto number = static_cast<size_t>(Win32::LeadingNumber<int64_t>(text.substr(0, end)));
    text.remove_prefix(std::min(end + 1, text.size()));
    return number;
}

std::wstring LineOf(const UndoEntry& entry) {
    return entry.location + L'|' + entry.oldName + L'|' + entry.newName;
}

/// FNV-1a over the units of the entry's line.
uint64_t CheckSumOf(const UndoEntry& entry) {
    uint64_t hash = 0xCBF29CE484222325;
    for (const wchar_t unit : LineOf(entry)) hash = (hash ^ static_cast<uint16_t>(unit)) * 0x100000001B3;
    return hash;
}

/// A hexadecimal number of at most 64 bits up to "|" or the end, which is cut off with the "|"; nothing when there is
/// none.
std::optional<uint64_t> TakeHexadecimal(std::wstring_view& text) {
    constexpr size_t kMostDigits = 16;
    const size_t end = std::min(text.find(L'|'), text.size());
    if (end == 0 || end > kMostDigits) return std::nullopt;
    uint64_t number = 0;
    for (const wchar_t digit : text.substr(0, end)) {
        const size_t value = kHexadecimal.find(digit);
        if (value == std::wstring_view::npos) return std::nullopt;
        number = number << 4 | value;
    }
    text.remove_prefix(std::min(end + 1, text.size()));
    return number;
}

std::wstring Hexadecimal(uint64_t number) {
    std::wstring text;
    for (; number != 0 || text.empty(); number >>= 4) text.insert(text.begin(), kHexadecimal[number & 0xF]);
    return text;
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
        m_entryOfNumber.push_back(kNoEntry);
        if (line.size() > kLongestEntry) return;
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
        m_entryOfNumber.back() = m_session.entries.size();
        m_session.entries.push_back(std::move(entry));
    }

    void ReadProgress(std::wstring_view line) {
        if (line == kUnfinished) {
            m_session.isUnfinished = true;
            return;
        }
        const std::wstring_view mark = line.substr(0, kStep.size());
        line.remove_prefix(mark.size());
        const std::optional<size_t> number = TakeEntryNumber(line);
        if (!number) return;
        if (mark == kIdentity) return ReadIdentity(*number, line);
        const size_t at = EntryOf(*number);
        if (at == kNoEntry) return;
        UndoEntry& entry = m_session.entries[at];
        if (mark == kFailedStep) {
            entry.begun.clear();
            m_begun.reset();
        } else if (line.empty()) {
            return;
        } else if (mark == kReached) {
            entry.reached = line;
        } else if (mark == kOpen) {
            entry.begun = line;
        } else if (mark == kStep) {
            CompleteStep();
            m_begun = at;
            entry.begun = line;
        }
    }

    void ReadIdentity(size_t number, std::wstring_view line) {
        const std::optional<uint64_t> volume = TakeHexadecimal(line);
        const std::optional<uint64_t> index = TakeHexadecimal(line);
        const std::optional<uint64_t> sum = TakeHexadecimal(line);
        if (!volume || !index || !sum) return;
        size_t at = EntryOf(number);
        if (at == kNoEntry || CheckSumOf(m_session.entries[at]) != *sum) {
            at = EntryOfSum(*sum);
            m_movedEntries[number] = at;
        }
        if (at == kNoEntry) return;
        const std::optional<uint64_t> written = TakeHexadecimal(line);
        const std::optional<uint64_t> accessed = TakeHexadecimal(line);
        m_session.entries[at].identity = {static_cast<uint32_t>(*volume), *index, written.value_or(0),
                                          accessed.value_or(0)};
    }

    size_t EntryOfSum(uint64_t sum) {
        if (m_entryOfSum.empty())
            for (size_t at = 0; at < m_session.entries.size(); ++at)
                m_entryOfSum.emplace(CheckSumOf(m_session.entries[at]), at);
        const auto found = m_entryOfSum.find(sum);
        return found == m_entryOfSum.end() ? kNoEntry : found->second;
    }

    /// The entry that had this number when it was written: lines that cannot be read count too.
    size_t EntryOf(size_t number) const {
        const auto moved = m_movedEntries.find(number);
        if (moved != m_movedEntries.end()) return moved->second;
        return number < m_entryOfNumber.size() ? m_entryOfNumber[number] : kNoEntry;
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
    std::vector<size_t> m_entryOfNumber;                // by the place of its line
    std::unordered_map<size_t, size_t> m_movedEntries;  // where a line was lost or added
    std::unordered_map<uint64_t, size_t> m_entryOfSum;
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

std::wstring TextOfIdentity(const UndoEntry& entry) {
    const ItemIdentity& item = entry.identity;
    std::wstring text = Hexadecimal(item.volume);
    for (const uint64_t number : {item.index, CheckSumOf(entry), item.written, item.accessed})
        if (number != 0 || item.written != 0) text += L'|' + Hexadecimal(number);
    return text;
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
    for (const UndoEntry& entry : session.entries) AppendLine(text, LineOf(entry));
    for (size_t at = 0; at < session.entries.size(); ++at) {
        if (session.entries[at].identity) text += FormatProgress(kIdentity, at, TextOfIdentity(session.entries[at]));
    }
    if (!session.isUnfinished) return text;
    AppendLine(text, kUnfinished);
    for (size_t at = 0; at < session.entries.size(); ++at) {
        const UndoEntry& entry = session.entries[at];
        if (!entry.reached.empty()) text += FormatProgress(kReached, at, entry.reached);
        if (!entry.begun.empty()) text += FormatProgress(kOpen, at, entry.begun);
    }
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

std::optional<CalendarTime> TimeOfFileName(const std::wstring& name) {
    BatchRenameUndo session;
    CalendarTime& time = session.time;
    const int count = std::swscanf(name.c_str(), L"BatchRenameUndoData-%5d-%2d-%2d-%2d%2d%2d", &time.year, &time.month,
                                   &time.day, &time.hour, &time.minute, &time.second);
    constexpr int kFields = 6;
    return count == kFields && FileNameOf(session) == name ? std::optional(time) : std::nullopt;
}

}  // namespace BatchRename
