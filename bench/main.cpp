// clsDataPOrder's public methods on t_porder tables of growing size, each beside the same statements
// sent through bare ODBC calls (the engine's floor) and bare Connector/C calls (the protocol's floor).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "bench/Baseline.h"
#include "entities/Collection.h"
#include "entities/Entities.h"
#include "frame/MessageSink.h"
#include "frame/Text.h"
#include "frame/Trace.h"
#include "frame/Value.h"
#include "odbc/NativeHost.h"
#include "odbc/OdbcConnection.h"
#include "porder/clsDataPOrder.h"
#include "tests/support/TestDatabase.h"

namespace tovrand::bench {

void fatal(const std::string& what) {
  std::fflush(stdout);
  std::fprintf(stderr, "\ntovrand_bench: FATAL: %s\n", what.c_str());
  std::fflush(stderr);
  // No static destructors: the private server stops by itself when this process has gone.
  std::_Exit(3);
}

namespace {

// AddRecord's production numbers lie above every generated one and are deleted after each run.
constexpr double kAddedProdNoBase = 2100000000.0;

enum class Method {
  QueryByStrSqlOne,
  QueryByStrSqlHundred,
  GetALLChkList,
  QueryItem,
  CheckCustProdNo,
  AddRecord,
  UpdateRecord,
  UpdateOrderOutNo,
  QueryAllProdNo,
};

enum class Impl { Component, Odbc, ConnectorC };
constexpr Impl kImpls[] = {Impl::Component, Impl::Odbc, Impl::ConnectorC};

struct MethodInfo {
  Method method;
  const char* key;    // in benchmark names
  const char* label;  // in the summary
  // The statements the method sends, in order: the form a baseline sends each in, and whether the
  // engine (not the method's text) sends it.
  std::vector<std::pair<Step::Form, StatementOrigin>> shape;
};

const std::vector<MethodInfo>& methods() {
  using F = Step::Form;
  using O = StatementOrigin;
  static const std::vector<MethodInfo> all = {
      {Method::QueryByStrSqlOne, "QueryByStrSql_1row", "QueryByStrSql (1 row)", {{F::Query, O::Method}}},
      {Method::QueryByStrSqlHundred,
       "QueryByStrSql_100rows",
       "QueryByStrSql (100 rows)",
       {{F::Query, O::Method}}},
      {Method::GetALLChkList, "GetALLChkList", "GetALLChkList", {{F::Query, O::Method}}},
      {Method::QueryItem, "QueryItem", "QueryItem", {{F::Query, O::Method}}},
      {Method::CheckCustProdNo, "CheckCustProdNo", "CheckCustProdNo", {{F::Query, O::Method}}},
      {Method::AddRecord, "AddRecord", "AddRecord", {{F::PrepareOnly, O::Method}, {F::Write, O::Engine}}},
      {Method::UpdateRecord, "UpdateRecord", "UpdateRecord", {{F::Query, O::Method}, {F::Write, O::Engine}}},
      {Method::UpdateOrderOutNo, "UpdateOrderOutNo", "UpdateOrderOutNo", {{F::Execute, O::Method}}},
      {Method::QueryAllProdNo,
       "QueryAllProdNo",
       "QueryAllProdNo",
       {{F::Query, O::Method}, {F::Query, O::Method}}},
  };
  return all;
}

const MethodInfo& info(Method m) {
  for (const MethodInfo& i : methods()) {
    if (i.method == m) return i;
  }
  fatal("unknown method");
}

const char* implName(Impl impl) {
  switch (impl) {
    case Impl::Component:
      return "component";
    case Impl::Odbc:
      return "odbc";
    case Impl::ConnectorC:
      return "connector_c";
  }
  return "";
}

// ---------------------------------------------------------------------------------------------------
// Process memory: the high-water mark is reset before a run (Linux: 5 > /proc/self/clear_refs), so
// VmHWM afterwards minus VmRSS before is what the run needed at its peak.

long statusKiB(const char* field) {
  std::ifstream in("/proc/self/status");
  std::string line;
  std::string key = std::string(field) + ":";
  while (std::getline(in, line)) {
    if (line.rfind(key, 0) == 0) return std::strtol(line.c_str() + key.size(), nullptr, 10);
  }
  return 0;
}

bool resetPeak() {
  std::ofstream out("/proc/self/clear_refs");
  out << "5";
  out.flush();
  return static_cast<bool>(out);
}

class PeakProbe {
 public:
  PeakProbe() : resettable_(resetPeak()), start_(statusKiB("VmRSS")) {}
  long growthKiB() const { return std::max(0L, statusKiB("VmHWM") - start_); }
  bool resettable() const { return resettable_; }

