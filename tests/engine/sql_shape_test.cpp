#include <gtest/gtest.h>

#include "engine/SqlShape.h"

namespace tovrand::engine {
namespace {

TEST(WholeTableTest, EverySpellingOfAWholeTableSelectNamesTheTableInLowerCase) {
  EXPECT_EQ(wholeTableOf("select * from t_porder "), "t_porder");
  EXPECT_EQ(wholeTableOf("select * from  t_porderchk"), "t_porderchk");
  EXPECT_EQ(wholeTableOf("SELECT * From T_PMrpi "), "t_pmrpi");
  EXPECT_EQ(wholeTableOf("select * from `T_POrder`"), "t_porder");
  EXPECT_EQ(wholeTableOf("select * from erp.t_porder"), "erp.t_porder");
}

TEST(WholeTableTest, ConditionsOrderingAndAnAliasKeepTheTablesColumns) {
  EXPECT_EQ(wholeTableOf("select * from t_porder where F_ProdNo ='2026110001'"), "t_porder");
  EXPECT_EQ(wholeTableOf("SELECT * FROM T_WStockQtys WHERE F_ProdNo=1 and  F_ItemNo='M-1'"), "t_wstockqtys");
  EXPECT_EQ(wholeTableOf("select * from t_big where F_ProdNo <= 3 order by F_ProdNo"), "t_big");
  EXPECT_EQ(wholeTableOf("select * from t_porder pi where pi.F_Status=0"), "t_porder");
  EXPECT_EQ(wholeTableOf("select * from t_porder as pi limit 3"), "t_porder");
}

TEST(WholeTableTest, JoinsSelectListsDerivedTablesAndUnionsAreNotAWholeTable) {
  EXPECT_FALSE(wholeTableOf("select F_ProdNo from t_porder"));
  EXPECT_FALSE(wholeTableOf("select max(F_ProdNo) as ProdNo from T_POrderChk"));
  EXPECT_FALSE(wholeTableOf("select * from T_CPuri ,(select F_PurNo as PurNo from T_CPurh) h WHERE 1=1"));
  EXPECT_FALSE(wholeTableOf("SELECT B.*  FROM T_EBom B,T_EBomCheck BC WHERE BC.F_GoodsNo=B.F_GoodsNo"));
  EXPECT_FALSE(wholeTableOf("select * from t_a join t_b on t_a.id = t_b.id"));
  EXPECT_FALSE(wholeTableOf("select * from t_a where x = 1 union select * from t_b"));
  EXPECT_FALSE(wholeTableOf("select distinct * from t_a"));
  EXPECT_FALSE(wholeTableOf("update t_porder set F_Status=1"));
  EXPECT_FALSE(wholeTableOf(""));
}

TEST(ResultShapeTest, TextsThatDifferOnlyInTheirConditionsLiteralsShareAShape) {
  EXPECT_EQ(resultShapeOf("select * from t_porder where F_ProdNo ='2026110001'"),
            resultShapeOf("select * from t_porder where F_ProdNo ='2026110002'"));
  EXPECT_EQ(resultShapeOf("select * from t where a = 1.5 and b = 'x''y' and c in (1, 2)"),
            "select * from t where a = ? and b = ? and c in (?, ?)");
  EXPECT_EQ(resultShapeOf("select * from t where F_ItemNo like '%a%' and F_No2 = 7"),
            "select * from t where F_ItemNo like ? and F_No2 = ?");
}

TEST(ResultShapeTest, TheSelectListAndTheFromClauseKeepTheirLiterals) {
  EXPECT_EQ(resultShapeOf("select 'a' as x, 1 from t where id = 3"),
            "select 'a' as x, 1 from t where id = ?");
  EXPECT_NE(resultShapeOf("select 'a' as x from t where id = 3"),
            resultShapeOf("select 1 as x from t where id = 3"));
  // A derived table's WHERE is inside parentheses: the outer text has no WHERE of its own.
  std::string derived = "select * from (select 'a' as x from t where id = 3) d";
  EXPECT_EQ(resultShapeOf(derived), derived);
}

TEST(ResultShapeTest, ATextWithoutAConditionOrWithAUnionIsItsOwnShape) {
  EXPECT_EQ(resultShapeOf("select curdate() as dd"), "select curdate() as dd");
  std::string both =
      "select F_ProdNo from a where F_Status = 3 union select F_ProdNo from b where F_Status = 2";
  EXPECT_EQ(resultShapeOf(both), both);
}

TEST(ResultShapeTest, QuotesAndCommentsDoNotEndAConditionEarly) {
  EXPECT_EQ(resultShapeOf("select * from t where a = 'where (' and b = 2 -- 'x\n and c = 3"),
            "select * from t where a = ? and b = ? -- 'x\n and c = ?");
  EXPECT_EQ(resultShapeOf("select `where` from t where `a``b` = 'it\\'s'"),
            "select `where` from t where `a``b` = ?");
}

}  // namespace
}  // namespace tovrand::engine
