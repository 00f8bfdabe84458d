#pragma once

#include <string>
#include <string_view>

namespace tovrand {

// ASCII case-insensitive comparison, as ADO matches field names and VB binds member names.
bool equalsIgnoreCase(std::string_view a, std::string_view b);
std::string toLowerAscii(std::string_view s);

// UTF-8 <-> UTF-16 at the edges (ODBC wide functions, COM BSTRs). Invalid UTF-8 becomes U+FFFD.
std::u16string toUtf16(std::string_view utf8);
std::string toUtf8(std::u16string_view utf16);
// Number of characters (code points) of a UTF-8 text.
std::size_t characterCount(std::string_view utf8);

}  // namespace tovrand
