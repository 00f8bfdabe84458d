#include "odbc/OdbcConnection.h"

#include <algorithm>
#include <map>

#include "engine/Lock.h"
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

struct Registry {
  engine::Mutex mutex;
  std::map<std::string, std::weak_ptr<OdbcConnection>> connections;
};

Registry& registry() {
  static Registry r;
  return r;
}

}  // namespace

// The text messages must not show: the password, unless it is also a name the messages show anyway
// (blanking it out of "Table 'tovrand.t' ..." would hide the names and protect nothing).
std::string secretOf(const ConnectionSettings& s) {
  const std::string& p = s.password;
  if (p.empty()) return {};
  for (const std::string* shown : {&s.user, &s.database, &s.host, &s.socket}) {
    if (shown->find(p) != std::string::npos) return {};
  }
  return p;
}

struct OdbcConnection::Impl {
  ConnectionSettings settings;
  std::string secret;
  std::shared_ptr<Handle> env;  // declared before the connections: freed after them
  Handle dbc;
  bool connected = false;
  // The session was lost; the next statement opens a new one, unless the loss was met during a held
  // call, which then fails every later statement with `lostCause` until it ends.
  bool lost = false;
  bool held = false;
  int calls = 0;  // held calls running
  VbError lostCause{vberr::kProviderError, ""};
  // Connections given up after their session was lost. Recordsets may still hold statements
  // allocated on them, so they are disconnected and freed only when this object goes.
  std::vector<Handle> retired;
  engine::Mutex mutex;       // around reconnecting
  engine::Mutex stateMutex;  // around lost, held, calls and lostCause
  engine::Mutex keysMutex;
  std::map<std::string, std::vector<std::string>> primaryKeys;
  odbc::SessionCache cache;
  bool utf8 = false;

  ~Impl() {
    cache.dropStatements();
    if (connected) SQLDisconnect(dbc.get());
    for (Handle& r : retired) SQLDisconnect(r.get());
  }

  // Connects and sets the session up: the server's table-name folding checked, the clock pinned.
  void open() {
    SQLHANDLE h = SQL_NULL_HANDLE;
    check(SQLAllocHandle(SQL_HANDLE_DBC, env->get(), &h), SQL_HANDLE_ENV, env->get(),
          "allocating a connection", secret);
    dbc = Handle(SQL_HANDLE_DBC, h);
    SQLSetConnectAttrW(h, SQL_ATTR_LOGIN_TIMEOUT,
                       reinterpret_cast<SQLPOINTER>(static_cast<SQLLEN>(settings.connectTimeoutSeconds)), 0);
    SQLSetConnectAttrW(h, SQL_ATTR_AUTOCOMMIT,
                       reinterpret_cast<SQLPOINTER>(static_cast<SQLLEN>(SQL_AUTOCOMMIT_ON)), 0);

    WideText connectionString(settings.odbcConnectionString());
    SQLRETURN rc = SQLDriverConnectW(h, nullptr, connectionString.get(), connectionString.length(), nullptr,
                                     0, nullptr, SQL_DRIVER_NOPROMPT);
    if (!SQL_SUCCEEDED(rc)) {
      VbError e = odbc::toVbError(odbc::diagnosticOf(SQL_HANDLE_DBC, h), "connecting", secret);
      throw VbError(vberr::kProviderError,
                    "cannot connect to the database " + settings.redacted() + ": " + e.description());
    }
    connected = true;

    // The component writes table names in mixed case (t_porder, T_POrder); a case-sensitive server
    // would silently address tables that do not exist.
    std::vector<Value> session = firstRow("select @@lower_case_table_names, @@character_set_results");
    if (!session.empty() && !session[0].isNull() && CStr(session[0]) == "0") {
      throw VbError(
          vberr::kProviderError,
          "the server runs with lower_case_table_names=0; Tovrand needs lower_case_table_names=1 (table "
          "names are written in mixed case, as on a Windows server): start the server with "
          "--lower-case-table-names=1");
    }
    utf8 = isMariaDbDriver(h) && session.size() > 1 && !session[1].isNull() &&
           CStr(session[1]).rfind("utf8", 0) == 0;
    // The driver asked for TLS goes on in plain text when the server offers none: such a session is
    // refused before anything is sent on it.
    if (settings.sslRequired) {
      std::vector<Value> cipher = firstRow("SHOW SESSION STATUS LIKE 'Ssl_cipher'");
      if (cipher.size() < 2 || cipher[1].isNull() || CStr(cipher[1]).empty()) {
        throw VbError(vberr::kProviderError, "cannot connect to the database " + settings.redacted() +
                                                 ": the server offers no TLS, and the setting asks for an "
                                                 "encrypted session");
      }
    }
    if (!settings.serverDate.empty()) {
      run("SET timestamp = UNIX_TIMESTAMP('" + settings.serverDate + " 12:00:00')");
    }
  }

