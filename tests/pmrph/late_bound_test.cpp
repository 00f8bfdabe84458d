// clsDataPMrph called by member name, as the command line and the COM shell call it.
#include <gtest/gtest.h>

#include "component/Component.h"
#include "frame/Invoke.h"
#include "pmrph/clsDataPMrph.h"
#include "tests/pmrph/PMrphTest.h"

namespace tovrand::test {
namespace {

class LateBound : public PMrphTest {
 protected:
  void SetUp() override {
    PMrphTest::SetUp();
    cls_ = findComponentClass("Tovrand.clsDataPMrph");
    ASSERT_NE(cls_, nullptr);
    object_ = createObject(*cls_, host());
    ASSERT_NE(object_, nullptr);
  }
  void TearDown() override {
    object_.reset();
    PMrphTest::TearDown();
  }
  Value call(const MemberInfo& member, std::vector<Argument>& args) {
    trace().clear();
    return object_->invoke(member, args);
  }

 private:
  const ClassInfo* cls_ = nullptr;
  std::unique_ptr<DispatchObject> object_;
};

TEST_F(LateBound, AccountDataWritesEveryFigureBackIntoItsArgument) {
  // P = 100 + 20, SQ 10, BN 40, X 30, S 40, C1 30, AT 5: D = 55, A 30, AT 35, M 55, K 500 -> 55.
  exec(
      "insert into t_pmrph (F_ProdNo, F_ItemNo, F_PlanPurQty) values (2026110001, 'M-01', 500);"
      "insert into t_porderchk (F_ProdNo, F_OrderCount) values (2026110001, 100);"
      "insert into t_borderi (F_OrderNo, F_ProdNo, F_BkQty) values (5001, 2026110001, 20);"
      "insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('M-01', 10, 40);"
      "insert into t_wstockqtyi (F_ItemNo, F_StockQty) values ('M-01', 40);"
      "insert into t_cpurh (F_PurNo, F_Status) values ('CG-1', 1);"
      "insert into t_cpuri (F_PurNo, F_ItemNo, F_ProdNo, F_PurQty, F_Status) values "
      "('CG-1', 'M-01', 2026110001, 30, 0);"
      "insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026110001, 'M-01', 5)");
  std::vector<Argument> args{Entity(header(2026110001, "M-01"))};
  for (int i = 0; i < 10; ++i) args.emplace_back(std::in_place_type<Value>, -1.0);

  EXPECT_EQ(call(memberOf<&clsDataPMrph::AccountData>(), args), Value(std::int16_t{1}));

  //                                  C1    A     P      M     K     S     SQ    AT    BN    ATi
  const std::vector<double> expected{30, 30, 120, 55, 55, 40, 10, 35, 40, 5};
  for (std::size_t i = 0; i < expected.size(); ++i)
    EXPECT_EQ(std::get<Value>(args[i + 1]), Value(expected[i])) << i;
  EXPECT_EQ(sql().size(), 7u);
}

TEST_F(LateBound, AccountDataForAMissingHeaderHandsTheFiguresBackUnchanged) {
  std::vector<Argument> args{Entity(header(2026110001, "M-01"))};
  for (int i = 1; i <= 10; ++i) args.emplace_back(std::in_place_type<Value>, static_cast<double>(i));

  EXPECT_EQ(call(memberOf<&clsDataPMrph::AccountData>(), args), Value(std::int16_t{0}));

  for (int i = 1; i <= 10; ++i) EXPECT_EQ(std::get<Value>(args[i]), Value(static_cast<double>(i)));
}

TEST_F(LateBound, QueryPMrphRecordsetHandsItsTextBack) {
  exec("insert into t_pmrph (F_ProdNo, F_ItemNo) values (2026110001, 'M-01')");
  auto col = std::make_shared<Collection>();
  std::vector<Argument> args{col, Value("select * from t_pmrph")};

  EXPECT_EQ(call(memberOf<&clsDataPMrph::QueryPMrphRecordset>(), args), Value(std::int16_t{1}));

  EXPECT_EQ(std::get<Value>(args[1]), Value("select * from t_pmrph"));
  ASSERT_EQ(col->Count(), 1);
  EXPECT_EQ(clsEntPMrph(col->Item(1)).F_ItemNo(), "M-01");
}

TEST_F(LateBound, QueryByIDForPurAndQueryByDeliverDateTakeTheirRangeChoice) {
  exec(
      "insert into t_porder (F_ProdNo, F_Status, F_DeliverDate) values (2026110001, 0, '2026-12-01');"
      "insert into t_pmrph (F_ProdNo, F_ItemNo, F_PlanPurQty) values (2026110001, 'M-01', 3)");
  auto col = std::make_shared<Collection>();
  std::vector<Argument> byId{col, Value(2026110001.0), Value(2026110001.0), Value(std::int16_t{1}),
                             Value("M-")};
  EXPECT_EQ(call(memberOf<&clsDataPMrph::QueryByIDForPur>(), byId), Value(std::int16_t{1}));
  std::vector<Argument> byDate{col, Value(date(2026, 11, 1)), Value(date(2026, 12, 31)),
                               Value(std::int16_t{5})};
  EXPECT_EQ(call(memberOf<&clsDataPMrph::QueryByDeliverDate>(), byDate), Value(std::int16_t{0}));
  EXPECT_TRUE(sql().empty());
  EXPECT_EQ(prodNos(*col), std::vector<double>{2026110001});
}

TEST_F(LateBound, EveryEntityMemberReachesItsMethod) {
  exec(
      "insert into t_pmrph (F_ProdNo, F_ItemNo, F_OrderQty, F_Status) values (2026110001, 'M-01', 7, 1);"
      "insert into t_porder (F_ProdNo, F_Status) values (2026110001, 3)");
  const struct {
    const MemberInfo& member;
    const char* statement;
  } calls[] = {
      {memberOf<&clsDataPMrph::QueryPMrphStatus>(), "Select * From T_PMrph Where F_ProdNO='2026110001'"},
      {memberOf<&clsDataPMrph::QueryByItemNo>(), "select * from T_PMrph where F_ProdNo = '2026110001'"},
      {memberOf<&clsDataPMrph::QueryProdNoRecord>(), "select *  from T_PMrph WHERE F_ProdNo=2026110001"},
      {memberOf<&clsDataPMrph::UpdateRecord>(), "select * from T_PMrph where F_ProdNo = '2026110001'"},
      {memberOf<&clsDataPMrph::AddRecord>(), "SELECT * FROM T_PMrph WHERE F_ProdNo=2026110001"},
  };
  for (const auto& c : calls) {
    std::vector<Argument> args{Entity(header(2026110001, "M-01"))};
    EXPECT_EQ(call(c.member, args), Value(std::int16_t{1})) << c.member.name;
    EXPECT_EQ(sql(), std::vector<std::string>{c.statement}) << c.member.name;
  }
  clsEntPOrder order;
  order.F_ProdNo(2026110001.0);
  std::vector<Argument> status{Entity(order)};
  EXPECT_EQ(call(memberOf<&clsDataPMrph::QueryStatus>(), status), Value(std::int16_t{1}));
  EXPECT_EQ(order.F_Status(), 3);
  clsEntBOrderh salesOrder;
  std::vector<Argument> bOrderh{Entity(salesOrder), Value(2026110001.0)};
  EXPECT_EQ(call(memberOf<&clsDataPMrph::QueryBOrderhRecordset>(), bOrderh), Value(std::int16_t{0}));
  for (const MemberInfo* member :
       {&memberOf<&clsDataPMrph::QueryMonthDate>(), &memberOf<&clsDataPMrph::QueryProdNo>()}) {
    auto col = std::make_shared<Collection>();
    std::vector<Argument> args{col};
    EXPECT_EQ(call(*member, args), Value(std::int16_t{1})) << member->name;
    EXPECT_EQ(col->Count(), 1) << member->name;
  }
  auto lines = std::make_shared<Collection>();
  std::vector<Argument> planning{Entity(header(2026110001, "M-01")), lines};
  EXPECT_EQ(call(memberOf<&clsDataPMrph::AddRecord1>(), planning), Value(std::int16_t{1}));
  EXPECT_TRUE(shown().empty());
}

TEST_F(LateBound, AnEntityOfAnotherClassIsATypeMismatch) {
  std::vector<Argument> args{Entity(clsEntPOrder())};
  const MemberInfo* m = &memberOf<&clsDataPMrph::QueryByItemNo>();
  ASSERT_NE(m, nullptr);
  EXPECT_THROW(createObject(clsDataPMrph::Members(), host())->invoke(*m, args), VbError);
}

}  // namespace
}  // namespace tovrand::test
