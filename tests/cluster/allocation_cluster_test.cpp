// clsDataPOrderChk.AddRecord with serialize_allocation=1 on a three-node Galera cluster (scripts/cluster):
// three allocators per node, forty sales orders each, all at the same moment. Every allocation gets a
// number, and the numbers run on from the month's first without a gap or a duplicate. The same load
// without the option, and with it on one server, is run for the figures only.
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "engine/ConnectionSettings.h"
#include "entities/Entities.h"
#include "frame/Messages.h"
#include "host/NativeHost.h"
#include "porderchk/clsDataPOrderChk.h"
#include "tests/support/TestDatabase.h"

namespace tovrand::test {
namespace {

constexpr int kNodes = 3;
constexpr int kAllocatorsPerNode = 3;
constexpr int kRounds = 40;
constexpr int kAllocators = kNodes * kAllocatorsPerNode;

std::string sourceFile(const std::string& relative) {
  return std::string(TOVRAND_SOURCE_DIR) + "/" + relative;
}

// Runs a shell command and gives its standard output.
std::string shell(const std::string& command) {
  std::string out;
  FILE* p = ::popen(command.c_str(), "r");
  if (p == nullptr) return out;
  char buffer[4096];
  while (std::size_t n = std::fread(buffer, 1, sizeof buffer, p)) out.append(buffer, n);
  ::pclose(p);
  return out;
}

std::string trimmed(std::string s) {
  while (!s.empty() && (s.back() == '\n' || s.back() == '\r' || s.back() == ' ')) s.pop_back();
  return s;
}

// What the allocators did, for the assertions and the figures.
struct Figures {
  int allocations = 0;
  int succeeded = 0;
  std::vector<int> attempts;        // per allocation
  std::vector<double> latenciesMs;  // per allocation
  std::map<std::string, int> messages;

