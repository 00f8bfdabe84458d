#include "load/Workload.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <deque>
#include <exception>
#include <latch>
#include <memory>
#include <optional>
#include <random>
#include <thread>

#include "entities/Collection.h"
#include "entities/Entities.h"
#include "frame/MessageSink.h"
#include "load/Data.h"
#include "pmrph/clsDataPMrph.h"
#include "pmrpi/clsDataPMrpi.h"
#include "porder/clsDataPOrder.h"
#include "porderchk/clsDataPOrderChk.h"
#include "tooling/NativeHostWiring.h"
#include "vb/Value.h"

namespace tovrand::load {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::array<const char*, kMemberCount> kNames{
    "clsDataPOrderChk.AddRecord",   "clsDataPOrderChk.UpdateRecord", "clsDataPOrder.QueryItem",
    "clsDataPOrder.QueryByStrSql",  "clsDataPOrder.AddRecord",       "clsDataPMrph.AddRecord1",
    "clsDataPMrph.QueryByIDForPur", "clsDataPMrpi.QueryByIDForPur",  "clsDataPMrpi.DeleteAllPMrpiRecord"};

constexpr std::array<const char*, 7> kDepartments{"业务", "工程", "仓库", "采购", "品保", "生管", "终审"};

// Figures differ from row to row only in what they mean (a number, a key): one cause per kind of
// failure, whatever production number or port it names.
std::string causeText(std::string text) {
  std::string out;
  bool inDigits = false;
  for (char c : text) {
    const bool digit = c >= '0' && c <= '9';
    if (digit && inDigits) continue;
    out += digit ? '#' : (c == '\n' || c == '\r' ? ' ' : c);
    inDigits = digit;
  }
  if (out.size() > 160) out = out.substr(0, 160) + "...";
  return out;
}

VbDate day(int y, int m, int d, int h = 0) {
  return makeDate({y, m, d, h, 0, 0});
}

std::string dsnFor(const Target& target, int index, const std::string& engine) {
  return "mysql://ld" + std::to_string(index) + ":ld@127.0.0.1:" + std::to_string(target.portFor(index)) +
         "/" + target.database() + "?serialize_allocation=1&engine=" + engine;
}

// One client program: its own host, session and objects, its own seeded choice of work.
class Client {
 public:
  Client(const Target& target, TargetCursor& cursor, int index, const RunOptions& options)
      : target_(target),
        cursor_(cursor),
        index_(index),
        options_(options),
        rng_(options.seed * 1000003u + static_cast<std::uint64_t>(index)) {}

  void run(std::latch& ready, std::latch& go, const Clock::time_point& deadline,
           const std::atomic<bool>& stop) {
    try {
      host_ = tooling::makeNativeHost(dsnFor(target_, index_, options_.engine), data::kServerDate, sink_);
      porder_.emplace(host_);
      review_.emplace(host_);
      pmrph_.emplace(host_);
      pmrpi_.emplace(host_);
    } catch (const std::exception& e) {
      ++result_.connectFailures[causeText(e.what())];
      ready.count_down();
      return;
    }
    ready.count_down();
    go.wait();
    std::discrete_distribution<int> pick(options_.weights.begin(), options_.weights.end());
    while (Clock::now() < deadline && !stop.load(std::memory_order_relaxed)) step(pick(rng_));
    // The objects go (their sessions close) before the run's figures are read.
    pmrpi_.reset();
    pmrph_.reset();
    review_.reset();
    porder_.reset();
    host_.reset();
  }

  RunResult& result() { return result_; }

 private:
  template <class Call>
  bool timed(int member, std::int16_t expected, Call&& call) {
    std::int16_t status = -1;
    std::string exception;
    const auto t0 = Clock::now();
    try {
      status = call();
    } catch (const std::exception& e) {
      exception = e.what();
    }
    const double ms = std::chrono::duration<double, std::milli>(Clock::now() - t0).count();
    const std::vector<Message> messages = sink_->take();
    MemberFigures& f = result_.members[static_cast<std::size_t>(member)];
    ++f.calls;
    f.latencyMs.push_back(static_cast<float>(ms));
    if (exception.empty() && status == expected && messages.empty()) return true;
    std::string cause;
    if (!exception.empty()) {
      cause = "raised: " + causeText(exception);
    } else {
      cause = "status " + std::to_string(status);
      if (messages.empty())
        cause += ", no message";
      else
        cause += ": " + causeText(messages.front().text);
      if (messages.size() > 1) cause += " (and " + std::to_string(messages.size() - 1) + " more messages)";
    }
    ++f.failures[cause];
    return false;
  }

