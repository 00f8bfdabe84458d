#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engine/ConnectionSettings.h"
#include "vb/Value.h"
#include "vb/VbError.h"

namespace tovrand::engine {

// What both recordset engines check and set when a session opens, and what their messages hide.

// The text messages must not show: the password, unless it is also a name the messages show anyway.
std::string secretOf(const ConnectionSettings& settings);

// Refuses the session with the reason, naming the setting without its password.
[[noreturn]] void refuseSession(const ConnectionSettings& settings, const std::string& reason);

// The query whose first row checkSession is given.
inline constexpr const char* kSessionQuery = "select @@lower_case_table_names, @@character_set_results";

// Refuses a server that folds no table names (lower_case_table_names=0), given the first row of
// kSessionQuery (empty when there was none).
void checkSession(const std::vector<Value>& sessionRow);

// The statement that reads whether a node of a Galera cluster takes statements (see the rules for a
// list of hosts in engine/ConnectionSettings.h); sent only when the setting names more than one host.
inline constexpr const char* kReadyQuery = "SHOW STATUS LIKE 'wsrep_ready'";

// Why a node is not ready, given the first row of kReadyQuery (Variable_name, Value; empty when there
// was none, as on a server without Galera); "" when it is ready.
std::string notReadyReason(const std::vector<Value>& readyRow);

// host:port, or host alone when the port is the default, for messages.
std::string hostText(const ConnectionSettings& one);

// Opens a session on the first host of `settings` that takes one, by the rules in
// engine/ConnectionSettings.h. The engine gives three steps for one host at a time:
//   connect(one): connects to the single host `one` names; answers why it could not, or nullopt;
//   readyRow(): the first row of kReadyQuery on that session (raises VbError when the statement fails);
//   close(): ends that session.
// A single host is only connected to: its failure is refused as it always was. When every host of a
// list fails, the session is refused naming each host and why it was passed over.
template <class Connect, class ReadyRow, class Close>
void openOnFirstReadyHost(const ConnectionSettings& settings, Connect&& connect, ReadyRow&& readyRow,
                          Close&& close) {
  if (!settings.multiHost()) {
    if (std::optional<std::string> failure = connect(settings)) refuseSession(settings, *failure);
    return;
  }
  std::string tried;
  for (const ConnectionSettings& one : settings.eachHost()) {
    std::string reason;
    if (std::optional<std::string> failure = connect(one)) {
      reason = *failure;
    } else {
      try {
        reason = notReadyReason(readyRow());
      } catch (const VbError& e) {
        reason = "not ready: " + e.description();
      }
      if (reason.empty()) return;
      close();
    }
    tried += (tried.empty() ? "" : "; ") + hostText(one) + ": " + reason;
  }
  refuseSession(settings, "no host of the list took a session (" + tried + ")");
}

// The statement that pins the session's clock to noon of server_date, when the settings carry one.
std::optional<std::string> clockPinning(const ConnectionSettings& settings);

}  // namespace tovrand::engine
