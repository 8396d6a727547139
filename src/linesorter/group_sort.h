// group_sort.h - sorts lines by keys that are read twelve bytes at a time: these lie beside the line's index, so that
// most comparisons touch no text. Lines that they leave equal are a group, which is sorted by what follows the
// beginning that it has in common. Knows no lines and no system: a reader gives the bytes.
#pragma once

#include <algorithm>
#include <array>
#include <compare>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "linesorter/workers.h"

namespace QVLineSorter {

/// Eight bytes of memory as a big-endian number: the first byte counts most.
inline uint64_t LoadBytes(const void* from) {
    uint64_t bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    return __builtin_bswap64(bytes);
}

/// Twelve bytes of a key, or a number, and the line's index in the file.
struct KeyedIndex {
    uint64_t key = 0;
    uint32_t index = 0;
    uint32_t tail = 0;  // the four bytes after `key`
};
static_assert(sizeof(KeyedIndex) == 16);

/// What is compared in one step.
struct Chunk {
    uint64_t key = 0;
    uint32_t tail = 0;
    bool operator==(const Chunk&) const = default;
    bool operator<(const Chunk& other) const { return key != other.key ? key < other.key : tail < other.tail; }
};
inline Chunk ChunkOf(const KeyedIndex& entry) {
    return {entry.key, entry.tail};
}

// Three chunks that no line's own bytes give, but for the last one, which stands for twelve bytes of 255 too.
inline constexpr Chunk kBeforePivot = {};           // the key is less than the beginning in common
inline constexpr Chunk kEndsWithPivot = {0, 1};     // it is that beginning
inline constexpr Chunk kAfterPivot = {~0ULL, ~0U};  // it is greater

/// Equal ones by index. That makes every two entries different, so any sort gives what a stable one would. An object,
/// since a sort would call a function anew for each two entries.
inline constexpr auto kIsLess = [](const KeyedIndex& left, const KeyedIndex& right) {
    const auto rest = [](const KeyedIndex& entry) { return uint64_t{entry.tail} << 32 | entry.index; };
    return left.key != right.key ? left.key < right.key : rest(left) < rest(right);
};

/// Where the order of groups comes from. Each worker has a reader of its own. Depths count in the reader's own units.
///
/// A reader has:
///   void SetPhase(uint32_t)              keys may have a second part, read once the first parts are equal
///   bool HasPhase(uint32_t)
///   void SetPivot(index, from)           of a group whose keys have the first `from` units in common
///   size_t Common(index, limit)          units in common with the pivot, at most `limit`
///   Chunk ChunkAt(index, depth)          of a key of the pivot's group, whose sample has `depth` units in common
///   bool IsEnd(chunk)                    there is nothing after it
///   int Compare(left, right, from)       the whole keys, which begin with `from` units in common
///   kFew, kKeepsFew                      members of a group that are compared; whether by keys that are kept for it:
///   void Keep(members, from)             ... as `key` and by slot, which `tail` becomes
///   int CompareKept(slot, slot), bool IsKeptWhole(slot)
///   void PrefetchLine(index), PrefetchText(index)   before it is read
///   kUnits                               of a chunk
template <class Reader>
class GroupSort {
public:
    GroupSort(std::span<KeyedIndex> entries, std::vector<Reader>& readers, Workers& workers)
        : m_entries(entries), m_readers(readers), m_workers(workers) {}

    /// Sorts the entries by their keys, equal ones by index. They come in the order of their indexes.
    void Sort() {
        if (m_entries.empty()) return;
        for (Reader& reader : m_readers) reader.SetPhase(0);
        Task all = {.end = static_cast<uint32_t>(m_entries.size())};
        all.depth = ChoosePivot(all, m_readers.front());
        const uint32_t pivot = PivotOf(all).index;
        for (Reader& reader : m_readers) reader.SetPivot(pivot, 0);
        m_workers.ForEach(m_entries.size(), [&](uint32_t begin, uint32_t end, uint32_t worker) {
            Load({.begin = begin, .end = end, .depth = all.depth}, m_readers[worker]);
        });
        m_workers.GetProgress().BeginPart(SortPart::Ordered);
        all.kind = kLoaded;
        SortLoaded(all);
    }

    /// The same for entries that have their keys already, which are all there is.
    void SortByKeys() {
        m_workers.GetProgress().BeginPart(SortPart::Ordered);
        SortLoaded({.end = static_cast<uint32_t>(m_entries.size()), .kind = kLoaded});
    }

private:
    // Bits of a task's kind; above them stands how often the range has been parted.
    static constexpr uint16_t kLoaded = 1;  // the entries hold the chunks of `depth`
    static constexpr uint16_t kSecondPhase = 2;
    static constexpr uint16_t kParted = 4;
    static constexpr uint16_t kMostPartings = 64;  // of halves: more only where pivots were chosen badly each time
    static constexpr uint16_t kMostLevels = 64;    // of groups in groups
    static constexpr uint32_t kLeaf = 16384;       // entries sorted at a time
    static constexpr uint32_t kInline = 4096;      // in a group that is no task of its own

