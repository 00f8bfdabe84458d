#pragma once

#include <string>
#include <utility>
#include <vector>

namespace tovrand {

// Message box styles the component uses.
inline constexpr int vbCritical = 16;
inline constexpr int vbInformation = 64;

struct Message {
  std::string text;
  int style = 0;
  std::string title;
  bool operator==(const Message&) const = default;
};

// Where the component's modal message boxes go: a real message box in the COM shell, a record for
// the command line and the tests.
class MessageSink {
 public:
  virtual ~MessageSink() = default;
  virtual void show(const std::string& text, int style, const std::string& title) = 0;
};

// Keeps every message in order (the command line answers them per call; tests assert on them).
class RecordingMessageSink final : public MessageSink {
 public:
  void show(const std::string& text, int style, const std::string& title) override {
    messages_.push_back({text, style, title});
  }
  const std::vector<Message>& messages() const { return messages_; }
  std::vector<Message> take() { return std::exchange(messages_, {}); }

 private:
  std::vector<Message> messages_;
};

}  // namespace tovrand
