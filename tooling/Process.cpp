#include "tooling/Process.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string_view>

namespace tovrand::tooling {

namespace {

class FileDescriptor {
 public:
  explicit FileDescriptor(int fd = -1) : fd_(fd) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() { reset(); }
  int get() const { return fd_; }
  void reset(int fd = -1) {
    if (fd_ >= 0) ::close(fd_);
    fd_ = fd;
  }

 private:
  int fd_;
};

[[noreturn]] void systemError(const std::string& what) {
  throw std::runtime_error(what + ": " + std::strerror(errno));
}

// The input goes through an unlinked temporary file rather than a pipe: the child may stop reading
// early (a failing SQL client) without our write blocking or raising SIGPIPE.
int inputFile(const std::string& input) {
  std::string pattern = (std::filesystem::temp_directory_path() / "tovrand-input.XXXXXX").string();
  const int fd = ::mkstemp(pattern.data());
  if (fd < 0) systemError("cannot create a temporary file");
  ::unlink(pattern.c_str());
  std::size_t done = 0;
  while (done < input.size()) {
    const ssize_t n = ::write(fd, input.data() + done, input.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      ::close(fd);
      systemError("cannot write a temporary file");
    }
    done += static_cast<std::size_t>(n);
  }
  ::lseek(fd, 0, SEEK_SET);
  return fd;
}

}  // namespace

ProcessResult runProcess(const std::vector<std::string>& argv, const std::optional<std::string>& input,
                         bool captureOutput, const std::vector<std::string>& environment) {
  if (argv.empty()) throw std::invalid_argument("runProcess: no program");
  FileDescriptor in(input ? inputFile(*input) : ::open("/dev/null", O_RDONLY | O_CLOEXEC));
  if (in.get() < 0) systemError("cannot open the standard input of " + argv[0]);
  int pipeFds[2] = {-1, -1};
  if (captureOutput && ::pipe2(pipeFds, O_CLOEXEC) != 0) systemError("cannot create a pipe");
  FileDescriptor readEnd(pipeFds[0]), writeEnd(pipeFds[1]);

  std::vector<char*> args;
  for (const std::string& a : argv) args.push_back(const_cast<char*>(a.c_str()));
  args.push_back(nullptr);
  // Built before the fork: the child of a threaded program may only call async-signal-safe functions.
  std::vector<std::string> envText;
  for (char** e = environ; *e != nullptr; ++e) {
    const std::string_view entry(*e);
    bool replaced = false;
    for (const std::string& extra : environment) {
      const std::size_t eq = extra.find('=');
      replaced = replaced || entry.substr(0, entry.find('=')) == std::string_view(extra).substr(0, eq);
    }
    if (!replaced) envText.emplace_back(entry);
  }
  for (const std::string& extra : environment) envText.push_back(extra);
  std::vector<char*> envp;
  for (std::string& e : envText) envp.push_back(e.data());
  envp.push_back(nullptr);

  const pid_t pid = ::fork();
  if (pid < 0) systemError("cannot start " + argv[0]);
  if (pid == 0) {
    ::dup2(in.get(), STDIN_FILENO);
    if (captureOutput) ::dup2(writeEnd.get(), STDOUT_FILENO);
    ::execvpe(args[0], args.data(), envp.data());
    ::_exit(127);
  }
  writeEnd.reset();
  ProcessResult result;
  if (captureOutput) {
    char buffer[4096];
    for (;;) {
      const ssize_t n = ::read(readEnd.get(), buffer, sizeof buffer);
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) break;
      result.output.append(buffer, static_cast<std::size_t>(n));
    }
  }
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0)
    if (errno != EINTR) systemError("cannot wait for " + argv[0]);
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return result;
}

std::optional<std::string> findProgram(const std::vector<std::string>& names) {
  std::vector<std::string> dirs;
  if (const char* path = std::getenv("PATH")) {
    std::string all(path);
    std::size_t start = 0;
    for (;;) {
      const std::size_t colon = all.find(':', start);
      dirs.push_back(all.substr(start, colon - start));
      if (colon == std::string::npos) break;
      start = colon + 1;
    }
  }
  for (const char* d : {"/usr/sbin", "/usr/bin", "/usr/local/sbin", "/usr/local/bin"}) dirs.emplace_back(d);
  for (const std::string& name : names)
    for (const std::string& dir : dirs) {
      if (dir.empty()) continue;
      const std::string candidate = dir + "/" + name;
      if (::access(candidate.c_str(), X_OK) == 0) return candidate;
    }
  return std::nullopt;
}

std::string executableDirectory() {
  std::error_code ec;
  const auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  return ec ? std::string() : exe.parent_path().string();
}

}  // namespace tovrand::tooling
