#include "cli/Engine.h"

#include <utility>

#include "cli/JsonWriter.h"

namespace tovrand::cli {

namespace {

Json cellToJson(const OwnCell& cell) {
  if (const auto* integer = std::get_if<std::int64_t>(&cell)) return Json(*integer);
  if (const auto* number = std::get_if<double>(&cell)) return numberToJson(*number);
  if (const auto* text = std::get_if<std::string>(&cell)) return Json(*text);
  return Json(nullptr);
}

void writeCell(std::string& out, const OwnCell& cell) {
  if (const auto* integer = std::get_if<std::int64_t>(&cell)) {
    out += std::to_string(*integer);
  } else if (const auto* number = std::get_if<double>(&cell)) {
    writeNumber(out, *number);
  } else if (const auto* text = std::get_if<std::string>(&cell)) {
    writeString(out, *text);
  } else {
    out += "null";
  }
}

}  // namespace

OwnStatementResult runFixtureStatementRaw(DbConnection& connection, const std::string& sql) {
  return connection.Connection()->runOwnStatement(sql);
}

Json fixtureAnswer(const OwnStatementResult& result) {
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

void writeFixtureAnswer(std::string& out, const OwnStatementResult& result) {
  out += "{\"ok\":true";
  if (result.hasResult) {
    out += ",\"columns\":[";
    for (std::size_t i = 0; i < result.columns.size(); ++i) {
      if (i > 0) out += ',';
      writeString(out, result.columns[i]);
    }
    out += "],\"rows\":[";
    for (std::size_t r = 0; r < result.rows.size(); ++r) {
      if (r > 0) out += ',';
      out += '[';
      for (std::size_t c = 0; c < result.rows[r].size(); ++c) {
        if (c > 0) out += ',';
        writeCell(out, result.rows[r][c]);
      }
      out += ']';
    }
    out += ']';
  }
  out += '}';
}

Json runFixtureStatement(DbConnection& connection, const std::string& sql) {
  return fixtureAnswer(runFixtureStatementRaw(connection, sql));
}

}  // namespace tovrand::cli
