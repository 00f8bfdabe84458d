// clsDataPOrderChk called by member name, as the command line and the COM shell call it.
#include <gtest/gtest.h>

#include "component/Component.h"
#include "frame/Invoke.h"
#include "porderchk/clsDataPOrderChk.h"
#include "tests/porderchk/POrderChkTest.h"
#include "tests/support/ExpectVbError.h"

namespace tovrand::test {
namespace {

class LateBoundCalls : public POrderChkTest {
 protected:
  std::string options() const override { return "server_date=2008-05-15"; }

  void SetUp() override {
    POrderChkTest::SetUp();
    const ClassInfo* cls = findComponentClass("Tovrand.clsDataPOrderChk");
    ASSERT_NE(cls, nullptr);
    object_ = createObject(*cls, hostWith(options()));
    ASSERT_NE(object_, nullptr);
  }
  void TearDown() override {
    object_.reset();
    POrderChkTest::TearDown();
  }

  Value call(const MemberInfo& member, std::vector<Argument> args) { return object_->invoke(member, args); }
  // Bound by name as VB binds it: without regard to case.
  Value callByName(std::string_view name, std::vector<Argument> args) {
    const MemberInfo* member = object_->classInfo().find(name);
    if (member == nullptr) throw std::logic_error("no member " + std::string(name));
    return object_->invoke(*member, args);
  }

  std::unique_ptr<DispatchObject> object_;
};

TEST_F(LateBoundCalls, EveryMemberOfTheInterfaceIsBoundInInterfaceOrder) {
  std::vector<const MemberInfo*> bound;
  std::vector<std::string> names;
  std::vector<Value> results;
  for (const MemberInfo& member : object_->classInfo().members) {
    std::vector<Argument> args;
    for (const ParamInfo& p : member.params) {
      switch (p.kind) {
        case ParamKind::Entity:
          args.emplace_back(newNativeEntity(*findEntityClass(p.entityClass)));
          break;
        case ParamKind::Collection:
          args.emplace_back(std::make_shared<Collection>());
          break;
        case ParamKind::Integer:
          args.emplace_back(Value(std::int16_t{0}));
          break;
        case ParamKind::Double:
          args.emplace_back(Value(0.0));
          break;
        default:  // a text that serves as a name and as a caller's query
          args.emplace_back(Value("select * from t_borderh"));
          break;
      }
    }
    bound.push_back(&member);
    names.emplace_back(member.name);
    results.push_back(object_->invoke(member, args));
  }

  using C = clsDataPOrderChk;
  EXPECT_EQ(bound,
            (std::vector<const MemberInfo*>{&memberOf<&C::QueryBOrderiBkQty>(), &memberOf<&C::JudgeExits>(),
                                            &memberOf<&C::UpdateRecord>(), &memberOf<&C::QueryAll>(),
                                            &memberOf<&C::QueryProdNoView>(), &memberOf<&C::QueryMonthDate>(),
                                            &memberOf<&C::QueryProdNo>(), &memberOf<&C::AddRecord>(),
                                            &memberOf<&C::QureyDatabase>(), &memberOf<&C::QuerySalerID>()}));
  const std::int16_t expected[] = {0, 0, 1, 0, 2, 0, 0, 0, 0, 0};
  ASSERT_EQ(results.size(), 10u);
  for (std::size_t i = 0; i < results.size(); ++i) EXPECT_EQ(results[i], Value(expected[i])) << names[i];
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(LateBoundCalls, AddRecordTakesVariantsAsAScriptPassesThem) {
  Collection unused;
  salesOrder(unused, 2805001, 2);
  auto lines = std::make_shared<Collection>();
  lines->Add(line(2805001, "1", "FG-1"));
  lines->Add(line(2805001, "2", "FG-2"));

  // The order number as a number and the width as text: converted as VB converts them.
  Value result = call(memberOf<&clsDataPOrderChk::AddRecord>(),
                      {lines, Value(2805001.0), Value("C001"), Value("PO-1"), Value("4")});

  EXPECT_EQ(result, Value(std::int16_t{1}));
  EXPECT_EQ(lineNumbers(2805001), "2008050001,2008050002");
  EXPECT_EQ(
      sql()[3],
      "update T_BOrderi set F_ProdNo=2008050001 where F_OrderNo=2805001 and F_ItemNo='FG-1' and f_No='1'");
}

TEST_F(LateBoundCalls, QueryAllFillsTheCallersEntity) {
  exec(
      "insert into t_porderchk (F_ProdNo, F_OrderNo, F_ItemNo, F_CustNo) values (2008050001, 2805001, "
      "'FG-1', "
      "'C001')");
  clsEntPOrderChk review;

  Value result = callByName("queryall", {Entity(review), Value("2008050001")});

  EXPECT_EQ(result, Value(std::int16_t{0}));
  EXPECT_EQ(review.F_ItemNo(), "FG-1");
  EXPECT_EQ(review.F_CustNo(), "C001");
  EXPECT_EQ(review.F_EGAdmit(), 2);
  EXPECT_EQ(sql(),
            std::vector<std::string>{"select distinct  *  from T_POrderChk  where F_ProdNo=2008050001"});
}

TEST_F(LateBoundCalls, UpdateRecordAndQueryMonthDateWorkOnTheCallersObjects) {
  exec("insert into t_porderchk (F_ProdNo) values (2008050001), (2008040001)");
  clsEntPOrderChk review;
  review.F_ProdNo(2008050001.0);
  review.F_Way("外协");
  review.F_CSChecker("陈刚");
  auto months = std::make_shared<Collection>();

  EXPECT_EQ(call(memberOf<&clsDataPOrderChk::UpdateRecord>(), {Entity(review), Value("终审")}),
            Value(std::int16_t{1}));
  EXPECT_EQ(call(memberOf<&clsDataPOrderChk::QueryMonthDate>(), {months}), Value(std::int16_t{0}));

  EXPECT_EQ(scalar("select concat_ws('|', F_Way, F_CSChecker) from t_porderchk where F_ProdNo=2008050001"),
            "外协|陈刚");
  ASSERT_EQ(months->Count(), 2);
  EXPECT_EQ(clsEntPOrderChk(months->Item(1)).F_ProdNo(), 200805.0);
  EXPECT_EQ(clsEntPOrderChk(months->Item(2)).F_ProdNo(), 200804.0);
}

TEST_F(LateBoundCalls, AnEntityOfAnotherClassIsATypeMismatch) {
  clsEntBOrderh header;

  EXPECT_VB_ERROR(call(memberOf<&clsDataPOrderChk::QueryProdNoView>(), {Entity(header)}),
                  vberr::kTypeMismatch, "Type mismatch");
}

}  // namespace
}  // namespace tovrand::test
