// A list of hosts on a real three-node Galera cluster, on the engine TOVRAND_TEST_ENGINE names: a
// session opens on the first host that takes one and is ready, a setting whose every host is down fails
// in a handled error within hosts x connect_timeout, and a node killed under a working client costs a
// few handled failures and no acknowledged write. It runs on the cluster tests/scripts/cluster_fixture.sh
// starts (through tests/scripts/on_cluster_node.sh), and stops and isolates its node 1: the suites
// sharing that cluster run before it.
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "entities/Collection.h"
#include "entities/Entities.h"
#include "host/NativeHost.h"
#include "mariadb/MariaDbConnection.h"
#include "odbc/OdbcConnection.h"
#include "pmrpi/clsDataPMrpi.h"
#include "tests/support/TestDatabase.h"
#include "tooling/Relay.h"
#include "vb/VbError.h"

namespace tovrand::test {
namespace {

using Clock = std::chrono::steady_clock;

// What the cluster fixture wrote: NODEn=, NODEn_TCP=, DSN=, DIR=, PORTS=.
std::map<std::string, std::string> clusterValues() {
  std::map<std::string, std::string> values;
  const char* file = std::getenv("TOVRAND_TEST_CLUSTER_FILE");
  if (file == nullptr) return values;
  std::ifstream in(file);
  std::string line;
  while (std::getline(in, line)) {
    std::size_t eq = line.find('=');
    if (eq != std::string::npos) values[line.substr(0, eq)] = line.substr(eq + 1);
  }
  return values;
}

std::string engineName() {
  const char* e = std::getenv("TOVRAND_TEST_ENGINE");
  return e != nullptr && *e != '\0' ? e : "odbc";
}

// A TCP port on 127.0.0.1 nobody listens on: a host that is down.
int deadPort() {
  int fd = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = 0;
  socklen_t length = sizeof address;
  if (fd < 0 || ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
      ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
    if (fd >= 0) ::close(fd);
    return 1;
  }
  ::close(fd);
  return ntohs(address.sin_port);
}

// scripts/cluster with its arguments; its exit status.
int cluster(const std::string& arguments) {
  std::string command = std::string(TOVRAND_SOURCE_DIR) + "/scripts/cluster " + arguments + " >&2";
  return std::system(command.c_str());
}

// The first value a query answers on a session the engine of the test opens with `settings`.
std::string firstValue(const ConnectionSettings& settings, const std::string& sql) {
  std::optional<Value> v;
  if (settings.engine == "mariadb") {
    v = MariaDbConnection::openPrivate(settings)->scalar(sql, true);
  } else {
    v = OdbcConnection::openPrivate(settings)->scalar(sql, true);
  }
  return v ? v->str() : "";
}

class ClusterHosts : public ::testing::Test {
 protected:
  void SetUp() override {
    values_ = clusterValues();
    if (values_.empty()) GTEST_SKIP() << "runs on the test cluster (tests/scripts/on_cluster_node.sh)";
    std::string ports = values_["PORTS"];
    for (std::size_t start = 0; start <= ports.size();) {
      std::size_t comma = ports.find(',', start);
      ports_.push_back(std::stoi(ports.substr(start, comma - start)));
      if (comma == std::string::npos) break;
      start = comma + 1;
    }
    ASSERT_EQ(ports_.size(), 3u);
  }

  // A mysql:// setting naming the given ports in order, on the cluster's own database.
  ConnectionSettings listOf(const std::vector<int>& ports, const std::string& options = "") const {
    std::string hosts;
    for (int p : ports) hosts += (hosts.empty() ? "" : ",") + std::string("127.0.0.1:") + std::to_string(p);
    return ConnectionSettings::parse("mysql://tovrand:tovrand@" + hosts + "/tovrand?engine=" + engineName() +
                                     (options.empty() ? "" : "&" + options));
  }

