#include "mariadb/MariaDbConnection.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <utility>

#include "engine/Lock.h"
#include "mariadb/MariaDbApi.h"
#include "mariadb/OwnStatement.h"
#include "mariadb/SessionCache.h"
#include "vb/Text.h"

namespace tovrand {

using mariadb::Result;
using mariadb::SessionLost;

namespace {

struct Registry {
  engine::Mutex mutex;
  std::map<std::string, std::weak_ptr<MariaDbConnection>> connections;
};

Registry& registry() {
  static Registry r;
  return r;
}

// The text messages must not show: the password, unless it is also a name the messages show anyway
// (blanking it out of "Table 'tovrand.t' ..." would hide the names and protect nothing).
std::string passwordToHide(const ConnectionSettings& s) {
  const std::string& p = s.password;
  if (p.empty()) return {};
  for (const std::string* shown : {&s.user, &s.database, &s.host, &s.socket}) {
    if (shown->find(p) != std::string::npos) return {};
  }
  return p;
}

// Where a session may be opened, in the order they are tried.
struct Endpoint {
  std::string host;
  int port = 0;
};

std::vector<Endpoint> endpointsOf(const ConnectionSettings& s) {
  std::string host = s.host;
  // The client library treats "localhost" as its socket; a port asks for TCP.
  if (s.socket.empty() && s.port != 0 && toLowerAscii(host) == "localhost") host = "127.0.0.1";
  return {Endpoint{host, s.port}};
}

struct SessionCloser {
  void operator()(MYSQL* m) const { mysql_close(m); }
};
using Session = std::unique_ptr<MYSQL, SessionCloser>;

}  // namespace

struct MariaDbConnection::Impl {
  ConnectionSettings settings;
  std::string secret;
  Session mysql;
  // The session was lost; the next statement opens a new one, unless the loss was met during a held
  // call, which then fails every later statement with `lostCause` until it ends.
  bool lost = false;
  bool held = false;
  int calls = 0;  // held calls running
  VbError lostCause{vberr::kProviderError, ""};
  // Sessions given up after they were lost. Results read from them may still be held by recordsets,
  // so they are closed only when this object goes.
  std::vector<Session> retired;
  engine::Mutex mutex;       // around reconnecting
  engine::Mutex stateMutex;  // around lost, held, calls and lostCause
  engine::Mutex keysMutex;
  engine::Mutex exchange;  // around each exchange with the server
  std::map<std::string, std::vector<std::string>> primaryKeys;
  mariadb::SessionCache cache;

  ~Impl() {
    // Prepared statements first: closing a session leaves its statements unusable but still owned.
    cache.dropStatements();
  }

  [[noreturn]] void refuse(const std::string& reason) const {
    throw VbError(vberr::kProviderError,
                  "cannot connect to the database " + settings.redacted() + ": " + reason);
  }

  // A client handle with the session's options set, not yet connected.
  Session prepared() const {
    Session m(mysql_init(nullptr));
    if (!m) refuse("the client library cannot allocate a session");
    mysql_optionsv(m.get(), MYSQL_SET_CHARSET_NAME, "utf8mb4");
    unsigned int connectTimeout = static_cast<unsigned int>(settings.connectTimeoutSeconds);
    unsigned int readWrite = static_cast<unsigned int>(settings.timeoutSeconds);
    mysql_optionsv(m.get(), MYSQL_OPT_CONNECT_TIMEOUT, &connectTimeout);
    mysql_optionsv(m.get(), MYSQL_OPT_READ_TIMEOUT, &readWrite);
    mysql_optionsv(m.get(), MYSQL_OPT_WRITE_TIMEOUT, &readWrite);
    if (settings.sslRequired) {
      // Asked for; whether the server gave it is checked once connected, as the ODBC engine does.
      mysql_ssl_set(m.get(), nullptr, nullptr, nullptr, nullptr, nullptr);
    }
    if (!settings.sslCa.empty()) {
      my_bool on = 1;
      mysql_optionsv(m.get(), MYSQL_OPT_SSL_CA, settings.sslCa.c_str());
      mysql_optionsv(m.get(), MYSQL_OPT_SSL_VERIFY_SERVER_CERT, &on);
      mysql_optionsv(m.get(), MYSQL_OPT_SSL_ENFORCE, &on);
    }
    return m;
  }