  void print(const std::string& what) const {
    std::vector<double> sorted = latenciesMs;
    std::sort(sorted.begin(), sorted.end());
    double median = sorted.empty() ? 0 : sorted[sorted.size() / 2];
    double p99 = sorted.empty() ? 0 : sorted[std::max<std::size_t>(1, (sorted.size() * 99 + 99) / 100) - 1];
    double retries = 0;
    int most = 0;
    for (int a : attempts) {
      retries += std::max(a - 1, 0);
      most = std::max(most, std::max(a - 1, 0));
    }
    std::printf(
        "[ figures  ] %s: %d allocations, %d succeeded; retries per allocation mean %.2f max %d; latency "
        "median %.1f ms p99 %.1f ms\n",
        what.c_str(), allocations, succeeded, attempts.empty() ? 0.0 : retries / attempts.size(), most,
        median, p99);
    for (const auto& [text, count] : messages)
      std::printf("[ figures  ]   %d x \"%s\"\n", count, text.c_str());
    std::fflush(stdout);
  }
};

double orderNo(int allocator, int round) {
  return 4000000 + allocator * 100 + round;
}

// kAllocators allocators, allocator i on dsns[i % dsns.size()] with a session of its own, each
// allocating kRounds sales orders of one line one after the other, all starting together.
Figures allocateTogether(const std::vector<std::string>& dsns, const std::string& options) {
  const char* engine = std::getenv("TOVRAND_TEST_ENGINE");
  std::string engineOption = engine != nullptr && std::string(engine) == "mariadb" ? "&engine=mariadb" : "";
  struct Allocator {
    std::shared_ptr<RecordingMessageSink> messages = std::make_shared<RecordingMessageSink>();
    std::unique_ptr<clsDataPOrderChk> chk;
    std::vector<int> results, attempts;
    std::vector<double> latencies;
  };
  std::vector<Allocator> allocators(kAllocators);
  for (int i = 0; i < kAllocators; ++i) {
    const std::string& dsn = dsns[static_cast<std::size_t>(i) % dsns.size()];
    // A read timeout of its own keeps each allocator's session apart from the others' on its node.
    std::string url = dsn + (dsn.find('?') == std::string::npos ? "?" : "&") + options +
                      "&timeout=" + std::to_string(30 + i) + engineOption;
    allocators[static_cast<std::size_t>(i)].chk =
        std::make_unique<clsDataPOrderChk>(std::make_shared<NativeHost>(
            ConnectionSettings::parse(url), allocators[static_cast<std::size_t>(i)].messages));
  }
  std::atomic<int> ready{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < kAllocators; ++i) {
    threads.emplace_back([&, i] {
      Allocator& a = allocators[static_cast<std::size_t>(i)];
      ++ready;
      while (ready.load() < kAllocators) {
      }
      for (int r = 0; r < kRounds; ++r) {
        clsEntBOrderi line;
        line.F_OrderNo(orderNo(i, r));
        line.F_No("1");
        line.F_ItemNo("FG-1");
        line.F_OrderQty(1.0);
        Collection lines;
        lines.Add(line);
        auto start = std::chrono::steady_clock::now();
        a.results.push_back(a.chk->AddRecord(lines, CStr(orderNo(i, r)), "C001", "PO-1", 4));
        a.latencies.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
        a.attempts.push_back(a.chk->lastAllocationAttempts());
      }
    });
  }
  for (std::thread& t : threads) t.join();
  Figures f;
  for (Allocator& a : allocators) {
    for (std::size_t k = 0; k < a.results.size(); ++k) {
      ++f.allocations;
      if (a.results[k] == 1) ++f.succeeded;
      f.attempts.push_back(a.attempts[k]);
      f.latenciesMs.push_back(a.latencies[k]);
    }
    // Duplicates counted together, whatever the number.
    for (const Message& m : a.messages->messages()) ++f.messages[m.text.substr(0, m.text.find('\''))];
    a.chk.reset();
  }
  return f;
}

// The sales orders of every allocator, one line each, as SQL text.
std::string salesOrdersSql() {
  std::string headers, lines;
  for (int i = 0; i < kAllocators; ++i) {
    for (int r = 0; r < kRounds; ++r) {
      std::string no = CStr(orderNo(i, r));
      headers += std::string(headers.empty() ? "" : ", ") + "(" + no + ", 'C001', 0)";
      lines += std::string(lines.empty() ? "" : ", ") + "(" + no + ", '1', 'FG-1')";
    }
  }
  return "insert into t_borderh (F_OrderNo, F_CustNo, F_Flags) values " + headers +
         ";\ninsert into t_borderi (F_OrderNo, F_No, F_ItemNo) values " + lines + ";\n";
}

class AllocationCluster : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    std::string out = shell(sourceFile("scripts/cluster") + " start --nodes " + std::to_string(kNodes) +
                            " --watch " + std::to_string(::getpid()) + " 2>&1");
    std::istringstream lines(out);
    std::string line;
    while (std::getline(lines, line)) {
      for (int n = 1; n <= kNodes; ++n) {
        std::string key = "NODE" + std::to_string(n) + "=";
        if (line.rfind(key, 0) == 0) nodes_.push_back(line.substr(key.size()));
      }
      if (line.rfind("DIR=", 0) == 0) dir_ = line.substr(4);
    }
    if (nodes_.size() != kNodes || dir_.empty()) {
      std::fprintf(stderr, "the cluster did not start:\n%s\n", out.c_str());
      nodes_.clear();
    }
  }
  static void TearDownTestSuite() {
    if (!dir_.empty()) shell(sourceFile("scripts/cluster") + " stop " + dir_ + " >/dev/null 2>&1");
  }

  void SetUp() override {
    if (nodes_.empty()) GTEST_SKIP() << "no cluster";
  }

