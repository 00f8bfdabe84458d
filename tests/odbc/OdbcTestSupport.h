#pragma once

#include <functional>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "frame/DbConnection.h"
#include "frame/Recordset.h"
#include "tests/support/TestDatabase.h"
#include "vb/VbError.h"

namespace tovrand::test {

// The error a call raises; a test failure when it raises none.
inline VbError errorOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const VbError& e) {
    return e;
  }
  ADD_FAILURE() << "expected a VbError";
  return VbError(0, "no error");
}

inline const char* kNoCurrentRecordText =
    "Either BOF or EOF is True, or the current record has been deleted. Requested operation requires a "
    "current "
    "record.";
inline const char* kItemNotFoundText =
    "Item cannot be found in the collection corresponding to the requested name or ordinal.";
inline const char* kClosedText = "Operation is not allowed when the object is closed.";
inline const char* kMultipleStepText = "Multiple-step operation generated errors. Check each status value.";

// A DatabaseTest with one open connection holder of the native host.
class RecordsetTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    host_ = host();
    holder_ = host_->newDbConnection();
    holder_->OpenConnection();
    trace().clear();
  }
  void TearDown() override {
    if (holder_) holder_->CloseConnection();
    holder_.reset();
    host_.reset();
    DatabaseTest::TearDown();
  }

  std::shared_ptr<Connection> conn() { return holder_->Connection(); }
  std::shared_ptr<Recordset> newRecordset() { return host_->newRecordset(); }
  // A read-form recordset on `sql`.
  std::shared_ptr<Recordset> read(const std::string& sql) {
    auto rs = newRecordset();
    rs->Source = sql;
    rs->ActiveConnection = conn();
    rs->Open();
    return rs;
  }
  // An insert-form recordset (keyset, optimistic, properties kept) on `sql`.
  std::shared_ptr<Recordset> keyset(const std::string& sql) {
    auto rs = newRecordset();
    rs->CursorType = adOpenKeyset;
    rs->LockType = adLockOptimistic;
    rs->Open(sql, conn(), adOpenUnspecified, adLockUnspecified, adCmdText);
    return rs;
  }

  std::shared_ptr<Host> host_;
  std::shared_ptr<DbConnection> holder_;
};

}  // namespace tovrand::test
