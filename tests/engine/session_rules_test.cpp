// The session rules both recordset engines keep, without a server: a lost session and a held call,
// the shared connections, the session cache's bounds and its forgetting, the password in messages.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "engine/SessionCache.h"
#include "engine/SessionSetup.h"
#include "engine/SessionState.h"
#include "engine/SharedSessions.h"
#include "vb/VbError.h"

namespace tovrand::test {
namespace {

class Lost : public VbError {
 public:
  explicit Lost(VbError error) : VbError(std::move(error)) {}
};

// A session that counts how often it was opened anew.
struct Sessions {
  engine::SessionState state;
  int opened = 1;
  // The next statement: the session it runs on.
  int live() {
    return state.liveSession<Lost>([&] { ++opened; }, [&] { return opened; });
  }
};

TEST(SessionState, TheStatementAfterALossOutsideACallOpensANewSession) {
  Sessions s;
  EXPECT_EQ(s.live(), 1);
  s.state.noteLost(VbError(vberr::kProviderError, "gone"));
  EXPECT_TRUE(s.state.isLost());
  EXPECT_EQ(s.live(), 2);
  EXPECT_FALSE(s.state.isLost());
  EXPECT_EQ(s.live(), 2);
}

TEST(SessionState, AHeldCallThatLostItsSessionFailsEveryLaterStatementWithTheFirstLoss) {
  Sessions s;
  s.state.beginCall();
  s.state.noteLost(VbError(vberr::kProviderError, "first"));
  s.state.noteLost(VbError(vberr::kProviderError, "second"));
  for (int i = 0; i < 2; ++i) {
    try {
      s.live();
      ADD_FAILURE() << "a statement reached the server";
    } catch (const Lost& e) {
      EXPECT_EQ(e.description(), "first");
    }
  }
  s.state.endCall();
  EXPECT_EQ(s.live(), 2) << "the next statement after the call opens a new session";
}

TEST(SessionState, ASessionThatCannotBeOpenedAgainStaysLostForTheHeldCall) {
  engine::SessionState state;
  state.beginCall();
  state.noteLost(VbError(vberr::kProviderError, "gone"));
  state.endCall();
  state.beginCall();
  int attempts = 0;
  auto live = [&] {
    return state.liveSession<Lost>(
        [&] {
          ++attempts;
          throw VbError(vberr::kProviderError, "unreachable");
        },
        [] { return 0; });
  };
  EXPECT_THROW(live(), VbError);
  EXPECT_THROW(live(), Lost);
  EXPECT_EQ(attempts, 1) << "a held call does not wait for the server once more per statement";
}

TEST(SessionState, GuardedNotesALossAndLetsItThrough) {
  engine::SessionState state;
  EXPECT_THROW(state.guarded<Lost>([]() -> int { throw Lost(VbError(vberr::kProviderError, "x")); }), Lost);
  EXPECT_TRUE(state.isLost());
}

TEST(SharedSessions, OneConnectionPerKeyWhileAnyoneHoldsIt) {
  engine::SharedSessions<int> shared;
  int opened = 0;
  auto open = [&] {
    ++opened;
    return std::make_shared<int>(opened);
  };
  auto a = shared.acquire("k", open);
  auto b = shared.acquire("k", open);
  auto c = shared.acquire("other", open);
  EXPECT_EQ(a, b);
  EXPECT_NE(a, c);
  EXPECT_EQ(shared.count(), 2u);
  a.reset();
  b.reset();
  EXPECT_EQ(shared.count(), 1u);
  auto d = shared.acquire("k", open);
  EXPECT_EQ(*d, 3) << "the last holder gone, the next one opens anew";
}

TEST(SharedSessions, AFailedOpenLeavesNothingBehind) {
  engine::SharedSessions<int> shared;
  EXPECT_THROW(
      shared.acquire("k", []() -> std::shared_ptr<int> { throw VbError(vberr::kProviderError, "no"); }),
      VbError);
  EXPECT_EQ(shared.count(), 0u);
}

struct Column {
  std::string name;
};
// A prepared statement stand-in: empty when 0.
struct Prepared {
  int id = 0;
  explicit operator bool() const { return id != 0; }
};
using Cache = engine::SessionCache<Column, Prepared>;

TEST(SessionCache, AStatementGivenBackIsLentToTheNextUserOfTheSameText) {
  Cache cache;
  Cache::Lent first = cache.takeStatement("INSERT 1");
  EXPECT_FALSE(first.statement);
  first.statement.id = 7;
  cache.giveBack("INSERT 1", std::move(first));
  EXPECT_EQ(cache.takeStatement("INSERT 1").statement.id, 7);
  EXPECT_FALSE(cache.takeStatement("INSERT 1").statement) << "lent to one user at a time";
}

TEST(SessionCache, ANewSessionForgetsStatementsAndTablesAndRefusesTheOldSessionsStatements) {
  Cache cache;
  cache.rememberTableColumns("t", std::make_shared<const Cache::Columns>(Cache::Columns{Column{"a"}}));
  cache.rememberResultColumns("select", std::make_shared<const Cache::Columns>());
  Cache::Lent lent = cache.takeStatement("UPDATE");
  lent.statement.id = 1;
  cache.newSession();
  cache.giveBack("UPDATE", std::move(lent));
  EXPECT_FALSE(cache.takeStatement("UPDATE").statement);
  EXPECT_EQ(cache.tableColumns("t"), nullptr);
  EXPECT_EQ(cache.resultColumns("select"), nullptr);
  EXPECT_EQ(cache.session(), 2u);
}

TEST(SessionCache, AFullCacheMakesRoomByDroppingAnotherTextsStatement) {
  Cache cache;
  for (int i = 1; i <= 64; ++i) {
    Cache::Lent lent = cache.takeStatement("text " + std::to_string(i));
    lent.statement.id = i;
    cache.giveBack("text " + std::to_string(i), std::move(lent));
  }
  Cache::Lent extra = cache.takeStatement("new text");
  extra.statement.id = 100;
  cache.giveBack("new text", std::move(extra));
  EXPECT_EQ(cache.takeStatement("new text").statement.id, 100);
  int kept = 0;
  for (int i = 1; i <= 64; ++i) kept += cache.takeStatement("text " + std::to_string(i)).statement ? 1 : 0;
  EXPECT_EQ(kept, 63);
}

TEST(SessionSetup, ThePasswordIsHiddenUnlessAMessageShowsItAnywayAsAName) {
  ConnectionSettings s;
  s.user = "tovrand";
  s.database = "tovrand";
  s.password = "Pw-Secret-42";
  EXPECT_EQ(engine::secretOf(s), "Pw-Secret-42");
  s.password = "tovrand";
  EXPECT_EQ(engine::secretOf(s), "");
  s.password = "";
  EXPECT_EQ(engine::secretOf(s), "");
}

TEST(SessionSetup, AServerThatFoldsNoTableNamesIsRefusedAndServerDatePinsTheClock) {
  EXPECT_THROW(engine::checkSession({Value("0"), Value("utf8mb4")}), VbError);
  EXPECT_NO_THROW(engine::checkSession({Value("1"), Value("utf8mb4")}));
  EXPECT_NO_THROW(engine::checkSession({}));
  ConnectionSettings s;
  EXPECT_FALSE(engine::clockPinning(s));
  s.serverDate = "2008-05-15";
  EXPECT_EQ(engine::clockPinning(s).value_or(""), "SET timestamp = UNIX_TIMESTAMP('2008-05-15 12:00:00')");
}

}  // namespace
}  // namespace tovrand::test
