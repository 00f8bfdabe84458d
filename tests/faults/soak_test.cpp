// Many calls mixing the members of the four classes, on one long-lived object per class and on objects
// created and released around single calls: every call answers as it did the first time, and the
// process's resident memory, the engine's ODBC handles and the server's sessions and prepared
// statements do not grow with the calls. TOVRAND_SOAK_CALLS sets the number of calls (make reliability
// runs 100,000; the default is a short run).
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "component/Component.h"
#include "entities/Collection.h"
#include "entities/Entities.h"
#include "frame/Invoke.h"
#include "pmrph/clsDataPMrph.h"
#include "pmrpi/clsDataPMrpi.h"
#include "porder/clsDataPOrder.h"
#include "porderchk/clsDataPOrderChk.h"
#include "tests/faults/OdbcHandles.h"
#include "tests/support/Printers.h"
#include "tests/support/TestDatabase.h"
#include "vb/Value.h"

namespace tovrand::test {
namespace {

VbDate date(int y, int m, int d, int h = 0, int mi = 0, int s = 0) {
  return makeDate({y, m, d, h, mi, s});
}

long residentKiB() {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.rfind("VmRSS:", 0) == 0) return std::atol(line.c_str() + 6);
  }
  return 0;
}

int soakCalls() {
  const char* text = std::getenv("TOVRAND_SOAK_CALLS");
  int calls = text != nullptr ? std::atoi(text) : 0;
  return calls > 0 ? calls : 3000;
}

// The objects a call is made on: the long-lived ones, or ones created for it alone.
struct Objects {
  clsDataPOrder& porder;
  clsDataPOrderChk& review;
  clsDataPMrph& pmrph;
  clsDataPMrpi& pmrpi;
};

// One call of a member, with the status it answers on the sample data whenever it is made.
struct SoakCall {
  const MemberInfo& member;
  std::int16_t status;
  std::function<std::int16_t(Objects&)> call;
};

Collection cupMaterials() {
  Collection lines;
  for (const char* item : {"RM-2001", "RM-2002", "RM-2003", "PK-2004", "PK-2005"}) {
    clsEntPMrpi line;
    line.F_ItemNo(item);
    line.F_Dosage(1.0);
    line.F_Waste(0.01);
    line.F_LeadTime(5);
    lines.Add(line);
  }
  return lines;
}