    void SortLoaded(const Task& all) {
        m_workers.Run([this](const Task& task, uint32_t worker) { Do(task, worker); }, all, all.end);
    }

    void Do(Task task, uint32_t worker) {
        m_workers.Check();
        if (!(task.kind & kLoaded)) {
            Reader& reader = m_readers[worker];
            reader.SetPhase(PhaseOf(task));
            if (task.level > kMostLevels) return SortByComparing(task, reader);
            if (task.end - task.begin <= Reader::kFew) return SortFew(task, worker);
            task.depth = ChoosePivot(task, reader);
            Load(task, reader);
            task.kind |= kLoaded;
        }
        Part(task, worker);
    }

    static uint32_t PhaseOf(const Task& task) { return task.kind & kSecondPhase ? 1 : 0; }
    std::span<KeyedIndex> MembersOf(const Task& task) const {
        return m_entries.subspan(task.begin, task.end - task.begin);
    }
    const KeyedIndex& PivotOf(const Task& task) const { return m_entries[task.begin + (task.end - task.begin) / 2]; }

    /// Returns how many units a sample of the group has in common. The sample may miss a few odd lines: these are put
    /// before or after the others.
    uint32_t ChoosePivot(const Task& task, Reader& reader) const {
        constexpr uint32_t kSample = 32;
        const uint32_t count = task.end - task.begin;
        reader.SetPivot(PivotOf(task).index, task.depth);
        size_t common = Reader::kLongestCommon;
        for (uint32_t i = 0; i < kSample && common > task.depth; ++i)
            common = reader.Common(m_entries[task.begin + uint64_t{count} * i / kSample].index, common);
        return static_cast<uint32_t>(std::max<size_t>(common, task.depth));
    }

    void Load(const Task& task, Reader& reader) const {
        constexpr size_t kAhead = 8;
        const auto members = MembersOf(task);
        for (size_t i = 0; i < members.size(); ++i) {
            if (i + 2 * kAhead < members.size()) {
                reader.PrefetchLine(members[i + 2 * kAhead].index);
                reader.PrefetchText(members[i + kAhead].index);
            }
            const Chunk chunk = reader.ChunkAt(members[i].index, task.depth);
            members[i].key = chunk.key;
            members[i].tail = chunk.tail;
            if (i % 256 == 0) m_workers.Check();
        }
    }

    void SortByComparing(const Task& task, Reader& reader) const {
        uint32_t count = 0;
        std::ranges::sort(MembersOf(task), [&](const KeyedIndex& left, const KeyedIndex& right) {
            if (++count % 1024 == 0) m_workers.Check();
            const int order = reader.Compare(left.index, right.index, task.depth);
            return order != 0 ? order < 0 : left.index < right.index;
        });
        m_workers.Finish(task.end - task.begin);
    }

    /// Few keys are compared sooner than their chunks are read. Where they take long to make, they are kept meanwhile.
    void SortFew(const Task& task, uint32_t worker) {
        Reader& reader = m_readers[worker];
        if constexpr (!Reader::kKeepsFew) {
            SortByComparing(task, reader);
        } else {
            const auto members = MembersOf(task);
            reader.Keep(members, task.depth);
            std::ranges::sort(members, [&](const KeyedIndex& left, const KeyedIndex& right) {
                if (left.key != right.key) return left.key < right.key;
                const int order = reader.CompareKept(left.tail, right.tail);
                return order != 0 ? order < 0 : left.index < right.index;
            });
            // What is kept is gone with the first group in this one, so the groups are looked for before.
            std::array<bool, Reader::kFew> begins = {};
            std::array<bool, Reader::kFew> areWhole = {};
            for (size_t i = 0; i < members.size(); ++i) {
                begins[i] = i == 0 || members[i - 1].key != members[i].key ||
                            reader.CompareKept(members[i - 1].tail, members[i].tail) != 0;
                areWhole[i] = reader.IsKeptWhole(members[i].tail);
            }
            Task group = task;
            for (size_t begin = 0, end = 0; begin < members.size(); begin = end) {
                bool isWhole = areWhole[begin];
                for (end = begin + 1; end < members.size() && !begins[end]; ++end) isWhole = isWhole && areWhole[end];
                group.begin = task.begin + static_cast<uint32_t>(begin);
                group.end = task.begin + static_cast<uint32_t>(end);
                SortKeptGroup(group, isWhole, worker);
            }
        }
    }

    /// Of keys that are equal as far as they were kept.
    void SortKeptGroup(Task group, bool isWhole, uint32_t worker) {
        const uint32_t count = group.end - group.begin;
        const bool hasMore = Reader::HasPhase(PhaseOf(group) + 1);
        if (count == 1 || (isWhole && !hasMore)) return m_workers.Finish(count);
        m_readers[worker].SetPhase(PhaseOf(group));
        if (!isWhole) return SortByComparing(group, m_readers[worker]);
        group.depth = 0;
        group.kind |= kSecondPhase;
        Do(group, worker);
    }

