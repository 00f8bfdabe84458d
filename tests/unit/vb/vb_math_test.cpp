#include <gtest/gtest.h>

#include <limits>

#include "tests/support/ExpectVbError.h"
#include "vb/VbMath.h"

namespace tovrand {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kMax = std::numeric_limits<double>::max();

TEST(CheckedDouble, AFiniteResultPassesUnchanged) {
  EXPECT_EQ(checkedDouble(120.0 - 30.0 - 30.0 - 5.0), 55.0);
  EXPECT_EQ(checkedDouble(-kMax), -kMax);
  EXPECT_EQ(checkedDouble(0.1 + 0.2), 0.30000000000000004);
}

TEST(CheckedDouble, AnOverflowingOperationRaisesOverflow) {
  EXPECT_VB_ERROR(checkedDouble(kMax + kMax), vberr::kOverflow, "Overflow");
  EXPECT_VB_ERROR(checkedDouble(-kMax - kMax), vberr::kOverflow, "Overflow");
  EXPECT_VB_ERROR(checkedDouble(kMax * 2.0 - kMax), vberr::kOverflow, "Overflow");
}

TEST(CheckedDouble, AnInfiniteOrNaNOperandCarriedThroughRaisesOverflow) {
  EXPECT_VB_ERROR(checkedDouble(kInf - 1.0), vberr::kOverflow, "Overflow");
  EXPECT_VB_ERROR(checkedDouble(1.0 - kInf), vberr::kOverflow, "Overflow");
  EXPECT_VB_ERROR(checkedDouble(kInf - kInf), vberr::kOverflow, "Overflow");
  EXPECT_VB_ERROR(checkedDouble(kInf * 0.0), vberr::kOverflow, "Overflow");
  EXPECT_VB_ERROR(checkedDouble(kNaN + 1.0), vberr::kOverflow, "Overflow");
}

}  // namespace
}  // namespace tovrand
