#include "fileutils/sort_lines/sort_lines_settings.h"

#include "support/services_of_host.h"

namespace {

using QVLineSorter::SortRequest;

TEST(SortLinesSettings, KeepTheLastRequestUnderTheKeysThatUsersHave) {
    QVTest::ServicesOfHost host(QV_HOST_PROGRAM);
    auto* const store = host.Services().GetSettings();
    const std::wstring longest(QVLineSorter::kLongestDateFormat, L'x');
    const SortRequest request = {1, 2, 3, 4, L'\t', longest, 0x00161811, 5, L""};
    FileUtils::SaveSortLinesSettings(store, request);
    for (const auto& [key, number] : {std::pair(L"KeepLinesTop", 1u),
                                      {L"KeepLinesBottom", 2u},
                                      {L"LineOffset", 3u},
                                      {L"SubStringLen", 4u},
                                      {L"LineItem", 5u},
                                      {L"Options", 0x00161811u}}) {
        uint32_t stored = 0;
        EXPECT_TRUE(store->GetNumber(1, L"SortLines", key, &stored));
        EXPECT_EQ(stored, number) << key;
    }
    SortRequest loaded;
    FileUtils::LoadSortLinesSettings(store, loaded);
    EXPECT_EQ(loaded, request);
}

TEST(SortLinesSettings, TakeWhatIsThereAndRefuseWhatCannotBe) {
    QVTest::ServicesOfHost host(QV_HOST_PROGRAM);
    auto* const store = host.Services().GetSettings();
    store->SetString(1, L"SortLines", L"CharMatch", L"no character");
    store->SetString(1, L"SortLines", L"MatchFilter", std::wstring(1000, L'x').c_str());
    SortRequest request;
    request.keepTop = 7;
    request.separator = L',';
    FileUtils::LoadSortLinesSettings(store, request);
    EXPECT_EQ(request.keepTop, 7u);
    EXPECT_EQ(request.separator, 0);
    EXPECT_EQ(request.dateFormat.size(), QVLineSorter::kLongestDateFormat);
}

}  // namespace
