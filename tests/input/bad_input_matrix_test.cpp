// Every member of the four classes, with every argument and every property of an entity it is given
// replaced in turn by a hostile value: each call answers one of the member's documented statuses with
// its documented message form, and changes no table but the ones the member writes. One value at a
// time, from a realistic call on the sample data, so that every argument and property meets every
// value of its type without multiplying them with each other.
#include <gtest/gtest.h>

#include "component/Component.h"
#include "tests/input/MemberCalls.h"

namespace tovrand::test {
namespace {

constexpr const char* kKind = "bad-input matrix";

class BadInput : public MemberCallTest, public ::testing::WithParamInterface<std::size_t> {
 protected:
  static void TearDownTestSuite() {
    MemberCallTest::TearDownTestSuite();
    printTally(kKind);
  }
};

TEST_P(BadInput, EveryArgumentAndPropertyAnswersADocumentedStatusAndChangesOnlyTheMembersTables) {
  const MemberContract& contract = memberContracts().at(GetParam());
  const MemberInfo& member = memberInfo(contract);

  // The starting calls are ordinary ones: they answer without a message box.
  for (std::size_t s = 0; s < contract.starts.size(); ++s) {
    std::vector<Argument> args = buildArguments(contract.starts[s], member);
    const std::string what = contract.name() + " starting call " + std::to_string(s);
    CallOutcome outcome = call(contract, args);
    expectDocumented(contract, outcome, what, tally("starting calls"));
    EXPECT_TRUE(outcome.messages.empty()) << what << ": " << outcome.messages.front().text;
    expectOnlyTargetsChangedAndRestore(contract, what);
  }

  std::vector<Slot> slots = slotsOf(member, contract.starts.front());
  for (const Slot& slot : slots) {
    for (std::size_t s : startsFor(contract, slot)) {
      for (const NamedValue& value : hostileValues(slot.type)) {
        std::vector<Argument> args = buildArguments(contract.starts.at(s), member, {{slot, value.value}});
        std::string what = contract.name() + " with " + slot.describe(member) + " = " + value.label;
        if (contract.starts.size() > 1) what += " (starting call " + std::to_string(s) + ")";
        CallOutcome outcome = call(contract, args);
        expectDocumented(contract, outcome, what, tally(kKind));
        expectOnlyTargetsChangedAndRestore(contract, what);
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(EveryMember, BadInput, ::testing::Range<std::size_t>(0, memberContracts().size()),
                         contractTestName);

TEST(MemberContracts, CoverEveryMemberOfTheFourClassesInInterfaceOrder) {
  std::vector<const MemberInfo*> expected;
  for (const ClassInfo& cls : componentClasses())
    for (const MemberInfo& m : cls.members) expected.push_back(&m);
  std::vector<const MemberInfo*> covered;
  for (const MemberContract& c : memberContracts()) covered.push_back(c.member);
  ASSERT_EQ(covered.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i)
    EXPECT_EQ(covered[i], expected[i])
        << "contract " << i << " is " << memberContracts()[i].name() << ", the table has "
        << componentClassOf(*expected[i]).name << "." << expected[i]->name;
}

TEST(MemberContracts, EveryStartingCallGivesEveryParameterAnArgumentOfItsKind) {
  for (const MemberContract& c : memberContracts()) {
    const MemberInfo& member = memberInfo(c);
    for (const CallShape& start : c.starts) {
      ASSERT_EQ(start.size(), member.params.size()) << c.name();
      for (std::size_t i = 0; i < start.size(); ++i) {
        const ParamKind kind = member.params[i].kind;
        const bool fits = kind == ParamKind::Entity       ? std::holds_alternative<EntityShape>(start[i])
                          : kind == ParamKind::Collection ? std::holds_alternative<CollectionShape>(start[i])
                          : kind == ParamKind::DoubleArray
                              ? std::holds_alternative<DoubleArrayShape>(start[i])
                              : std::holds_alternative<Value>(start[i]);
        EXPECT_TRUE(fits) << c.name() << " argument " << member.params[i].name;
      }
    }
  }
}

TEST(BrokenStatements, AreTheOnesThatEndInsideAQuotedText) {
  EXPECT_FALSE(endsInsideText("select * from t_porder where F_CustNo ='C001'"));
  EXPECT_TRUE(endsInsideText("select * from t_porder where F_CustNo ='''"));
  EXPECT_TRUE(endsInsideText("select * from t_eitem where F_ItemNo='\\'"));
  EXPECT_FALSE(endsInsideText("update t set a='it''s' where b='\\\\'"));
  EXPECT_FALSE(endsInsideText("select 1 from t where a='x'; drop table t; -- '"));
  EXPECT_FALSE(endsInsideText("select 1 from t where a='x' /* ' */"));
}

}  // namespace
}  // namespace tovrand::test
