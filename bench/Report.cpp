#include "bench/Report.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

namespace tovrand::bench {

const char* implName(Impl impl) {
  switch (impl) {
    case Impl::Component:
      return "component_mariadb";
    case Impl::ComponentOdbc:
      return "component_odbc";
    case Impl::Odbc:
      return "odbc";
    case Impl::ConnectorC:
      return "connector_c";
    case Impl::Installed:
      return "installed";
    case Impl::Engine:
      return "engine_odbc";
  }
  return "";
}

const char* implLabel(Impl impl) {
  switch (impl) {
    case Impl::Component:
      return "component on the native engine";
    case Impl::ComponentOdbc:
      return "component on the ODBC engine";
    case Impl::Odbc:
      return "bare ODBC";
    case Impl::ConnectorC:
      return "bare Connector/C";
    case Impl::Installed:
      return "installed (keyset open run and buffered)";
    case Impl::Engine:
      return "the ODBC engine alone (no entities)";
  }
  return "";
}

namespace {

double median(std::vector<double> v) {
  if (v.empty()) return 0;
  std::sort(v.begin(), v.end());
  std::size_t m = v.size() / 2;
  return v.size() % 2 == 1 ? v[m] : (v[m - 1] + v[m]) / 2;
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

double ratioOf(double a, double b) {
  return a > 0 && b > 0 ? a / b : 0;
}

// Whether a is at most `limit` times b; a figure that is missing meets nothing.
bool within(double a, double b, double limit) {
  return a > 0 && b > 0 && a / b <= limit;
}

std::string ratio(double a, double b) {
  double r = ratioOf(a, b);
  if (r <= 0) return "-";
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, r >= 100 ? "%.0f" : "%.2f", r);
  return buffer;
}

std::string number(double v, const char* format = "%.2f") {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, format, v);
  return buffer;
}

std::string readFirstLine(const char* path, const char* key) {
  std::ifstream in(path);
  std::string line;
  while (std::getline(in, line)) {
    if (key == nullptr || line.rfind(key, 0) == 0) return line;
  }
  return "";
}

std::string afterColon(const std::string& line) {
  std::size_t colon = line.find(':');
  if (colon == std::string::npos) return line;
  std::size_t start = line.find_first_not_of(" \t", colon + 1);
  return start == std::string::npos ? "" : line.substr(start);
}

struct Row {
  std::string key, cls, label;
};

std::vector<Row> memberRows(const Results& r, bool workloads) {
  std::vector<Row> rows;
  for (const auto& [key, names] : r.members) {
    bool isWorkload = key.rfind("workload.", 0) == 0;
    if (isWorkload == workloads) rows.push_back({key, names.first, names.second});
  }
  return rows;
}

double medianReal(const Results& r, const std::string& key, Impl impl, int rows) {
  const Series* s = r.find(key, impl, rows);
  return s == nullptr ? 0 : s->medianReal();
}

double medianCpu(const Results& r, const std::string& key, Impl impl, int rows) {
  const Series* s = r.find(key, impl, rows);
  return s == nullptr ? 0 : s->medianCpu();
}

long peak(const Results& r, const std::string& key, Impl impl, int rows) {
  const Series* s = r.find(key, impl, rows);
  return s == nullptr ? -1 : s->peakKiB;
}

std::vector<int> sizesOf(const Results& r, const std::string& key) {
  std::vector<int> out = r.sizes;
  if (r.largeSize > 0 && r.find(key, Impl::Component, r.largeSize) != nullptr) out.push_back(r.largeSize);
  return out;
}

// Flat means time (and peak memory, where it is more than page noise) grows by at most 10 % from the
// smallest to the largest size.
constexpr double kFlat = 1.10;
constexpr long kPageNoiseKiB = 64;

bool memoryFlat(long small, long large) {
  if (large <= kPageNoiseKiB) return true;
  return small > 0 && static_cast<double>(large) / static_cast<double>(small) <= kFlat;
}

std::string tripsOf(const std::map<std::string, RoundTrips>& counted, const std::string& key) {
  auto rt = counted.find(key);
  return rt == counted.end() ? "-"
                             : number(rt->second.perCall, "%.2f") + "/" + std::to_string(rt->second.floor);
}

void printTimes(const Results& r) {
  std::printf(
      "\n=== every member: time per call (median of the repetitions) on both engines beside the same "
      "statements through bare ODBC and bare Connector/C ===\n");
  std::printf("%-44s %7s %10s %10s %10s %10s | %6s %6s | %6s %6s %6s | %6s | %8s | %5s | %9s %9s\n", "member",
              "rows", "native", "comp ODBC", "ODBC", "Conn/C", "n/C", "ncpu/C", "o/ODBC", "o/C", "ocpu/O",
              "e/ODBC", "peak KiB", "yield", "rt native", "rt odbc");
  for (const Row& m : memberRows(r, false)) {
    std::string name = m.cls.substr(7) + "." + m.label;
    std::string trips = tripsOf(r.roundTrips, m.key), tripsOdbc = tripsOf(r.roundTripsOdbc, m.key);
    bool first = true;
    for (int rows : sizesOf(r, m.key)) {
      double n = medianReal(r, m.key, Impl::Component, rows);
      double c = medianReal(r, m.key, Impl::ComponentOdbc, rows);
      double o = medianReal(r, m.key, Impl::Odbc, rows);
      double x = medianReal(r, m.key, Impl::ConnectorC, rows);
      if (n <= 0 && c <= 0 && o <= 0 && x <= 0) continue;
      double cn = medianCpu(r, m.key, Impl::Component, rows);
      double cc = medianCpu(r, m.key, Impl::ComponentOdbc, rows);
      double co = medianCpu(r, m.key, Impl::Odbc, rows);
      double cx = medianCpu(r, m.key, Impl::ConnectorC, rows);
      double e = medianReal(r, m.key, Impl::Engine, rows);
      const Series* s = r.find(m.key, Impl::Component, rows);
      std::printf("%-44s %7d %10s %10s %10s %10s | %6s %6s | %6s %6s %6s | %6s | %8ld | %5zu | %9s %9s\n",
                  first ? name.c_str() : "", rows, duration(n).c_str(), duration(c).c_str(),
                  duration(o).c_str(), duration(x).c_str(), ratio(n, x).c_str(), ratio(cn, cx).c_str(),
                  ratio(c, o).c_str(), ratio(c, x).c_str(), ratio(cc, co).c_str(), ratio(e, o).c_str(),
                  peak(r, m.key, Impl::Component, rows), s != nullptr ? s->yield : 0,
                  first ? trips.c_str() : "", first ? tripsOdbc.c_str() : "");
      first = false;
    }
  }
  std::printf(
      "native: the component on the native engine (Connector/C); comp ODBC: the component on the ODBC "
      "engine.\n"
      "n/C, ncpu/C: the native engine's time and this process's CPU per call over bare Connector/C's for "
      "the\n"
      "same statements. o/ODBC, o/C, ocpu/O: the ODBC engine's over bare ODBC's and bare Connector/C's, and "
      "its\n"
      "CPU over bare ODBC's. e/ODBC: the ODBC engine alone (the same texts on its recordsets, every field "
      "read\n"
      "by name, no entity filled) over bare ODBC. peak KiB: growth of the RSS high-water mark over a run "
      "(the\n"
      "native engine). yield: entities or numbers listed (1 for a member that fills one entity or writes).\n"
      "rt: round trips per call over 100 calls beside one per statement that does something.\n");
}

void printRoundTrips(const Results& r) {
  std::printf(
      "\n=== round trips per call (the client's waits for the server, counted at the socket over 100 calls "
      "after a first call of each argument set) and the server's counters of the session over the same "
      "calls, per engine ===\n");
  std::printf("%-50s %-7s %5s %6s | %6s %6s %6s %6s %6s | %6s %6s %6s | %s\n", "member", "engine", "floor",
              "trips", "quest", "select", "insert", "update", "delete", "s_prep", "s_exec", "s_clos", "");
  for (bool workloads : {false, true}) {
    for (const Row& m : memberRows(r, workloads)) {
      for (bool odbcEngine : {false, true}) {
        const auto& counted = odbcEngine ? r.roundTripsOdbc : r.roundTrips;
        auto it = counted.find(m.key);
        if (it == counted.end()) continue;
        const RoundTrips& t = it->second;
        std::string verdict = t.perCall <= t.floor + 1e-9 ? "at the floor" : "ABOVE THE FLOOR";
        if (!t.consistent) verdict += ", socket and server disagree";
        if (!odbcEngine)
          verdict += t.questions <= t.floor + 1e-9 ? ", one command a statement" : ", EXTRA COMMANDS";
        std::string name = workloads ? m.key : m.cls.substr(7) + "." + m.label;
        std::printf("%-50s %-7s %5d %6s | %6s %6s %6s %6s %6s | %6s %6s %6s | %s\n",
                    odbcEngine ? "" : name.c_str(), odbcEngine ? "odbc" : "mariadb", t.floor,
                    number(t.perCall).c_str(), number(t.questions).c_str(), number(t.selects).c_str(),
                    number(t.inserts).c_str(), number(t.updates).c_str(), number(t.deletes).c_str(),
                    number(t.prepares).c_str(), number(t.executes).c_str(), number(t.closes).c_str(),
                    verdict.c_str());
      }
    }
  }
  std::printf(
      "quest: Questions, the server commands the server counts (text queries and prepared executions);\n"
      "select..delete: Com_select, Com_insert, Com_update, Com_delete; s_prep, s_exec, s_clos: "
      "Com_stmt_prepare,\n"
      "_execute, _close. Connector/ODBC 3.1 sends a read as a preparation and its execution in one packet "
      "(one\n"
      "round trip; the server counts both) and closes the statement without waiting; the native engine sends "
      "a\n"
      "read as one text query, and the engine's INSERT and UPDATE as the execution of a statement prepared "
      "once\n"
      "per session.\n");
}

void printGrowth(const Results& r) {
  if (r.sizes.size() < 2) return;
  std::printf(
      "\n=== growth from the smallest to the largest size: time(largest)/time(smallest), peak RSS ===\n");
  std::printf("%-44s %9s %9s %9s %9s  %-22s %s\n", "member", "sizes", "component", "cpu", "Conn/C",
              "peak KiB", "verdict");
  for (const Row& m : memberRows(r, false)) {
    std::vector<int> sizes = sizesOf(r, m.key);
    int small = sizes.front(), large = sizes.back();
    double c =
        ratioOf(medianReal(r, m.key, Impl::Component, large), medianReal(r, m.key, Impl::Component, small));
    double cpu =
        ratioOf(medianCpu(r, m.key, Impl::Component, large), medianCpu(r, m.key, Impl::Component, small));
    double x =
        ratioOf(medianReal(r, m.key, Impl::ConnectorC, large), medianReal(r, m.key, Impl::ConnectorC, small));
    long p0 = peak(r, m.key, Impl::Component, small), p1 = peak(r, m.key, Impl::Component, large);
    std::string grows = r.grows.count(m.key) ? r.grows.at(m.key) : "";
    std::string verdict;
    if (!grows.empty()) {
      verdict = "grows: " + grows;
    } else {
      verdict = c <= kFlat && memoryFlat(p0, p1) ? "flat" : "NOT FLAT";
    }
    std::string sizeText = std::to_string(small / 1000) + "k-" + std::to_string(large / 1000) + "k";
    std::string peaks = std::to_string(p0) + " -> " + std::to_string(p1);
    std::printf("%-44s %9s %9s %9s %9s  %-22s %s\n", (m.cls.substr(7) + "." + m.label).c_str(),
                sizeText.c_str(), number(c).c_str(), number(cpu).c_str(), number(x).c_str(), peaks.c_str(),
                verdict.c_str());
  }
}

void printInstalled(const Results& r) {
  bool any = false;
  for (const Row& m : memberRows(r, false))
    any = any || (r.addsToWholeTable.count(m.key) && r.addsToWholeTable.at(m.key));
  if (!any) return;
  std::printf(
      "\n=== what a site gains: the members that open a whole table only to add to it, beside the installed "
      "component's cost (the keyset open run and its result buffered by the driver) ===\n");
  std::printf("%-34s %8s %10s %10s %8s | %10s %10s\n", "member", "rows", "component", "installed", "gain",
              "peak comp", "peak inst");
  for (const Row& m : memberRows(r, false)) {
    if (!r.addsToWholeTable.count(m.key) || !r.addsToWholeTable.at(m.key)) continue;
    bool first = true;
    for (int rows : sizesOf(r, m.key)) {
      double c = medianReal(r, m.key, Impl::Component, rows);
      double i = medianReal(r, m.key, Impl::Installed, rows);
      std::printf("%-34s %8d %10s %10s %8s | %10ld %10ld\n",
                  first ? (m.cls.substr(7) + "." + m.label).c_str() : "", rows, duration(c).c_str(),
                  duration(i).c_str(), (ratio(i, c) + "x").c_str(), peak(r, m.key, Impl::Component, rows),
                  peak(r, m.key, Impl::Installed, rows));
      first = false;
    }
  }
}

void printWorkloads(const Results& r) {
  std::vector<Row> rows = memberRows(r, true);
  if (rows.empty()) return;
  std::printf("\n=== workloads a site runs (%d rows in every table) ===\n", r.workloadSize);
  std::printf("%-80s %10s %10s %10s %10s %6s %6s %6s %12s\n", "workload", "native", "comp ODBC", "ODBC",
              "Conn/C", "n/C", "o/ODBC", "o/C", "trips/floor");
  for (const Row& m : rows) {
    double n = medianReal(r, m.key, Impl::Component, r.workloadSize);
    double c = medianReal(r, m.key, Impl::ComponentOdbc, r.workloadSize);
    double o = medianReal(r, m.key, Impl::Odbc, r.workloadSize);
    double x = medianReal(r, m.key, Impl::ConnectorC, r.workloadSize);
    auto it = r.roundTrips.find(m.key);
    std::string trips = it == r.roundTrips.end()
                            ? "-"
                            : number(it->second.perCall, "%.0f") + "/" + std::to_string(it->second.floor);
    std::printf("%-80s %10s %10s %10s %10s %6s %6s %6s %12s\n", m.label.c_str(), duration(n).c_str(),
                duration(c).c_str(), duration(o).c_str(), duration(x).c_str(), ratio(n, x).c_str(),
                ratio(c, o).c_str(), ratio(c, x).c_str(), trips.c_str());
  }
}

// How many members meet each target, and which do not.
void printTargets(const Results& r) {
  int members = 0, timeOk = 0, cpuOk = 0, flatOk = 0, flatCount = 0, engineOk = 0, engineCpuOk = 0;
  int nativeOk = 0, nativeCpuOk = 0;
  std::string engineSlow, engineCpuSlow, nativeSlow, nativeCpuSlow;
  int singleOk = 0, singleCount = 0;
  std::string slow, cpuSlow, notFlat, singleSlow, hundred;
  int unmeasured = 0;
  struct Trips {
    int members = 0, ok = 0, oneCommand = 0;
    std::string above, extra;
  } trips[2];
  for (const Row& m : memberRows(r, false)) {
    for (bool odbcEngine : {false, true}) {
      const auto& counted = odbcEngine ? r.roundTripsOdbc : r.roundTrips;
      auto it = counted.find(m.key);
      if (it == counted.end()) continue;
      Trips& t = trips[odbcEngine];
      ++t.members;
      if (it->second.perCall <= it->second.floor + 1e-9) {
        ++t.ok;
      } else {
        t.above += " " + m.key;
      }
      if (it->second.questions <= it->second.floor + 1e-9) {
        ++t.oneCommand;
      } else {
        t.extra += " " + m.key + "(" + number(it->second.questions) + ")";
      }
    }
    // A run narrowed by a filter judges only what it timed.
    if (sizesOf(r, m.key).empty() || medianReal(r, m.key, Impl::Component, sizesOf(r, m.key).front()) <= 0) {
      ++unmeasured;
      continue;
    }
    ++members;
    bool t = true, c = true, et = true, ec = true, nt = true, nc = true;
    for (int rows : r.sizes) {
      double odbc = medianReal(r, m.key, Impl::Odbc, rows), codbc = medianCpu(r, m.key, Impl::Odbc, rows);
      double engine = medianReal(r, m.key, Impl::Engine, rows);
      if (engine <= 0) continue;  // the engine alone was left out of the run
      et = et && within(engine, odbc, 1.10);
      ec = ec && within(medianCpu(r, m.key, Impl::Engine, rows), codbc, 1.10);
    }
    engineOk += et;
    engineCpuOk += ec;
    if (!et) engineSlow += " " + m.key;
    if (!ec) engineCpuSlow += " " + m.key;
    std::string nativeWorst, nativeCpuWorst;
    double worst = 0, worstCpu = 0;
    for (int rows : sizesOf(r, m.key)) {
      double comp = medianReal(r, m.key, Impl::ComponentOdbc, rows),
             odbc = medianReal(r, m.key, Impl::Odbc, rows);
      double ccomp = medianCpu(r, m.key, Impl::ComponentOdbc, rows),
             codbc = medianCpu(r, m.key, Impl::Odbc, rows);
      t = t && within(comp, odbc, 1.10);
      c = c && within(ccomp, codbc, 1.10);
      double connc = medianReal(r, m.key, Impl::ConnectorC, rows),
             cconnc = medianCpu(r, m.key, Impl::ConnectorC, rows);
      double native = medianReal(r, m.key, Impl::Component, rows),
             cnative = medianCpu(r, m.key, Impl::Component, rows);
      nt = nt && within(native, connc, 1.15);
      nc = nc && within(cnative, cconnc, 1.15);
      worst = std::max(worst, ratioOf(native, connc));
      worstCpu = std::max(worstCpu, ratioOf(cnative, cconnc));
      if (r.singleRowRead.count(m.key) && r.singleRowRead.at(m.key) && rows == r.sizes.front()) {
        ++singleCount;
        if (within(comp, connc, 1.5)) {
          ++singleOk;
        } else {
          singleSlow += " " + m.key + "(" + ratio(comp, connc) + ")";
        }
      }
      if (m.key == "porder.QueryByStrSql.100")
        hundred += " " + std::to_string(rows) + ": native " + ratio(native, connc) + ", odbc " +
                   ratio(comp, connc) + ";";
    }
    timeOk += t;
    cpuOk += c;
    nativeOk += nt;
    nativeCpuOk += nc;
    if (!t) slow += " " + m.key;
    if (!c) cpuSlow += " " + m.key;
    if (!nt) nativeSlow += " " + m.key + "(" + number(worst) + ")";
    if (!nc) nativeCpuSlow += " " + m.key + "(" + number(worstCpu) + ")";
    std::string grows = r.grows.count(m.key) ? r.grows.at(m.key) : "";
    if (grows.empty()) {
      ++flatCount;
      std::vector<int> sizes = sizesOf(r, m.key);
      double g = ratioOf(medianReal(r, m.key, Impl::Component, sizes.back()),
                         medianReal(r, m.key, Impl::Component, sizes.front()));
      bool flat = g <= kFlat && memoryFlat(peak(r, m.key, Impl::Component, sizes.front()),
                                           peak(r, m.key, Impl::Component, sizes.back()));
      flatOk += flat;
      if (!flat) notFlat += " " + m.key + "(" + number(g) + ")";
    }
  }
  auto list = [](const std::string& what, const std::string& keys) {
    return keys.empty() ? std::string() : ": " + what + ":" + keys;
  };
  std::printf("\n=== targets (%s) ===\n", r.label.c_str());
  if (unmeasured > 0) std::printf("(%d members not timed in this run are left out)\n", unmeasured);
  std::printf("native: round trips at the floor:            %2d of %d members%s\n", trips[0].ok,
              trips[0].members, list("above", trips[0].above).c_str());
  std::printf("native: one server command per statement:    %2d of %d members%s\n", trips[0].oneCommand,
              trips[0].members, list("more", trips[0].extra).c_str());
  std::printf("native: time within 1.15x of bare Conn/C:    %2d of %d members at every size%s\n", nativeOk,
              members, list("not (worst)", nativeSlow).c_str());
  std::printf("native: CPU within 1.15x of bare Conn/C:     %2d of %d members at every size%s\n", nativeCpuOk,
              members, list("not (worst)", nativeCpuSlow).c_str());
  std::printf("odbc: round trips at the floor:              %2d of %d members%s\n", trips[1].ok,
              trips[1].members, list("above", trips[1].above).c_str());
  std::printf("odbc: time within 1.10x of bare ODBC:        %2d of %d members at every size%s\n", timeOk,
              members, list("not", slow).c_str());
  std::printf("odbc: client CPU within 1.10x of bare ODBC:  %2d of %d members at every size%s\n", cpuOk,
              members, list("not", cpuSlow).c_str());
  std::printf("odbc: engine alone within 1.10x of bare ODBC:%2d of %d members at every size%s\n", engineOk,
              members, list("not", engineSlow).c_str());
  std::printf("odbc: engine alone, CPU within 1.10x:        %2d of %d members at every size%s\n", engineCpuOk,
              members, list("not", engineCpuSlow).c_str());
  std::printf("odbc: single-row reads within 1.5x Conn/C:   %2d of %d (at %d rows)%s\n", singleOk,
              singleCount, r.sizes.front(), list("not", singleSlow).c_str());
  std::printf("100-row read over Connector/C:              %s\n", hundred.c_str());
  std::printf(
      "native: flat from smallest to largest (<= 1.10): %2d of %d members that do not read a table whole%s\n",
      flatOk, flatCount, list("not", notFlat).c_str());
}

// ---------------------------------------------------------------------------------------------------
// Files.

std::string csvText(const std::string& s) {
  if (s.find_first_of(",\"") == std::string::npos) return s;
  std::string out = "\"";
  for (char c : s) {
    out += c;
    if (c == '"') out += '"';
  }
  return out + "\"";
}

void writeCsv(const Results& r, const std::string& dir) {
  {
    std::ofstream out(dir + "/times.csv");
    out << "key,class,member,impl,rows,median_us,fastest_us,cpu_median_us,peak_kib,yield,repetitions\n";
    for (bool workloads : {false, true}) {
      for (const Row& m : memberRows(r, workloads)) {
        for (Impl impl : {Impl::Component, Impl::ComponentOdbc, Impl::Odbc, Impl::ConnectorC, Impl::Installed,
                          Impl::Engine}) {
          std::vector<int> sizes = workloads ? std::vector<int>{r.workloadSize} : sizesOf(r, m.key);
          for (int rows : sizes) {
            const Series* s = r.find(m.key, impl, rows);
            if (s == nullptr || s->samples.empty()) continue;
            out << m.key << "," << m.cls << "," << csvText(m.label) << "," << implName(impl) << "," << rows
                << "," << s->medianReal() * 1e6 << "," << s->fastestReal() * 1e6 << ","
                << s->medianCpu() * 1e6 << "," << s->peakKiB << "," << s->yield << "," << s->samples.size()
                << "\n";
          }
        }
      }
    }
  }
  {
    std::ofstream out(dir + "/ratios.csv");
    // component_* and c_over_* are the component on the ODBC engine (as in earlier runs); native_* the
    // component on the native engine.
    out << "key,class,member,rows,component_us,odbc_us,connector_c_us,c_over_odbc,c_over_connector_c,"
           "cpu_c_over_odbc,engine_us,engine_over_odbc,cpu_engine_over_odbc,native_us,native_over_connector_"
           "c,"
           "cpu_native_over_connector_c,native_over_odbc\n";
    for (const Row& m : memberRows(r, false)) {
      for (int rows : sizesOf(r, m.key)) {
        double c = medianReal(r, m.key, Impl::ComponentOdbc, rows),
               o = medianReal(r, m.key, Impl::Odbc, rows), x = medianReal(r, m.key, Impl::ConnectorC, rows),
               e = medianReal(r, m.key, Impl::Engine, rows);
        double n = medianReal(r, m.key, Impl::Component, rows);
        double cpuOdbc = medianCpu(r, m.key, Impl::Odbc, rows);
        out << m.key << "," << m.cls << "," << csvText(m.label) << "," << rows << "," << c * 1e6 << ","
            << o * 1e6 << "," << x * 1e6 << "," << ratioOf(c, o) << "," << ratioOf(c, x) << ","
            << ratioOf(medianCpu(r, m.key, Impl::ComponentOdbc, rows), cpuOdbc) << "," << e * 1e6 << ","
            << ratioOf(e, o) << "," << ratioOf(medianCpu(r, m.key, Impl::Engine, rows), cpuOdbc) << ","
            << n * 1e6 << "," << ratioOf(n, x) << ","
            << ratioOf(medianCpu(r, m.key, Impl::Component, rows),
                       medianCpu(r, m.key, Impl::ConnectorC, rows))
            << "," << ratioOf(n, o) << "\n";
      }
    }
  }
  {
    std::ofstream out(dir + "/roundtrips.csv");
    out << "key,class,member,engine,floor,round_trips_per_call,server_questions,server_prepares,server_"
           "executes,"
           "server_closes,server_selects,server_inserts,server_updates,server_deletes,calls,consistent\n";
    for (bool workloads : {false, true}) {
      for (const Row& m : memberRows(r, workloads)) {
        for (bool odbcEngine : {false, true}) {
          const auto& counted = odbcEngine ? r.roundTripsOdbc : r.roundTrips;
          auto it = counted.find(m.key);
          if (it == counted.end()) continue;
          const RoundTrips& t = it->second;
          out << m.key << "," << m.cls << "," << csvText(m.label) << "," << (odbcEngine ? "odbc" : "mariadb")
              << "," << t.floor << "," << t.perCall << "," << t.questions << "," << t.prepares << ","
              << t.executes << "," << t.closes << "," << t.selects << "," << t.inserts << "," << t.updates
              << "," << t.deletes << "," << t.calls << "," << (t.consistent ? 1 : 0) << "\n";
        }
      }
    }
  }
  {
    std::ofstream out(dir + "/machine.txt");
    out << r.machine << "\n";
  }
}

// Gnuplot's input: one block per member (size, component, ODBC, Connector/C in microseconds) and the
// ratios at the largest size every member ran at.
void writeCharts(const Results& r, const std::string& dir) {
  std::vector<Row> rows = memberRows(r, false);
  {
    std::ofstream out(dir + "/times.dat");
    for (const Row& m : rows) {
      out << "# " << m.cls << "." << m.label << "\n";
      for (int size : sizesOf(r, m.key)) {
        out << size << " " << medianReal(r, m.key, Impl::Component, size) * 1e6 << " "
            << medianReal(r, m.key, Impl::Odbc, size) * 1e6 << " "
            << medianReal(r, m.key, Impl::ConnectorC, size) * 1e6 << " "
            << medianReal(r, m.key, Impl::ComponentOdbc, size) * 1e6 << "\n";
      }
      out << "\n\n";
    }
  }
  int large = r.sizes.back();
  {
    std::ofstream out(dir + "/ratios.dat");
    for (const Row& m : rows) {
      double n = medianReal(r, m.key, Impl::Component, large),
             c = medianReal(r, m.key, Impl::ComponentOdbc, large),
             o = medianReal(r, m.key, Impl::Odbc, large), x = medianReal(r, m.key, Impl::ConnectorC, large);
      out << "\"" << m.cls.substr(7) << "." << m.label << "\" " << ratioOf(n, x) << " " << ratioOf(c, o)
          << " " << ratioOf(c, x) << "\n";
    }
  }
  int count = static_cast<int>(rows.size());
  int columns = 5;
  int lines = (count + columns - 1) / columns;
  std::ofstream gp(dir + "/charts.gp");
  gp << "# Written by tovrand_bench: gnuplot charts.gp (in this directory) draws the two charts.\n";
  gp << "titles = \"";
  for (const Row& m : rows) gp << " " << m.key;
  gp << "\"\n";
  gp << "set terminal pngcairo size " << columns * 420 << "," << lines * 300 << " font 'DejaVu Sans,8'\n";
  gp << "set output 'time-vs-size.png'\n";
  gp << "set multiplot layout " << lines << "," << columns
     << " title 'Time per call (median, microseconds) against rows in the tables read: the component on "
        "each engine, bare ODBC, bare Connector/C ("
     << r.label << ")'\n";
  gp << "set logscale xy\nset key top left\nset grid\nset format x '%.0s%c'\n";
  gp << "do for [i=0:" << count - 1 << "] {\n"
     << "  set title word(titles, i + 1)\n"
     << "  plot 'times.dat' index i using 1:2 with linespoints lw 2 title 'native', "
        "'' index i using 1:5 with linespoints lw 2 title 'comp ODBC', "
        "'' index i using 1:3 with linespoints title 'ODBC', '' index i using 1:4 with linespoints title "
        "'Conn/C'\n"
     << "}\nunset multiplot\n";
  gp << "reset\nset terminal pngcairo size 1800,700 font 'DejaVu Sans,8'\nset output 'ratios.png'\n";
  gp << "set title 'Component time over its baseline on each engine, " << large << " rows (median) ("
     << r.label << ")'\n";
  gp << "set style data histograms\nset style histogram clustered gap 1\nset style fill solid 0.8 border "
        "-1\n";
  gp << "set xtics rotate by -60 scale 0\nset grid ytics\nset yrange [0:*]\n";
  gp << "set arrow from graph 0, first 1 to graph 1, first 1 nohead dt 2\n";
  gp << "plot 'ratios.dat' using 2:xtic(1) title 'native engine / bare Connector/C', '' using 3 title 'ODBC "
        "engine / bare ODBC', '' using 4 title 'ODBC engine / bare Connector/C'\n";
  gp.close();
  std::string command = "cd '" + dir + "' && gnuplot charts.gp 2>&1";
  if (std::system("command -v gnuplot >/dev/null 2>&1") != 0) {
    std::printf(
        "\ncharts: gnuplot is not installed (scripts/setup --bench installs it); %s/charts.gp is written\n",
        dir.c_str());
    return;
  }
  if (std::system(command.c_str()) != 0) {
    std::printf("\ncharts: gnuplot failed on %s/charts.gp\n", dir.c_str());
    return;
  }
  std::printf("\ncharts: %s/time-vs-size.png, %s/ratios.png\n", dir.c_str(), dir.c_str());
}

}  // namespace

