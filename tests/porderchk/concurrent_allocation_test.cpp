// clsDataPOrderChk.AddRecord from several processes at the same moment, each on a connection of its
// own: without serialize_allocation the review table's key turns a collision into a handled failure;
// with it every allocator gets a number and the numbers run on without gaps.
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <regex>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include "tests/porderchk/POrderChkTest.h"

extern char** environ;

namespace tovrand::test {
namespace {

constexpr int kProcesses = 8;
constexpr int kRounds = 20;
constexpr const char* kChildTest = "ConcurrentAllocationChild.DISABLED_AllocatesOnceWhenTheParentLetsGo";

// What one allocating process reports: its result and its messages.
struct ChildReport {
  int result = -1;
  std::vector<Message> messages;
};

// One run of this program in the allocating role, its standard output read through a pipe. It waits
// for the barrier pipe to close before it allocates.
class AllocatingProcess {
 public:
  AllocatingProcess(const std::string& dsn, double orderNo, int barrier) {
    int out[2];
    if (::pipe2(out, O_CLOEXEC) != 0) throw std::runtime_error("pipe2 failed");
    std::vector<std::string> env;
    for (char** e = environ; *e != nullptr; ++e) {
      if (std::strncmp(*e, "TOVRAND_ALLOCATE_", 17) != 0) env.emplace_back(*e);
    }
    env.push_back("TOVRAND_ALLOCATE_DSN=" + dsn);
    env.push_back("TOVRAND_ALLOCATE_ORDER=" + CStr(orderNo));
    env.push_back("TOVRAND_ALLOCATE_BARRIER=" + std::to_string(barrier));
    std::vector<std::string> args = {"/proc/self/exe", std::string("--gtest_filter=") + kChildTest,
                                     "--gtest_also_run_disabled_tests"};
    std::vector<char*> envp, argv;
    for (std::string& e : env) envp.push_back(e.data());
    envp.push_back(nullptr);
    for (std::string& a : args) argv.push_back(a.data());
    argv.push_back(nullptr);

    pid_ = ::fork();
    if (pid_ < 0) throw std::runtime_error("fork failed");
    if (pid_ == 0) {
      ::dup2(out[1], STDOUT_FILENO);
      ::execve("/proc/self/exe", argv.data(), envp.data());
      ::_exit(127);
    }
    ::close(out[1]);
    out_ = out[0];
  }
  ~AllocatingProcess() {
    if (out_ >= 0) ::close(out_);
    if (pid_ > 0) {
      int status = 0;
      ::waitpid(pid_, &status, 0);
    }
  }
  AllocatingProcess(const AllocatingProcess&) = delete;
  AllocatingProcess& operator=(const AllocatingProcess&) = delete;

  // Reads until the process says it is connected and waiting; false when it ended first.
  bool waitReady() { return readUntil("@ready\n"); }

  // Reads the rest of its output, reaps it and gives its report.
  ChildReport finish() {
    readUntil("");
    ::close(out_);
    out_ = -1;
    int status = 0;
    ::waitpid(pid_, &status, 0);
    pid_ = -1;
    ChildReport report;
    std::istringstream lines(output_);
    std::string line;
    while (std::getline(lines, line)) {
      if (line.rfind("@result ", 0) == 0) report.result = std::stoi(line.substr(8));
      if (line.rfind("@message ", 0) == 0) {
        std::string rest = line.substr(9);
        std::size_t a = rest.find('|'), b = rest.find('|', a + 1);
        report.messages.push_back(
            {rest.substr(b + 1), std::stoi(rest.substr(0, a)), rest.substr(a + 1, b - a - 1)});
      }
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) report.result = -2;
    return report;
  }

  const std::string& output() const { return output_; }

