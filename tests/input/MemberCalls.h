#pragma once

// Calls of every member of the four classes through its table entry, from a realistic starting call
// per member, with one argument or entity property at a time replaced by a hostile value; and what each
// call may answer: the member's statuses, its message form and the tables it may change.

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <gtest/gtest.h>

#include "entities/Entity.h"
#include "frame/Members.h"
#include "frame/MessageSink.h"
#include "frame/Trace.h"
#include "tests/support/TestDatabase.h"
#include "vb/Value.h"

namespace tovrand::test {

// An entity argument: its class and the properties the call sets (the others keep their initial value).
struct EntityShape {
  std::string cls;
  std::vector<std::pair<std::string, Value>> properties;
};
// A Collection argument: the class its elements have, and the elements the caller puts in.
struct CollectionShape {
  std::string elementClass;
  std::vector<EntityShape> elements;
};
using DoubleArrayShape = std::vector<double>;
using ArgumentShape = std::variant<Value, EntityShape, CollectionShape, DoubleArrayShape>;
// The arguments of one call, in interface order.
using CallShape = std::vector<ArgumentShape>;

// How a member's message boxes look: the style and title of its handler form, and whether the
// length message of the write form can be one of them.
struct MessageForm {
  int style;
  std::string title;
  bool lengthMessage;
};

// What one member may answer.
struct MemberContract {
  const MemberInfo* member;              // its entry in its class's table
  std::vector<std::int16_t> statuses;    // every status it can return; empty: the Variant Empty
  std::vector<std::int16_t> afterError;  // the statuses it can return once it has shown a message
  MessageForm form;
  std::vector<std::string> targets;  // the tables it writes; every other table stays as it was
  std::vector<CallShape> starts;     // realistic calls on the sample data
  // Entity and element properties that only some starting calls read (a department's columns),
  // mapped to those calls; a property not listed is tried on the first call only. Without a map every
  // value is tried on every starting call.
  std::map<std::string, std::vector<std::size_t>> propertyStarts = {};
  // The member goes on after a handled error (a failed reservation release does not stop the loop).
  bool goesOnAfterError = false;

  const ClassInfo& cls() const;
  std::string name() const;  // clsDataPOrder.AddRecord
};

// Every member of the four classes, in interface order.
const std::vector<MemberContract>& memberContracts();
// The member table's entry of a contract.
const MemberInfo& memberInfo(const MemberContract& contract);

// One place a hostile value can go: an argument, a property of an entity argument, or a property of
// the first element of a Collection argument.
struct Slot {
  std::size_t param = 0;
  std::string property;  // "" for the argument itself
  PropertyType type = PropertyType::String;
  std::string describe(const MemberInfo& member) const;
};
// Every slot of a starting call, with the type of value it takes (array arguments: their first element).
std::vector<Slot> slotsOf(const MemberInfo& member, const CallShape& start);
// The starting calls a value in `slot` is tried on.
std::vector<std::size_t> startsFor(const MemberContract& contract, const Slot& slot);

// A hostile value and a name for it in failure messages.
struct NamedValue {
  std::string label;
  Value value;
};
// The values every slot of a type is tried with: texts {a single quote, a backslash, 10,000
// characters, Chinese text, a 4-byte emoji, empty}; doubles {NaN, +Inf, -Inf, 1e300, -0, 2^53 + 1};
// 16-bit integers at their limits; dates {the zero date, year 100, 9999-12-31 23:59:59}.
const std::vector<NamedValue>& hostileValues(PropertyType type);

// The arguments of a call, built afresh (entities and Collections are new objects), with `value` in
// `slot` when given.
std::vector<Argument> buildArguments(const CallShape& call, const MemberInfo& member,
                                     const std::optional<std::pair<Slot, Value>>& replaced = std::nullopt);

// Whether a statement ends inside a quoted text (a quote spliced in broke it), reading quotes and
// backslash escapes as the server does.
bool endsInsideText(const std::string& sql);

// Counts kept over the whole program, printed when a suite ends.
struct Tally {
  long calls = 0;
  long brokenStatements = 0;
  long messages = 0;
};

// What one call did.
struct CallOutcome {
  Value result;
  std::vector<Message> messages;
  std::vector<std::string> statements;  // the member's own texts, in order
  std::string escaped;                  // what escaped the member, if anything did
};

// A database loaded with the sample data, with a copy of every table to go back to after a call
// changed its member's tables, and one object of the class under test per call.
class MemberCallTest : public DatabaseTest {
 protected:
  void SetUp() override;
  void TearDown() override;
  static void TearDownTestSuite();

  // The call, on a new object of the member's class (the connection stays open between calls).
  CallOutcome call(const MemberContract& contract, std::vector<Argument>& args);
  // CHECKSUM TABLE of every table of the database, by table name.
  std::map<std::string, std::string> checksums();
  // Table names, columns with their types and defaults, and indexes: what a dropped or altered table
  // would change.
  std::string schemaDigest() const;
  // Expects every table but `contract`'s targets to hold what it held at the start, then puts the
  // targets back as they were at the start.
  void expectOnlyTargetsChangedAndRestore(const MemberContract& contract, const std::string& what);
  // Expects `outcome` to be one of the contract's documented answers; counts it in `counts`.
  void expectDocumented(const MemberContract& contract, const CallOutcome& outcome, const std::string& what,
                        Tally& counts);

  const std::map<std::string, std::string>& startChecksums() const { return start_; }

 private:
  std::string snapshot_;  // the sample's tables as the suite's first test loaded them
  std::string tables_;    // the schema's tables, as CHECKSUM TABLE lists them
  std::map<std::string, std::string> start_;
  std::shared_ptr<Host> host_;
  std::shared_ptr<Connection> digestConnection_;
  std::unique_ptr<DispatchObject> keeper_;  // holds the component's shared connection open
};

Tally& tally(const std::string& kind);
// Prints the counts of `kind` (the closing figures of a suite).
void printTally(const std::string& kind);

// The test name of a member: clsDataPOrder_AddRecord.
std::string contractTestName(const ::testing::TestParamInfo<std::size_t>& info);

}  // namespace tovrand::test
