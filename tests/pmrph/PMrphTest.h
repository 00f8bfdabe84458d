#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "entities/Entities.h"
#include "frame/Messages.h"
#include "pmrph/clsDataPMrph.h"
#include "tests/support/TestDatabase.h"
#include "vb/VbError.h"

namespace tovrand::test {

// A clsDataPMrph on this test's fresh database, with the trace and the messages starting empty.
class PMrphTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    object_ = std::make_unique<clsDataPMrph>(host());
    trace().clear();
  }
  void TearDown() override {
    object_.reset();
    DatabaseTest::TearDown();
  }

  clsDataPMrph& pmrph() { return *object_; }
  std::vector<std::string> sql() { return trace().methodStatements(); }
  // The engine's INSERT and UPDATE statements, in order.
  std::vector<std::string> engineStatements() {
    std::vector<std::string> out;
    for (const TracedStatement& s : trace().statements())
      if (s.origin == StatementOrigin::Engine) out.push_back(s.sql);
    return out;
  }
  const std::vector<Message>& shown() { return messages().messages(); }
  // Exactly one message box was shown, with this style and title, its text holding `part` (the
  // server's own description around it is the server's wording).
  void expectOneMessage(int style, const std::string& title, const std::string& part) {
    ASSERT_EQ(shown().size(), 1u);
    EXPECT_EQ(shown()[0].style, style);
    EXPECT_EQ(shown()[0].title, title);
    EXPECT_NE(shown()[0].text.find(part), std::string::npos) << shown()[0].text;
  }

 private:
  std::unique_ptr<clsDataPMrph> object_;
};

inline VbDate date(int y, int m, int d, int h = 0, int mi = 0, int s = 0) {
  return makeDate({y, m, d, h, mi, s});
}

// A header entity with the two keys set.
inline clsEntPMrph header(double prodNo, const std::string& itemNo = "") {
  clsEntPMrph e;
  e.F_ProdNo(prodNo);
  e.F_ItemNo(itemNo);
  return e;
}

// The production numbers of a collection of headers, in order.
inline std::vector<double> prodNos(const Collection& c) {
  std::vector<double> out;
  for (std::int32_t i = 1; i <= c.Count(); ++i) out.push_back(clsEntPMrph(c.Item(i)).F_ProdNo());
  return out;
}

inline Message overflowMessage() {
  return {"Overflow", vbInformation, kTitleQuenta};
}

}  // namespace tovrand::test
