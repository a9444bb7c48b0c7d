#include "launcherapp/clipboard/proof/ClipSelftests.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

// That each of them can refute is shown by the controls that they hold themselves.
TEST(ClipSelftests, theyProveWhatTheyClaim) {
    for (const auto& result : {clipSacredSelftest(), clipFileSelftest()})
        EXPECT_EQ(result.verdict, SelftestResult::Verdict::proved) << result.report;
}

} // namespace
} // namespace tessarine
