#include "sdk/owners.h"

#include <stdexcept>

#include <gtest/gtest.h>

using namespace Quorvane::SDK;

namespace {

/// An item of a host that gives nothing of a text that does not fit.
class StrictItem final : public IFileItem {
public:
    explicit StrictItem(size_t length) : m_text(length, L'p') {}
    uint32_t GetName(wchar_t* buffer, uint32_t capacity) override { return Give(buffer, capacity); }
    uint32_t GetLocation(wchar_t*, uint32_t) override { return 0; }
    uint32_t GetPath(wchar_t* buffer, uint32_t capacity) override { return Give(buffer, capacity); }
    uint32_t GetAttributes() override { return 0; }
    bool GetStoredProperty(uint16_t, uint16_t, StoredPropertyValue*) override { return false; }
    int32_t IsRemote() override { return 0; }
    void Release() override {}
    uint32_t QueryProperty(uint16_t, uint32_t, StoredPropertyValue*) override { return 0; }
    void RefreshProperty(uint32_t) override {}

    uint32_t firstCapacity = 0;

private:
    uint32_t Give(wchar_t* buffer, uint32_t capacity) {
        if (firstCapacity == 0) firstCapacity = capacity;
        if (m_text.size() < capacity) m_text.copy(buffer, m_text.size());
        if (m_text.size() < capacity) buffer[m_text.size()] = 0;
        return static_cast<uint32_t>(m_text.size());
    }

    std::wstring m_text;
};

/// Counts more items than it has.
class BoastfulList final : public IFileList {
public:
    explicit BoastfulList(std::vector<IFileItem*> items) : m_items(std::move(items)) {}
    bool AddItem(IFileItem*) override { return false; }
    uint32_t GetCount() override { return 0xFFFFFFFF; }
    IFileItem* GetItem(uint32_t index) override {
        if (index >= m_items.size()) throw std::out_of_range("asked on after the missing item");
        return m_items[index];
    }
    void Release() override {}

private:
    std::vector<IFileItem*> m_items;
};

}  // namespace

TEST(PathOf, GetsTextsOfAnyLengthFromAHostThatGivesThemWholeOrNotAtAll) {
    for (const size_t length : {0, 1, 1'286, 2'047, 4'094, 4'095, 4'096, 32'767}) {
        StrictItem item(length);
        EXPECT_EQ(PathOf(item).size(), length);
        EXPECT_EQ(NameOf(item).size(), length);
        EXPECT_GE(item.firstCapacity, 4096u) << "less than other callers have";
    }
}

TEST(ItemsOf, EndsAtTheFirstItemThatIsMissing) {
    StrictItem first(5);
    StrictItem second(0);
    BoastfulList list({&first, &second, nullptr});
    EXPECT_EQ(ItemsOf(list), (std::vector<IFileItem*>{&first, &second}));
    EXPECT_EQ(PathsOf(list), std::vector<std::wstring>{L"ppppp"});
}
