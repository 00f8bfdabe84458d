// `tovrand run` requests: any line answers one JSON object (an error line for anything that cannot
// be carried out) and never takes the run down, whatever the line, its arguments and the member
// called with them. Four objects, one of each class, exist before the first line (p, c, h, i, as
// the example scripts name them); the stand-in server answers as the script's first line asks
// ("# server: fails", "# server: null row", else no rows). Each answer is written as the run writes
// it and built as a tree too: both forms hold the same bytes.
//
// Input: a `tovrand run` script.

#include <cstdint>
#include <string>
#include <string_view>

#include "cli/Runner.h"
#include "fuzz/FuzzCheck.h"
#include "fuzz/ServerlessHost.h"

using namespace tovrand;
using tovrand::fuzz::require;

namespace {

constexpr std::string_view kObjects[] = {
    R"js({"new":"p","class":"clsDataPOrder"})js",
    R"js({"new":"c","class":"clsDataPOrderChk"})js",
    R"js({"new":"h","class":"clsDataPMrph"})js",
    R"js({"new":"i","class":"clsDataPMrpi"})js",
};

// A request line as `tovrand run` sees it: blanks around it dropped; blank and comment lines
// answer nothing.
std::string_view request(std::string_view line) {
  while (!line.empty() && (line.front() == ' ' || line.front() == '\t')) line.remove_prefix(1);
  while (!line.empty() && (line.back() == ' ' || line.back() == '\t' || line.back() == '\r'))
    line.remove_suffix(1);
  return line.empty() || line.front() == '#' ? std::string_view() : line;
}

bool holds(const cli::Json& answer, const char* key, cli::Json::value_t type) {
  const auto it = answer.find(key);
  return it != answer.end() && it->type() == type;
}

void checkAnswer(const cli::Json& answer) {
  using Type = cli::Json::value_t;
  require(answer.is_object(), "every answer is a JSON object");
  if (answer.contains("error")) {
    require(holds(answer, "error", Type::string) && !answer.at("error").get_ref<const std::string&>().empty(),
            "an error answer says what went wrong");
  } else if (answer.contains("result")) {
    require(holds(answer, "args", Type::object), "a call's answer gives back its arguments");
    require(holds(answer, "messages", Type::array), "a call's answer lists its message boxes");
    require(holds(answer, "sql", Type::array), "a traced call's answer lists its statements");
  } else {
    require(holds(answer, "ok", Type::boolean) && answer.at("ok").get<bool>(),
            "an answer is an error, a call's result or ok");
  }
  // The answer line is written as strict JSON: every text in it is whole UTF-8.
  (void)answer.dump();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view script(reinterpret_cast<const char*>(data), size);
  const fuzz::ServerAnswer answer = fuzz::serverAnswerOf(script);
  cli::RunOptions options;
  options.trace = true;
  cli::ScriptRunner runner(options, [answer](std::shared_ptr<MessageSink> sink) {
    return std::make_shared<fuzz::ServerlessHost>(answer, std::move(sink));
  });
  for (std::string_view line : kObjects) require(runner.answer(line).value("ok", false), "the objects exist");

  std::size_t at = 0;
  while (at <= script.size()) {
    std::size_t end = script.find('\n', at);
    if (end == std::string_view::npos) end = script.size();
    if (const std::string_view line = request(script.substr(at, end - at)); !line.empty()) {
      // The run writes its answers straight out; built as a tree from the same run of the request,
      // the answer must dump to the very same bytes.
      std::string text;
      cli::Json tree;
      runner.answerTo(line, text, &tree);
      checkAnswer(tree);
      require(text == tree.dump(-1, ' ', false, cli::Json::error_handler_t::replace),
              "an answer written straight out is the bytes of its tree");
    }
    at = end + 1;
  }
  return 0;
}
