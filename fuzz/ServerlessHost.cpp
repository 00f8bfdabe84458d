#include "fuzz/ServerlessHost.h"

#include <map>
#include <optional>

#include "frame/Recordset.h"
#include "frame/Trace.h"
#include "vb/VbError.h"

namespace tovrand::fuzz {

namespace {

// A connection holder that opens without a server and keeps ADO's rule that a holder that was
// never opened has no connection.
class ServerlessDbConnection final : public DbConnection {
 public:
  ConnectionPtr Connection() override {
    if (!connection_) throw VbError::of(vberr::kObjectNotSet);
    return connection_;
  }
  void OpenConnection() override { connection_ = std::make_shared<tovrand::Connection>(); }
  void CloseConnection() override { connection_.reset(); }

 private:
  ConnectionPtr connection_;
};

bool isUpdatable(int lock) {
  return lock == adLockPessimistic || lock == adLockOptimistic || lock == adLockBatchOptimistic;
}

// The recordset with ADO's errors for a closed recordset, a missing current row and an edit of a
// read-only one, over rows the stand-in server makes up.
class ServerlessRecordset final : public Recordset {
 public:
  explicit ServerlessRecordset(ServerAnswer answer) : answer_(answer) {}

  void Open(const std::string& source, const std::shared_ptr<Connection>& connection, int cursorType,
            int lockType, int) override {
    if (open_) throw VbError::of(vberr::kObjectOpen);
    if (!connection) throw VbError::of(vberr::kObjectNotSet);
    Source = source;
    ActiveConnection = connection;
    if (cursorType != adOpenUnspecified) CursorType = cursorType;
    if (lockType != adLockUnspecified) LockType = lockType;
    if (TraceSink* sink = traceSink()) sink->statement(source, StatementOrigin::Method);
    if (answer_ == ServerAnswer::Fails)
      throw VbError(vberr::kProviderError, "Lost connection to server during query");
    open_ = true;
    rows_ = answer_ == ServerAnswer::NullRow ? 1 : 0;
    position_ = 0;
    pending_.reset();
  }
  bool IsOpen() const override { return open_; }
  bool BOF() override {
    requireOpen();
    return rows_ == 0;
  }
  bool EOF_() override {
    requireOpen();
    return position_ >= rows_;
  }
  Value getField(std::string_view name) override {
    requireOpen();
    if (pending_) {
      const auto it = pending_->find(std::string(name));
      return it == pending_->end() ? Value::null() : it->second;
    }
    if (position_ >= rows_) throw VbError::of(vberr::kNoCurrentRecord);
    return Value::null();
  }
  void setField(std::string_view name, const Value& value) override {
    requireOpen();
    if (!isUpdatable(LockType)) throw VbError::of(vberr::kNotUpdatable);
    if (!pending_) {
      if (position_ >= rows_) throw VbError::of(vberr::kNoCurrentRecord);
      pending_.emplace();
    }
    (*pending_)[std::string(name)] = value;
  }
  void MoveNext() override {
    requireOpen();
    if (position_ >= rows_) throw VbError::of(vberr::kNoCurrentRecord);
    pending_.reset();
    ++position_;
  }
  void AddNew() override {
    requireOpen();
    if (!isUpdatable(LockType)) throw VbError::of(vberr::kNotUpdatable);
    pending_.emplace();
  }
  void Update() override {
    requireOpen();
    if (!pending_) return;
    if (TraceSink* sink = traceSink()) sink->statement("-- edit stored", StatementOrigin::Engine);
    pending_.reset();
  }
  void Close() override {
    requireOpen();
    open_ = false;
    pending_.reset();
  }

 private:
  void requireOpen() const {
    if (!open_) throw VbError::of(vberr::kObjectClosed);
  }

  ServerAnswer answer_;
  bool open_ = false;
  int rows_ = 0;
  int position_ = 0;
  std::optional<std::map<std::string, Value>> pending_;
};

}  // namespace

ServerAnswer serverAnswerOf(std::string_view script) {
  const std::string_view firstLine = script.substr(0, script.find('\n'));
  if (firstLine.find("# server: fails") == 0) return ServerAnswer::Fails;
  if (firstLine.find("# server: null row") == 0) return ServerAnswer::NullRow;
  return ServerAnswer::NoRows;
}

std::shared_ptr<DbConnection> ServerlessHost::newDbConnection() {
  return std::make_shared<ServerlessDbConnection>();
}

std::shared_ptr<Recordset> ServerlessHost::newRecordset() {
  return std::make_shared<ServerlessRecordset>(answer_);
}

Entity ServerlessHost::newEntity(const EntityClass& cls) {
  return newNativeEntity(cls);
}

}  // namespace tovrand::fuzz