// Calls whose answers do not change as they are repeated: reads, rewrites of the same figures, and a
// planning that is written and released again.
std::vector<SoakCall> soakCalls(std::int64_t& porderNumber) {
  return {
      {memberOf<&clsDataPOrder::QueryItem>(), 1,
       [](Objects& o) {
         clsEntPOrder e;
         e.F_ProdNo(2026100001.0);
         return o.porder.QueryItem(e);
       }},
      {memberOf<&clsDataPOrder::QueryByStrSql>(), 1,
       [](Objects& o) {
         Collection c;
         std::string where = " where F_CustNo='C003' order by F_ProdNo";
         return o.porder.QueryByStrSql(c, where);
       }},
      {memberOf<&clsDataPOrder::GetALLChkList>(), 1,
       [](Objects& o) {
         Collection c;
         return o.porder.GetALLChkList(c);
       }},
      {memberOf<&clsDataPOrder::CheckCustProdNo>(), 1,
       [](Objects& o) {
         clsEntPOrder e;
         return o.porder.CheckCustProdNo(e, "C005", 2026110001.0);
       }},
      {memberOf<&clsDataPOrder::QueryAllProdNo>(), 1,
       [](Objects& o) {
         std::vector<double> numbers;
         return o.porder.QueryAllProdNo(numbers);
       }},
      {memberOf<&clsDataPOrder::UpdateOrderOutNo>(), 1,
       [](Objects& o) {
         clsEntPOrder e;
         e.F_ProdNo(2026100002.0);
         e.F_OrderOutNo(26110002.0);
         e.F_ProdDate(date(2026, 11, 22));
         e.F_ProdQty(0.0);
         return o.porder.UpdateOrderOutNo(e);
       }},
      {memberOf<&clsDataPOrder::UpdateRecord>(), 1,
       [](Objects& o) {
         clsEntPOrder e;
         e.F_ProdNo(2026100001.0);
         e.F_OrderMode("自制");
         e.F_ItemNo("FG-1001");
         e.F_CustNo("C003");
         e.F_OrdQty(1500.0);
         e.F_ProdQty(600.0);
         e.F_ProdDate(date(2026, 11, 18));
         return o.porder.UpdateRecord(e);
       }},
      {memberOf<&clsDataPOrder::AddRecord>(), 1,
       [&porderNumber](Objects& o) {
         clsEntPOrder e;
         e.F_ProdNo(static_cast<double>(++porderNumber));
         e.F_CustNo("C001");
         e.F_ItemNo("FG-1001");
         e.F_OrdQty(10.0);
         return o.porder.AddRecord(e);
       }},
      {memberOf<&clsDataPOrderChk::QueryAll>(), 0,  // never stores a success value
       [](Objects& o) {
         clsEntPOrderChk e;
         return o.review.QueryAll(e, 2026090001.0);
       }},
      {memberOf<&clsDataPOrderChk::QueryProdNoView>(), 1,
       [](Objects& o) {
         clsEntPOrderChk e;
         e.F_ProdNo(2026110001.0);
         return o.review.QueryProdNoView(e);
       }},
      {memberOf<&clsDataPOrderChk::JudgeExits>(), 1,
       [](Objects& o) { return o.review.JudgeExits("FG-1001"); }},
      {memberOf<&clsDataPOrderChk::QuerySalerID>(), 1,
       [](Objects& o) {
         clsEntBOrderh e;
         e.F_ProdNo(2026100001.0);
         return o.review.QuerySalerID(e);
       }},
      {memberOf<&clsDataPOrderChk::UpdateRecord>(), 1,
       [](Objects& o) {
         clsEntPOrderChk e;
         e.F_ProdNo(2026110003.0);
         e.F_QCStd(1);
         e.F_QCNote("按企业标准Q/HM 012");
         e.F_QChecker("周涛");
         e.F_QCheckTime(date(2026, 11, 22, 10, 0));
         return o.review.UpdateRecord(e, "品保");
       }},
      {memberOf<&clsDataPMrph::QueryByIDForPur>(), 1,
       [](Objects& o) {
         Collection c;
         return o.pmrph.QueryByIDForPur(c, 0, 0, 4, "");
       }},
      {memberOf<&clsDataPMrph::QueryProdNoRecord>(), 1,
       [](Objects& o) {
         clsEntPMrph e;
         e.F_ProdNo(2026110001.0);
         return o.pmrph.QueryProdNoRecord(e);
       }},
      {memberOf<&clsDataPMrph::AccountData>(), 1,
       [](Objects& o) {
         clsEntPMrph e;
         e.F_ProdNo(2026110001.0);
         e.F_ItemNo("FG-1001");
         double C1 = 0, A = 0, P = 0, M = 0, K = 0, S = 0, SQ = 0, AT = 0, BN = 0, ATi = 0;
         return o.pmrph.AccountData(e, C1, A, P, M, K, S, SQ, AT, BN, ATi);
       }},
      {memberOf<&clsDataPMrph::UpdateRecord>(), 1,
       [](Objects& o) {
         clsEntPMrph e;
         e.F_ProdNo(2026100003.0);
         e.F_ItemNo("FG-1002");
         e.F_OrderQty(300.0);
         e.F_SafeQty(20.0);
         e.F_NeedQty(300.0);
         e.F_PlanPurQty(300.0);
         e.F_Status(1);
         return o.pmrph.UpdateRecord(e);
       }},
      {memberOf<&clsDataPMrph::AddRecord>(), 1,
       [](Objects& o) {
         clsEntPMrph e;
         e.F_ProdNo(2026110001.0);
         e.F_OrderQty(5200.0);
         e.F_SafeQty(200.0);
         e.F_NeedQty(5200.0);
         e.F_PlanPurQty(0.0);
         return o.pmrph.AddRecord(e);
       }},
      {memberOf<&clsDataPMrph::AddRecord1>(), 1,
       [](Objects& o) {
         clsEntPMrph e;
         e.F_ProdNo(2026110003.0);
         e.F_ItemNo("FG-1001");
         Collection lines = cupMaterials();
         return o.pmrph.AddRecord1(e, lines);
       }},
      {memberOf<&clsDataPMrpi::DeleteAllPMrpiRecord>(), 1,
       [](Objects& o) { return o.pmrpi.DeleteAllPMrpiRecord(2026110003.0); }},
      {memberOf<&clsDataPMrpi::QueryByID>(), 1,
       [](Objects& o) {
         clsEntPMrpi e;
         e.F_ProdNo(2026110001.0);
         e.F_ItemNo("RM-2002");
         return o.pmrpi.QueryByID(e);
       }},
      {memberOf<&clsDataPMrpi::QueryByIDForPur>(), 1,
       [](Objects& o) {
         Collection c;
         return o.pmrpi.QueryByIDForPur(c, 2026100001.0, 2026119999.0, 1, "RM");
       }},
      {memberOf<&clsDataPMrpi::QueryItemNo>(), 1,
       [](Objects& o) {
         Collection c;
         return o.pmrpi.QueryItemNo(c, "FG-1002", "1");
       }},
      {memberOf<&clsDataPMrpi::QueryEItemNo>(), 1,
       [](Objects& o) {
         clsEntEItem e;
         e.F_ItemNo("RM-2006");
         return o.pmrpi.QueryEItemNo(e);
       }},
      {memberOf<&clsDataPMrpi::AddRecord>(), 1,
       [](Objects& o) {
         clsEntPMrpi e;
         e.F_ProdNo(2026110001.0);
         e.F_ItemNo("PK-2005");
         e.F_Dosage(0.0417);
         e.F_SafeQty(50.0);
         e.F_RequestQty(216.84);
         e.F_LeadTime(3);
         return o.pmrpi.AddRecord(e);
       }},
      {memberOf<&clsDataPMrpi::UpdatePMrpiStatus>(), 0,  // never stores a success value
       [](Objects& o) {
         clsEntPMrpi e;
         e.F_ProdNo(2026110001.0);
         e.F_ItemNo("RM-2001");
         e.F_Status(1);
         return o.pmrpi.UpdatePMrpiStatus(e);
       }},
      {memberOf<&clsDataPMrpi::UpdatePMrphStatus>(), 1,
       [](Objects& o) {
         clsEntPMrph e;
         e.F_ProdNo(2026110001.0);
         e.F_Status(1);
         return o.pmrpi.UpdatePMrphStatus(e);
       }},
      {memberOf<&clsDataPMrpi::QueryAllNullRecord>(), 1,
       [](Objects& o) {
         Collection c;
         return o.pmrpi.QueryAllNullRecord(c);
       }},
      {memberOf<&clsDataPOrderChk::QueryBOrderiBkQty>(), 1,
       [](Objects& o) {
         clsEntBOrderi e;
         e.F_ProdNo(2026100001.0);
         e.F_ItemNo("RM-2001");
         return o.review.QueryBOrderiBkQty(e);
       }},
      {memberOf<&clsDataPOrderChk::QueryMonthDate>(), 0,
       [](Objects& o) {
         Collection c;
         return o.review.QueryMonthDate(c);
       }},
      {memberOf<&clsDataPOrderChk::QueryProdNo>(), 0,
       [](Objects& o) {
         Collection c;
         return o.review.QueryProdNo(c);
       }},
      {memberOf<&clsDataPOrderChk::AddRecord>(), 1,
       [](Objects& o) {
         Collection lines;
         clsEntBOrderi line;
         line.F_OrderNo(2611015.0);
         line.F_No("1");
         line.F_ItemNo("FG-1001");
         line.F_CItemNo("HM-CUP500");
         line.F_OrderQty(2500.0);
         line.F_DeliverDate(makeDate({2027, 1, 8, 0, 0, 0}));
         lines.Add(line);
         return o.review.AddRecord(lines, "2611015", "C001", "HM-PO-261118", 4);
       }},
      {memberOf<&clsDataPOrderChk::QureyDatabase>(), 1,
       [](Objects& o) {
         Collection c;
         return o.review.QureyDatabase(
             "select h.F_OrderNo, h.F_OrderDate, h.F_CorderNo, h.F_CustNo, i.F_ProdNo, i.F_ItemNo from "
             "T_BOrderh h, "
             "T_BOrderi i where h.F_OrderNo = i.F_OrderNo",
             c);
       }},
      {memberOf<&clsDataPMrph::QueryBOrderhRecordset>(), 0,
       [](Objects& o) {
         clsEntBOrderh e;
         return o.pmrph.QueryBOrderhRecordset(e, 2026110001.0);
       }},
      {memberOf<&clsDataPMrph::QueryPMrphRecordset>(), 1,
       [](Objects& o) {
         Collection c;
         std::string sql = "select * from T_PMrph where F_Status = 1";
         return o.pmrph.QueryPMrphRecordset(c, sql);
       }},
      {memberOf<&clsDataPMrph::QueryPMrphStatus>(), 1,
       [](Objects& o) {
         clsEntPMrph e;
         e.F_ProdNo(2026110001.0);
         return o.pmrph.QueryPMrphStatus(e);
       }},
      {memberOf<&clsDataPMrph::QueryByItemNo>(), 1,
       [](Objects& o) {
         clsEntPMrph e;
         e.F_ProdNo(2026110001.0);
         return o.pmrph.QueryByItemNo(e);
       }},
      {memberOf<&clsDataPMrph::QueryByDeliverDate>(), 1,
       [](Objects& o) {
         Collection c;
         return o.pmrph.QueryByDeliverDate(c, makeDate({2026, 11, 1, 0, 0, 0}),
                                           makeDate({2027, 1, 31, 0, 0, 0}), 1);
       }},
      {memberOf<&clsDataPMrph::QueryMonthDate>(), 1,
       [](Objects& o) {
         Collection c;
         return o.pmrph.QueryMonthDate(c);
       }},
      {memberOf<&clsDataPMrph::QueryProdNo>(), 1,
       [](Objects& o) {
         Collection c;
         return o.pmrph.QueryProdNo(c);
       }},
      {memberOf<&clsDataPMrph::QueryStatus>(), 1,
       [](Objects& o) {
         clsEntPOrder e;
         e.F_ProdNo(2026100003.0);
         return o.pmrph.QueryStatus(e);
       }},
      {memberOf<&clsDataPMrpi::QueryPMrpiStatus>(), 1,
       [](Objects& o) {
         Collection c;
         return o.pmrpi.QueryPMrpiStatus(c, 2026100001.0);
       }},
      {memberOf<&clsDataPMrpi::UpdateRecord>(), 1,
       [](Objects& o) {
         clsEntPMrpi e;
         e.F_ProdNo(2026100001.0);
         e.F_ItemNo("PK-2005");
         e.F_Dosage(0.0417);
         e.F_Waste(0.0);
         e.F_SafeQty(50.0);
         e.F_RequestQty(10.0);
         e.F_LeadTime(3);
         e.F_Status(1);
         return o.pmrpi.UpdateRecord(e);
       }},
      {memberOf<&clsDataPMrpi::QueryByDeliverDate>(), 1,
       [](Objects& o) {
         Collection c;
         return o.pmrpi.QueryByDeliverDate(c, makeDate({2026, 11, 1, 0, 0, 0}),
                                           makeDate({2027, 1, 31, 0, 0, 0}), 1);
       }},
      {memberOf<&clsDataPMrpi::GetRecordByCondition>(), 1,
       [](Objects& o) {
         clsEntEItem item;
         clsEntPMrph header;
         header.F_ProdNo(2026110001.0);
         header.F_ItemNo("RM-2001");
         return o.pmrpi.GetRecordByCondition(item, header);
       }},
      {memberOf<&clsDataPMrpi::GetItemNoByProdNo>(), 1,
       [](Objects& o) {
         Collection c;
         clsEntPMrph header;
         header.F_ProdNo(2026100003.0);
         return o.pmrpi.GetItemNoByProdNo(c, header);
       }},
      {memberOf<&clsDataPMrpi::QueryItemNoRecord>(), 1,
       [](Objects& o) {
         Collection c;
         return o.pmrpi.QueryItemNoRecord(c, "2026110001");
       }},
      // The two Variant members answer Empty: 1 stands for it.
      {memberOf<&clsDataPMrpi::getProdNoItemNo>(), 1,
       [](Objects& o) -> std::int16_t {
         Collection c;
         return o.pmrpi.getProdNoItemNo(c, "202611").isEmpty() ? 1 : 0;
       }},
      {memberOf<&clsDataPMrpi::getProdNoItemNoByPMrpi>(), 1,
       [](Objects& o) -> std::int16_t {
         Collection c;
         return o.pmrpi.getProdNoItemNoByPMrpi(c, "2026110001").isEmpty() ? 1 : 0;
       }},
  };
}

