#include "host/app/run_progress.h"

#include <gtest/gtest.h>

#include "support/dialog_driver.h"

namespace {

using namespace QVTest;

TEST(ProgressWindow, ShowsTheFileInWorkAndTakesTheWishToStop) {
    constexpr int kTextId = 100;
    WhileDriving(
        [](DialogDriver& driver) {
            const DrivenDialog window = driver.WaitFor(L"Sorting");
            EXPECT_TRUE(QVTest::WaitUntil([&] { return window.Text(kTextId) == L"1/2 C:\\a.txt"; }));
            EXPECT_EQ(window.Text(IDCANCEL), L"Abbrechen");
            window.PressLater(IDCANCEL);
            window.WaitUntilClosed();
        },
        [] {
            QVHost::ProgressWindow window({L"Sorting", L"Abbrechen"});
            EXPECT_FALSE(window.IsCancelled());
            EXPECT_TRUE(QVTest::WaitUntil([&] {
                window.Show(L"1/2 C:\\a.txt");
                return window.IsCancelled();
            }));
        });
}

}  // namespace
