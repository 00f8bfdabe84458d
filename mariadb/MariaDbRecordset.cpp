#include "mariadb/MariaDbRecordset.h"

#include <vector>

#include "engine/RecordsetCore.h"
#include "engine/SqlShape.h"
#include "engine/StatementTrace.h"
#include "mariadb/MariaDbApi.h"
#include "mariadb/MariaDbConnection.h"
#include "mariadb/SessionCache.h"

namespace tovrand {

using mariadb::ColumnInfo;
using mariadb::Columns;
using mariadb::IntegerWidth;
using mariadb::Result;
using mariadb::SessionLost;
using mariadb::Statement;

namespace {

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

struct MariaDbRecordsetCore final
    : engine::RecordsetCore<MariaDbRecordsetCore, ColumnInfo, MariaDbConnection, SessionLost> {
  Result result;
  bool learnedThisOpen = false;  // the whole table's columns were asked of the server for this open
  MYSQL_ROW current = nullptr;
  unsigned long* lengths = nullptr;

  const std::string& secret() const { return connection->secret(); }
  mariadb::SessionCache& cache() { return connection->sessionCache(); }
  void touchSession() { connection->session(); }

  // A whole table's columns are described once more only before its text has run, and once an open.
  bool mayLearnAgain() const { return !executed && !learnedThisOpen; }

  void fetch() {
    rowHeld = false;
    current = mysql_fetch_row(result.get());
    lengths = current != nullptr ? mysql_fetch_lengths(result.get()) : nullptr;
    eof = current == nullptr;
  }

  Value rowValue(std::size_t index) const {
    return mariadb::valueOf((*columns)[index], current[index], lengths[index]);
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

  // The columns of the stored result: an earlier result's when the server describes this one exactly
  // as it did that one (the description's own hash finds it, no text is scanned), else described.
  std::shared_ptr<const Columns> resultColumns() {
    const MYSQL_FIELD* fields = mysql_fetch_fields(result.get());
    unsigned int count = mysql_num_fields(result.get());
    std::uint64_t signature = mariadb::signatureOf(fields, count);
    if (auto known = cache().describedColumns(signature);
        known && mariadb::describedExactlyAs(fields, count, *known)) {
      return known;
    }
    auto described = std::make_shared<const Columns>(mariadb::describeFields(fields, count));
    cache().rememberDescribedColumns(signature, described);
    return described;
  }

  // Runs the text now and makes its first row current; a statement without a result leaves the
  // recordset closed.
  void runNow() {
    if (!query()) {
      reportDelivery(source, Delivery::NoResult);
      closeWithoutResult();
      return;
    }
    useColumns(resultColumns(), true);
    reportDelivery(source, Delivery::Rows);
    beginRows();
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
    useColumns(std::move(described), true);
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
        useColumns(std::move(described), true);
      }
      reportDelivery(source, Delivery::Rows);
      beginRows();
    });
  }

  void runBound(const std::string& sql, const std::vector<Value>& values) {
    runBoundStatement(*connection, sql, values);
  }

  // The result's own description names every column's table and column.
  void learnBaseNames() {}

  engine::IntegerRange integerRange(const ColumnInfo& column) const {
    switch (column.width) {
      case IntegerWidth::Small:
        return column.isUnsigned ? engine::IntegerRange{0, 65535} : engine::IntegerRange{-32768, 32767};
      case IntegerWidth::Tiny:
        return column.isUnsigned ? engine::IntegerRange{0, 255} : engine::IntegerRange{-128, 127};
      case IntegerWidth::Bit:
        return {0, 1};
      case IntegerWidth::Full:
        break;
    }
    return {};
  }

  void releaseRows() {
    current = nullptr;
    lengths = nullptr;
    result.reset();
    learnedThisOpen = false;
  }
};

}  // namespace

MariaDbRecordset::MariaDbRecordset() : EngineRecordset(std::make_unique<MariaDbRecordsetCore>()) {}

}  // namespace tovrand
