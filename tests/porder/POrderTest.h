#pragma once

#include <memory>
#include <string>
#include <vector>

#include "entities/Entities.h"
#include "frame/Messages.h"
#include "porder/clsDataPOrder.h"
#include "tests/support/TestDatabase.h"
#include "vb/VbError.h"

namespace tovrand::test {

// A clsDataPOrder on this test's fresh database, with the trace and the messages starting empty.
class POrderTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    object_ = std::make_unique<clsDataPOrder>(host(serverDate()));
    trace().clear();
  }
  void TearDown() override {
    object_.reset();
    DatabaseTest::TearDown();
  }
  // The server date the object's connection is pinned to ("" keeps the fixture's default).
  virtual std::string serverDate() const { return ""; }

  clsDataPOrder& porder() { return *object_; }
  std::vector<std::string> sql() { return trace().methodStatements(); }

 private:
  std::unique_ptr<clsDataPOrder> object_;
};

inline VbDate date(int y, int m, int d, int h = 0, int mi = 0, int s = 0) {
  return makeDate({y, m, d, h, mi, s});
}

}  // namespace tovrand::test
