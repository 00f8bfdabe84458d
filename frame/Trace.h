#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tovrand {

// Who sent a statement: the component's method (its text is the contract) or the recordset engine
// (the INSERT/UPDATE that stores a recordset edit).
enum class StatementOrigin { Method, Engine };

struct TracedStatement {
  std::string sql;
  StatementOrigin origin = StatementOrigin::Method;
  bool operator==(const TracedStatement&) const = default;
};

class TraceSink {
 public:
  virtual ~TraceSink() = default;
  virtual void statement(std::string_view sql, StatementOrigin origin) = 0;
};

class RecordingTraceSink final : public TraceSink {
 public:
  void statement(std::string_view sql, StatementOrigin origin) override {
    statements_.push_back({std::string(sql), origin});
  }
  const std::vector<TracedStatement>& statements() const { return statements_; }
  // The method's own statements only, in order.
  std::vector<std::string> methodStatements() const;
  void clear() { statements_.clear(); }

 private:
  std::vector<TracedStatement> statements_;
};

// The process's trace sink (none by default). Every statement sent is reported to it in order.
TraceSink* traceSink();
void setTraceSink(TraceSink* sink);

}  // namespace tovrand
