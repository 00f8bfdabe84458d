#include "mariadb/MariaDbRecordset.h"

#include <vector>

#include "engine/SqlShape.h"
#include "engine/StatementTrace.h"
#include "mariadb/MariaDbApi.h"
#include "mariadb/MariaDbConnection.h"
#include "mariadb/SessionCache.h"
#include "vb/Text.h"
#include "vb/VbError.h"

namespace tovrand {

using mariadb::ColumnInfo;
using mariadb::ColumnKind;
using mariadb::Columns;
using mariadb::IntegerWidth;
using mariadb::Result;
using mariadb::SessionLost;
using mariadb::Statement;

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
        if (column.width == IntegerWidth::Small) {
          low = column.isUnsigned ? 0 : -32768;
          high = column.isUnsigned ? 65535 : 32767;
        } else if (column.width == IntegerWidth::Tiny) {
          low = column.isUnsigned ? 0 : -128;
          high = column.isUnsigned ? 255 : 127;
        } else if (column.width == IntegerWidth::Bit) {
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

// A value bound to a statement parameter; its storage stays put until the statement has run.
struct Parameter {
  double number = 0;
  std::int32_t integer = 0;
  MYSQL_TIME timestamp{};
  unsigned long length = 0;
};

void bindParameters(MYSQL_STMT* stmt, const std::vector<Value>& values, std::vector<Parameter>& parameters,
                    std::vector<MYSQL_BIND>& binds, std::string_view secret) {
  parameters.assign(values.size(), Parameter{});
  binds.assign(values.size(), MYSQL_BIND{});
  for (std::size_t i = 0; i < values.size(); ++i) {
    const Value& v = values[i];
    Parameter& p = parameters[i];
    MYSQL_BIND& b = binds[i];
    switch (v.type()) {
      case Value::Type::Empty:
      case Value::Type::Null:
        b.buffer_type = MYSQL_TYPE_NULL;
        break;
      case Value::Type::Double:
        p.number = v.dbl();
        b.buffer_type = MYSQL_TYPE_DOUBLE;
        b.buffer = &p.number;
        break;
      case Value::Type::Integer:
      case Value::Type::Long:
      case Value::Type::Boolean:
        p.integer = v.type() == Value::Type::Integer ? v.integer()
                    : v.type() == Value::Type::Long  ? v.longValue()
                                                     : (v.boolean() ? -1 : 0);
        b.buffer_type = MYSQL_TYPE_LONG;
        b.buffer = &p.integer;
        break;
      case Value::Type::Date: {
        DateParts parts = dateParts(v.date());
        p.timestamp.year = static_cast<unsigned int>(parts.year);
        p.timestamp.month = static_cast<unsigned int>(parts.month);
        p.timestamp.day = static_cast<unsigned int>(parts.day);
        p.timestamp.hour = static_cast<unsigned int>(parts.hour);
        p.timestamp.minute = static_cast<unsigned int>(parts.minute);
        p.timestamp.second = static_cast<unsigned int>(parts.second);
        p.timestamp.time_type = MYSQL_TIMESTAMP_DATETIME;
        b.buffer_type = MYSQL_TYPE_DATETIME;
        b.buffer = &p.timestamp;
        break;
      }
      case Value::Type::String: {
        const std::string& text = v.str();
        p.length = text.size();
        b.buffer_type = MYSQL_TYPE_STRING;
        b.buffer = const_cast<char*>(text.data());
        b.buffer_length = text.size();
        b.length = &p.length;
        break;
      }
    }
  }
  if (mysql_stmt_bind_param(stmt, binds.data()) != 0) {
    mariadb::raiseStatementError(stmt, "binding a parameter", secret);
  }
}

// Runs one of the engine's own statements (an INSERT or UPDATE with a `?` for each value) with the
// values bound, on a statement the session prepared for the same text before when there is one. A lost
// session is noted on the connection. Nothing is traced here: the caller reports the statement.
void runBoundStatement(MariaDbConnection& connection, const std::string& sql,
                       const std::vector<Value>& values) {
  const std::string& secret = connection.secret();
  MYSQL* session = connection.session();
  mariadb::SessionCache& cache = connection.sessionCache();
  mariadb::LentStatement lent = cache.takeStatement(sql);
  std::vector<Parameter> parameters;
  std::vector<MYSQL_BIND> binds;
  try {
    engine::Guard exchange(connection.exchangeMutex());
    if (!lent.statement) {
      lent.statement = Statement(mysql_stmt_init(session));
      if (!lent.statement) mariadb::raiseSessionError(session, "preparing a statement", secret);
      if (mysql_stmt_prepare(lent.statement.get(), sql.data(), sql.size()) != 0) {
        mariadb::raiseStatementError(lent.statement.get(), "preparing a statement", secret);
      }
    }
    MYSQL_STMT* stmt = lent.statement.get();
    bindParameters(stmt, values, parameters, binds, secret);
    if (mysql_stmt_execute(stmt) != 0) mariadb::raiseStatementError(stmt, "storing the row", secret);
  } catch (const SessionLost& e) {
    connection.markLost(e);
    throw;
  }
  reportDelivery(sql, Delivery::BoundWrite, values);
  cache.giveBack(sql, std::move(lent));
}

}  // namespace

struct MariaDbRecordset::Impl {
  enum class Pending { None, New, Edit };

