#include "load/Report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <stdexcept>

#include "tooling/Process.h"

namespace tovrand::load {

namespace {

struct Row {
  long calls = 0;
  double perSecond = 0, medianMs = NAN, p99Ms = NAN;
  long failures = 0;
};

// Nearest rank: the smallest latency that at least the fraction q of the calls did not exceed.
double percentile(std::vector<float> sorted, double q) {
  if (sorted.empty()) return NAN;
  std::sort(sorted.begin(), sorted.end());
  const auto rank = static_cast<std::size_t>(std::ceil(q * static_cast<double>(sorted.size())));
  return sorted[std::max<std::size_t>(rank, 1) - 1];
}

Row rowOf(const RunResult& run, int member) {
  const MemberFigures& f = run.members[static_cast<std::size_t>(member)];
  Row r;
  r.calls = f.calls;
  r.perSecond = run.seconds > 0 ? static_cast<double>(f.calls) / run.seconds : 0;
  r.medianMs = percentile(f.latencyMs, 0.5);
  r.p99Ms = percentile(f.latencyMs, 0.99);
  for (const auto& [cause, count] : f.failures) r.failures += count;
  return r;
}

std::string csvQuoted(const std::string& text) {
  std::string out = "\"";
  for (char c : text) out += c == '"' ? std::string("\"\"") : std::string(1, c);
  return out + "\"";
}

std::string figure(double v, const char* format) {
  if (std::isnan(v)) return "NaN";
  char text[48];
  std::snprintf(text, sizeof text, format, v);
  return text;
}

}  // namespace

void printRun(std::ostream& out, const RunResult& run) {
  char line[256];
  std::snprintf(line, sizeof line, "\n== %s, %d clients, %.1f s\n", run.target.c_str(), run.clients,
                run.seconds);
  out << line;
  std::snprintf(line, sizeof line, "%-36s %8s %9s %10s %10s %9s\n", "member", "calls", "calls/s", "median ms",
                "p99 ms", "failures");
  out << line;
  long total = 0;
  for (int m = 0; m < kMemberCount; ++m) {
    const Row r = rowOf(run, m);
    total += r.calls;
    std::snprintf(line, sizeof line, "%-36s %8ld %9.1f %10s %10s %9ld\n", memberName(m), r.calls, r.perSecond,
                  figure(r.medianMs, "%.2f").c_str(), figure(r.p99Ms, "%.2f").c_str(), r.failures);
    out << line;
  }
  std::snprintf(line, sizeof line, "%-36s %8ld %9.1f\n", "all", total,
                run.seconds > 0 ? total / run.seconds : 0.0);
  out << line;
  for (int m = 0; m < kMemberCount; ++m) {
    for (const auto& [cause, count] : run.members[static_cast<std::size_t>(m)].failures)
      out << "  failed " << count << "x " << memberName(m) << ": " << cause << "\n";
  }
  for (const auto& [cause, count] : run.connectFailures)
    out << "  " << count << " clients could not connect: " << cause << "\n";
}

std::string writeResults(const std::string& directory, const std::vector<RunResult>& runs) {
  std::filesystem::create_directories(directory);
  std::ofstream csv(directory + "/load.csv");
  csv << "target,clients,member,calls,seconds,calls_per_s,median_ms,p99_ms,failures\n";
  std::ofstream failures(directory + "/failures.csv");
  failures << "target,clients,member,cause,count\n";
  std::vector<std::string> targets;
  for (const RunResult& run : runs) {
    if (std::find(targets.begin(), targets.end(), run.target) == targets.end()) targets.push_back(run.target);
    for (int m = 0; m < kMemberCount; ++m) {
      const Row r = rowOf(run, m);
      csv << run.target << "," << run.clients << "," << memberName(m) << "," << r.calls << ","
          << figure(run.seconds, "%.3f") << "," << figure(r.perSecond, "%.2f") << ","
          << figure(r.medianMs, "%.3f") << "," << figure(r.p99Ms, "%.3f") << "," << r.failures << "\n";
      for (const auto& [cause, count] : run.members[static_cast<std::size_t>(m)].failures)
        failures << run.target << "," << run.clients << "," << memberName(m) << "," << csvQuoted(cause) << ","
                 << count << "\n";
    }
    for (const auto& [cause, count] : run.connectFailures)
      failures << run.target << "," << run.clients << ",(connect)," << csvQuoted(cause) << "," << count
               << "\n";
  }
  // The chart's data: per target one file, per member one block of (clients, calls/s, p99).
  for (const std::string& t : targets) {
    std::ofstream dat(directory + "/load-" + t + ".dat");
    for (int m = 0; m < kMemberCount; ++m) {
      dat << "# " << memberName(m) << "\n";
      for (const RunResult& run : runs) {
        if (run.target != t) continue;
        const Row r = rowOf(run, m);
        dat << run.clients << " " << figure(r.perSecond, "%.2f") << " " << figure(r.p99Ms, "%.3f") << "\n";
      }
      dat << "\n\n";
    }
  }
  std::ofstream gp(directory + "/charts.gp");
  gp << "# Written by tovrand_load: gnuplot charts.gp (in this directory) draws load.png.\n";
  gp << "titles = \"";
  for (int m = 0; m < kMemberCount; ++m) gp << (m ? " " : "") << memberName(m);
  gp << "\"\n";
  gp << "set terminal pngcairo size " << 700 * std::max<std::size_t>(targets.size(), 1)
     << ",1100 font 'DejaVu Sans,8'\n";
  gp << "set output 'load.png'\n";
  gp << "set multiplot layout 2," << std::max<std::size_t>(targets.size(), 1)
     << " title 'Concurrent clients: calls per second and 99th-percentile latency per member'\n";
  std::set<int> levels;
  for (const RunResult& run : runs) levels.insert(run.clients);
  gp << "set logscale x\nset grid\nset key outside right top\nset xlabel 'clients'\nset xtics (";
  for (auto it = levels.begin(); it != levels.end(); ++it) gp << (it == levels.begin() ? "" : ", ") << *it;
  gp << ")\nset xrange [" << *levels.begin() * 0.8 << ":" << *levels.rbegin() * 1.25 << "]\n";
  for (const char* panel : {"calls", "p99"}) {
    const bool calls = std::string(panel) == "calls";
    for (const std::string& t : targets) {
      gp << "set title '" << t << (calls ? ": calls per second" : ": p99 latency (ms)") << "'\n";
      gp << (calls ? "unset logscale y\n" : "set logscale y\n");
      gp << "plot for [i=0:" << kMemberCount - 1 << "] 'load-" << t
         << ".dat' index i using 1:" << (calls ? 2 : 3) << " with linespoints title word(titles, i + 1)\n";
    }
  }
  gp << "unset multiplot\n";
  gp.close();
  const auto gnuplot = tooling::findProgram({"gnuplot"});
  if (!gnuplot) return "";
  const tooling::ProcessResult drawn =
      tooling::runProcess({*gnuplot, "-e", "cd '" + directory + "'", "charts.gp"});
  if (drawn.status != 0) throw std::runtime_error("gnuplot could not draw " + directory + "/load.png");
  return directory + "/load.png";
}

}  // namespace tovrand::load
