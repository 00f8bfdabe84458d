#include "mariadb/MariaDbConnection.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <utility>

#include "engine/Lock.h"
#include "engine/SessionSetup.h"
#include "engine/SessionState.h"
#include "engine/SharedSessions.h"
#include "engine/SqlShape.h"
#include "mariadb/MariaDbApi.h"
#include "mariadb/OwnStatement.h"
#include "mariadb/SessionCache.h"
#include "vb/Text.h"

namespace tovrand {

using mariadb::Result;
using mariadb::SessionLost;

namespace {

engine::SharedSessions<MariaDbConnection>& shared() {
  static engine::SharedSessions<MariaDbConnection> sessions;
  return sessions;
}

// The host the client library is given: it treats "localhost" as its socket, and a port asks for TCP.
std::string clientHost(const ConnectionSettings& one) {
  if (one.socket.empty() && one.port != 0 && toLowerAscii(one.host) == "localhost") return "127.0.0.1";
  return one.host;
}

struct SessionCloser {
  void operator()(MYSQL* m) const { mysql_close(m); }
};
using Session = std::unique_ptr<MYSQL, SessionCloser>;

}  // namespace

struct MariaDbConnection::Impl : Parts {
  explicit Impl(Parts parts) : Parts(parts) {}

  Session mysql;
  // Sessions given up after they were lost. Results read from them may still be held by recordsets,
  // so they are closed only when this object goes.
  std::vector<Session> retired;
  engine::Mutex exchange;  // around each exchange with the server
  mariadb::SessionCache cache;

  ~Impl() {
    // Prepared statements first: closing a session leaves its statements unusable but still owned.
    cache.dropStatements();
  }

  [[noreturn]] void refuse(const std::string& reason) const { engine::refuseSession(settings, reason); }

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
    engine::openOnFirstReadyHost(
        settings,
        [&](const ConnectionSettings& one) -> std::optional<std::string> {
          Session m = prepared();
          const char* socket = one.socket.empty() ? nullptr : one.socket.c_str();
          if (mysql_real_connect(m.get(), clientHost(one).c_str(), one.user.c_str(), one.password.c_str(),
                                 one.database.c_str(), static_cast<unsigned int>(one.port), socket,
                                 0) == nullptr) {
            return mariadb::errorOf(mysql_errno(m.get()), mysql_sqlstate(m.get()), mysql_error(m.get()),
                                    "connecting", secret)
                .description();
          }
          mysql = std::move(m);
          return std::nullopt;
        },
        [&] { return rowOf(mysql.get(), engine::kReadyQuery, false); }, [&] { mysql.reset(); });

    engine::checkSession(firstRow(engine::kSessionQuery));
    // A server without TLS leaves the session in plain text: such a session is refused before anything
    // is sent on it.
    if (settings.sslRequired) {
      const char* cipher = mysql_get_ssl_cipher(mysql.get());
      if (cipher == nullptr || *cipher == '\0') {
        refuse("the server offers no TLS, and the setting asks for an encrypted session");
      }
    }
    if (auto pin = engine::clockPinning(settings)) run(*pin);
  }

  // The session statements go to. After a lost session a new one is opened here, at the next
  // statement: nothing is re-sent, so a statement that may have run never runs twice.
  MYSQL* live() {
    return state.liveSession<SessionLost>(
        [&] {
          // The statements prepared on the old session go with it.
          cache.newSession();
          primaryKeys.clear();
          if (mysql) retired.push_back(std::move(mysql));
          try {
            open();
          } catch (const VbError&) {
            if (mysql) retired.push_back(std::move(mysql));
            throw;
          }
        },
        [&] { return mysql.get(); });
  }

  // Runs `f`, noting a lost session on the way out.
  template <class F>
  auto guarded(F&& f) -> decltype(f()) {
    return state.guarded<SessionLost>(std::forward<F>(f));
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
    return guarded([&] { return rowOf(mysql.get(), sql, asText); });
  }

  // The same on a given session, a lost session not noted (a host being tried is not yet the session).
  std::vector<Value> rowOf(MYSQL* m, std::string_view sql, bool asText) {
    engine::Guard lock(exchange);
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
  }
};

MariaDbConnection::MariaDbConnection(const ConnectionSettings& settings)
    : SessionConnection(settings), impl_(std::make_unique<Impl>(parts())) {}
MariaDbConnection::~MariaDbConnection() = default;

std::shared_ptr<MariaDbConnection> MariaDbConnection::connect(const ConnectionSettings& settings) {
  std::shared_ptr<MariaDbConnection> connection(new MariaDbConnection(settings));
  connection->impl_->open();
  return connection;
}

std::shared_ptr<MariaDbConnection> MariaDbConnection::acquire(const ConnectionSettings& settings) {
  return shared().acquire(settings.connectionKey(), [&] { return connect(settings); });
}

std::shared_ptr<MariaDbConnection> MariaDbConnection::openPrivate(const ConnectionSettings& settings) {
  return connect(settings);
}

std::size_t MariaDbConnection::sharedCount() {
  return shared().count();
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
engine::Mutex& MariaDbConnection::exchangeMutex() {
  return impl_->exchange;
}
mariadb::SessionCache& MariaDbConnection::sessionCache() {
  return impl_->cache;
}

std::vector<std::string> MariaDbConnection::primaryKey(const std::string& catalog, const std::string& table) {
  std::string key = engine::PrimaryKeys::keyOf(catalog, table);
  if (std::vector<std::string> known; primaryKeys_.find(key, known)) return known;
  MYSQL* m = impl_->live();
  std::string sql = "SHOW KEYS FROM " + (catalog.empty() ? "" : engine::quoted(catalog) + ".") +
                    engine::quoted(table) + " WHERE Key_name = 'PRIMARY'";
  const std::string& secret = secret_;
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
    primaryKeys_.remember(key, names);
    return names;
  });
}

}  // namespace tovrand
