#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/EngineRecordset.h"
#include "engine/SqlShape.h"
#include "engine/StatementTrace.h"
#include "frame/Recordset.h"
#include "vb/Text.h"
#include "vb/Value.h"
#include "vb/VbError.h"

namespace tovrand::engine {

[[noreturn]] void raise(std::int32_t number);
bool isUpdatableLock(int lock);

// The values an integer column holds.
struct IntegerRange {
  long long low = -2147483648LL;
  long long high = 2147483647LL;
};

// The value as the column will hold it, raising ADO's multiple-step error when it cannot be converted
// or does not fit, as ADO does when a field's value is assigned.
template <class Column>
Value convertForColumn(const Column& column, const Value& value, IntegerRange range) {
  using Kind = decltype(column.kind);
  if (value.isNull() || value.isEmpty()) return Value::null();
  try {
    switch (column.kind) {
      case Kind::Double:
        return Value(CDbl(value));
      case Kind::Long: {
        std::int32_t v = CLng(value);
        if (v < range.low || v > range.high) raise(vberr::kMultipleStep);
        return Value(v);
      }
      case Kind::Date:
        return Value(CDate(value));
      case Kind::Text:
      case Kind::Binary: {
        std::string text = CStr(value);
        if (column.size > 0 && characterCount(text) > column.size) raise(vberr::kMultipleStep);
        return Value(std::move(text));
      }
    }
  } catch (const VbError&) {
    raise(vberr::kMultipleStep);
  }
  return Value::null();
}

// What ADO's Recordset does alike on either engine: the open and closed states, BOF and EOF, field
// names, the pending AddNew or edit of the current row, the INSERT and UPDATE texts that store it, the
// row added through the recordset. `Engine` (derived from this) reads rows and sends texts:
//   void touchSession();                      the connection's live session, reopened if it was lost
//   auto& cache();                            the session's engine::SessionCache
//   void runNow();                            runs `source`, making its first row current (or closing)
//   void learnWholeTable();                   describes `source` without reading a row, and remembers
//   void ensureExecuted();                    runs `source` if it has not run yet
//   bool mayLearnAgain() const;               whether a whole table may be described once more
//   void fetch();                             the next row, or eof
//   Value rowValue(std::size_t) const;        a column of the row last fetched
//   void learnBaseNames();                    where the columns come from, for a text not a whole table
//   IntegerRange integerRange(const Column&); what an integer column holds
//   void runBound(sql, values);               one of the engine's own statements, with bound values
//   void releaseRows();                       the result and what reads it, before the connection goes
// `Connection` is the engine's connection (markLost, primaryKey), `Lost` its lost-session error.
template <class Engine, class Column, class Connection, class Lost>
class RecordsetCore : public RecordsetOperations {
 public:
  using Columns = std::vector<Column>;
  enum class Pending { None, New, Edit };

  // Recordset::Open: `recordset`'s properties taken from the arguments, the text opened on the
  // connection given or the recordset's own.
  void openOn(Recordset& recordset, const std::string& text,
              const std::shared_ptr<tovrand::Connection>& given, int cursorType, int lockType) override {
    if (open) raise(vberr::kObjectOpen);
    std::shared_ptr<tovrand::Connection> active = given ? given : recordset.ActiveConnection;
    auto engineConnection = std::dynamic_pointer_cast<Connection>(active);
    if (!engineConnection) {
      throw VbError(
          3709,
          "The connection cannot be used to perform this operation. It is either closed or invalid in this "
          "context.");
    }
    recordset.Source = text;
    recordset.ActiveConnection = active;
    if (cursorType != adOpenUnspecified) recordset.CursorType = cursorType;
    if (lockType != adLockUnspecified) recordset.LockType = lockType;

    reset();
    connection = std::move(engineConnection);
    updatable = isUpdatableLock(recordset.LockType);
    source = text;
    // Reported once the session is known to be there (reopened if it was lost): a held call that lost
    // its session sends nothing more.
    self().touchSession();
    traceStatement(source, StatementOrigin::Method);
    try {
      guarded([&] {
        if (updatable) wholeTable = wholeTableOf(source);
        if (wholeTable) {
          openWholeTable();
        } else {
          self().runNow();
        }
      });
    } catch (...) {
      reset();
      throw;
    }
  }

