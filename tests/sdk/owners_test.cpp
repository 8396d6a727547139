#include "sdk/owners.h"

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

}  // namespace

TEST(PathOf, GetsTextsOfAnyLengthFromAHostThatGivesThemWholeOrNotAtAll) {
    for (const size_t length : {0, 1, 1'286, 2'047, 4'094, 4'095, 4'096, 32'767}) {
        StrictItem item(length);
        EXPECT_EQ(PathOf(item).size(), length);
        EXPECT_EQ(std::exchange(item.firstCapacity, 0), 2048u) << "what hosts count on";
        EXPECT_EQ(NameOf(item, kLargeCapacity).size(), length);
        EXPECT_EQ(item.firstCapacity, 4096u);
    }
}
