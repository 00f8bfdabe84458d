#include "host/NativeHost.h"

#include "odbc/OdbcDbConnection.h"
#include "odbc/OdbcRecordset.h"
#include "vb/VbError.h"
#ifndef _WIN32
#include "mariadb/MariaDbDbConnection.h"
#include "mariadb/MariaDbRecordset.h"
#endif
#include "vb/RegionalSettings.h"

namespace tovrand {

NativeHost::NativeHost(ConnectionSettings settings, std::shared_ptr<MessageSink> messages)
    : settings_(std::move(settings)), messages_(std::move(messages)) {
  if (!messages_) messages_ = std::make_shared<RecordingMessageSink>();
  if (!settings_.shortDate.empty() || !settings_.longTime.empty()) {
    RegionalSettings regional = RegionalSettings::current();
    if (!settings_.shortDate.empty()) regional.shortDate = settings_.shortDate;
    if (!settings_.longTime.empty()) regional.longTime = settings_.longTime;
    RegionalSettings::setCurrent(std::move(regional));
  }
}

NativeHost::NativeHost(const std::string& dsn, std::shared_ptr<MessageSink> messages)
    : NativeHost(ConnectionSettings::parse(dsn), std::move(messages)) {}

std::shared_ptr<DbConnection> NativeHost::newDbConnection() {
  if (settings_.engine == "mariadb") {
#ifdef _WIN32
    throw VbError(vberr::kProviderError,
                  "the mariadb engine is not part of the Windows build: use engine=odbc");
#else
    return std::make_shared<MariaDbDbConnection>(settings_);
#endif
  }
  return std::make_shared<OdbcDbConnection>(settings_);
}

std::shared_ptr<Recordset> NativeHost::newRecordset() {
#ifndef _WIN32
  if (settings_.engine == "mariadb") return std::make_shared<MariaDbRecordset>();
#endif
  return std::make_shared<OdbcRecordset>();
}

Entity NativeHost::newEntity(const EntityClass& cls) {
  return newNativeEntity(cls);
}

}  // namespace tovrand
