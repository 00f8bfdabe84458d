#pragma once

#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "entities/Collection.h"
#include "entities/Entities.h"
#include "frame/Messages.h"
#include "pmrpi/clsDataPMrpi.h"
#include "tests/support/ExpectVbError.h"
#include "tests/support/Printers.h"
#include "tests/support/TestDatabase.h"
#include "vb/VbError.h"

namespace tovrand::test {

// A clsDataPMrpi on this test's fresh database, with the trace and the messages starting empty.
class PMrpiTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    object_ = std::make_unique<clsDataPMrpi>(host());
    trace().clear();
  }
  void TearDown() override {
    object_.reset();
    DatabaseTest::TearDown();
  }

  clsDataPMrpi& pmrpi() { return *object_; }
  // The method's own statements, in order.
  std::vector<std::string> sql() { return trace().methodStatements(); }
  // Every statement sent, the engine's INSERT/UPDATE included, in order.
  std::vector<TracedStatement> statements() { return trace().statements(); }
  // The server's description of a missing table of this test's database.
  std::string missingTable(const std::string& table) const {
    return "Table '" + database() + "." + table + "' doesn't exist";
  }
  // The server's description of a statement its parser stopped at `near` (the text it quotes).
  static std::string syntaxError(const std::string& near) {
    return "You have an error in your SQL syntax; check the manual that corresponds to your MariaDB server "
           "version for the right syntax to use near '" +
           near + "' at line 1";
  }

 private:
  std::unique_ptr<clsDataPMrpi> object_;
};

inline TracedStatement method(const std::string& sql) {
  return {sql, StatementOrigin::Method};
}
inline TracedStatement engine(const std::string& sql) {
  return {sql, StatementOrigin::Engine};
}

// A message box of the information style with the component's title.
inline Message information(const std::string& text) {
  return {text, vbInformation, kTitleQuenta};
}

inline VbDate date(int y, int m, int d, int h = 0, int mi = 0, int s = 0) {
  return makeDate({y, m, d, h, mi, s});
}

// A planning line or header given only its production number and material, as callers pass them.
inline clsEntPMrpi lineKey(double prodNo, const std::string& itemNo) {
  clsEntPMrpi e;
  e.F_ProdNo(prodNo);
  e.F_ItemNo(itemNo);
  return e;
}
inline clsEntPMrph headerKey(double prodNo, const std::string& itemNo) {
  clsEntPMrph e;
  e.F_ProdNo(prodNo);
  e.F_ItemNo(itemNo);
  return e;
}

// Entities as one line of text, for comparing whole lists.
inline std::string describeLine(const clsEntPMrpi& e) {
  return CStr(e.F_ProdNo()) + "|" + e.F_ItemNo() + "|" + CStr(e.F_Dosage()) + "|" + CStr(e.F_Waste()) + "|" +
         CStr(e.F_SafeQty()) + "|" + CStr(e.F_RequestQty()) + "|" + CStr(e.F_LeadTime()) + "|" +
         CStr(e.F_Status());
}
inline std::string describeHeader(const clsEntPMrph& e) {
  return CStr(e.F_ProdNo()) + "|" + e.F_ItemNo() + "|" + CStr(e.F_OrderQty()) + "|" + CStr(e.F_SafeQty()) +
         "|" + CStr(e.F_NeedQty()) + "|" + CStr(e.F_PlanPurQty()) + "|" + CStr(e.F_Status());
}
inline std::string describeBom(const clsEntEBom& e) {
  return e.F_GoodsNo() + "|" + e.F_PartNo() + "|" + CStr(e.F_Dosage()) + "|" + CStr(e.F_Waste()) + "|" +
         e.F_RequestQty() + "|" + CStr(e.F_LeadDay());
}
inline std::string describeItem(const clsEntEItem& e) {
  return e.F_ItemNo() + "|" + e.F_Type() + "|" + e.F_ItemName() + "|" + e.F_ItemDesc() + "|" + e.F_Unit();
}

// The elements of a collection from position `from` (1-based) on, each described.
template <class T, class Describe>
std::vector<std::string> describeAll(const Collection& c, Describe describe, int from = 1) {
  std::vector<std::string> out;
  for (int i = from; i <= c.Count(); ++i) out.push_back(describe(T(c.Item(i))));
  return out;
}
// The same, sorted: for lists the server returns in no defined order.
template <class T, class Describe>
std::vector<std::string> describeSorted(const Collection& c, Describe describe, int from = 1) {
  std::vector<std::string> out = describeAll<T>(c, describe, from);
  std::sort(out.begin(), out.end());
  return out;
}

}  // namespace tovrand::test
