#pragma once

namespace tovrand::cli {

// The `tovrand` command: run, demo, schema, sandbox. Returns the process's exit status (2 for usage
// errors and unreadable input).
int commandMain(int argc, char** argv);

}  // namespace tovrand::cli
