#include "tooling/SqlClient.h"

#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "tooling/Process.h"

namespace tovrand::tooling {

SqlClient::SqlClient(std::string user, std::string password, std::string socket, std::string host, int port)
    : user_(std::move(user)),
      password_(std::move(password)),
      socket_(std::move(socket)),
      host_(std::move(host)),
      port_(port) {}

void SqlClient::run(const std::string& database, const std::string& sql) const {
  const std::optional<std::string> client = findProgram({"mariadb", "mysql"});
  if (!client) throw std::runtime_error("the mariadb client is not installed");
  std::vector<std::string> argv{*client, "--no-defaults", "-u" + user_, "--default-character-set=utf8mb4"};
  if (!socket_.empty()) {
    argv.push_back("--socket=" + socket_);
  } else {
    argv.push_back("--host=" + host_);
    if (port_ != 0) argv.push_back("--port=" + std::to_string(port_));
  }
  if (!database.empty()) argv.push_back(database);
  // The password goes in the client's environment, never on a command line others can list.
  std::vector<std::string> environment;
  if (!password_.empty()) environment.push_back("MYSQL_PWD=" + password_);
  const ProcessResult r = runProcess(argv, sql, true, environment);
  if (r.status != 0) {
    throw std::runtime_error("the mariadb client failed on " + (database.empty() ? "the server" : database) +
                             " (exit status " + std::to_string(r.status) + ")" +
                             (r.output.empty() ? "" : ": " + r.output));
  }
}

}  // namespace tovrand::tooling
