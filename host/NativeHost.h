#pragma once

#include <memory>
#include <string>

#include "engine/ConnectionSettings.h"
#include "frame/Host.h"

namespace tovrand {

// The host of native programs (the command line, the tests, the benchmarks, a library user): connection
// holders and recordsets from the engine the settings name (engine=mariadb, the default on Linux, or odbc),
// entities in this process, messages to the given sink. When the settings carry short_date or long_time,
// the process's regional settings take them.
class NativeHost final : public Host {
 public:
  NativeHost(ConnectionSettings settings, std::shared_ptr<MessageSink> messages);
  // The DSN as ConnectionSettings::parse reads it (raises on a malformed one).
  NativeHost(const std::string& dsn, std::shared_ptr<MessageSink> messages);

  std::shared_ptr<DbConnection> newDbConnection() override;
  std::shared_ptr<Recordset> newRecordset() override;
  Entity newEntity(const EntityClass& cls) override;
  MessageSink& messages() override { return *messages_; }

  const ConnectionSettings& settings() const { return settings_; }

 private:
  ConnectionSettings settings_;
  std::shared_ptr<MessageSink> messages_;
};

}  // namespace tovrand