 private:
  bool resettable_;
  long start_;
};

bool gPeakResettable = true;

// ---------------------------------------------------------------------------------------------------
// One data set: a database with the schema and `rows` production orders, the component on it, the
// two baselines on connections of their own, and per method the statements it was seen to send.

struct Plan {
  std::vector<Step> steps;
  std::size_t componentRows = 0;  // what the component's call yields (list length, or 1)
  std::size_t baselineRows = 0;   // rows a baseline reads in all of the steps
  int writeStep = -1;             // the step whose parameter changes per call
  int varyingParam = -1;
};

struct DataSet {
  int rows = 0;
  std::string database;
  ConnectionSettings settings;
  double setupSeconds = 0;
  std::shared_ptr<OdbcConnection> fixture;
  std::shared_ptr<RecordingMessageSink> messages = std::make_shared<RecordingMessageSink>();
  std::unique_ptr<clsDataPOrder> porder;
  std::unique_ptr<Baseline> odbc;
  std::unique_ptr<Baseline> connectorC;

  std::string oneCondition, hundredCondition, oneCustNo;
  double oneProdNo = 0;
  clsEntPOrder itemEntity, addEntity, updateEntity, outNoEntity;
  std::map<Method, Plan> plans;
};

// Every data set stays up for the whole run: the benchmarks of all sizes run interleaved.
std::map<int, std::unique_ptr<DataSet>> gDataSets;
std::map<int, double> gSetupSeconds;
double gAddedCounter = 0;
int gInQty = 0;

double nextAddedProdNo() {
  return kAddedProdNoBase + ++gAddedCounter;
}
double nextInQty() {
  return static_cast<double>(++gInQty % 1000);
}

std::string text(OdbcConnection& c, const std::string& sql) {
  std::optional<Value> v = c.scalar(sql, true);
  if (!v || v->isNull()) fatal("no value for: " + sql);
  return CStr(*v);
}

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) fatal("cannot read " + path);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

void dropDataSets() {
  for (auto& [rows, d] : gDataSets) {
    std::string database = d->database;
    d.reset();
    test::TestServer::instance().admin("DROP DATABASE IF EXISTS `" + database + "`");
  }
  gDataSets.clear();
}

// Production numbers are yyyymm followed by a four-digit serial, spread over the 24 months up to the
// pinned date; one order in ten is outsourced ('外发加工', status 0) and half of those are fully
// covered by outsourcing lines; customers hold 100 orders each.
void generate(OdbcConnection& c, int rows) {
  int customers = std::max(1, rows / 100);
  c.execute(
      "INSERT INTO t_porder (F_ProdNo, F_OrderMode, F_OrderNo, F_OrderOutNo, F_ItemNo, F_CustNo, F_COrderNo, "
      "F_InQty, F_InDate, F_OutQty, F_OutDate, F_OutBkQty, F_BalQty, F_OrdQty, F_DeliverDate, F_ProdQty, "
      "F_ProdDate, F_Status, F_SalerID, F_WoNo) "
      "SELECT (YEAR(m) * 100 + MONTH(m)) * 10000 + (seq - 1) DIV 24 + 1, "
      "IF(seq MOD 10 = 0, '外发加工', '正常'), 600000 + seq DIV 4, IF(seq MOD 10 = 0, 0, 700000 + seq), "
      "CONCAT('P-', LPAD(seq MOD 997, 4, '0')), CONCAT('C', LPAD((seq - 1) MOD " +
      std::to_string(customers) +
      ", 4, '0')), CONCAT('PO-', seq), seq MOD 50, m + INTERVAL 3 DAY, seq MOD 7, m + INTERVAL 9 DAY, 0, "
      "40 + seq MOD 60, 100 + seq MOD 400, m + INTERVAL 25 DAY, seq MOD 90, m + INTERVAL 12 DAY, "
      "IF(seq MOD 10 = 0, 0, seq MOD 3), '王伟', 800000 + seq "
      "FROM (SELECT seq, DATE '2026-11-01' - INTERVAL ((seq - 1) MOD 24) MONTH AS m FROM seq_1_to_" +
      std::to_string(rows) + ") s");
  c.execute(
      "INSERT INTO t_boutmakei (F_OrderOutNo, F_No, F_ProdNo, F_ItemNo, F_VendorNo, F_ordoutqty, F_OutDate) "
      "SELECT F_WoNo, '1', F_ProdNo, F_ItemNo, 'V001', IF(F_WoNo MOD 20 = 0, F_OrdQty, 1), F_InDate "
      "FROM t_porder WHERE F_OrderMode = '外发加工'");
  c.execute("ANALYZE TABLE t_porder, t_boutmakei");
}

DataSet& dataSet(int rows) {
  if (auto it = gDataSets.find(rows); it != gDataSets.end()) return *it->second;
  auto start = std::chrono::steady_clock::now();
  test::TestServer& server = test::TestServer::instance();
  auto d = std::make_unique<DataSet>();
  d->rows = rows;
  d->database = "tovrand_bench_" + std::to_string(rows);
  server.admin("DROP DATABASE IF EXISTS `" + d->database + "`");
  server.admin("CREATE DATABASE `" + d->database + "` CHARACTER SET utf8mb4");
  server.runSql(d->database, readFile(std::string(TOVRAND_SOURCE_DIR) + "/schema/tovrand.sql"));
  d->settings = server.fixtureSettings(d->database);
  d->fixture = OdbcConnection::openPrivate(d->settings);
  generate(*d->fixture, rows);

  OdbcConnection& f = *d->fixture;
  auto keyAt = [&](int offset) {
    return text(f,
                "select F_ProdNo from t_porder order by F_ProdNo limit 1 offset " + std::to_string(offset));
  };
  std::string one = keyAt(rows / 2);
  d->oneProdNo = CDbl(Value(one));
  d->oneCustNo = text(f, "select F_CustNo from t_porder where F_ProdNo=" + one);
  d->oneCondition = " where F_ProdNo ='" + one + "'";
  std::string customer = rows / 100 > 7 ? "C0007" : "C0000";
  d->hundredCondition = " where F_CustNo ='" + customer + "'";
  std::string count = text(f, "select count(*) from t_porder" + d->hundredCondition);
  if (rows >= 100 && count != "100") fatal("the 100-row condition selects " + count + " rows");

  d->porder = std::make_unique<clsDataPOrder>(std::make_shared<NativeHost>(d->settings, d->messages));
  d->odbc = odbcBaseline(d->settings);
  d->connectorC = connectorCBaseline(d->settings);

  d->itemEntity.F_ProdNo(d->oneProdNo);

  d->addEntity.F_CustNo("C0001");
  d->addEntity.F_SalerID("李娜");
  d->addEntity.F_ItemNo("P-0200");
  d->addEntity.F_OrderMode("正常");
  d->addEntity.F_OrderNo(6001.0);
  d->addEntity.F_COrderNo("客户单-1");
  d->addEntity.F_BalQty(50.0);
  d->addEntity.F_OrdQty(50.0);
  d->addEntity.F_DeliverDate(makeDate({2027, 1, 10, 0, 0, 0}));
  d->addEntity.F_Status(1);  // 2 would also mark sales lines: a different statement sequence

  d->updateEntity.F_ProdNo(CDbl(Value(keyAt(rows / 3))));
  if (d->porder->QueryItem(d->updateEntity) != 1) fatal("QueryItem found no order to update");

  d->outNoEntity.F_ProdNo(CDbl(Value(keyAt(rows / 4))));
  d->outNoEntity.F_OrderOutNo(990001.0);
  d->outNoEntity.F_ProdDate(makeDate({2026, 11, 20, 0, 0, 0}));
  d->outNoEntity.F_ProdQty(1.0);
  if (!d->messages->messages().empty()) fatal("messages during set-up: " + d->messages->messages()[0].text);

  d->setupSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  gSetupSeconds[rows] = d->setupSeconds;
  std::fprintf(stderr, "data set: %d production orders in %s, ready in %.1f s\n", rows, d->database.c_str(),
               d->setupSeconds);
  return *(gDataSets[rows] = std::move(d));
}

void cleanUp(DataSet& d, Method m) {
  if (m == Method::AddRecord) {
    d.fixture->execute("DELETE FROM t_porder WHERE F_ProdNo >= " + CStr(kAddedProdNoBase));
  }
}

// ---------------------------------------------------------------------------------------------------
// The component's call, checked: the method must succeed, report nothing and yield what it yielded
// when its statements were captured.

std::size_t callComponent(DataSet& d, Method m) {
  clsDataPOrder& p = *d.porder;
  std::int16_t result = 0;
  std::size_t yielded = 1;
  switch (m) {
    case Method::QueryByStrSqlOne:
    case Method::QueryByStrSqlHundred: {
      Collection list;
      std::string condition = m == Method::QueryByStrSqlOne ? d.oneCondition : d.hundredCondition;
      result = p.QueryByStrSql(list, condition);
      yielded = static_cast<std::size_t>(list.Count());
      break;
    }
    case Method::GetALLChkList: {
      Collection list;
      result = p.GetALLChkList(list);
      yielded = static_cast<std::size_t>(list.Count());
      break;
    }
    case Method::QueryItem:
      result = p.QueryItem(d.itemEntity);
      break;
    case Method::CheckCustProdNo:
      result = p.CheckCustProdNo(d.itemEntity, d.oneCustNo, d.oneProdNo);
      break;
    case Method::AddRecord:
      d.addEntity.F_ProdNo(nextAddedProdNo());
      result = p.AddRecord(d.addEntity);
      break;
    case Method::UpdateRecord:
      d.updateEntity.F_InQty(nextInQty());
      result = p.UpdateRecord(d.updateEntity);
      break;
    case Method::UpdateOrderOutNo:
      result = p.UpdateOrderOutNo(d.outNoEntity);
      break;
    case Method::QueryAllProdNo: {
      std::vector<double> numbers;
      result = p.QueryAllProdNo(numbers);
      yielded = numbers.size() - 1;
      break;
    }
  }
  if (result != 1 || !d.messages->messages().empty()) {
    std::string what = std::string(info(m).label) + " on " + std::to_string(d.rows) + " rows returned " +
                       std::to_string(result);
    for (const Message& msg : d.messages->messages())
      what += "\n  message: " + msg.text + " [" + msg.title + "]";
    fatal(what);
  }
  return yielded;
}

// ---------------------------------------------------------------------------------------------------
// Capturing what a method sends, and turning it into the baselines' steps.

// The backquoted names of an engine statement: the table, then the column of each '?' in order.
std::vector<std::string> quotedNames(const std::string& sql) {
  std::vector<std::string> names;
  std::size_t at = 0;
  while ((at = sql.find('`', at)) != std::string::npos) {
    std::size_t end = sql.find('`', at + 1);
    if (end == std::string::npos) break;
    names.push_back(sql.substr(at + 1, end - at - 1));
    at = end + 1;
  }
  return names;
}

Param paramOf(const Value& v) {
  Param p;
  switch (v.type()) {
    case Value::Type::Double:
      p.kind = Param::Kind::Double;
      p.number = v.dbl();
      break;
    case Value::Type::Integer:
      p.kind = Param::Kind::Integer;
      p.integer = v.integer();
      break;
    case Value::Type::Long:
      p.kind = Param::Kind::Integer;
      p.integer = v.longValue();
      break;
    case Value::Type::String:
      p.kind = Param::Kind::Text;
      p.text = v.str();
      p.wide = toUtf16(p.text);
      break;
    case Value::Type::Date: {
      DateParts parts = dateParts(v.date());
      p.kind = Param::Kind::Timestamp;
      p.year = parts.year;
      p.month = parts.month;
      p.day = parts.day;
      p.hour = parts.hour;
      p.minute = parts.minute;
      p.second = parts.second;
      break;
    }
    default:
      fatal("an entity property of an unexpected type: " + describe(v));
  }
  return p;
}

int indexOf(const std::vector<std::string>& names, const std::string& name) {
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (equalsIgnoreCase(names[i], name)) return static_cast<int>(i);
  }
  return -1;
}

