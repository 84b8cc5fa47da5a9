#include "vrxcore/mof_parser.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <iterator>
#include <memory>
#include <unordered_set>

#include "vrxcore/mof_lexer.h"

namespace NZARVEK20::mof {
namespace {

constexpr std::size_t kMaxIncludeDepth = 16;

constexpr const char* kTypes[] = {"uint8",  "sint8",  "uint16",  "sint16",  "uint32",
                                  "sint32", "uint64", "sint64",  "real32",  "real64",
                                  "char16", "string", "boolean", "datetime"};
constexpr const char* kScopes[] = {"class",     "association", "indication", "property",
                                   "reference", "method",      "parameter",  "any"};
constexpr const char* kFlavors[] = {"EnableOverride", "DisableOverride", "ToSubclass", "Restricted",
                                    "Translatable"};

bool iequals(const std::string& a, const char* b) {
  const std::size_t n = std::strlen(b);
  if (a.size() != n) return false;
  for (std::size_t i = 0; i < n; ++i) {
    if (std::tolower(static_cast<unsigned char>(a[i])) !=
        std::tolower(static_cast<unsigned char>(b[i]))) {
      return false;
    }
  }
  return true;
}

std::string lowered(std::string s) {
  for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

// The table's spelling of a keyword, or nullptr when the word is not in it.
template <std::size_t N>
const char* lookup(const char* const (&table)[N], const std::string& word) {
  const auto* hit = std::find_if(std::begin(table), std::end(table),
                                 [&](const char* k) { return iequals(word, k); });
  return hit == std::end(table) ? nullptr : *hit;
}

using IncludeHandler = std::function<void(const std::string& name, const Location& where)>;

class Parser {
 public:
  Parser(const std::string& text, const std::string& fileName, Document& doc,
         IncludeHandler include)
      : lex_(text, fileName), doc_(doc), include_(std::move(include)) {
    advance();
  }
  void parseDocument();

 private:
  void advance() { tok_ = lex_.next(); }
  bool isPunct(char c) const { return tok_.kind == Token::Kind::Punct && tok_.text[0] == c; }
  bool isKeyword(const char* word) const {
    return tok_.kind == Token::Kind::Identifier && iequals(tok_.text, word);
  }
  [[noreturn]] void failExpected(const std::string& what) const {
    throw ParseError(tok_.where, "expected " + what + ", found " + describe(tok_));
  }
  void expectPunct(char c, const std::string& context);
  void expectKeyword(const char* word, const std::string& context);
  Token expectIdentifier(const std::string& what);
  std::string expectType();

  void parsePragma();
  void parseClass(std::vector<Qualifier> qualifiers);
  void parseFeature(ClassDecl& cls, std::unordered_set<std::string>& seen);
  void parseTypedName(PropertyDecl& decl, const char* noun);
  void parseArraySuffix(bool& isArray, long& size);
  void skipMethodParameters();
  void parseInstance();
  void parseQualifierDecl();
  std::vector<Qualifier> parseQualifierList();
  Qualifier parseQualifier();
  template <std::size_t N>
  std::vector<std::string> parseNameList(const char* const (&table)[N], const char* noun);
  Initializer parseInitializer();
  Initializer parseArrayInitializer();
  Literal parseConstant();
  Literal parseStrings();

  Lexer lex_;
  Token tok_;
  Document& doc_;
  IncludeHandler include_;
};

void Parser::expectPunct(char c, const std::string& context) {
  if (!isPunct(c)) failExpected(std::string("'") + c + "' " + context);
  advance();
}

void Parser::expectKeyword(const char* word, const std::string& context) {
  if (!isKeyword(word)) failExpected(std::string("'") + word + "' " + context);
  advance();
}

Token Parser::expectIdentifier(const std::string& what) {
  if (tok_.kind != Token::Kind::Identifier) failExpected(what);
  Token token = tok_;
  advance();
  return token;
}

std::string Parser::expectType() {
  const char* type = tok_.kind == Token::Kind::Identifier ? lookup(kTypes, tok_.text) : nullptr;
  if (type == nullptr) failExpected("a CIM type");
  advance();
  return type;
}

void Parser::parseDocument() {
  while (tok_.kind != Token::Kind::End) {
    if (isPunct('#')) {
      parsePragma();
    } else if (isPunct('[')) {
      auto qualifiers = parseQualifierList();
      if (!isKeyword("class")) failExpected("'class' after qualifier list");
      parseClass(std::move(qualifiers));
    } else if (isKeyword("class")) {
      parseClass({});
    } else if (isKeyword("instance")) {
      parseInstance();
    } else if (isKeyword("qualifier")) {
      parseQualifierDecl();
    } else {
      failExpected("'class', 'instance', 'qualifier' or '#pragma'");
    }
  }
}

void Parser::parsePragma() {
  Pragma pragma;
  pragma.where = tok_.where;
  advance();
  expectKeyword("pragma", "after '#'");
  pragma.name = expectIdentifier("pragma name").text;
  expectPunct('(', "after pragma name");
  if (tok_.kind != Token::Kind::String) failExpected("string value of pragma");
  pragma.value = parseStrings().text;
  expectPunct(')', "after pragma value");
  if (include_ && iequals(pragma.name, "include")) {
    include_(pragma.value, pragma.where);
  } else {
    doc_.pragmas.push_back(std::move(pragma));
  }
}

void Parser::parseClass(std::vector<Qualifier> qualifiers) {
  advance();  // 'class'
  ClassDecl cls;
  cls.qualifiers = std::move(qualifiers);
  const Token name = expectIdentifier("class name");
  cls.name = name.text;
  cls.where = name.where;
  if (isPunct(':')) {
    advance();
    cls.superClass = expectIdentifier("superclass name").text;
  }
  expectPunct('{', "to open the class body");
  std::unordered_set<std::string> seen;
  while (!isPunct('}')) parseFeature(cls, seen);
  advance();
  expectPunct(';', "after class declaration");
  doc_.classes.push_back(std::move(cls));
}

void Parser::parseFeature(ClassDecl& cls, std::unordered_set<std::string>& seen) {
  PropertyDecl prop;
  if (isPunct('[')) prop.qualifiers = parseQualifierList();
  parseTypedName(prop, "property name");
  if (isPunct('(')) {
    skipMethodParameters();
    expectPunct(';', "after method declaration");
    return;
  }
  if (!seen.insert(lowered(prop.name)).second) {
    throw ParseError(prop.where,
                     "duplicate property '" + prop.name + "' in class '" + cls.name + "'");
  }
  parseArraySuffix(prop.isArray, prop.arraySize);
  if (isPunct('=')) {
    advance();
    prop.hasDefault = true;
    prop.defaultValue = parseInitializer();
  }
  expectPunct(';', "after property declaration");
  cls.properties.push_back(std::move(prop));
}

// TYPE name, or ClassName REF name.
void Parser::parseTypedName(PropertyDecl& decl, const char* noun) {
  if (tok_.kind != Token::Kind::Identifier) failExpected("type name");
  const Token first = tok_;
  if (const char* type = lookup(kTypes, first.text)) {
    decl.type = type;
    advance();
  } else {
    advance();
    if (!isKeyword("ref"))
      throw ParseError(first.where, "expected a CIM type, found " + describe(first));
    advance();
    decl.type = "ref";
    decl.refClass = first.text;
  }
  const Token name = expectIdentifier(noun);
  decl.name = name.text;
  decl.where = name.where;
}

void Parser::parseArraySuffix(bool& isArray, long& size) {
  if (!isPunct('[')) return;
  advance();
  isArray = true;
  if (tok_.kind == Token::Kind::Integer) {
    const std::string& digits = tok_.value;
    if (digits[0] == '-' || digits == "0" ||
        std::stoull(digits) > static_cast<unsigned long long>(LONG_MAX)) {
      failExpected("a positive array size");
    }
    size = std::stol(digits);
    advance();
  }
  expectPunct(']', "to close the array size");
}

// Methods are not part of the data model; their parameters are read only
// so that a malformed one is still reported.
void Parser::skipMethodParameters() {
  advance();  // '('
  if (isPunct(')')) {
    advance();
    return;
  }
  for (;;) {
    PropertyDecl param;
    if (isPunct('[')) param.qualifiers = parseQualifierList();
    parseTypedName(param, "parameter name");
    parseArraySuffix(param.isArray, param.arraySize);
    if (isPunct(')')) break;
    if (!isPunct(',')) failExpected("',' or ')' in parameter list");
    advance();
  }
  advance();
}

void Parser::parseInstance() {
  InstanceDecl inst;
  inst.where = tok_.where;
  advance();
  expectKeyword("of", "after 'instance'");
  inst.className = expectIdentifier("class name").text;
  if (isKeyword("as")) {
    advance();
    if (tok_.kind != Token::Kind::Alias) failExpected("alias ('$name') after 'as'");
    inst.alias = tok_.value;
    advance();
  }
  expectPunct('{', "to open the instance body");
  std::unordered_set<std::string> seen;
  while (!isPunct('}')) {
    const Token name = expectIdentifier("property name");
    if (!seen.insert(lowered(name.text)).second) {
      throw ParseError(name.where, "duplicate property '" + name.text + "' in instance of '" +
                                       inst.className + "'");
    }
    expectPunct('=', "after property name");
    inst.properties.emplace_back(name.text, parseInitializer());
    expectPunct(';', "after property value");
  }
  advance();
  expectPunct(';', "after instance declaration");
  doc_.instances.push_back(std::move(inst));
}

void Parser::parseQualifierDecl() {
  advance();  // 'qualifier'
  QualifierDecl decl;
  const Token name = expectIdentifier("qualifier name");
  decl.name = name.text;
  decl.where = name.where;
  expectPunct(':', "after qualifier name");
  decl.type = expectType();
  long ignoredSize = -1;
  parseArraySuffix(decl.isArray, ignoredSize);
  if (isPunct('=')) {
    advance();
    decl.hasDefault = true;
    decl.defaultValue = parseInitializer();
  }
  expectPunct(',', "before 'Scope'");
  expectKeyword("scope", "in qualifier declaration");
  expectPunct('(', "after 'Scope'");
  decl.scopes = parseNameList(kScopes, "scope name");
  if (isPunct(',')) {
    advance();
    expectKeyword("flavor", "after scope list");
    expectPunct('(', "after 'Flavor'");
    decl.flavors = parseNameList(kFlavors, "flavor name");
  }
  expectPunct(';', "after qualifier declaration");
  doc_.qualifierDecls.push_back(std::move(decl));
}

// name {',' name} ')' with each name from the table, kept as the table spells it.
template <std::size_t N>
std::vector<std::string> Parser::parseNameList(const char* const (&table)[N], const char* noun) {
  std::vector<std::string> names;
  for (;;) {
    const char* name = tok_.kind == Token::Kind::Identifier ? lookup(table, tok_.text) : nullptr;
    if (name == nullptr) failExpected(noun);
    names.emplace_back(name);
    advance();
    if (isPunct(')')) break;
    if (!isPunct(',')) failExpected("',' or ')' after " + std::string(noun));
    advance();
  }
  advance();
  return names;
}

std::vector<Qualifier> Parser::parseQualifierList() {
  advance();  // '['
  std::vector<Qualifier> qualifiers;
  for (;;) {
    qualifiers.push_back(parseQualifier());
    if (isPunct(']')) break;
    if (!isPunct(',')) failExpected("',' or ']' in qualifier list");
    advance();
  }
  advance();
  return qualifiers;
}

Qualifier Parser::parseQualifier() {
  Qualifier qual;
  const Token name = expectIdentifier("qualifier name");
  qual.name = name.text;
  qual.where = name.where;
  if (isPunct('(')) {
    advance();
    qual.hasValue = true;
    qual.value.where = tok_.where;
    qual.value.elements.push_back(parseConstant());
    expectPunct(')', "after qualifier value");
  } else if (isPunct('{')) {
    qual.hasValue = true;
    qual.value = parseArrayInitializer();
  }
  if (isPunct(':')) {
    advance();
    do {
      const char* flavor =
          tok_.kind == Token::Kind::Identifier ? lookup(kFlavors, tok_.text) : nullptr;
      if (flavor == nullptr) failExpected("flavor name");
      qual.flavors.emplace_back(flavor);
      advance();
    } while (tok_.kind == Token::Kind::Identifier);
  }
  return qual;
}

Initializer Parser::parseInitializer() {
  if (isPunct('{')) return parseArrayInitializer();
  Initializer init;
  init.where = tok_.where;
  if (tok_.kind == Token::Kind::Alias) {
    init.alias = tok_.value;
    advance();
  } else {
    init.elements.push_back(parseConstant());
  }
  return init;
}

Initializer Parser::parseArrayInitializer() {
  Initializer init;
  init.isArray = true;
  init.where = tok_.where;
  advance();  // '{'
  if (isPunct('}')) {
    advance();
    return init;
  }
  for (;;) {
    init.elements.push_back(parseConstant());
    if (isPunct('}')) break;
    if (!isPunct(',')) failExpected("',' or '}' in array value");
    advance();
  }
  advance();
  return init;
}

Literal Parser::parseConstant() {
  Literal lit;
  lit.where = tok_.where;
  switch (tok_.kind) {
    case Token::Kind::String:
      return parseStrings();
    case Token::Kind::Integer:
      lit.kind = Literal::Kind::Integer;
      lit.text = tok_.value;
      break;
    case Token::Kind::Real:
      lit.kind = Literal::Kind::Real;
      lit.text = tok_.value;
      break;
    case Token::Kind::Char:
      lit.kind = Literal::Kind::Char;
      lit.text = tok_.value;
      break;
    default:
      if (isKeyword("true") || isKeyword("false")) {
        lit.kind = Literal::Kind::Boolean;
        lit.text = lowered(tok_.text);
      } else if (!isKeyword("null")) {
        failExpected("a value");
      }
  }
  advance();
  return lit;
}

// Adjacent strings form one value.
Literal Parser::parseStrings() {
  Literal lit;
  lit.kind = Literal::Kind::String;
  lit.where = tok_.where;
  while (tok_.kind == Token::Kind::String) {
    lit.text += tok_.value;
    advance();
  }
  return lit;
}

void parseInto(const std::string& text, const std::string& fileName, Document& doc,
               IncludeHandler include) {
  Parser(text, fileName, doc, std::move(include)).parseDocument();
}

// Reads the whole file; on failure returns false with the system's reason.
bool readFile(const std::string& path, std::string& text, std::string& why) {
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                       &std::fclose);
  if (!file) {
    why = std::strerror(errno);
    return false;
  }
  char buffer[65536];
  std::size_t n;
  while ((n = std::fread(buffer, 1, sizeof buffer, file.get())) > 0) text.append(buffer, n);
  if (std::ferror(file.get())) {
    why = std::strerror(errno);
    return false;
  }
  return true;
}

// Follows includes depth-first so that included declarations land where the
// pragma stood; remembers the files being read to refuse cycles.
class IncludeReader {
 public:
  void parse(const std::string& path, Document& doc, const Location* from) {
    std::error_code ec;
    std::string key = std::filesystem::weakly_canonical(path, ec).string();
    if (ec) key = path;
    if (from != nullptr && std::find(active_.begin(), active_.end(), key) != active_.end()) {
      throw ParseError(*from, "include cycle: '" + path + "' is already being read");
    }
    if (active_.size() > kMaxIncludeDepth) {
      throw ParseError(*from, "includes nested deeper than " + std::to_string(kMaxIncludeDepth));
    }
    std::string text, why;
    if (!readFile(path, text, why)) {
      if (from == nullptr) throw ParseError({path, 0, 0}, "cannot open: " + why);
      throw ParseError(*from, "cannot open included file '" + path + "': " + why);
    }
    active_.push_back(key);
    parseInto(text, path, doc, [&](const std::string& name, const Location& where) {
      parse(resolve(path, name), doc, &where);
    });
    active_.pop_back();
  }

 private:
  static std::string resolve(const std::string& includer, const std::string& name) {
    const std::filesystem::path target(name);
    if (target.is_absolute()) return name;
    return (std::filesystem::path(includer).parent_path() / target).string();
  }

  std::vector<std::string> active_;
};

std::string locationPrefix(const Location& where) {
  return where.file + ":" + std::to_string(where.line) + ":" + std::to_string(where.column) + ": ";
}

}  // namespace

ParseError::ParseError(Location where, const std::string& message)
    : std::runtime_error(locationPrefix(where) + message), where_(std::move(where)) {}

Document parseMof(const std::string& text, const std::string& fileName) {
  Document doc;
  parseInto(text, fileName, doc, nullptr);
  return doc;
}

Document parseMofFile(const std::string& path) {
  Document doc;
  IncludeReader().parse(path, doc, nullptr);
  return doc;
}

}  // namespace NZARVEK20::mof
