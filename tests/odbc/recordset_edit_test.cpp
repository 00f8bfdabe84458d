#include "tests/odbc/OdbcTestSupport.h"
#include "vb/Value.h"

namespace tovrand::test {
namespace {

class RecordsetEditTest : public RecordsetTest {
 protected:
  void SetUp() override {
    RecordsetTest::SetUp();
    exec(
        "create table t_order (F_ProdNo double not null primary key, F_Name varchar(10), F_Qty int, "
        "F_Date datetime, F_Note varchar(40) default 'none');"
        "insert into t_order (F_ProdNo, F_Name, F_Qty) values (2008050001, 'first', 1), (2008050002, "
        "'second', 2)");
    trace().clear();
  }
  std::vector<TracedStatement> engineStatements() const {
    std::vector<TracedStatement> out;
    for (const TracedStatement& s : const_cast<RecordsetEditTest*>(this)->trace().statements()) {
      if (s.origin == StatementOrigin::Engine) out.push_back(s);
    }
    return out;
  }
};

TEST_F(RecordsetEditTest, AddNewAssignUpdateInsertsTheRowWithABoundInsertOfTheAssignedColumns) {
  auto rs = keyset("select * from t_order ");
  rs->AddNew();
  rs->Fields("f_prodno") = Value(2008050003.0);
  rs->Fields("F_Name") = Value("third");
  rs->Fields("F_Date") = Value(makeDate({2008, 5, 15, 10, 30, 0}));
  rs->Update();
  rs->Close();
  EXPECT_EQ(scalar("select concat(F_Name, '|', F_Date, '|', ifnull(F_Qty, 'null'), '|', F_Note) from t_order "
                   "where F_ProdNo = 2008050003"),
            "third|2008-05-15 10:30:00|null|none");
  EXPECT_EQ(trace().statements(),
            (std::vector<TracedStatement>{
                {"select * from t_order ", StatementOrigin::Method},
                {"INSERT INTO `t_order` (`F_ProdNo`, `F_Name`, `F_Date`) VALUES (?, ?, ?)",
                 StatementOrigin::Engine}}));
}

TEST_F(RecordsetEditTest, InsertKeepsDoublesExactAndStoresNullForNull) {
  auto rs = keyset("select * from t_order");
  rs->AddNew();
  rs->Fields("F_ProdNo") = Value(0.1);
  rs->Fields("F_Name") = Value::null();
  rs->Fields("F_Qty") = Value(std::int16_t{7});
  rs->Update();
  EXPECT_EQ(scalar("select count(*) from t_order where F_ProdNo = 0.1 and F_Name is null and F_Qty = 7"),
            "1");
}

TEST_F(RecordsetEditTest, TheRecordsetStaysOpenAfterUpdateOfANewRowAndShowsIt) {
  auto rs = keyset("select * from t_order");
  rs->AddNew();
  rs->Fields("F_ProdNo") = Value(2008050009.0);
  rs->Update();
  EXPECT_TRUE(rs->IsOpen());
  EXPECT_FALSE(rs->EOF_());
  EXPECT_EQ(rs->Fields("F_ProdNo").value(), Value(2008050009.0));
  rs->MoveNext();
  EXPECT_TRUE(rs->EOF_());
}

TEST_F(RecordsetEditTest, AssigningTheCurrentRowThenUpdateStoresThatRowOnly) {
  auto rs = keyset("select * from t_order where F_ProdNo = 2008050002");
  rs->Fields("F_Name") = Value("changed");
  rs->Fields("F_Qty") = Value(5.0);
  EXPECT_EQ(rs->Fields("F_Name").value(), Value("changed"));
  rs->Update();
  EXPECT_EQ(
      scalar("select group_concat(concat(F_ProdNo, '=', F_Name, '/', F_Qty) order by F_ProdNo) from t_order"),
      "2008050001=first/1,2008050002=changed/5");
  ASSERT_EQ(engineStatements().size(), 1u);
  EXPECT_EQ(engineStatements()[0].sql,
            "UPDATE `t_order` SET `F_Name`=?, `F_Qty`=? WHERE `F_ProdNo`=? LIMIT 1");
}

TEST_F(RecordsetEditTest, UpdateWithNothingPendingSendsNothing) {
  auto rs = keyset("select * from t_order");
  rs->Update();
  ASSERT_FALSE(rs->EOF_());
  rs->Update();
  EXPECT_TRUE(engineStatements().empty());
  EXPECT_EQ(trace().statements().size(), 1u);
}

TEST_F(RecordsetEditTest, MoveNextWithAPendingEditStoresItFirst) {
  auto rs = keyset("select * from t_order order by F_ProdNo");
  rs->Fields("F_Name") = Value("edited");
  rs->MoveNext();
  EXPECT_EQ(scalar("select F_Name from t_order where F_ProdNo = 2008050001"), "edited");
  EXPECT_EQ(rs->Fields("F_Name").value(), Value("second"));
}

TEST_F(RecordsetEditTest, CloseWithAPendingAddNewDiscardsIt) {
  auto rs = keyset("select * from t_order");
  rs->AddNew();
  rs->Fields("F_ProdNo") = Value(2008050005.0);
  rs->Close();
  EXPECT_EQ(scalar("select count(*) from t_order"), "2");
  EXPECT_TRUE(engineStatements().empty());
}

TEST_F(RecordsetEditTest, DestroyingARecordsetWithAPendingEditDiscardsIt) {
  {
    auto rs = keyset("select * from t_order where F_ProdNo = 2008050001");
    rs->Fields("F_Name") = Value("lost");
  }
  EXPECT_EQ(scalar("select F_Name from t_order where F_ProdNo = 2008050001"), "first");
  EXPECT_TRUE(engineStatements().empty());
}

TEST_F(RecordsetEditTest, AddNewWhileAnotherNewRowIsPendingStoresTheFirst) {
  auto rs = keyset("select * from t_order");
  rs->AddNew();
  rs->Fields("F_ProdNo") = Value(1.0);
  rs->AddNew();
  rs->Fields("F_ProdNo") = Value(2.0);
  rs->Update();
  EXPECT_EQ(scalar("select count(*) from t_order where F_ProdNo in (1, 2)"), "2");
}

TEST_F(RecordsetEditTest, TooLongTextRaisesMultipleStepAtTheAssignmentBeforeAnyStatement) {
  auto rs = keyset("select * from t_order");
  rs->AddNew();
  rs->Fields("F_ProdNo") = Value(3.0);
  VbError e = errorOf([&] { rs->Fields("F_Name") = Value("12345678901"); });
  EXPECT_EQ(e.number(), -2147217887);
  EXPECT_EQ(e.description(), kMultipleStepText);
  EXPECT_TRUE(engineStatements().empty());
  rs->Close();
  EXPECT_EQ(scalar("select count(*) from t_order"), "2");
}

TEST_F(RecordsetEditTest, LengthIsCountedInCharactersNotBytes) {
  auto rs = keyset("select * from t_order");
  rs->AddNew();
  rs->Fields("F_ProdNo") = Value(4.0);
  rs->Fields("F_Name") = Value("生产订单生产订单生产");  // ten characters, thirty bytes
  rs->Update();
  EXPECT_EQ(scalar("select F_Name from t_order where F_ProdNo = 4"), "生产订单生产订单生产");
  rs->AddNew();
  EXPECT_EQ(errorOf([&] { rs->Fields("F_Name") = Value("生产订单生产订单生产订"); }).number(), -2147217887);
}

TEST_F(RecordsetEditTest, TooLongTextOnTheCurrentRowRaisesBeforeAnyStatement) {
  auto rs = keyset("select * from t_order where F_ProdNo = 2008050001");
  EXPECT_EQ(errorOf([&] { rs->Fields("F_Name") = Value("far too long for it"); }).number(), -2147217887);
  rs->Update();
  EXPECT_TRUE(engineStatements().empty());
}

TEST_F(RecordsetEditTest, TextThatIsNotANumberOrADateRaisesMultipleStepAtTheAssignment) {
  auto rs = keyset("select * from t_order");
  rs->AddNew();
  EXPECT_EQ(errorOf([&] { rs->Fields("F_ProdNo") = Value("abc"); }).number(), -2147217887);
  EXPECT_EQ(errorOf([&] { rs->Fields("F_Qty") = Value(""); }).number(), -2147217887);
  EXPECT_EQ(errorOf([&] { rs->Fields("F_Date") = Value("not a date"); }).number(), -2147217887);
  rs->Fields("F_ProdNo") = Value("12");  // a numeric text converts
  rs->Update();
  EXPECT_EQ(scalar("select count(*) from t_order where F_ProdNo = 12"), "1");
}

TEST_F(RecordsetEditTest, AssigningWithNoCurrentRowRaises3021) {
  auto rs = keyset("select * from t_order where 1 = 0");
  VbError e = errorOf([&] { rs->Fields("F_Name") = Value("x"); });
  EXPECT_EQ(e.number(), 3021);
  EXPECT_EQ(e.description(), kNoCurrentRecordText);
}

TEST_F(RecordsetEditTest, AssigningAnUnknownFieldRaises3265) {
  auto rs = keyset("select * from t_order");
  rs->AddNew();
  EXPECT_EQ(errorOf([&] { rs->Fields("F_Missing") = Value("x"); }).number(), 3265);
}

TEST_F(RecordsetEditTest, ARowOfATableWithoutPrimaryKeyCannotBeEdited) {
  exec("create table t_nokey (F_A int, F_B varchar(5)); insert into t_nokey values (1, 'a')");
  auto rs = keyset("select * from t_nokey");
  VbError e = errorOf([&] { rs->Fields("F_B") = Value("b"); });
  EXPECT_EQ(e.number(), vberr::kProviderError);
  EXPECT_NE(e.description().find("t_nokey has no primary key"), std::string::npos) << e.description();
  EXPECT_EQ(scalar("select F_B from t_nokey"), "a");
}

TEST_F(RecordsetEditTest, ADuplicateKeyOnUpdateIsAProviderErrorWithTheServersMessage) {
  auto rs = keyset("select * from t_order");
  rs->AddNew();
  rs->Fields("F_ProdNo") = Value(2008050001.0);
  VbError e = errorOf([&] { rs->Update(); });
  EXPECT_EQ(e.number(), -2147467259);
  EXPECT_EQ(e.description(), "Duplicate entry '2008050001' for key 'PRIMARY'");
}

TEST_F(RecordsetEditTest, DataTooLongFromAStatementBecomesMultipleStep) {
  auto rs = newRecordset();
  VbError e = errorOf([&] {
    rs->Open("update t_order set F_Name = 'much too long text' where F_ProdNo = 2008050001", conn(),
             adOpenKeyset, adLockPessimistic, adCmdUnspecified);
  });
  EXPECT_EQ(e.number(), -2147217887);
  EXPECT_EQ(e.description(), kMultipleStepText);
  EXPECT_FALSE(rs->IsOpen());
}

TEST_F(RecordsetEditTest, TableNamesInMixedCaseAddressTheSameTable) {
  auto rs = keyset("select * from T_Order");
  rs->AddNew();
  rs->Fields("F_ProdNo") = Value(77.0);
  rs->Update();
  rs->Close();
  auto rs2 = keyset("select * from t_ORDER where F_ProdNo = 77");
  rs2->Fields("F_Name") = Value("mixed");
  rs2->Update();
  EXPECT_EQ(scalar("select F_Name from t_order where F_ProdNo = 77"), "mixed");
}

class WholeTableAddNewTest : public RecordsetEditTest {
 protected:
  void SetUp() override {
    RecordsetEditTest::SetUp();
    exec(
        "create table t_big (F_ProdNo double primary key, F_Pad varchar(40));"
        "insert into t_big select seq, 'padding padding padding' from seq_1_to_5000");
  }
  // A session status counter of the component's own connection, read through a read-form recordset.
  double status(const std::string& name) {
    auto rs = read("show session status like '" + name + "'");
    double v = CDbl(rs->Fields("Value").value());
    rs->Close();
    return v;
  }
};

TEST_F(WholeTableAddNewTest, AddNewAfterOpeningTheWholeTableReadsNoRowOfIt) {
  double selectsBefore = status("Com_select");
  double scannedBefore = status("Handler_read_rnd_next");
  double scanOfAStatusQuery = status("Handler_read_rnd_next") - scannedBefore;
  scannedBefore = status("Handler_read_rnd_next");
  double insertsBefore = status("Com_insert");

  auto rs = keyset("select * from t_big ");
  rs->AddNew();
  rs->Fields("F_ProdNo") = Value(9999.0);
  rs->Fields("F_Pad") = Value("new");
  rs->Update();
  rs->Close();

  double scanned = status("Handler_read_rnd_next") - scannedBefore - scanOfAStatusQuery;
  EXPECT_EQ(status("Com_select") - selectsBefore, 0.0);
  EXPECT_EQ(status("Com_insert") - insertsBefore, 1.0);
  EXPECT_LT(scanned, 100.0) << "the table's 5000 rows must not be read";
  EXPECT_EQ(scalar("select F_Pad from t_big where F_ProdNo = 9999"), "new");
}

TEST_F(WholeTableAddNewTest, LookingAtRowsRunsTheQueryOnce) {
  double selectsBefore = status("Com_select");
  auto rs = keyset("select * from t_big where F_ProdNo <= 3 order by F_ProdNo");
  EXPECT_FALSE(rs->EOF_());
  EXPECT_EQ(rs->Fields("F_ProdNo").value(), Value(1.0));
  rs->MoveNext();
  EXPECT_EQ(rs->Fields("F_ProdNo").value(), Value(2.0));
  rs->Close();
  EXPECT_EQ(status("Com_select") - selectsBefore, 1.0);
}

}  // namespace
}  // namespace tovrand::test
