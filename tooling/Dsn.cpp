#include "tooling/Dsn.h"

#include <cstdlib>
#include <filesystem>

#include "engine/ConnectionSettings.h"

namespace tovrand::tooling {

namespace {

std::string environmentValue(const char* name) {
  const char* v = std::getenv(name);
  return v ? std::string(v) : std::string();
}

}  // namespace

std::optional<std::string> resolveDsn(const std::string& explicitDsn) {
  if (!explicitDsn.empty()) return explicitDsn;
  if (std::string env = environmentValue("TOVRAND_DSN"); !env.empty()) return env;
  std::string path = environmentValue("TOVRAND_CONFIG");
  const bool named = !path.empty();
  if (!named) path = ConnectionSettings::defaultConfigPath();
  // A file named on purpose must be readable; the default one may simply not be there.
  if (!named && !std::filesystem::exists(path)) return std::nullopt;
  return ConnectionSettings::readConfigFile(path);
}

}  // namespace tovrand::tooling
