#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frame/Trace.h"

namespace tovrand {
namespace {

TEST(TraceSinkSetting, NoneByDefault) {
  EXPECT_EQ(traceSink(), nullptr);
}

TEST(TraceSinkSetting, SetAndClear) {
  RecordingTraceSink sink;
  setTraceSink(&sink);
  EXPECT_EQ(traceSink(), &sink);
  traceSink()->statement("select 1", StatementOrigin::Method);
  setTraceSink(nullptr);
  EXPECT_EQ(traceSink(), nullptr);
  ASSERT_EQ(sink.statements().size(), 1u);
  EXPECT_EQ(sink.statements()[0], (TracedStatement{"select 1", StatementOrigin::Method}));
}

TEST(RecordingTraceSink, KeepsEveryStatementInOrder) {
  RecordingTraceSink sink;
  sink.statement("select * from T_POrder where F_ProdNo=1", StatementOrigin::Method);
  sink.statement("UPDATE T_POrder SET F_Status=1", StatementOrigin::Engine);
  sink.statement("delete from T_PMrpi where F_ProdNo=1", StatementOrigin::Method);
  const std::vector<TracedStatement> expected{
      {"select * from T_POrder where F_ProdNo=1", StatementOrigin::Method},
      {"UPDATE T_POrder SET F_Status=1", StatementOrigin::Engine},
      {"delete from T_PMrpi where F_ProdNo=1", StatementOrigin::Method}};
  EXPECT_EQ(sink.statements(), expected);
}

TEST(RecordingTraceSink, MethodStatementsLeaveOutTheEngine) {
  RecordingTraceSink sink;
  sink.statement("a", StatementOrigin::Engine);
  sink.statement("b", StatementOrigin::Method);
  sink.statement("c", StatementOrigin::Engine);
  sink.statement("d", StatementOrigin::Method);
  EXPECT_EQ(sink.methodStatements(), (std::vector<std::string>{"b", "d"}));
}

TEST(RecordingTraceSink, ClearForgetsEverything) {
  RecordingTraceSink sink;
  sink.statement("a", StatementOrigin::Method);
  sink.clear();
  EXPECT_TRUE(sink.statements().empty());
  EXPECT_TRUE(sink.methodStatements().empty());
}

}  // namespace
}  // namespace tovrand
