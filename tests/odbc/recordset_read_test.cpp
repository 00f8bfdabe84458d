#include "tests/odbc/OdbcTestSupport.h"
#include "vb/Value.h"

namespace tovrand::test {
namespace {

class RecordsetReadTest : public RecordsetTest {
 protected:
  void SetUp() override {
    RecordsetTest::SetUp();
    exec(
        "create table t_item (F_ItemNo varchar(20) primary key, F_Qty double, F_Name varchar(10));"
        "insert into t_item values ('A1', 1.5, 'one'), ('A2', 2, 'two'), ('A3', 3, null)");
  }
};

TEST_F(RecordsetReadTest, QueryWithoutRowsHasBothBofAndEof) {
  auto rs = read("select * from t_item where F_ItemNo = 'none'");
  EXPECT_TRUE(rs->IsOpen());
  EXPECT_TRUE(rs->BOF());
  EXPECT_TRUE(rs->EOF_());
}

TEST_F(RecordsetReadTest, QueryWithRowsHasNeitherBofNorEofAndTheFirstRowIsCurrent) {
  auto rs = read("select * from t_item order by F_ItemNo");
  EXPECT_FALSE(rs->BOF());
  EXPECT_FALSE(rs->EOF_());
  EXPECT_EQ(rs->Fields("F_ItemNo").value(), Value("A1"));
}

TEST_F(RecordsetReadTest, MoveNextWalksEveryRowInOrderThenReachesEofButNotBof) {
  auto rs = read("select F_ItemNo from t_item order by F_ItemNo");
  std::vector<std::string> seen;
  while (!rs->EOF_()) {
    seen.push_back(rs->Fields("F_ItemNo").value().str());
    rs->MoveNext();
  }
  EXPECT_EQ(seen, (std::vector<std::string>{"A1", "A2", "A3"}));
  EXPECT_TRUE(rs->EOF_());
  EXPECT_FALSE(rs->BOF());
}

TEST_F(RecordsetReadTest, FieldNamesMatchWithoutRegardToCase) {
  auto rs = read("select F_ItemNo, F_Qty as qty from t_item order by F_ItemNo");
  EXPECT_EQ(rs->Fields("f_itemno").value(), Value("A1"));
  EXPECT_EQ(rs->Fields("F_ITEMNO").value(), Value("A1"));
  EXPECT_EQ(rs->Fields("QTY").value(), Value(1.5));
}

TEST_F(RecordsetReadTest, UnknownFieldNameRaises3265WithAdoText) {
  auto rs = read("select F_ItemNo from t_item");
  VbError e = errorOf([&] { rs->Fields("F_Qty").value(); });
  EXPECT_EQ(e.number(), 3265);
  EXPECT_EQ(e.description(), kItemNotFoundText);
}

TEST_F(RecordsetReadTest, ReadingAFieldWithNoCurrentRowRaises3021) {
  auto rs = read("select F_ItemNo from t_item where 1 = 0");
  VbError e = errorOf([&] { rs->Fields("F_ItemNo").value(); });
  EXPECT_EQ(e.number(), 3021);
  EXPECT_EQ(e.description(), kNoCurrentRecordText);
}

TEST_F(RecordsetReadTest, ReadingAfterTheLastRowRaises3021) {
  auto rs = read("select F_ItemNo from t_item where F_ItemNo = 'A1'");
  rs->MoveNext();
  ASSERT_TRUE(rs->EOF_());
  EXPECT_EQ(errorOf([&] { rs->Fields("F_ItemNo").value(); }).number(), 3021);
}

TEST_F(RecordsetReadTest, MoveNextAtEofRaises3021) {
  auto rs = read("select F_ItemNo from t_item where 1 = 0");
  VbError e = errorOf([&] { rs->MoveNext(); });
  EXPECT_EQ(e.number(), 3021);
  EXPECT_EQ(e.description(), kNoCurrentRecordText);
}

TEST_F(RecordsetReadTest, NullColumnReadsAsNull) {
  auto rs = read("select F_Name from t_item where F_ItemNo = 'A3'");
  EXPECT_TRUE(rs->Fields("F_Name").value().isNull());
}

TEST_F(RecordsetReadTest, OpenArgumentsOfMinusOneUseTheProperties) {
  auto rs = newRecordset();
  rs->CursorType = adOpenKeyset;
  rs->LockType = adLockOptimistic;
  rs->Open("select * from t_item where F_ItemNo = 'A1'", conn(), -1, -1, -1);
  rs->Fields("F_Name") = Value("uno");  // updatable: the properties were used
  rs->Update();
  EXPECT_EQ(scalar("select F_Name from t_item where F_ItemNo = 'A1'"), "uno");
}

TEST_F(RecordsetReadTest, PropertiesNotSetGiveAReadOnlyRecordsetThatRefusesAssignmentWith3251) {
  auto rs = read("select * from t_item where F_ItemNo = 'A1'");
  VbError e = errorOf([&] { rs->Fields("F_Name") = Value("x"); });
  EXPECT_EQ(e.number(), 3251);
  EXPECT_EQ(errorOf([&] { rs->AddNew(); }).number(), 3251);
  EXPECT_EQ(scalar("select F_Name from t_item where F_ItemNo = 'A1'"), "one");
}

TEST_F(RecordsetReadTest, ExplicitReadOnlyLockOverridesAnUpdatableProperty) {
  auto rs = newRecordset();
  rs->LockType = adLockOptimistic;
  rs->Open("select * from t_item", conn(), adOpenForwardOnly, adLockReadOnly, adCmdText);
  EXPECT_EQ(errorOf([&] { rs->Fields("F_Name") = Value("x"); }).number(), 3251);
}

TEST_F(RecordsetReadTest, UpdateStatementLeavesTheRecordsetClosedAndTakesEffect) {
  auto rs = newRecordset();
  rs->Open("update t_item set F_Qty = 9 where F_ItemNo = 'A2'", conn(), adOpenDynamic, adLockOptimistic,
           adCmdUnspecified);
  EXPECT_FALSE(rs->IsOpen());
  EXPECT_EQ(scalar("select F_Qty from t_item where F_ItemNo = 'A2'"), "9");
  EXPECT_EQ(errorOf([&] { rs->EOF_(); }).number(), 3704);
}

TEST_F(RecordsetReadTest, DeleteStatementInReadFormLeavesTheRecordsetClosed) {
  auto rs = newRecordset();
  rs->Open("delete from t_item where F_ItemNo = 'A3'", conn(), adOpenKeyset, adLockPessimistic,
           adCmdUnspecified);
  EXPECT_FALSE(rs->IsOpen());
  auto rs2 = read("delete from t_item where F_ItemNo = 'A2'");
  EXPECT_FALSE(rs2->IsOpen());
  EXPECT_EQ(scalar("select count(*) from t_item"), "1");
}

TEST_F(RecordsetReadTest, EveryOperationOnAClosedRecordsetRaises3704) {
  auto rs = newRecordset();
  for (auto call : std::vector<std::function<void()>>{
           [&] { rs->Close(); }, [&] { rs->EOF_(); }, [&] { rs->BOF(); },
           [&] { rs->Fields("F_ItemNo").value(); }, [&] { rs->Fields("F_ItemNo") = Value(1.0); },
           [&] { rs->MoveNext(); }, [&] { rs->AddNew(); }, [&] { rs->Update(); }}) {
    VbError e = errorOf(call);
    EXPECT_EQ(e.number(), 3704);
    EXPECT_EQ(e.description(), kClosedText);
  }
}

TEST_F(RecordsetReadTest, CloseThenEofRaises3704) {
  auto rs = read("select * from t_item");
  rs->Close();
  EXPECT_FALSE(rs->IsOpen());
  EXPECT_EQ(errorOf([&] { rs->EOF_(); }).number(), 3704);
  EXPECT_EQ(errorOf([&] { rs->Close(); }).number(), 3704);
}

TEST_F(RecordsetReadTest, OpeningAnOpenRecordsetRaises3705) {
  auto rs = read("select * from t_item");
  EXPECT_EQ(errorOf([&] { rs->Open(); }).number(), 3705);
  EXPECT_TRUE(rs->IsOpen());
}

TEST_F(RecordsetReadTest, AClosedRecordsetCanBeOpenedAgain) {
  auto rs = read("select F_ItemNo from t_item where F_ItemNo = 'A1'");
  rs->Close();
  rs->Source = "select F_ItemNo from t_item where F_ItemNo = 'A2'";
  rs->Open();
  EXPECT_EQ(rs->Fields("F_ItemNo").value(), Value("A2"));
}

TEST_F(RecordsetReadTest, TwoRecordsetsOnOneConnectionInterleave) {
  auto outer = read("select F_ItemNo from t_item order by F_ItemNo");
  std::vector<std::string> pairs;
  while (!outer->EOF_()) {
    std::string item = outer->Fields("F_ItemNo").value().str();
    auto inner = read("select F_Qty from t_item where F_ItemNo = '" + item + "'");
    pairs.push_back(item + "=" + CStr(inner->Fields("F_Qty").value()));
    inner->Close();
    outer->MoveNext();
  }
  EXPECT_EQ(pairs, (std::vector<std::string>{"A1=1.5", "A2=2", "A3=3"}));
}

TEST_F(RecordsetReadTest, TwoStatementsInOneTextAreRefusedByTheServer) {
  VbError e = errorOf([&] { read("select 1; select 2"); });
  EXPECT_EQ(e.number(), vberr::kProviderError);
  EXPECT_NE(e.description().find("SQL syntax"), std::string::npos) << e.description();
}

TEST_F(RecordsetReadTest, ServerErrorBecomesProviderErrorWithTheServersOwnMessage) {
  VbError e = errorOf([&] { read("select * from t_nosuch"); });
  EXPECT_EQ(e.number(), -2147467259);
  EXPECT_EQ(e.description(), "Table '" + database() + ".t_nosuch' doesn't exist");
}

TEST_F(RecordsetReadTest, TableNamesMatchWithoutRegardToCase) {
  auto rs = read("select count(*) as n from T_Item");
  EXPECT_EQ(rs->Fields("n").value(), Value(3.0));
}

}  // namespace
}  // namespace tovrand::test