 private:
  // Reads until `marker` has been seen ("" reads to the end); gives up after 60 seconds of silence.
  bool readUntil(const std::string& marker) {
    for (;;) {
      if (!marker.empty() && output_.find(marker) != std::string::npos) return true;
      pollfd p{out_, POLLIN, 0};
      if (::poll(&p, 1, 60000) <= 0) return false;
      char buffer[4096];
      ssize_t n = ::read(out_, buffer, sizeof buffer);
      if (n <= 0) return marker.empty();
      output_.append(buffer, static_cast<std::size_t>(n));
    }
  }

  pid_t pid_ = -1;
  int out_ = -1;
  std::string output_;
};

struct Figures {
  int allocations = 0;
  int succeeded = 0;
  int failed = 0;
  std::vector<ChildReport> failures;
};

class ConcurrentAllocation : public POrderChkTest {
 protected:
  static double orderNo(int round, int process) { return 3000000 + round * 100 + process; }

  void SetUp() override {
    POrderChkTest::SetUp();
    std::string headers, lines;
    for (int r = 0; r < kRounds; ++r) {
      for (int p = 0; p < kProcesses; ++p) {
        std::string no = CStr(orderNo(r, p));
        headers += std::string(headers.empty() ? "" : ", ") + "(" + no + ", 'C001', 0)";
        lines += std::string(lines.empty() ? "" : ", ") + "(" + no + ", '1', 'FG-1')";
      }
    }
    exec("insert into t_borderh (F_OrderNo, F_CustNo, F_Flags) values " + headers);
    exec("insert into t_borderi (F_OrderNo, F_No, F_ItemNo) values " + lines);
  }

  // kRounds times, kProcesses processes connect, wait together, and allocate for their own orders.
  // The figures are printed for the record.
  Figures allocateTogether(const std::string& options) {
    auto start = std::chrono::steady_clock::now();
    Figures figures;
    for (int r = 0; r < kRounds; ++r) {
      int barrier[2];
      if (::pipe(barrier) != 0) throw std::runtime_error("pipe failed");
      ::fcntl(barrier[1], F_SETFD, FD_CLOEXEC);
      std::vector<std::unique_ptr<AllocatingProcess>> processes;
      for (int p = 0; p < kProcesses; ++p)
        processes.push_back(std::make_unique<AllocatingProcess>(dsn(options), orderNo(r, p), barrier[0]));
      ::close(barrier[0]);
      for (auto& process : processes) EXPECT_TRUE(process->waitReady()) << process->output();
      ::close(barrier[1]);  // every process reads the end of the pipe at once
      for (auto& process : processes) {
        ChildReport report = process->finish();
        ++figures.allocations;
        EXPECT_TRUE(report.result == 0 || report.result == 1) << process->output();
        if (report.result == 1) {
          ++figures.succeeded;
          EXPECT_TRUE(report.messages.empty()) << process->output();
        } else {
          ++figures.failed;
          figures.failures.push_back(report);
        }
      }
    }
    double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("[ figures  ] %s: %d allocations, %d succeeded, %d failed, %s duplicate numbers (%.1f s)\n",
                options.c_str(), figures.allocations, figures.succeeded, figures.failed, duplicates().c_str(),
                seconds);
    return figures;
  }

  // Every review row has its own number, so has every sales-order line, and each number given is
  // on exactly one review and one line; the numbers run from 2008050001 without a gap.
  void expectOneRowPerNumber(int allocated) {
    EXPECT_EQ(duplicates(), "0");
    EXPECT_EQ(scalar("select count(*) from t_porderchk"), std::to_string(allocated));
    EXPECT_EQ(scalar("select count(*) - count(distinct F_ProdNo) from t_porderchk"), "0");
    EXPECT_EQ(scalar("select count(F_ProdNo) from t_borderi"), std::to_string(allocated));
    EXPECT_EQ(scalar("select count(F_ProdNo) - count(distinct F_ProdNo) from t_borderi"), "0");
    EXPECT_EQ(scalar("select count(*) from t_borderi i join t_porderchk c on c.F_ProdNo=i.F_ProdNo and "
                     "c.F_OrderNo=i.F_OrderNo"),
              std::to_string(allocated));
    EXPECT_EQ(scalar("select count(*) from t_borderh where F_Flags=1"), std::to_string(allocated));
    EXPECT_EQ(scalar("select cast(min(F_ProdNo) as char) from t_porderchk"), "2008050001");
    EXPECT_EQ(scalar("select cast(max(F_ProdNo) - min(F_ProdNo) + 1 as char) from t_porderchk"),
              std::to_string(allocated));
  }

