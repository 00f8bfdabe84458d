#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tovrand::cli {

// scripts/sandbox: beside the program's build or install tree, in the source tree the program was
// built from, or `tovrand-sandbox` on PATH. nullopt when none is found.
std::optional<std::string> findSandboxScript();

// A throwaway MariaDB server of this process (scripts/sandbox start --watch <our pid>), loaded with
// the given SQL texts, stopped when the object goes (or, should the process die first, by the
// sandbox's own watcher). Raises std::runtime_error when it cannot be started or loaded.
class PrivateDatabase {
 public:
  explicit PrivateDatabase(const std::vector<std::string>& sqlTexts);
  PrivateDatabase(const PrivateDatabase&) = delete;
  PrivateDatabase& operator=(const PrivateDatabase&) = delete;
  ~PrivateDatabase();

  // mysql://...?socket=... of its database.
  const std::string& dsn() const { return dsn_; }
  const std::string& directory() const { return dir_; }

  // Runs SQL text (several statements) through the mariadb client as the server's root.
  void load(const std::string& sql) const;

 private:
  std::string script_;
  std::string dir_;
  std::string dsn_;
  std::string database_;
};

}  // namespace tovrand::cli