  // SQL text run on node n through the command-line client, every read seeing every write the
  // cluster committed before it; gives the output.
  std::string onNode(int n, const std::string& sql) {
    std::string file = dir_ + "/allocation-test.sql";
    {
      std::ofstream out(file, std::ios::binary);
      out << "SET SESSION wsrep_sync_wait=1;\n" << sql;
    }
    return trimmed(shell("mariadb --no-defaults -utovrand -ptovrand --socket=" + dir_ + "/node" +
                         std::to_string(n) + "/mysqld.sock -N -B tovrand < " + file + " 2>&1"));
  }

  // A freshly loaded schema with the allocators' sales orders.
  void freshDatabase() {
    std::ifstream in(sourceFile("schema/tovrand.sql"), std::ios::binary);
    std::ostringstream schema;
    schema << in.rdbuf();
    EXPECT_EQ(onNode(1, schema.str() + salesOrdersSql() + "select count(*) from t_borderi;\n"),
              std::to_string(kAllocators * kRounds));
  }

  static std::vector<std::string> nodes_;
  static std::string dir_;
};

std::vector<std::string> AllocationCluster::nodes_;
std::string AllocationCluster::dir_;

TEST_F(AllocationCluster, SerializedAllocationGivesEveryAllocatorTheNextNumberOnEveryNode) {
  freshDatabase();

  Figures f = allocateTogether(nodes_, "server_date=2008-05-15&serialize_allocation=1");
  f.print("cluster, serialize_allocation=1");

  const int all = kAllocators * kRounds;
  EXPECT_EQ(f.allocations, all);
  EXPECT_EQ(f.succeeded, all);
  EXPECT_TRUE(f.messages.empty());
  for (int n = 1; n <= kNodes; ++n) {
    SCOPED_TRACE("node " + std::to_string(n));
    EXPECT_EQ(onNode(n,
                     "select count(*), count(distinct F_ProdNo), cast(min(F_ProdNo) as char), "
                     "cast(max(F_ProdNo) as char) from t_porderchk"),
              std::to_string(all) + "\t" + std::to_string(all) + "\t2008050001\t" + CStr(2008050000.0 + all));
    EXPECT_EQ(onNode(n,
                     "select count(F_ProdNo), count(distinct F_ProdNo) from t_borderi; "
                     "select count(*) from t_borderi i join t_porderchk c on c.F_ProdNo=i.F_ProdNo and "
                     "c.F_OrderNo=i.F_OrderNo"),
              std::to_string(all) + "\t" + std::to_string(all) + "\n" + std::to_string(all));
  }
}

// For the record only: what the same load does without the option.
TEST_F(AllocationCluster, WithoutSerializationForTheFiguresOnly) {
  freshDatabase();

  Figures f = allocateTogether(nodes_, "server_date=2008-05-15");
  f.print("cluster, serialize_allocation=0");
  const std::string distinct = onNode(1, "select count(distinct F_ProdNo) from t_porderchk");
  std::printf("[ figures  ]   numbers on reviews (distinct): %s\n", distinct.c_str());
  EXPECT_EQ(f.allocations, kAllocators * kRounds);
  // Colliding allocations fail instead of sharing a number: the review table's key holds on every node.
  EXPECT_EQ(onNode(1, "select count(*) from t_porderchk"), distinct);
  EXPECT_GE(std::stoi(distinct), f.succeeded);
}

// The same load with the option on one server, for the figures beside the cluster's.
TEST(AllocationOneServer, SerializedAllocationOnOneServer) {
  TestServer& server = TestServer::instance();
  std::string db = server.uniqueDatabaseName();
  server.admin("create database `" + db + "` character set utf8mb4");
  std::ifstream in(sourceFile("schema/tovrand.sql"), std::ios::binary);
  std::ostringstream schema;
  schema << in.rdbuf();
  server.runSql(db, schema.str() + salesOrdersSql());

  Figures f = allocateTogether({server.dsnFor(db)}, "server_date=2008-05-15&serialize_allocation=1");
  f.print("one server, serialize_allocation=1");

  EXPECT_EQ(f.succeeded, kAllocators * kRounds);
  server.admin("drop database `" + db + "`");
}

}  // namespace
}  // namespace tovrand::test