  std::shared_ptr<MariaDbConnection> connection;  // declared before result: outlives it
  Result result;
  std::string source;
  std::shared_ptr<const Columns> columns = std::make_shared<const Columns>();
  // The table a keyset open selects whole; its columns are then known without asking the server.
  std::optional<std::string> wholeTable;
  bool learnedThisOpen = false;  // the whole table's columns were asked of the server for this open
  MYSQL_ROW current = nullptr;
  unsigned long* lengths = nullptr;
  bool open = false;
  bool updatable = false;
  bool executed = false;
  bool bof = true;
  bool eof = true;
  // The current row's values, held once an edit needs them.
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
  mariadb::SessionCache& cache() { return connection->sessionCache(); }

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
    if (wholeTable && !executed && !learnedThisOpen) {
      guarded([&] { learnWholeTable(); });
      return column(name);
    }
    raise(vberr::kItemNotFound);
  }

  void useColumns(std::shared_ptr<const Columns> described) {
    // The same description as the last open's (a result of the same shape) keeps its name hints.
    if (described != columns) {
      hints.clear();
      nextHint = 0;
    }
    columns = std::move(described);
  }

  void fetch() {
    rowHeld = false;
    current = mysql_fetch_row(result.get());
    lengths = current != nullptr ? mysql_fetch_lengths(result.get()) : nullptr;
    eof = current == nullptr;
  }

  void startRows() {
    executed = true;
    bof = false;
    fetch();
    if (eof) bof = true;
  }

  // Sends the text as one query and stores its rows; false when it has no result.
  bool query() {
    MYSQL* m = connection->session();
    engine::Guard exchange(connection->exchangeMutex());
    if (mysql_real_query(m, source.data(), source.size()) != 0)
      mariadb::raiseSessionError(m, "running the query", secret());
    if (mysql_field_count(m) == 0) return false;
    result.reset(mysql_store_result(m));
    if (!result) mariadb::raiseSessionError(m, "reading the result", secret());
    return true;
  }

  // The columns of the stored result: taken from an earlier result of the same shape when the server
  // describes the same types, else described.
  std::shared_ptr<const Columns> resultColumns() {
    const MYSQL_FIELD* fields = mysql_fetch_fields(result.get());
    unsigned int count = mysql_num_fields(result.get());
    std::string shape = engine::resultShapeOf(source);
    if (auto known = cache().resultColumns(shape); known && mariadb::describesAs(fields, count, *known)) {
      return known;
    }
    auto described = std::make_shared<const Columns>(mariadb::describeFields(fields, count));
    cache().rememberResultColumns(shape, described);
    return described;
  }

  // Runs the text now and makes its first row current; a statement without a result leaves the
  // recordset closed.
  void runNow() {
    if (!query()) {
      reportDelivery(source, Delivery::NoResult);
      close();
      return;
    }
    useColumns(resultColumns());
    reportDelivery(source, Delivery::Rows);
    startRows();
    open = true;
  }

  // A keyset open of a whole table: its columns from what this session learned of the table, or, the
  // first time, from the server's preparation of the text.
  void openWholeTable() {
    if (auto known = cache().tableColumns(*wholeTable)) {
      useColumns(std::move(known));
      open = true;
      return;
    }
    learnWholeTable();
    open = true;
  }

  // Prepares the text (the server describes its columns and reads no row) and remembers the columns
  // for the table.
  void learnWholeTable() {
    learnedThisOpen = true;
    MYSQL* m = connection->session();
    engine::Guard exchange(connection->exchangeMutex());
    Statement stmt(mysql_stmt_init(m));
    if (!stmt) mariadb::raiseSessionError(m, "preparing the query", secret());
    if (mysql_stmt_prepare(stmt.get(), source.data(), source.size()) != 0) {
      mariadb::raiseStatementError(stmt.get(), "preparing the query", secret());
    }
    Result metadata(mysql_stmt_result_metadata(stmt.get()));
    if (!metadata) mariadb::raiseStatementError(stmt.get(), "describing the query", secret());
    auto described = std::make_shared<const Columns>(
        mariadb::describeFields(mysql_fetch_fields(metadata.get()), mysql_num_fields(metadata.get())));
    cache().rememberTableColumns(*wholeTable, described);
    useColumns(std::move(described));
  }

