#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "engine/ConnectionSettings.h"
#include "vb/Value.h"

namespace tovrand::bench {

// How a baseline reads one result column: the C type a program that knows the table asks for, and
// for text the room its longest value needs.
struct ColumnType {
  enum class Kind { Double, BigInt, Integer, Text } kind = Kind::Text;
  std::size_t bytes = 0;
  std::string name;  // the column's label, for the engine's replay
};

// One statement as a baseline sends it: the text the component sent (taken from what the engine
// delivered), in the cheapest form that gives the method what it needs.
struct Step {
  enum class Form {
    Query,     // run; every column of every row read
    Execute,   // run; no result
    Write,     // an INSERT or UPDATE with bound values, prepared once per connection and text
    Buffered,  // run, and its whole result buffered by the driver, never read: what a keyset cursor
               // over a whole table costs a client that opens one only to add a row
  };
  Form form = Form::Query;
  std::string sql;
  std::u16string wide;              // the same text for the wide ODBC functions
  std::vector<ColumnType> columns;  // Query: one per result column
  std::vector<Value> values;        // Write: the bound values, in order
};

// The statements of one call of a member, in the order they reached the server.
using Plan = std::vector<Step>;

// The floor a member's statements can be sent at through one client library. Every failure is fatal:
// it prints the server's message and ends the program (a benchmark of a failing call would measure the
// error path).
class Baseline {
 public:
  virtual ~Baseline() = default;
  virtual const char* name() const = 0;
  // Sends one step; returns the rows read (0 for anything but a query).
  virtual std::size_t run(const Step& step) = 0;
  // Sends every step in order; returns the rows read in all.
  std::size_t runAll(const Plan& steps) {
    std::size_t rows = 0;
    for (const Step& s : steps) rows += run(s);
    return rows;
  }
};

// Bare ODBC calls (unixODBC, MariaDB Connector/ODBC) on a connection of their own, reading results the
// way the engine found cheapest (bound columns, text as the session's UTF-8, blocks of rows).
std::unique_ptr<Baseline> odbcBaseline(const ConnectionSettings& settings);
// Bare MariaDB Connector/C calls on a connection of their own: the text protocol for the method's texts,
// prepared statements where the engine stores a row.
std::unique_ptr<Baseline> connectorCBaseline(const ConnectionSettings& settings);
// The engine alone: each text opened on a recordset of the engine (every field of every row read by
// name, as a method reads it, but no entity filled), the engine's INSERT and UPDATE run as the engine
// runs them. What the component costs beyond this is the members' own work.
std::unique_ptr<Baseline> engineBaseline(const ConnectionSettings& settings);

// The result columns of a query, as the ODBC driver describes them (prepared, not run).
std::vector<ColumnType> describeQuery(const ConnectionSettings& settings, const std::string& sql);

[[noreturn]] void fatal(const std::string& what);

}  // namespace tovrand::bench