Plan& plan(DataSet& d, Method m) {
  if (auto it = d.plans.find(m); it != d.plans.end()) return it->second;
  const MethodInfo& mi = info(m);
  Plan plan;
  RecordingTraceSink trace;
  setTraceSink(&trace);
  plan.componentRows = callComponent(d, m);
  setTraceSink(nullptr);
  const std::vector<TracedStatement>& sent = trace.statements();
  bool matches = sent.size() == mi.shape.size();
  for (std::size_t i = 0; matches && i < sent.size(); ++i) matches = sent[i].origin == mi.shape[i].second;
  if (!matches) {
    std::string what = std::string(mi.label) + " sent another statement sequence than the baselines replay:";
    for (const TracedStatement& s : sent) {
      what += std::string("\n  ") + (s.origin == StatementOrigin::Engine ? "[engine] " : "[method] ") + s.sql;
    }
    fatal(what);
  }
  const clsEntPOrder* written = m == Method::AddRecord ? &d.addEntity : &d.updateEntity;
  for (std::size_t i = 0; i < sent.size(); ++i) {
    Step step;
    step.form = mi.shape[i].first;
    step.sql = sent[i].sql;
    step.wide = toUtf16(step.sql);
    if (step.form == Step::Form::Query) step.columns = describeQuery(d.settings, step.sql);
    if (step.form == Step::Form::Write) {
      std::vector<std::string> names = quotedNames(step.sql);
      if (names.size() < 2) fatal("no columns in the engine's statement: " + step.sql);
      step.paramColumns.assign(names.begin() + 1, names.end());
      for (const std::string& column : step.paramColumns)
        step.params.push_back(paramOf(written->get(column)));
      plan.writeStep = static_cast<int>(i);
      plan.varyingParam = indexOf(step.paramColumns, m == Method::AddRecord ? "F_ProdNo" : "F_InQty");
      if (plan.varyingParam < 0) fatal("the engine's statement does not set the varying column: " + step.sql);
      if (step.params[static_cast<std::size_t>(plan.varyingParam)].kind != Param::Kind::Double) {
        fatal("the varying column is not a number: " + step.sql);
      }
    }
    plan.steps.push_back(std::move(step));
  }
  cleanUp(d, m);
  // Both baselines once, untimed: they must agree on what the statements read.
  auto vary = [&] {
    if (plan.writeStep < 0) return;
    Param& p = plan.steps[static_cast<std::size_t>(plan.writeStep)]
                   .params[static_cast<std::size_t>(plan.varyingParam)];
    p.number = m == Method::AddRecord ? nextAddedProdNo() : nextInQty();
  };
  vary();
  plan.baselineRows = d.odbc->runAll(plan.steps);
  vary();
  std::size_t viaC = d.connectorC->runAll(plan.steps);
  cleanUp(d, m);
  if (viaC != plan.baselineRows) {
    fatal(std::string(mi.label) + ": ODBC read " + std::to_string(plan.baselineRows) + " rows, Connector/C " +
          std::to_string(viaC));
  }
  return d.plans.emplace(m, std::move(plan)).first->second;
}

