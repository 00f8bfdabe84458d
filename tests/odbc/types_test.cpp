#include "tests/odbc/OdbcTestSupport.h"
#include "vb/Value.h"

namespace tovrand::test {
namespace {

class TypesTest : public RecordsetTest {
 protected:
  void SetUp() override {
    RecordsetTest::SetUp();
    exec(
        "create table t_types (id int primary key, f_double double, f_float float, f_decimal decimal(10,2), "
        "f_bigint bigint, f_int int, f_smallint smallint, f_tinyint tinyint, f_medium mediumint, "
        "f_date date, f_datetime datetime, f_timestamp timestamp null, f_varchar varchar(20), f_text text, "
        "f_char char(3));"
        "set session sql_mode = '';"
        "insert into t_types values (1, 2008050001, 0.5, 12.25, 9007199254740993, -7, 300, 5, 70000, "
        "'2008-05-15', '2008-05-15 10:30:00', '2020-01-02 03:04:05', '生产订单', 'long text', 'abc'),"
        "(2, null, null, null, null, null, null, null, null, '0000-00-00', '0000-00-00 00:00:00', null, "
        "null, "
        "null, null)");
  }
  Value field(const std::string& column, int id = 1) {
    auto rs = read("select " + column + " as v from t_types where id = " + std::to_string(id));
    return rs->Fields("v").value();
  }
};

TEST_F(TypesTest, FloatingDecimalAndBigintColumnsReadAsDouble) {
  EXPECT_EQ(field("f_double"), Value(2008050001.0));
  EXPECT_EQ(field("f_float"), Value(0.5));
  EXPECT_EQ(field("f_decimal"), Value(12.25));
  EXPECT_EQ(field("f_bigint"), Value(9007199254740992.0));
}

TEST_F(TypesTest, IntegerColumnsReadAsLong) {
  EXPECT_EQ(field("f_int"), Value(std::int32_t{-7}));
  EXPECT_EQ(field("f_smallint"), Value(std::int32_t{300}));
  EXPECT_EQ(field("f_tinyint"), Value(std::int32_t{5}));
  EXPECT_EQ(field("f_medium"), Value(std::int32_t{70000}));
}

TEST_F(TypesTest, TemporalColumnsReadAsDate) {
  EXPECT_EQ(field("f_date"), Value(makeDate({2008, 5, 15})));
  EXPECT_EQ(field("f_datetime"), Value(makeDate({2008, 5, 15, 10, 30, 0})));
  EXPECT_EQ(field("f_timestamp"), Value(makeDate({2020, 1, 2, 3, 4, 5})));
}

TEST_F(TypesTest, TheZeroDatetimeReadsAsTheVbZeroDate) {
  EXPECT_EQ(field("f_datetime", 2), Value(VbDate{0.0}));
  EXPECT_EQ(field("f_date", 2), Value(VbDate{0.0}));
  EXPECT_EQ(CStr(field("f_datetime", 2)), "0:00:00");
}

TEST_F(TypesTest, TextColumnsReadAsStringAndKeepTheirCharacters) {
  EXPECT_EQ(field("f_varchar"), Value("生产订单"));
  EXPECT_EQ(field("f_text"), Value("long text"));
  EXPECT_EQ(field("f_char"), Value("abc"));
}

TEST_F(TypesTest, SqlNullReadsAsNullForEveryType) {
  for (const char* column :
       {"f_double", "f_decimal", "f_bigint", "f_int", "f_smallint", "f_timestamp", "f_varchar", "f_text"}) {
    EXPECT_TRUE(field(column, 2).isNull()) << column;
  }
}

TEST_F(TypesTest, ExpressionsReadWithTheTypeTheServerGivesThem) {
  auto rs = read(
      "select curdate() as dd, left(f_double, 6) as l, max(f_double) as m, sum(f_double) as s, "
      "sum(f_int) as si, count(*) as c, curdate()+0 as cd, cast(f_double as char) as t from t_types "
      "where id = 1");
  EXPECT_EQ(rs->Fields("dd").value(), Value(makeDate({2026, 11, 22})));
  EXPECT_EQ(rs->Fields("l").value(), Value("200805"));
  EXPECT_EQ(rs->Fields("m").value(), Value(2008050001.0));
  EXPECT_EQ(rs->Fields("s").value(), Value(2008050001.0));
  EXPECT_EQ(rs->Fields("si").value(), Value(-7.0));
  EXPECT_EQ(rs->Fields("c").value(), Value(1.0));
  EXPECT_EQ(rs->Fields("cd").value(), Value(20261122.0));
  EXPECT_EQ(rs->Fields("t").value(), Value("2008050001"));
}

TEST_F(TypesTest, LongTextIsReadWhole) {
  std::string text(10000, 'x');
  text += "生产";
  exec("update t_types set f_text = '" + text + "' where id = 1");
  EXPECT_EQ(field("f_text"), Value(text));
}

TEST_F(TypesTest, AZeroDateWrittenAsTimeOnlyTextReadsBackAsTheZeroDate) {
  exec("set session sql_mode = ''; update t_types set f_datetime = '0:00:00' where id = 1");
  EXPECT_EQ(field("f_datetime"), Value(VbDate{0.0}));
}

TEST_F(TypesTest, AZeroDateAssignedThroughARecordsetReadsBackAsTheZeroDate) {
  auto rs = keyset("select * from t_types where id = 1");
  rs->Fields("f_datetime") = Value(VbDate{0.0});
  rs->Update();
  rs->Close();
  EXPECT_EQ(field("f_datetime"), Value(VbDate{0.0}));
}

}  // namespace
}  // namespace tovrand::test
