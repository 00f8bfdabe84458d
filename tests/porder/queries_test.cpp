// clsDataPOrder: the list and look-up members.
#include <gtest/gtest.h>

#include "tests/porder/POrderTest.h"

namespace tovrand::test {
namespace {

using Queries = POrderTest;

std::vector<double> prodNos(const Collection& c) {
  std::vector<double> out;
  for (std::int32_t i = 1; i <= c.Count(); ++i) out.push_back(clsEntPOrder(c.Item(i)).F_ProdNo());
  return out;
}

TEST_F(Queries, QueryByStrSqlWithAnEmptyConditionListsTheWholeTable) {
  exec(
      "insert into t_porder (F_ProdNo, F_CustNo, F_ItemNo, F_OrdQty, F_DeliverDate, F_Status, F_SalerID) "
      "values "
      "(2026110001, 'C1', 'P1', 5, '2026-12-01', 1, '张三'), (2026110002, 'C2', 'P2', 6, NULL, NULL, NULL)");
  Collection col;
  std::string where;

  EXPECT_EQ(porder().QueryByStrSql(col, where), 1);

  EXPECT_EQ(sql(), std::vector<std::string>{"select * from t_porder"});
  ASSERT_EQ(col.Count(), 2);
  clsEntPOrder first(col.Item(1)), second(col.Item(2));
  EXPECT_EQ(first.F_CustNo(), "C1");
  EXPECT_EQ(first.F_SalerID(), "张三");
  EXPECT_EQ(first.F_DeliverDate(), date(2026, 12, 1));
  EXPECT_EQ(first.F_Status(), 1);
  EXPECT_EQ(second.F_SalerID(), "");
  EXPECT_EQ(second.F_DeliverDate(), VbDate{});
  EXPECT_EQ(second.F_Status(), 0);
  EXPECT_EQ(where, "");
}

TEST_F(Queries, QueryByStrSqlAppendsTheCallersClauseAndKeepsWhatTheCollectionHeld) {
  exec(
      "insert into t_porder (F_ProdNo, F_CustNo) values (2026110001, 'C1'), (2026110002, 'C1'), (2026110003, "
      "'C2')");
  Collection col;
  col.Add(clsEntPOrder());
  std::string where = " where F_CustNo='C1' order by F_ProdNo desc";

  EXPECT_EQ(porder().QueryByStrSql(col, where), 1);

  EXPECT_EQ(sql(),
            std::vector<std::string>{"select * from t_porder where F_CustNo='C1' order by F_ProdNo desc"});
  EXPECT_EQ(prodNos(col), (std::vector<double>{0, 2026110002, 2026110001}));
}

TEST_F(Queries, QueryByStrSqlWithNoRowsReturnsZeroSilently) {
  Collection col;
  std::string where = " where F_ProdNo=1";
  EXPECT_EQ(porder().QueryByStrSql(col, where), 0);
  EXPECT_EQ(col.Count(), 0);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(Queries, QueryByStrSqlWithoutTheLeadingBlankShowsTheCriticalMessage) {
  exec("insert into t_porder (F_ProdNo) values (2026110001)");
  Collection col;
  std::string where = "where F_ProdNo=2026110001";

  EXPECT_EQ(porder().QueryByStrSql(col, where), 0);

  EXPECT_EQ(sql(), std::vector<std::string>{"select * from t_porderwhere F_ProdNo=2026110001"});
  ASSERT_EQ(messages().messages().size(), 1u);
  const Message& m = messages().messages()[0];
  EXPECT_EQ(m.style, vbCritical);
  EXPECT_EQ(m.title, kTitleQuenta);
  EXPECT_NE(m.text.find("You have an error in your SQL syntax"), std::string::npos) << m.text;
  EXPECT_EQ(col.Count(), 0);
}

TEST_F(Queries, GetALLChkListListsOpenOutsourcedOrdersNotYetFullyCovered) {
  exec(
      "insert into t_porder (F_ProdNo, F_OrderMode, F_Status, F_OrdQty, F_ItemNo, F_CustNo, F_COrderNo) "
      "values "
      "(2026110001, '外发加工', 0, 100, 'P1', 'C1', 'K1'),"     // no outsourcing lines at all
      "(2026110002, '外发加工', NULL, 100, 'P2', 'C2', 'K2'),"  // partly covered
      "(2026110003, '外发加工', 0, 100, 'P3', 'C3', 'K3'),"     // covered exactly
      "(2026110004, '外发加工', 0, 100, 'P4', 'C4', 'K4'),"     // more than covered
      "(2026110005, '外发加工', 1, 100, 'P5', 'C5', 'K5'),"     // closed
      "(2026110006, '正常', 0, 100, 'P6', 'C6', 'K6')");        // not outsourced
  exec(
      "insert into t_boutmakei (F_ProdNo, F_ordoutqty) values (2026110002, 30), (2026110002, 20), "
      "(2026110003, 60), (2026110003, 40), (2026110004, 150)");
  Collection col;

  EXPECT_EQ(porder().GetALLChkList(col), 1);

  EXPECT_EQ(sql(), std::vector<std::string>{"select pi.* from t_porder pi where f_ordermode='外发加工' and "
                                            "(F_status is null or F_status=0) and "
                                            "((pi.F_Ordqty >(select sum(F_ordoutqty) as F_ordoutqty from "
                                            "t_boutmakei where F_ProdNo=pi.F_ProdNo)) "
                                            "or ((select sum(t_boutmakei.F_ordoutqty) from t_boutmakei where "
                                            "t_boutmakei.F_ProdNo=pi.F_ProdNo) is "
                                            "null))"});
  std::vector<double> listed = prodNos(col);
  std::sort(listed.begin(), listed.end());
  EXPECT_EQ(listed, (std::vector<double>{2026110001, 2026110002}));
  for (std::int32_t i = 1; i <= col.Count(); ++i) {
    clsEntPOrder e(col.Item(i));
    EXPECT_EQ(e.F_CustNo(), e.F_ProdNo() == 2026110001 ? "C1" : "C2");
    EXPECT_EQ(e.F_COrderNo(), e.F_ProdNo() == 2026110001 ? "K1" : "K2");
    EXPECT_EQ(e.F_ItemNo(), e.F_ProdNo() == 2026110001 ? "P1" : "P2");
    EXPECT_EQ(e.F_OrdQty(), 0) << "only four columns are read";
  }
}

TEST_F(Queries, GetALLChkListWithNothingOpenReturnsZero) {
  exec("insert into t_porder (F_ProdNo, F_OrderMode, F_Status, F_OrdQty) values (2026110001, '正常', 0, 1)");
  Collection col;
  EXPECT_EQ(porder().GetALLChkList(col), 0);
  EXPECT_EQ(col.Count(), 0);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(Queries, CheckCustProdNoFindsTheOrderOfThatCustomerOnly) {
  exec("insert into t_porder (F_ProdNo, F_CustNo, F_ItemNo, F_OrdQty) values (2026110001, 'C1', 'P1', 12)");
  clsEntPOrder entity;

  EXPECT_EQ(porder().CheckCustProdNo(entity, "C2", 2026110001), 0);
  EXPECT_EQ(entity.F_ItemNo(), "");
  EXPECT_EQ(porder().CheckCustProdNo(entity, "C1", 2026110001), 1);

  EXPECT_EQ(sql(), (std::vector<std::string>{
                       "select * from t_porder where F_CustNo ='C2' and F_ProdNo='2026110001'",
                       "select * from t_porder where F_CustNo ='C1' and F_ProdNo='2026110001'"}));
  EXPECT_EQ(entity.F_ItemNo(), "P1");
  EXPECT_EQ(entity.F_CustNo(), "C1");
  EXPECT_EQ(entity.F_OrdQty(), 12);
  EXPECT_EQ(entity.F_ProdNo(), 0) << "the production number is not read";
}

TEST_F(Queries, CheckCustProdNoWithAQuoteInTheCustomerShowsTheDatabasesDescription) {
  clsEntPOrder entity;
  EXPECT_EQ(porder().CheckCustProdNo(entity, "O'Brien", 1), 0);
  ASSERT_EQ(messages().messages().size(), 1u);
  EXPECT_EQ(messages().messages()[0].style, vbInformation);
  EXPECT_NE(messages().messages()[0].text.find("SQL syntax"), std::string::npos);
}

}  // namespace
}  // namespace tovrand::test
