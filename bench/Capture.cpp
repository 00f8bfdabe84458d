#include "bench/Capture.h"

#include <deque>

#include "engine/StatementTrace.h"
#include "frame/Trace.h"
#include "vb/Text.h"

namespace tovrand::bench {

namespace {

struct Delivered {
  std::string sql;
  Delivery how;
  std::vector<Value> values;
};

class Collector final : public DeliveryObserver {
 public:
  void delivered(std::string_view sql, Delivery how, const std::vector<Value>& values) override {
    items.push_back({std::string(sql), how, values});
  }
  std::vector<Delivered> items;
};

Step stepOf(const DataSet& d, const Delivered& item) {
  Step s;
  s.sql = item.sql;
  s.wide = toUtf16(item.sql);
  switch (item.how) {
    case Delivery::Rows:
      s.form = Step::Form::Query;
      s.columns = describeQuery(d.settings, item.sql);
      break;
    case Delivery::NoResult:
      s.form = Step::Form::Execute;
      break;
    case Delivery::BoundWrite:
      s.form = Step::Form::Write;
      s.values = item.values;
      break;
  }
  return s;
}

// Calls the member once with the trace and the delivery observer on, and makes the baselines' plans.
VariantPlan capture(DataSet& d, const std::string& label, int expected, int appendOnlyOpens,
                    const std::function<Outcome(DataSet&, Objects&)>& call,
                    const std::function<void(DataSet&)>& restore) {
  RecordingTraceSink trace;
  Collector collector;
  setTraceSink(&trace);
  setDeliveryObserver(&collector);
  Outcome out = call(d, *d.objects);
  setDeliveryObserver(nullptr);
  setTraceSink(nullptr);
  std::string what = label + " on " + std::to_string(d.rows) + " rows";
  checkOutcome(what, expected, out, *d.objects);
  if (restore) restore(d);

  VariantPlan plan;
  plan.outcome = out;
  plan.traced = trace.statements().size();
  for (const Delivered& item : collector.items) plan.steps.push_back(stepOf(d, item));
  // The statements that do something: every traced one but the keyset opens only added to.
  std::size_t floor = plan.traced - static_cast<std::size_t>(appendOnlyOpens);
  if (plan.steps.size() != floor) {
    std::string text = what + " sent " + std::to_string(plan.steps.size()) + " statements; " +
                       std::to_string(floor) + " of its " + std::to_string(plan.traced) + " do something:";
    for (const TracedStatement& s : trace.statements())
      text += std::string("\n  ") + (s.origin == StatementOrigin::Engine ? "[engine] " : "[method] ") + s.sql;
    text += "\n delivered:";
    for (const Delivered& item : collector.items) text += "\n  " + item.sql;
    fatal(text);
  }
  // The installed component runs every open: the ones this engine never sent are buffered whole.
  std::map<std::string, std::deque<std::size_t>> byText;
  for (std::size_t i = 0; i < plan.steps.size(); ++i) byText[plan.steps[i].sql].push_back(i);
  for (const TracedStatement& s : trace.statements()) {
    auto it = byText.find(s.sql);
    if (it != byText.end() && !it->second.empty()) {
      plan.installed.push_back(plan.steps[it->second.front()]);
      it->second.pop_front();
    } else {
      Step buffered;
      buffered.form = Step::Form::Buffered;
      buffered.sql = s.sql;
      buffered.wide = toUtf16(s.sql);
      plan.installed.push_back(std::move(buffered));
    }
  }
  // Both baselines once, untimed: they must read what the component read.
  plan.rows = d.odbc->runAll(plan.steps);
  if (restore) restore(d);
  std::size_t viaC = d.connectorC->runAll(plan.steps);
  if (restore) restore(d);
  std::size_t viaEngine = plan.rows;
  if (d.engine) {
    viaEngine = d.engine->runAll(plan.steps);
    if (restore) restore(d);
  }
  if (viaC != plan.rows || viaEngine != plan.rows) {
    fatal(what + ": ODBC read " + std::to_string(plan.rows) + " rows, Connector/C " + std::to_string(viaC) +
          ", the engine alone " + std::to_string(viaEngine));
  }
  return plan;
}

}  // namespace

void checkOutcome(const std::string& what, int expected, const Outcome& out, Objects& objects) {
  const auto& messages = objects.messages->messages();
  if (out.status == expected && messages.empty()) return;
  std::string text =
      what + " returned " + std::to_string(out.status) + " (expected " + std::to_string(expected) + ")";
  for (const Message& m : messages) text += "\n  message: " + m.text + " [" + m.title + "]";
  fatal(text);
}

void Plans::checkShape(const std::string& key, const std::string& label, std::size_t traced) {
  auto [it, inserted] = tracedPerCall_.emplace(key, traced);
  if (!inserted && it->second != traced) {
    fatal(label + " sent " + std::to_string(traced) + " statements where an earlier call sent " +
          std::to_string(it->second));
  }
}

CasePlan& Plans::of(DataSet& d, const Case& c) {
  auto key = std::make_pair(c.key, d.rows);
  if (auto it = plans_.find(key); it != plans_.end()) return it->second;
  CasePlan plan;
  for (int v = 0; v < kVariants; ++v) {
    auto call = [&c, v](DataSet& data, Objects& o) { return c.call(data, o, v); };
    std::function<void(DataSet&)> restore;
    if (c.restore) restore = [&c, v](DataSet& data) { c.restore(data, v); };
    plan.variants.push_back(capture(d, c.cls + "." + c.label, c.expected, c.appendOnlyOpens, call, restore));
    checkShape(c.key, c.cls + "." + c.label, plan.variants.back().traced);
  }
  const VariantPlan& first = plan.variants.front();
  results_.singleRowRead[c.key] = first.steps.size() == 1 && first.steps[0].form == Step::Form::Query &&
                                  first.rows == 1 && first.outcome.yield == 1;
  return plans_.emplace(key, std::move(plan)).first->second;
}

CasePlan& Plans::of(DataSet& d, const Workload& w) {
  auto key = std::make_pair(w.key, d.rows);
  if (auto it = plans_.find(key); it != plans_.end()) return it->second;
  CasePlan plan;
  plan.variants.push_back(capture(d, w.label, 1, w.appendOnlyOpens, w.call, w.restore));
  return plans_.emplace(key, std::move(plan)).first->second;
}

}  // namespace tovrand::bench
