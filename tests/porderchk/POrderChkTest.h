#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "entities/Entities.h"
#include "frame/Messages.h"
#include "frame/VbError.h"
#include "odbc/NativeHost.h"
#include "porderchk/clsDataPOrderChk.h"
#include "tests/support/TestDatabase.h"

namespace tovrand {

// Readable failures for the records the tests compare.
inline void PrintTo(const Message& m, std::ostream* os) {
  *os << "{\"" << m.text << "\", " << m.style << ", \"" << m.title << "\"}";
}
inline void PrintTo(const TracedStatement& s, std::ostream* os) {
  *os << (s.origin == StatementOrigin::Engine ? "engine: " : "method: ") << s.sql;
}

}  // namespace tovrand

namespace tovrand::test {

// A clsDataPOrderChk on this test's fresh database, with the trace and the messages starting empty.
class POrderChkTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    object_ = std::make_unique<clsDataPOrderChk>(hostWith(options()));
    trace().clear();
  }
  void TearDown() override {
    object_.reset();
    DatabaseTest::TearDown();
  }
  // The query options of the object's connection ("" keeps the fixture's server date).
  virtual std::string options() const { return ""; }

  // A native host on this test's database with these query options, its messages going to messages().
  std::shared_ptr<Host> hostWith(const std::string& options) {
    std::shared_ptr<MessageSink> sink(std::shared_ptr<void>(), &messages());
    return std::make_shared<NativeHost>(ConnectionSettings::parse(dsn(options)), sink);
  }

  clsDataPOrderChk& chk() { return *object_; }
  std::vector<std::string> sql() { return trace().methodStatements(); }

 private:
  std::unique_ptr<clsDataPOrderChk> object_;
};

inline VbDate date(int y, int m, int d, int h = 0, int mi = 0, int s = 0) {
  return makeDate({y, m, d, h, mi, s});
}

inline std::vector<Message> oneMessage(const std::string& text) {
  return {Message{text, vbInformation, kTitleQuenta}};
}

inline TracedStatement engine(const std::string& sql) {
  return {sql, StatementOrigin::Engine};
}
inline TracedStatement method(const std::string& sql) {
  return {sql, StatementOrigin::Method};
}

}  // namespace tovrand::test