  // Connects and sets the session up: the server's table-name folding checked, TLS checked when asked
  // for, the clock pinned.
  void open() {
    if (!settings.rawOdbc.empty()) {
      refuse("the mariadb engine connects with a mysql:// setting, not an ODBC connection string");
    }
    std::vector<Endpoint> endpoints = endpointsOf(settings);
    std::string failure;
    for (const Endpoint& endpoint : endpoints) {
      Session m = prepared();
      const char* socket = settings.socket.empty() ? nullptr : settings.socket.c_str();
      if (mysql_real_connect(m.get(), endpoint.host.c_str(), settings.user.c_str(), settings.password.c_str(),
                             settings.database.c_str(), static_cast<unsigned int>(endpoint.port), socket,
                             0) != nullptr) {
        mysql = std::move(m);
        failure.clear();
        break;
      }
      failure = mariadb::errorOf(mysql_errno(m.get()), mysql_sqlstate(m.get()), mysql_error(m.get()),
                                 "connecting", secret)
                    .description();
    }
    if (!mysql) refuse(failure);

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
    // A server without TLS leaves the session in plain text: such a session is refused before anything
    // is sent on it.
    if (settings.sslRequired) {
      const char* cipher = mysql_get_ssl_cipher(mysql.get());
      if (cipher == nullptr || *cipher == '\0') {
        refuse("the server offers no TLS, and the setting asks for an encrypted session");
      }
    }
    if (!settings.serverDate.empty()) {
      run("SET timestamp = UNIX_TIMESTAMP('" + settings.serverDate + " 12:00:00')");
    }
  }

  // The session statements go to. After a lost session a new one is opened here, at the next
  // statement: nothing is re-sent, so a statement that may have run never runs twice.
  MYSQL* live() {
    engine::Guard lock(mutex);
    bool reconnect = false;
    {
      engine::Guard state(stateMutex);
      // The rest of a held call must not reach a database its earlier statements may have left half
      // written: it fails as the statement that lost the session did.
      if (lost && held) throw SessionLost(lostCause);
      reconnect = lost;
    }
    if (reconnect) {
      // The statements prepared on the old session go with it.
      cache.newSession();
      {
        engine::Guard keys(keysMutex);
        primaryKeys.clear();
      }
      if (mysql) retired.push_back(std::move(mysql));
      try {
        open();
      } catch (const VbError& e) {
        // A server still out of reach: a held call does not wait for it once more per statement.
        if (mysql) retired.push_back(std::move(mysql));
        noteLost(e);
        throw;
      }
      engine::Guard state(stateMutex);
      lost = false;
    }
    return mysql.get();
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
    } catch (const SessionLost& e) {
      noteLost(e);
      throw;
    }
  }

  void run(std::string_view sql) {
    guarded([&] {
      engine::Guard lock(exchange);
      MYSQL* m = mysql.get();
      if (mysql_real_query(m, sql.data(), sql.size()) != 0)
        mariadb::raiseSessionError(m, "running a statement", secret);
      if (mysql_field_count(m) > 0) {
        Result discarded(mysql_store_result(m));
        if (!discarded) mariadb::raiseSessionError(m, "running a statement", secret);
      }
    });
  }

  // The first row of a query run outside the trace; empty when there is none. `asText`: the first
  // column as the server's text.
  std::vector<Value> firstRow(std::string_view sql, bool asText = false) {
    return guarded([&]() -> std::vector<Value> {
      engine::Guard lock(exchange);
      MYSQL* m = mysql.get();
      if (mysql_real_query(m, sql.data(), sql.size()) != 0)
        mariadb::raiseSessionError(m, "running a query", secret);
      if (mysql_field_count(m) == 0) return {};
      Result result(mysql_store_result(m));
      if (!result) mariadb::raiseSessionError(m, "reading a result", secret);
      mariadb::Columns columns =
          mariadb::describeFields(mysql_fetch_fields(result.get()), mysql_num_fields(result.get()));
      if (columns.empty()) return {};
      if (asText) columns[0].kind = mariadb::ColumnKind::Text;
      MYSQL_ROW row = mysql_fetch_row(result.get());
      if (row == nullptr) return {};
      unsigned long* lengths = mysql_fetch_lengths(result.get());
      std::vector<Value> values;
      values.reserve(columns.size());
      for (std::size_t i = 0; i < columns.size(); ++i)
        values.push_back(mariadb::valueOf(columns[i], row[i], lengths[i]));
      return values;
    });
  }
};

