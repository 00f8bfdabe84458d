#include "vb/Text.h"

#include <cstdint>

namespace tovrand {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

char lowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Decodes the code point at `i` and advances past it. A byte that does not start a well-formed
// sequence (stray continuation, overlong form, surrogate, beyond U+10FFFF, truncated) is one U+FFFD
// and only that byte is consumed.
char32_t decodeUtf8(std::string_view s, std::size_t& i) {
  const auto lead = static_cast<unsigned char>(s[i]);
  if (lead < 0x80) {
    ++i;
    return lead;
  }
  std::size_t length = 0;
  char32_t cp = 0;
  char32_t minimum = 0;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
    cp = lead & 0x1F;
    minimum = 0x80;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    cp = lead & 0x0F;
    minimum = 0x800;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    cp = lead & 0x07;
    minimum = 0x10000;
  } else {
    ++i;
    return kReplacement;
  }
  if (i + length > s.size()) {
    ++i;
    return kReplacement;
  }
  for (std::size_t k = 1; k < length; ++k) {
    const auto b = static_cast<unsigned char>(s[i + k]);
    if ((b & 0xC0) != 0x80) {
      ++i;
      return kReplacement;
    }
    cp = (cp << 6) | (b & 0x3F);
  }
  if (cp < minimum || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
    ++i;
    return kReplacement;
  }
  i += length;
  return cp;
}

void appendUtf8(std::string& out, char32_t cp) {
  if (cp < 0x80) {
    out.push_back(static_cast<char>(cp));
  } else if (cp < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else if (cp < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  }
}

}  // namespace

bool equalsIgnoreCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i)
    if (lowerAscii(a[i]) != lowerAscii(b[i])) return false;
  return true;
}

std::string toLowerAscii(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = lowerAscii(c);
  return out;
}

std::u16string toUtf16(std::string_view utf8) {
  std::u16string out;
  out.reserve(utf8.size());
  std::size_t i = 0;
  while (i < utf8.size()) {
    const char32_t cp = decodeUtf8(utf8, i);
    if (cp >= 0x10000) {
      const char32_t v = cp - 0x10000;
      out.push_back(static_cast<char16_t>(0xD800 + (v >> 10)));
      out.push_back(static_cast<char16_t>(0xDC00 + (v & 0x3FF)));
    } else {
      out.push_back(static_cast<char16_t>(cp));
    }
  }
  return out;
}

std::string toUtf8(std::u16string_view utf16) {
  std::string out;
  out.reserve(utf16.size());
  for (std::size_t i = 0; i < utf16.size(); ++i) {
    const char16_t unit = utf16[i];
    if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < utf16.size() && utf16[i + 1] >= 0xDC00 &&
        utf16[i + 1] <= 0xDFFF) {
      appendUtf8(out, 0x10000 + ((static_cast<char32_t>(unit) - 0xD800) << 10) + (utf16[i + 1] - 0xDC00));
      ++i;
    } else if (unit >= 0xD800 && unit <= 0xDFFF) {
      // A lone surrogate has no UTF-8 form.
      appendUtf8(out, kReplacement);
    } else {
      appendUtf8(out, unit);
    }
  }
  return out;
}

std::size_t characterCount(std::string_view utf8) {
  std::size_t count = 0;
  std::size_t i = 0;
  while (i < utf8.size()) {
    decodeUtf8(utf8, i);
    ++count;
  }
  return count;
}

}  // namespace tovrand
