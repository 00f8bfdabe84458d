#pragma once

// A host that needs no database server, so that everything a `tovrand run` line goes through before
// a statement reaches the server (the request, its arguments, the member's own steps, its handler and
// the answer) can be driven millions of times a minute. It stands in for the server only; the
// classes, the member table and the runner are the real ones.

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "frame/Host.h"
#include "frame/MessageSink.h"

namespace tovrand::fuzz {

// How the stand-in server answers every statement.
enum class ServerAnswer {
  Fails,    // every statement fails as on a lost session: the members' error paths
  NoRows,   // every query has no rows, every edit is taken: the not-found paths
  NullRow,  // every query has one row whose columns are all NULL: the NULL defaults
};

// The answer a script asks for with a leading comment line "# server: fails|no rows|null row"; no
// such line means NoRows.
ServerAnswer serverAnswerOf(std::string_view script);

class ServerlessHost final : public Host {
 public:
  ServerlessHost(ServerAnswer answer, std::shared_ptr<MessageSink> messages)
      : answer_(answer), messages_(std::move(messages)) {}

  std::shared_ptr<DbConnection> newDbConnection() override;
  std::shared_ptr<Recordset> newRecordset() override;
  Entity newEntity(const EntityClass& cls) override;
  MessageSink& messages() override { return *messages_; }

 private:
  ServerAnswer answer_;
  std::shared_ptr<MessageSink> messages_;
};

}  // namespace tovrand::fuzz