  bool isOpen() const override { return open; }

  bool atBOF() override {
    requireOpen();
    if (pending == Pending::New || onAddedRow) return false;
    self().ensureExecuted();
    return bof;
  }

  bool atEOF() override {
    requireOpen();
    if (pending == Pending::New || onAddedRow) return false;
    self().ensureExecuted();
    return eof;
  }

  Value fieldValue(std::string_view name) override {
    requireOpen();
    std::size_t index = column(name);
    if (pending != Pending::None) {
      for (auto& [assigned, value] : changes) {
        if (assigned == index) return value;
      }
      if (pending == Pending::New) return Value::null();
    }
    if (!hasCurrentRow()) raise(vberr::kNoCurrentRecord);
    return currentValue(index);
  }

  void assignField(std::string_view name, const Value& value) override {
    requireOpen();
    std::size_t index = column(name);
    if (!updatable) {
      if (!hasCurrentRow()) raise(vberr::kNoCurrentRecord);
      raise(vberr::kNotUpdatable);
    }
    if (pending == Pending::None && !hasCurrentRow()) raise(vberr::kNoCurrentRecord);
    const Column& target = writableColumn(index);
    Value converted = convertForColumn(target, value, self().integerRange(target));
    if (pending == Pending::None) startEdit(index);
    for (auto& [assigned, held] : changes) {
      if (assigned == index) {
        held = std::move(converted);
        return;
      }
    }
    changes.emplace_back(index, std::move(converted));
  }

  // A pending AddNew or edit is stored first, as ADO does.
  void moveNext() override {
    requireOpen();
    if (pending != Pending::None) update();
    if (onAddedRow) {
      // A row added through the recordset comes after all others.
      onAddedRow = false;
      executed = true;
      bof = false;
      eof = true;
      rowHeld = false;
      return;
    }
    self().ensureExecuted();
    if (eof || bof) raise(vberr::kNoCurrentRecord);
    self().fetch();
  }

  void addNew() override {
    requireOpen();
    if (!updatable) raise(vberr::kNotUpdatable);
    if (pending != Pending::None) update();
    pending = Pending::New;
    changes.clear();
  }

  void update() override {
    requireOpen();
    switch (pending) {
      case Pending::None:
        return;
      case Pending::New:
        storeNew();
        return;
      case Pending::Edit:
        storeEdit();
        return;
    }
  }

  // A pending AddNew or edit is discarded.
  void close() override {
    requireOpen();
    reset();
  }

  // Declared before the engine's statements and results (in the derived class): outlives them.
  std::shared_ptr<Connection> connection;
  std::string source;
  std::shared_ptr<const Columns> columns = std::make_shared<const Columns>();
  bool baseNamesKnown = false;
  // The table a keyset open selects whole; its columns are then known without asking the server.
  std::optional<std::string> wholeTable;
  bool open = false;
  bool updatable = false;
  bool executed = false;
  bool bof = true;
  bool eof = true;
  // The current row's values, held once an edit needs them (the engine's row moves on at the next
  // fetch).
  std::vector<Value> row;
  bool rowHeld = false;
  Pending pending = Pending::None;
  std::vector<std::pair<std::size_t, Value>> changes;  // in the order first assigned
  std::vector<std::size_t> editKey;                    // the key columns of the row being edited
  bool onAddedRow = false;
  std::vector<Value> addedRow;

  void requireOpen() const {
    if (!open) raise(vberr::kObjectClosed);
  }

  // Runs calls of this recordset's connection, noting a lost session so that the connection
  // reconnects before its next statement.
  template <class F>
  auto guarded(F&& f) -> decltype(f()) {
    try {
      return f();
    } catch (const Lost& e) {
      connection->markLost(e);
      throw;
    }
  }