// ---------------------------------------------------------------------------------------------------
// The benchmarks and what the summary is built from.

struct Key {
  Method method;
  Impl impl;
  int rows;
  bool operator<(const Key& o) const {
    return std::tie(method, impl, rows) < std::tie(o.method, o.impl, o.rows);
  }
};

std::map<std::string, Key> gNames;
// Per repetition: real time and this process's CPU time per call.
struct Sample {
  double real = 0;
  double cpu = 0;
};
std::map<Key, std::vector<Sample>> gRepetitions;
std::map<Key, long> gPeakKiB;  // RSS high-water growth over a run (largest of GB's runs)
std::map<Key, std::size_t> gYield;

void runBenchmark(benchmark::State& state, Key key) {
  DataSet& d = dataSet(key.rows);
  Plan& p = plan(d, key.method);
  std::size_t yielded = 0;
  PeakProbe probe;
  gPeakResettable = gPeakResettable && probe.resettable();
  if (key.impl == Impl::Component) {
    for (auto _ : state) {
      yielded = callComponent(d, key.method);
      if (yielded != p.componentRows) {
        fatal(std::string(info(key.method).label) + " yielded " + std::to_string(yielded) + " instead of " +
              std::to_string(p.componentRows));
      }
    }
  } else {
    Baseline& b = key.impl == Impl::Odbc ? *d.odbc : *d.connectorC;
    Param* varying = p.writeStep < 0 ? nullptr
                                     : &p.steps[static_cast<std::size_t>(p.writeStep)]
                                            .params[static_cast<std::size_t>(p.varyingParam)];
    for (auto _ : state) {
      if (varying != nullptr)
        varying->number = key.method == Method::AddRecord ? nextAddedProdNo() : nextInQty();
      yielded = b.runAll(p.steps);
      if (yielded != p.baselineRows) {
        fatal(std::string(info(key.method).label) + " via " + b.name() + " read " + std::to_string(yielded) +
              " rows instead of " + std::to_string(p.baselineRows));
      }
    }
  }
  long peak = probe.growthKiB();
  gPeakKiB[key] = std::max(gPeakKiB[key], peak);
  gYield[key] = yielded;
  state.counters["rows"] = static_cast<double>(yielded);
  state.counters["peakKiB"] = static_cast<double>(peak);
  cleanUp(d, key.method);
}