// What the process and the server hold at one moment.
struct Holdings {
  long residentKiB = 0;
  OdbcHandles handles;
  std::string sessions, preparedStatements;
};

TEST(SoakMix, CallsEveryMemberOfTheFourClasses) {
  std::int64_t porderNumber = 0;
  const std::vector<SoakCall> mix = soakCalls(porderNumber);
  for (const ClassInfo& cls : componentClasses())
    for (const MemberInfo& m : cls.members)
      EXPECT_TRUE(std::any_of(mix.begin(), mix.end(), [&](const SoakCall& c) { return &c.member == &m; }))
          << cls.name << "." << m.name << " has no call in the mix";
}

class Soak : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    loadSample();
  }
  Holdings holdings() {
    return {residentKiB(), odbcHandlesHeld(),
            scalar("select variable_value from information_schema.global_status where variable_name = "
                   "'THREADS_CONNECTED'"),
            scalar("select variable_value from information_schema.global_status where variable_name = "
                   "'PREPARED_STMT_COUNT'")};
  }
};

TEST_F(Soak, ManyCallsOnLongLivedAndShortLivedObjectsHoldNoMoreMemoryOrHandlesAtTheEnd) {
  // No statement trace: a long run would keep every statement it sent.
  setTraceSink(nullptr);
  const int calls = soakCalls();
  std::int64_t porderNumber = 2026119000;
  const std::vector<SoakCall> mix = soakCalls(porderNumber);
  auto h = host();

  const OdbcHandles idle = odbcHandlesHeld();
  Holdings start{}, warm{};
  {
    clsDataPOrder porder(h);
    clsDataPOrderChk review(h);
    clsDataPMrph pmrph(h);
    clsDataPMrpi pmrpi(h);
    Objects longLived{porder, review, pmrph, pmrpi};
    start = holdings();

    // Every tenth call is made on objects created for it and released after it.
    auto makeCall = [&](int i) {
      const SoakCall& c = mix[static_cast<std::size_t>(i) % mix.size()];
      std::int16_t result = 0;
      if (i % 10 == 9) {
        clsDataPOrder p(h);
        clsDataPOrderChk r(h);
        clsDataPMrph ph(h);
        clsDataPMrpi pi(h);
        Objects shortLived{p, r, ph, pi};
        result = c.call(shortLived);
      } else {
        result = c.call(longLived);
      }
      if (result != c.status || !messages().messages().empty()) {
        ADD_FAILURE() << "call " << i << ", " << componentClassOf(c.member).name << "." << c.member.name
                      << ": " << result << " (expected " << c.status << ")"
                      << (messages().messages().empty() ? ""
                                                        : ", showed " + messages().messages().front().text);
        messages().take();
        return false;
      }
      return true;
    };

    // A warm-up lets the allocator, the driver and the server settle before the figures are taken.
    const int warmUp = std::max<int>(static_cast<int>(mix.size()) * 20, calls / 10);
    auto began = std::chrono::steady_clock::now();
    int failed = 0;
    for (int i = 0; i < warmUp; ++i) failed += makeCall(i) ? 0 : 1;
    warm = holdings();
    for (int i = warmUp; i < warmUp + calls && failed < 10; ++i) failed += makeCall(i) ? 0 : 1;
    double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
    Holdings end = holdings();

    auto line = [](const char* when, const Holdings& at) {
      std::printf(
          "[ soak     ] %-16s resident %6ld KiB, ODBC handles %lld environment(s) %lld connection(s) %lld "
          "statement(s), server sessions %s, prepared statements %s\n",
          when, at.residentKiB, static_cast<long long>(at.handles.environments),
          static_cast<long long>(at.handles.connections), static_cast<long long>(at.handles.statements),
          at.sessions.c_str(), at.preparedStatements.c_str());
    };
    std::printf(
        "[ soak     ] %d calls after %d to warm up, %.1f s (%.0f calls/s), %zu members, every tenth on new "
        "objects\n",
        calls, warmUp, seconds, (calls + warmUp) / seconds, mix.size());
    line("at the start", start);
    line("after warm-up", warm);
    line("at the end", end);

    EXPECT_EQ(failed, 0);
    EXPECT_EQ(end.handles, warm.handles);
    EXPECT_EQ(end.sessions, warm.sessions);
    EXPECT_EQ(end.preparedStatements, warm.preparedStatements);
#if !defined(__SANITIZE_ADDRESS__)
    // The allocator's own slack aside, nothing may grow with the calls: a leak of 64 bytes a call
    // would pass this bound only in runs too short to show it.
    EXPECT_LE(end.residentKiB - warm.residentKiB, 4096 + calls / 16) << "resident memory grew";
#endif
  }
  // With every object released, the engine holds what it held before they were created.
  EXPECT_EQ(odbcHandlesHeld(), idle);
}

}  // namespace
}  // namespace tovrand::test
