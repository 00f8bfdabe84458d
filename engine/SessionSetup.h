#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engine/ConnectionSettings.h"
#include "vb/Value.h"

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

// The statement that pins the session's clock to noon of server_date, when the settings carry one.
std::optional<std::string> clockPinning(const ConnectionSettings& settings);

}  // namespace tovrand::engine
