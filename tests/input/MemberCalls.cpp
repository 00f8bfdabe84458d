#include "tests/input/MemberCalls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <sstream>

#include "component/Component.h"
#include "entities/Collection.h"
#include "entities/Entities.h"
#include "frame/Messages.h"
#include "host/NativeHost.h"
#include "odbc/OdbcConnection.h"
#include "odbc/OdbcRecordset.h"
#include "porder/clsDataPOrder.h"

namespace tovrand::test {

namespace {

const EntityClass& entityClassNamed(const std::string& name) {
  const EntityClass* cls = findEntityClass(name);
  if (cls == nullptr) throw std::logic_error("no entity class " + name);
  return *cls;
}

PropertyType typeOf(ParamKind kind) {
  switch (kind) {
    case ParamKind::Double:
    case ParamKind::DoubleArray:
      return PropertyType::Double;
    case ParamKind::Integer:
      return PropertyType::Integer;
    case ParamKind::Date:
      return PropertyType::Date;
    default:
      return PropertyType::String;
  }
}

Entity buildEntity(const EntityShape& shape, const std::optional<std::pair<Slot, Value>>& replaced) {
  Entity entity = newNativeEntity(entityClassNamed(shape.cls));
  for (const auto& [property, value] : shape.properties) entity.put(property, value);
  if (replaced) entity.put(replaced->first.property, replaced->second);
  return entity;
}

// Statements sent outside the trace: the digests are the test's, not the component's.
class TraceDetached {
 public:
  TraceDetached() : previous_(traceSink()) { setTraceSink(nullptr); }
  ~TraceDetached() { setTraceSink(previous_); }
  TraceDetached(const TraceDetached&) = delete;
  TraceDetached& operator=(const TraceDetached&) = delete;

