#include "fileutils/sort_lines_settings.h"

#include <map>

#include <gtest/gtest.h>

namespace {

using QVLineSorter::SortRequest;

/// Settings in memory, by "section/key".
class Store final : public Quorvane::SDK::ISettings {
public:
    bool GetString(uint32_t, const wchar_t* section, const wchar_t* key, wchar_t* buffer, uint32_t capacity) override {
        const auto found = texts.find(Name(section, key));
        if (found == texts.end()) return false;
        buffer[found->second.copy(buffer, capacity - 1)] = 0;
        return true;
    }
    bool GetNumber(uint32_t, const wchar_t* section, const wchar_t* key, uint32_t* value) override {
        const auto found = numbers.find(Name(section, key));
        if (found == numbers.end()) return false;
        *value = found->second;
        return true;
    }
    bool SetString(uint32_t, const wchar_t* section, const wchar_t* key, const wchar_t* text) override {
        texts[Name(section, key)] = text;
        return true;
    }
    bool SetNumber(uint32_t, const wchar_t* section, const wchar_t* key, uint32_t value) override {
        numbers[Name(section, key)] = value;
        return true;
    }

    std::map<std::wstring, std::wstring> texts;
    std::map<std::wstring, uint32_t> numbers;

private:
    static std::wstring Name(const wchar_t* section, const wchar_t* key) { return std::wstring(section) + L'/' + key; }
};

TEST(SortLinesSettings, KeepTheLastRequestUnderTheKeysThatUsersHave) {
    Store store;
    SortRequest request;
    request.keepTop = 1;
    request.keepBottom = 2;
    request.lineOffset = 3;
    request.substringLength = 4;
    request.separator = L'\t';
    request.dateFormat = std::wstring(QVLineSorter::kLongestDateFormat, L'x');
    request.itemNumber = 5;
    request.options = 0x00161811;
    FileUtils::SaveSortLinesSettings(&store, request);
    EXPECT_EQ(store.numbers, (std::map<std::wstring, uint32_t>{{L"SortLines/KeepLinesTop", 1},
                                                               {L"SortLines/KeepLinesBottom", 2},
                                                               {L"SortLines/LineOffset", 3},
                                                               {L"SortLines/SubStringLen", 4},
                                                               {L"SortLines/LineItem", 5},
                                                               {L"SortLines/Options", 0x00161811}}));
    SortRequest loaded;
    FileUtils::LoadSortLinesSettings(&store, loaded);
    EXPECT_EQ(loaded.keepTop, request.keepTop);
    EXPECT_EQ(loaded.itemNumber, request.itemNumber);
    EXPECT_EQ(loaded.options, request.options);
    EXPECT_EQ(loaded.separator, request.separator);
    EXPECT_EQ(loaded.dateFormat, request.dateFormat);
}

TEST(SortLinesSettings, TakeWhatIsThereAndRefuseWhatCannotBe) {
    Store store;
    store.texts[L"SortLines/CharMatch"] = L"no character";
    store.texts[L"SortLines/MatchFilter"] = std::wstring(1000, L'x');
    SortRequest request;
    request.keepTop = 7;
    request.separator = L',';
    FileUtils::LoadSortLinesSettings(&store, request);
    EXPECT_EQ(request.keepTop, 7u);
    EXPECT_EQ(request.separator, 0);
    EXPECT_EQ(request.dateFormat.size(), QVLineSorter::kLongestDateFormat);
    FileUtils::LoadSortLinesSettings(nullptr, request);
    FileUtils::SaveSortLinesSettings(nullptr, request);
}

}  // namespace