double Series::medianReal() const {
  std::vector<double> v;
  for (const Sample& s : samples) v.push_back(s.real);
  return median(v);
}

double Series::medianCpu() const {
  std::vector<double> v;
  for (const Sample& s : samples) v.push_back(s.cpu);
  return median(v);
}

double Series::fastestReal() const {
  double best = 0;
  for (const Sample& s : samples) best = best == 0 ? s.real : std::min(best, s.real);
  return best;
}

const Series* Results::find(const std::string& key, Impl impl, int rows) const {
  auto it = series.find({key, impl, rows});
  return it == series.end() || it->second.samples.empty() ? nullptr : &it->second;
}

std::string describeMachine() {
  std::string cpu = afterColon(readFirstLine("/proc/cpuinfo", "model name"));
  long kib = std::strtol(afterColon(readFirstLine("/proc/meminfo", "MemTotal")).c_str(), nullptr, 10);
  std::string load = readFirstLine("/proc/loadavg", nullptr);
  std::string os = afterColon(readFirstLine("/etc/os-release", "PRETTY_NAME"));
  std::ostringstream out;
  out << (cpu.empty() ? "unknown processor" : cpu) << ", " << std::thread::hardware_concurrency()
      << " cores, " << (kib + 512 * 1024) / (1024 * 1024) << " GiB, " << os << ", load average "
      << load.substr(0, 14);
  return out.str();
}

int report(const Results& r, const std::string& directory) {
  printTimes(r);
  printRoundTrips(r);
  printGrowth(r);
  printInstalled(r);
  printWorkloads(r);
  printTargets(r);
  std::printf("\nmachine: %s (at the end of the run)\nset-up:", r.machine.c_str());
  for (const auto& [rows, s] : r.setupSeconds) std::printf(" %d rows %.1f s;", rows, s);
  std::printf("\n");

  ::mkdir(directory.c_str(), 0755);
  writeCsv(r, directory);
  writeCharts(r, directory);
  std::printf("figures: %s/*.csv\n", directory.c_str());

  int status = 0;
  for (const auto* counted : {&r.roundTrips, &r.roundTripsOdbc}) {
    for (const auto& [key, t] : *counted) {
      if (t.perCall > t.floor + 1e-9 || !t.consistent) status = 4;
    }
  }
  for (const std::string& f : r.failures) {
    std::printf("FAILED: %s\n", f.c_str());
    status = 4;
  }
  if (status != 0)
    std::printf("\nFAILED: a member exceeds its round-trip floor or a consistency check failed\n");
  return status;
}

}  // namespace tovrand::bench