  void step(int member) {
    switch (member) {
      case kReview:
        return review();
      case kSignOff:
        return signOff();
      case kOrderRead:
        return orderRead();
      case kOrderList:
        return orderList();
      case kOrderAdd:
        return orderAdd();
      case kPlanning:
        return planning();
      case kHeadersToBuy:
        return toBuy(true);
      case kLinesToBuy:
        return toBuy(false);
      case kRelease:
        return release();
      default:
        return;
    }
  }

  int uniform(int n) { return static_cast<int>(rng_() % static_cast<std::uint64_t>(n)); }

  void review() {
    const int j = static_cast<int>(cursor_.salesOrder.fetch_add(1) % data::kSalesOrders) + 1;
    const double orderNo = data::kSalesOrderBase + j;
    Collection lines;
    for (int l = 1; l <= 2; ++l) {
      clsEntBOrderi line;
      line.F_OrderNo(orderNo);
      line.F_No(std::to_string(l));
      line.F_ItemNo(data::product(j + l));
      line.F_CItemNo("CI-" + std::to_string(j % 100));
      line.F_OrderQty(100.0 * l);
      line.F_DeliverDate(day(2027, 1, 15));
      lines.Add(line);
    }
    char order[32];
    std::snprintf(order, sizeof order, "%.0f", orderNo);
    const bool ok = timed(kReview, 1, [&] {
      return review_->AddRecord(lines, order, data::customer(j), "HM-" + std::to_string(j), 5);
    });
    if (ok)
      result_.reviewLinesAllocated += 2;
    else
      ++result_.reviewCallsFailed;
  }

  void signOff() {
    clsEntPOrderChk e;
    e.F_ProdNo(data::kReviewedBase + 1 + uniform(data::kReviewed));
    const VbDate at = day(2026, 11, 22, 9 + uniform(8));
    const std::string who = "U" + std::to_string(index_);
    e.F_BStradCon(1);
    e.F_BSAlertNote("");
    e.F_BSNote("交期可行");
    e.F_BSChecker(who);
    e.F_BSCheckTime(at);
    e.F_EGAdmit(1);
    e.F_EGModel(1);
    e.F_EGNote("图纸齐全");
    e.F_EGChecker(who);
    e.F_EGCheckTime(at);
    e.F_WIFill(0.0);
    e.F_WIEndtime(at);
    e.F_WPStock(0.0);
    e.F_WPEndTime(at);
    e.F_WINote("");
    e.F_WIChecker(who);
    e.F_WIChecktime(at);
    e.F_PUprovider(1);
    e.F_PUNote("");
    e.F_PUChecker(who);
    e.F_PUCheckTime(at);
    e.F_QCStd(1);
    e.F_QCNote("按企业标准");
    e.F_QChecker(who);
    e.F_QCheckTime(at);
    e.F_MKDate(1);
    e.F_MKNote("");
    e.F_MKChecker(who);
    e.F_MKCheckTime(at);
    e.F_Way("自制");
    e.F_CSNote("");
    e.F_CSChecker(who);
    e.F_CSCheckTime(at);
    const std::string department = kDepartments[static_cast<std::size_t>(uniform(7))];
    timed(kSignOff, 1, [&] { return review_->UpdateRecord(e, department); });
  }

  void orderRead() {
    clsEntPOrder e;
    e.F_ProdNo(data::kReviewedBase + 1 + uniform(data::kReviewed));
    timed(kOrderRead, 1, [&] { return porder_->QueryItem(e); });
  }

  void orderList() {
    Collection c;
    const std::string where =
        " where F_CustNo='" + data::customer(uniform(data::kCustomers)) + "' order by F_ProdNo";
    timed(kOrderList, 1, [&] { return porder_->QueryByStrSql(c, where); });
  }

  void orderAdd() {
    const std::int64_t n = cursor_.newOrder.fetch_add(1) + 1;
    clsEntPOrder e;
    e.F_ProdNo(data::kNewOrderBase + static_cast<double>(n));
    e.F_OrderMode("自制");
    e.F_CustNo(data::customer(static_cast<int>(n)));
    e.F_ItemNo(data::product(static_cast<int>(n)));
    e.F_OrdQty(100.0);
    e.F_DeliverDate(day(2027, 3, 1));
    if (timed(kOrderAdd, 1, [&] { return porder_->AddRecord(e); }))
      ++result_.ordersAdded;
    else
      ++result_.orderAddsFailed;
  }

