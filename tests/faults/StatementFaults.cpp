#include "tests/faults/StatementFaults.h"

#include <chrono>

namespace tovrand::test {

namespace {

// Where two states first differ, for the failure text.
std::string firstDifference(const TableContents& expected, const TableContents& actual) {
  for (const std::string& table : changedTables(expected, actual)) {
    return table + ":\n  expected\n" + expected.at(table) + "\n  found\n" + actual.at(table);
  }
  return "";
}

// The failures recorded so far in the running test.
int partsRecorded() {
  return ::testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
}

}  // namespace

void StatementFaults::SetUp() {
  DatabaseTest::SetUp();
  loadSample();
  state_ = std::make_unique<TableState>(fixtureConnection());
  state_->keep(database() + "_kept");
}

void StatementFaults::TearDown() {
  if (state_) state_->drop();
  state_.reset();
  DatabaseTest::TearDown();
}

StatementFaults::Reference StatementFaults::referenceRun(const WritingMember& member) {
  Reference r;
  state_->restore();
  messages().take();
  StatementHook hook([&](std::size_t, const TracedStatement&) { r.before.push_back(state_->take()); });
  {
    ScopedTraceSink installed(&hook);
    r.result = member.call();
  }
  r.statements = hook.recorded().statements();
  r.after = state_->take();
  return r;
}

int StatementFaults::cutAtEveryStatement(const WritingMember& member) {
  Reference reference = referenceRun(member);
  EXPECT_TRUE(messages().take().empty()) << member.name << " showed a message without a fault";
  const std::size_t n = reference.statements.size();
  EXPECT_GT(n, 0u) << member.name << " sent nothing";
  // The tables the member writes start every run from the same AUTO_INCREMENT counters.
  const std::vector<std::string> written =
      changedTables(reference.before.empty() ? reference.after : reference.before[0], reference.after);
  std::size_t finishesFrom = 0;
  if (!member.lastStepStarts.empty()) {
    for (std::size_t i = 0; i < n; ++i) {
      if (reference.statements[i].sql.starts_with(member.lastStepStarts)) finishesFrom = i + 1;
    }
    EXPECT_GT(finishesFrom, 0u) << member.name << " never began its last step";
  }
  int survived = 0;
  for (std::size_t k = 1; k <= n; ++k) {
    SCOPED_TRACE(member.name + ", session cut before statement " + std::to_string(k) + " of " +
                 std::to_string(n) + ": " + reference.statements[k - 1].sql);
    const int failuresBefore = partsRecorded();
    state_->restore(written);
    messages().take();

    std::int16_t result = -1;
    StatementHook hook([&](std::size_t position, const TracedStatement&) {
      if (position != k) return;
      for (const std::string& id : otherSessions(fixtureConnection())) killSession(fixtureConnection(), id);
    });
    auto start = std::chrono::steady_clock::now();
    {
      ScopedTraceSink installed(&hook);
      result = member.call();
    }
    double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();

    // The statements up to the cut went out, each once, and nothing after it.
    std::vector<TracedStatement> expectedSent(reference.statements.begin(), reference.statements.begin() + k);
    EXPECT_EQ(hook.recorded().statements(), expectedSent);
    // The database holds what the statements before the cut did, and nothing more.
    TableContents now = state_->take();
    EXPECT_TRUE(now == reference.before[k - 1]) << firstDifference(reference.before[k - 1], now);

    const bool finishes = finishesFrom != 0 && k >= finishesFrom;
    EXPECT_EQ(result, finishes ? reference.result : member.failed);
    std::vector<Message> shown = messages().take();
    if (finishes) {
      EXPECT_EQ(shown.size(), member.messagesWhenFinishing);
    } else if (member.routinesGoOn) {
      EXPECT_FALSE(shown.empty());
    } else {
      EXPECT_EQ(shown.size(), 1u);
    }
    for (const Message& m : shown) {
      EXPECT_EQ(m.style, vbInformation);
      EXPECT_EQ(m.title, kTitleQuenta);
      EXPECT_EQ(m.text, shown.front().text);
    }
    EXPECT_LT(seconds, 10.0);

    // The same object's next call reconnects and does the whole job.
    state_->restore(written);
    StatementHook again;
    {
      ScopedTraceSink installed(&again);
      EXPECT_EQ(member.call(), reference.result);
    }
    EXPECT_EQ(again.recorded().statements(), reference.statements);
    EXPECT_TRUE(messages().take().empty());
    now = state_->take();
    EXPECT_TRUE(now == reference.after) << firstDifference(reference.after, now);

    if (partsRecorded() == failuresBefore) {
      ++survived;
    }
  }
  std::printf("[ faults   ] %s: %zu statements, %d of %zu cuts survived\n", member.name.c_str(), n, survived,
              n);
  return survived;
}

}  // namespace tovrand::test
