#pragma once

#include <string>
#include <string_view>

namespace tovrand {

// VB's Left and Mid on UTF-8 text, counting characters; like VB they never raise for positions past
// the end (they give what is there, possibly "").
std::string Left(std::string_view text, std::size_t length);
std::string Mid(std::string_view text, std::size_t start, std::size_t length);  // start is 1-based

}  // namespace tovrand
