// clsDataPMrpi: item master, quantities still to buy, bills of material and planning lines for the
// planning and purchasing screens.
#include <gtest/gtest.h>

#include "tests/pmrpi/PMrpiTest.h"

namespace tovrand::test {
namespace {

class ItemLookups : public PMrpiTest {
 protected:
  void SetUp() override {
    PMrpiTest::SetUp();
    exec(
        "insert into t_eitem (F_ItemNo, F_Type, F_ItemName, F_ItemDesc, F_Unit) values "
        "('RM-2001', '原料', '冷轧钢板', '1.2mm SPCC', 'KG'), ('RM-2002', NULL, NULL, NULL, NULL)");
    exec(
        "insert into t_pmrph (F_ProdNo, F_ItemNo, F_PlanPurQty, F_Status) values (2026110001, 'RM-2001', 0, "
        "0), "
        "(2026110002, 'RM-2001', 30, 0), (2026110003, 'FG-1003', NULL, 0)");
    exec(
        "insert into t_pmrpi (F_ProdNo, F_ItemNo, F_Dosage, F_Waste, F_SafeQty, F_RequestQty, F_LeadTime) "
        "values (2026110001, 'RM-2001', 2.5, 0.03, 10, 12, 7), (2026110001, 'RM-2002', 1, 0, 0, 0, 3), "
        "(2026110001, 'RM-2003', NULL, NULL, NULL, NULL, NULL), (2026110002, 'RM-2001', 1, 0, 0, 4, 3), "
        "(2026110003, 'RM-2002', 1, 0, 0, 0, 3)");
  }
};

clsEntEItem callersItem() {
  clsEntEItem e;
  e.F_ItemNo("MINE");
  e.F_Type("t");
  e.F_ItemName("n");
  e.F_ItemDesc("d");
  e.F_Unit("u");
  return e;
}

TEST_F(ItemLookups, GetRecordByConditionReturnsTheHeadersPlannedPurchaseAndTheItemsMasterData) {
  clsEntEItem item = callersItem();
  clsEntPMrph header = headerKey(2026110002, "RM-2001");
  EXPECT_EQ(pmrpi().GetRecordByCondition(item, header), 1);
  EXPECT_EQ(sql(), (std::vector<std::string>{
                       "select * from T_PMrph where F_ProdNo='2026110002' and F_ItemNo = 'RM-2001' and "
                       "F_PlanPurQty > '0'",
                       "select * from T_EItem where F_ItemNo = 'RM-2001'"}));
  EXPECT_EQ(header.F_PlanPurQty(), 30);
  // The item number is not set.
  EXPECT_EQ(describeItem(item), "MINE|原料|冷轧钢板|1.2mm SPCC|KG");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(ItemLookups, GetRecordByConditionWithoutPlannedPurchaseReturnsTheLinesRequestInTheHeader) {
  clsEntEItem item = callersItem();
  clsEntPMrph header = headerKey(2026110001, "RM-2001");
  header.F_PlanPurQty(5.0);
  EXPECT_EQ(pmrpi().GetRecordByCondition(item, header), 1);
  EXPECT_EQ(sql(), (std::vector<std::string>{
                       "select * from T_PMrph where F_ProdNo='2026110001' and F_ItemNo = 'RM-2001' and "
                       "F_PlanPurQty > '0'",
                       "select * from T_PMrpi where F_ProdNo='2026110001' and F_ItemNo = 'RM-2001' and "
                       "F_RequestQty > '0'",
                       "select * from T_EItem where F_ItemNo = 'RM-2001'"}));
  EXPECT_EQ(header.F_PlanPurQty(), 12);
  EXPECT_EQ(describeItem(item), "MINE|原料|冷轧钢板|1.2mm SPCC|KG");
}

TEST_F(ItemLookups, GetRecordByConditionWithNothingToBuyReturnsZeroAndDoesNotReadTheItem) {
  clsEntEItem item = callersItem();
  clsEntPMrph header = headerKey(2026110001, "RM-2002");
  header.F_PlanPurQty(5.0);
  EXPECT_EQ(pmrpi().GetRecordByCondition(item, header), 0);
  EXPECT_EQ(sql(), (std::vector<std::string>{
                       "select * from T_PMrph where F_ProdNo='2026110001' and F_ItemNo = 'RM-2002' and "
                       "F_PlanPurQty > '0'",
                       "select * from T_PMrpi where F_ProdNo='2026110001' and F_ItemNo = 'RM-2002' and "
                       "F_RequestQty > '0'"}));
  EXPECT_EQ(header.F_PlanPurQty(), 5);
  EXPECT_EQ(describeItem(item), "MINE|t|n|d|u");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(ItemLookups, GetRecordByConditionReadsNullItemColumnsAsEmptyText) {
  exec("update t_pmrpi set F_RequestQty = 2 where F_ProdNo = 2026110001 and F_ItemNo = 'RM-2002'");
  clsEntEItem item = callersItem();
  clsEntPMrph header = headerKey(2026110001, "RM-2002");
  EXPECT_EQ(pmrpi().GetRecordByCondition(item, header), 1);
  EXPECT_EQ(header.F_PlanPurQty(), 2);
  EXPECT_EQ(describeItem(item), "MINE||||");
}

TEST_F(ItemLookups, GetRecordByConditionForAnItemWithoutMasterDataLeavesTheItemEntity) {
  exec("insert into t_pmrph (F_ProdNo, F_ItemNo, F_PlanPurQty) values (2026110004, 'RM-9999', 1.5)");
  clsEntEItem item = callersItem();
  clsEntPMrph header = headerKey(2026110004, "RM-9999");
  EXPECT_EQ(pmrpi().GetRecordByCondition(item, header), 1);
  EXPECT_EQ(header.F_PlanPurQty(), 1.5);
  EXPECT_EQ(describeItem(item), "MINE|t|n|d|u");
}

TEST_F(ItemLookups, GetRecordByConditionWithAQuoteShowsTheDescriptionAndReturnsTwo) {
  clsEntEItem item = callersItem();
  clsEntPMrph header = headerKey(2026110001, "RM'1");
  EXPECT_EQ(pmrpi().GetRecordByCondition(item, header), 2);
  EXPECT_EQ(messages().messages(),
            std::vector<Message>{information(syntaxError("1' and F_PlanPurQty > '0'"))});
  clsEntPMrph probe = headerKey(2026110002, "RM-2001");
  EXPECT_EQ(pmrpi().GetRecordByCondition(item, probe), 1) << "the object stays usable";
}

TEST_F(ItemLookups, GetItemNoByProdNoFillsTheHeadersItemAndListsTheLinesStillToBuy) {
  clsEntPMrph header = headerKey(2026110002, "");
  Collection col;
  EXPECT_EQ(pmrpi().GetItemNoByProdNo(col, header), 1);
  EXPECT_EQ(sql(), (std::vector<std::string>{
                       "select * from T_PMrph where F_ProdNo='2026110002' and F_PlanPurQty > '0'",
                       "select * from T_PMrpi where F_ProdNo='2026110002' and F_RequestQty > '0'"}));
  EXPECT_EQ(header.F_ItemNo(), "RM-2001");
  EXPECT_EQ(describeAll<clsEntPMrpi>(col, describeLine), std::vector<std::string>{"0|RM-2001|0|0|0|0|0|0"});
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(ItemLookups, GetItemNoByProdNoWithoutPlannedPurchaseStillListsTheLines) {
  clsEntPMrph header = headerKey(2026110001, "KEPT");
  Collection col;
  clsEntPMrpi held;
  held.F_ItemNo("HELD");
  col.Add(held);
  EXPECT_EQ(pmrpi().GetItemNoByProdNo(col, header), 1);
  EXPECT_EQ(header.F_ItemNo(), "KEPT");
  EXPECT_EQ(describeAll<clsEntPMrpi>(col, describeLine),
            (std::vector<std::string>{"0|HELD|0|0|0|0|0|0", "0|RM-2001|0|0|0|0|0|0"}));
}

TEST_F(ItemLookups, GetItemNoByProdNoWithOnlyAPlannedPurchaseReturnsOne) {
  exec("update t_pmrpi set F_RequestQty = 0 where F_ProdNo = 2026110002");
  clsEntPMrph header = headerKey(2026110002, "");
  Collection col;
  EXPECT_EQ(pmrpi().GetItemNoByProdNo(col, header), 1);
  EXPECT_EQ(header.F_ItemNo(), "RM-2001");
  EXPECT_EQ(col.Count(), 0);
}

TEST_F(ItemLookups, GetItemNoByProdNoWithNothingToBuyReturnsZero) {
  clsEntPMrph header = headerKey(2026110003, "KEPT");
  Collection col;
  EXPECT_EQ(pmrpi().GetItemNoByProdNo(col, header), 0);
  EXPECT_EQ(header.F_ItemNo(), "KEPT");
  EXPECT_EQ(col.Count(), 0);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(ItemLookups, GetItemNoByProdNoKeepsTheResultItHadWhenTheErrorCame) {
  exec("drop table t_pmrpi");
  clsEntPMrph header = headerKey(2026110002, "");
  Collection col;
  EXPECT_EQ(pmrpi().GetItemNoByProdNo(col, header), 1);
  EXPECT_EQ(header.F_ItemNo(), "RM-2001");
  EXPECT_EQ(messages().messages(), std::vector<Message>{information(missingTable("t_pmrpi"))});
}

TEST_F(ItemLookups, GetItemNoByProdNoWithAnErrorBeforeAnythingWasFoundReturnsZero) {
  exec("drop table t_pmrph");
  clsEntPMrph header = headerKey(2026110002, "");
  Collection col;
  EXPECT_EQ(pmrpi().GetItemNoByProdNo(col, header), 0);
  EXPECT_EQ(messages().messages(), std::vector<Message>{information(missingTable("t_pmrph"))});
  EXPECT_EQ(sql(), std::vector<std::string>{
                       "select * from T_PMrph where F_ProdNo='2026110002' and F_PlanPurQty > '0'"});
}

class BillOfMaterial : public ItemLookups {
 protected:
  void SetUp() override {
    ItemLookups::SetUp();
    exec(
        "insert into t_ebom (F_GoodsNo, F_PartNo, F_Dosage, F_Waste, F_LeadDay) values "
        "('FG-1001', 'RM-2001', 2.5, 0.03, 7), ('FG-1001', NULL, NULL, NULL, NULL), "
        "('FG-1002', 'RM-2002', 1, 0, 3), ('FG-1003', 'RM-2003', 1, 0, 3)");
    exec(
        "insert into t_ebomcheck (F_GoodsNo, F_Approve) values ('FG-1001', '张工'), ('FG-1002', ''), "
        "('FG-1003', NULL)");
  }
};

TEST_F(BillOfMaterial, QueryItemNoModeOneListsTheApprovedBillOfMaterial) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryItemNo(col, "FG-1001", "1"), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{
                       "SELECT B.*  FROM T_EBom B,T_EBomCheck BC WHERE BC.F_GoodsNo= 'FG-1001' And "
                       "BC.F_GoodsNo=B.F_GoodsNo AND BC.F_Approve<>''"});
  EXPECT_EQ(describeSorted<clsEntEBom>(col, describeBom),
            (std::vector<std::string>{"FG-1001|RM-2001|2.5|0.03||7", "FG-1001||0|0||0"}));
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(BillOfMaterial, QueryItemNoModeOneForAnUnapprovedProductReturnsZeroAndAddsNothing) {
  for (const char* goods : {"FG-1002", "FG-1003", "FG-9999"}) {
    SCOPED_TRACE(goods);
    Collection col;
    EXPECT_EQ(pmrpi().QueryItemNo(col, goods, "1"), 0);
    EXPECT_EQ(col.Count(), 0);
  }
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(BillOfMaterial, QueryItemNoModeTwoListsTheLinesOfTheProductionOrderAsBillOfMaterialEntities) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryItemNo(col, "2026110001", "2"), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{"SELECT *  FROM T_PMrpi   WHERE F_ProdNo= '2026110001' "});
  // F_GoodsNo carries the safety stock and F_RequestQty the requested quantity, both as text.
  EXPECT_EQ(describeSorted<clsEntEBom>(col, describeBom),
            (std::vector<std::string>{"0|RM-2002|1|0|0|3", "0|RM-2003|0|0|0|0", "10|RM-2001|2.5|0.03|12|7"}));
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(BillOfMaterial, QueryItemNoModeTwoTakesTheLeadingNumberOfTheText) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryItemNo(col, " 2026110002-A", "2"), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{"SELECT *  FROM T_PMrpi   WHERE F_ProdNo= '2026110002' "});
  EXPECT_EQ(describeAll<clsEntEBom>(col, describeBom), std::vector<std::string>{"0|RM-2001|1|0|4|3"});
}

TEST_F(BillOfMaterial, QueryItemNoModeTwoEndsTheNumberAtACarriageReturn) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryItemNo(col, "2026110002\r\n5", "2"), 1);
  EXPECT_EQ(sql(), std::vector<std::string>{"SELECT *  FROM T_PMrpi   WHERE F_ProdNo= '2026110002' "});
  EXPECT_EQ(describeAll<clsEntEBom>(col, describeBom), std::vector<std::string>{"0|RM-2001|1|0|4|3"});
}

TEST_F(BillOfMaterial, QueryItemNoModeTwoWithATextThatIsNoNumberLooksForProductionNumberZero) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryItemNo(col, "FG-1001", "2"), 0);
  EXPECT_EQ(sql(), std::vector<std::string>{"SELECT *  FROM T_PMrpi   WHERE F_ProdNo= '0' "});
  EXPECT_EQ(col.Count(), 0);
  exec("insert into t_pmrpi (F_ProdNo, F_ItemNo) values (0, 'RM-0')");
  EXPECT_EQ(pmrpi().QueryItemNo(col, "FG-1001", "2"), 1);
  EXPECT_EQ(describeAll<clsEntEBom>(col, describeBom), std::vector<std::string>{"0|RM-0|0|0|0|0"});
}