MariaDbConnection::MariaDbConnection(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
MariaDbConnection::~MariaDbConnection() = default;

std::shared_ptr<MariaDbConnection> MariaDbConnection::connect(const ConnectionSettings& settings) {
  auto impl = std::make_unique<Impl>();
  impl->settings = settings;
  impl->secret = passwordToHide(settings);
  impl->open();
  return std::shared_ptr<MariaDbConnection>(new MariaDbConnection(std::move(impl)));
}

std::shared_ptr<MariaDbConnection> MariaDbConnection::acquire(const ConnectionSettings& settings) {
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

std::shared_ptr<MariaDbConnection> MariaDbConnection::openPrivate(const ConnectionSettings& settings) {
  return connect(settings);
}

std::size_t MariaDbConnection::sharedCount() {
  Registry& r = registry();
  engine::Guard lock(r.mutex);
  std::size_t n = 0;
  for (auto& [key, weak] : r.connections) n += weak.expired() ? 0 : 1;
  return n;
}

const ConnectionSettings& MariaDbConnection::settings() const {
  return impl_->settings;
}
bool MariaDbConnection::serializesAllocation() const {
  return impl_->settings.serializeAllocation;
}
void MariaDbConnection::execute(std::string_view sql) {
  impl_->live();
  impl_->run(sql);
}
std::optional<Value> MariaDbConnection::scalar(std::string_view sql, bool asText) {
  impl_->live();
  std::vector<Value> row = impl_->firstRow(sql, asText);
  if (row.empty()) return std::nullopt;
  return row[0];
}
OwnStatementResult MariaDbConnection::runOwnStatement(std::string_view sql) {
  MYSQL* m = impl_->live();
  return impl_->guarded([&] {
    engine::Guard lock(impl_->exchange);
    return mariadb::runOwnStatement(m, sql);
  });
}
st_mysql* MariaDbConnection::session() {
  return impl_->live();
}
void MariaDbConnection::markLost(const VbError& cause) {
  impl_->noteLost(cause);
}
void MariaDbConnection::beginCall() {
  engine::Guard state(impl_->stateMutex);
  if (impl_->calls++ == 0) impl_->held = false;
}
void MariaDbConnection::endCall() {
  engine::Guard state(impl_->stateMutex);
  if (impl_->calls > 0 && --impl_->calls == 0) impl_->held = false;
}
bool MariaDbConnection::isLost() const {
  engine::Guard state(impl_->stateMutex);
  return impl_->lost;
}
const std::string& MariaDbConnection::secret() const {
  return impl_->secret;
}
engine::Mutex& MariaDbConnection::exchangeMutex() {
  return impl_->exchange;
}
mariadb::SessionCache& MariaDbConnection::sessionCache() {
  return impl_->cache;
}

std::vector<std::string> MariaDbConnection::primaryKey(const std::string& catalog, const std::string& table) {
  std::string key = toLowerAscii(catalog) + "." + toLowerAscii(table);
  {
    engine::Guard lock(impl_->keysMutex);
    if (auto it = impl_->primaryKeys.find(key); it != impl_->primaryKeys.end()) return it->second;
  }
  auto quoted = [](const std::string& identifier) {
    std::string out = "`";
    for (char c : identifier) {
      out += c;
      if (c == '`') out += '`';
    }
    return out + "`";
  };
  MYSQL* m = impl_->live();
  std::string sql = "SHOW KEYS FROM " + (catalog.empty() ? "" : quoted(catalog) + ".") + quoted(table) +
                    " WHERE Key_name = 'PRIMARY'";
  const std::string& secret = impl_->secret;
  return impl_->guarded([&] {
    engine::Guard exchange(impl_->exchange);
    if (mysql_real_query(m, sql.data(), sql.size()) != 0)
      mariadb::raiseSessionError(m, "reading the primary key", secret);
    Result result(mysql_store_result(m));
    if (!result) mariadb::raiseSessionError(m, "reading the primary key", secret);
    // SHOW KEYS: Table, Non_unique, Key_name, Seq_in_index, Column_name, ...
    std::vector<std::pair<int, std::string>> columns;
    while (MYSQL_ROW row = mysql_fetch_row(result.get())) {
      unsigned long* lengths = mysql_fetch_lengths(result.get());
      int sequence = 0;
      if (row[3] != nullptr) std::from_chars(row[3], row[3] + lengths[3], sequence);
      if (row[4] != nullptr) columns.emplace_back(sequence, std::string(row[4], lengths[4]));
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