  // Production numbers found on more than one review row or more than one sales-order line.
  std::string duplicates() {
    return scalar(
        "select (select count(*) - count(distinct F_ProdNo) from t_porderchk) + "
        "(select count(F_ProdNo) - count(distinct F_ProdNo) from t_borderi)");
  }
};

TEST_F(ConcurrentAllocation, WithoutSerializationEveryCollisionIsAHandledDuplicateKeyFailure) {
  Figures f = allocateTogether("server_date=2008-05-15");

  EXPECT_EQ(f.allocations, kProcesses * kRounds);
  EXPECT_GE(f.succeeded, kRounds);  // the first insert of each round always finds its number free
  const std::regex duplicate("Duplicate entry '2008050[0-9]{3}' for key 'PRIMARY'");
  for (const ChildReport& r : f.failures) {
    EXPECT_EQ(r.result, 0);
    ASSERT_EQ(r.messages.size(), 1u);
    EXPECT_TRUE(std::regex_match(r.messages[0].text, duplicate)) << r.messages[0].text;
    EXPECT_EQ(r.messages[0].style, vbInformation);
    EXPECT_EQ(r.messages[0].title, kTitleQuenta);
  }
  expectOneRowPerNumber(f.succeeded);
}

TEST_F(ConcurrentAllocation, WithSerializationEveryAllocatorGetsTheNextNumber) {
  Figures f = allocateTogether("server_date=2008-05-15&serialize_allocation=1");

  EXPECT_EQ(f.allocations, kProcesses * kRounds);
  EXPECT_EQ(f.succeeded, kProcesses * kRounds);
  EXPECT_EQ(f.failed, 0);
  expectOneRowPerNumber(kProcesses * kRounds);
  EXPECT_EQ(scalar("select cast(max(F_ProdNo) as char) from t_porderchk"), "2008050160");
}

// The allocating role of this program, run only by the tests above (it is disabled otherwise): one
// allocation on a connection of its own, started when the parent closes the barrier pipe.
TEST(ConcurrentAllocationChild, DISABLED_AllocatesOnceWhenTheParentLetsGo) {
  const char* dsn = std::getenv("TOVRAND_ALLOCATE_DSN");
  const char* order = std::getenv("TOVRAND_ALLOCATE_ORDER");
  const char* barrier = std::getenv("TOVRAND_ALLOCATE_BARRIER");
  if (dsn == nullptr || order == nullptr || barrier == nullptr) GTEST_SKIP() << "run by ConcurrentAllocation";
  auto messages = std::make_shared<RecordingMessageSink>();
  clsDataPOrderChk chk(std::make_shared<NativeHost>(ConnectionSettings::parse(dsn), messages));
  double orderNo = Val(order);
  clsEntBOrderi line;
  line.F_OrderNo(orderNo);
  line.F_No("1");
  line.F_ItemNo("FG-1");
  line.F_OrderQty(1.0);
  Collection lines;
  lines.Add(line);
  std::printf("@ready\n");
  std::fflush(stdout);
  char c = 0;
  while (::read(std::atoi(barrier), &c, 1) > 0) {
  }

  std::int16_t result = chk.AddRecord(lines, order, "C001", "PO-1", 4);

  std::printf("@result %d\n", result);
  for (const Message& m : messages->messages())
    std::printf("@message %d|%s|%s\n", m.style, m.title.c_str(), m.text.c_str());
  std::fflush(stdout);
}

}  // namespace
}  // namespace tovrand::test
