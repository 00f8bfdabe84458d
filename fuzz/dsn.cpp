// Connection settings, as TOVRAND_DSN, --dsn or a configuration file give them: parsing any text
// either gives settings or raises the setting's VbError, and what the settings hand on (the ODBC
// connection string, the redacted form for messages, the date patterns) says what was parsed.
//
// Input: the text of a setting, also read as the text of a configuration file.

#include <cstdint>
#include <string>
#include <string_view>

#include "engine/ConnectionSettings.h"
#include "fuzz/FuzzCheck.h"
#include "vb/RegionalSettings.h"

using namespace tovrand;
using tovrand::fuzz::attempt;
using tovrand::fuzz::require;

namespace {

void checkSettings(const ConnectionSettings& s) {
  require(s.port >= 0 && s.port <= 65535, "the port is 0 or a TCP port");
  require(s.timeoutSeconds >= 1 && s.timeoutSeconds <= 86400, "the timeout is 1 s to a day");
  require(s.connectTimeoutSeconds >= 1 && s.connectTimeoutSeconds <= 86400,
          "the connect timeout is 1 s to a day");
  require(s.serverDate.empty() || s.serverDate.size() == 10, "server_date is YYYY-MM-DD");

  // The string the driver gets holds every part exactly as parsed: read back as a raw ODBC
  // setting, it names the same user and password.
  const std::string odbc = s.odbcConnectionString();
  const auto reread = attempt([&] { return ConnectionSettings::parse("odbc:" + odbc); });
  require(reread.has_value(), "the ODBC connection string is well formed");
  require(reread->user == s.user, "the ODBC connection string carries the user as parsed");
  require(reread->password == s.password, "the ODBC connection string carries the password as parsed");
  require(reread->rawTimeouts, "the ODBC connection string sets the driver's timeouts");
  require(s.connectionKey().find(odbc) == 0, "the connection key starts with the connection string");

  // The text for messages never carries the password.
  const std::string redacted = s.redacted();
  if (s.rawOdbc.empty()) {
    ConnectionSettings other = s;
    other.password = s.password.empty() ? "" : "\x01";
    require(other.redacted() == redacted, "the redacted setting does not depend on the password");
  } else if (!s.password.empty()) {
    const auto shown = attempt([&] { return ConnectionSettings::parse(redacted); });
    require(shown.has_value(), "the redacted raw setting is well formed");
    require(shown->password == "***", "the redacted raw setting shows *** for the password");
  }

  // Date patterns from the setting write every date without failing.
  if (!s.shortDate.empty() || !s.longTime.empty()) {
    RegionalSettings regional;
    if (!s.shortDate.empty()) regional.shortDate = s.shortDate;
    if (!s.longTime.empty()) regional.longTime = s.longTime;
    for (const DateParts& parts : {DateParts{2008, 5, 15, 10, 30, 0}, DateParts{}, DateParts{100, 1, 1},
                                   DateParts{9999, 12, 31, 23, 59, 59}, DateParts{2026, 11, 22}})
      (void)regional.generalDate(makeDate(parts));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (const auto settings = attempt([&] { return ConnectionSettings::parse(text, "TOVRAND_DSN"); }))
    checkSettings(*settings);
  if (const auto dsn = attempt([&] { return ConnectionSettings::dsnOfConfigText(text, "tovrand.conf"); })) {
    if (const auto settings = attempt([&] { return ConnectionSettings::parse(*dsn, "tovrand.conf"); }))
      checkSettings(*settings);
  }
  return 0;
}
