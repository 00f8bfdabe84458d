// Texts that try to smuggle a second statement, or to widen a condition, into every text argument and
// every text property of every member: the component splices texts without escaping (its contract),
// so a payload may break a statement or change what one statement selects, but it can never run a
// statement of its own. Afterwards every table exists, the schema is what it was, and no table but the
// member's own has changed.
#include <gtest/gtest.h>

#include "component/Component.h"
#include "frame/Invoke.h"
#include "frame/Messages.h"
#include "pmrpi/clsDataPMrpi.h"
#include "tests/input/MemberCalls.h"

namespace tovrand::test {
namespace {

constexpr const char* kKind = "injection";

const std::vector<NamedValue>& payloads() {
  static const std::vector<NamedValue> all{
      {"x'; drop table t_porder; -- ", Value("x'; drop table t_porder; -- ")},
      {"x' or '1'='1", Value("x' or '1'='1")},
      {"x'; delete from t_pmrpi; #", Value("x'; delete from t_pmrpi; #")},
      {"\\'; update t_porderchk set F_Status = 9; -- ",
       Value("\\'; update t_porderchk set F_Status = 9; -- ")},
      {"x' union select 1; alter table t_eitem drop F_Unit; /*",
       Value("x' union select 1; alter table t_eitem drop F_Unit; /*")},
  };
  return all;
}

class Injection : public MemberCallTest, public ::testing::WithParamInterface<std::size_t> {
 protected:
  static void TearDownTestSuite() {
    MemberCallTest::TearDownTestSuite();
    printTally(kKind);
  }
};

TEST_P(Injection, NoTextInAnyArgumentOrPropertyRunsASecondStatement) {
  const MemberContract& contract = memberContracts().at(GetParam());
  const MemberInfo& member = memberInfo(contract);
  const std::string schema = schemaDigest();
  for (const Slot& slot : slotsOf(member, contract.starts.front())) {
    if (slot.type != PropertyType::String) continue;
    for (std::size_t s : startsFor(contract, slot)) {
      for (const NamedValue& payload : payloads()) {
        std::vector<Argument> args = buildArguments(contract.starts.at(s), member, {{slot, payload.value}});
        const std::string what = contract.name() + " with " + slot.describe(member) + " = " + payload.label;
        CallOutcome outcome = call(contract, args);
        expectDocumented(contract, outcome, what, tally(kKind));
        // A dropped or altered table changes its checksum too.
        expectOnlyTargetsChangedAndRestore(contract, what);
      }
    }
  }
  EXPECT_EQ(schemaDigest(), schema) << contract.name() << ": the schema changed";
}

INSTANTIATE_TEST_SUITE_P(EveryMember, Injection, ::testing::Range<std::size_t>(0, memberContracts().size()),
                         contractTestName);

// Texts the component reads back from its own tables are spliced as they stand too: a material
// number stored with a quote in it reaches the release's statements.
class StoredText : public MemberCallTest {
 protected:
  std::int16_t releasePlanning(double prodNo) {
    auto object = createObject(clsDataPMrpi::Members(), host());
    std::vector<Argument> args{Value(prodNo)};
    Value result = object->invoke(memberOf<&clsDataPMrpi::DeleteAllPMrpiRecord>(), args);
    return result.integer();
  }
};

TEST_F(StoredText, AStoredMaterialNumberCannotDropATableThroughTheRelease) {
  exec(
      "insert into t_pmrpi (F_ProdNo, F_ItemNo, F_RequestQty) values (2026100001, "
      "'x''; drop table t_wstockqtyh;#', 1)");
  exec(
      "insert into t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) values (2026100001, "
      "'x''; drop table t_wstockqtyh;#', 5)");
  const std::string schema = schemaDigest();
  trace().clear();
  EXPECT_EQ(releasePlanning(2026100001), 1);
  // The material's release broke on its statement, showed its message and the loop went on.
  ASSERT_EQ(messages().messages().size(), 1u);
  EXPECT_NE(messages().messages()[0].text.find("SQL syntax"), std::string::npos)
      << messages().messages()[0].text;
  EXPECT_EQ(schemaDigest(), schema);
  EXPECT_EQ(scalar("select count(*) from t_wstockqtyh"), "15");
  EXPECT_EQ(scalar("select count(*) from t_pmrpi where F_ProdNo = 2026100001"), "0");
}

TEST_F(StoredText, AStoredMaterialNumberWidensTheReleaseConditionButStaysOneStatement) {
  // What the contract leaves to the callers: a stored text is spliced unescaped, so this one makes
  // the release of one production order delete every production order's reservations.
  exec("insert into t_pmrpi (F_ProdNo, F_ItemNo, F_RequestQty) values (2026100003, 'x'' or ''1''=''1', 1)");
  const std::string schema = schemaDigest();
  ASSERT_EQ(scalar("select count(*) from t_wstockqtys where F_ProdNo <> 2026100003"), "7");
  EXPECT_EQ(releasePlanning(2026100003), 1);
  EXPECT_TRUE(messages().messages().empty());
  EXPECT_EQ(scalar("select count(*) from t_wstockqtys"), "0");
  EXPECT_EQ(schemaDigest(), schema);
  EXPECT_EQ(trace().methodStatements(),
            (std::vector<std::string>{
                "Select * From T_PMrpi Where F_ProdNo='2026100003'",
                // The order's two unreserved lines first: nothing of theirs to release.
                "SELECT * FROM T_WStockQtys WHERE F_ProdNo=2026100003 and  F_ItemNo='RM-2001'",
                "SELECT * FROM T_WStockQtys WHERE F_ProdNo=2026100003 and  F_ItemNo='RM-2006'",
                "SELECT * FROM T_WStockQtys WHERE F_ProdNo=2026100003 and  F_ItemNo='x' or '1'='1'",
                "Delete FROM T_WStockQtys WHERE F_ProdNo=2026100003 and  F_ItemNo='x' or '1'='1'",
                "SELECT * FROM T_WStockQtyh WHERE F_ItemNo='x' or '1'='1'",
                "Delete From T_PMrpi Where F_ProdNo='2026100003'",
            }));
}

}  // namespace
}  // namespace tovrand::test
