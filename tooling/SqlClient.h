#pragma once

#include <string>

namespace tovrand::tooling {

// The mariadb command-line client as one account of a server: SQL text of several statements (a
// schema, sample data, grants) is loaded the way a person would load it, outside the statement trace.
class SqlClient {
 public:
  // Over a unix socket when `socket` is given, else over TCP to host:port (port 0: the client's own).
  SqlClient(std::string user, std::string password, std::string socket, std::string host = "localhost",
            int port = 0);

  // Runs `sql` on `database` ("" for none). Raises std::runtime_error with the client's output when a
  // statement fails or the client is missing.
  void run(const std::string& database, const std::string& sql) const;

 private:
  std::string user_, password_, socket_, host_;
  int port_ = 0;
};

}  // namespace tovrand::tooling