  std::map<std::string, std::string> values_;
  std::vector<int> ports_;
};

TEST_F(ClusterHosts, AFirstHostThatIsDownLeavesTheSessionToTheSecond) {
  ConnectionSettings s = listOf({deadPort(), ports_[1], ports_[2]}, "connect_timeout=3");
  EXPECT_EQ(firstValue(s, "select @@wsrep_node_name"), "node2");
}

TEST_F(ClusterHosts, AnIsolatedFirstNodeIsPassedOver) {
  ASSERT_EQ(cluster("isolate " + values_["DIR"] + " 1"), 0);
  struct Rejoin {
    std::string dir;
    ~Rejoin() { cluster("rejoin " + dir + " 1"); }
  } rejoin{values_["DIR"]};
  ConnectionSettings s = listOf(ports_, "connect_timeout=3");
  EXPECT_EQ(firstValue(s, "select @@wsrep_node_name"), "node2");
}

TEST_F(ClusterHosts, EveryHostDownIsTheHandledErrorWithinHostsTimesConnectTimeout) {
  const int connectTimeout = 2;
  ConnectionSettings s =
      listOf({deadPort(), deadPort(), deadPort()}, "connect_timeout=" + std::to_string(connectTimeout));
  auto t0 = Clock::now();
  try {
    firstValue(s, "select 1");
    FAIL() << "a session opened with every host down";
  } catch (const VbError& e) {
    double took = std::chrono::duration<double>(Clock::now() - t0).count();
    EXPECT_LE(took, 3.0 * connectTimeout + 1.0);
    EXPECT_EQ(e.number(), vberr::kProviderError);
    EXPECT_EQ(e.description().rfind("cannot connect to the database " + s.redacted() +
                                        ": no host of the list took a session (127.0.0.1:",
                                    0),
              0u)
        << e.description();
    for (const auto& h : s.hosts) {
      EXPECT_NE(e.description().find("127.0.0.1:" + std::to_string(h.port) + ": "), std::string::npos)
          << e.description();
    }
    EXPECT_EQ(e.description().find(":tovrand@"), std::string::npos) << "no password: " << e.description();
  }
}

TEST_F(ClusterHosts, HostsThatStopAnsweringAreWaitedForConnectTimeoutEachInTurn) {
  const int connectTimeout = 2;
  // Two hosts that take the connection and then answer nothing, before node 3.
  tooling::Relay first(tooling::Relay::Upstream::tcpPort(ports_[0]));
  tooling::Relay second(tooling::Relay::Upstream::tcpPort(ports_[1]));
  first.blackhole();
  second.blackhole();
  auto t0 = Clock::now();
  ConnectionSettings s =
      listOf({first.port(), second.port(), ports_[2]}, "connect_timeout=" + std::to_string(connectTimeout));
  EXPECT_EQ(firstValue(s, "select @@wsrep_node_name"), "node3");
  double took = std::chrono::duration<double>(Clock::now() - t0).count();
  EXPECT_GE(took, 2.0 * connectTimeout - 0.5);
  EXPECT_LE(took, 2.0 * connectTimeout + 1.5);

  // All three silent: the handled error after about three times connect_timeout.
  tooling::Relay third(tooling::Relay::Upstream::tcpPort(ports_[2]));
  third.blackhole();
  ConnectionSettings silent = listOf({first.port(), second.port(), third.port()},
                                     "connect_timeout=" + std::to_string(connectTimeout));
  t0 = Clock::now();
  try {
    firstValue(silent, "select 1");
    FAIL() << "a session opened with every host silent";
  } catch (const VbError& e) {
    took = std::chrono::duration<double>(Clock::now() - t0).count();
    EXPECT_EQ(e.number(), vberr::kProviderError);
    EXPECT_NE(e.description().find("no host of the list took a session"), std::string::npos)
        << e.description();
  }
  EXPECT_GE(took, 3.0 * connectTimeout - 0.5);
  EXPECT_LE(took, 3.0 * connectTimeout + 1.5);
}

// One call of the client: what it was, how it ended, how long it took.
struct Call {
  bool write = false;
  int status = 0;
  std::string message;
  double seconds = 0;
  std::string item;  // the material a write added
};

class LostNode : public DatabaseTest {};

// The component's objects on a list whose first host is down: created and working on the second.
TEST_F(LostNode, AnObjectCreatedWithTheFirstHostDownWorksOnTheSecond) {
  std::map<std::string, std::string> values = clusterValues();
  if (values.empty()) GTEST_SKIP() << "runs on the test cluster (tests/scripts/on_cluster_node.sh)";
  std::string ports = values["PORTS"];
  std::string rest = ports.substr(ports.find(',') + 1);
  std::string hosts = "127.0.0.1:" + std::to_string(deadPort());
  for (std::size_t start = 0; start <= rest.size();) {
    std::size_t comma = rest.find(',', start);
    hosts += ",127.0.0.1:" + rest.substr(start, comma - start);
    if (comma == std::string::npos) break;
    start = comma + 1;
  }
  auto messages = std::make_shared<RecordingMessageSink>();
  auto host = std::make_shared<NativeHost>(
      ConnectionSettings::parse("mysql://tovrand:tovrand@" + hosts + "/" + database() +
                                "?engine=" + engineName() + "&server_date=2026-11-22&connect_timeout=3"),
      messages);
  clsDataPMrpi pmrpi(host);
  clsEntPMrpi e;
  e.F_ProdNo(2026110001.0);
  e.F_ItemNo("RM-2001");
  e.F_Dosage(1.5);
  EXPECT_EQ(pmrpi.AddRecord(e), 1);
  EXPECT_TRUE(messages->messages().empty());
  EXPECT_EQ(scalar("select concat(F_ItemNo, '|', F_Dosage) from t_pmrpi"), "RM-2001|1.5");
  // A read on the same session works as well.
  Collection lines;
  pmrpi.QueryPMrpiStatus(lines, 2026110001.0);
  EXPECT_TRUE(messages->messages().empty());
}

TEST_F(LostNode, AKilledNodeCostsAFewHandledCallsAndNoAcknowledgedWrite) {
  std::map<std::string, std::string> values = clusterValues();
  if (values.empty()) GTEST_SKIP() << "runs on the test cluster (tests/scripts/on_cluster_node.sh)";
  const std::string dir = values["DIR"];
  const int timeout = 10, connectTimeout = 3;
  // The cluster's list of hosts, on this test's database: node 1 first, where the client starts.
  std::string dsn = values["DSN"];
  dsn = dsn.substr(0, dsn.rfind('/') + 1) + database() + "?engine=" + engineName() +
        "&server_date=2026-11-22&timeout=" + std::to_string(timeout) +
        "&connect_timeout=" + std::to_string(connectTimeout);

  std::mutex mutex;
  std::vector<Call> calls;
  std::atomic<bool> stop{false};
  std::atomic<int> okAfterKill{0};
  std::atomic<bool> killed{false};
  std::thread client([&] {
    auto messages = std::make_shared<RecordingMessageSink>();
    auto host = std::make_shared<NativeHost>(ConnectionSettings::parse(dsn), messages);
    clsDataPMrpi pmrpi(host);
    for (int i = 0; !stop; ++i) {
      Call call;
      call.write = i % 2 == 0;
      auto t0 = Clock::now();
      if (call.write) {
        call.item = "RM-" + std::to_string(10000 + i);
        clsEntPMrpi e;
        e.F_ProdNo(2026110001.0);
        e.F_ItemNo(call.item);
        e.F_Dosage(1.5);
        e.F_RequestQty(static_cast<double>(i));
        call.status = pmrpi.AddRecord(e);
      } else {
        Collection lines;
        call.status = pmrpi.QueryPMrpiStatus(lines, 2026110001.0);
      }
      call.seconds = std::chrono::duration<double>(Clock::now() - t0).count();
      std::vector<Message> shown = messages->take();
      if (!shown.empty()) call.message = shown.front().text;
      if (killed && call.message.empty()) ++okAfterKill;
      std::lock_guard lock(mutex);
      calls.push_back(call);
    }
  });
  auto callCount = [&] {
    std::lock_guard lock(mutex);
    return calls.size();
  };
  auto waitFor = [&](auto done, double seconds) {
    for (auto until = Clock::now() + std::chrono::duration<double>(seconds); !done() && Clock::now() < until;)
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
  };
  waitFor([&] { return callCount() >= 40; }, 60);
  const std::size_t beforeKill = callCount();
  int killStatus = cluster("kill " + dir + " 1");
  killed = true;
  waitFor([&] { return okAfterKill >= 40; }, 90);
  stop = true;
  client.join();
  ASSERT_EQ(killStatus, 0);

  std::vector<std::string> acknowledged;
  std::size_t failed = 0;
  double longest = 0;
  for (const Call& c : calls) {
    longest = std::max(longest, c.seconds);
    bool ok = c.message.empty() && (!c.write || c.status == 1);
    if (!ok) {
      ++failed;
      std::printf("failed call: %s, status %d, message: %s (%.2f s)\n",
                  c.write ? "AddRecord" : "QueryPMrpiStatus", c.status, c.message.c_str(), c.seconds);
      // Every failure is a handled one: the member's error status and a message box with the reason.
      EXPECT_FALSE(c.message.empty());
    } else if (c.write) {
      acknowledged.push_back(c.item);
    }
  }
  EXPECT_GE(okAfterKill.load(), 40) << "the client did not go on on a survivor";
  EXPECT_LE(failed, 3u);
  EXPECT_LE(longest, timeout + connectTimeout + 2.0);

  // Every acknowledged write is on both survivors.
  std::string inList;
  for (const std::string& item : acknowledged) inList += (inList.empty() ? "'" : ",'") + item + "'";
  const std::string countAcknowledged = "select count(*) from t_pmrpi where F_ItemNo in (" + inList + ")";
  const std::string fingerprint =
      "select concat(count(*), '/', md5(group_concat(concat_ws('|', F_ID, F_ProdNo, F_ItemNo, F_Dosage, "
      "F_RequestQty) order by F_ID))) from t_pmrpi";
  auto onNode = [&](int n) {
    ConnectionSettings s = ConnectionSettings::parse(values["NODE" + std::to_string(n)]);
    s.database = database();
    auto c = OdbcConnection::openPrivate(s);
    // A read that waits for every write the cluster committed before it.
    c->execute("SET SESSION wsrep_sync_wait=1");
    c->execute("SET SESSION group_concat_max_len=16777216");
    return c;
  };
  auto valueOf = [](OdbcConnection& c, const std::string& sql) {
    std::optional<Value> v = c.scalar(sql, true);
    return v ? v->str() : std::string();
  };
  auto node2 = onNode(2), node3 = onNode(3);
  EXPECT_EQ(valueOf(*node2, countAcknowledged), std::to_string(acknowledged.size()));
  EXPECT_EQ(valueOf(*node3, countAcknowledged), std::to_string(acknowledged.size()));
  const std::string survivors = valueOf(*node2, fingerprint);
  EXPECT_EQ(valueOf(*node3, fingerprint), survivors);

  // Node 1 comes back with every row.
  auto t0 = Clock::now();
  ASSERT_EQ(cluster("restart " + dir + " 1"), 0);
  double rejoin = std::chrono::duration<double>(Clock::now() - t0).count();
  auto node1 = onNode(1);
  EXPECT_EQ(valueOf(*node1, fingerprint), survivors);

  std::printf(
      "lost node (%s engine): %zu calls (%zu before the kill), %zu failed, longest call %.2f s, %zu "
      "acknowledged writes, rows checked on nodes 2, 3 and the restarted node 1: %s (count/md5), node 1 "
      "back in %.1f s\n",
      engineName().c_str(), calls.size(), beforeKill, failed, longest, acknowledged.size(), survivors.c_str(),
      rejoin);
}

}  // namespace
}  // namespace tovrand::test