// Keeps every repetition's time per call for the summary (its median), and shows Google Benchmark's
// aggregates (median and coefficient of variation) rather than each repetition.
class SummaryReporter final : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    std::vector<Run> shown;
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Aggregate) {
        if (run.aggregate_name == "median" || run.aggregate_name == "cv") shown.push_back(run);
        continue;
      }
      if (run.error_occurred || run.iterations == 0) continue;
      auto it = gNames.find(run.run_name.function_name);
      if (it != gNames.end()) {
        auto n = static_cast<double>(run.iterations);
        gRepetitions[it->second].push_back({run.real_accumulated_time / n, run.cpu_accumulated_time / n});
      }
    }
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Iteration && run.repetitions <= 1) shown.push_back(run);
    }
    if (!shown.empty()) ConsoleReporter::ReportRuns(shown);
  }
};

std::vector<int> sizes() {
  std::vector<int> out;
  const char* given = std::getenv("TOVRAND_BENCH_ROWS");
  std::string list = given != nullptr && *given != '\0' ? given : "1000,10000,100000";
  std::stringstream in(list);
  std::string item;
  while (std::getline(in, item, ',')) {
    int n = std::atoi(item.c_str());
    if (n < 100) fatal("TOVRAND_BENCH_ROWS takes sizes of at least 100 rows: " + list);
    out.push_back(n);
  }
  std::sort(out.begin(), out.end());
  return out;
}

