#include "odbc/OdbcRecordset.h"

#include <cstring>
#include <vector>

#include "engine/SqlShape.h"
#include "engine/StatementTrace.h"
#include "odbc/BoundStatement.h"
#include "odbc/OdbcApi.h"
#include "odbc/OdbcConnection.h"
#include "odbc/ResultRows.h"
#include "odbc/SessionCache.h"
#include "vb/Text.h"
#include "vb/VbError.h"

namespace tovrand {

using odbc::check;
using odbc::ColumnInfo;
using odbc::ColumnKind;
using odbc::Columns;
using odbc::Handle;
using odbc::TextForm;
using odbc::WideText;

namespace {

[[noreturn]] void raise(std::int32_t number) {
  throw VbError::of(number);
}

bool isUpdatableLock(int lock) {
  return lock == adLockPessimistic || lock == adLockOptimistic || lock == adLockBatchOptimistic;
}

std::string quoted(std::string_view identifier) {
  std::string out = "`";
  for (char c : identifier) {
    out += c;
    if (c == '`') out += '`';
  }
  return out + "`";
}

// The value as the column will hold it, raising ADO's multiple-step error when it cannot be converted
// or does not fit, as ADO does when a field's value is assigned.
Value convertForColumn(const ColumnInfo& column, const Value& value) {
  if (value.isNull() || value.isEmpty()) return Value::null();
  try {
    switch (column.kind) {
      case ColumnKind::Double:
        return Value(CDbl(value));
      case ColumnKind::Long: {
        std::int32_t v = CLng(value);
        long long low = -2147483648LL, high = 2147483647LL;
        if (column.sqlType == SQL_SMALLINT) {
          low = column.isUnsigned ? 0 : -32768;
          high = column.isUnsigned ? 65535 : 32767;
        } else if (column.sqlType == SQL_TINYINT) {
          low = column.isUnsigned ? 0 : -128;
          high = column.isUnsigned ? 255 : 127;
        } else if (column.sqlType == SQL_BIT) {
          low = 0;
          high = 1;
        }
        if (v < low || v > high) raise(vberr::kMultipleStep);
        return Value(v);
      }
      case ColumnKind::Date:
        return Value(CDate(value));
      case ColumnKind::Text:
      case ColumnKind::Binary: {
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

}  // namespace

struct OdbcRecordset::Impl {
  enum class Pending { None, New, Edit };

  std::shared_ptr<OdbcConnection> connection;  // declared before stmt: outlives it
  Handle stmt;
  std::string source;
  std::shared_ptr<const Columns> columns = std::make_shared<const Columns>();
  bool baseNamesKnown = false;
  // The table a keyset open selects whole; its columns are then known without asking the server.
  std::optional<std::string> wholeTable;
  odbc::ResultRows rows;
  bool open = false;
  bool updatable = false;
  bool executed = false;
  bool bof = true;
  bool eof = true;
  // The current row's values, held once an edit needs them (the rows' buffers move on at the next fetch).
  std::vector<Value> row;
  bool rowHeld = false;
  Pending pending = Pending::None;
  std::vector<std::pair<std::size_t, Value>> changes;  // in the order first assigned
  std::vector<std::size_t> editKey;                    // the key columns of the row being edited
  bool onAddedRow = false;
  std::vector<Value> addedRow;
  // Field names exactly as callers spelled them, each with the column it names. A method reads the same
  // names in the same order row after row, so the look-up starts at the spelling after the last one
  // found and most end at that first candidate.
  struct NameHint {
    std::string spelling;
    std::size_t index;
  };
  std::vector<NameHint> hints;
  std::size_t nextHint = 0;
  const std::string& secret() const { return connection->secret(); }
  SQLHSTMT handle() const { return stmt.get(); }
  TextForm textForm() const { return connection->textAsUtf8() ? TextForm::Utf8 : TextForm::Wide; }
  odbc::SessionCache& cache() { return connection->sessionCache(); }

  void requireOpen() const {
    if (!open) raise(vberr::kObjectClosed);
  }

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
    if (wholeTable && !stmt) {
      guarded([&] { learnWholeTable(); });
      return column(name);
    }
    raise(vberr::kItemNotFound);
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

  void fetch() {
    guarded([&] {
      rowHeld = false;
      eof = !rows.fetch();
    });
  }

  void startRows() {
    rows.start(handle(), columns, textForm(), secret());
    executed = true;
    bof = false;
    fetch();
    if (eof) bof = true;
  }

  // The columns of the executed statement's result: taken from an earlier result of the same shape when
  // the driver describes the same types (asking for types costs little, labels much), else described.
  std::shared_ptr<const Columns> resultColumns(SQLSMALLINT count) {
    std::string shape = engine::resultShapeOf(source);
    if (auto known = cache().resultColumns(shape);
        known && odbc::describesAs(handle(), count, *known, secret())) {
      return known;
    }
    auto described =
        std::make_shared<const Columns>(odbc::describeColumns(handle(), secret(), odbc::BaseNames::Skip));
    cache().rememberResultColumns(shape, described);
    return described;
  }

  // Runs the text now and makes its first row current; a statement without a result leaves the
  // recordset closed.
  void runNow() {
    stmt = newStatement();
    WideText text(source);
    check(SQLExecDirectW(handle(), text.get(), text.length()), SQL_HANDLE_STMT, handle(), "running the query",
          secret());
    SQLSMALLINT count = odbc::resultColumnCount(handle(), secret());
    if (count == 0) {
      reportDelivery(source, Delivery::NoResult);
      close();
      return;
    }
    useColumns(resultColumns(count), false);
    reportDelivery(source, Delivery::Rows);
    startRows();
    open = true;
  }

  // A keyset open of a whole table: its columns from what this session learned of the table, or, the
  // first time, from the server's preparation of the text (which then runs it if rows are wanted).
  void openWholeTable() {
    if (auto known = cache().tableColumns(*wholeTable)) {
      useColumns(std::move(known), true);
      open = true;
      return;
    }
    learnWholeTable();
    open = true;
  }

  // Prepares the text (the server describes its columns and reads no row) and remembers the columns
  // for the table; the prepared statement runs it if rows are wanted.
  void learnWholeTable() {
    stmt = newStatement();
    WideText text(source);
    check(SQLPrepareW(handle(), text.get(), text.length()), SQL_HANDLE_STMT, handle(), "preparing the query",
          secret());
    auto described =
        std::make_shared<Columns>(odbc::describeColumns(handle(), secret(), odbc::BaseNames::Read));
    cache().rememberTableColumns(*wholeTable, described);
    useColumns(std::move(described), true);
  }

  void ensureExecuted() {
    if (executed) return;
    guarded([&] {
      if (stmt) {
        check(SQLExecute(handle()), SQL_HANDLE_STMT, handle(), "running the query", secret());
      } else {
        stmt = newStatement();
        WideText text(source);
        check(SQLExecDirectW(handle(), text.get(), text.length()), SQL_HANDLE_STMT, handle(),
              "running the query", secret());
        // The table may have changed since its columns were learned: a result of another shape is
        // described anew, and learned again.
        if (!odbc::describesAs(handle(), odbc::resultColumnCount(handle(), secret()), *columns, secret())) {
          auto described =
              std::make_shared<Columns>(odbc::describeColumns(handle(), secret(), odbc::BaseNames::Read));
          cache().rememberTableColumns(*wholeTable, described);
          useColumns(std::move(described), true);
        }
      }
      reportDelivery(source, Delivery::Rows);
      startRows();
    });
  }

  // Runs driver calls of this recordset's connection, noting a lost session so that the connection
  // reconnects before its next statement.
  template <class F>
  auto guarded(F&& f) -> decltype(f()) {
    try {
      return f();
    } catch (const odbc::ConnectionLost& e) {
      connection->markLost(e);
      throw;
    }
  }

  bool hasCurrentRow() {
    if (pending == Pending::New || onAddedRow) return true;
    ensureExecuted();
    return !bof && !eof;
  }

  Value currentValue(std::size_t index) const {
    if (onAddedRow) return addedRow[index];
    if (rowHeld) return row[index];
    return rows.value(index);
  }

  // The current row's values, held so that an edit can change them.
  std::vector<Value>& currentValues() {
    if (onAddedRow) return addedRow;
    if (!rowHeld) {
      row.clear();
      for (std::size_t i = 0; i < columns->size(); ++i) row.push_back(rows.value(i));
      rowHeld = true;
    }
    return row;
  }

  Handle newStatement() {
    SQLHDBC dbc = static_cast<SQLHDBC>(connection->nativeHandle());
    SQLHANDLE h = SQL_NULL_HANDLE;
    guarded([&] {
      check(SQLAllocHandle(SQL_HANDLE_STMT, dbc, &h), SQL_HANDLE_DBC, dbc, "allocating a statement",
            secret());
    });
    return Handle(SQL_HANDLE_STMT, h);
  }

  // One of the engine's own statements, reported to the trace as the engine's once it is certain to go
  // out: a held call that lost its session sends nothing.
  void runEngineStatement(const std::string& sql, const std::vector<Value>& values) {
    connection->nativeHandle();
    traceStatement(sql, StatementOrigin::Engine);
    runBoundStatement(*connection, sql, values);
  }

  const ColumnInfo& writableColumn(std::size_t index) {
    if (!baseNamesKnown) {
      // A text that is not a whole table learns where its columns come from when it is first edited.
      auto described = std::make_shared<Columns>(*columns);
      guarded([&] { odbc::describeBaseNames(handle(), *described); });
      columns = std::move(described);
      baseNamesKnown = true;
    }
    const ColumnInfo& c = (*columns)[index];
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
      const ColumnInfo& c = cs[index];
      if (table.empty()) {
        table = c.baseTable;
      } else if (!equalsIgnoreCase(table, c.baseTable)) {
        throw VbError(vberr::kProviderError, "the assigned fields belong to more than one table (" + table +
                                                 ", " + c.baseTable +
                                                 "); a recordset stores rows of one table");
      }
    }
    if (table.empty()) {
      for (const ColumnInfo& c : cs) {
        if (!c.baseTable.empty()) return c.baseTable;
      }
      throw VbError(vberr::kProviderError, "the recordset has no column of a table to store a row into");
    }
    return table;
  }

  void startEdit(std::size_t assigned) {
    const ColumnInfo& c = writableColumn(assigned);
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

  void discard() {
    pending = Pending::None;
    changes.clear();
    editKey.clear();
  }

  void close() {
    discard();
    rows.reset();
    stmt.reset();
    connection.reset();
    wholeTable.reset();
    row.clear();
    addedRow.clear();
    open = updatable = executed = onAddedRow = rowHeld = false;
    bof = eof = true;
  }
};

OdbcRecordset::OdbcRecordset() : impl_(std::make_unique<Impl>()) {}
OdbcRecordset::~OdbcRecordset() = default;

void OdbcRecordset::Open(const std::string& source, const std::shared_ptr<Connection>& connection,
                         int cursorType, int lockType, int /*options*/) {
  Impl& m = *impl_;
  if (m.open) raise(vberr::kObjectOpen);
  std::shared_ptr<Connection> active = connection ? connection : ActiveConnection;
  auto odbcConnection = std::dynamic_pointer_cast<OdbcConnection>(active);
  if (!odbcConnection) {
    throw VbError(
        3709,
        "The connection cannot be used to perform this operation. It is either closed or invalid in this "
        "context.");
  }
  Source = source;
  ActiveConnection = active;
  if (cursorType != adOpenUnspecified) CursorType = cursorType;
  if (lockType != adLockUnspecified) LockType = lockType;

  m.close();
  m.connection = odbcConnection;
  m.updatable = isUpdatableLock(LockType);
  m.source = source;
  // Reported once the session is known to be there (reopened if it was lost): a held call that lost
  // its session sends nothing more.
  m.connection->nativeHandle();
  traceStatement(source, StatementOrigin::Method);
  try {
    m.guarded([&] {
      if (m.updatable) m.wholeTable = engine::wholeTableOf(source);
      if (m.wholeTable) {
        m.openWholeTable();
      } else {
        m.runNow();
      }
    });
  } catch (...) {
    m.close();
    throw;
  }
}

bool OdbcRecordset::IsOpen() const {
  return impl_->open;
}

bool OdbcRecordset::BOF() {
  Impl& m = *impl_;
  m.requireOpen();
  if (m.pending == Impl::Pending::New || m.onAddedRow) return false;
  m.ensureExecuted();
  return m.bof;
}

bool OdbcRecordset::EOF_() {
  Impl& m = *impl_;
  m.requireOpen();
  if (m.pending == Impl::Pending::New || m.onAddedRow) return false;
  m.ensureExecuted();
  return m.eof;
}

Value OdbcRecordset::getField(std::string_view name) {
  Impl& m = *impl_;
  m.requireOpen();
  std::size_t index = m.column(name);
  if (m.pending != Impl::Pending::None) {
    for (auto& [assigned, value] : m.changes) {
      if (assigned == index) return value;
    }
    if (m.pending == Impl::Pending::New) return Value::null();
  }
  if (!m.hasCurrentRow()) raise(vberr::kNoCurrentRecord);
  return m.currentValue(index);
}

void OdbcRecordset::setField(std::string_view name, const Value& value) {
  Impl& m = *impl_;
  m.requireOpen();
  std::size_t index = m.column(name);
  if (!m.updatable) {
    if (!m.hasCurrentRow()) raise(vberr::kNoCurrentRecord);
    raise(vberr::kNotUpdatable);
  }
  if (m.pending == Impl::Pending::None && !m.hasCurrentRow()) raise(vberr::kNoCurrentRecord);
  const ColumnInfo& column = m.writableColumn(index);
  Value converted = convertForColumn(column, value);
  if (m.pending == Impl::Pending::None) m.startEdit(index);
  for (auto& [assigned, held] : m.changes) {
    if (assigned == index) {
      held = std::move(converted);
      return;
    }
  }
  m.changes.emplace_back(index, std::move(converted));
}

void OdbcRecordset::MoveNext() {
  Impl& m = *impl_;
  m.requireOpen();
  if (m.pending != Impl::Pending::None) Update();
  if (m.onAddedRow) {
    // A row added through the recordset comes after all others.
    m.onAddedRow = false;
    m.executed = true;
    m.bof = false;
    m.eof = true;
    m.rowHeld = false;
    return;
  }
  m.ensureExecuted();
  if (m.eof || m.bof) raise(vberr::kNoCurrentRecord);
  m.fetch();
}

void OdbcRecordset::AddNew() {
  Impl& m = *impl_;
  m.requireOpen();
  if (!m.updatable) raise(vberr::kNotUpdatable);
  if (m.pending != Impl::Pending::None) Update();
  m.pending = Impl::Pending::New;
  m.changes.clear();
}

void OdbcRecordset::Update() {
  Impl& m = *impl_;
  m.requireOpen();
  switch (m.pending) {
    case Impl::Pending::None:
      return;
    case Impl::Pending::New:
      m.storeNew();
      return;
    case Impl::Pending::Edit:
      m.storeEdit();
      return;
  }
}

void OdbcRecordset::Close() {
  Impl& m = *impl_;
  m.requireOpen();
  m.close();
}

}  // namespace tovrand
