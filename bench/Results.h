#pragma once

#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace tovrand::bench {

// Who sends a member's statements: the component on the native engine (the default) or on the ODBC
// engine, or a bare client replaying them.
enum class Impl { Component, Odbc, ConnectorC, Installed, Engine, ComponentOdbc };
const char* implName(Impl impl);
const char* implLabel(Impl impl);

// One repetition of a benchmark: time per call and this process's CPU time per call, in seconds.
struct Sample {
  double real = 0;
  double cpu = 0;
};

struct Series {
  std::vector<Sample> samples;
  long peakKiB = -1;  // RSS high-water growth over a run (the largest of the repetitions)
  std::size_t yield = 0;
  double medianReal() const;
  double medianCpu() const;
  double fastestReal() const;
};

// A member's round trips per call, over a run of calls: counted at the socket (the client's waits for
// the server), and the server's own counters of the session over the same calls.
struct RoundTrips {
  int floor = 0;
  int calls = 0;
  double perCall = 0;
  double questions = 0, prepares = 0, executes = 0, closes = 0;  // per call, from the server
  double selects = 0, inserts = 0, updates = 0, deletes = 0;     // the server's Com_* counters per call
  bool consistent = true;  // the commands seen at the socket are the ones the server counted
  std::string note;
};

struct Results {
  std::string label;       // "after", "before", ...
  std::vector<int> sizes;  // every member
  int largeSize = 0;       // the members that add to a whole table; 0 when not measured
  int workloadSize = 0;
  std::string machine;                                          // processor, cores, memory, load
  std::map<std::tuple<std::string, Impl, int>, Series> series;  // (case or workload key, impl, rows)
  std::map<std::string, RoundTrips> roundTrips;                 // by case or workload key: native engine
  std::map<std::string, RoundTrips> roundTripsOdbc;             // the same on the ODBC engine
  std::map<int, double> setupSeconds;
  // Members whose call is one read of one row (the single-row reads of the targets).
  std::map<std::string, bool> singleRowRead;
  // Per member or workload: class and label, in the order they were measured.
  std::vector<std::pair<std::string, std::pair<std::string, std::string>>> members;
  std::map<std::string, std::string> grows;  // why a member's cost grows with the table ("" flat)
  std::map<std::string, bool> addsToWholeTable;
  std::vector<std::string> failures;  // consistency checks that failed

  const Series* find(const std::string& key, Impl impl, int rows) const;
};

}  // namespace tovrand::bench
