#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "frame/Messages.h"
#include "tests/faults/TableState.h"
#include "tests/support/Printers.h"
#include "tests/support/SessionFaults.h"
#include "tests/support/TestDatabase.h"

namespace tovrand::test {

// One writing member as a fault run drives it: a call that makes the member do its work on the sample
// data (it builds fresh arguments on every call) and what the member answers after a handled error.
struct WritingMember {
  WritingMember(std::string memberName, std::function<std::int16_t()> makeCall, std::int16_t failedStatus = 0)
      : name(std::move(memberName)), call(std::move(makeCall)), failed(failedStatus) {}

  std::string name;  // Class.Member, for the report
  std::function<std::int16_t()> call;
  std::int16_t failed = 0;  // the member's status after a handled error
  // A member that goes on after one of its routines has handled an error shows one message per
  // routine that meets the lost session, then its own; a member without such routines shows one.
  bool routinesGoOn = false;
  // The beginning of the first statement of the member's last step when the member does not look at
  // how that step ends: a cut from the step's last occurrence on leaves the member to finish with its
  // own success status, showing `messagesWhenFinishing` messages ("": the member has no such step).
  std::string lastStepStarts;
  std::size_t messagesWhenFinishing = 1;
  // The first and last statements of a transaction the member runs ("": none). A session lost
  // after the first and before the last has run takes everything since the first with it: the server
  // rolls the transaction back.
  std::string transactionBegins;
  std::string transactionEnds;
};

// The sample data loaded, a copy of it kept to start every run from, and the runs that cut the
// session of the member's object just before its k-th statement, for every k.
class StatementFaults : public DatabaseTest {
 protected:
  void SetUp() override;
  void TearDown() override;

  // The cuts, one run per statement of the member's call; returns how many were survived (every
  // expectation held). The same object makes every call, and after each cut it makes the whole call
  // again on the restored data, which must do exactly what the run without a fault did.
  int cutAtEveryStatement(const WritingMember& member);

  // The statements of one uncut call, with the database as it stood before each of them and after
  // the last.
  struct Reference {
    std::int16_t result = 0;
    std::vector<TracedStatement> statements;
    std::vector<TableContents> before;  // before[i]: the tables just before statements[i] went out
    TableContents after;
    // reachesServer[i]: how many statements are traced when the first one sent after statements[i] was
    // traced reaches the server (a whole table opened only to add rows to it stays with the engine, so
    // a session cut before it is met by a later statement); 0 when nothing reaches the server after it.
    std::vector<std::size_t> metAt;
  };
  Reference referenceRun(const WritingMember& member);

  std::unique_ptr<TableState> state_;
};

}  // namespace tovrand::test
