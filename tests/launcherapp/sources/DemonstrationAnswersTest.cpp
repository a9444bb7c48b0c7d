#include "launcherapp/sources/DemonstrationAnswers.h"

#include "LauncherCore/answers/Calc.h"
#include "LauncherCore/text/Zone.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

TEST(DemonstrationAnswers, areCalculatedRight) {
    Calc::Context context;
    for (const auto& calculation : DemonstrationAnswers::calculations()) {
        SCOPED_TRACE(calculation.expression);
        if (calculation.kind != CalcEntry::Kind::math)
            continue;
        const auto outcome = Calc::evaluate(calculation.expression, context);
        ASSERT_TRUE(outcome);
        EXPECT_DOUBLE_EQ(outcome->value, calculation.value);
        if (calculation.assignedName)
            context.variables[*calculation.assignedName] = calculation.value;
    }
    EXPECT_TRUE(Zone::named(DemonstrationAnswers::zone));
}

} // namespace
} // namespace tessarine
