// clsDataPOrder: reading, adding and updating production orders.
#include <gtest/gtest.h>

#include "tests/porder/POrderTest.h"

namespace tovrand::test {
namespace {

using Maintenance = POrderTest;

constexpr const char* kFullRow =
    "insert into t_porder (F_ProdNo, F_OrderMode, F_OrderNo, F_OrderOutNo, F_ItemNo, F_CustNo, F_COrderNo, "
    "F_InQty, F_InDate, F_OutQty, F_OutDate, F_OutBkQty, F_BalQty, F_OrdQty, F_DeliverDate, F_ProdQty, "
    "F_ProdDate, F_Status, F_SalerID, F_WoNo) values (2026110001, '正常', 5001, 7001, 'P-100', 'C001', "
    "'PO-9', "
    "10, '2026-11-02 08:30:00', 4, '2026-11-03 00:00:00', 1, 6, 120, '2026-12-15 00:00:00', 30, "
    "'2026-11-20 00:00:00', 1, '王伟', 88)";

TEST_F(Maintenance, QueryItemFillsEveryColumnButTheProductionNumber) {
  exec(kFullRow);
  clsEntPOrder entity;
  entity.F_ProdNo(2026110001.0);

  EXPECT_EQ(porder().QueryItem(entity), 1);

  EXPECT_EQ(sql(), std::vector<std::string>{"select * from t_porder where F_ProdNo ='2026110001'"});
  EXPECT_EQ(entity.F_CustNo(), "C001");
  EXPECT_EQ(entity.F_SalerID(), "王伟");
  EXPECT_EQ(entity.F_ItemNo(), "P-100");
  EXPECT_EQ(entity.F_OrderMode(), "正常");
  EXPECT_EQ(entity.F_OrderNo(), 5001);
  EXPECT_EQ(entity.F_COrderNo(), "PO-9");
  EXPECT_EQ(entity.F_InQty(), 10);
  EXPECT_EQ(entity.F_InDate(), date(2026, 11, 2, 8, 30));
  EXPECT_EQ(entity.F_OutQty(), 4);
  EXPECT_EQ(entity.F_OutDate(), date(2026, 11, 3));
  EXPECT_EQ(entity.F_OutBkQty(), 1);
  EXPECT_EQ(entity.F_BalQty(), 6);
  EXPECT_EQ(entity.F_OrdQty(), 120);
  EXPECT_EQ(entity.F_DeliverDate(), date(2026, 12, 15));
  EXPECT_EQ(entity.F_ProdQty(), 30);
  EXPECT_EQ(entity.F_ProdDate(), date(2026, 11, 20));
  EXPECT_EQ(entity.F_Status(), 1);
  EXPECT_EQ(entity.F_OrderOutNo(), 7001);
  EXPECT_EQ(entity.F_WoNo(), 88);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(Maintenance, QueryItemForAnUnknownNumberReturnsZeroAndLeavesTheEntityUnchanged) {
  exec(kFullRow);
  clsEntPOrder entity;
  entity.F_ProdNo(2026119999.0);
  entity.F_CustNo("mine");
  entity.F_OrdQty(7.0);

  EXPECT_EQ(porder().QueryItem(entity), 0);

  EXPECT_EQ(entity.F_CustNo(), "mine");
  EXPECT_EQ(entity.F_OrdQty(), 7);
  EXPECT_EQ(entity.F_ProdNo(), 2026119999.0);
  EXPECT_TRUE(messages().messages().empty());
  EXPECT_EQ(sql(), std::vector<std::string>{"select * from t_porder where F_ProdNo ='2026119999'"});
}

TEST_F(Maintenance, QueryItemReadsNullColumnsAsZeroZeroDateAndEmptyText) {
  exec("insert into t_porder (F_ProdNo) values (2026110002)");
  exec(
      "update t_porder set F_OrderMode=NULL, F_OrderNo=NULL, F_ItemNo=NULL, F_CustNo=NULL, F_InDate=NULL, "
      "F_InQty=NULL, F_Status=NULL, F_SalerID=NULL, F_DeliverDate=NULL, F_WoNo=NULL where "
      "F_ProdNo=2026110002");
  clsEntPOrder entity;
  entity.F_ProdNo(2026110002.0);
  entity.F_CustNo("x");
  entity.F_InDate(date(2020, 1, 1));
  entity.F_Status(5);
  entity.F_OrderNo(9.0);

  EXPECT_EQ(porder().QueryItem(entity), 1);

  EXPECT_EQ(entity.F_CustNo(), "");
  EXPECT_EQ(entity.F_SalerID(), "");
  EXPECT_EQ(entity.F_OrderMode(), "");
  EXPECT_EQ(entity.F_InDate(), VbDate{});
  EXPECT_EQ(entity.F_DeliverDate(), VbDate{});
  EXPECT_EQ(entity.F_Status(), 0);
  EXPECT_EQ(entity.F_OrderNo(), 0);
  EXPECT_EQ(entity.F_InQty(), 0);
  EXPECT_EQ(entity.F_WoNo(), 0);
}

clsEntPOrder newOrder(double prodNo, std::int16_t status) {
  clsEntPOrder e;
  e.F_ProdNo(prodNo);
  e.F_CustNo("C002");
  e.F_SalerID("李娜");
  e.F_ItemNo("P-200");
  e.F_OrderMode("正常");
  e.F_OrderNo(6001.0);
  e.F_COrderNo("客户单-1");
  e.F_BalQty(50.0);
  e.F_OrdQty(50.0);
  e.F_DeliverDate(date(2027, 1, 10));
  e.F_Status(status);
  // Not written by AddRecord: they stay at the table's defaults.
  e.F_InQty(3.0);
  e.F_ProdQty(9.0);
  e.F_ProdDate(date(2026, 11, 1));
  e.F_WoNo(77.0);
  return e;
}

TEST_F(Maintenance, AddRecordAppendsTheElevenColumnsThroughAWholeTableKeysetOpen) {
  clsEntPOrder entity = newOrder(2026110010, 1);

  EXPECT_EQ(porder().AddRecord(entity), 1);

  EXPECT_EQ(sql(), std::vector<std::string>{"select * from t_porder "});
  EXPECT_EQ(scalar("select concat_ws('|', F_ProdNo, F_CustNo, F_SalerID, F_ItemNo, F_OrderMode, F_OrderNo, "
                   "F_COrderNo, F_BalQty, F_OrdQty, F_DeliverDate, F_Status) from t_porder"),
            "2026110010|C002|李娜|P-200|正常|6001|客户单-1|50|50|2027-01-10 00:00:00|1");
  // The columns AddRecord does not write hold what a row given only its key holds.
  exec("insert into t_porder (F_ProdNo) values (1)");
  const std::string untouched =
      "select concat_ws('|', ifnull(F_InQty,'NULL'), ifnull(F_InDate,'NULL'), ifnull(F_OutQty,'NULL'), "
      "ifnull(F_OutDate,'NULL'), ifnull(F_OutBkQty,'NULL'), ifnull(F_ProdQty,'NULL'), "
      "ifnull(F_ProdDate,'NULL'), "
      "ifnull(F_OrderOutNo,'NULL'), ifnull(F_WoNo,'NULL')) from t_porder where F_ProdNo=";
  EXPECT_EQ(scalar(untouched + "2026110010"), scalar(untouched + "1"));
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(Maintenance, AddRecordWithStatusTwoMarksEverySalesLineOfTheProductionOrder) {
  exec(
      "insert into t_borderi (F_OrderNo, F_No, F_ItemNo, F_ProdNo, f_status) values "
      "(6001, '1', 'P-200', 2026110010, 0), (6001, '2', 'P-201', 2026110010, NULL), (6001, '3', 'P-202', "
      "2026110011, 0)");
  clsEntPOrder entity = newOrder(2026110010, 2);

  EXPECT_EQ(porder().AddRecord(entity), 1);

  EXPECT_EQ(sql(), (std::vector<std::string>{"select * from t_porder ",
                                             "update t_borderi set f_status=2 where F_ProdNO=2026110010"}));
  EXPECT_EQ(scalar("select group_concat(ifnull(f_status,'NULL') order by F_No) from t_borderi"), "2,2,0");
}

TEST_F(Maintenance, AddRecordWithAnotherStatusTouchesNoOtherTable) {
  exec(
      "insert into t_borderi (F_OrderNo, F_No, F_ItemNo, F_ProdNo, f_status) values (6001, '1', 'P-200', "
      "2026110010, 0)");
  clsEntPOrder entity = newOrder(2026110010, 3);

  EXPECT_EQ(porder().AddRecord(entity), 1);

  EXPECT_EQ(sql(), std::vector<std::string>{"select * from t_porder "});
  EXPECT_EQ(scalar("select f_status from t_borderi"), "0");
}

TEST_F(Maintenance, AddRecordStoresTheRowThroughOneEngineInsert) {
  clsEntPOrder entity = newOrder(2026110012, 0);
  ASSERT_EQ(porder().AddRecord(entity), 1);
  int inserts = 0;
  for (const TracedStatement& s : trace().statements())
    if (s.origin == StatementOrigin::Engine && s.sql.rfind("INSERT", 0) == 0) ++inserts;
  EXPECT_EQ(inserts, 1);
}

TEST_F(Maintenance, AddRecordWithATextLongerThanItsColumnShowsTheLengthMessageAndStoresNothing) {
  clsEntPOrder entity = newOrder(2026110013, 0);
  entity.F_CustNo(std::string(300, 'C'));

  EXPECT_EQ(porder().AddRecord(entity), 0);

  EXPECT_EQ(messages().messages(), (std::vector<Message>{{kTooLongMessage, vbInformation, kTitleQuenta}}));
  EXPECT_EQ(scalar("select count(*) from t_porder"), "0");
  for (const TracedStatement& s : trace().statements()) EXPECT_NE(s.origin, StatementOrigin::Engine) << s.sql;
}

TEST_F(Maintenance, AddRecordOfAnExistingNumberShowsTheDatabasesDescription) {
  exec("insert into t_porder (F_ProdNo) values (2026110014)");
  clsEntPOrder entity = newOrder(2026110014, 0);

  EXPECT_EQ(porder().AddRecord(entity), 0);

  ASSERT_EQ(messages().messages().size(), 1u);
  EXPECT_EQ(messages().messages()[0].style, vbInformation);
  EXPECT_EQ(messages().messages()[0].title, kTitleQuenta);
  EXPECT_NE(messages().messages()[0].text.find("Duplicate entry '2026110014'"), std::string::npos)
      << messages().messages()[0].text;
  // The object stays usable.
  clsEntPOrder probe;
  probe.F_ProdNo(2026110014.0);
  EXPECT_EQ(porder().QueryItem(probe), 1);
}

TEST_F(Maintenance, UpdateRecordWritesEveryColumnButTheProductionNumber) {
  exec("insert into t_porder (F_ProdNo, F_CustNo, F_ProdQty) values (2026110020, 'OLD', 5)");
  clsEntPOrder entity = newOrder(2026110020, 1);
  entity.F_InDate(date(2026, 11, 5, 9, 15, 30));
  entity.F_OutQty(2.5);
  entity.F_OutDate(date(2026, 11, 6));
  entity.F_OutBkQty(0.5);
  entity.F_OrderOutNo(9001.0);

  EXPECT_EQ(porder().UpdateRecord(entity), 1);

  EXPECT_EQ(sql(), std::vector<std::string>{"select * from t_porder where F_ProdNo ='2026110020'"});
  EXPECT_EQ(
      scalar(
          "select concat_ws('|', F_ProdNo, F_CustNo, F_SalerID, F_ItemNo, F_OrderMode, F_OrderNo, "
          "F_COrderNo, "
          "F_InQty, F_InDate, F_OutQty, F_OutDate, F_OutBkQty, F_BalQty, F_OrdQty, F_DeliverDate, F_ProdQty, "
          "F_ProdDate, F_Status, F_OrderOutNo, F_WoNo) from t_porder"),
      "2026110020|C002|李娜|P-200|正常|6001|客户单-1|3|2026-11-05 09:15:30|2.5|2026-11-06 00:00:00|0.5|50|50|"
      "2027-01-10 00:00:00|9|2026-11-01 00:00:00|1|9001|77");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(Maintenance, UpdateRecordForAnUnknownNumberFailsAtTheFirstAssignment) {
  clsEntPOrder entity = newOrder(2026119999, 1);

  EXPECT_EQ(porder().UpdateRecord(entity), 0);

  EXPECT_EQ(messages().messages(), (std::vector<Message>{{VbError::of(vberr::kNoCurrentRecord).description(),
                                                          vbInformation, kTitleQuenta}}));
  EXPECT_EQ(scalar("select count(*) from t_porder"), "0");
}

TEST_F(Maintenance, UpdateRecordWithATextLongerThanItsColumnShowsTheLengthMessage) {
  exec("insert into t_porder (F_ProdNo, F_CustNo) values (2026110021, 'OLD')");
  clsEntPOrder entity = newOrder(2026110021, 1);
  entity.F_ItemNo(std::string(500, 'I'));

  EXPECT_EQ(porder().UpdateRecord(entity), 0);

  EXPECT_EQ(messages().messages(), (std::vector<Message>{{kTooLongMessage, vbInformation, kTitleQuenta}}));
  EXPECT_EQ(scalar("select F_CustNo from t_porder"), "OLD");
}

TEST_F(Maintenance, UpdateOrderOutNoAddsTheProducedQuantityAndSetsNumberAndDate) {
  exec("insert into t_porder (F_ProdNo, F_ProdQty) values (2026110030, 12)");
  clsEntPOrder entity;
  entity.F_ProdNo(2026110030.0);
  entity.F_OrderOutNo(8001.0);
  entity.F_ProdDate(date(2026, 11, 21, 14, 5, 0));
  entity.F_ProdQty(2.5);

  EXPECT_EQ(porder().UpdateOrderOutNo(entity), 1);

  EXPECT_EQ(sql(), std::vector<std::string>{
                       "update t_porder set F_OrderOutNo='8001',F_ProdDate='2026-11-21 14:05:00',"
                       "F_Prodqty=ifnull(F_Prodqty,0)+2.5 where F_ProdNo ='2026110030'"});
  EXPECT_EQ(scalar("select concat_ws('|', F_OrderOutNo, F_ProdDate, F_ProdQty) from t_porder"),
            "8001|2026-11-21 14:05:00|14.5");
}

TEST_F(Maintenance, UpdateOrderOutNoOnANullProducedQuantityStoresExactlyTheGivenOne) {
  exec("insert into t_porder (F_ProdNo) values (2026110031)");
  exec("update t_porder set F_ProdQty=NULL");
  clsEntPOrder entity;
  entity.F_ProdNo(2026110031.0);
  entity.F_ProdDate(date(2026, 11, 21));
  entity.F_ProdQty(40.0);

  EXPECT_EQ(porder().UpdateOrderOutNo(entity), 1);

  EXPECT_EQ(sql(), std::vector<std::string>{"update t_porder set F_OrderOutNo='0',F_ProdDate='2026-11-21',"
                                            "F_Prodqty=ifnull(F_Prodqty,0)+40 where F_ProdNo ='2026110031'"});
  EXPECT_EQ(scalar("select F_ProdQty from t_porder"), "40");
}

TEST_F(Maintenance, UpdateOrderOutNoWithTheZeroDateWritesTheTimeOnlyText) {
  exec("insert into t_porder (F_ProdNo, F_ProdDate) values (2026110032, '2026-01-01')");
  clsEntPOrder entity;
  entity.F_ProdNo(2026110032.0);

  EXPECT_EQ(porder().UpdateOrderOutNo(entity), 1);

  EXPECT_EQ(sql(), std::vector<std::string>{"update t_porder set F_OrderOutNo='0',F_ProdDate='0:00:00',"
                                            "F_Prodqty=ifnull(F_Prodqty,0)+0 where F_ProdNo ='2026110032'"});
  // Read back, the stored zero date is the zero date again.
  clsEntPOrder back;
  back.F_ProdNo(2026110032.0);
  back.F_ProdDate(date(2000, 1, 1));
  ASSERT_EQ(porder().QueryItem(back), 1);
  EXPECT_EQ(back.F_ProdDate(), VbDate{});
}

TEST_F(Maintenance, UpdateOrderOutNoWithAServerErrorShowsItsDescription) {
  exec("drop table t_porder");
  clsEntPOrder entity;
  entity.F_ProdNo(2026110033.0);

  EXPECT_EQ(porder().UpdateOrderOutNo(entity), 0);

  ASSERT_EQ(messages().messages().size(), 1u);
  EXPECT_NE(messages().messages()[0].text.find("t_porder' doesn't exist"), std::string::npos)
      << messages().messages()[0].text;
  EXPECT_EQ(messages().messages()[0].style, vbInformation);
}

}  // namespace
}  // namespace tovrand::test
