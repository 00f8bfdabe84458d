#pragma once

#include <map>
#include <string>
#include <vector>

#include "odbc/OdbcConnection.h"

namespace tovrand::test {

// Every row of every table of one database, as text, so that two moments of the database can be
// compared exactly and a difference names its table.
using TableContents = std::map<std::string, std::string>;

// Reads the contents of the tables of the connection's database, and puts a saved copy of them back.
class TableState {
 public:
  // Reads the database's tables and their columns; `connection` stays in use for every later read.
  explicit TableState(OdbcConnection& connection);

  // The rows of every table, each row as its quoted column values, the rows in text order.
  TableContents take();

  // Keeps a copy of every table in the database `copy` (created here, dropped by drop()), so that
  // restore() can bring the tables back to this moment.
  void keep(const std::string& copy);
  // Brings back the tables that differ from the kept copy, and those named in `always` (whose
  // AUTO_INCREMENT counters must start again where the copy's did).
  void restore(const std::vector<std::string>& always = {});
  void drop();

  const std::vector<std::string>& tables() const { return tables_; }

 private:
  std::string read(const std::string& table);

  OdbcConnection& connection_;
  std::vector<std::string> tables_;
  std::map<std::string, std::string> queries_;  // per table: the query that reads its rows as text
  std::string copy_;
  TableContents kept_;
};

// The tables whose contents differ between two moments.
std::vector<std::string> changedTables(const TableContents& before, const TableContents& after);

}  // namespace tovrand::test
