// tovrand_load: many client programs at once, each with its own objects of the four classes on a
// session of its own, on one private server and on a private three-node cluster; the figures per
// member and level, and afterwards the sums the tables must hold.
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "engine/ConnectionSettings.h"
#include "load/Checks.h"
#include "load/Data.h"
#include "load/Report.h"
#include "load/Target.h"
#include "load/Workload.h"

namespace {

using namespace tovrand::load;

std::atomic<bool> stopRequested{false};

// The first signal ends the runs early and lets the servers be stopped in order; a second ends the
// process at once (the servers' watchers then stop them).
void onSignal(int) {
  if (stopRequested.exchange(true)) ::_exit(130);
}

std::string setting(const char* name, const std::string& fallback) {
  const char* v = std::getenv(name);
  return v != nullptr && *v != '\0' ? v : fallback;
}

std::vector<std::string> split(const std::string& text) {
  std::vector<std::string> out;
  std::stringstream in(text);
  for (std::string item; std::getline(in, item, ',');)
    if (!item.empty()) out.push_back(item);
  return out;
}

struct Options {
  std::vector<int> clients;
  double seconds = 20;
  std::vector<std::string> targets;
  std::string results;
  std::uint64_t seed = 1;
  std::string engine = tovrand::ConnectionSettings::kDefaultEngine;
  std::array<int, kMemberCount> weights = kDefaultWeights;
};

int usage() {
  std::cerr
      << "usage: tovrand_load [--clients 16,64,200] [--seconds 20] [--targets single,cluster]\n"
         "                    [--results DIR] [--seed N] [--engine odbc|mariadb] [--weights W1,...,W9]\n"
         "  (defaults from TOVRAND_LOAD_CLIENTS, TOVRAND_LOAD_SECONDS, TOVRAND_LOAD_TARGETS,\n"
         "   TOVRAND_LOAD_RESULTS, TOVRAND_LOAD_SEED, TOVRAND_LOAD_ENGINE, TOVRAND_LOAD_WEIGHTS)\n"
         "  weights, in this order:";
  for (int m = 0; m < kMemberCount; ++m)
    std::cerr << (m ? ", " : " ") << memberName(m) << " " << kDefaultWeights[static_cast<std::size_t>(m)];
  std::cerr << "\n";
  return 2;
}

// Tee: what is printed also goes into the results' load.txt.
struct Output {
  std::ostringstream copy;
  template <class T>
  Output& operator<<(const T& v) {
    std::cout << v;
    copy << v;
    return *this;
  }
  void flush() { std::cout.flush(); }
};

}  // namespace

int main(int argc, char** argv) {
  Options o;
  std::string clients = setting("TOVRAND_LOAD_CLIENTS", "16,64,200");
  std::string seconds = setting("TOVRAND_LOAD_SECONDS", "20");
  std::string targets = setting("TOVRAND_LOAD_TARGETS", "single,cluster");
  o.results = setting("TOVRAND_LOAD_RESULTS", std::string(TOVRAND_SOURCE_DIR) + "/load/results");
  std::string seed = setting("TOVRAND_LOAD_SEED", "1");
  o.engine = setting("TOVRAND_LOAD_ENGINE", tovrand::ConnectionSettings::kDefaultEngine);
  std::string weights = setting("TOVRAND_LOAD_WEIGHTS", "");
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    if (i + 1 >= argc) return usage();
    const std::string v = argv[++i];
    if (a == "--clients")
      clients = v;
    else if (a == "--seconds")
      seconds = v;
    else if (a == "--targets")
      targets = v;
    else if (a == "--results")
      o.results = v;
    else if (a == "--seed")
      seed = v;
    else if (a == "--engine")
      o.engine = v;
    else if (a == "--weights")
      weights = v;
    else
      return usage();
  }
  try {
    for (const std::string& c : split(clients)) o.clients.push_back(std::stoi(c));
    o.seconds = std::stod(seconds);
    o.seed = std::stoull(seed);
    if (!weights.empty()) {
      const std::vector<std::string> w = split(weights);
      if (w.size() != kMemberCount) return usage();
      for (std::size_t m = 0; m < w.size(); ++m) o.weights[m] = std::stoi(w[m]);
      if (std::all_of(o.weights.begin(), o.weights.end(), [](int x) { return x <= 0; }) ||
          std::any_of(o.weights.begin(), o.weights.end(), [](int x) { return x < 0; }))
        return usage();
    }
  } catch (const std::exception&) {
    return usage();
  }
  o.targets = split(targets);
  if (o.clients.empty() || o.seconds <= 0 || o.targets.empty()) return usage();
  for (const std::string& t : o.targets)
    if (t != "single" && t != "cluster") return usage();

  struct sigaction action {};
  action.sa_handler = onSignal;
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
  sigaction(SIGHUP, &action, nullptr);

  const int maxClients = *std::max_element(o.clients.begin(), o.clients.end());
  // Every client holds one session; the administrator and the cluster's own threads want a few more.
  const int maxConnections = maxClients + 50;
  Output out;
  out << "tovrand_load: " << clients << " clients, " << o.seconds << " s per level, targets " << targets
      << ", engine " << o.engine << ", seed " << o.seed << ", weights";
  for (int w : o.weights) out << " " << w;
  out << ", " << std::thread::hardware_concurrency() << " cores\n";
  std::vector<RunResult> runs;
  bool held = true;
  try {
    for (const std::string& t : o.targets) {
      if (stopRequested) break;
      const auto t0 = std::chrono::steady_clock::now();
      std::unique_ptr<Target> target =
          t == "single" ? startSingle(maxConnections) : startCluster(3, maxConnections);
      fillTarget(*target, maxClients);
      out << "\n"
          << t << ": started and filled in "
          << std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count() << " s ("
          << target->nodes() << (target->nodes() == 1 ? " node" : " nodes, client i on node i mod 3")
          << ")\n";
      out.flush();
      TargetCursor cursor;
      std::vector<RunResult> targetRuns;
      for (int n : o.clients) {
        if (stopRequested) break;
        RunOptions ro{
            .clients = n, .seconds = o.seconds, .seed = o.seed, .engine = o.engine, .weights = o.weights};
        RunResult r = runClients(*target, cursor, ro, stopRequested);
        std::ostringstream table;
        printRun(table, r);
        out << table.str();
        out.flush();
        targetRuns.push_back(r);
      }
      const CheckResult sums = checkSums(*target, targetRuns);
      out << "\n" << t << ": the data's sums after " << targetRuns.size() << " runs\n";
      for (const std::string& line : sums.lines) out << "  " << line << "\n";
      held = held && sums.held;
      runs.insert(runs.end(), targetRuns.begin(), targetRuns.end());
    }
  } catch (const std::exception& e) {
    std::cerr << "tovrand_load: " << e.what() << "\n";
    return 2;
  }
  if (!runs.empty()) {
    const std::string chart = writeResults(o.results, runs);
    out << "\nresults: " << o.results << "/load.csv, failures.csv"
        << (chart.empty() ? " (no chart: gnuplot is missing)" : ", load.png") << "\n";
    out << (held ? "the sums held\n" : "THE SUMS DID NOT HOLD\n");
    std::ofstream(o.results + "/load.txt") << out.copy.str();
  }
  if (stopRequested) return 130;
  return held ? 0 : 1;
}