  void useColumns(std::shared_ptr<const Columns> described, bool withBaseNames) {
    // The same description as the last open's (a result of the same shape) keeps its name hints.
    if (described != columns) {
      hints.clear();
      nextHint = 0;
    }
    columns = std::move(described);
    baseNamesKnown = withBaseNames;
  }

  // After a run: the first row current, BOF and EOF both when there is none.
  void beginRows() {
    executed = true;
    bof = false;
    self().fetch();
    if (eof) bof = true;
  }

  // A statement without a result leaves the recordset closed.
  void closeWithoutResult() { reset(); }

 private:
  Engine& self() { return static_cast<Engine&>(*this); }

  std::size_t column(std::string_view name) {
    std::size_t n = hints.size();
    std::size_t at = nextHint < n ? nextHint : 0;
    for (std::size_t k = 0; k < n; ++k) {
      if (hints[at].spelling == name) {
        nextHint = at + 1;
        return hints[at].index;
      }
      if (++at == n) at = 0;
    }
    const Columns& cs = *columns;
    for (std::size_t i = 0; i < cs.size(); ++i) {
      if (cs[i].name.size() == name.size() && equalsIgnoreCase(cs[i].name, name)) {
        if (hints.size() < 64) {
          hints.push_back({std::string(name), i});
          nextHint = hints.size();
        }
        return i;
      }
    }
    // A whole table's columns as this session learned them: the table may have gained the column
    // since. The server describes the text once more (no rows are read) before the name is refused.
    if (wholeTable && self().mayLearnAgain()) {
      guarded([&] { self().learnWholeTable(); });
      return column(name);
    }
    raise(vberr::kItemNotFound);
  }

  // A keyset open of a whole table: its columns from what this session learned of the table, or, the
  // first time, from the server's description of the text.
  void openWholeTable() {
    if (auto known = self().cache().tableColumns(*wholeTable)) {
      useColumns(std::move(known), true);
      open = true;
      return;
    }
    self().learnWholeTable();
    open = true;
  }

  bool hasCurrentRow() {
    if (pending == Pending::New || onAddedRow) return true;
    self().ensureExecuted();
    return !bof && !eof;
  }

  Value currentValue(std::size_t index) {
    if (onAddedRow) return addedRow[index];
    if (rowHeld) return row[index];
    return self().rowValue(index);
  }

  // The current row's values, held so that an edit can change them.
  std::vector<Value>& currentValues() {
    if (onAddedRow) return addedRow;
    if (!rowHeld) {
      row.clear();
      for (std::size_t i = 0; i < columns->size(); ++i) row.push_back(self().rowValue(i));
      rowHeld = true;
    }
    return row;
  }

  // One of the engine's own statements, reported to the trace as the engine's once it is certain to go
  // out: a held call that lost its session sends nothing.
  void runEngineStatement(const std::string& sql, const std::vector<Value>& values) {
    self().touchSession();
    traceStatement(sql, StatementOrigin::Engine);
    self().runBound(sql, values);
  }

  const Column& writableColumn(std::size_t index) {
    if (!baseNamesKnown) {
      // A text that is not a whole table learns where its columns come from when it is first edited.
      self().learnBaseNames();
      baseNamesKnown = true;
    }
    const Column& c = (*columns)[index];
    if (c.baseTable.empty() || c.baseColumn.empty()) {
      throw VbError(vberr::kProviderError,
                    "the field " + c.name + " is not a column of a table and cannot be assigned");
    }
    return c;
  }

  // The one table the assigned columns belong to.
  std::string targetTable() const {
    const Columns& cs = *columns;
    std::string table;
    for (auto& [index, value] : changes) {
      const Column& c = cs[index];
      if (table.empty()) {
        table = c.baseTable;
      } else if (!equalsIgnoreCase(table, c.baseTable)) {
        throw VbError(vberr::kProviderError, "the assigned fields belong to more than one table (" + table +
                                                 ", " + c.baseTable +
                                                 "); a recordset stores rows of one table");
      }
    }
    if (table.empty()) {
      for (const Column& c : cs) {
        if (!c.baseTable.empty()) return c.baseTable;
      }
      throw VbError(vberr::kProviderError, "the recordset has no column of a table to store a row into");
    }
    return table;
  }

