// The protocol's floor: the same statements through bare MariaDB Connector/C calls (the text protocol
// for the method's texts, prepared statements kept per text where the engine stores a row).
#include <mysql.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <map>

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
  ~ConnectorCBaseline() override {
    for (auto& [sql, st] : prepared_) mysql_stmt_close(st);
    mysql_close(mysql_);
  }
  ConnectorCBaseline(const ConnectorCBaseline&) = delete;
  ConnectorCBaseline& operator=(const ConnectorCBaseline&) = delete;

  const char* name() const override { return "Connector/C"; }

  std::size_t run(const Step& step) override {
    switch (step.form) {
      case Step::Form::Query:
        return read(step);
      case Step::Form::Execute:
      case Step::Form::Buffered:
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
    // Stored, as the ODBC driver stores a forward-only result.
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
        switch (step.columns[i].kind) {
          case ColumnType::Kind::Double:
          case ColumnType::Kind::BigInt:
            sink_ += std::strtod(row[i], nullptr);
            break;
          case ColumnType::Kind::Integer:
            sink_ += static_cast<double>(std::strtol(row[i], nullptr, 10));
            break;
          case ColumnType::Kind::Text:
            sink_ += static_cast<double>(lengths[i]);
            break;
        }
      }
    }
    mysql_free_result(res);
    return rows;
  }

  MYSQL_STMT* prepared(const Step& step) {
    MYSQL_STMT*& st = prepared_[step.sql];
    if (st != nullptr) return st;
    st = mysql_stmt_init(mysql_);
    if (st == nullptr) failed("mysql_stmt_init", step.sql);
    if (mysql_stmt_prepare(st, step.sql.data(), step.sql.size()) != 0) {
      fatal("Connector/C baseline: mysql_stmt_prepare failed: " + std::string(mysql_stmt_error(st)) +
            "\n  statement: " + step.sql);
    }
    return st;
  }

  void write(const Step& step) {
    if (step.values.size() > kMaxParams) fatal("Connector/C baseline: too many parameters");
    MYSQL_STMT* st = prepared(step);
    std::memset(binds_.data(), 0, sizeof(MYSQL_BIND) * step.values.size());
    for (std::size_t i = 0; i < step.values.size(); ++i) {
      const Value& v = step.values[i];
      MYSQL_BIND& b = binds_[i];
      switch (v.type()) {
        case Value::Type::Double:
          numbers_[i] = v.dbl();
          b.buffer_type = MYSQL_TYPE_DOUBLE;
          b.buffer = &numbers_[i];
          break;
        case Value::Type::Integer:
        case Value::Type::Long:
          integers_[i] = v.type() == Value::Type::Integer ? v.integer() : v.longValue();
          b.buffer_type = MYSQL_TYPE_LONG;
          b.buffer = &integers_[i];
          break;
        case Value::Type::String: {
          const std::string& text = v.str();
          lengths_[i] = text.size();
          b.buffer_type = MYSQL_TYPE_STRING;
          b.buffer = const_cast<char*>(text.data());
          b.buffer_length = text.size();
          b.length = &lengths_[i];
          break;
        }
        case Value::Type::Date: {
          DateParts parts = dateParts(v.date());
          MYSQL_TIME& t = times_[i];
          std::memset(&t, 0, sizeof t);
          t.year = static_cast<unsigned>(parts.year);
          t.month = static_cast<unsigned>(parts.month);
          t.day = static_cast<unsigned>(parts.day);
          t.hour = static_cast<unsigned>(parts.hour);
          t.minute = static_cast<unsigned>(parts.minute);
          t.second = static_cast<unsigned>(parts.second);
          t.time_type = MYSQL_TIMESTAMP_DATETIME;
          b.buffer_type = MYSQL_TYPE_DATETIME;
          b.buffer = &t;
          break;
        }
        default:
          b.buffer_type = MYSQL_TYPE_NULL;
          break;
      }
    }
    if (mysql_stmt_bind_param(st, binds_.data()) != 0 || mysql_stmt_execute(st) != 0) {
      fatal("Connector/C baseline: a prepared write failed: " + std::string(mysql_stmt_error(st)) +
            "\n  statement: " + step.sql);
    }
  }

  MYSQL* mysql_;
  std::map<std::string, MYSQL_STMT*> prepared_;
  std::array<MYSQL_BIND, kMaxParams> binds_{};
  std::array<unsigned long, kMaxParams> lengths_{};
  std::array<double, kMaxParams> numbers_{};
  std::array<int, kMaxParams> integers_{};
  std::array<MYSQL_TIME, kMaxParams> times_{};
  double sink_ = 0;  // keeps the reads observable
};

}  // namespace

std::unique_ptr<Baseline> connectorCBaseline(const ConnectionSettings& settings) {
  return std::make_unique<ConnectorCBaseline>(settings);
}

}  // namespace tovrand::bench
