// Tokens of MOF text. The lexer resolves what is purely lexical (escapes,
// number bases, 64-bit range) so that the parser sees checked values.
#pragma once

#include <cstddef>
#include <string>

#include "vrxcore/mof_parser.h"

namespace NZARVEK20::mof {

struct Token {
  enum class Kind { End, Identifier, Integer, Real, String, Char, Alias, Punct };
  Kind kind = Kind::End;
  std::string text;   // as written in the source
  std::string value;  // Integer: canonical decimal; String/Char: decoded; Alias: name without '$'
  Location where;
};

// How an error message names a token: 'class', string "abc", end of file.
std::string describe(const Token& token);

class Lexer {
 public:
  // text must outlive the lexer.
  Lexer(const std::string& text, std::string fileName);
  Token next();

 private:
  int at(std::size_t ahead) const;  // byte ahead of the cursor, -1 past the end
  void advance();
  Location here() const;
  [[noreturn]] void fail(const Location& where, const std::string& message) const;

  void skipSpaceAndComments();
  void skipBlockComment();
  bool startsNumber() const;
  Token lexIdentifier();
  Token lexNumber();
  Token lexAlias();
  Token lexQuoted(Token::Kind kind);
  void lexEscape(std::string& out);

  const std::string& text_;
  std::string file_;
  std::size_t pos_ = 0;
  unsigned line_ = 1, column_ = 1;
};

}  // namespace NZARVEK20::mof
