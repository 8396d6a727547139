#include "host/panel/run_report.h"

#include <algorithm>
#include <map>

#include "sdk/file_list.h"
#include "sdk/host_services.h"
#include "win32/path.h"
#include "win32/text.h"

namespace QVHost {
namespace {

constexpr size_t kShortestPath = 3;     // "C:\"
constexpr size_t kMostCandidates = 64;  // ends of one path that are tried

/// By name in small letters.
std::map<std::wstring, const Win32::FolderEntry*> ByName(const std::vector<FolderRow>& rows) {
    std::map<std::wstring, const Win32::FolderEntry*> entries;
    for (const FolderRow& row : rows) entries[Win32::ToLowerCase(row.entry.name)] = &row.entry;
    return entries;
}

bool IsLetter(wchar_t unit) {
    return (unit >= L'A' && unit <= L'Z') || (unit >= L'a' && unit <= L'z');
}

/// Where a full path begins, from `from` on.
size_t FindPath(std::wstring_view line, size_t from) {
    for (size_t at = from; at + kShortestPath <= line.size(); ++at) {
        const bool isDrive = IsLetter(line[at]) && line[at + 1] == L':' && line[at + 2] == L'\\';
        const bool isShare = line[at] == L'\\' && line[at + 1] == L'\\' && line[at + 2] != L'\\';
        const bool isStart = at == 0 || !IsLetter(line[at - 1]);
        if (isStart && (isDrive || isShare)) return at;
    }
    return std::wstring_view::npos;
}

/// The longest beginning that leads somewhere and ends where a word does: what follows a path has no mark of its own.
std::wstring ExistingBeginning(std::wstring_view text, const std::function<bool(const std::wstring&)>& exists) {
    size_t end = text.size();
    for (size_t tried = 0; end > kShortestPath && tried < kMostCandidates; ++tried) {
        std::wstring candidate(text.substr(0, end));
        if (exists(candidate)) return candidate;
        end = text.find_last_of(L" ):,;", end - 1);
        if (end == std::wstring_view::npos) break;
    }
    return {};
}

/// "OLD -> NEW", NEW without its folder.
std::wstring RenamedIn(std::wstring_view text) {
    constexpr std::wstring_view kArrow = L" -> ";
    const size_t arrow = text.find(kArrow);
    if (arrow == std::wstring_view::npos) return {};
    return Win32::JoinPath(Win32::FolderOf(text.substr(0, arrow)), text.substr(arrow + kArrow.size()));
}

}  // namespace

void RunReport::Begin(std::vector<FolderRow> rows) {
    *this = RunReport();
    m_before = std::move(rows);
}

void RunReport::Mark(uint32_t kind) {
    if (kind == Quorvane::SDK::MarkKind::Failed) ++m_counts.failed;
    if (kind == Quorvane::SDK::MarkKind::Skipped) ++m_counts.skipped;
}

void RunReport::Line(std::wstring_view text, Tone tone) {
    m_counts.replaced += ChangesIn(text);
    if (tone == Tone::Success && TellsWhatWasDone(text)) ++m_doneLines;
    if (tone == Tone::Failure) ++m_failureLines;
}

RunCounts RunReport::End(const std::vector<FolderRow>& rows) {
    RunCounts counts = m_counts;
    counts.renamed = m_renamings.size();
    // A command that marks no files tells of failures by its lines alone.
    if (counts.failed == 0) counts.failed = m_failureLines;
    auto before = ByName(m_before);
    for (const auto& [from, to] : m_renamings) {
        auto entry = before.extract(Win32::ToLowerCase(Win32::FileNameOf(from)));
        if (entry.empty()) continue;
        entry.key() = Win32::ToLowerCase(Win32::FileNameOf(to));
        before.insert(std::move(entry));
    }
    for (const auto& [name, entry] : ByName(rows)) {
        const auto former = before.find(name);
        if (former == before.end()) {
            ++counts.added;
            continue;
        }
        // A folder's time follows what happens in it.
        const bool isFolder = (entry->attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        if (!isFolder && (former->second->size != entry->size || former->second->written != entry->written))
            ++counts.changed;
        before.erase(former);
    }
    counts.gone = before.size();
    // What a command does elsewhere, or to what no listing shows, such as rights, is known by its log alone.
    if (counts.changed + counts.added + counts.gone + counts.renamed + counts.replaced == 0) counts.told = m_doneLines;
    return counts;
}

bool TellsWhatWasDone(std::wstring_view line) {
    constexpr std::wstring_view kAside[] = {L" - Note : ", L" - Before : ", L" - Preview : ", L" - 0 changes made "};
    return std::ranges::none_of(kAside, [&](std::wstring_view mark) { return line.find(mark) != line.npos; });
}

uint64_t ChangesIn(std::wstring_view line) {
    constexpr std::wstring_view kBefore = L"[Find and Replace] - ";
    constexpr std::wstring_view kAfter = L" changes made ";
    if (!line.starts_with(kBefore)) return 0;
    line.remove_prefix(kBefore.size());
    const size_t end = line.find(kAfter);
    return end == std::wstring_view::npos ? 0 : Win32::WholeNumber<uint64_t>(line.substr(0, end)).value_or(0);
}

std::wstring PathIn(std::wstring_view line, const std::function<bool(const std::wstring&)>& exists) {
    std::wstring folder;
    for (size_t at = FindPath(line, 0); at != std::wstring_view::npos; at = FindPath(line, at + kShortestPath)) {
        const std::wstring_view rest = line.substr(at);
        std::wstring renamed = RenamedIn(rest);
        if (!renamed.empty() && exists(renamed)) return renamed;
        std::wstring path = ExistingBeginning(rest, exists);
        if (!path.empty()) return path;
        const std::wstring above(Win32::WithoutSeparator(Win32::FolderOf(rest)));
        if (folder.empty() && exists(above)) folder = above;
    }
    return folder;
}

}  // namespace QVHost