  // The connection statements are allocated on. After a lost session a new one is opened here, at the
  // next statement: nothing is re-sent, so a statement that may have run never runs twice.
  SQLHDBC live() {
    engine::Guard lock(mutex);
    bool reconnect = false;
    {
      engine::Guard state(stateMutex);
      // The rest of a held call must not reach a database its earlier statements may have left half
      // written: it fails as the statement that lost the session did.
      if (lost && held) throw odbc::ConnectionLost(lostCause);
      reconnect = lost;
    }
    if (reconnect) {
      // The statements prepared on the old session go with it.
      cache.newSession();
      {
        engine::Guard keys(keysMutex);
        primaryKeys.clear();
      }
      if (connected) retired.push_back(std::move(dbc));
      connected = false;
      try {
        open();
      } catch (const VbError& e) {
        // A server still out of reach: a held call does not wait for it once more per statement.
        noteLost(e);
        throw;
      }
      engine::Guard state(stateMutex);
      lost = false;
    }
    return dbc.get();
  }

  void noteLost(const VbError& cause) {
    engine::Guard state(stateMutex);
    if (!held) lostCause = cause;
    lost = true;
    held = calls > 0;
  }

  // Runs `f`, noting a lost session on the way out.
  template <class F>
  auto guarded(F&& f) -> decltype(f()) {
    try {
      return f();
    } catch (const odbc::ConnectionLost& e) {
      noteLost(e);
      throw;
    }
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
    return guarded([&]() -> std::vector<Value> {
      SQLHDBC d = dbc.get();
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
    });
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

OdbcConnection::OdbcConnection(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
OdbcConnection::~OdbcConnection() = default;

std::shared_ptr<OdbcConnection> OdbcConnection::connect(const ConnectionSettings& settings) {
  auto impl = std::make_unique<Impl>();
  impl->settings = settings;
  impl->secret = secretOf(settings);
  impl->env = environment();
  impl->open();
  return std::shared_ptr<OdbcConnection>(new OdbcConnection(std::move(impl)));
}

std::shared_ptr<OdbcConnection> OdbcConnection::acquire(const ConnectionSettings& settings) {
  Registry& r = registry();
  std::string key = settings.connectionKey();
  engine::Guard lock(r.mutex);
  for (auto it = r.connections.begin(); it != r.connections.end();) {
    it = it->second.expired() ? r.connections.erase(it) : std::next(it);
  }
  if (auto it = r.connections.find(key); it != r.connections.end()) {
    if (auto existing = it->second.lock()) return existing;
  }
  auto created = connect(settings);
  r.connections[key] = created;
  return created;
}

std::shared_ptr<OdbcConnection> OdbcConnection::openPrivate(const ConnectionSettings& settings) {
  return connect(settings);
}

const ConnectionSettings& OdbcConnection::settings() const {
  return impl_->settings;
}
bool OdbcConnection::serializesAllocation() const {
  return impl_->settings.serializeAllocation;
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
void OdbcConnection::markLost(const VbError& cause) {
  impl_->noteLost(cause);
}
void OdbcConnection::beginCall() {
  engine::Guard state(impl_->stateMutex);
  if (impl_->calls++ == 0) impl_->held = false;
}
void OdbcConnection::endCall() {
  engine::Guard state(impl_->stateMutex);
  if (impl_->calls > 0 && --impl_->calls == 0) impl_->held = false;
}
const std::string& OdbcConnection::secret() const {
  return impl_->secret;
}
odbc::SessionCache& OdbcConnection::sessionCache() {
  return impl_->cache;
}
bool OdbcConnection::textAsUtf8() const {
  return impl_->utf8;
}

std::vector<std::string> OdbcConnection::primaryKey(const std::string& catalog, const std::string& table) {
  std::string key = toLowerAscii(catalog) + "." + toLowerAscii(table);
  {
    engine::Guard lock(impl_->keysMutex);
    if (auto it = impl_->primaryKeys.find(key); it != impl_->primaryKeys.end()) return it->second;
  }
  const std::string& secret = impl_->secret;
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
    engine::Guard lock(impl_->keysMutex);
    impl_->primaryKeys[key] = names;
    return names;
  });
}

}  // namespace tovrand
