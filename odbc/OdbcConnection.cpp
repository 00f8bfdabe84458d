#include "odbc/OdbcConnection.h"

#include <algorithm>
#include <map>

#include "engine/Lock.h"
#include "engine/SessionSetup.h"
#include "engine/SessionState.h"
#include "engine/SharedSessions.h"
#include "odbc/OdbcApi.h"
#include "odbc/OwnStatement.h"
#include "odbc/SessionCache.h"
#include "vb/Text.h"

namespace tovrand {

using odbc::check;
using odbc::Handle;
using odbc::WideText;

namespace {

// The process's ODBC environment, shared by every connection so that it outlives them all.
std::shared_ptr<Handle> environment() {
  static engine::Mutex mutex;
  static std::weak_ptr<Handle> current;
  engine::Guard lock(mutex);
  if (auto env = current.lock()) return env;
  SQLHANDLE h = SQL_NULL_HANDLE;
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &h))) {
    throw VbError(vberr::kProviderError, "the ODBC driver manager cannot allocate an environment");
  }
  auto env = std::make_shared<Handle>(SQL_HANDLE_ENV, h);
  SQLSetEnvAttr(h, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(static_cast<SQLLEN>(SQL_OV_ODBC3)), 0);
  current = env;
  return env;
}

engine::SharedSessions<OdbcConnection>& shared() {
  static engine::SharedSessions<OdbcConnection> sessions;
  return sessions;
}

}  // namespace

struct OdbcConnection::Impl : Parts {
  explicit Impl(Parts parts) : Parts(parts) {}

  std::shared_ptr<Handle> env;  // declared before the connections: freed after them
  Handle dbc;
  bool connected = false;
  // Connections given up after their session was lost. Recordsets may still hold statements
  // allocated on them, so they are disconnected and freed only when this object goes.
  std::vector<Handle> retired;
  odbc::SessionCache cache;
  bool utf8 = false;

  ~Impl() {
    cache.dropStatements();
    if (connected) SQLDisconnect(dbc.get());
    for (Handle& r : retired) SQLDisconnect(r.get());
  }

  // Connects to the one host `one` names; answers why it could not, or nullopt once connected.
  std::optional<std::string> connectTo(const ConnectionSettings& one) {
    SQLHANDLE h = SQL_NULL_HANDLE;
    check(SQLAllocHandle(SQL_HANDLE_DBC, env->get(), &h), SQL_HANDLE_ENV, env->get(),
          "allocating a connection", secret);
    dbc = Handle(SQL_HANDLE_DBC, h);
    SQLSetConnectAttrW(h, SQL_ATTR_LOGIN_TIMEOUT,
                       reinterpret_cast<SQLPOINTER>(static_cast<SQLLEN>(one.connectTimeoutSeconds)), 0);
    SQLSetConnectAttrW(h, SQL_ATTR_AUTOCOMMIT,
                       reinterpret_cast<SQLPOINTER>(static_cast<SQLLEN>(SQL_AUTOCOMMIT_ON)), 0);

    WideText connectionString(one.odbcConnectionString());
    SQLRETURN rc = SQLDriverConnectW(h, nullptr, connectionString.get(), connectionString.length(), nullptr,
                                     0, nullptr, SQL_DRIVER_NOPROMPT);
    if (!SQL_SUCCEEDED(rc)) {
      return odbc::toVbError(odbc::diagnosticOf(SQL_HANDLE_DBC, h), "connecting", secret).description();
    }
    connected = true;
    return std::nullopt;
  }

