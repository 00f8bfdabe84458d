#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vb/Value.h"

namespace tovrand {

// The purchasing lists of the planning headers and lines (QueryByIDForPur, QueryByDeliverDate) end
// their condition with the range the caller picks in intCnt on one column: 1 from start to end, 2
// from start on, 3 up to end, 4 no bound. Each text closes the list's "F_ProdNo in (select ..."
// subquery. Only the bounds the choice names are written, so a bound it leaves out is never converted.
// nullopt for any other choice: the list then runs no query at all.
template <class Bound>
std::optional<std::string> purchasingRange(std::int16_t intCnt, std::string_view column, Bound start,
                                           Bound end) {
  const std::string col(column);
  switch (intCnt) {
    case 1:
      return " and " + col + " >= '" + CStr(start) + "' and " + col + " <= '" + CStr(end) + "')";
    case 2:
      return " and " + col + " >= '" + CStr(start) + "')";
    case 3:
      return " and " + col + " <= '" + CStr(end) + "')";
    case 4:
      return std::string(")");
    default:
      return std::nullopt;
  }
}

}  // namespace tovrand