double minTime() {
  const char* given = std::getenv("TOVRAND_BENCH_MIN_TIME");
  double t = given != nullptr ? std::atof(given) : 0.0;
  return t > 0 ? t : 0.1;
}

std::string duration(double seconds) {
  char buffer[32];
  if (seconds <= 0) return "-";
  if (seconds < 1e-3) {
    std::snprintf(buffer, sizeof buffer, "%.1f us", seconds * 1e6);
  } else if (seconds < 1) {
    std::snprintf(buffer, sizeof buffer, "%.2f ms", seconds * 1e3);
  } else {
    std::snprintf(buffer, sizeof buffer, "%.2f s", seconds);
  }
  return buffer;
}

std::string ratio(double a, double b) {
  if (a <= 0 || b <= 0) return "-";
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%.2f", a / b);
  return buffer;
}

// The least disturbed repetition: the machine is shared (the server runs on it too), and contention
// only ever adds time, so the fastest repetition is the closest to what a call costs.
Sample best(Method m, Impl impl, int rows) {
  auto it = gRepetitions.find({m, impl, rows});
  if (it == gRepetitions.end() || it->second.empty()) return {};
  Sample out = it->second.front();
  for (const Sample& s : it->second) {
    out.real = std::min(out.real, s.real);
    out.cpu = std::min(out.cpu, s.cpu);
  }
  return out;
}