  // Connects and sets the session up: the server's table-name folding checked, the clock pinned.
  void open() {
    engine::openOnFirstReadyHost(
        settings, [&](const ConnectionSettings& one) { return connectTo(one); },
        [&] { return rowOn(dbc.get(), engine::kReadyQuery, false); },
        [&] {
          SQLDisconnect(dbc.get());
          dbc = Handle();
          connected = false;
        });
    SQLHDBC h = dbc.get();

    std::vector<Value> session = firstRow(engine::kSessionQuery);
    engine::checkSession(session);
    utf8 = isMariaDbDriver(h) && session.size() > 1 && !session[1].isNull() &&
           CStr(session[1]).rfind("utf8", 0) == 0;
    // The driver asked for TLS goes on in plain text when the server offers none: such a session is
    // refused before anything is sent on it.
    if (settings.sslRequired) {
      std::vector<Value> cipher = firstRow("SHOW SESSION STATUS LIKE 'Ssl_cipher'");
      if (cipher.size() < 2 || cipher[1].isNull() || CStr(cipher[1]).empty()) {
        engine::refuseSession(settings,
                              "the server offers no TLS, and the setting asks for an encrypted session");
      }
    }
    if (auto pin = engine::clockPinning(settings)) run(*pin);
  }

  // The connection statements are allocated on. After a lost session a new one is opened here, at the
  // next statement: nothing is re-sent, so a statement that may have run never runs twice.
  SQLHDBC live() {
    return state.liveSession<odbc::ConnectionLost>(
        [&] {
          // The statements prepared on the old session go with it.
          cache.newSession();
          primaryKeys.clear();
          if (connected) retired.push_back(std::move(dbc));
          connected = false;
          open();
        },
        [&] { return dbc.get(); });
  }

  // Runs `f`, noting a lost session on the way out.
  template <class F>
  auto guarded(F&& f) -> decltype(f()) {
    return state.guarded<odbc::ConnectionLost>(std::forward<F>(f));
  }

  void run(std::string_view sql) {
    guarded([&] {
      SQLHDBC d = dbc.get();
      SQLHANDLE h = SQL_NULL_HANDLE;
      check(SQLAllocHandle(SQL_HANDLE_STMT, d, &h), SQL_HANDLE_DBC, d, "allocating a statement", secret);
      Handle stmt(SQL_HANDLE_STMT, h);
      WideText text(sql);
      check(SQLExecDirectW(h, text.get(), text.length()), SQL_HANDLE_STMT, h, "running a statement", secret);
      for (;;) {
        SQLRETURN rc = SQLMoreResults(h);
        if (rc == SQL_NO_DATA) break;
        check(rc, SQL_HANDLE_STMT, h, "running a statement", secret);
      }
    });
  }

  std::optional<Value> firstValue(std::string_view sql, bool asText = false) {
    std::vector<Value> row = firstRow(sql, asText);
    if (row.empty()) return std::nullopt;
    return row[0];
  }

  // The first row of a query run outside the trace; empty when there is none. `asText`: the first
  // column as the server's text.
  std::vector<Value> firstRow(std::string_view sql, bool asText = false) {
    return guarded([&] { return rowOn(dbc.get(), sql, asText); });
  }

  // The same on a given connection, a lost session not noted (a host being tried is not yet the
  // session).
  std::vector<Value> rowOn(SQLHDBC d, std::string_view sql, bool asText) {
    SQLHANDLE h = SQL_NULL_HANDLE;
    check(SQLAllocHandle(SQL_HANDLE_STMT, d, &h), SQL_HANDLE_DBC, d, "allocating a statement", secret);
    Handle stmt(SQL_HANDLE_STMT, h);
    WideText text(sql);
    check(SQLExecDirectW(h, text.get(), text.length()), SQL_HANDLE_STMT, h, "running a query", secret);
    std::vector<odbc::ColumnInfo> columns = odbc::describeColumns(h, secret, odbc::BaseNames::Skip);
    if (columns.empty()) return {};
    if (asText) columns[0].kind = odbc::ColumnKind::Text;
    SQLRETURN rc = SQLFetch(h);
    if (rc == SQL_NO_DATA) return {};
    check(rc, SQL_HANDLE_STMT, h, "fetching a row", secret);
    std::vector<Value> row;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      row.push_back(odbc::readColumn(h, static_cast<SQLUSMALLINT>(i + 1), columns[i], secret));
    }
    return row;
  }

  // MariaDB Connector/ODBC hands character data to SQL_C_CHAR buffers in the session's character set
  // unchanged, and takes it so from them; other drivers may convert to a code page.
  static bool isMariaDbDriver(SQLHDBC h) {
    SQLWCHAR name[128] = {};
    SQLSMALLINT length = 0;
    if (!SQL_SUCCEEDED(SQLGetInfoW(h, SQL_DRIVER_NAME, name, sizeof name, &length))) return false;
    std::string driver = toLowerAscii(odbc::fromWide(name));
    return driver.find("maodbc") != std::string::npos;
  }
};

