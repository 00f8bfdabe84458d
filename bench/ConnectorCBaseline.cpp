// The protocol's floor: the same statements through bare MariaDB Connector/C calls (text protocol for
// the method's texts, prepared statements where the engine stores a row).
#include <mysql.h>

#include <array>
#include <cstdlib>
#include <cstring>

#include "bench/Baseline.h"

namespace tovrand::bench {

namespace {

constexpr std::size_t kMaxParams = 64;

class ConnectorCBaseline final : public Baseline {
 public:
  explicit ConnectorCBaseline(const ConnectionSettings& settings) : mysql_(mysql_init(nullptr)) {
    if (mysql_ == nullptr) fatal("Connector/C baseline: mysql_init failed");
    mysql_options(mysql_, MYSQL_SET_CHARSET_NAME, "utf8mb4");
    const char* host = settings.socket.empty() ? settings.host.c_str() : "localhost";
    if (mysql_real_connect(mysql_, host, settings.user.c_str(), settings.password.c_str(),
                           settings.database.c_str(), static_cast<unsigned>(settings.port),
                           settings.socket.empty() ? nullptr : settings.socket.c_str(), 0) == nullptr) {
      fatal(std::string("Connector/C baseline: cannot connect: ") + mysql_error(mysql_));
    }
    // Set up like the engine's connection: curdate() answers the pinned date.
    if (!settings.serverDate.empty()) {
      query("SET timestamp = UNIX_TIMESTAMP('" + settings.serverDate + " 12:00:00')");
    }
  }
  ~ConnectorCBaseline() override { mysql_close(mysql_); }
  ConnectorCBaseline(const ConnectorCBaseline&) = delete;
  ConnectorCBaseline& operator=(const ConnectorCBaseline&) = delete;

  const char* name() const override { return "Connector/C"; }

  std::size_t run(const Step& step) override {
    switch (step.form) {
      case Step::Form::Query:
        return read(step);
      case Step::Form::PrepareOnly: {
        MYSQL_STMT* st = prepare(step);
        mysql_stmt_close(st);
        return 0;
      }
      case Step::Form::Execute:
        query(step.sql);
        return 0;
      case Step::Form::Write:
        write(step);
        return 0;
    }
    return 0;
  }

 private:
  void failed(const char* what, const std::string& sql) {
    fatal(std::string("Connector/C baseline: ") + what + " failed: " + mysql_error(mysql_) +
          "\n  statement: " + sql);
  }

  // A statement whose result, if any, is read and dropped.
  void query(const std::string& sql) {
    if (mysql_real_query(mysql_, sql.data(), sql.size()) != 0) failed("mysql_real_query", sql);
    if (mysql_field_count(mysql_) > 0) {
      MYSQL_RES* res = mysql_store_result(mysql_);
      if (res == nullptr) failed("mysql_store_result", sql);
      mysql_free_result(res);
    }
  }

  std::size_t read(const Step& step) {
    if (mysql_real_query(mysql_, step.sql.data(), step.sql.size()) != 0) failed("mysql_real_query", step.sql);
    // Stored, as the ODBC driver stores a forward-only result by default.
    MYSQL_RES* res = mysql_store_result(mysql_);
    if (res == nullptr) failed("mysql_store_result", step.sql);
    if (mysql_num_fields(res) != step.columns.size()) {
      mysql_free_result(res);
      fatal("Connector/C baseline: the result has another number of columns than ODBC described: " +
            step.sql);
    }
    std::size_t rows = 0;
    while (MYSQL_ROW row = mysql_fetch_row(res)) {
      unsigned long* lengths = mysql_fetch_lengths(res);
      ++rows;
      for (std::size_t i = 0; i < step.columns.size(); ++i) {
        if (row[i] == nullptr) continue;
        switch (step.columns[i]) {
          case ColumnType::Double:
            sink_ += std::strtod(row[i], nullptr);
            break;
          case ColumnType::Integer:
            sink_ += static_cast<double>(std::strtol(row[i], nullptr, 10));
            break;
          case ColumnType::Text:
            sink_ += static_cast<double>(lengths[i]);
            break;
        }
      }
    }
    mysql_free_result(res);
    return rows;
  }

  MYSQL_STMT* prepare(const Step& step) {
    MYSQL_STMT* st = mysql_stmt_init(mysql_);
    if (st == nullptr) failed("mysql_stmt_init", step.sql);
    if (mysql_stmt_prepare(st, step.sql.data(), step.sql.size()) != 0) {
      std::string error = mysql_stmt_error(st);
      mysql_stmt_close(st);
      fatal("Connector/C baseline: mysql_stmt_prepare failed: " + error + "\n  statement: " + step.sql);
    }
    return st;
  }

  void write(const Step& step) {
    if (step.params.size() > kMaxParams) fatal("Connector/C baseline: too many parameters");
    MYSQL_STMT* st = prepare(step);
    std::memset(binds_.data(), 0, sizeof(MYSQL_BIND) * step.params.size());
    for (std::size_t i = 0; i < step.params.size(); ++i) {
      // Input parameters only: the library reads the buffers, never writes them.
      Param& p = const_cast<Param&>(step.params[i]);
      MYSQL_BIND& b = binds_[i];
      switch (p.kind) {
        case Param::Kind::Double:
          b.buffer_type = MYSQL_TYPE_DOUBLE;
          b.buffer = &p.number;
          break;
        case Param::Kind::Integer:
          b.buffer_type = MYSQL_TYPE_LONG;
          b.buffer = &p.integer;
          break;
        case Param::Kind::Text:
          lengths_[i] = p.text.size();
          b.buffer_type = MYSQL_TYPE_STRING;
          b.buffer = p.text.data();
          b.buffer_length = p.text.size();
          b.length = &lengths_[i];
          break;
        case Param::Kind::Timestamp: {
          MYSQL_TIME& t = times_[i];
          std::memset(&t, 0, sizeof t);
          t.year = static_cast<unsigned>(p.year);
          t.month = static_cast<unsigned>(p.month);
          t.day = static_cast<unsigned>(p.day);
          t.hour = static_cast<unsigned>(p.hour);
          t.minute = static_cast<unsigned>(p.minute);
          t.second = static_cast<unsigned>(p.second);
          t.time_type = MYSQL_TIMESTAMP_DATETIME;
          b.buffer_type = MYSQL_TYPE_DATETIME;
          b.buffer = &t;
          break;
        }
      }
    }
    if (mysql_stmt_bind_param(st, binds_.data()) != 0 || mysql_stmt_execute(st) != 0) {
      std::string error = mysql_stmt_error(st);
      mysql_stmt_close(st);
      fatal("Connector/C baseline: a prepared write failed: " + error + "\n  statement: " + step.sql);
    }
    mysql_stmt_close(st);
  }

  MYSQL* mysql_;
  std::array<MYSQL_BIND, kMaxParams> binds_{};
  std::array<unsigned long, kMaxParams> lengths_{};
  std::array<MYSQL_TIME, kMaxParams> times_{};
  double sink_ = 0;  // keeps the reads observable
};

}  // namespace

std::unique_ptr<Baseline> connectorCBaseline(const ConnectionSettings& settings) {
  return std::make_unique<ConnectorCBaseline>(settings);
}

}  // namespace tovrand::bench
