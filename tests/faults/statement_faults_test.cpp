// The session of a writing member's object is cut just before each of its statements in turn, on the
// sample data: the member ends in its handled error with its handler's message, the statements before
// the cut are in the database and nothing after it, and the same object's next call does the whole
// job on a new session.
#include <gtest/gtest.h>

#include "entities/Collection.h"
#include "entities/Entities.h"
#include "host/NativeHost.h"
#include "pmrph/clsDataPMrph.h"
#include "pmrpi/clsDataPMrpi.h"
#include "porder/clsDataPOrder.h"
#include "porderchk/clsDataPOrderChk.h"
#include "tests/faults/StatementFaults.h"

namespace tovrand::test {
namespace {

VbDate date(int y, int m, int d, int h = 0, int mi = 0, int s = 0) {
  return makeDate({y, m, d, h, mi, s});
}

// The five materials of the vacuum cup's bill of material, as the planning screen passes them.
Collection cupMaterials() {
  struct Material {
    const char* item;
    double dosage, waste;
    std::int16_t leadTime;
  };
  Collection lines;
  for (const Material& m :
       {Material{"RM-2001", 0.32, 0.05, 7}, Material{"RM-2002", 1, 0.01, 5}, Material{"RM-2003", 1, 0.02, 3},
        Material{"PK-2004", 1, 0, 5}, Material{"PK-2005", 0.0417, 0, 3}}) {
    clsEntPMrpi line;
    line.F_ItemNo(m.item);
    line.F_Dosage(m.dosage);
    line.F_Waste(m.waste);
    line.F_LeadTime(m.leadTime);
    lines.Add(line);
  }
  return lines;
}

// The three lines of the new sales order 2611015, as the sales screen passes them for review.
Collection newSalesOrderLines() {
  struct Line {
    const char *no, *item, *customerItem;
    double quantity;
    VbDate due;
  };
  Collection lines;
  for (const Line& l : {Line{"1", "FG-1001", "HM-CUP500", 2500, date(2027, 1, 8)},
                        Line{"2", "FG-1002", "HM-KT17", 400, date(2027, 1, 8)},
                        Line{"3", "FG-1003", "HM-FC22", 700, date(2027, 1, 20)}}) {
    clsEntBOrderi line;
    line.F_OrderNo(2611015.0);
    line.F_No(l.no);
    line.F_ItemNo(l.item);
    line.F_CItemNo(l.customerItem);
    line.F_OrderQty(l.quantity);
    line.F_DeliverDate(l.due);
    lines.Add(line);
  }
  return lines;
}

// clsDataPOrder

TEST_F(StatementFaults, ProductionOrderAddRecordWithItsSalesLinesMarked) {
  clsDataPOrder porder(host());
  cutAtEveryStatement({"clsDataPOrder.AddRecord", [&] {
                         clsEntPOrder order;
                         order.F_ProdNo(2026110002.0);
                         order.F_CustNo("C004");
                         order.F_SalerID("刘洋");
                         order.F_ItemNo("FG-1003");
                         order.F_OrderMode("外发加工");
                         order.F_OrderNo(2611006.0);
                         order.F_COrderNo("YJ-20261109");
                         order.F_BalQty(800.0);
                         order.F_OrdQty(800.0);
                         order.F_DeliverDate(date(2026, 12, 20));
                         order.F_Status(2);
                         return porder.AddRecord(order);
                       }});
}

TEST_F(StatementFaults, ProductionOrderUpdateRecord) {
  clsDataPOrder porder(host());
  cutAtEveryStatement({"clsDataPOrder.UpdateRecord", [&] {
                         clsEntPOrder order;
                         order.F_ProdNo(2026100001.0);
                         order.F_OrderMode("自制");
                         order.F_OrderNo(2610004.0);
                         order.F_ItemNo("FG-1001");
                         order.F_CustNo("C003");
                         order.F_COrderNo("HT-1008-A");
                         order.F_InQty(600.0);
                         order.F_InDate(date(2026, 11, 21, 16, 30));
                         order.F_BalQty(900.0);
                         order.F_OrdQty(1500.0);
                         order.F_DeliverDate(date(2026, 11, 25));
                         order.F_ProdQty(600.0);
                         order.F_ProdDate(date(2026, 11, 18));
                         order.F_SalerID("王芳");
                         order.F_WoNo(26100001.0);
                         return porder.UpdateRecord(order);
                       }});
}

TEST_F(StatementFaults, ProductionOrderUpdateOrderOutNo) {
  clsDataPOrder porder(host());
  cutAtEveryStatement({"clsDataPOrder.UpdateOrderOutNo", [&] {
                         clsEntPOrder order;
                         order.F_ProdNo(2026100002.0);
                         order.F_OrderOutNo(26110002.0);
                         order.F_ProdDate(date(2026, 11, 22));
                         order.F_ProdQty(200.0);
                         return porder.UpdateOrderOutNo(order);
                       }});
}

// clsDataPOrderChk

TEST_F(StatementFaults, ReviewUpdateRecordSignsOffEngineering) {
  clsDataPOrderChk review(host());
  cutAtEveryStatement({"clsDataPOrderChk.UpdateRecord", [&] {
                         clsEntPOrderChk check;
                         check.F_ProdNo(2026110003.0);
                         check.F_EGAdmit(1);
                         check.F_EGModel(1);
                         check.F_EGNote("沿用HT-BW500图纸");
                         check.F_EGChecker("李明");
                         check.F_EGCheckTime(date(2026, 11, 22, 9, 30));
                         return review.UpdateRecord(check, "工程");
                       }});
}

TEST_F(StatementFaults, ReviewAddRecordAllocatesTheNumbersOfASalesOrder) {
  clsDataPOrderChk review(host());
  cutAtEveryStatement({"clsDataPOrderChk.AddRecord", [&] {
                         Collection lines = newSalesOrderLines();
                         return review.AddRecord(lines, "2611015", "C001", "HM-PO-261118", 4);
                       }});
}

TEST_F(StatementFaults, ReviewAddRecordInTheAllocationTransaction) {
  auto sink = std::shared_ptr<RecordingMessageSink>(&messages(), [](RecordingMessageSink*) {});
  clsDataPOrderChk review(std::make_shared<NativeHost>(dsn("serialize_allocation=1"), sink));
  WritingMember member{"clsDataPOrderChk.AddRecord (serialize_allocation=1)", [&] {
                         Collection lines = newSalesOrderLines();
                         return review.AddRecord(lines, "2611015", "C001", "HM-PO-261118", 4);
                       }};
  // A session lost before the commit has run leaves nothing of the allocation: the server rolls it
  // back, and no lock stays behind.
  member.transactionBegins = "start transaction";
  member.transactionEnds = "commit";
  cutAtEveryStatement(member);
  EXPECT_EQ(openTransactions(), "0");
}

// clsDataPMrph

TEST_F(StatementFaults, PlanningHeaderUpdateRecord) {
  clsDataPMrph pmrph(host());
  cutAtEveryStatement({"clsDataPMrph.UpdateRecord", [&] {
                         clsEntPMrph header;
                         header.F_ProdNo(2026110001.0);
                         header.F_ItemNo("FG-1001");
                         header.F_OrderQty(5200.0);
                         header.F_SafeQty(200.0);
                         header.F_NeedQty(5000.0);
                         header.F_PlanPurQty(0.0);
                         header.F_Status(2);
                         return pmrph.UpdateRecord(header);
                       }});
}

TEST_F(StatementFaults, PlanningCreationAddRecord1) {
  clsDataPMrph pmrph(host());
  WritingMember member{"clsDataPMrph.AddRecord1", [&] {
                         clsEntPMrph header;
                         header.F_ProdNo(2026110003.0);
                         header.F_ItemNo("FG-1001");
                         Collection lines = cupMaterials();
                         return pmrph.AddRecord1(header, lines);
                       }};
  member.routinesGoOn = true;
  // The last line's reservation: AddRecord1 does not look at how AddReduceRecord ended.
  member.lastStepStarts = "SELECT * FROM T_WStockQtys WHERE";
  cutAtEveryStatement(member);
}

TEST_F(StatementFaults, PlanningHeaderAddRecordWritesTheFiguresBack) {
  clsDataPMrph pmrph(host());
  cutAtEveryStatement({"clsDataPMrph.AddRecord", [&] {
                         clsEntPMrph header;
                         header.F_ProdNo(2026100003.0);
                         header.F_OrderQty(300.0);
                         header.F_SafeQty(20.0);
                         header.F_NeedQty(280.0);
                         header.F_PlanPurQty(280.0);
                         return pmrph.AddRecord(header);
                       }});
}

// clsDataPMrpi

TEST_F(StatementFaults, PlanningLineUpdatePMrpiStatus) {
  clsDataPMrpi pmrpi(host());
  // Its status is 0 whether the line was written or not: the message tells them apart.
  cutAtEveryStatement({"clsDataPMrpi.UpdatePMrpiStatus", [&] {
                         clsEntPMrpi line;
                         line.F_ProdNo(2026110001.0);
                         line.F_ItemNo("RM-2001");
                         line.F_Status(2);
                         return pmrpi.UpdatePMrpiStatus(line);
                       }});
}

TEST_F(StatementFaults, PlanningLineUpdatePMrphStatus) {
  clsDataPMrpi pmrpi(host());
  cutAtEveryStatement({"clsDataPMrpi.UpdatePMrphStatus", [&] {
                         clsEntPMrph header;
                         header.F_ProdNo(2026110001.0);
                         header.F_Status(2);
                         return pmrpi.UpdatePMrphStatus(header);
                       }});
}

TEST_F(StatementFaults, PlanningLineUpdateRecord) {
  clsDataPMrpi pmrpi(host());
  cutAtEveryStatement({"clsDataPMrpi.UpdateRecord", [&] {
                         clsEntPMrpi line;
                         line.F_ProdNo(2026110001.0);
                         line.F_ItemNo("RM-2002");
                         line.F_Dosage(1.0);
                         line.F_Waste(0.01);
                         line.F_SafeQty(200.0);
                         line.F_RequestQty(5000.0);
                         line.F_LeadTime(6);
                         line.F_Status(2);
                         return pmrpi.UpdateRecord(line);
                       }});
}

TEST_F(StatementFaults, PlanningLineAddRecordOfANewLine) {
  clsDataPMrpi pmrpi(host());
  WritingMember member{"clsDataPMrpi.AddRecord (new line)",
                       [&] {
                         clsEntPMrpi line;
                         line.F_ProdNo(2026100003.0);
                         line.F_ItemNo("RM-2006");
                         line.F_Dosage(1.0);
                         line.F_Waste(0.01);
                         line.F_SafeQty(50.0);
                         line.F_RequestQty(253.0);
                         line.F_LeadTime(10);
                         return pmrpi.AddRecord(line);
                       },
                       2};
  cutAtEveryStatement(member);
}

TEST_F(StatementFaults, PlanningLineAddRecordOverAnExistingLine) {
  clsDataPMrpi pmrpi(host());
  WritingMember member{"clsDataPMrpi.AddRecord (existing line)",
                       [&] {
                         clsEntPMrpi line;
                         line.F_ProdNo(2026110001.0);
                         line.F_ItemNo("PK-2005");
                         line.F_Dosage(0.0417);
                         line.F_Waste(0.0);
                         line.F_SafeQty(50.0);
                         line.F_RequestQty(220.0);
                         line.F_LeadTime(4);
                         return pmrpi.AddRecord(line);
                       },
                       2};
  cutAtEveryStatement(member);
}

TEST_F(StatementFaults, PlanningLinesDeleteAllPMrpiRecordWithTheirReservations) {
  clsDataPMrpi pmrpi(host());
  WritingMember member{"clsDataPMrpi.DeleteAllPMrpiRecord",
                       [&] { return pmrpi.DeleteAllPMrpiRecord(2026110001.0); }};
  member.routinesGoOn = true;
  cutAtEveryStatement(member);
}

}  // namespace
}  // namespace tovrand::test
