// clsDataPOrderChk look-ups over sales orders, stock and bills of material: QureyDatabase,
// QuerySalerID, QueryBOrderiBkQty and JudgeExits.
#include <gtest/gtest.h>

#include "tests/porderchk/POrderChkTest.h"

namespace tovrand::test {
namespace {

class SalesOrderQueries : public POrderChkTest {
 protected:
  void SetUp() override {
    POrderChkTest::SetUp();
    exec(
        "insert into t_borderh (F_OrderNo, F_OrderDate, F_CustNo, F_CorderNo, F_SalerID, F_Flags) values "
        "(2805001, '2008-05-02 09:15:00', 'C001', 'PO-1', '王伟', 1), "
        "(2805002, '2008-05-03', 'C002', 'PO-2', NULL, 1)");
    exec(
        "insert into t_borderi (F_OrderNo, F_No, F_ItemNo, F_BkQty, F_ProdNo) values "
        "(2805001, '1', 'FG-1', 12.5, 2008050001), (2805001, '2', 'FG-2', NULL, 2008050002), "
        "(2805002, '1', 'FG-1', 3, 2008050003)");
  }
};

// --- QureyDatabase ---

TEST_F(SalesOrderQueries, QureyDatabaseRunsTheCallersTextAndAddsAHeaderPerRow) {
  const std::string text =
      "select h.F_OrderNo, h.F_OrderDate, h.F_CorderNo, h.F_CustNo, i.F_ProdNo, i.F_ItemNo from t_borderh h, "
      "t_borderi i where h.F_OrderNo=i.F_OrderNo order by i.F_ProdNo";
  Collection headers;

  EXPECT_EQ(chk().QureyDatabase(text, headers), 1);

  EXPECT_EQ(sql(), std::vector<std::string>{text});
  ASSERT_EQ(headers.Count(), 3);
  clsEntBOrderh first(headers.Item(1));
  EXPECT_EQ(first.F_OrderNo(), 2805001.0);
  EXPECT_EQ(first.F_OrderDate(), date(2008, 5, 2, 9, 15));
  EXPECT_EQ(first.F_CorderNo(), "PO-1");
  EXPECT_EQ(first.F_CustNo(), "C001");
  EXPECT_EQ(first.F_ProdNo(), 2008050001.0);
  EXPECT_EQ(first.F_ItemNo(), "FG-1");
  EXPECT_EQ(first.F_SalerID(), "");  // not read
  clsEntBOrderh third(headers.Item(3));
  EXPECT_EQ(third.F_OrderNo(), 2805002.0);
  EXPECT_EQ(third.F_OrderDate(), date(2008, 5, 3));
  EXPECT_EQ(third.F_ProdNo(), 2008050003.0);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(SalesOrderQueries, QureyDatabaseReadsNullsAsZeroZeroDateAndEmptyText) {
  Collection headers;

  EXPECT_EQ(chk().QureyDatabase("select NULL as F_OrderNo, NULL as F_OrderDate, NULL as F_CorderNo, NULL as "
                                "F_CustNo, NULL as F_ProdNo, NULL as F_ItemNo",
                                headers),
            1);

  ASSERT_EQ(headers.Count(), 1);
  clsEntBOrderh h(headers.Item(1));
  EXPECT_EQ(h.F_OrderNo(), 0);
  EXPECT_EQ(h.F_OrderDate(), VbDate{});
  EXPECT_EQ(h.F_CorderNo(), "");
  EXPECT_EQ(h.F_CustNo(), "");
  EXPECT_EQ(h.F_ProdNo(), 0);
  EXPECT_EQ(h.F_ItemNo(), "");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(SalesOrderQueries, QureyDatabaseWithoutRowsReturnsZero) {
  Collection headers;

  EXPECT_EQ(chk().QureyDatabase("select F_OrderNo, F_OrderDate, F_CorderNo, F_CustNo, 0 as F_ProdNo, '' as "
                                "F_ItemNo from t_borderh where F_OrderNo=1",
                                headers),
            0);

  EXPECT_EQ(headers.Count(), 0);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(SalesOrderQueries, QureyDatabaseWhoseTextFailsShowsTheDatabasesDescription) {
  Collection headers;

  // A column the table lacks: the same description whatever the account (an account without
  // privileges on a table is not told whether it exists).
  EXPECT_EQ(chk().QureyDatabase("select * from t_borderh where F_Nothing = 1", headers), 0);

  EXPECT_EQ(messages().messages(), oneMessage("Unknown column 'F_Nothing' in 'WHERE'"));
}

TEST_F(SalesOrderQueries, QureyDatabaseWhoseRowsLackAColumnStopsAtTheFirstRowWithResultZero) {
  Collection headers;

  EXPECT_EQ(
      chk().QureyDatabase("select F_OrderNo, F_OrderDate, F_CorderNo, F_CustNo from t_borderh", headers), 0);

  EXPECT_EQ(headers.Count(), 0);
  EXPECT_EQ(
      messages().messages(),
      oneMessage("Item cannot be found in the collection corresponding to the requested name or ordinal."));
}

// --- QuerySalerID ---

TEST_F(SalesOrderQueries, QuerySalerIDFindsTheSalespersonOfTheSalesOrderOfTheProductionNumber) {
  clsEntBOrderh h;
  h.F_ProdNo(2008050002.0);

  EXPECT_EQ(chk().QuerySalerID(h), 1);

  EXPECT_EQ(sql(),
            std::vector<std::string>{"Select h.F_SalerID From T_BOrderh h,(Select F_OrderNo From T_BOrderi "
                                     "Where F_ProdNo='2008050002' ) Bi Where Bi.F_OrderNo=h.F_OrderNo"});
  EXPECT_EQ(h.F_SalerID(), "王伟");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(SalesOrderQueries, QuerySalerIDReadsANullSalespersonAsEmptyText) {
  clsEntBOrderh h;
  h.F_ProdNo(2008050003.0);
  h.F_SalerID("before");

  EXPECT_EQ(chk().QuerySalerID(h), 1);

  EXPECT_EQ(h.F_SalerID(), "");
}

TEST_F(SalesOrderQueries, QuerySalerIDOfAnUnknownProductionNumberReturnsZero) {
  clsEntBOrderh h;
  h.F_ProdNo(2008059999.0);
  h.F_SalerID("before");

  EXPECT_EQ(chk().QuerySalerID(h), 0);

  EXPECT_EQ(h.F_SalerID(), "before");
  EXPECT_TRUE(messages().messages().empty());
}

// --- QueryBOrderiBkQty ---

TEST_F(SalesOrderQueries, QueryBOrderiBkQtyReadsTheBookedQuantityAndTheMaterialsStock) {
  exec(
      "insert into t_wstockqtyi (F_ItemNo, F_WhNo, F_StockQty) values ('FG-1', 'A', 40), ('FG-1', 'B', 2.5), "
      "('FG-2', 'A', 1000)");
  clsEntBOrderi line;
  line.F_ProdNo(2008050001.0);
  line.F_ItemNo("FG-1");

  EXPECT_EQ(chk().QueryBOrderiBkQty(line), 1);

  EXPECT_EQ(sql(), (std::vector<std::string>{
                       "Select F_BkQty From T_BOrderi Where F_ProdNo='2008050001'",
                       "Select Sum(F_StockQty) As SumQty From T_WStockQtyi Where F_ItemNo='FG-1'"}));
  EXPECT_EQ(line.F_BkQty(), 12.5);
  EXPECT_EQ(line.F_StockQty(), 42.5);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(SalesOrderQueries, QueryBOrderiBkQtySumsTheStockOfTheEntitysItemNotTheLines) {
  exec("insert into t_wstockqtyi (F_ItemNo, F_StockQty) values ('FG-1', 40), ('RM-7', 6)");
  clsEntBOrderi line;
  line.F_ProdNo(2008050001.0);
  line.F_ItemNo("RM-7");

  EXPECT_EQ(chk().QueryBOrderiBkQty(line), 1);

  EXPECT_EQ(sql()[1], "Select Sum(F_StockQty) As SumQty From T_WStockQtyi Where F_ItemNo='RM-7'");
  EXPECT_EQ(line.F_StockQty(), 6);
}

TEST_F(SalesOrderQueries, QueryBOrderiBkQtyReadsNullBookedQuantityAndMissingStockAsZero) {
  clsEntBOrderi line;
  line.F_ProdNo(2008050002.0);
  line.F_ItemNo("FG-2");
  line.F_BkQty(9.0);
  line.F_StockQty(9.0);

  EXPECT_EQ(chk().QueryBOrderiBkQty(line), 1);

  EXPECT_EQ(line.F_BkQty(), 0);
  EXPECT_EQ(line.F_StockQty(), 0);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(SalesOrderQueries, QueryBOrderiBkQtyReadsStockRowsWithoutQuantityAsZero) {
  exec("insert into t_wstockqtyi (F_ItemNo, F_StockQty) values ('FG-1', NULL), ('FG-1', NULL)");
  clsEntBOrderi line;
  line.F_ProdNo(2008050001.0);
  line.F_ItemNo("FG-1");
  line.F_StockQty(9.0);

  EXPECT_EQ(chk().QueryBOrderiBkQty(line), 1);

  EXPECT_EQ(line.F_StockQty(), 0);
}

TEST_F(SalesOrderQueries, QueryBOrderiBkQtyWithoutTheSalesLineReturnsZeroAndAsksNoStock) {
  exec("insert into t_wstockqtyi (F_ItemNo, F_StockQty) values ('FG-1', 40)");
  clsEntBOrderi line;
  line.F_ProdNo(2008059999.0);
  line.F_ItemNo("FG-1");
  line.F_BkQty(9.0);
  line.F_StockQty(8.0);

  EXPECT_EQ(chk().QueryBOrderiBkQty(line), 0);

  EXPECT_EQ(sql(), std::vector<std::string>{"Select F_BkQty From T_BOrderi Where F_ProdNo='2008059999'"});
  EXPECT_EQ(line.F_BkQty(), 9);
  EXPECT_EQ(line.F_StockQty(), 8);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(SalesOrderQueries, QueryBOrderiBkQtyWithAQuoteInTheItemShowsTheDatabasesDescription) {
  clsEntBOrderi line;
  line.F_ProdNo(2008050001.0);
  line.F_ItemNo("FG'1");

  EXPECT_EQ(chk().QueryBOrderiBkQty(line), 0);

  EXPECT_EQ(sql()[1], "Select Sum(F_StockQty) As SumQty From T_WStockQtyi Where F_ItemNo='FG'1'");
  EXPECT_EQ(
      messages().messages(),
      oneMessage("You have an error in your SQL syntax; check the manual that corresponds to your MariaDB "
                 "server version for the right syntax to use near '1'' at line 1"));
}

// --- JudgeExits ---

TEST_F(SalesOrderQueries, JudgeExitsWithABillOfMaterialReturnsOne) {
  exec("insert into t_ebom (F_GoodsNo, F_PartNo, F_Dosage) values ('FG-1', 'RM-1', 2), ('FG-1', 'RM-2', 1)");

  EXPECT_EQ(chk().JudgeExits("FG-1"), 1);

  EXPECT_EQ(sql(), std::vector<std::string>{"Select * From T_EBom Where F_GoodsNo='FG-1'"});
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(SalesOrderQueries, JudgeExitsWithoutABillOfMaterialReturnsZeroAndShowsNoMessage) {
  exec("insert into t_ebom (F_GoodsNo, F_PartNo, F_Dosage) values ('FG-1', 'RM-1', 2)");

  EXPECT_EQ(chk().JudgeExits("FG-2"), 0);

  EXPECT_EQ(sql(), std::vector<std::string>{"Select * From T_EBom Where F_GoodsNo='FG-2'"});
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(SalesOrderQueries, JudgeExitsLeavesNoRecordsetOpenForTheNextLookUp) {
  exec("insert into t_ebom (F_GoodsNo, F_PartNo, F_Dosage) values ('FG-1', 'RM-1', 2)");
  ASSERT_EQ(chk().JudgeExits("FG-1"), 1);
  clsEntBOrderh h;
  h.F_ProdNo(2008050001.0);

  EXPECT_EQ(chk().QuerySalerID(h), 1);

  EXPECT_EQ(h.F_SalerID(), "王伟");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(SalesOrderQueries, JudgeExitsWithAQuoteInTheProductShowsTheDatabasesDescription) {
  EXPECT_EQ(chk().JudgeExits("FG'1"), 0);

  EXPECT_EQ(sql(), std::vector<std::string>{"Select * From T_EBom Where F_GoodsNo='FG'1'"});
  EXPECT_EQ(
      messages().messages(),
      oneMessage("You have an error in your SQL syntax; check the manual that corresponds to your MariaDB "
                 "server version for the right syntax to use near '1'' at line 1"));
}

}  // namespace
}  // namespace tovrand::test