OdbcConnection::OdbcConnection(const ConnectionSettings& settings)
    : SessionConnection(settings), impl_(std::make_unique<Impl>(parts())) {}
OdbcConnection::~OdbcConnection() = default;

std::shared_ptr<OdbcConnection> OdbcConnection::connect(const ConnectionSettings& settings) {
  std::shared_ptr<OdbcConnection> connection(new OdbcConnection(settings));
  connection->impl_->env = environment();
  connection->impl_->open();
  return connection;
}

std::shared_ptr<OdbcConnection> OdbcConnection::acquire(const ConnectionSettings& settings) {
  return shared().acquire(settings.connectionKey(), [&] { return connect(settings); });
}

std::shared_ptr<OdbcConnection> OdbcConnection::openPrivate(const ConnectionSettings& settings) {
  return connect(settings);
}

void OdbcConnection::execute(std::string_view sql) {
  impl_->live();
  impl_->run(sql);
}
std::optional<Value> OdbcConnection::scalar(std::string_view sql, bool asText) {
  impl_->live();
  return impl_->firstValue(sql, asText);
}
OwnStatementResult OdbcConnection::runOwnStatement(std::string_view sql) {
  void* dbc = impl_->live();
  return impl_->guarded([&] { return odbc::runOwnStatement(dbc, sql); });
}
void* OdbcConnection::nativeHandle() {
  return impl_->live();
}
odbc::SessionCache& OdbcConnection::sessionCache() {
  return impl_->cache;
}
bool OdbcConnection::textAsUtf8() const {
  return impl_->utf8;
}

std::vector<std::string> OdbcConnection::primaryKey(const std::string& catalog, const std::string& table) {
  std::string key = engine::PrimaryKeys::keyOf(catalog, table);
  if (std::vector<std::string> known; primaryKeys_.find(key, known)) return known;
  const std::string& secret = secret_;
  SQLHDBC dbc = impl_->live();
  return impl_->guarded([&] {
    SQLHANDLE h = SQL_NULL_HANDLE;
    check(SQLAllocHandle(SQL_HANDLE_STMT, dbc, &h), SQL_HANDLE_DBC, dbc, "allocating a statement", secret);
    Handle stmt(SQL_HANDLE_STMT, h);
    WideText cat(catalog), tab(table);
    check(SQLPrimaryKeysW(h, catalog.empty() ? nullptr : cat.get(), catalog.empty() ? 0 : SQL_NTS, nullptr, 0,
                          tab.get(), SQL_NTS),
          SQL_HANDLE_STMT, h, "reading the primary key", secret);
    std::vector<std::pair<int, std::string>> columns;
    for (;;) {
      SQLRETURN rc = SQLFetch(h);
      if (rc == SQL_NO_DATA) break;
      check(rc, SQL_HANDLE_STMT, h, "reading the primary key", secret);
      SQLWCHAR name[256] = {};
      SQLLEN indicator = 0;
      SQLSMALLINT sequence = 0;
      check(SQLGetData(h, 4, SQL_C_WCHAR, name, sizeof name, &indicator), SQL_HANDLE_STMT, h,
            "reading the primary key", secret);
      check(SQLGetData(h, 5, SQL_C_SSHORT, &sequence, 0, &indicator), SQL_HANDLE_STMT, h,
            "reading the primary key", secret);
      columns.emplace_back(sequence, odbc::fromWide(name));
    }
    std::sort(columns.begin(), columns.end());
    std::vector<std::string> names;
    for (auto& [sequence, name] : columns) names.push_back(name);
    primaryKeys_.remember(key, names);
    return names;
  });
}

}  // namespace tovrand
