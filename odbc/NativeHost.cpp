#include "odbc/NativeHost.h"

#include "odbc/OdbcDbConnection.h"
#include "odbc/OdbcRecordset.h"
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
  return std::make_shared<OdbcDbConnection>(settings_);
}

std::shared_ptr<Recordset> NativeHost::newRecordset() {
  return std::make_shared<OdbcRecordset>();
}

Entity NativeHost::newEntity(const EntityClass& cls) {
  return newNativeEntity(cls);
}

}  // namespace tovrand
