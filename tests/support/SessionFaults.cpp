#include "tests/support/SessionFaults.h"

#include <unistd.h>

#include <stdexcept>

#include "mariadb/MariaDbConnection.h"
#include "vb/Value.h"

namespace tovrand::test {

void StatementHook::statement(std::string_view sql, StatementOrigin origin) {
  TracedStatement traced{std::string(sql), origin};
  if (before_) before_(recorded_.statements().size() + 1, traced);
  recorded_.statement(sql, origin);
}

std::string sharedSessionId(const ConnectionSettings& settings) {
  if (settings.engine == "mariadb") {
    return CStr(*MariaDbConnection::acquire(settings)->scalar("select connection_id()", true));
  }
  auto shared = OdbcConnection::acquire(settings);
  return CStr(*shared->scalar("select connection_id()", true));
}

std::vector<std::string> otherSessions(OdbcConnection& via) {
  std::optional<Value> ids = via.scalar(
      "select group_concat(id order by id separator ',') from information_schema.processlist "
      "where db = database() and id <> connection_id() and command <> 'Killed'",
      true);
  std::vector<std::string> out;
  if (!ids || ids->isNull()) return out;
  std::string list = CStr(*ids);
  for (std::size_t start = 0; start <= list.size();) {
    std::size_t end = list.find(',', start);
    if (end == std::string::npos) end = list.size();
    if (end > start) out.push_back(list.substr(start, end - start));
    start = end + 1;
  }
  return out;
}

void killSession(OdbcConnection& via, const std::string& id) {
  via.execute("KILL CONNECTION " + id);
  // A killed session can linger in the process list for a moment while its thread winds down.
  for (int i = 0; i < 500; ++i) {
    std::optional<Value> left =
        via.scalar("select count(*) from information_schema.processlist where id = " + id, true);
    if (left && CStr(*left) == "0") return;
    ::usleep(2000);
  }
  throw std::runtime_error("session " + id + " was still there a second after KILL CONNECTION");
}

}  // namespace tovrand::test