double seconds(Method m, Impl impl, int rows) {
  return best(m, impl, rows).real;
}

double cpuSeconds(Method m, Impl impl, int rows) {
  return best(m, impl, rows).cpu;
}

long peakKiB(Method m, Impl impl, int rows) {
  auto it = gPeakKiB.find({m, impl, rows});
  return it == gPeakKiB.end() ? -1 : it->second;
}

std::string kib(long v) {
  return v < 0 ? "-" : std::to_string(v);
}

std::size_t repetitionCount() {
  std::size_t n = 0;
  for (auto& [key, samples] : gRepetitions) n = std::max(n, samples.size());
  return n;
}

void printSummary(const std::vector<int>& rowsList) {
  std::printf(
      "\n=== clsDataPOrder: time per call (real time, fastest of %zu repetitions) beside the same statements "
      "through bare ODBC and bare Connector/C ===\n",
      repetitionCount());
  std::printf("%-24s %6s %10s %10s %10s %6s %6s | %9s %9s %6s | %8s %6s %6s | %5s\n", "method", "rows",
              "component", "ODBC", "Conn/C", "c/ODBC", "c/C", "cpu comp", "cpu ODBC", "c/ODBC", "peak KiB",
              "ODBC", "Conn/C", "yield");
  for (const MethodInfo& mi : methods()) {
    for (int rows : rowsList) {
      double c = seconds(mi.method, Impl::Component, rows);
      double o = seconds(mi.method, Impl::Odbc, rows);
      double x = seconds(mi.method, Impl::ConnectorC, rows);
      if (c <= 0 && o <= 0 && x <= 0) continue;
      double cc = cpuSeconds(mi.method, Impl::Component, rows);
      double co = cpuSeconds(mi.method, Impl::Odbc, rows);
      auto y = gYield.find({mi.method, Impl::Component, rows});
      std::printf("%-24s %6d %10s %10s %10s %6s %6s | %9s %9s %6s | %8s %6s %6s | %5s\n", mi.label, rows,
                  duration(c).c_str(), duration(o).c_str(), duration(x).c_str(), ratio(c, o).c_str(),
                  ratio(c, x).c_str(), duration(cc).c_str(), duration(co).c_str(), ratio(cc, co).c_str(),
                  kib(peakKiB(mi.method, Impl::Component, rows)).c_str(),
                  kib(peakKiB(mi.method, Impl::Odbc, rows)).c_str(),
                  kib(peakKiB(mi.method, Impl::ConnectorC, rows)).c_str(),
                  y == gYield.end() ? "-" : std::to_string(y->second).c_str());
    }
  }
  if (rowsList.size() >= 2) {
    int small = rowsList.front(), large = rowsList.back();
    std::printf("\n=== growth from %d to %d rows: time(largest)/time(smallest); peak RSS growth ===\n", small,
                large);
    std::printf("%-25s %10s %10s %10s %10s   %-28s\n", "method", "component", "ODBC", "Conn/C", "cpu comp",
                "component peak KiB");
    for (const MethodInfo& mi : methods()) {
      auto g = [&](Impl impl) {
        return ratio(seconds(mi.method, impl, large), seconds(mi.method, impl, small));
      };
      long p0 = peakKiB(mi.method, Impl::Component, small), p1 = peakKiB(mi.method, Impl::Component, large);
      std::string peak = kib(p0) + " -> " + kib(p1);
      if (p0 > 0 && p1 >= 0) peak += " (x" + ratio(static_cast<double>(p1), static_cast<double>(p0)) + ")";
      std::string cpu =
          ratio(cpuSeconds(mi.method, Impl::Component, large), cpuSeconds(mi.method, Impl::Component, small));
      std::printf("%-25s %10s %10s %10s %10s   %-28s\n", mi.label, g(Impl::Component).c_str(),
                  g(Impl::Odbc).c_str(), g(Impl::ConnectorC).c_str(), cpu.c_str(), peak.c_str());
    }
  }
  std::printf(
      "\nc/ODBC, c/C: component time over bare ODBC and bare Connector/C time for the same statements.\n"
      "cpu: this process's CPU time per call (the server's work is not in it): what the method and the\n"
      "engine add on the client, least disturbed by other load. peak KiB: growth of the RSS high-water\n"
      "mark over a run (a few KiB are page noise). yield: list length the component returned (1 for\n"
      "single-row and write methods).\n");
  if (!gPeakResettable) {
    std::printf(
        "note: the RSS high-water mark could not be reset; peaks are growth of the process's peak.\n");
  }
  std::printf("set-up:");
  for (auto& [rows, s] : gSetupSeconds) std::printf(" %d rows %.1f s;", rows, s);
  std::printf(" private server start %.1f s\n", test::sandboxStartSeconds());
}

}  // namespace
}  // namespace tovrand::bench