  void startEdit(std::size_t assigned) {
    const Column& c = writableColumn(assigned);
    std::vector<std::string> key = connection->primaryKey(c.catalog, c.baseTable);
    if (key.empty()) {
      throw VbError(vberr::kProviderError,
                    "the table " + c.baseTable +
                        " has no primary key, so its rows cannot be edited through a recordset");
    }
    const Columns& cs = *columns;
    std::vector<std::size_t> indexes;
    for (const std::string& k : key) {
      std::size_t found = cs.size();
      for (std::size_t i = 0; i < cs.size() && found == cs.size(); ++i) {
        if (equalsIgnoreCase(cs[i].baseTable, c.baseTable) && equalsIgnoreCase(cs[i].baseColumn, k)) {
          found = i;
        }
      }
      if (found == cs.size()) {
        throw VbError(vberr::kProviderError, "the recordset does not hold the key column " + k +
                                                 " of the table " + c.baseTable +
                                                 ", so its rows cannot be edited");
      }
      if (currentValues()[found].isNull()) {
        throw VbError(vberr::kProviderError, "the key column " + k + " of the current row is not known");
      }
      indexes.push_back(found);
    }
    editKey = std::move(indexes);
    pending = Pending::Edit;
    changes.clear();
  }

  // INSERT INTO `table` (`assigned columns`) VALUES (?, ...), the columns in the order first assigned.
  void storeNew() {
    const Columns& cs = *columns;
    std::string table = targetTable();
    std::string names, marks;
    std::vector<Value> values;
    values.reserve(changes.size());
    for (auto& [index, value] : changes) {
      if (!names.empty()) {
        names += ", ";
        marks += ", ";
      }
      names += quoted(cs[index].baseColumn);
      marks += "?";
      values.push_back(value);
    }
    runEngineStatement("INSERT INTO " + quoted(table) + " (" + names + ") VALUES (" + marks + ")", values);
    addedRow.assign(cs.size(), Value::null());
    for (auto& [index, value] : changes) addedRow[index] = value;
    onAddedRow = true;
    pending = Pending::None;
    changes.clear();
  }

  // UPDATE `table` SET `column`=?, ... WHERE `key column`=? ... LIMIT 1 with the row's original key
  // values.
  void storeEdit() {
    if (changes.empty()) {
      pending = Pending::None;
      return;
    }
    const Columns& cs = *columns;
    std::string table = targetTable();
    std::string sets, where;
    std::vector<Value> values;
    values.reserve(changes.size() + editKey.size());
    for (auto& [index, value] : changes) {
      if (!sets.empty()) sets += ", ";
      sets += quoted(cs[index].baseColumn) + "=?";
      values.push_back(value);
    }
    std::vector<Value>& current = currentValues();
    for (std::size_t index : editKey) {
      if (!where.empty()) where += " AND ";
      where += quoted(cs[index].baseColumn) + "=?";
      values.push_back(current[index]);
    }
    runEngineStatement("UPDATE " + quoted(table) + " SET " + sets + " WHERE " + where + " LIMIT 1", values);
    for (auto& [index, value] : changes) current[index] = value;
    pending = Pending::None;
    changes.clear();
  }

  void reset() {
    pending = Pending::None;
    changes.clear();
    editKey.clear();
    self().releaseRows();
    connection.reset();
    wholeTable.reset();
    row.clear();
    addedRow.clear();
    open = updatable = executed = onAddedRow = rowHeld = false;
    bof = eof = true;
  }

  // Field names exactly as callers spelled them, each with the column it names. A method reads the same
  // names in the same order row after row, so the look-up starts at the spelling after the last one
  // found and most end at that first candidate.
  struct NameHint {
    std::string spelling;
    std::size_t index;
  };
  std::vector<NameHint> hints;
  std::size_t nextHint = 0;
};

}  // namespace tovrand::engine
