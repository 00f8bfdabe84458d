// clsDataPMrpi called by member name, as the command line and the COM shell call it.
#include <gtest/gtest.h>

#include "component/Component.h"
#include "frame/Invoke.h"
#include "frame/Members.h"
#include "pmrpi/clsDataPMrpi.h"
#include "tests/pmrpi/PMrpiTest.h"

namespace tovrand::test {
namespace {

class LateBinding : public PMrpiTest {
 protected:
  void SetUp() override {
    PMrpiTest::SetUp();
    cls_ = findComponentClass("Tovrand.clsDataPMrpi");
    ASSERT_NE(cls_, nullptr);
    object_ = createObject(*cls_, host());
    ASSERT_NE(object_, nullptr);
    exec(
        "insert into t_pmrpi (F_ProdNo, F_ItemNo, F_Dosage, F_RequestQty, F_LeadTime, F_Status) values "
        "(2026110001, 'RM-2001', 2.5, 12, 7, 0), (2026110001, 'RM-2002', 1, 6, 3, 2), "
        "(2026110009, 'RM-2001', 1, 1, 1, 0)");
    exec(
        "insert into t_pmrph (F_ProdNo, F_ItemNo, F_PlanPurQty, F_Status) values (2026110001, 'FG-1001', 30, "
        "0)");
    exec("insert into t_porder (F_ProdNo, F_Status, F_DeliverDate) values (2026110001, 0, '2026-12-01')");
    exec("insert into t_eitem (F_ItemNo, F_ItemName) values ('RM-2001', '冷轧钢板')");
    trace().clear();
  }
  Value call(const MemberInfo& member, std::vector<Argument>& args) { return object_->invoke(member, args); }
  static Argument collection() { return std::make_shared<Collection>(); }
  static Collection& collectionOf(Argument& arg) { return *std::get<std::shared_ptr<Collection>>(arg); }

