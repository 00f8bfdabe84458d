// The account of schema/grants.sql: exactly the privileges the component needs, enough for every
// member, and nothing a caller's free SQL or a broken statement could use to drop or write what the
// component has no business in.
#include <gtest/gtest.h>

#include <algorithm>

#include "component/Component.h"
#include "engine/ConnectionSettings.h"
#include "frame/Invoke.h"
#include "odbc/OdbcConnection.h"
#include "pmrph/clsDataPMrph.h"
#include "porderchk/clsDataPOrderChk.h"
#include "tests/input/MemberCalls.h"
#include "vb/VbError.h"

namespace tovrand::test {
namespace {

class ComponentAccountTest : public MemberCallTest {
 protected:
  bool componentRunsRestricted() const override { return true; }

  std::string grantee() const { return "'''" + componentAccount().user + "''@''%'''"; }
  // The account's own session on this test's database.
  std::shared_ptr<OdbcConnection> accountSession() {
    return OdbcConnection::openPrivate(ConnectionSettings::parse(dsn()));
  }
  // The server's refusal of `sql` on the account's session ("" when it ran).
  std::string refusal(OdbcConnection& session, const std::string& sql) {
    try {
      session.execute(sql);
    } catch (const VbError& e) {
      return e.description();
    }
    return "";
  }
};

TEST_F(ComponentAccountTest, HoldsExactlyTheGrantsOfTheSchemaFileAndNoOthers) {
  EXPECT_EQ(
      scalar("select group_concat(concat(table_name, ':', privilege_type) order by table_name, "
             "privilege_type separator ' ') from information_schema.table_privileges where grantee = " +
             grantee() + " and table_schema = database()"),
      "t_borderh:SELECT t_borderi:SELECT t_boutmakei:SELECT t_cpurh:SELECT t_cpuri:SELECT t_ebom:SELECT "
      "t_ebomcheck:SELECT t_eitem:SELECT t_pmrph:INSERT t_pmrph:SELECT t_pmrph:UPDATE t_pmrpi:DELETE "
      "t_pmrpi:INSERT t_pmrpi:SELECT t_pmrpi:UPDATE t_porder:INSERT t_porder:SELECT t_porder:UPDATE "
      "t_porderchk:INSERT t_porderchk:SELECT t_porderchk:UPDATE t_tovrand_lock:INSERT t_tovrand_lock:SELECT "
      "t_tovrand_lock:UPDATE t_wstockqtyh:SELECT t_wstockqtyi:SELECT t_wstockqtys:DELETE t_wstockqtys:INSERT "
      "t_wstockqtys:SELECT t_wstockqtys:UPDATE");
  EXPECT_EQ(
      scalar("select group_concat(concat(table_name, '.', lower(column_name), ':', privilege_type) order by "
             "table_name, lower(column_name), privilege_type separator ' ') from "
             "information_schema.column_privileges where grantee = " +
             grantee() + " and table_schema = database()"),
      "t_borderh.f_flags:UPDATE t_borderi.f_prodno:UPDATE t_borderi.f_status:UPDATE "
      "t_wstockqtyh.f_itemno:INSERT t_wstockqtyh.f_itemno:UPDATE t_wstockqtyh.f_nopostockqty:INSERT "
      "t_wstockqtyh.f_nopostockqty:UPDATE");
  // Nothing on the server as a whole, on the database as a whole, or elsewhere.
  EXPECT_EQ(
      scalar("select group_concat(privilege_type) from information_schema.user_privileges where grantee = " +
             grantee()),
      "USAGE");
  EXPECT_EQ(scalar("select count(*) from information_schema.schema_privileges where grantee = " + grantee()),
            "0");
  EXPECT_EQ(scalar("select count(*) from information_schema.table_privileges where grantee = " + grantee() +
                   " and table_schema <> database()"),
            "0");
  EXPECT_EQ(scalar("select count(*) from information_schema.table_privileges where grantee = " + grantee() +
                   " and is_grantable = 'YES'"),
            "0");
}

TEST_F(ComponentAccountTest, CannotDropAlterOrCreateAnything) {
  auto session = accountSession();
  const std::string schema = schemaDigest();
  EXPECT_NE(refusal(*session, "drop table t_porder").find("DROP command denied"), std::string::npos);
  EXPECT_NE(refusal(*session, "truncate table t_pmrpi").find("DROP command denied"), std::string::npos);
  EXPECT_NE(refusal(*session, "alter table t_porderchk add F_Extra int").find("ALTER command denied"),
            std::string::npos);
  EXPECT_NE(refusal(*session, "create table t_extra (a int)").find("CREATE command denied"),
            std::string::npos);
  EXPECT_NE(refusal(*session, "create index ix_extra on t_eitem (F_Unit)").find("INDEX command denied"),
            std::string::npos);
  EXPECT_NE(refusal(*session, "drop database `" + database() + "`").find("Access denied"), std::string::npos);
  EXPECT_NE(refusal(*session, "grant select on t_porder to '" + componentAccount().user + "'@'%'")
                .find("GRANT command denied"),
            std::string::npos);
  EXPECT_NE(refusal(*session, "create user 'intruder'@'%' identified by 'x'").find("Access denied"),
            std::string::npos);
  EXPECT_EQ(schemaDigest(), schema);
}

TEST_F(ComponentAccountTest, CannotWriteATableOrColumnItHasNoBusinessIn) {
  auto session = accountSession();
  const std::vector<std::string> writes{
      "insert into t_eitem (F_ItemNo) values ('RM-9999')",
      "update t_ebom set F_Dosage = 0",
      "update t_cpuri set F_PurQty = 0",
      "delete from t_cpurh",
      "update t_wstockqtyi set F_StockQty = 0",
      "delete from t_porder",
      "delete from t_porderchk",
      "delete from t_pmrph",
      "delete from t_wstockqtyh",
      "update t_borderh set F_Note = 'x'",
      "update t_borderi set F_OrderQty = 0",
      "insert into t_borderi (F_OrderNo) values (1)",
      "update t_wstockqtyh set F_SafeQty = 0",
  };
  for (const std::string& sql : writes) {
    const std::string refused = refusal(*session, sql);
    EXPECT_NE(refused.find("command denied"), std::string::npos) << sql << ": " << refused;
  }
  EXPECT_NE(refusal(*session, "select * from mysql.user").find("denied"), std::string::npos);
  EXPECT_EQ(checksums(), startChecksums());
}

TEST_F(ComponentAccountTest, TheCallersFreeSqlRunsWithTheAccountsPrivileges) {
  const std::string schema = schemaDigest();
  auto chk = createObject(clsDataPOrderChk::Members(), host());
  std::vector<Argument> drop{Value("drop table t_porder"), std::make_shared<Collection>()};
  EXPECT_EQ(chk->invoke(memberOf<&clsDataPOrderChk::QureyDatabase>(), drop), Value(std::int16_t{0}));
  auto mrph = createObject(clsDataPMrph::Members(), host());
  std::vector<Argument> wipe{std::make_shared<Collection>(), Value("delete from t_pmrph")};
  EXPECT_EQ(mrph->invoke(memberOf<&clsDataPMrph::QueryPMrphRecordset>(), wipe), Value(std::int16_t{0}));
  ASSERT_EQ(messages().messages().size(), 2u);
  EXPECT_NE(messages().messages()[0].text.find("DROP command denied"), std::string::npos);
  EXPECT_NE(messages().messages()[1].text.find("DELETE command denied"), std::string::npos);
  EXPECT_EQ(schemaDigest(), schema);
  EXPECT_EQ(checksums(), startChecksums());
}

TEST_F(ComponentAccountTest, EveryMembersOrdinaryCallRunsUnderTheAccount) {
  for (const MemberContract& contract : memberContracts()) {
    for (std::size_t s = 0; s < contract.starts.size(); ++s) {
      std::vector<Argument> args = buildArguments(contract.starts[s], memberInfo(contract));
      const std::string what = contract.name() + " starting call " + std::to_string(s);
      CallOutcome outcome = call(contract, args);
      expectDocumented(contract, outcome, what, tally("component account"));
      EXPECT_TRUE(outcome.messages.empty()) << what << ": " << outcome.messages.front().text;
      expectOnlyTargetsChangedAndRestore(contract, what);
    }
  }
}

TEST_F(ComponentAccountTest, WritesTheStockSummaryRowOfAMaterialThatHasNone) {
  // The one insert into another module's table: a reservation of a material without a summary row.
  const MemberContract& plan = *std::find_if(
      memberContracts().begin(), memberContracts().end(),
      [](const MemberContract& c) { return c.member == &memberOf<&clsDataPMrph::AddRecord1>(); });
  CallShape start = plan.starts.front();
  std::get<CollectionShape>(start[1]).elements.front().properties[1].second = Value("RM-2011");
  ASSERT_EQ(scalar("select count(*) from t_wstockqtyh where F_ItemNo = 'RM-2011'"), "0");
  std::vector<Argument> args = buildArguments(start, memberInfo(plan));
  CallOutcome outcome = call(plan, args);
  EXPECT_EQ(outcome.result, Value(std::int16_t{1}));
  EXPECT_TRUE(outcome.messages.empty()) << outcome.messages.front().text;
  EXPECT_EQ(scalar("select F_NoPoStockQty from t_wstockqtyh where F_ItemNo = 'RM-2011'"), "0");
}

}  // namespace
}  // namespace tovrand::test
