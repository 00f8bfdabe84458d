#pragma once

#include <memory>

#include "engine/ConnectionSettings.h"
#include "frame/DbConnection.h"
#include "mariadb/MariaDbConnection.h"

namespace tovrand {

// The native clsDbConnection on the MariaDB engine: OpenConnection takes the process's shared session
// for its settings (opening it when this is the first holder), CloseConnection gives it back.
class MariaDbDbConnection final : public DbConnection {
 public:
  explicit MariaDbDbConnection(ConnectionSettings settings) : settings_(std::move(settings)) {}

  // The open connection; 91 when OpenConnection has not succeeded.
  std::shared_ptr<tovrand::Connection> Connection() override;
  // Raises the connection failure (0x80004005 with its reason); a second call keeps the connection.
  void OpenConnection() override;
  // Closing a holder that was never opened does nothing.
  void CloseConnection() override;

  bool isOpen() const { return connection_ != nullptr; }
  const ConnectionSettings& settings() const { return settings_; }
  const std::shared_ptr<MariaDbConnection>& mariaDbConnection() const { return connection_; }

 private:
  ConnectionSettings settings_;
  std::shared_ptr<MariaDbConnection> connection_;
};

}  // namespace tovrand
