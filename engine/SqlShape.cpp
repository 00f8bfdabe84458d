#include "engine/SqlShape.h"

#include <array>
#include <vector>

#include "vb/Text.h"

namespace tovrand::engine {

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

// Reads the text's tokens one after the other; blanks and comments fall between them.
class Scanner {
 public:
  explicit Scanner(std::string_view sql) : sql_(sql) {}

  // The next token; false at the end of the text.
  bool next(Token& t) {
    while (at_ < sql_.size()) {
      std::size_t i = at_;
      auto c = static_cast<unsigned char>(sql_[i]);
      if (c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v') {
        ++at_;
      } else if (c == '#' || (c == '-' && i + 2 < sql_.size() && sql_[i + 1] == '-' &&
                              (sql_[i + 2] == ' ' || sql_[i + 2] == '\t'))) {
        while (at_ < sql_.size() && sql_[at_] != '\n') ++at_;
      } else if (c == '/' && i + 1 < sql_.size() && sql_[i + 1] == '*') {
        std::size_t close = sql_.find("*/", i + 2);
        at_ = close == std::string_view::npos ? sql_.size() : close + 2;
      } else if (c == '\'' || c == '"') {
        return emit(t, Token::Kind::Text, endOfQuoted(sql_, i, static_cast<char>(c)));
      } else if (c == '`') {
        return emit(t, Token::Kind::Quoted, endOfQuoted(sql_, i, '`'));
      } else if (isDigit(c) ||
                 (c == '.' && i + 1 < sql_.size() && isDigit(static_cast<unsigned char>(sql_[i + 1])))) {
        std::size_t end = i + 1;
        while (end < sql_.size() && (isWordChar(static_cast<unsigned char>(sql_[end])) || sql_[end] == '.'))
          ++end;
        return emit(t, Token::Kind::Number, end);
      } else if (isWordChar(c)) {
        std::size_t end = i + 1;
        while (end < sql_.size() && isWordChar(static_cast<unsigned char>(sql_[end]))) ++end;
        return emit(t, Token::Kind::Word, end);
      } else {
        return emit(t, Token::Kind::Mark, i + 1);
      }
    }
    return false;
  }

 private:
  bool emit(Token& t, Token::Kind kind, std::size_t end) {
    t = {kind, at_, end};
    at_ = end;
    return true;
  }
  std::string_view sql_;
  std::size_t at_ = 0;
};

std::vector<Token> tokens(std::string_view sql) {
  std::vector<Token> out;
  Scanner scanner(sql);
  Token t{};
  while (scanner.next(t)) out.push_back(t);
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
  // One pass: the key is built as the text is read, and the text itself is the answer when it turns
  // out to have no WHERE of its own or to have a UNION.
  std::string key;
  Scanner scanner(sql);
  Token t{};
  int depth = 0;
  bool masking = false;
  std::size_t copied = 0;
  while (scanner.next(t)) {
    if (t.kind == Token::Kind::Mark) {
      if (sql[t.begin] == '(') ++depth;
      if (sql[t.begin] == ')') --depth;
    } else if (t.kind == Token::Kind::Word) {
      if (isWord(sql, t, "union")) return std::string(sql);
      if (!masking && depth == 0 && isWord(sql, t, "where")) {
        masking = true;
        key.reserve(sql.size());
      }
    } else if (masking && (t.kind == Token::Kind::Text || t.kind == Token::Kind::Number)) {
      key.append(sql.substr(copied, t.begin - copied));
      key += '?';
      copied = t.end;
    }
  }
  if (!masking) return std::string(sql);
  key.append(sql.substr(copied));
  return key;
}

std::string quoted(std::string_view identifier) {
  std::string out = "`";
  for (char c : identifier) {
    out += c;
    if (c == '`') out += '`';
  }
  return out + "`";
}

}  // namespace tovrand::engine