  void planning() {
    const std::int64_t k = cursor_.planning.fetch_add(1) + 1;
    if (k > data::kPlanningPool) return toBuy(true);  // every waiting order is planned
    const int ki = static_cast<int>(k);
    Planning p;
    p.prodNo = data::kPlanningBase + static_cast<double>(k);
    clsEntPMrph header;
    header.F_ProdNo(p.prodNo);
    header.F_ItemNo(data::product(ki));
    Collection lines;
    constexpr std::array<double, 5> dosages{1, 0.5, 2, 0.25, 4};
    for (int i = 0; i < 5; ++i) {
      clsEntPMrpi line;
      line.F_ItemNo(data::material(ki * 5 + i));
      line.F_Dosage(dosages[static_cast<std::size_t>(i)]);
      line.F_Waste(0.01);
      line.F_LeadTime(5);
      lines.Add(line);
    }
    // The product's free stock covers the requirement, so the header takes all of it and leaves the
    // lines nothing to make: their reservations are rows of 0.
    p.reserved = data::planningQuantity(ki);
    p.releasable = 0;
    p.lines = 5;
    p.uncertain = !timed(kPlanning, 1, [&] { return pmrph_->AddRecord1(header, lines); });
    if (!p.uncertain) planned_.push_back(result_.plannings.size());
    result_.plannings.push_back(p);
  }

  void release() {
    if (planned_.empty()) return planning();  // nothing of this client's is planned yet
    Planning& p = result_.plannings[planned_.front()];
    planned_.pop_front();
    const double prodNo = p.prodNo;
    const bool ok = timed(kRelease, 1, [&] { return pmrpi_->DeleteAllPMrpiRecord(prodNo); });
    if (ok)
      p.released = true;
    else
      p.uncertain = true;
  }

  void toBuy(bool headers) {
    const double start = data::kPurchasingBase + 1 + uniform(data::kPurchasing - 20);
    const double end = start + 19;
    Collection c;
    if (headers)
      timed(kHeadersToBuy, 1, [&] { return pmrph_->QueryByIDForPur(c, start, end, 1, ""); });
    else
      timed(kLinesToBuy, 1, [&] { return pmrpi_->QueryByIDForPur(c, start, end, 1, "RM"); });
  }

  const Target& target_;
  TargetCursor& cursor_;
  int index_;
  RunOptions options_;
  std::mt19937_64 rng_;
  std::shared_ptr<RecordingMessageSink> sink_ = std::make_shared<RecordingMessageSink>();
  std::shared_ptr<Host> host_;
  std::optional<clsDataPOrder> porder_;
  std::optional<clsDataPOrderChk> review_;
  std::optional<clsDataPMrph> pmrph_;
  std::optional<clsDataPMrpi> pmrpi_;
  std::deque<std::size_t> planned_;  // this client's plannings not released yet, oldest first
  RunResult result_;
};

}  // namespace

const char* memberName(int member) {
  return kNames[static_cast<std::size_t>(member)];
}

RunResult runClients(const Target& target, TargetCursor& cursor, const RunOptions& options,
                     const std::atomic<bool>& stop) {
  std::vector<std::unique_ptr<Client>> clients;
  for (int i = 0; i < options.clients; ++i)
    clients.push_back(std::make_unique<Client>(target, cursor, i, options));
  std::latch ready(options.clients), go(1);
  Clock::time_point deadline;
  std::vector<std::jthread> threads;
  for (auto& c : clients) {
    threads.emplace_back([&, client = c.get()] { client->run(ready, go, deadline, stop); });
  }
  ready.wait();
  const auto start = Clock::now();
  deadline =
      start + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(options.seconds));
  go.count_down();
  threads.clear();  // joins
  RunResult merged;
  merged.target = target.name();
  merged.clients = options.clients;
  merged.seconds = std::chrono::duration<double>(std::min(Clock::now(), deadline) - start).count();
  for (auto& c : clients) {
    RunResult& r = c->result();
    for (int m = 0; m < kMemberCount; ++m) {
      auto& into = merged.members[static_cast<std::size_t>(m)];
      auto& from = r.members[static_cast<std::size_t>(m)];
      into.calls += from.calls;
      into.latencyMs.insert(into.latencyMs.end(), from.latencyMs.begin(), from.latencyMs.end());
      for (auto& [cause, count] : from.failures) into.failures[cause] += count;
    }
    merged.reviewLinesAllocated += r.reviewLinesAllocated;
    merged.reviewCallsFailed += r.reviewCallsFailed;
    merged.ordersAdded += r.ordersAdded;
    merged.orderAddsFailed += r.orderAddsFailed;
    merged.plannings.insert(merged.plannings.end(), r.plannings.begin(), r.plannings.end());
    for (auto& [cause, count] : r.connectFailures) merged.connectFailures[cause] += count;
  }
  return merged;
}

}  // namespace tovrand::load
