#include "odbc/OdbcRecordset.h"

#include <cstring>
#include <vector>

#include "frame/Text.h"
#include "frame/VbError.h"
#include "odbc/OdbcApi.h"
#include "odbc/OdbcConnection.h"
#include "odbc/StatementTrace.h"

namespace tovrand {

using odbc::check;
using odbc::ColumnInfo;
using odbc::ColumnKind;
using odbc::Handle;
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

// A value bound to a statement parameter; its storage stays put until the statement has run.
struct Parameter {
  Value value;
  double number = 0;
  SQLINTEGER integer = 0;
  SQL_TIMESTAMP_STRUCT timestamp{};
  std::u16string text;
  SQLLEN indicator = 0;
};

void bindParameters(SQLHSTMT stmt, std::vector<Parameter>& parameters, std::string_view secret) {
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    Parameter& p = parameters[i];
    auto number = static_cast<SQLUSMALLINT>(i + 1);
    SQLRETURN rc = SQL_SUCCESS;
    switch (p.value.type()) {
      case Value::Type::Empty:
      case Value::Type::Null:
        p.indicator = SQL_NULL_DATA;
        rc = SQLBindParameter(stmt, number, SQL_PARAM_INPUT, SQL_C_WCHAR, SQL_WVARCHAR, 1, 0, p.text.data(),
                              0, &p.indicator);
        break;
      case Value::Type::Double:
        p.number = p.value.dbl();
        rc = SQLBindParameter(stmt, number, SQL_PARAM_INPUT, SQL_C_DOUBLE, SQL_DOUBLE, 15, 0, &p.number, 0,
                              &p.indicator);
        break;
      case Value::Type::Integer:
      case Value::Type::Long:
      case Value::Type::Boolean:
        p.integer = p.value.type() == Value::Type::Integer ? p.value.integer()
                    : p.value.type() == Value::Type::Long  ? p.value.longValue()
                                                           : (p.value.boolean() ? -1 : 0);
        rc = SQLBindParameter(stmt, number, SQL_PARAM_INPUT, SQL_C_SLONG, SQL_INTEGER, 10, 0, &p.integer, 0,
                              &p.indicator);
        break;
      case Value::Type::Date: {
        DateParts parts = dateParts(p.value.date());
        p.timestamp.year = static_cast<SQLSMALLINT>(parts.year);
        p.timestamp.month = static_cast<SQLUSMALLINT>(parts.month);
        p.timestamp.day = static_cast<SQLUSMALLINT>(parts.day);
        p.timestamp.hour = static_cast<SQLUSMALLINT>(parts.hour);
        p.timestamp.minute = static_cast<SQLUSMALLINT>(parts.minute);
        p.timestamp.second = static_cast<SQLUSMALLINT>(parts.second);
        rc = SQLBindParameter(stmt, number, SQL_PARAM_INPUT, SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, 19, 0,
                              &p.timestamp, 0, &p.indicator);
        break;
      }
      case Value::Type::String: {
        p.text = toUtf16(p.value.str());
        p.indicator = static_cast<SQLLEN>(p.text.size() * sizeof(char16_t));
        SQLULEN size = p.text.empty() ? 1 : p.text.size();
        rc = SQLBindParameter(stmt, number, SQL_PARAM_INPUT, SQL_C_WCHAR, SQL_WVARCHAR, size, 0,
                              p.text.data(), p.indicator, &p.indicator);
        break;
      }
    }
    check(rc, SQL_HANDLE_STMT, stmt, "binding a parameter", secret);
  }
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
  std::vector<ColumnInfo> columns;
  bool open = false;
  bool updatable = false;
  bool executed = false;
  bool bof = true;
  bool eof = true;
  std::vector<Value> row;
  Pending pending = Pending::None;
  std::vector<std::pair<std::size_t, Value>> changes;  // in the order first assigned
  std::vector<std::size_t> editKey;                    // the key columns of the row being edited
  bool onAddedRow = false;
  std::vector<Value> addedRow;

  const std::string& secret() const { return connection->secret(); }
  SQLHSTMT handle() const { return stmt.get(); }

  void requireOpen() const {
    if (!open) raise(vberr::kObjectClosed);
  }

