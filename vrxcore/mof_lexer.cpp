#include "vrxcore/mof_lexer.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <optional>
#include <string_view>

#include "vrxcore/utf8_text.h"

namespace NZARVEK20::mof {
namespace {

constexpr std::size_t kShownTokenBytes = 24;
constexpr const char* kPunctuation = "{}[]();,:=#";

bool isDigit(int c) { return c >= '0' && c <= '9'; }
bool isIdentStart(int c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool isIdentChar(int c) { return isIdentStart(c) || isDigit(c); }

int digitValue(char c) {
  if (isDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return 99;
}

std::string clipped(const std::string& text) {
  return text.size() <= kShownTokenBytes ? text : text.substr(0, kShownTokenBytes) + "...";
}

struct IntegerForm {
  unsigned base;
  std::string_view digits;
};

// Decimal, 0x hex, leading-0 octal and trailing-b binary; nullopt when the
// spelling (sign already removed) is none of them.
std::optional<IntegerForm> integerForm(std::string_view s) {
  IntegerForm form{10, s};
  if (s.size() > 2 && s[0] == '0' && (s[1] == 'x' || s[1] == 'X')) {
    form = {16, s.substr(2)};
  } else if (s.size() > 1 && (s.back() == 'b' || s.back() == 'B')) {
    form = {2, s.substr(0, s.size() - 1)};
  } else if (s.size() > 1 && s[0] == '0') {
    form = {8, s.substr(1)};
  }
  if (form.digits.empty()) return std::nullopt;
  for (char c : form.digits) {
    if (digitValue(c) >= static_cast<int>(form.base)) return std::nullopt;
  }
  return form;
}

// digits* '.' digits+ [ ('e'|'E') ['+'|'-'] digits+ ]
bool isReal(std::string_view s) {
  std::size_t i = 0;
  auto digits = [&] {
    std::size_t start = i;
    while (i < s.size() && isDigit(s[i])) ++i;
    return i > start;
  };
  digits();
  if (i == s.size() || s[i] != '.') return false;
  ++i;
  if (!digits()) return false;
  if (i == s.size()) return true;
  if (s[i] != 'e' && s[i] != 'E') return false;
  ++i;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
  return digits() && i == s.size();
}

// Magnitude of the digits, or nullopt when it exceeds 64 bits.
std::optional<std::uint64_t> magnitude(const IntegerForm& form) {
  constexpr std::uint64_t kMax = std::numeric_limits<std::uint64_t>::max();
  std::uint64_t value = 0;
  for (char c : form.digits) {
    auto digit = static_cast<std::uint64_t>(digitValue(c));
    if (value > (kMax - digit) / form.base) return std::nullopt;
    value = value * form.base + digit;
  }
  return value;
}

std::size_t countCodePoints(const std::string& utf8) {
  std::size_t count = 0;
  for (char c : utf8) count += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  return count;
}

char simpleEscape(int c) {
  switch (c) {
    case 'b':
      return '\b';
    case 't':
      return '\t';
    case 'n':
      return '\n';
    case 'f':
      return '\f';
    case 'r':
      return '\r';
    case '"':
      return '"';
    case '\'':
      return '\'';
    case '\\':
      return '\\';
    default:
      return '\0';
  }
}

}  // namespace

std::string describe(const Token& token) {
  switch (token.kind) {
    case Token::Kind::End:
      return "end of file";
    case Token::Kind::String:
      return "string " + clipped(token.text);
    case Token::Kind::Char:
      return "character " + clipped(token.text);
    default:
      return "'" + clipped(token.text) + "'";
  }
}

Lexer::Lexer(const std::string& text, std::string fileName)
    : text_(text), file_(std::move(fileName)) {
  if (text_.compare(0, 3, "\xEF\xBB\xBF") == 0) {
    // A byte-order mark is no token, but its bytes still count as columns.
    pos_ = 3;
    column_ = 4;
  }
}

int Lexer::at(std::size_t ahead) const {
  return pos_ + ahead < text_.size() ? static_cast<unsigned char>(text_[pos_ + ahead]) : -1;
}

void Lexer::advance() {
  if (text_[pos_] == '\n') {
    ++line_;
    column_ = 1;
  } else {
    ++column_;
  }
  ++pos_;
}

Location Lexer::here() const { return {file_, line_, column_}; }

void Lexer::fail(const Location& where, const std::string& message) const {
  throw ParseError(where, message);
}

Token Lexer::next() {
  skipSpaceAndComments();
  const int c = at(0);
  if (c == -1) return {Token::Kind::End, "", "", here()};
  if (isIdentStart(c)) return lexIdentifier();
  if (startsNumber()) return lexNumber();
  if (c == '"') return lexQuoted(Token::Kind::String);
  if (c == '\'') return lexQuoted(Token::Kind::Char);
  if (c == '$') return lexAlias();
  if (c == 0)
    fail(here(), "unexpected NUL byte");  // before strchr, which would match the terminator
  if (std::strchr(kPunctuation, c) != nullptr) {
    Token token{Token::Kind::Punct, std::string(1, static_cast<char>(c)), "", here()};
    advance();
    return token;
  }
  if (c > ' ' && c < 0x7F)
    fail(here(), std::string("unexpected character '") + static_cast<char>(c) + "'");
  char hex[16];
  std::snprintf(hex, sizeof hex, "0x%02X", static_cast<unsigned>(c));
  fail(here(), std::string("unexpected byte ") + hex);
}

void Lexer::skipSpaceAndComments() {
  for (;;) {
    const int c = at(0);
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v') {
      advance();
    } else if (c == '/' && at(1) == '/') {
      while (at(0) != -1 && at(0) != '\n') {
        if (at(0) == 0) fail(here(), "unexpected NUL byte in comment");
        advance();
      }
    } else if (c == '/' && at(1) == '*') {
      skipBlockComment();
    } else {
      return;
    }
  }
}

void Lexer::skipBlockComment() {
  const Location start = here();
  advance();
  advance();
  while (!(at(0) == '*' && at(1) == '/')) {
    if (at(0) == -1) fail(start, "unterminated comment");
    if (at(0) == 0) fail(here(), "unexpected NUL byte in comment");
    advance();
  }
  advance();
  advance();
}

bool Lexer::startsNumber() const {
  std::size_t i = (at(0) == '+' || at(0) == '-') ? 1 : 0;
  return isDigit(at(i)) || (at(i) == '.' && isDigit(at(i + 1)));
}

Token Lexer::lexIdentifier() {
  Token token{Token::Kind::Identifier, "", "", here()};
  const std::size_t start = pos_;
  while (isIdentChar(at(0))) advance();
  token.text = text_.substr(start, pos_ - start);
  return token;
}

Token Lexer::lexNumber() {
  Token token{Token::Kind::Integer, "", "", here()};
  const std::size_t start = pos_;
  const bool negative = at(0) == '-';
  if (at(0) == '+' || at(0) == '-') advance();
  const std::size_t body = pos_;
  // Take the whole run so that "12abc" is one bad number, not two tokens.
  bool sawDot = false;
  for (;;) {
    const int c = at(0);
    const bool exponentSign =
        (c == '+' || c == '-') && sawDot && (text_[pos_ - 1] == 'e' || text_[pos_ - 1] == 'E');
    if (!isIdentChar(c) && c != '.' && !exponentSign) break;
    sawDot = sawDot || c == '.';
    advance();
  }
  token.text = text_.substr(start, pos_ - start);
  const std::string_view spelling(text_.data() + body, pos_ - body);
  if (isReal(spelling)) {
    token.kind = Token::Kind::Real;
    token.value = token.text;
    return token;
  }
  const auto form = integerForm(spelling);
  if (!form) fail(token.where, "invalid number '" + clipped(token.text) + "'");
  const auto value = magnitude(*form);
  constexpr std::uint64_t kNegativeLimit = std::uint64_t{1} << 63;
  if (!value || (negative && *value > kNegativeLimit)) {
    fail(token.where, "integer '" + clipped(token.text) + "' does not fit in 64 bits");
  }
  token.value = (negative && *value != 0 ? "-" : "") + std::to_string(*value);
  return token;
}

Token Lexer::lexAlias() {
  Token token{Token::Kind::Alias, "", "", here()};
  advance();
  if (!isIdentStart(at(0))) fail(token.where, "expected alias name after '$'");
  token.value = lexIdentifier().text;
  token.text = "$" + token.value;
  return token;
}

Token Lexer::lexQuoted(Token::Kind kind) {
  const char quote = kind == Token::Kind::String ? '"' : '\'';
  const char* what = kind == Token::Kind::String ? "string" : "character literal";
  Token token{kind, "", "", here()};
  const std::size_t start = pos_;
  advance();
  while (at(0) != quote) {
    const int c = at(0);
    if (c == -1 || c == '\n') fail(token.where, std::string("unterminated ") + what);
    if (c == 0) fail(here(), std::string("unexpected NUL byte in ") + what);
    if (c == '\\') {
      lexEscape(token.value);
    } else {
      token.value += static_cast<char>(c);
      advance();
    }
  }
  advance();
  token.text = text_.substr(start, pos_ - start);
  if (kind == Token::Kind::Char && countCodePoints(token.value) != 1) {
    fail(token.where, "character literal must hold exactly one character");
  }
  return token;
}

void Lexer::lexEscape(std::string& out) {
  const Location where = here();
  const std::size_t start = pos_;
  advance();
  const int c = at(0);
  if (c == -1 || c == '\n') return;  // the caller reports the unterminated literal
  if (const char plain = simpleEscape(c)) {
    out += plain;
    advance();
    return;
  }
  if (c != 'x' && c != 'X') {
    const std::string shown = c > ' ' && c < 0x7F ? std::string(1, static_cast<char>(c)) : "?";
    fail(where, "invalid escape '\\" + shown + "'");
  }
  advance();
  unsigned code = 0;
  std::size_t digits = 0;
  while (digits < 4 && digitValue(static_cast<char>(at(0))) < 16) {
    code = code * 16 + static_cast<unsigned>(digitValue(static_cast<char>(at(0))));
    ++digits;
    advance();
  }
  if (digits == 0) fail(where, "expected hex digits after '\\x'");
  if (code == 0 || (code >= 0xD800 && code <= 0xDFFF)) {
    fail(where, "escape '" + text_.substr(start, pos_ - start) + "' is not a valid character");
  }
  appendUtf8(out, code);
}

}  // namespace NZARVEK20::mof
