#include "vb/VbStrings.h"

namespace tovrand {

namespace {
// Byte offset of character `index` (0-based) of UTF-8 text, or text.size() past the end.
std::size_t offsetOf(std::string_view text, std::size_t index) {
  std::size_t offset = 0;
  for (std::size_t n = 0; n < index && offset < text.size(); ++n) {
    ++offset;
    while (offset < text.size() && (static_cast<unsigned char>(text[offset]) & 0xC0) == 0x80) ++offset;
  }
  return offset;
}
}  // namespace

std::string Left(std::string_view text, std::size_t length) {
  return std::string(text.substr(0, offsetOf(text, length)));
}

std::string Mid(std::string_view text, std::size_t start, std::size_t length) {
  if (start == 0) start = 1;
  std::size_t from = offsetOf(text, start - 1);
  std::string_view rest = text.substr(from);
  return std::string(rest.substr(0, offsetOf(rest, length)));
}

}  // namespace tovrand
