// Sorts that are large enough for threads and for groups in groups, and what ends one.
#include <algorithm>
#include <atomic>
#include <optional>
#include <random>

#include "fuzz/plain_order.h"
#include "linesorter/group_sort.h"
#include "linesorter/sample_lines.h"
#include "linesorter/sort_file.h"
#include "support/limited_memory.h"
#include "support/temporary_folder.h"

namespace {

using namespace QVFuzz;

/// Lines that begin alike in groups, lines that differ in case or hyphens only, and a few odd ones.
Lines<char> GroupedLines(size_t count) {
    QVTest::Random random(7);
    Lines<char> lines = {"", "!", std::string(70000, 'x'), std::string(70000, 'x') + "y"};
    while (lines.size() < count) {
        std::string line = "2024-03-0" + std::to_string(random.Below(3)) + " server " + std::string(40, 'w');
        line += random.Below(2) == 0 ? " Worker-" : " worker";
        line += std::to_string(random.Below(900)) + (random.Below(20) == 0 ? " caf\xE9" : " cafe");
        lines.push_back(random.Below(50) == 0 ? line.substr(0, random.Below(60)) : line);
    }
    return lines;
}

TEST(LargeSort, IsTheSameForAnyNumberOfThreadsAndWhenSortedAgain) {
    const Lines<char> lines = GroupedLines(20000);
    for (const uint32_t options :
         {Option::AsText | 0, Option::AsText | Option::IgnoreCase, kLanguage, kLanguage | Option::NaturalNumbers}) {
        SortRequest request;
        request.options = options;
        const auto sorted = [&](const Lines<char>& text, uint32_t threads) {
            auto data = Load(text);
            Sort(data, request, {}, threads);
            return Texts(data);
        };
        const Lines<char> alone = sorted(lines, 0);
        EXPECT_TRUE(alone == sorted(lines, 3)) << std::hex << options;
        EXPECT_TRUE(alone == sorted(alone, 2)) << std::hex << options;
        const bool isByLanguage = (options & Option::LanguageOrder) != 0;
        EXPECT_TRUE(!isByLanguage || alone == SortedPlainly(lines, request, KeyRule<char>(), {}))
            << std::hex << options;
    }
}

TEST(LargeSort, GivesTheSameOrderWithoutMemoryForEntries) {
    Lines<char> lines = GroupedLines(3000);
    std::erase_if(lines, [](const std::string& line) { return line.size() > 1000; });  // comparing may convert one
    for (size_t i = 0; i < lines.size(); i += 10) lines[i].insert(0, std::to_string(i * 7919 % 1000) + ".1.20 ");
    for (const uint32_t order : kOrders) {
        SortRequest request;
        request.options = order;
        Lines<char> sorted[2];
        for (const bool isShort : {false, true}) {
            auto data = Load(lines);
            QVUtils::Progress progress;
            Workers workers(progress, 2);
            {
                const QVTest::LimitedMemory limit(isShort ? lines.size() * sizeof(KeyedIndex) - 1 : SIZE_MAX);
                SortLines<char>(data, request, "%d.%m.%y", workers);
            }
            sorted[isShort] = Texts(data);
        }
        EXPECT_TRUE(sorted[0] == sorted[1]) << std::hex << order;
    }
}

TEST(LargeSort, OfWordsComesOutTheSameFromEachShuffle) {
    Lines<char> words;  // many begin others
    QVTest::Random random(9);
    while (words.size() < 999) {
        std::string word =
            random.Below(2) == 0 || words.empty() ? "" : words[random.Below(static_cast<uint32_t>(words.size()))];
        word += std::string(1 + random.Below(2), static_cast<char>('a' + random.Below(20)));
        if (std::ranges::find(words, word) == words.end()) words.push_back(word);
    }
    SortRequest request;
    request.options = Option::AsText;
    std::minstd_rand shuffle(1);
    for (int round = 0; round < 20; ++round) {
        std::ranges::shuffle(words, shuffle);
        auto data = Load(words);
        Sort(data, request, {}, round % 2 * 3);
        const Lines<char> sorted = Texts(data);
        LineCompare_OrdinalA compare(false);
        std::string largest;
        for (const std::string& word : sorted) {
            const auto size = [](const std::string& text) { return static_cast<uint32_t>(text.size()); };
            EXPECT_FALSE(compare.Less(word.data(), size(word), largest.data(), size(largest))) << word;
            if (compare.Less(largest.data(), size(largest), word.data(), size(word))) largest = word;
        }
        auto again = Load(sorted);
        Sort(again, request, {});
        EXPECT_EQ(Texts(again), sorted);
    }
}

// A new thread cannot begin without memory of its own, so only this one's allocations are counted.
const DWORD kThread = GetCurrentThreadId();
int g_untilFailure = -1;  // below 0: none fails

void* MallocThatFailsOnce(size_t size) {
    const bool fails = GetCurrentThreadId() == kThread && g_untilFailure >= 0 && g_untilFailure-- == 0;
    return fails ? nullptr : std::calloc(1, size);
}

TEST(Workers, AreThoseThatThereIsMemoryFor) {
    const QVTest::ReplacedImport memory(GetModuleHandleW(nullptr), "malloc",
                                        reinterpret_cast<void*>(MallocThatFailsOnce));
    for (int before = 0; before < 12; ++before) {
        QVUtils::Progress progress;
        std::optional<Workers> workers;
        g_untilFailure = before;
        try {
            workers.emplace(progress, 3);
        } catch (const std::bad_alloc&) {
        }
        g_untilFailure = -1;
        std::atomic<size_t> done = 0;
        if (workers) workers->ForEach(10000, [&](uint32_t begin, uint32_t end, uint32_t) { done += end - begin; });
        EXPECT_EQ(done, workers ? 10000u : 0u);
        EXPECT_TRUE(workers || before < 2);  // its lists
    }
}

TEST(SortFile, CanBeCancelledAtAnyMomentAndTouchesNothing) {
    std::string text;
    for (const std::string& line : GroupedLines(40000)) text += line + "\n";
    const QVTest::TemporaryFolder folder;
    const std::wstring path = folder.Write(L"a.txt", text);
    SortRequest request;
    request.options = kLanguage | Option::DeleteBackup;
    uint32_t last = 0;
    for (uint32_t calls = 0;; ++calls) {
        uint32_t told = 0;
        const auto tell = [&](uint32_t percent) {
            EXPECT_TRUE(percent <= 100 && (told == 0 || percent >= last));
            last = percent;
            return told++ < calls;
        };
        const uint32_t error = SortFile(path, path, request, tell).errorCode;
        if (error == 0) break;
        EXPECT_EQ(error, 1223u);
        EXPECT_TRUE(folder.ReadAll() == (QVTest::Contents{{L"a.txt", text}}));
    }
    EXPECT_GT(last, 0u);
}

}  // namespace