 private:
  TraceSink* previous_;
};

std::string backticked(const std::string& name) {
  return "`" + name + "`";
}

}  // namespace

std::string Slot::describe(const MemberInfo& member) const {
  std::string out(member.params[param].name);
  if (!property.empty()) out += "." + property;
  return out;
}

std::vector<Slot> slotsOf(const MemberInfo& member, const CallShape& start) {
  std::vector<Slot> slots;
  for (std::size_t i = 0; i < member.params.size(); ++i) {
    const ParamInfo& param = member.params[i];
    const ArgumentShape& shape = start.at(i);
    if (const auto* entity = std::get_if<EntityShape>(&shape)) {
      for (const PropertyInfo& p : entityClassNamed(entity->cls).properties)
        slots.push_back({i, std::string(p.name), p.type});
    } else if (const auto* collection = std::get_if<CollectionShape>(&shape)) {
      // A list the member fills has nothing to vary; a list it reads varies its first element.
      if (collection->elements.empty()) continue;
      for (const PropertyInfo& p : entityClassNamed(collection->elementClass).properties)
        slots.push_back({i, std::string(p.name), p.type});
    } else if (const auto* array = std::get_if<DoubleArrayShape>(&shape)) {
      if (!array->empty()) slots.push_back({i, "", PropertyType::Double});
    } else {
      slots.push_back({i, "", typeOf(param.kind)});
    }
  }
  return slots;
}

std::vector<std::size_t> startsFor(const MemberContract& contract, const Slot& slot) {
  if (contract.propertyStarts.empty()) {
    std::vector<std::size_t> all(contract.starts.size());
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = i;
    return all;
  }
  if (!slot.property.empty()) {
    if (auto it = contract.propertyStarts.find(slot.property); it != contract.propertyStarts.end())
      return it->second;
  }
  return {0};
}

const std::vector<NamedValue>& hostileValues(PropertyType type) {
  static const std::vector<NamedValue> texts{
      {"a single quote", Value("'")},
      {"a backslash", Value("\\")},
      {"10,000 characters", Value(std::string(10000, 'x'))},
      {"Chinese text", Value("生产订单审核：外发加工")},
      {"a 4-byte emoji", Value("\xF0\x9F\x98\x80")},
      {"an empty text", Value("")},
  };
  static const std::vector<NamedValue> doubles{
      {"NaN", Value(std::numeric_limits<double>::quiet_NaN())},
      {"+Inf", Value(std::numeric_limits<double>::infinity())},
      {"-Inf", Value(-std::numeric_limits<double>::infinity())},
      {"1e300", Value(1e300)},
      {"-0", Value(-0.0)},
      // 2^53 + 1 has no double of its own: the caller's value arrives as its nearest, 2^53.
      {"2^53 + 1", Value(9007199254740993.0)},
  };
  static const std::vector<NamedValue> integers{
      {"-32768", Value(std::numeric_limits<std::int16_t>::min())},
      {"32767", Value(std::numeric_limits<std::int16_t>::max())},
  };
  static const std::vector<NamedValue> dates{
      {"the zero date", Value(VbDate{0.0})},
      {"year 100", Value(makeDate({100, 1, 1}))},
      {"9999-12-31 23:59:59", Value(makeDate({9999, 12, 31, 23, 59, 59}))},
  };
  switch (type) {
    case PropertyType::Double:
      return doubles;
    case PropertyType::Integer:
      return integers;
    case PropertyType::Date:
      return dates;
    case PropertyType::String:
      break;
  }
  return texts;
}

std::vector<Argument> buildArguments(const CallShape& call, const MemberInfo& member,
                                     const std::optional<std::pair<Slot, Value>>& replaced) {
  std::vector<Argument> args;
  for (std::size_t i = 0; i < call.size(); ++i) {
    const bool here = replaced && replaced->first.param == i;
    const ArgumentShape& shape = call[i];
    if (const auto* entity = std::get_if<EntityShape>(&shape)) {
      args.emplace_back(buildEntity(*entity, here ? replaced : std::nullopt));
    } else if (const auto* collection = std::get_if<CollectionShape>(&shape)) {
      auto built = std::make_shared<Collection>();
      for (std::size_t e = 0; e < collection->elements.size(); ++e)
        built->Add(buildEntity(collection->elements[e], here && e == 0 ? replaced : std::nullopt));
      args.emplace_back(std::move(built));
    } else if (const auto* array = std::get_if<DoubleArrayShape>(&shape)) {
      std::vector<double> built = *array;
      if (here && !built.empty()) built[0] = CDbl(replaced->second);
      args.emplace_back(std::move(built));
    } else {
      args.emplace_back(here ? replaced->second : std::get<Value>(shape));
    }
  }
  if (args.size() != member.params.size())
    throw std::logic_error("a call of " + std::string(member.name) + " has the wrong number of arguments");
  return args;
}

bool endsInsideText(const std::string& sql) {
  char quote = 0;
  for (std::size_t i = 0; i < sql.size(); ++i) {
    const char c = sql[i];
    if (quote != 0) {
      if (c == '\\') {
        ++i;
      } else if (c == quote) {
        if (i + 1 < sql.size() && sql[i + 1] == quote) {
          ++i;
        } else {
          quote = 0;
        }
      }
      continue;
    }
    if (c == '\'' || c == '"' || c == '`') {
      quote = c;
    } else if (c == '#' || (c == '-' && sql.compare(i, 3, "-- ") == 0)) {
      i = sql.find('\n', i);
      if (i == std::string::npos) return false;
    } else if (c == '/' && sql.compare(i, 2, "/*") == 0) {
      i = sql.find("*/", i + 2);
      if (i == std::string::npos) return false;
      ++i;
    }
  }
  return quote != 0;
}

namespace {

// The copy of the sample's tables every test of a suite goes back to: made once per suite, since
// every test starts from the same sample.
std::string& suiteSnapshot() {
  static std::string name;
  return name;
}

}  // namespace

void MemberCallTest::SetUp() {
  DatabaseTest::SetUp();
  loadSample();
  start_ = checksums();
  std::string& snapshot = suiteSnapshot();
  if (snapshot.empty()) {
    snapshot = database() + "_start";
    exec("CREATE DATABASE " + backticked(snapshot) + " CHARACTER SET utf8mb4");
    for (const auto& [table, sum] : start_) {
      exec("CREATE TABLE " + backticked(snapshot) + "." + backticked(table) + " LIKE " + backticked(table));
      exec("INSERT INTO " + backticked(snapshot) + "." + backticked(table) + " SELECT * FROM " +
           backticked(table));
    }
  }
  snapshot_ = snapshot;
  host_ = host();
  keeper_ = createObject(clsDataPOrder::Members(), host_);
  messages().take();
  trace().clear();
}

void MemberCallTest::TearDown() {
  keeper_.reset();
  host_.reset();
  digestConnection_.reset();
  DatabaseTest::TearDown();
}

void MemberCallTest::TearDownTestSuite() {
  std::string& snapshot = suiteSnapshot();
  if (!snapshot.empty()) TestServer::instance().admin("DROP DATABASE IF EXISTS " + backticked(snapshot));
  snapshot.clear();
}

CallOutcome MemberCallTest::call(const MemberContract& contract, std::vector<Argument>& args) {
  const MemberInfo& member = memberInfo(contract);
  std::unique_ptr<DispatchObject> object = createObject(contract.cls(), host_);
  messages().take();
  trace().clear();
  CallOutcome outcome;
  try {
    outcome.result = object->invoke(member, args);
  } catch (const std::exception& e) {
    outcome.escaped = e.what();
  } catch (...) {
    outcome.escaped = "an exception of unknown type";
  }
  try {
    object.reset();
  } catch (...) {
    outcome.escaped += " (and releasing the object raised)";
  }
  outcome.messages = messages().take();
  outcome.statements = trace().methodStatements();
  return outcome;
}

std::map<std::string, std::string> MemberCallTest::checksums() {
  // The tables the schema made; a table gone since reads as a NULL checksum, one added shows in the
  // schema digest.
  if (tables_.empty()) {
    tables_ = scalar(
        "select group_concat(table_name order by table_name separator '`,`') from information_schema.tables "
        "where table_schema = database()");
  }
  std::map<std::string, std::string> sums;
  if (tables_.empty() || tables_ == "NULL") return sums;
  const std::string& tables = tables_;
  if (!digestConnection_)
    digestConnection_ = OdbcConnection::openPrivate(TestServer::instance().fixtureSettings(database()));
  TraceDetached detached;
  OdbcRecordset rs;
  rs.Open("CHECKSUM TABLE `" + tables + "`", digestConnection_, adOpenUnspecified, adLockUnspecified,
          adCmdUnspecified);
  while (!rs.EOF_()) {
    std::string table = CStr(rs.getField("Table"));
    table = table.substr(table.find('.') + 1);
    sums[table] = describe(rs.getField("Checksum"));
    rs.MoveNext();
  }
  rs.Close();
  return sums;
}

std::string MemberCallTest::schemaDigest() const {
  return scalar(
             "select concat(count(*), ':', md5(group_concat(concat_ws('|', table_name, column_name, "
             "column_type, "
             "is_nullable, ifnull(column_default, '~'), column_key, extra) order by table_name, "
             "ordinal_position "
             "separator ';'))) from information_schema.columns where table_schema = database()") +
         " " +
         scalar(
             "select concat(count(*), ':', md5(group_concat(concat_ws('|', table_name, index_name, "
             "seq_in_index, "
             "column_name, non_unique) order by table_name, index_name, seq_in_index separator ';'))) from "
             "information_schema.statistics where table_schema = database()");
}

void MemberCallTest::expectOnlyTargetsChangedAndRestore(const MemberContract& contract,
                                                        const std::string& what) {
  std::map<std::string, std::string> now = checksums();
  for (const auto& [table, sum] : start_) {
    const bool target =
        std::find(contract.targets.begin(), contract.targets.end(), table) != contract.targets.end();
    auto it = now.find(table);
    if (it == now.end() || it->second == "Null") {
      ADD_FAILURE() << what << ": the table " << table << " is gone";
      exec("CREATE TABLE IF NOT EXISTS " + backticked(table) + " LIKE " + backticked(snapshot_) + "." +
           backticked(table));
    } else if (it->second == sum) {
      continue;
    } else if (!target) {
      ADD_FAILURE() << what << ": " << contract.name() << " changed " << table
                    << ", a table it does not write";
    }
    exec("DELETE FROM " + backticked(table));
    exec("INSERT INTO " + backticked(table) + " SELECT * FROM " + backticked(snapshot_) + "." +
         backticked(table));
  }
}

void MemberCallTest::expectDocumented(const MemberContract& contract, const CallOutcome& outcome,
                                      const std::string& what, Tally& counts) {
  ++counts.calls;
  counts.messages += static_cast<long>(outcome.messages.size());
  EXPECT_EQ(outcome.escaped, "") << what << ": an error escaped the member";
  if (contract.statuses.empty()) {
    EXPECT_TRUE(outcome.result.isEmpty()) << what << ": answered " << tovrand::describe(outcome.result);
  } else {
    ASSERT_EQ(outcome.result.type(), Value::Type::Integer)
        << what << ": answered " << tovrand::describe(outcome.result);
    const std::int16_t status = outcome.result.integer();
    EXPECT_NE(std::find(contract.statuses.begin(), contract.statuses.end(), status), contract.statuses.end())
        << what << ": status " << status << " is not one of the member's";
    if (!outcome.messages.empty()) {
      EXPECT_NE(std::find(contract.afterError.begin(), contract.afterError.end(), status),
                contract.afterError.end())
          << what << ": status " << status << " after the message " << outcome.messages.front().text;
    }
  }
  for (const Message& m : outcome.messages) {
    EXPECT_EQ(m.style, contract.form.style) << what << ": " << m.text;
    EXPECT_EQ(m.title, contract.form.title) << what << ": " << m.text;
    EXPECT_FALSE(m.text.empty()) << what;
    if (m.text == kTooLongMessage) {
      EXPECT_TRUE(contract.form.lengthMessage) << what << ": the length message";
    }
  }
  // A quote spliced into a statement breaks it: the handled error, and nothing sent after it.
  for (std::size_t i = 0; i < outcome.statements.size(); ++i) {
    if (!endsInsideText(outcome.statements[i])) continue;
    ++counts.brokenStatements;
    // The server's "You have an error in your SQL syntax", or the driver's "Syntax error or access
    // violation" when the text is nothing but the broken quote.
    const bool syntaxError =
        std::any_of(outcome.messages.begin(), outcome.messages.end(), [](const Message& m) {
          return m.text.find("SQL syntax") != std::string::npos ||
                 m.text.find("Syntax error") != std::string::npos;
        });
    EXPECT_TRUE(syntaxError) << what << ": the broken statement " << outcome.statements[i]
                             << " did not end in the server's syntax error but in "
                             << (outcome.messages.empty() ? std::string("no message")
                                                          : outcome.messages.front().text);
    if (!contract.goesOnAfterError) {
      EXPECT_EQ(i + 1, outcome.statements.size())
          << what << ": a statement was sent after the broken " << outcome.statements[i];
    }
  }
}

namespace {

std::map<std::string, Tally>& tallies() {
  static std::map<std::string, Tally> all;
  return all;
}

}  // namespace

void printTally(const std::string& kind) {
  const Tally& counts = tallies()[kind];
  std::printf("%s: %ld calls, %ld message boxes, %ld statements broken by a spliced quote\n", kind.c_str(),
              counts.calls, counts.messages, counts.brokenStatements);
}

Tally& tally(const std::string& kind) {
  return tallies()[kind];
}

const ClassInfo& MemberContract::cls() const {
  return componentClassOf(*member);
}

std::string MemberContract::name() const {
  return std::string(cls().name) + "." + std::string(member->name);
}

std::string contractTestName(const ::testing::TestParamInfo<std::size_t>& info) {
  const MemberContract& contract = memberContracts().at(info.param);
  return std::string(contract.cls().name) + "_" + std::string(contract.member->name);
}

}  // namespace tovrand::test