  void ensureExecuted() {
    if (executed) return;
    guarded([&] {
      query();
      // The table may have changed since its columns were learned: a result of another shape is
      // described anew, and learned again.
      const MYSQL_FIELD* fields = mysql_fetch_fields(result.get());
      unsigned int count = mysql_num_fields(result.get());
      if (!mariadb::describesAs(fields, count, *columns)) {
        auto described = std::make_shared<const Columns>(mariadb::describeFields(fields, count));
        cache().rememberTableColumns(*wholeTable, described);
        useColumns(std::move(described));
      }
      reportDelivery(source, Delivery::Rows);
      startRows();
    });
  }

  // Runs client calls of this recordset's connection, noting a lost session so that the connection
  // reconnects before its next statement.
  template <class F>
  auto guarded(F&& f) -> decltype(f()) {
    try {
      return f();
    } catch (const SessionLost& e) {
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
    return mariadb::valueOf((*columns)[index], current[index], lengths[index]);
  }

  // The current row's values, held so that an edit can change them.
  std::vector<Value>& currentValues() {
    if (onAddedRow) return addedRow;
    if (!rowHeld) {
      row.clear();
      for (std::size_t i = 0; i < columns->size(); ++i) {
        row.push_back(mariadb::valueOf((*columns)[i], current[i], lengths[i]));
      }
      rowHeld = true;
    }
    return row;
  }

  // One of the engine's own statements, reported to the trace as the engine's once it is certain to go
  // out: a held call that lost its session sends nothing.
  void runEngineStatement(const std::string& sql, const std::vector<Value>& values) {
    connection->session();
    traceStatement(sql, StatementOrigin::Engine);
    runBoundStatement(*connection, sql, values);
  }

  const ColumnInfo& writableColumn(std::size_t index) const {
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
    std::vector<Value>& held = currentValues();
    for (std::size_t index : editKey) {
      if (!where.empty()) where += " AND ";
      where += quoted(cs[index].baseColumn) + "=?";
      values.push_back(held[index]);
    }
    runEngineStatement("UPDATE " + quoted(table) + " SET " + sets + " WHERE " + where + " LIMIT 1", values);
    for (auto& [index, value] : changes) held[index] = value;
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
    current = nullptr;
    lengths = nullptr;
    result.reset();
    connection.reset();
    wholeTable.reset();
    row.clear();
    addedRow.clear();
    open = updatable = executed = onAddedRow = rowHeld = learnedThisOpen = false;
    bof = eof = true;
  }
};

MariaDbRecordset::MariaDbRecordset() : impl_(std::make_unique<Impl>()) {}
MariaDbRecordset::~MariaDbRecordset() = default;

void MariaDbRecordset::Open(const std::string& source, const std::shared_ptr<Connection>& connection,
                            int cursorType, int lockType, int /*options*/) {
  Impl& m = *impl_;
  if (m.open) raise(vberr::kObjectOpen);
  std::shared_ptr<Connection> active = connection ? connection : ActiveConnection;
  auto session = std::dynamic_pointer_cast<MariaDbConnection>(active);
  if (!session) {
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
  m.connection = session;
  m.updatable = isUpdatableLock(LockType);
  m.source = source;
  // Reported once the session is known to be there (reopened if it was lost): a held call that lost
  // its session sends nothing more.
  m.connection->session();
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

bool MariaDbRecordset::IsOpen() const {
  return impl_->open;
}

bool MariaDbRecordset::BOF() {
  Impl& m = *impl_;
  m.requireOpen();
  if (m.pending == Impl::Pending::New || m.onAddedRow) return false;
  m.ensureExecuted();
  return m.bof;
}

bool MariaDbRecordset::EOF_() {
  Impl& m = *impl_;
  m.requireOpen();
  if (m.pending == Impl::Pending::New || m.onAddedRow) return false;
  m.ensureExecuted();
  return m.eof;
}

Value MariaDbRecordset::getField(std::string_view name) {
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

void MariaDbRecordset::setField(std::string_view name, const Value& value) {
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

void MariaDbRecordset::MoveNext() {
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

void MariaDbRecordset::AddNew() {
  Impl& m = *impl_;
  m.requireOpen();
  if (!m.updatable) raise(vberr::kNotUpdatable);
  if (m.pending != Impl::Pending::None) Update();
  m.pending = Impl::Pending::New;
  m.changes.clear();
}

void MariaDbRecordset::Update() {
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

void MariaDbRecordset::Close() {
  Impl& m = *impl_;
  m.requireOpen();
  m.close();
}

}  // namespace tovrand