TEST_F(BillOfMaterial, QueryItemNoInAnyOtherModeReadsNothingAndReturnsOne) {
  for (const char* mode : {"", "3", " 1"}) {
    SCOPED_TRACE(mode);
    Collection col;
    EXPECT_EQ(pmrpi().QueryItemNo(col, "FG-1001", mode), 1);
    EXPECT_EQ(col.Count(), 0);
  }
  EXPECT_TRUE(statements().empty());
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(BillOfMaterial, QueryItemNoAppendsToWhatTheCollectionHeld) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryItemNo(col, "FG-1002", "1"), 0);
  EXPECT_EQ(pmrpi().QueryItemNo(col, "2026110002", "2"), 1);
  EXPECT_EQ(pmrpi().QueryItemNo(col, "2026110002", "2"), 1);
  EXPECT_EQ(describeAll<clsEntEBom>(col, describeBom),
            (std::vector<std::string>{"0|RM-2001|1|0|4|3", "0|RM-2001|1|0|4|3"}));
}

TEST_F(BillOfMaterial, QueryItemNoWithAQuoteShowsTheDescriptionAndReturnsTwo) {
  Collection col;
  EXPECT_EQ(pmrpi().QueryItemNo(col, "FG'1001", "1"), 2);
  EXPECT_EQ(messages().messages(), std::vector<Message>{information(syntaxError(
                                       "1001' And BC.F_GoodsNo=B.F_GoodsNo AND BC.F_Approve<>''"))});
  EXPECT_EQ(col.Count(), 0);
  EXPECT_EQ(pmrpi().QueryItemNo(col, "FG-1001", "1"), 1) << "the object stays usable";
}

