#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "engine/ConnectionSettings.h"
#include "frame/Host.h"

namespace tovrand::com {

// The hosting side of the four classes inside the COM server: Velmora's clsDbConnection and entities
// created by ProgID, the ODBC engine's recordsets, and the message box.
class ComHost final : public Host {
 public:
  ComHost();
  std::shared_ptr<DbConnection> newDbConnection() override;
  std::shared_ptr<Recordset> newRecordset() override;
  Entity newEntity(const EntityClass& cls) override;
  MessageSink& messages() override;

 private:
  std::shared_ptr<MessageSink> messages_;
};

// The ODBC connection string an ADO connection string stands for: the Extended Properties of an
// MSDASQL string, or the string itself when it is a plain ODBC one.
std::string odbcPartOf(std::string_view connectionString);
// What a connection holder connects with: TOVRAND_DSN when it is set, else the given ADO/ODBC
// connection string.
ConnectionSettings settingsFor(std::string_view connectionString);

// The message box, or with TOVRAND_MESSAGES=stderr one line per message on standard error:
// "MESSAGE style=64 title=... text=..." (UTF-8).
class MessageBoxSink final : public MessageSink {
 public:
  void show(const std::string& text, int style, const std::string& title) override;
};

}  // namespace tovrand::com
