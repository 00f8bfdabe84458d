// Every table and column that the component's SQL texts and field reads and writes name, spelled
// exactly as the component spells them (mixed case included), must resolve in the schema.

#include <cctype>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/TestDatabase.h"

namespace tovrand::test {
namespace {

struct ColumnUse {
  const char* table;
  const char* column;
};

const std::vector<ColumnUse> kColumnUses = {
    // Production orders: clsDataPOrder's reads, writes and conditions, and the planning look-ups.
    {"t_porder", "F_ProdNo"},
    {"t_porder", "F_ProdNO"},
    {"t_porder", "F_OrderMode"},
    {"t_porder", "f_ordermode"},
    {"t_porder", "F_OrderNo"},
    {"t_porder", "F_OrderNO"},
    {"t_porder", "f_OrderNo"},
    {"t_porder", "F_OrderOutNo"},
    {"t_porder", "F_OrderOutNO"},
    {"t_porder", "F_ItemNo"},
    {"t_porder", "F_ItemNO"},
    {"t_porder", "F_CustNo"},
    {"t_porder", "F_CustNO"},
    {"t_porder", "f_CustNo"},
    {"t_porder", "F_COrderNo"},
    {"t_porder", "F_COrderNO"},
    {"t_porder", "F_CorderNo"},
    {"t_porder", "F_CorderNO"},
    {"t_porder", "f_CorderNo"},
    {"t_porder", "F_InQty"},
    {"t_porder", "F_Inqty"},
    {"t_porder", "F_InDate"},
    {"t_porder", "F_Indate"},
    {"t_porder", "F_OutQty"},
    {"t_porder", "F_Outqty"},
    {"t_porder", "F_OutDate"},
    {"t_porder", "F_Outdate"},
    {"t_porder", "F_OutBkQty"},
    {"t_porder", "F_Outbkqty"},
    {"t_porder", "F_BalQty"},
    {"t_porder", "F_Balqty"},
    {"t_porder", "F_OrdQty"},
    {"t_porder", "F_Ordqty"},
    {"t_porder", "F_DeliverDate"},
    {"t_porder", "f_DeliverDate"},
    {"t_porder", "F_ProdQty"},
    {"t_porder", "F_Prodqty"},
    {"t_porder", "F_ProdDate"},
    {"t_porder", "F_Status"},
    {"t_porder", "F_status"},
    {"t_porder", "F_SalerID"},
    {"t_porder", "F_SalerId"},
    {"t_porder", "F_WoNo"},
    {"t_porder", "F_Wono"},
    {"T_POrder", "F_ProdNo"},
    {"T_POrder", "F_Status"},
    {"T_POrder", "F_DeliverDate"},

    // Review rows: the record, the allocation's insert, the sign-off statements and the look-ups.
    {"T_POrderChk", "F_ProdNo"},
    {"T_POrderChk", "F_OrderNo"},
    {"T_POrderChk", "F_ItemNo"},
    {"T_POrderChk", "F_CustNo"},
    {"T_POrderChk", "F_CorderNo"},
    {"T_POrderChk", "F_OrderCount"},
    {"T_POrderChk", "F_DeliverDate"},
    {"T_POrderChk", "F_CItemNo"},
    {"T_POrderChk", "F_BStradCon"},
    {"T_POrderChk", "F_BSNote"},
    {"T_POrderChk", "F_BSAlertNote"},
    {"T_POrderChk", "F_BSChecker"},
    {"T_POrderChk", "F_BSCheckTime"},
    {"T_POrderChk", "F_EGAdmit"},
    {"T_POrderChk", "F_EGModel"},
    {"T_POrderChk", "F_EGNote"},
    {"T_POrderChk", "F_EGChecker"},
    {"T_POrderChk", "F_EGCheckTime"},
    {"T_POrderChk", "F_WIFill"},
    {"T_POrderChk", "F_WIEndtime"},
    {"T_POrderChk", "F_WPStock"},
    {"T_POrderChk", "F_WPEndTime"},
    {"T_POrderChk", "F_WINote"},
    {"T_POrderChk", "F_WIChecker"},
    {"T_POrderChk", "F_WIChecktime"},
    {"T_POrderChk", "F_PUprovider"},
    {"T_POrderChk", "F_PUNote"},
    {"T_POrderChk", "F_PUChecker"},
    {"T_POrderChk", "F_PUCheckTime"},
    {"T_POrderChk", "F_QCStd"},
    {"T_POrderChk", "F_QCNote"},
    {"T_POrderChk", "F_QChecker"},
    {"T_POrderChk", "F_QCheckTime"},
    {"T_POrderChk", "F_MKDate"},
    {"T_POrderChk", "F_MKNote"},
    {"T_POrderChk", "F_MKChecker"},
    {"T_POrderChk", "F_MKCheckTime"},
    {"T_POrderChk", "F_Way"},
    {"T_POrderChk", "F_CSNote"},
    {"T_POrderChk", "F_CSChecker"},
    {"T_POrderChk", "F_CSCheckTime"},
    {"T_POrderChk", "F_AlerTime"},
    {"T_POrderChk", "F_Status"},
    {"t_porderchk", "f_OrderNo"},
    {"t_porderchk", "f_CustNo"},
    {"t_porderchk", "f_CorderNo"},
    {"t_porderchk", "f_OrderCount"},
    {"t_porderchk", "f_DeliverDate"},
    {"t_porderchk", "F_CItemNO"},
    {"t_POrderChk", "F_MkNote"},
    {"t_POrderChk", "F_wiCheckTime"},
    {"t_POrderChk", "F_csChecker"},
    {"t_POrderChk", "F_csCheckTime"},

    // Sales orders.
    {"T_BOrderh", "F_OrderNo"},
    {"T_BOrderh", "F_OrderDate"},
    {"T_BOrderh", "F_CustNo"},
    {"T_BOrderh", "F_CorderNo"},
    {"T_BOrderh", "F_SalerID"},
    {"T_BOrderh", "F_Flags"},
    {"T_BOrderi", "F_OrderNo"},
    {"T_BOrderi", "F_No"},
    {"T_BOrderi", "f_No"},
    {"T_BOrderi", "F_ItemNo"},
    {"T_BOrderi", "F_CItemNo"},
    {"T_BOrderi", "F_OrderQty"},
    {"T_BOrderi", "F_DeliverDate"},
    {"T_BOrderi", "F_BkQty"},
    {"T_BOrderi", "F_ProdNo"},
    {"t_borderi", "f_status"},
    {"t_borderi", "F_ProdNO"},

    // Outsourcing order lines.
    {"t_boutmakei", "F_ProdNo"},
    {"t_boutmakei", "F_ordoutqty"},

    // Planning headers.
    {"T_PMrph", "F_ProdNo"},
    {"T_PMrph", "F_ProdNO"},
    {"T_PMrph", "F_ItemNo"},
    {"T_PMrph", "F_OrderQty"},
    {"T_PMrph", "F_SafeQty"},
    {"T_PMrph", "F_NeedQty"},
    {"T_PMrph", "F_PlanPurQty"},
    {"T_PMrph", "F_Status"},

    // Planning lines.
    {"T_PMrpi", "F_ProdNo"},
    {"T_PMrpi", "F_ProdNO"},
    {"T_PMrpi", "F_ItemNo"},
    {"T_PMrpi", "F_Dosage"},
    {"T_PMrpi", "F_Waste"},
    {"T_PMrpi", "F_SafeQty"},
    {"T_PMrpi", "F_RequestQty"},
    {"T_PMrpi", "F_ReQuestQty"},
    {"T_PMrpi", "F_LeadTime"},
    {"T_PMrpi", "F_Status"},

    // Stock: reservations, summary and warehouse lines.
    {"T_WStockQtys", "F_ProdNo"},
    {"T_WStockQtys", "F_ItemNo"},
    {"T_WStockQtys", "F_ReduceQty"},
    {"T_WStockQtyh", "F_ItemNo"},
    {"T_WStockQtyh", "F_SafeQty"},
    {"T_WStockQtyh", "F_NoPoStockQty"},
    {"T_WStockQtyh", "F_NoPostockQty"},
    {"T_WStockQtyi", "F_ItemNo"},
    {"T_WStockQtyi", "F_StockQty"},

    // Purchasing.
    {"T_CPurh", "F_PurNo"},
    {"T_CPurh", "F_Status"},
    {"T_CPuri", "F_PurNo"},
    {"T_CPuri", "F_ItemNo"},
    {"T_CPuri", "F_ProdNo"},
    {"T_CPuri", "F_PurQty"},
    {"T_CPuri", "F_Status"},

    // Engineering data.
    {"T_EBom", "F_GoodsNo"},
    {"T_EBom", "F_PartNo"},
    {"T_EBom", "F_Dosage"},
    {"T_EBom", "F_Waste"},
    {"T_EBom", "F_LeadDay"},
    {"T_EBomCheck", "F_GoodsNo"},
    {"T_EBomCheck", "F_Approve"},
    {"T_EItem", "F_ItemNo"},
    {"T_EItem", "F_Type"},
    {"T_EItem", "F_ItemName"},
    {"T_EItem", "F_ItemDesc"},
    {"T_EItem", "F_Unit"},
    // The lock row serialize_allocation=1 writes.
    {"t_tovrand_lock", "F_Name"},
    {"t_tovrand_lock", "F_Taken"},
};

using ColumnInventoryTest = DatabaseTest;

TEST_F(ColumnInventoryTest, EveryColumnTheComponentNamesResolves) {
  for (const auto& use : kColumnUses) {
    const std::string sql = std::string("select ") + use.column + " from " + use.table + " limit 0";
    SCOPED_TRACE(sql);
    EXPECT_NO_THROW(exec(sql));
  }
}

TEST_F(ColumnInventoryTest, EveryColumnOfTheSchemaIsNamedByTheComponentOrIsBookkeeping) {
  // Columns the component never names are allowed only where a table needs them for its own
  // sake: surrogate keys and the descriptive columns of the other modules' tables.
  const std::string extra = scalar(
      "select group_concat(concat(table_name, '.', column_name) order by table_name, ordinal_position "
      "separator ' ') "
      "from information_schema.columns where table_schema = database() and column_name <> 'F_ID' and concat("
      "table_name, '.', lower(column_name)) not in (" +
      [] {
        std::string list;
        for (const auto& use : kColumnUses) {
          std::string table = use.table, column = use.column;
          for (auto& c : table) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
          for (auto& c : column) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
          if (!list.empty()) list += ",";
          list += "'" + table + "." + column + "'";
        }
        return list;
      }() +
      ")");
  EXPECT_EQ(extra,
            "t_borderh.F_Note t_boutmakei.F_OrderOutNo t_boutmakei.F_No t_boutmakei.F_ItemNo "
            "t_boutmakei.F_VendorNo t_boutmakei.F_OutDate t_cpurh.F_PurDate t_cpurh.F_VendorNo "
            "t_cpuri.F_DeliverDate t_ebomcheck.F_ApproveDate t_wstockqtyi.F_WhNo");
}

}  // namespace
}  // namespace tovrand::test
