#include "tests/faults/StatementFaults.h"

#include <chrono>

#include "engine/StatementTrace.h"

namespace tovrand::test {

namespace {

// Where two states first differ, for the failure text.
std::string firstDifference(const TableContents& expected, const TableContents& actual) {
  for (const std::string& table : changedTables(expected, actual)) {
    return table + ":\n  expected\n" + expected.at(table) + "\n  found\n" + actual.at(table);
  }
  return "";
}

// The order in which a call traced its statements and sent them to the server.
class TraceAndDelivery final : public DeliveryObserver {
 public:
  TraceAndDelivery() { setDeliveryObserver(this); }
  ~TraceAndDelivery() override { setDeliveryObserver(nullptr); }
  TraceAndDelivery(const TraceAndDelivery&) = delete;
  TraceAndDelivery& operator=(const TraceAndDelivery&) = delete;

  void traced() { sent_.push_back(false); }
  void delivered(std::string_view, Delivery, const std::vector<Value>&) override { sent_.push_back(true); }

  // For each traced statement, how many statements were traced when the next statement reached the
  // server (0: none did).
  std::vector<std::size_t> metAt() const {
    std::vector<std::size_t> out;
    std::size_t tracedSoFar = 0;
    for (std::size_t i = 0; i < sent_.size(); ++i) {
      if (sent_[i]) continue;
      ++tracedSoFar;
      std::size_t traced = tracedSoFar;
      std::size_t met = 0;
      for (std::size_t j = i + 1; j < sent_.size() && met == 0; ++j) {
        if (sent_[j]) {
          met = traced;
        } else {
          ++traced;
        }
      }
      out.push_back(met);
    }
    return out;
  }

 private:
  std::vector<bool> sent_;  // per event: true for a delivery, false for a trace
};

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
  TraceAndDelivery order;
  StatementHook hook([&](std::size_t, const TracedStatement&) {
    r.before.push_back(state_->take());
    order.traced();
  });
  {
    ScopedTraceSink installed(&hook);
    r.result = member.call();
  }
  r.statements = hook.recorded().statements();
  r.metAt = order.metAt();
  r.after = state_->take();
  return r;
}

int StatementFaults::cutAtEveryStatement(const WritingMember& member) {
  // The engine remembers a table's columns per session: the reference call runs on a session that has
  // seen the member's statements once, as every cut run's session has (the call after each cut).
  state_->restore();
  member.call();
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
  // Which state of the reference run a cut before statement k leaves (an index into its `before`):
  // the state before statement k, or, when the cut falls inside the member's transaction, the state
  // before the transaction began. `met` is the first statement after the cut that reaches the server.
  auto heldAfterCut = [&](std::size_t k, std::size_t met) -> std::size_t {
    if (member.transactionBegins.empty()) return k - 1;
    // The last transaction begun before the cut, and whether it ended before the statement that met it.
    std::size_t begun = k;
    for (std::size_t i = 0; i + 1 < k; ++i) {
      if (reference.statements[i].sql == member.transactionBegins) begun = i;
    }
    if (begun == k) return k - 1;
    for (std::size_t i = begun + 1; i + 1 < met; ++i) {
      if (reference.statements[i].sql == member.transactionEnds) return k - 1;
    }
    return begun;
  };
  int survived = 0;
  EXPECT_EQ(reference.metAt.size(), n);
  int cuts = 0;
  for (std::size_t k = 1; k <= n && k <= reference.metAt.size(); ++k) {
    SCOPED_TRACE(member.name + ", session cut before statement " + std::to_string(k) + " of " +
                 std::to_string(n) + ": " + reference.statements[k - 1].sql);
    // The statement that meets the cut session: the first one after the cut that reaches the server.
    const std::size_t met = reference.metAt[k - 1];
    if (met == 0) continue;  // nothing after the cut reaches the server in this call
    ++cuts;
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
    std::vector<TracedStatement> expectedSent(
        reference.statements.begin(), reference.statements.begin() + static_cast<std::ptrdiff_t>(met));
    EXPECT_EQ(hook.recorded().statements(), expectedSent);
    // The database holds what the statements before the cut did, and nothing more; of a transaction
    // not yet ended, nothing.
    const TableContents& held = reference.before[heldAfterCut(k, met)];
    TableContents now = state_->take();
    EXPECT_TRUE(now == held) << firstDifference(held, now);

    const bool finishes = finishesFrom != 0 && met >= finishesFrom;
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
  std::printf("[ faults   ] %s: %zu statements, %d of %d cuts survived\n", member.name.c_str(), n, survived,
              cuts);
  return survived;
}

}  // namespace tovrand::test
