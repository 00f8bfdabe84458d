#pragma once

#include <cmath>

#include "vb/VbError.h"

namespace tovrand {

// Double arithmetic as the run time compiles it, with its floating-point checks: an operation whose
// result overflowed or is not a number (an infinite or NaN operand carried through included) raises
// 6 "Overflow". Pass the result of one arithmetic step. Sums, differences and products of finite
// numbers stay finite unless one operation on the way is out of range, and nothing finite comes
// back out of an infinite or NaN operand, so the step's result is out of range exactly when one of
// its operations was.
inline double checkedDouble(double result) {
  if (!std::isfinite(result)) throw VbError::of(vberr::kOverflow);
  return result;
}

}  // namespace tovrand
