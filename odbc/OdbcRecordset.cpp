#include "odbc/OdbcRecordset.h"

#include <vector>

#include "engine/RecordsetCore.h"
#include "engine/SqlShape.h"
#include "engine/StatementTrace.h"
#include "odbc/BoundStatement.h"
#include "odbc/OdbcApi.h"
#include "odbc/OdbcConnection.h"
#include "odbc/ResultRows.h"
#include "odbc/SessionCache.h"

namespace tovrand {

using odbc::check;
using odbc::ColumnInfo;
using odbc::Columns;
using odbc::Handle;
using odbc::TextForm;
using odbc::WideText;

namespace {

struct OdbcRecordsetCore final
    : engine::RecordsetCore<OdbcRecordsetCore, ColumnInfo, OdbcConnection, odbc::ConnectionLost> {
  Handle stmt;
  odbc::ResultRows rows;

  const std::string& secret() const { return connection->secret(); }
  SQLHSTMT handle() const { return stmt.get(); }
  TextForm textForm() const { return connection->textAsUtf8() ? TextForm::Utf8 : TextForm::Wide; }
  odbc::SessionCache& cache() { return connection->sessionCache(); }
  void touchSession() { connection->nativeHandle(); }

  // A whole table's columns are described once more only before its text has run.
  bool mayLearnAgain() const { return !stmt; }

  void fetch() {
    guarded([&] {
      rowHeld = false;
      eof = !rows.fetch();
    });
  }

  Value rowValue(std::size_t index) const { return rows.value(index); }

  void startRows() {
    rows.start(handle(), columns, textForm(), secret());
    beginRows();
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
      closeWithoutResult();
      return;
    }
    useColumns(resultColumns(count), false);
    reportDelivery(source, Delivery::Rows);
    startRows();
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

  Handle newStatement() {
    SQLHDBC dbc = static_cast<SQLHDBC>(connection->nativeHandle());
    SQLHANDLE h = SQL_NULL_HANDLE;
    guarded([&] {
      check(SQLAllocHandle(SQL_HANDLE_STMT, dbc, &h), SQL_HANDLE_DBC, dbc, "allocating a statement",
            secret());
    });
    return Handle(SQL_HANDLE_STMT, h);
  }

  void runBound(const std::string& sql, const std::vector<Value>& values) {
    runBoundStatement(*connection, sql, values);
  }

  // A text that is not a whole table learns where its columns come from when it is first edited.
  void learnBaseNames() {
    auto described = std::make_shared<Columns>(*columns);
    guarded([&] { odbc::describeBaseNames(handle(), *described); });
    columns = std::move(described);
  }

  engine::IntegerRange integerRange(const ColumnInfo& column) const {
    if (column.sqlType == SQL_SMALLINT) {
      return column.isUnsigned ? engine::IntegerRange{0, 65535} : engine::IntegerRange{-32768, 32767};
    }
    if (column.sqlType == SQL_TINYINT) {
      return column.isUnsigned ? engine::IntegerRange{0, 255} : engine::IntegerRange{-128, 127};
    }
    if (column.sqlType == SQL_BIT) return {0, 1};
    return {};
  }

  void releaseRows() {
    rows.reset();
    stmt.reset();
  }
};

}  // namespace

OdbcRecordset::OdbcRecordset() : EngineRecordset(std::make_unique<OdbcRecordsetCore>()) {}

}  // namespace tovrand
