#include "cli/Engine.h"

#include <utility>

#include "frame/OwnStatement.h"

namespace tovrand::cli {

namespace {

Json cellToJson(const OwnCell& cell) {
  if (const auto* integer = std::get_if<std::int64_t>(&cell)) return Json(*integer);
  if (const auto* number = std::get_if<double>(&cell)) return numberToJson(*number);
  if (const auto* text = std::get_if<std::string>(&cell)) return Json(*text);
  return Json(nullptr);
}

}  // namespace

Json runFixtureStatement(DbConnection& connection, const std::string& sql) {
  const OwnStatementResult result = connection.Connection()->runOwnStatement(sql);
  Json answer{{"ok", true}};
  if (!result.hasResult) return answer;
  Json columns = Json::array();
  for (const std::string& label : result.columns) columns.push_back(label);
  Json rows = Json::array();
  for (const std::vector<OwnCell>& row : result.rows) {
    Json cells = Json::array();
    for (const OwnCell& cell : row) cells.push_back(cellToJson(cell));
    rows.push_back(std::move(cells));
  }
  answer["columns"] = std::move(columns);
  answer["rows"] = std::move(rows);
  return answer;
}

}  // namespace tovrand::cli