int main(int argc, char** argv) {
  using namespace tovrand::bench;
  // A buffer pool that holds every table, so that reads measure the client and not the disk.
  setenv("TOVRAND_SANDBOX_ARGS", "--innodb-buffer-pool-size=256M", 0);
  // Repetitions in random order across all benchmarks: on a shared machine a busy moment then spreads
  // over every method and size instead of landing on one. Arguments given on the command line win.
  std::vector<char*> args{argv[0]};
  std::string repetitions = "--benchmark_repetitions=9";
  std::string interleaving = "--benchmark_enable_random_interleaving=true";
  args.push_back(repetitions.data());
  args.push_back(interleaving.data());
  for (int i = 1; i < argc; ++i) args.push_back(argv[i]);
  int count = static_cast<int>(args.size());
  args.push_back(nullptr);
  benchmark::Initialize(&count, args.data());
  if (benchmark::ReportUnrecognizedArguments(count, args.data())) return 1;
  std::vector<int> rowsList = sizes();
  double min = minTime();
  for (int rows : rowsList) dataSet(rows);
  for (int rows : rowsList) {
    for (const MethodInfo& mi : methods()) {
      for (Impl impl : kImpls) {
        Key key{mi.method, impl, rows};
        std::string name = std::string(mi.key) + "/" + implName(impl) + "/rows:" + std::to_string(rows);
        gNames[name] = key;
        benchmark::RegisterBenchmark(name.c_str(), [key](benchmark::State& s) { runBenchmark(s, key); })
            ->UseRealTime()
            ->MinTime(min)
            ->Unit(benchmark::kMicrosecond);
      }
    }
  }
  SummaryReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  dropDataSets();
  printSummary(rowsList);
  std::fflush(stdout);
  benchmark::Shutdown();
  return 0;
}
