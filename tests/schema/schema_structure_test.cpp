// The database schema: tables under lower-case names reachable under every spelling the component
// uses, keys, the indexes behind the component's look-ups, and a clean reload.

#include <cctype>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/ExpectVbError.h"
#include "tests/support/TestDatabase.h"

namespace tovrand::test {
namespace {

const std::vector<std::string> kTables = {
    "t_borderh",    "t_borderi",    "t_boutmakei",  "t_cpurh",        "t_cpuri",  "t_ebom",
    "t_ebomcheck",  "t_eitem",      "t_pmrph",      "t_pmrpi",        "t_porder", "t_porderchk",
    "t_wstockqtyh", "t_wstockqtyi", "t_wstockqtys", "t_tovrand_lock",
};

std::string schemaText() {
  std::ifstream in(std::string(TOVRAND_SOURCE_DIR) + "/schema/tovrand.sql", std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

class SchemaStructureTest : public DatabaseTest {
 protected:
  long count(const std::string& sql) const { return std::stol(scalar(sql)); }

  // Through the command-line client, the way an installation loads the file.
  void reloadSchema() const { TestServer::instance().runSql(database(), schemaText()); }

  std::string primaryKey(const std::string& table) const {
    return scalar(
        "select group_concat(column_name order by seq_in_index separator ',') from "
        "information_schema.statistics "
        "where table_schema = database() and table_name = '" +
        table + "' and index_name = 'PRIMARY'");
  }
};

TEST_F(SchemaStructureTest, SchemaTextNeitherCreatesNorSelectsADatabase) {
  const std::string text = schemaText();
  ASSERT_FALSE(text.empty());
  std::string upper;
  for (char c : text) upper += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  EXPECT_EQ(upper.find("CREATE DATABASE"), std::string::npos);
  EXPECT_EQ(upper.find("CREATE SCHEMA"), std::string::npos);
  EXPECT_EQ(upper.find("\nUSE "), std::string::npos);
}

TEST_F(SchemaStructureTest, LoadsTwiceInARowIntoTheSameDatabase) {
  reloadSchema();
  reloadSchema();
  EXPECT_EQ(count("select count(*) from information_schema.tables where table_schema = database()"),
            static_cast<long>(kTables.size()));
}

TEST_F(SchemaStructureTest, ReloadLeavesEveryTableEmpty) {
  exec(
      "insert into t_porder (F_ProdNo) values (2026110001);"
      "insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110001, 'RM-1', 5)");
  reloadSchema();
  for (const auto& table : kTables) {
    SCOPED_TRACE(table);
    EXPECT_EQ(count("select count(*) from " + table), 0);
  }
}

TEST_F(SchemaStructureTest, CreatesExactlyTheComponentsTablesUnderLowerCaseNames) {
  for (const auto& table : kTables) {
    SCOPED_TRACE(table);
    EXPECT_EQ(count("select count(*) from information_schema.tables where table_schema = database() "
                    "and binary table_name = '" +
                    table + "'"),
              1);
  }
  EXPECT_EQ(count("select count(*) from information_schema.tables where table_schema = database()"),
            static_cast<long>(kTables.size()));
}

TEST_F(SchemaStructureTest, EveryTableIsReachableAsTheComponentSpellsIt) {
  const std::vector<std::string> spellings = {
      "t_porder",  "T_POrder",  "t_porderchk",  "T_POrderChk",  "t_POrderChk",
      "T_PMrph",   "T_PMrpi",   "T_WStockQtys", "T_WStockQtyh", "T_WStockQtyi",
      "T_BOrderh", "T_BOrderi", "t_borderi",    "t_boutmakei",  "T_CPurh",
      "T_CPuri",   "T_EBom",    "T_EBomCheck",  "T_EItem",
  };
  for (const auto& name : spellings) {
    SCOPED_TRACE(name);
    EXPECT_EQ(scalar("select count(*) from " + name), "0");
  }
}

TEST_F(SchemaStructureTest, EveryTableIsInnoDbWithUtf8mb4GeneralCollation) {
  EXPECT_EQ(count("select count(*) from information_schema.tables where table_schema = database() "
                  "and (engine <> 'InnoDB' or table_collation <> 'utf8mb4_general_ci')"),
            0);
  EXPECT_EQ(count("select count(*) from information_schema.columns where table_schema = database() "
                  "and character_set_name is not null and collation_name <> 'utf8mb4_general_ci'"),
            0);
}

TEST_F(SchemaStructureTest, NaturalKeysArePrimaryKeys) {
  const std::vector<std::pair<std::string, std::string>> keys = {
      {"t_porder", "F_ProdNo"},     {"t_porderchk", "F_ProdNo"},  {"t_pmrph", "F_ProdNo"},
      {"t_wstockqtyh", "F_ItemNo"}, {"t_eitem", "F_ItemNo"},      {"t_borderh", "F_OrderNo"},
      {"t_cpurh", "F_PurNo"},       {"t_ebomcheck", "F_GoodsNo"},
  };
  for (const auto& [table, columns] : keys) {
    SCOPED_TRACE(table);
    EXPECT_EQ(primaryKey(table), columns);
  }
}

TEST_F(SchemaStructureTest, TablesWithoutANaturalKeyHaveAnAutoIncrementId) {
  for (const std::string table :
       {"t_pmrpi", "t_wstockqtys", "t_wstockqtyi", "t_borderi", "t_boutmakei", "t_cpuri", "t_ebom"}) {
    SCOPED_TRACE(table);
    EXPECT_EQ(primaryKey(table), "F_ID");
    EXPECT_EQ(scalar("select extra from information_schema.columns where table_schema = database() and "
                     "table_name = '" +
                     table + "' and column_name = 'F_ID'"),
              "auto_increment");
  }
}

TEST_F(SchemaStructureTest, PlanningLinesAreUniquePerProductionOrderAndMaterial) {
  EXPECT_EQ(scalar("select group_concat(column_name order by seq_in_index separator ',') from "
                   "information_schema.statistics where table_schema = database() and table_name = 't_pmrpi' "
                   "and index_name = 'ux_pmrpi_prodno_itemno' and non_unique = 0"),
            "F_ProdNo,F_ItemNo");
  exec("insert into t_pmrpi (F_ProdNo, F_ItemNo) values (2026110001, 'RM-2001'), (2026110001, 'RM-2002')");
  EXPECT_VB_ERROR(exec("insert into t_pmrpi (F_ProdNo, F_ItemNo) values (2026110001, 'RM-2001')"),
                  vberr::kProviderError,
                  "Duplicate entry '2026110001-RM-2001' for key 'ux_pmrpi_prodno_itemno'");
  EXPECT_EQ(count("select count(*) from t_pmrpi"), 2);
}

TEST_F(SchemaStructureTest, APlanningLineMayHaveNoMaterial) {
  exec("insert into t_pmrpi (F_ProdNo, F_ItemNo) values (2026110001, NULL), (2026110001, NULL)");
  EXPECT_EQ(count("select count(*) from t_pmrpi where F_ProdNo = 2026110001 and F_ItemNo is null"), 2);
  // Each line has an id of its own; how far apart they are is the server's (a cluster steps by its size).
  EXPECT_EQ(scalar("select count(distinct F_ID) from t_pmrpi where F_ID > 0"), "2");
}

TEST_F(SchemaStructureTest, ProductionAndSalesOrderNumbersAreDoubles) {
  const std::vector<std::pair<std::string, std::string>> columns = {
      {"t_porder", "F_ProdNo"},   {"t_porderchk", "F_ProdNo"},  {"t_pmrph", "F_ProdNo"},
      {"t_pmrpi", "F_ProdNo"},    {"t_wstockqtys", "F_ProdNo"}, {"t_borderi", "F_ProdNo"},
      {"t_cpuri", "F_ProdNo"},    {"t_boutmakei", "F_ProdNo"},  {"t_borderh", "F_OrderNo"},
      {"t_borderi", "F_OrderNo"}, {"t_porder", "F_OrderNo"},    {"t_porderchk", "F_OrderNo"},
  };
  for (const auto& [table, column] : columns) {
    SCOPED_TRACE(table + "." + column);
    EXPECT_EQ(scalar("select data_type from information_schema.columns where table_schema = database() and "
                     "table_name = '" +
                     table + "' and column_name = '" + column + "'"),
              "double");
  }
}

TEST_F(SchemaStructureTest, LookedUpColumnsLeadAnIndex) {
  const std::vector<std::pair<std::string, std::string>> columns = {
      {"t_porder", "F_ProdNo"},      {"t_porder", "F_CustNo"},     {"t_porder", "F_OrderMode"},
      {"t_porder", "F_DeliverDate"}, {"t_porderchk", "F_ProdNo"},  {"t_pmrph", "F_ProdNo"},
      {"t_pmrph", "F_PlanPurQty"},   {"t_pmrph", "F_Status"},      {"t_pmrpi", "F_ProdNo"},
      {"t_pmrpi", "F_RequestQty"},   {"t_pmrpi", "F_Status"},      {"t_wstockqtys", "F_ProdNo"},
      {"t_wstockqtys", "F_ItemNo"},  {"t_wstockqtyh", "F_ItemNo"}, {"t_wstockqtyi", "F_ItemNo"},
      {"t_borderh", "F_OrderNo"},    {"t_borderi", "F_OrderNo"},   {"t_borderi", "F_ProdNo"},
      {"t_boutmakei", "F_ProdNo"},   {"t_cpurh", "F_PurNo"},       {"t_cpurh", "F_Status"},
      {"t_cpuri", "F_ItemNo"},       {"t_cpuri", "F_ProdNo"},      {"t_cpuri", "F_PurNo"},
      {"t_ebom", "F_GoodsNo"},       {"t_ebomcheck", "F_GoodsNo"}, {"t_eitem", "F_ItemNo"},
  };
  for (const auto& [table, column] : columns) {
    SCOPED_TRACE(table + "." + column);
    EXPECT_GE(count("select count(*) from information_schema.statistics where table_schema = database() and "
                    "table_name = '" +
                    table + "' and column_name = '" + column + "' and seq_in_index = 1"),
              1);
  }
}

TEST_F(SchemaStructureTest, OnlyUnsetQuantitiesOfAProductionOrderStayNull) {
  // clsDataPOrder.AddRecord writes these columns only; UpdateOrderOutNo adds to a NULL F_Prodqty.
  exec(
      "insert into t_porder (F_ProdNo, f_CustNo, F_SalerId, F_ItemNo, F_OrderMode, f_OrderNo, f_CorderNo, "
      "F_Balqty, F_Ordqty, f_DeliverDate, F_Status) values (2026110001, 'C001', '王芳', 'FG-1001', '自制', "
      "2611006, 'PO-1', 100, 100, '2026-12-20', 0)");
  EXPECT_EQ(scalar("select F_Prodqty from t_porder where F_ProdNo = 2026110001"), "NULL");
  EXPECT_EQ(scalar("select F_InDate from t_porder where F_ProdNo = 2026110001"), "NULL");
  exec("update t_porder set F_Prodqty=ifnull(F_Prodqty,0)+40 where F_ProdNo ='2026110001'");
  EXPECT_EQ(scalar("select F_Prodqty from t_porder where F_ProdNo = 2026110001"), "40");
}

TEST_F(SchemaStructureTest, PlanningLineWrittenWithoutStatusKeepsNullStatus) {
  exec("insert into t_pmrpi (F_ProdNo, F_ItemNo, F_Dosage) values (2026110001, 'RM-2001', 0.32)");
  EXPECT_EQ(scalar("select F_Status from t_pmrpi where F_ProdNo = 2026110001"), "NULL");
  EXPECT_EQ(scalar("select IFNull(F_Status,0) from t_pmrpi where F_ProdNo = 2026110001"), "0");
}

TEST_F(SchemaStructureTest, PlanningHeaderAcceptsNullPlannedPurchase) {
  exec("insert into t_pmrph (F_ProdNo, F_ItemNo, F_PlanPurQty) values (2026110001, 'FG-1001', NULL)");
  EXPECT_EQ(scalar("select F_PlanPurQty from t_pmrph where F_ProdNo = 2026110001"), "NULL");
}

TEST_F(SchemaStructureTest, ProductionNumberPrintsAsItsDigits) {
  exec("insert into t_porderchk (F_ProdNo) values (2026110001)");
  EXPECT_EQ(scalar("select left(cast(F_ProdNo as char),6) from t_porderchk"), "202611");
  EXPECT_EQ(scalar("select left(F_ProdNo,6) from T_POrderChk"), "202611");
}

}  // namespace
}  // namespace tovrand::test
