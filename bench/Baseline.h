#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "odbc/ConnectionSettings.h"

namespace tovrand::bench {

// How a baseline reads one result column: the C type a program that knows the table would ask for.
enum class ColumnType { Double, Integer, Text };

// One bound parameter of a prepared INSERT or UPDATE, already in the form the client library takes
// (conversions happen before the timed region: the baselines measure the calls, nothing else).
struct Param {
  enum class Kind { Double, Integer, Text, Timestamp };
  Kind kind = Kind::Double;
  double number = 0;
  int integer = 0;
  std::string text;     // UTF-8, for Connector/C
  std::u16string wide;  // UTF-16, for ODBC
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
};

// A statement as a baseline sends it. The text is the one the method sent (captured from the
// statement trace); the form is how the method's open form has to reach the server at the least.
struct Step {
  enum class Form {
    Query,        // read form: run, read every column of every row
    PrepareOnly,  // updatable open that is only appended to: prepared for its columns, never run
    Execute,      // statement without a result set
    Write,        // the engine's INSERT/UPDATE: prepared, parameters bound, run
  };
  Form form = Form::Query;
  std::string sql;
  std::u16string wide;                    // the same text for the wide ODBC functions
  std::vector<ColumnType> columns;        // Query: one per result column
  std::vector<std::string> paramColumns;  // Write: the column each '?' stands for, in order
  std::vector<Param> params;              // Write: the values, refreshed per call where they change
};

// The floor a method's statements can be sent at through one client library. Every failure is
// fatal: it prints the server's message and ends the program (a benchmark of a failing call would
// measure the error path).
class Baseline {
 public:
  virtual ~Baseline() = default;
  virtual const char* name() const = 0;
  // Sends one step; returns the rows read (0 for anything but a query).
  virtual std::size_t run(const Step& step) = 0;
  // Sends every step in order; returns the rows read in all.
  std::size_t runAll(const std::vector<Step>& steps) {
    std::size_t rows = 0;
    for (const Step& s : steps) rows += run(s);
    return rows;
  }
};

// Bare ODBC calls (unixODBC, MariaDB Connector/ODBC) on a connection of their own.
std::unique_ptr<Baseline> odbcBaseline(const ConnectionSettings& settings);
// Bare MariaDB Connector/C calls on a connection of their own.
std::unique_ptr<Baseline> connectorCBaseline(const ConnectionSettings& settings);

// The result columns of a query, as the ODBC driver describes them (prepared, not run).
std::vector<ColumnType> describeQuery(const ConnectionSettings& settings, const std::string& sql);

[[noreturn]] void fatal(const std::string& what);

}  // namespace tovrand::bench
