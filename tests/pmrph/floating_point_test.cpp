// clsDataPMrph: figures that overflow or are not a number end in run-time error 6, "Overflow".
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "tests/pmrph/Computation.h"
#include "tests/pmrph/PMrphTest.h"

namespace tovrand::test {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// A header without a review row, so P enters the arithmetic as the caller passed it:
// K 4, SQ 2, BN 12, X 10, S 7, C1 5, AT 3.
constexpr const char* kNoReview =
    "insert into t_pmrph (F_ProdNo, F_ItemNo, F_PlanPurQty) values (2026110001, 'M-01', 4);"
    "insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('M-01', 2, 12);"
    "insert into t_wstockqtyi (F_ItemNo, F_StockQty) values ('M-01', 7);"
    "insert into t_cpurh (F_PurNo, F_Status) values ('CG-1', 1);"
    "insert into t_cpuri (F_PurNo, F_ItemNo, F_ProdNo, F_PurQty, F_Status) values "
    "('CG-1', 'M-01', 2026110001, 5, 0);"
    "insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110001, 'M-01', 3)";

class FloatingPoint : public PMrphTest {
 protected:
  // AccountData with the caller's P; every look-up has run when the arithmetic faults.
  void expectOverflowFromCallersRequirement(double P) {
    exec(kNoReview);
    clsEntPMrph entity = header(2026110001, "M-01");
    Figures f{-1, -2, P, -4, -5, -6, -7, -8, -9, -10};

    EXPECT_EQ(pmrph().AccountData(entity, f.C1, f.A, f.P, f.M, f.K, f.S, f.SQ, f.AT, f.BN, f.ATi), 0);

    EXPECT_EQ(shown(), std::vector<Message>{overflowMessage()});
    // Every figure read before the arithmetic keeps its new value; A and M were never reached.
    EXPECT_EQ(f, (Figures{5, -2, P, -4, 4, 7, 2, 3, 12, 3}));
    EXPECT_EQ(sql(), accountDataStatements("2026110001", "M-01", false));
    EXPECT_TRUE(engineStatements().empty());
    EXPECT_EQ(scalar("select concat_ws('|', F_PlanPurQty, ifnull(F_NeedQty, 'NULL')) from t_pmrph"),
              "4|NULL");
  }
};

TEST_F(FloatingPoint, AnInfiniteRequirementFromTheCallerEndsInTheOverflowBox) {
  expectOverflowFromCallersRequirement(kInf);
}

TEST_F(FloatingPoint, ANegativeInfiniteRequirementFromTheCallerEndsInTheOverflowBox) {
  expectOverflowFromCallersRequirement(-kInf);
}

TEST_F(FloatingPoint, ANaNRequirementFromTheCallerEndsInTheOverflowBox) {
  expectOverflowFromCallersRequirement(kNaN);
}

TEST_F(FloatingPoint, TheObjectComputesAgainAfterAnOverflow) {
  exec(kNoReview);
  clsEntPMrph entity = header(2026110001, "M-01");
  Figures f{0, 0, kInf, 0, 0, 0, 0, 0, 0, 0};
  ASSERT_EQ(pmrph().AccountData(entity, f.C1, f.A, f.P, f.M, f.K, f.S, f.SQ, f.AT, f.BN, f.ATi), 0);

  Figures g{0, 0, 45, 0, 0, 0, 0, 0, 0, 0};
  EXPECT_EQ(pmrph().AccountData(entity, g.C1, g.A, g.P, g.M, g.K, g.S, g.SQ, g.AT, g.BN, g.ATi), 1);
  // D = 45 - 5 - 10 - 3 = 27 >= 0: A = 10, AT = 13, M = 45 - 5 - 13 = 27; K 4 kept.
  EXPECT_EQ(g, (Figures{5, 10, 45, 27, 4, 7, 2, 13, 12, 3}));
}

TEST_F(FloatingPoint, AStockHeaderWhoseDifferenceOverflowsEndsInTheOverflowBox) {
  exec(
      "insert into t_pmrph (F_ProdNo, F_ItemNo, F_PlanPurQty) values (2026110001, 'M-01', 4);"
      "insert into t_porderchk (F_ProdNo, F_OrderCount) values (2026110001, 10);"
      "insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('M-01', -1.7e308, 1.7e308)");
  clsEntPMrph entity = header(2026110001, "M-01");
  Figures f{-1, -2, -3, -4, -5, -6, -7, -8, -9, -10};

  EXPECT_EQ(pmrph().AccountData(entity, f.C1, f.A, f.P, f.M, f.K, f.S, f.SQ, f.AT, f.BN, f.ATi), 0);

  EXPECT_EQ(shown(), std::vector<Message>{overflowMessage()});
  // BN - SQ = 3.4e308 overflows: K, P, SQ and BN were assigned, the rest not.
  EXPECT_EQ(f, (Figures{-1, -2, 10, -4, 4, -6, -1.7e308, -8, 1.7e308, -10}));
  EXPECT_EQ(sql(), (std::vector<std::string>{
                       "SELECT * FROM T_PMrph WHERE F_ProdNo=2026110001",
                       "SELECT * FROM T_POrderChk WHERE F_ProdNo='2026110001'",
                       "Select * From T_BOrderi Where F_ProdNo='2026110001'",
                       "SELECT * FROM T_WStockQtyh WHERE F_ItemNo='M-01'",
                   }));
  EXPECT_TRUE(engineStatements().empty());
}

TEST_F(FloatingPoint, ARequirementWhoseSumOverflowsEndsInTheOverflowBox) {
  exec(
      "insert into t_pmrph (F_ProdNo, F_ItemNo, F_PlanPurQty) values (2026110001, 'M-01', 4);"
      "insert into t_porderchk (F_ProdNo, F_OrderCount) values (2026110001, 1.7e308);"
      "insert into t_borderi (F_OrderNo, F_ProdNo, F_BkQty) values (5001, 2026110001, 1.7e308)");
  clsEntPMrph entity = header(2026110001, "M-01");
  Figures f{-1, -2, -3, -4, -5, -6, -7, -8, -9, -10};

  EXPECT_EQ(pmrph().AccountData(entity, f.C1, f.A, f.P, f.M, f.K, f.S, f.SQ, f.AT, f.BN, f.ATi), 0);

  EXPECT_EQ(shown(), std::vector<Message>{overflowMessage()});
  EXPECT_EQ(f, (Figures{-1, -2, -3, -4, 4, -6, -7, -8, -9, -10}));
  EXPECT_EQ(sql().size(), 3u);
}

TEST_F(FloatingPoint, ALinesRequirementThatOverflowsStopsThePlanningWithTheOverflowBox) {
  exec(
      "insert into t_pmrph (F_ProdNo, F_ItemNo) values (2026110002, 'P-100');"
      "insert into t_porderchk (F_ProdNo, F_OrderCount) values (2026110002, 10)");
  clsEntPMrph entity = header(2026110002, "P-100");
  // F_NeedQty - F_PlanPurQty = 3.4e308 is out of range.
  entity.F_NeedQty(1.7e308);
  entity.F_PlanPurQty(-1.7e308);
  Collection lines;
  clsEntPMrpi first;
  first.F_ItemNo("M-01");
  first.F_Dosage(1.0);
  lines.Add(first);

  EXPECT_EQ(pmrph().AddRecord1(entity, lines), 0);

  EXPECT_EQ(shown(), std::vector<Message>{overflowMessage()});
  EXPECT_EQ(scalar("select count(*) from t_pmrpi"), "0");
  EXPECT_EQ(scalar("select count(*) from t_wstockqtys"), "0");
  EXPECT_TRUE(engineStatements().empty());
}

TEST_F(FloatingPoint, AReservationThatOverflowsShowsItsMessageAndThePlanningGoesOn) {
  // By hand: P = 30, P-100's SQ 0 and BN 20 give X 20, C1 0; each line (dosage 1) has
  // G = (30 - 0) * 1 * 1 - 0 - 20 = 10 > 0: request 10, take 20. Giving M-01's reservation of
  // 1.7e308 back onto its uncommitted 1.7e308 overflows (1.7e308 - 20 + 1.7e308): that reservation
  // stays as it was, and the next line is still written and reserved.
  exec(
      "insert into t_pmrph (F_ProdNo, F_ItemNo) values (2026110002, 'P-100');"
      "insert into t_porderchk (F_ProdNo, F_OrderCount) values (2026110002, 30);"
      "insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('P-100', 0, 20), "
      "('M-01', 0, 1.7e308);"
      "insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110002, 'M-01', 1.7e308)");
  clsEntPMrph entity = header(2026110002, "P-100");
  entity.F_NeedQty(30.0);
  Collection lines;
  for (const char* item : {"M-01", "M-02"}) {
    clsEntPMrpi l;
    l.F_ItemNo(item);
    l.F_Dosage(1.0);
    lines.Add(l);
  }

  EXPECT_EQ(pmrph().AddRecord1(entity, lines), 1);

  EXPECT_EQ(shown(), std::vector<Message>{overflowMessage()});
  EXPECT_EQ(
      scalar("select group_concat(concat_ws('|', F_ItemNo, F_RequestQty) order by F_ItemNo) from t_pmrpi"),
      "M-01|10,M-02|10");
  EXPECT_EQ(scalar("select F_NoPoStockQty from t_wstockqtyh where F_ItemNo='M-01'"), "1.7e308");
  EXPECT_EQ(scalar("select group_concat(concat_ws('|', F_ItemNo, F_ReduceQty) order by F_ItemNo) from "
                   "t_wstockqtys"),
            "M-01|1.7e308,M-02|20");
}

}  // namespace
}  // namespace tovrand::test