  std::size_t column(std::string_view name) const {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (equalsIgnoreCase(columns[i].name, name)) return i;
    }
    raise(vberr::kItemNotFound);
  }

  void fetch() {
    guarded([&] { fetchRow(); });
  }

  void fetchRow() {
    SQLRETURN rc = SQLFetch(handle());
    if (rc == SQL_NO_DATA) {
      eof = true;
      row.clear();
      return;
    }
    check(rc, SQL_HANDLE_STMT, handle(), "fetching a row", secret());
    row.clear();
    row.reserve(columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
      row.push_back(odbc::readColumn(handle(), static_cast<SQLUSMALLINT>(i + 1), columns[i], secret()));
    }
    eof = false;
  }

  void fetchFirst() {
    executed = true;
    bof = false;
    fetch();
    if (eof) bof = true;
  }

  void ensureExecuted() {
    if (executed) return;
    guarded([&] {
      check(SQLExecute(handle()), SQL_HANDLE_STMT, handle(), "running the query", secret());
      fetchFirst();
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

  std::vector<Value>& currentValues() { return onAddedRow ? addedRow : row; }

  Handle newStatement() {
    SQLHDBC dbc = static_cast<SQLHDBC>(connection->nativeHandle());
    SQLHANDLE h = SQL_NULL_HANDLE;
    guarded([&] {
      check(SQLAllocHandle(SQL_HANDLE_STMT, dbc, &h), SQL_HANDLE_DBC, dbc, "allocating a statement",
            secret());
    });
    return Handle(SQL_HANDLE_STMT, h);
  }

  // Prepares, binds and runs one of the engine's own statements.
  void runEngineStatement(const std::string& sql, std::vector<Parameter>& parameters) {
    Handle s = newStatement();
    // Reported once it is certain to go out: a held call that lost its session sends nothing.
    traceStatement(sql, StatementOrigin::Engine);
    WideText text(sql);
    guarded([&] {
      check(SQLPrepareW(s.get(), text.get(), text.length()), SQL_HANDLE_STMT, s.get(),
            "preparing a statement", secret());
      bindParameters(s.get(), parameters, secret());
      check(SQLExecute(s.get()), SQL_HANDLE_STMT, s.get(), "storing the row", secret());
    });
  }

  const ColumnInfo& writableColumn(std::size_t index) const {
    const ColumnInfo& c = columns[index];
    if (c.baseTable.empty() || c.baseColumn.empty()) {
      throw VbError(vberr::kProviderError,
                    "the field " + c.name + " is not a column of a table and cannot be assigned");
    }
    return c;
  }

  // The one table the assigned columns belong to.
  std::string targetTable(std::string& catalog) const {
    std::string table;
    for (auto& [index, value] : changes) {
      const ColumnInfo& c = columns[index];
      if (table.empty()) {
        table = c.baseTable;
        catalog = c.catalog;
      } else if (!equalsIgnoreCase(table, c.baseTable)) {
        throw VbError(vberr::kProviderError, "the assigned fields belong to more than one table (" + table +
                                                 ", " + c.baseTable +
                                                 "); a recordset stores rows of one table");
      }
    }
    if (table.empty()) {
      for (const ColumnInfo& c : columns) {
        if (!c.baseTable.empty()) {
          catalog = c.catalog;
          return c.baseTable;
        }
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
    std::vector<std::size_t> indexes;
    for (const std::string& k : key) {
      std::size_t found = columns.size();
      for (std::size_t i = 0; i < columns.size() && found == columns.size(); ++i) {
        if (equalsIgnoreCase(columns[i].baseTable, c.baseTable) &&
            equalsIgnoreCase(columns[i].baseColumn, k)) {
          found = i;
        }
      }
      if (found == columns.size()) {
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
    std::string catalog;
    std::string table = targetTable(catalog);
    std::string names, marks;
    std::vector<Parameter> parameters;
    parameters.reserve(changes.size());
    for (auto& [index, value] : changes) {
      if (!names.empty()) {
        names += ", ";
        marks += ", ";
      }
      names += quoted(columns[index].baseColumn);
      marks += "?";
      parameters.emplace_back().value = value;
    }
    runEngineStatement("INSERT INTO " + quoted(table) + " (" + names + ") VALUES (" + marks + ")",
                       parameters);
    addedRow.assign(columns.size(), Value::null());
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
    std::string catalog;
    std::string table = targetTable(catalog);
    std::string sets, where;
    std::vector<Parameter> parameters;
    parameters.reserve(changes.size() + editKey.size());
    for (auto& [index, value] : changes) {
      if (!sets.empty()) sets += ", ";
      sets += quoted(columns[index].baseColumn) + "=?";
      parameters.emplace_back().value = value;
    }
    std::vector<Value>& current = currentValues();
    for (std::size_t index : editKey) {
      if (!where.empty()) where += " AND ";
      where += quoted(columns[index].baseColumn) + "=?";
      parameters.emplace_back().value = current[index];
    }
    runEngineStatement("UPDATE " + quoted(table) + " SET " + sets + " WHERE " + where + " LIMIT 1",
                       parameters);
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
    stmt.reset();
    connection.reset();
    columns.clear();
    row.clear();
    addedRow.clear();
    open = updatable = executed = onAddedRow = false;
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
  m.stmt = m.newStatement();
  SQLHSTMT h = m.handle();
  WideText text(source);
  traceStatement(source, StatementOrigin::Method);
  try {
    m.guarded([&] {
      if (m.updatable) {
        check(SQLPrepareW(h, text.get(), text.length()), SQL_HANDLE_STMT, h, "preparing the query",
              m.secret());
        m.columns = odbc::describeColumns(h, m.secret(), odbc::BaseNames::Read);
        if (m.columns.empty()) {
          check(SQLExecute(h), SQL_HANDLE_STMT, h, "running the statement", m.secret());
          m.close();
          return;
        }
      } else {
        check(SQLExecDirectW(h, text.get(), text.length()), SQL_HANDLE_STMT, h, "running the query",
              m.secret());
        m.columns = odbc::describeColumns(h, m.secret(), odbc::BaseNames::Skip);
        if (m.columns.empty()) {
          m.close();
          return;
        }
        m.fetchFirst();
      }
      m.open = true;
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
  return m.currentValues()[index];
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
    m.row.clear();
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
