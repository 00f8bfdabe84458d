#pragma once

#include <optional>
#include <string>

namespace tovrand::tooling {

// The connection setting a program runs on: the one it was given (`explicitDsn`, when not empty),
// else the environment variable TOVRAND_DSN (when not empty), else the `dsn=` line of the
// configuration file named by TOVRAND_CONFIG (default $XDG_CONFIG_HOME/tovrand/tovrand.conf, or
// ~/.config/tovrand/tovrand.conf). nullopt when none of them exists: no TOVRAND_CONFIG and no default
// file, which a program may take as a request for a private database. A file named by TOVRAND_CONFIG
// must be readable and hold a setting; otherwise a VbError says where the setting was looked for.
std::optional<std::string> resolveDsn(const std::string& explicitDsn = "");

}  // namespace tovrand::tooling
