#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tovrand::tooling {

// Runs a program (looked up on PATH when it has no slash) and waits for it. `input` is given as its
// standard input (none: it reads /dev/null); with `captureOutput` its standard output is returned in
// `output`, otherwise it writes to ours. Standard error is always ours. `status` is the exit code,
// 128 + the signal number when a signal ended it, 127 when it could not be started. `environment`
// ("NAME=value") is added to ours for the program only, so that a password need not be an argument.
struct ProcessResult {
  int status = 0;
  std::string output;
};
ProcessResult runProcess(const std::vector<std::string>& argv, const std::optional<std::string>& input = {},
                         bool captureOutput = false, const std::vector<std::string>& environment = {});

// The first of `names` that is an executable on PATH or in the usual system directories.
std::optional<std::string> findProgram(const std::vector<std::string>& names);
// The directory of the running program ("" when it cannot be told).
std::string executableDirectory();

}  // namespace tovrand::tooling
