#include "engine/SessionSetup.h"

#include "vb/Text.h"
#include "vb/VbError.h"

namespace tovrand::engine {

std::string secretOf(const ConnectionSettings& s) {
  // Blanking a password that is also a shown name out of "Table 'tovrand.t' ..." would hide the names
  // and protect nothing.
  const std::string& p = s.password;
  if (p.empty()) return {};
  for (const std::string* shown : {&s.user, &s.database, &s.host, &s.socket}) {
    if (shown->find(p) != std::string::npos) return {};
  }
  return p;
}

void refuseSession(const ConnectionSettings& settings, const std::string& reason) {
  throw VbError(vberr::kProviderError,
                "cannot connect to the database " + settings.redacted() + ": " + reason);
}

void checkSession(const std::vector<Value>& sessionRow) {
  // The component writes table names in mixed case (t_porder, T_POrder); a case-sensitive server
  // would silently address tables that do not exist.
  if (!sessionRow.empty() && !sessionRow[0].isNull() && CStr(sessionRow[0]) == "0") {
    throw VbError(
        vberr::kProviderError,
        "the server runs with lower_case_table_names=0; Tovrand needs lower_case_table_names=1 (table "
        "names are written in mixed case, as on a Windows server): start the server with "
        "--lower-case-table-names=1");
  }
}

std::string notReadyReason(const std::vector<Value>& readyRow) {
  if (readyRow.size() < 2 || readyRow[1].isNull()) return {};
  if (toLowerAscii(CStr(readyRow[1])) == "off")
    return "not ready: wsrep_ready is OFF (the node is not part of its cluster's primary component)";
  return {};
}

std::string hostText(const ConnectionSettings& one) {
  return one.port != 0 ? one.host + ":" + std::to_string(one.port) : one.host;
}

std::optional<std::string> clockPinning(const ConnectionSettings& settings) {
  if (settings.serverDate.empty()) return std::nullopt;
  return "SET timestamp = UNIX_TIMESTAMP('" + settings.serverDate + " 12:00:00')";
}

}  // namespace tovrand::engine
