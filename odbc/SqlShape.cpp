#include "odbc/SqlShape.h"

#include <array>
#include <vector>

#include "frame/Text.h"

namespace tovrand::odbc {

namespace {

struct Token {
  enum class Kind { Word, Quoted, Text, Number, Mark };
  Kind kind;
  std::size_t begin, end;  // the token's span in the text
};

bool isWordChar(unsigned char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '$' ||
         c >= 0x80;
}

bool isDigit(unsigned char c) {
  return c >= '0' && c <= '9';
}

// The span of a literal or quoted name that starts with `quote` at `at`, its doubled or
// backslash-escaped quotes included; an unterminated one runs to the end.
std::size_t endOfQuoted(std::string_view sql, std::size_t at, char quote) {
  std::size_t i = at + 1;
  while (i < sql.size()) {
    char c = sql[i];
    if (c == '\\' && quote != '`' && i + 1 < sql.size()) {
      i += 2;
    } else if (c == quote) {
      if (i + 1 < sql.size() && sql[i + 1] == quote) {
        i += 2;
      } else {
        return i + 1;
      }
    } else {
      ++i;
    }
  }
  return sql.size();
}

// The text's tokens; blanks and comments fall between them.
std::vector<Token> tokens(std::string_view sql) {
  std::vector<Token> out;
  std::size_t i = 0;
  while (i < sql.size()) {
    auto c = static_cast<unsigned char>(sql[i]);
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v') {
      ++i;
    } else if (c == '#' || (c == '-' && i + 2 < sql.size() && sql[i + 1] == '-' &&
                            (sql[i + 2] == ' ' || sql[i + 2] == '\t'))) {
      while (i < sql.size() && sql[i] != '\n') ++i;
    } else if (c == '/' && i + 1 < sql.size() && sql[i + 1] == '*') {
      std::size_t close = sql.find("*/", i + 2);
      i = close == std::string_view::npos ? sql.size() : close + 2;
    } else if (c == '\'' || c == '"') {
      std::size_t end = endOfQuoted(sql, i, static_cast<char>(c));
      out.push_back({Token::Kind::Text, i, end});
      i = end;
    } else if (c == '`') {
      std::size_t end = endOfQuoted(sql, i, '`');
      out.push_back({Token::Kind::Quoted, i, end});
      i = end;
    } else if (isDigit(c) ||
               (c == '.' && i + 1 < sql.size() && isDigit(static_cast<unsigned char>(sql[i + 1])))) {
      std::size_t end = i + 1;
      while (end < sql.size() && (isWordChar(static_cast<unsigned char>(sql[end])) || sql[end] == '.')) ++end;
      out.push_back({Token::Kind::Number, i, end});
      i = end;
    } else if (isWordChar(c)) {
      std::size_t end = i + 1;
      while (end < sql.size() && isWordChar(static_cast<unsigned char>(sql[end]))) ++end;
      out.push_back({Token::Kind::Word, i, end});
      i = end;
    } else {
      out.push_back({Token::Kind::Mark, i, i + 1});
      ++i;
    }
  }
  return out;
}

bool isWord(std::string_view sql, const Token& t, std::string_view word) {
  return t.kind == Token::Kind::Word && equalsIgnoreCase(sql.substr(t.begin, t.end - t.begin), word);
}

bool isMark(std::string_view sql, const Token& t, char mark) {
  return t.kind == Token::Kind::Mark && sql[t.begin] == mark;
}

bool hasUnion(std::string_view sql, const std::vector<Token>& all) {
  for (const Token& t : all) {
    if (isWord(sql, t, "union")) return true;
  }
  return false;
}

// The words that may follow `select * from T [alias]` without changing which columns the result has.
bool endsTheTableReference(std::string_view sql, const Token& t) {
  static constexpr std::array<std::string_view, 7> kClauses = {"where", "order", "group", "having",
                                                               "limit", "for",   "lock"};
  for (std::string_view clause : kClauses) {
    if (isWord(sql, t, clause)) return true;
  }
  return false;
}

// Words that would make a following word part of a join or a hint rather than an alias.
bool isReservedAfterTable(std::string_view sql, const Token& t) {
  static constexpr std::array<std::string_view, 13> kWords = {
      "join",  "inner", "left", "right",  "cross", "natural",  "straight_join",
      "using", "on",    "use",  "ignore", "force", "partition"};
  for (std::string_view word : kWords) {
    if (isWord(sql, t, word)) return true;
  }
  return endsTheTableReference(sql, t);
}

std::string nameOf(std::string_view sql, const Token& t) {
  std::string_view text = sql.substr(t.begin, t.end - t.begin);
  if (t.kind == Token::Kind::Quoted) {
    std::string name;
    for (std::size_t i = 1; i + 1 < text.size(); ++i) {
      name += text[i];
      if (text[i] == '`' && text[i + 1] == '`') ++i;
    }
    return toLowerAscii(name);
  }
  return toLowerAscii(std::string(text));
}

bool isName(const Token& t) {
  return t.kind == Token::Kind::Word || t.kind == Token::Kind::Quoted;
}

}  // namespace

std::optional<std::string> wholeTableOf(std::string_view sql) {
  std::vector<Token> all = tokens(sql);
  if (all.size() < 4 || !isWord(sql, all[0], "select") || !isMark(sql, all[1], '*') ||
      !isWord(sql, all[2], "from") || !isName(all[3]) || hasUnion(sql, all)) {
    return std::nullopt;
  }
  std::string table = nameOf(sql, all[3]);
  std::size_t next = 4;
  if (next + 1 < all.size() && isMark(sql, all[next], '.') && isName(all[next + 1])) {
    table += "." + nameOf(sql, all[next + 1]);
    next += 2;
  }
  // An alias: `T a` or `T as a`.
  if (next < all.size() && isWord(sql, all[next], "as")) {
    if (next + 1 >= all.size() || !isName(all[next + 1])) return std::nullopt;
    next += 2;
  } else if (next < all.size() && isName(all[next]) && !isReservedAfterTable(sql, all[next])) {
    ++next;
  }
  if (next == all.size() || endsTheTableReference(sql, all[next])) return table;
  return std::nullopt;
}

std::string resultShapeOf(std::string_view sql) {
  std::vector<Token> all = tokens(sql);
  if (hasUnion(sql, all)) return std::string(sql);
  int depth = 0;
  std::size_t where = all.size();
  for (std::size_t i = 0; i < all.size() && where == all.size(); ++i) {
    if (isMark(sql, all[i], '(')) ++depth;
    if (isMark(sql, all[i], ')')) --depth;
    if (depth == 0 && isWord(sql, all[i], "where")) where = i;
  }
  if (where == all.size()) return std::string(sql);
  std::string key;
  key.reserve(sql.size());
  std::size_t copied = 0;
  for (std::size_t i = where + 1; i < all.size(); ++i) {
    const Token& t = all[i];
    if (t.kind != Token::Kind::Text && t.kind != Token::Kind::Number) continue;
    key.append(sql.substr(copied, t.begin - copied));
    key += '?';
    copied = t.end;
  }
  key.append(sql.substr(copied));
  return key;
}

}  // namespace tovrand::odbc
