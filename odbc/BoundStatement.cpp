#include "odbc/BoundStatement.h"

#include "engine/StatementTrace.h"
#include "odbc/OdbcApi.h"
#include "odbc/OdbcConnection.h"
#include "odbc/SessionCache.h"
#include "vb/Text.h"

namespace tovrand {

using odbc::check;
using odbc::Handle;
using odbc::TextForm;
using odbc::WideText;

namespace {

// A value bound to a statement parameter; its storage stays put until the statement has run.
struct Parameter {
  const Value* value = nullptr;
  double number = 0;
  SQLINTEGER integer = 0;
  SQL_TIMESTAMP_STRUCT timestamp{};
  std::u16string wide;
  SQLLEN indicator = 0;
};

void bindParameters(SQLHSTMT stmt, std::vector<Parameter>& parameters, TextForm form,
                    std::string_view secret) {
  const SQLSMALLINT textC = form == TextForm::Utf8 ? SQL_C_CHAR : SQL_C_WCHAR;
  const SQLSMALLINT textSql = form == TextForm::Utf8 ? SQL_VARCHAR : SQL_WVARCHAR;
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    Parameter& p = parameters[i];
    auto number = static_cast<SQLUSMALLINT>(i + 1);
    SQLRETURN rc = SQL_SUCCESS;
    switch (p.value->type()) {
      case Value::Type::Empty:
      case Value::Type::Null:
        p.indicator = SQL_NULL_DATA;
        rc =
            SQLBindParameter(stmt, number, SQL_PARAM_INPUT, textC, textSql, 1, 0, &p.number, 0, &p.indicator);
        break;
      case Value::Type::Double:
        p.number = p.value->dbl();
        rc = SQLBindParameter(stmt, number, SQL_PARAM_INPUT, SQL_C_DOUBLE, SQL_DOUBLE, 15, 0, &p.number, 0,
                              &p.indicator);
        break;
      case Value::Type::Integer:
      case Value::Type::Long:
      case Value::Type::Boolean:
        p.integer = p.value->type() == Value::Type::Integer ? p.value->integer()
                    : p.value->type() == Value::Type::Long  ? p.value->longValue()
                                                            : (p.value->boolean() ? -1 : 0);
        rc = SQLBindParameter(stmt, number, SQL_PARAM_INPUT, SQL_C_SLONG, SQL_INTEGER, 10, 0, &p.integer, 0,
                              &p.indicator);
        break;
      case Value::Type::Date: {
        DateParts parts = dateParts(p.value->date());
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
        // The value's own bytes where the driver takes UTF-8; a UTF-16 copy for the wide form.
        void* data = nullptr;
        std::size_t units = 0;
        if (form == TextForm::Utf8) {
          const std::string& text = p.value->str();
          data = const_cast<char*>(text.data());
          p.indicator = static_cast<SQLLEN>(text.size());
          units = text.size();
        } else {
          p.wide = toUtf16(p.value->str());
          data = p.wide.data();
          p.indicator = static_cast<SQLLEN>(p.wide.size() * sizeof(char16_t));
          units = p.wide.size();
        }
        rc = SQLBindParameter(stmt, number, SQL_PARAM_INPUT, textC, textSql, units == 0 ? 1 : units, 0, data,
                              p.indicator, &p.indicator);
        break;
      }
    }
    check(rc, SQL_HANDLE_STMT, stmt, "binding a parameter", secret);
  }
}

}  // namespace

void runBoundStatement(OdbcConnection& connection, const std::string& sql, const std::vector<Value>& values) {
  const std::string& secret = connection.secret();
  TextForm form = connection.textAsUtf8() ? TextForm::Utf8 : TextForm::Wide;
  auto dbc = static_cast<SQLHDBC>(connection.nativeHandle());
  odbc::SessionCache& cache = connection.sessionCache();
  odbc::LentStatement lent = cache.takeStatement(sql);
  std::vector<Parameter> parameters(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) parameters[i].value = &values[i];
  try {
    if (!lent.statement) {
      SQLHANDLE h = SQL_NULL_HANDLE;
      check(SQLAllocHandle(SQL_HANDLE_STMT, dbc, &h), SQL_HANDLE_DBC, dbc, "allocating a statement", secret);
      lent.statement = Handle(SQL_HANDLE_STMT, h);
      WideText text(sql);
      check(SQLPrepareW(h, text.get(), text.length()), SQL_HANDLE_STMT, h, "preparing a statement", secret);
    }
    SQLHSTMT h = lent.statement.get();
    bindParameters(h, parameters, form, secret);
    check(SQLExecute(h), SQL_HANDLE_STMT, h, "storing the row", secret);
  } catch (const odbc::ConnectionLost& e) {
    connection.markLost(e);
    throw;
  }
  reportDelivery(sql, Delivery::BoundWrite, values);
  cache.giveBack(sql, std::move(lent));
}

}  // namespace tovrand
