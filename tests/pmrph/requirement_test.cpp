// clsDataPMrph.AccountData: the planning figures of one production order and material.
#include <gtest/gtest.h>

#include "tests/pmrph/Computation.h"
#include "tests/pmrph/PMrphTest.h"

namespace tovrand::test {
namespace {

// Rows of other production orders and materials, present in every case, that no figure may take in.
constexpr const char* kOtherRows =
    "insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('M-02', 1, 1000);"
    "insert into t_wstockqtyi (F_ItemNo, F_StockQty) values ('M-02', 999);"
    "insert into t_cpurh (F_PurNo, F_Status) values ('CG-9', 1);"
    "insert into t_cpuri (F_PurNo, F_ItemNo, F_ProdNo, F_PurQty, F_Status) values "
    "('CG-9', 'M-01', 2026119999, 777, 0), ('CG-9', 'M-02', 2026110001, 888, 0);"
    "insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026119999, 'M-01', 666), "
    "(2026110001, 'M-02', 555);"
    "insert into t_porderchk (F_ProdNo, F_OrderCount) values (2026119999, 4444);"
    "insert into t_borderi (F_OrderNo, F_ProdNo, F_BkQty) values (9999, 2026119999, 3333)";

struct Case {
  double prodNo;
  const char* rows;  // the production order's header, review, sales line, stock, purchases, reservation
  Figures in;        // as the caller passes them
  Figures out;       // computed by hand
  bool reviewFound;
};

// The figures by hand (X is the free stock above safety stock, D = P - C1 - X - AT):
//
// 1. need not covered, K above M: P = 100 + 20, SQ 10, BN 40, X 30, S = 25 + 15, C1 30 (one open
//    order), AT 5. D = 120 - 30 - 30 - 5 = 55 >= 0: A = X = 30, AT = 35, M = 120 - 30 - 35 = 55;
//    K 500 >= 55 gives K = 55.
const Case kNotCovered{
    2026110001,
    "insert into t_pmrph (F_ProdNo, F_ItemNo, F_PlanPurQty) values (2026110001, 'M-01', 500);"
    "insert into t_porderchk (F_ProdNo, F_OrderCount) values (2026110001, 100);"
    "insert into t_borderi (F_OrderNo, F_ProdNo, F_BkQty) values (5001, 2026110001, 20);"
    "insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('M-01', 10, 40);"
    "insert into t_wstockqtyi (F_ItemNo, F_StockQty) values ('M-01', 25), ('M-01', 15);"
    "insert into t_cpurh (F_PurNo, F_Status) values ('CG-1', 1);"
    "insert into t_cpuri (F_PurNo, F_ItemNo, F_ProdNo, F_PurQty, F_Status) values "
    "('CG-1', 'M-01', 2026110001, 30, 0);"
    "insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110001, 'M-01', 5)",
    //  C1  A   P   M   K   S   SQ  AT  BN  ATi
    {-1, -2, -3, -4, -5, -6, -7, -8, -9, -10},
    {30, 30, 120, 55, 55, 40, 10, 35, 40, 5},
    true};

// 2. covered, purchase orders in status 3 left out: P = 50 (no sales line), SQ 5, BN 100, X 95, S 0
//    (no stock line), C1 10 (the 1000 on a closed order and the 2000 on a closed line left out),
//    AT 0 (no reservation). D = 50 - 10 - 95 - 0 = -55 < 0: A = 50 - 10 - 0 = 40, AT = 40, M = 0;
//    K 8 >= 0 gives K = 0.
const Case kCovered{2026110001,
                    "insert into t_pmrph (F_ProdNo, F_ItemNo, F_PlanPurQty) values (2026110001, 'M-01', 8);"
                    "insert into t_porderchk (F_ProdNo, F_OrderCount) values (2026110001, 50);"
                    "insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('M-01', 5, 100);"
                    "insert into t_cpurh (F_PurNo, F_Status) values ('CG-1', 1), ('CG-2', 3);"
                    "insert into t_cpuri (F_PurNo, F_ItemNo, F_ProdNo, F_PurQty, F_Status) values "
                    "('CG-1', 'M-01', 2026110001, 10, 0), ('CG-2', 'M-01', 2026110001, 1000, 0), "
                    "('CG-1', 'M-01', 2026110001, 2000, 3)",
                    //  C1  A   P   M   K   S   SQ  AT  BN  ATi
                    {-1, -2, -3, -4, -5, -6, -7, -8, -9, -10},
                    {10, 40, 50, 0, 0, 0, 5, 40, 100, 0},
                    true};

// 3. no stock header, K positive below M: P = 80 + 0 (F_BkQty NULL), SQ 0, X 0, BN as passed
//    (123.25), S = 12.5 (a NULL stock line adds nothing), C1 0 (no purchase), AT 0 (F_ReduceQty
//    NULL). D = 80 >= 0: A = 0, AT = 0, M = 80; K 20 is below M and above 0: kept.
const Case kNoStockHeader{
    2026110001,
    "insert into t_pmrph (F_ProdNo, F_ItemNo, F_PlanPurQty) values (2026110001, 'M-01', 20);"
    "insert into t_porderchk (F_ProdNo, F_OrderCount) values (2026110001, 80);"
    "insert into t_borderi (F_OrderNo, F_ProdNo, F_BkQty) values (5001, 2026110001, NULL);"
    "insert into t_wstockqtyi (F_ItemNo, F_StockQty) values ('M-01', NULL), ('M-01', 12.5);"
    "insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110001, 'M-01', NULL)",
    //  C1  A   P   M   K   S   SQ  AT  BN      ATi
    {-1, -2, -3, -4, -5, -6, -7, -8, 123.25, -10},
    {0, 0, 80, 80, 20, 12.5, 0, 0, 123.25, 0},
    true};

// 4. BN equal to SQ, F_PlanPurQty NULL: P = 60 + 0, SQ 30, BN 30, X 0, S 100, C1 15, AT 5.
//    D = 60 - 15 - 0 - 5 = 40 >= 0: A = 0, AT = 5, M = 60 - 15 - 5 = 40; K starts at 0 and stays 0.
const Case kNoFreeStock{
    2026110001,
    "insert into t_pmrph (F_ProdNo, F_ItemNo, F_PlanPurQty) values (2026110001, 'M-01', NULL);"
    "insert into t_porderchk (F_ProdNo, F_OrderCount) values (2026110001, 60);"
    "insert into t_borderi (F_OrderNo, F_ProdNo, F_BkQty) values (5001, 2026110001, 0);"
    "insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('M-01', 30, 30);"
    "insert into t_wstockqtyi (F_ItemNo, F_StockQty) values ('M-01', 100);"
    "insert into t_cpurh (F_PurNo, F_Status) values ('CG-1', 0);"
    "insert into t_cpuri (F_PurNo, F_ItemNo, F_ProdNo, F_PurQty, F_Status) values "
    "('CG-1', 'M-01', 2026110001, 15, 1);"
    "insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110001, 'M-01', 5)",
    //  C1  A   P   M   K   S    SQ  AT  BN  ATi
    {-1, -2, -3, -4, -5, -6, -7, -8, -9, -10},
    {15, 0, 60, 40, 0, 100, 30, 5, 30, 5},
    true};

// 5. no review row, K negative: P as passed (45), SQ 2, BN 12, X 10, S 7, C1 5, AT 0.
//    D = 45 - 5 - 10 - 0 = 30 >= 0: A = 10, AT = 10, M = 45 - 5 - 10 = 30; K -3 gives K = 0.
const Case kNoReview{2026110001,
                     "insert into t_pmrph (F_ProdNo, F_ItemNo, F_PlanPurQty) values (2026110001, 'M-01', -3);"
                     "insert into t_borderi (F_OrderNo, F_ProdNo, F_BkQty) values (5001, 2026110001, 70);"
                     "insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('M-01', 2, 12);"
                     "insert into t_wstockqtyi (F_ItemNo, F_StockQty) values ('M-01', 7);"
                     "insert into t_cpurh (F_PurNo, F_Status) values ('CG-1', 1);"
                     "insert into t_cpuri (F_PurNo, F_ItemNo, F_ProdNo, F_PurQty, F_Status) values "
                     "('CG-1', 'M-01', 2026110001, 5, 0)",
                     //  C1  A   P   M   K   S   SQ  AT  BN  ATi
                     {-1, -2, 45, -4, -5, -6, -7, -8, -9, -10},
                     {5, 10, 45, 30, 0, 7, 2, 10, 12, 0},
                     false};

// 6. a fractional production number, BN below SQ, covered by purchases and reservation:
//    P = 10 + 2.5, SQ 50, BN 20, X 0 (20 - 50 < 0), S 0, C1 4, AT 10. D = 12.5 - 4 - 0 - 10 = -1.5
//    < 0: A = 12.5 - 4 - 10 = -1.5, hence 0, AT = 10, M = 0; K 3 gives K = 0.
const Case kFractional{
    2026110001.5,
    "insert into t_pmrph (F_ProdNo, F_ItemNo, F_PlanPurQty) values (2026110001.5, 'M-01', 3);"
    "insert into t_porderchk (F_ProdNo, F_OrderCount) values (2026110001.5, 10);"
    "insert into t_borderi (F_OrderNo, F_ProdNo, F_BkQty) values (5001, 2026110001.5, 2.5);"
    "insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('M-01', 50, 20);"
    "insert into t_cpurh (F_PurNo, F_Status) values ('CG-1', 1);"
    "insert into t_cpuri (F_PurNo, F_ItemNo, F_ProdNo, F_PurQty, F_Status) values "
    "('CG-1', 'M-01', 2026110001.5, 4, 0);"
    "insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110001.5, 'M-01', 10)",
    //  C1  A   P     M   K   S   SQ  AT  BN  ATi
    {-1, -2, -3, -4, -5, -6, -7, -8, -9, -10},
    {4, 0, 12.5, 0, 0, 0, 50, 10, 20, 10},
    true};

// 7. NULLs in the stock header and the review, K equal to M: P = 0 (F_OrderCount NULL) + 9, SQ 0,
//    BN 0, X 0, S 0, C1 0, AT 0. D = 9 >= 0: A = 0, AT = 0, M = 9; K 9 >= 9 gives K = 9.
const Case kNullStockHeader{
    2026110001,
    "insert into t_pmrph (F_ProdNo, F_ItemNo, F_PlanPurQty) values (2026110001, 'M-01', 9);"
    "insert into t_porderchk (F_ProdNo, F_OrderCount) values (2026110001, NULL);"
    "insert into t_borderi (F_OrderNo, F_ProdNo, F_BkQty) values (5001, 2026110001, 9);"
    "insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('M-01', NULL, NULL)",
    //  C1  A   P   M   K   S   SQ  AT  BN  ATi
    {-1, -2, -3, -4, -5, -6, -7, -8, -9, -10},
    {0, 0, 9, 9, 9, 0, 0, 0, 0, 0},
    true};

// 8. the need fully covered by purchases and reservation (P - C1 - AT <= 0): P = 20 (no sales line),
//    SQ 0, BN 50, X 50, S 0, C1 12, AT 8. D = 20 - 12 - 50 - 8 = -50 < 0: A = 20 - 12 - 8 = 0,
//    AT = 8, M = 0; K 6 >= 0 gives K = 0.
const Case kFullyCovered{
    2026110001,
    "insert into t_pmrph (F_ProdNo, F_ItemNo, F_PlanPurQty) values (2026110001, 'M-01', 6);"
    "insert into t_porderchk (F_ProdNo, F_OrderCount) values (2026110001, 20);"
    "insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('M-01', 0, 50);"
    "insert into t_cpurh (F_PurNo, F_Status) values ('CG-1', 1);"
    "insert into t_cpuri (F_PurNo, F_ItemNo, F_ProdNo, F_PurQty, F_Status) values "
    "('CG-1', 'M-01', 2026110001, 12, 0);"
    "insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110001, 'M-01', 8)",
    //  C1  A   P   M   K   S   SQ  AT  BN  ATi
    {-1, -2, -3, -4, -5, -6, -7, -8, -9, -10},
    {12, 0, 20, 0, 0, 0, 0, 8, 50, 8},
    true};

class Requirement : public PMrphTest {
 protected:
  void expectFigures(const Case& c, const std::string& prodNoText) {
    exec(kOtherRows);
    exec(c.rows);
    clsEntPMrph entity = header(c.prodNo, "M-01");
    Figures f = c.in;

    EXPECT_EQ(pmrph().AccountData(entity, f.C1, f.A, f.P, f.M, f.K, f.S, f.SQ, f.AT, f.BN, f.ATi), 1);

    EXPECT_EQ(f, c.out);
    EXPECT_EQ(sql(), accountDataStatements(prodNoText, "M-01", c.reviewFound));
    // Nothing is written and nothing is shown; the entity only gave its two keys.
    EXPECT_TRUE(engineStatements().empty());
    EXPECT_TRUE(shown().empty());
    EXPECT_EQ(entity.F_ProdNo(), c.prodNo);
    EXPECT_EQ(entity.F_ItemNo(), "M-01");
    EXPECT_EQ(entity.F_PlanPurQty(), 0);
  }
};

TEST_F(Requirement, NeedNotCoveredTakesAllFreeStockAndLimitsThePlannedPurchaseToTheRemainder) {
  expectFigures(kNotCovered, "2026110001");
}

TEST_F(Requirement, NeedCoveredTakesOnlyWhatIsMissingAndLeavesClosedPurchaseOrdersOut) {
  expectFigures(kCovered, "2026110001");
}

TEST_F(Requirement, NoStockHeaderZeroesSafetyAndFreeStockButReturnsBNAsPassed) {
  expectFigures(kNoStockHeader, "2026110001");
}

TEST_F(Requirement, BNEqualToSQLeavesNoFreeStockAndANullPlannedPurchaseStartsAtZero) {
  expectFigures(kNoFreeStock, "2026110001");
}

TEST_F(Requirement, NoReviewRowComputesWithTheCallersRequirementAndANegativePlannedPurchaseBecomesZero) {
  expectFigures(kNoReview, "2026110001");
}

TEST_F(Requirement, AFractionalProductionNumberIsSplicedAsItsDecimalText) {
  expectFigures(kFractional, "2026110001.5");
}

TEST_F(Requirement, NullStockFiguresReadAsZeroAndAPlannedPurchaseEqualToTheRemainderStays) {
  expectFigures(kNullStockHeader, "2026110001");
}

TEST_F(Requirement, ANeedFullyCoveredByPurchasesAndReservationTakesNothingAndPlansNoPurchase) {
  expectFigures(kFullyCovered, "2026110001");
}

TEST_F(Requirement, TheStatementsOfOneComputationInOrder) {
  exec(kNotCovered.rows);
  clsEntPMrph entity = header(2026110001, "M-01");
  Figures f = kNotCovered.in;

  ASSERT_EQ(pmrph().AccountData(entity, f.C1, f.A, f.P, f.M, f.K, f.S, f.SQ, f.AT, f.BN, f.ATi), 1);

  EXPECT_EQ(sql(),
            (std::vector<std::string>{
                "SELECT * FROM T_PMrph WHERE F_ProdNo=2026110001",
                "SELECT * FROM T_POrderChk WHERE F_ProdNo='2026110001'",
                "Select * From T_BOrderi Where F_ProdNo='2026110001'",
                "SELECT * FROM T_WStockQtyh WHERE F_ItemNo='M-01'",
                "SELECT sum(F_StockQty) as S FROM T_WStockQtyi WHERE F_ItemNo='M-01' group by F_ItemNo",
                "SELECT SUM(F_PurQty) as C1 FROM T_CPuri ,(select F_PurNo as PurNo from T_CPurh where   "
                "F_Status<>3) h WHERE F_ItemNo='M-01' and F_Status<>3 and F_ProdNo=2026110001 and "
                "F_PurNo=h.PurNo",
                "SELECT F_ReduceQty FROM T_WStockQtys WHERE F_ItemNo='M-01' and F_ProdNo=2026110001",
            }));
}

TEST_F(Requirement, NoHeaderReturnsZeroWithoutAMessageAndChangesNoFigure) {
  exec(kOtherRows);
  // Everything but the header of the production order.
  exec(
      "insert into t_porderchk (F_ProdNo, F_OrderCount) values (2026110001, 100);"
      "insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('M-01', 10, 40)");
  clsEntPMrph entity = header(2026110001, "M-01");
  Figures f{1, 2, 3, 4, 5, 6, 7, 8, 9, 10};

  EXPECT_EQ(pmrph().AccountData(entity, f.C1, f.A, f.P, f.M, f.K, f.S, f.SQ, f.AT, f.BN, f.ATi), 0);

  EXPECT_EQ(f, (Figures{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
  EXPECT_EQ(sql(), std::vector<std::string>{"SELECT * FROM T_PMrph WHERE F_ProdNo=2026110001"});
  EXPECT_TRUE(shown().empty());
}

TEST_F(Requirement, TheFirstSalesOrderLineAloneIsAddedToTheRequirement) {
  exec(kNoFreeStock.rows);
  exec(
      "update t_borderi set F_BkQty=7 where F_ProdNo=2026110001;"
      "insert into t_borderi (F_OrderNo, F_ProdNo, F_BkQty) values (5001, 2026110001, 100)");
  clsEntPMrph entity = header(2026110001, "M-01");
  Figures f{};

  ASSERT_EQ(pmrph().AccountData(entity, f.C1, f.A, f.P, f.M, f.K, f.S, f.SQ, f.AT, f.BN, f.ATi), 1);

  // P = 60 + 7; D = 67 - 15 - 0 - 5 = 47: A 0, AT 5, M 47, K 0.
  EXPECT_EQ(f, (Figures{15, 0, 67, 47, 0, 100, 30, 5, 30, 5}));
}

TEST_F(Requirement, AComputationCanBeRepeatedOnTheSameObject) {
  exec(kNotCovered.rows);
  clsEntPMrph entity = header(2026110001, "M-01");
  for (int i = 0; i < 2; ++i) {
    Figures f = kNotCovered.in;
    ASSERT_EQ(pmrph().AccountData(entity, f.C1, f.A, f.P, f.M, f.K, f.S, f.SQ, f.AT, f.BN, f.ATi), 1);
    EXPECT_EQ(f, kNotCovered.out);
  }
  EXPECT_TRUE(shown().empty());
}

TEST_F(Requirement, AnErrorShowsTheDescriptionKeepsTheFiguresAssignedAndReturnsZero) {
  exec(kNotCovered.rows);
  exec("drop table t_cpuri");
  clsEntPMrph entity = header(2026110001, "M-01");
  Figures f = kNotCovered.in;

  EXPECT_EQ(pmrph().AccountData(entity, f.C1, f.A, f.P, f.M, f.K, f.S, f.SQ, f.AT, f.BN, f.ATi), 0);

  // K, P, SQ, BN and S were assigned before the purchase look-up failed.
  EXPECT_EQ(f, (Figures{-1, -2, 120, -4, 500, 40, 10, -8, 40, -10}));
  expectOneMessage(vbInformation, kTitleQuenta, "t_cpuri' doesn't exist");
  // The object stays usable.
  exec(
      "create table t_cpuri (F_ID int auto_increment primary key, F_PurNo varchar(20), F_ItemNo varchar(30), "
      "F_ProdNo double, F_PurQty double, F_Status smallint)");
  Figures g = kNotCovered.in;
  EXPECT_EQ(pmrph().AccountData(entity, g.C1, g.A, g.P, g.M, g.K, g.S, g.SQ, g.AT, g.BN, g.ATi), 1);
  // Without purchases: D = 120 - 0 - 30 - 5 = 85: A 30, AT 35, M 85, K 85.
  EXPECT_EQ(g, (Figures{0, 30, 120, 85, 85, 40, 10, 35, 40, 5}));
}

}  // namespace
}  // namespace tovrand::test
