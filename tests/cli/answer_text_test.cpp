// The answers `tovrand run` writes straight out as text are, byte for byte, the answers built as a
// Json tree and dumped: for every request kind, member kind and value the scripts below meet.
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/JsonWriter.h"
#include "cli/Runner.h"
#include "entities/Entities.h"
#include "tests/support/TestDatabase.h"

namespace tovrand::cli {
namespace {

std::string dumped(const Json& j) {
  return j.dump(-1, ' ', false, Json::error_handler_t::replace);
}

class AnswerTextTest : public test::DatabaseTest {
 protected:
  // Answers every request line of `script` once, in both forms, and expects the same bytes.
  void expectSameAnswers(const std::string& script, bool trace) {
    RunOptions options;
    options.dsn = dsn();
    options.trace = trace;
    options.serverDate = "2026-11-22";
    ScriptRunner runner(options);
    std::istringstream in(script);
    int answered = 0;
    for (std::string line; std::getline(in, line);) {
      if (line.empty() || line.front() == '#') continue;
      std::string text = "prefix kept:";
      Json tree;
      runner.answerTo(line, text, &tree);
      ASSERT_EQ(text.substr(0, 12), "prefix kept:");
      EXPECT_EQ(text.substr(12), dumped(tree)) << line;
      ++answered;
    }
    EXPECT_GT(answered, 0);
  }
};

std::string fileText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

TEST_F(AnswerTextTest, EveryExampleScriptAnswersTheSameBytesTracedAndNot) {
  for (const char* name : {"review-and-numbers", "production-orders", "planning-header", "planning-lines"}) {
    SCOPED_TRACE(name);
    const std::string script = fileText(std::string(TOVRAND_SOURCE_DIR) + "/examples/" + name + ".jsonl");
    ASSERT_FALSE(script.empty());
    expectSameAnswers(script, true);
    expectSameAnswers(script, false);
  }
}

TEST_F(AnswerTextTest, EscapesUnicodeNullsEmptyListsAndErrorsAnswerTheSameBytes) {
  const std::string script = R"js({"new":"p","class":"clsDataPOrder"}
{"new":"h","class":"clsDataPMrph"}
{"new":"i","class":"clsDataPMrpi"}
{"new":"c","class":"clsDataPOrderChk"}
{"sql":"insert into t_porder (F_ProdNo, F_CustNo, F_SalerID, F_ItemNo, F_COrderNo, F_OrdQty, F_InDate, F_BalQty) values (2026110001, 'Q\"1\\\\', concat('tab', char(9), 'nl', char(10), 'cr', char(13), 'bs', char(8), 'ff', char(12), 'x', char(1), char(31), char(127)), '王伟 Φ22×1.2 😀', '/slash', 0.1, '2026-11-21 16:30:05', -2.5e-7)"}
{"sql":"insert into t_porder (F_ProdNo, F_CustNo, F_OrdQty, F_BalQty) values (2026110002, 'Q\"1\\\\', 1e17, 123456789.125)"}
{"sql":"select F_ProdNo, F_CustNo, F_SalerID, F_ItemNo, F_InDate, F_OrdQty, F_BalQty, null as nothing, F_OutDate from t_porder order by F_ProdNo"}
{"sql":"select * from t_porder where 1=0"}
{"sql":"select 1.5 as a, -0.0 as b, 1e300 as c, 'x' as `label \"quoted\"`"}
{"sql":"update t_porder set F_Status=1 where 1=0"}
{"sql":"select * from no_such_table"}
{"call":"p.QueryByStrSql","args":{"strSql":" where F_CustNo='Q\"1\\\\' order by F_ProdNo"}}
{"call":"p.QueryByStrSql","args":{"strSql":" where F_CustNo='nobody'"}}
{"call":"p.QueryItem","args":{"Entity":{"F_ProdNo":2026110001}}}
{"call":"p.QueryItem","args":{"Entity":{"F_ProdNo":2026119999}}}
{"call":"p.AddRecord","args":{"Entity":{"F_ProdNo":2026110001,"F_CustNo":"dup"}}}
{"call":"p.AddRecord","args":{"Entity":{"F_ProdNo":2026110003,"F_CustNo":"tab\there \"q\" \\ 中文","F_InDate":"2026-02-28T23:59","F_OrdQty":0.3333333333333333,"F_BalQty":-0}}}
{"call":"p.QueryAllProdNo"}
{"call":"p.CheckCustProdNo","args":{"CustNo":"Q\"1\\","ProNo":2026110001}}
{"call":"h.AccountData","args":{"Entity":{"F_ProdNo":2026110001,"F_ItemNo":"FG-1003"},"P":1}}
{"call":"h.AddRecord1","args":{"Entity":{"F_ProdNo":2026110001,"F_ItemNo":"FG-1003"},"objCollD":[]}}
{"call":"h.AddRecord1","args":{"Entity":{"F_ProdNo":2026110001,"F_ItemNo":"FG-1003"},"objCollD":[{"F_ItemNo":"RM-1","F_Dosage":3.2,"F_Waste":0.03},{"$class":"clsEntPMrpi","F_ItemNo":"RM-2"}]}}
{"call":"h.QueryByIDForPur","args":{"intCnt":5}}
{"call":"i.QueryItemNo","args":{"GoodsNo":"none","StrStatus":"1"}}
{"call":"i.getProdNoItemNoByPMrpi","args":{"ProdNo":"2026110001"}}
{"call":"p.QueryItem","args":{"Entity":"2026110001"}}
{"call":"p.NoSuchMember"}
{"call":"q.QueryItem"}
{"call":"p.QueryItem","args":{"Entity":{"F_Nope":1}}}
{"call":"p.QueryItem","args":{"Entity":{"F_ProdNo":"\u00e9\u0001"}}}
{"bad":1}
[1,2]
not json
{"release":"c"}
{"release":"c"}
{"release":"i"}
{"release":"h"}
{"release":"p"}
)js";
  expectSameAnswers(script, true);
  expectSameAnswers(script, false);
}

TEST(AnswerTextWriterTest, ValuesAreWrittenAsTheTreeDumpsThem) {
  for (double d :
       {0.0, -0.0, 1.0, -1.0, 0.1, 1.5, -2.5e-7, 1e15, 1e16, 1e17, 9007199254740992.0, 9007199254740994.0,
        1e300, 123456789.125, 2008050001.0, 1.0 / 3.0, std::numeric_limits<double>::quiet_NaN(),
        std::numeric_limits<double>::infinity(), std::numeric_limits<double>::denorm_min()}) {
    std::string out;
    writeNumber(out, d);
    EXPECT_EQ(out, dumped(numberToJson(d))) << d;
  }
  const std::string texts[] = {"",
                               "plain",
                               "\"\\/\b\f\n\r\t",
                               std::string("\0\x01\x1f\x7f", 4),
                               "王伟 😀",
                               "\xff",
                               "a\xe4\xb8",
                               "\xc0\x80",
                               "\xed\xa0\x80",
                               "\xf4\x90\x80\x80",
                               "\xe0\x80\x80",
                               "ok\xc3\xa9\x80tail"};
  for (const std::string& text : texts) {
    std::string out;
    writeString(out, text);
    EXPECT_EQ(out, dumped(Json(text))) << dumped(Json(text));
  }
  for (VbDate date : {VbDate{}, makeDate({2026, 11, 22, 16, 30, 5}), makeDate({100, 1, 1, 0, 0, 0}),
                      makeDate({9999, 12, 31, 23, 59, 59})}) {
    std::string out;
    writeDate(out, date);
    EXPECT_EQ(out, dumped(Json(formatDate(date))));
  }
  for (const Value& v : {Value(), Value::null(), Value(std::int16_t{-2}), Value(std::int32_t{70000}),
                         Value(true), Value(false), Value("x\"y"), Value(0.25)}) {
    std::string out;
    writeValue(out, v);
    EXPECT_EQ(out, dumped(valueToJson(v)));
  }
}

}  // namespace
}  // namespace tovrand::cli