TEST_F(ItemLookups, QueryEItemNoFillsTheItemsMasterDataButNotItsType) {
  clsEntEItem item = callersItem();
  item.F_ItemNo("rm-2001");
  EXPECT_EQ(pmrpi().QueryEItemNo(item), 1);
  EXPECT_EQ(sql(),
            std::vector<std::string>{
                "SELECT F_ItemNo,F_ItemName,F_ItemDesc,F_Unit  FROM T_EItem WHERE F_ItemNo='rm-2001'"});
  EXPECT_EQ(describeItem(item), "RM-2001|t|冷轧钢板|1.2mm SPCC|KG");
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(ItemLookups, QueryEItemNoReadsNullColumnsAsEmptyText) {
  clsEntEItem item = callersItem();
  item.F_ItemNo("RM-2002");
  EXPECT_EQ(pmrpi().QueryEItemNo(item), 1);
  EXPECT_EQ(describeItem(item), "RM-2002|t|||");
}

TEST_F(ItemLookups, QueryEItemNoForAnUnknownItemReturnsZeroAndLeavesTheEntity) {
  clsEntEItem item = callersItem();
  item.F_ItemNo("RM-9999");
  EXPECT_EQ(pmrpi().QueryEItemNo(item), 0);
  EXPECT_EQ(describeItem(item), "RM-9999|t|n|d|u");
  EXPECT_TRUE(messages().messages().empty());
  // It renews the recordset before opening it, so it can run again.
  item.F_ItemNo("RM-2001");
  EXPECT_EQ(pmrpi().QueryEItemNo(item), 1);
}

TEST_F(ItemLookups, QueryEItemNoForAnUnknownItemLeavesTheRecordsetOpenForTheNextMethod) {
  clsEntEItem item = callersItem();
  item.F_ItemNo("RM-9999");
  ASSERT_EQ(pmrpi().QueryEItemNo(item), 0);
  clsEntPMrpi line;
  line.F_ProdNo(2026110001.0);
  line.F_ItemNo("RM-2001");
  EXPECT_EQ(pmrpi().QueryByID(line), 2);
  EXPECT_EQ(messages().messages(),
            std::vector<Message>{information("Operation is not allowed when the object is open.")});
  EXPECT_EQ(sql(),
            std::vector<std::string>{
                "SELECT F_ItemNo,F_ItemName,F_ItemDesc,F_Unit  FROM T_EItem WHERE F_ItemNo='RM-9999'"});
  // That method's handler dropped it: the next call runs.
  EXPECT_EQ(pmrpi().QueryByID(line), 1);
}

TEST_F(ItemLookups, QueryEItemNoWithAQuoteShowsTheDescriptionAndReturnsTwo) {
  clsEntEItem item = callersItem();
  item.F_ItemNo("RM'2001");
  EXPECT_EQ(pmrpi().QueryEItemNo(item), 2);
  EXPECT_EQ(messages().messages(), std::vector<Message>{information(syntaxError("2001'"))});
  EXPECT_EQ(describeItem(item), "RM'2001|t|n|d|u");
}

}  // namespace
}  // namespace tovrand::test
