#include "tests/faults/TableState.h"

#include <algorithm>
#include <sstream>

#include "vb/Value.h"

namespace tovrand::test {

namespace {

std::vector<std::string> splitList(const std::string& list) {
  std::vector<std::string> out;
  std::istringstream in(list);
  std::string item;
  while (std::getline(in, item, ',')) out.push_back(item);
  return out;
}

std::string quotedName(const std::string& name) {
  return "`" + name + "`";
}

}  // namespace

TableState::TableState(OdbcConnection& connection) : connection_(connection) {
  // A whole table's rows come back as one text.
  connection_.execute("SET SESSION group_concat_max_len = 1073741824");
  std::optional<Value> names = connection_.scalar(
      "select group_concat(table_name order by table_name separator ',') from information_schema.tables "
      "where table_schema = database() and table_type = 'BASE TABLE'",
      true);
  tables_ = names && !names->isNull() ? splitList(CStr(*names)) : std::vector<std::string>{};
  for (const std::string& table : tables_) {
    std::optional<Value> columns = connection_.scalar(
        "select group_concat(concat('quote(`', column_name, '`)') order by ordinal_position separator ',') "
        "from information_schema.columns where table_schema = database() and table_name = '" +
            table + "'",
        true);
    std::string row = "concat_ws(',', " + CStr(*columns) + ")";
    queries_[table] =
        "select group_concat(" + row + " order by " + row + " separator '\\n') from " + quotedName(table);
  }
}

std::string TableState::read(const std::string& table) {
  std::optional<Value> rows = connection_.scalar(queries_.at(table), true);
  return rows && !rows->isNull() ? CStr(*rows) : std::string();
}

TableContents TableState::take() {
  TableContents contents;
  for (const std::string& table : tables_) contents[table] = read(table);
  return contents;
}

void TableState::keep(const std::string& copy) {
  copy_ = copy;
  connection_.execute("DROP DATABASE IF EXISTS " + quotedName(copy_));
  connection_.execute("CREATE DATABASE " + quotedName(copy_) + " CHARACTER SET utf8mb4");
  for (const std::string& table : tables_) {
    std::string kept = quotedName(copy_) + "." + quotedName(table);
    connection_.execute("CREATE TABLE " + kept + " LIKE " + quotedName(table));
    connection_.execute("INSERT INTO " + kept + " SELECT * FROM " + quotedName(table));
  }
  kept_ = take();
}

void TableState::restore(const std::vector<std::string>& always) {
  for (const std::string& table : tables_) {
    bool named = std::find(always.begin(), always.end(), table) != always.end();
    if (!named && read(table) == kept_.at(table)) continue;
    // TRUNCATE starts the AUTO_INCREMENT counter again; the copied rows then set it where it was.
    connection_.execute("TRUNCATE TABLE " + quotedName(table));
    connection_.execute("INSERT INTO " + quotedName(table) + " SELECT * FROM " + quotedName(copy_) + "." +
                        quotedName(table));
  }
}

void TableState::drop() {
  if (!copy_.empty()) connection_.execute("DROP DATABASE IF EXISTS " + quotedName(copy_));
  copy_.clear();
}

std::vector<std::string> changedTables(const TableContents& before, const TableContents& after) {
  std::vector<std::string> out;
  for (const auto& [table, rows] : after) {
    auto it = before.find(table);
    if (it == before.end() || it->second != rows) out.push_back(table);
  }
  return out;
}

}  // namespace tovrand::test