  const ClassInfo* cls_ = nullptr;
  std::unique_ptr<DispatchObject> object_;
};

TEST_F(LateBinding, TheReleaseRoutineIsNotAMember) {
  EXPECT_EQ(cls_->find("DeleteReduceRecord"), nullptr);
  EXPECT_EQ(memberOf<&clsDataPMrpi::DeleteAllPMrpiRecord>().dispid, 0x6003000E);
  EXPECT_EQ(memberOf<&clsDataPMrpi::AddRecord>().dispid, 0x60030010);
}

TEST_F(LateBinding, EveryMemberIsBoundAndAnswersItsStatus) {
  struct Call {
    const MemberInfo* member;
    std::vector<Argument> args;
    Value expected;
  };
  clsEntPMrph status;
  status.F_ProdNo(2026110001.0);
  status.F_Status(3);
  clsEntEItem item;
  item.F_ItemNo("RM-2001");
  std::vector<Call> calls;
  calls.push_back({&memberOf<&clsDataPMrpi::QueryPMrpiStatus>(),
                   {collection(), Value(2026110001.0)},
                   Value(std::int16_t{1})});
  calls.push_back({&memberOf<&clsDataPMrpi::UpdatePMrpiStatus>(),
                   {lineKey(2026110001, "RM-2001")},
                   Value(std::int16_t{0})});
  calls.push_back({&memberOf<&clsDataPMrpi::UpdatePMrphStatus>(), {Entity(status)}, Value(std::int16_t{1})});
  calls.push_back(
      {&memberOf<&clsDataPMrpi::UpdateRecord>(), {lineKey(2026110001, "RM-2009")}, Value(std::int16_t{0})});
  calls.push_back(
      {&memberOf<&clsDataPMrpi::QueryByID>(), {lineKey(2026110001, "RM-2002")}, Value(std::int16_t{1})});
  calls.push_back(
      {&memberOf<&clsDataPMrpi::QueryByIDForPur>(),
       {collection(), Value(2026110001.0), Value(2026110001.0), Value(std::int16_t{1}), Value("")},
       Value(std::int16_t{1})});
  calls.push_back({&memberOf<&clsDataPMrpi::QueryByDeliverDate>(),
                   {collection(), Value(date(2026, 12, 1)), Value(date(2026, 12, 1)), Value(std::int16_t{4})},
                   Value(std::int16_t{1})});
  calls.push_back({&memberOf<&clsDataPMrpi::GetRecordByCondition>(),
                   {Entity(item), headerKey(2026110001, "RM-2001")},
                   Value(std::int16_t{1})});
  calls.push_back({&memberOf<&clsDataPMrpi::GetItemNoByProdNo>(),
                   {collection(), headerKey(2026110001, "")},
                   Value(std::int16_t{1})});
  calls.push_back({&memberOf<&clsDataPMrpi::QueryItemNo>(),
                   {collection(), Value("2026110001"), Value("2")},
                   Value(std::int16_t{1})});
  calls.push_back({&memberOf<&clsDataPMrpi::QueryEItemNo>(), {Entity(item)}, Value(std::int16_t{1})});
  calls.push_back({&memberOf<&clsDataPMrpi::QueryItemNoRecord>(),
                   {collection(), Value("2026110001")},
                   Value(std::int16_t{1})});
  calls.push_back(
      {&memberOf<&clsDataPMrpi::DeleteAllPMrpiRecord>(), {Value(2026110009.0)}, Value(std::int16_t{1})});
  calls.push_back(
      {&memberOf<&clsDataPMrpi::AddRecord>(), {lineKey(2026110002, "RM-2001")}, Value(std::int16_t{1})});
  calls.push_back({&memberOf<&clsDataPMrpi::getProdNoItemNo>(), {collection(), Value("2026")}, Value()});
  calls.push_back(
      {&memberOf<&clsDataPMrpi::getProdNoItemNoByPMrpi>(), {collection(), Value("2026110001")}, Value()});
  calls.push_back({&memberOf<&clsDataPMrpi::QueryAllNullRecord>(), {collection()}, Value(std::int16_t{1})});
  ASSERT_EQ(calls.size(), cls_->members.size());
  for (std::size_t i = 0; i < calls.size(); ++i) {
    SCOPED_TRACE(std::string(calls[i].member->name));
    EXPECT_EQ(calls[i].member, &cls_->members[i]) << "interface order";
    EXPECT_EQ(call(*calls[i].member, calls[i].args), calls[i].expected);
  }
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(LateBinding, GetProdNoItemNoAnswersEmptyAndFillsTheCallersCollection) {
  std::vector<Argument> args{collection(), Value("202611")};
  Value result = call(memberOf<&clsDataPMrpi::getProdNoItemNo>(), args);
  EXPECT_TRUE(result.isEmpty());
  EXPECT_EQ(describeAll<clsEntPMrph>(collectionOf(args[0]), describeHeader),
            std::vector<std::string>{"2026110001|FG-1001|0|0|0|30|0"});
}

TEST_F(LateBinding, GetProdNoItemNoByPMrpiAnswersEmptyAndFillsTheCallersCollection) {
  std::vector<Argument> args{collection(), Value("2026110001")};
  EXPECT_TRUE(call(memberOf<&clsDataPMrpi::getProdNoItemNoByPMrpi>(), args).isEmpty());
  EXPECT_EQ(describeAll<clsEntPMrpi>(collectionOf(args[0]), describeLine),
            std::vector<std::string>{"2026110001|RM-2001|0|0|0|12|0|0"});
}

TEST_F(LateBinding, EntitiesComeBackFilledThroughTheCallersReference) {
  Entity entity = lineKey(2026110001, "RM-2001");
  std::vector<Argument> args{entity};
  EXPECT_EQ(call(memberOf<&clsDataPMrpi::QueryByID>(), args), Value(std::int16_t{1}));
  EXPECT_EQ(describeLine(clsEntPMrpi(entity)), "2026110001|RM-2001|2.5|0|0|12|7|0");
}

TEST_F(LateBinding, ScalarArgumentsAreConvertedAsVbConvertsThem) {
  // A production number given as text, a range choice given as a double.
  std::vector<Argument> args{collection(), Value("2026110001"), Value(2026110001.0), Value(4.0), Value("")};
  EXPECT_EQ(call(memberOf<&clsDataPMrpi::QueryByIDForPur>(), args), Value(std::int16_t{1}));
  EXPECT_EQ(collectionOf(args[0]).Count(), 2);
  std::vector<Argument> deleteArgs{Value("2026110001")};
  EXPECT_EQ(call(memberOf<&clsDataPMrpi::DeleteAllPMrpiRecord>(), deleteArgs), Value(std::int16_t{1}));
  EXPECT_EQ(scalar("select group_concat(F_ProdNo) from t_pmrpi"), "2026110009");
}

TEST_F(LateBinding, AnArgumentOfTheWrongKindIsATypeMismatch) {
  std::vector<Argument> args{Value("not an entity")};
  EXPECT_VB_ERROR(call(memberOf<&clsDataPMrpi::QueryByID>(), args), vberr::kTypeMismatch, "Type mismatch");
  std::vector<Argument> wrongClass{headerKey(2026110001, "RM-2001")};
  EXPECT_VB_ERROR(call(memberOf<&clsDataPMrpi::AddRecord>(), wrongClass), vberr::kTypeMismatch,
                  "Type mismatch");
  EXPECT_TRUE(statements().empty());
}

}  // namespace
}  // namespace tovrand::test