    /// Parts a large range by a chunk from its middle, so that others can take a part, and sorts a small one. All that
    /// have the same chunk stay together.
    void Part(Task task, uint32_t worker) {
        while (task.end - task.begin > kLeaf && task.kind / kParted < kMostPartings) {
            const Chunk pivot = MiddleChunk(task);
            uint32_t less = task.begin;
            uint32_t greater = task.end;
            for (uint32_t at = task.begin; at < greater;) {
                const Chunk chunk = ChunkOf(m_entries[at]);
                if (chunk < pivot)
                    std::swap(m_entries[at++], m_entries[less++]);
                else if (pivot < chunk)
                    std::swap(m_entries[at], m_entries[--greater]);
                else
                    ++at;
            }
            task.kind = static_cast<uint16_t>(task.kind + kParted);
            Task part = task;
            part.end = less;
            if (part.end > part.begin) m_workers.Add(part, worker);
            part = task;
            part.begin = less;
            part.end = greater;
            SortGroup(part, worker);
            task.begin = greater;
        }
        std::ranges::sort(MembersOf(task), kIsLess);
        uint32_t seen = task.begin;
        for (Task group = task; group.begin < task.end; group.begin = group.end) {
            PrefetchGroups(task, group.begin, seen, m_readers[worker]);
            const Chunk chunk = ChunkOf(m_entries[group.begin]);
            group.end = group.begin + 1;
            while (group.end < task.end && ChunkOf(m_entries[group.end]) == chunk) ++group.end;
            SortGroup(group, worker);
        }
    }

    /// Small groups lie all over the text, which answers late: it is asked for what the next ones need.
    void PrefetchGroups(const Task& task, uint32_t at, uint32_t& seen, const Reader& reader) const {
        constexpr uint32_t kAhead = 32;
        const auto isInGroup = [&](uint32_t entry) {
            const Chunk chunk = ChunkOf(m_entries[entry]);
            return (entry > task.begin && ChunkOf(m_entries[entry - 1]) == chunk) ||
                   (entry + 1 < task.end && ChunkOf(m_entries[entry + 1]) == chunk);
        };
        for (seen = std::max(seen, at + 1); seen < std::min(at + kAhead, task.end); ++seen) {
            if (isInGroup(seen)) reader.PrefetchLine(m_entries[seen].index);
            const uint32_t nearer = seen - std::min(seen - task.begin, kAhead / 2);
            if (nearer > at && isInGroup(nearer)) reader.PrefetchText(m_entries[nearer].index);
        }
    }

    Chunk MiddleChunk(const Task& task) const {
        constexpr uint32_t kSample = 15;
        std::array<Chunk, kSample> sample;
        const uint64_t count = task.end - task.begin;
        for (uint32_t i = 0; i < kSample; ++i)
            sample[i] = ChunkOf(m_entries[task.begin + static_cast<uint32_t>(count * (2 * i + 1) / (2 * kSample))]);
        std::nth_element(sample.begin(), sample.begin() + kSample / 2, sample.end());
        return sample[kSample / 2];
    }

    /// Of a group with one chunk.
    void SortGroup(Task group, uint32_t worker) {
        const uint32_t count = group.end - group.begin;
        const Chunk chunk = ChunkOf(m_entries[group.begin]);
        const Reader& reader = m_readers[worker];
        bool isSorted = count == 1;
        if (!isSorted && chunk != kBeforePivot && chunk != kAfterPivot) {
            if (!reader.IsEnd(chunk)) {
                group.depth += Reader::kUnits;
            } else {
                group.depth = 0;
                isSorted = !reader.HasPhase(PhaseOf(group) + 1);
                group.kind |= kSecondPhase;
            }
        } else {
            group.depth = 0;
        }
        if (isSorted) {
            if (count > 1) std::ranges::sort(MembersOf(group), {}, &KeyedIndex::index);
            m_workers.Finish(count);
            return;
        }
        group.kind &= kSecondPhase;
        ++group.level;
        if (count < kInline)
            Do(group, worker);
        else
            m_workers.Add(group, worker);
    }

    std::span<KeyedIndex> m_entries;
    std::vector<Reader>& m_readers;
    Workers& m_workers;
};

/// Keys that are whole already.
struct NumberReader {
    static constexpr uint32_t kFew = 0;
    static constexpr bool kKeepsFew = false;
    static constexpr uint32_t kUnits = 1;
    static constexpr size_t kLongestCommon = 0;
    static void SetPhase(uint32_t) {}
    static bool HasPhase(uint32_t) { return false; }
    static void SetPivot(uint32_t, size_t) {}
    static size_t Common(uint32_t, size_t) { return 0; }
    static Chunk ChunkAt(uint32_t, size_t) { return {}; }
    static bool IsEnd(const Chunk&) { return true; }
    static int Compare(uint32_t, uint32_t, size_t) { return 0; }
    static void PrefetchLine(uint32_t) {}
    static void PrefetchText(uint32_t) {}
};

}  // namespace QVLineSorter
