#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace tovrand {

// What a statement of the caller's own (a fixture, a tool's query) gave back, in forms every engine can
// produce: null, a 64-bit integer, a double, or text. Dates and timestamps are text
// "YYYY-MM-DD HH:MM:SS", times the server's text.
using OwnCell = std::variant<std::monostate, std::int64_t, double, std::string>;

struct OwnStatementResult {
  // Whether the statement gave a result set; columns and rows are empty when it did not.
  bool hasResult = false;
  std::vector<std::string> columns;  // the labels
  std::vector<std::vector<OwnCell>> rows;
};

}  // namespace tovrand
