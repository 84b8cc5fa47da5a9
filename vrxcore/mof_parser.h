// Reader of the MOF subset our schema is written in: pragmas, qualifier
// declarations, classes (properties; methods are read and dropped) and
// instances, turned into plain data. Nothing here knows about the
// repository; checking types and inheritance is the loader's job.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace NZARVEK20::mof {

struct Location {
  std::string file;
  unsigned line = 0, column = 0;  // 1-based; a column counts bytes, a tab is one
};

// what() reads "FILE:LINE:COLUMN: message".
class ParseError : public std::runtime_error {
 public:
  ParseError(Location where, const std::string& message);
  const Location& where() const { return where_; }

 private:
  Location where_;
};

struct Literal {
  enum class Kind { Null, Integer, Real, String, Char, Boolean } kind = Kind::Null;
  // Integer: canonical decimal ('-' when negative); Real: as written;
  // String/Char: decoded UTF-8 text; Boolean: "true" or "false"; Null: empty.
  std::string text;
  Location where;
};

// A scalar has one element; `$alias` sets alias and has no elements.
struct Initializer {
  bool isArray = false;
  std::vector<Literal> elements;
  std::string alias;
  Location where;
};

struct Qualifier {
  std::string name;
  bool hasValue = false;  // a bare [Key] has none and means true
  Initializer value;
  std::vector<std::string> flavors;  // canonical spelling, e.g. "ToSubclass"
  Location where;
};

struct PropertyDecl {
  std::vector<Qualifier> qualifiers;
  std::string name;
  std::string type;  // lower-case CIM type name, or "ref"
  std::string refClass;
  bool isArray = false;
  long arraySize = -1;  // -1 when the array is unbounded
  bool hasDefault = false;
  Initializer defaultValue;
  Location where;
};

struct ClassDecl {
  std::vector<Qualifier> qualifiers;
  std::string name, superClass;
  std::vector<PropertyDecl> properties;
  Location where;
};

struct QualifierDecl {
  std::string name;
  std::string type;  // lower-case CIM type name
  bool isArray = false;
  bool hasDefault = false;
  Initializer defaultValue;
  std::vector<std::string> scopes;   // lower-case, e.g. "class", "any"
  std::vector<std::string> flavors;  // canonical spelling
  Location where;
};

struct InstanceDecl {
  std::string className, alias;
  std::vector<std::pair<std::string, Initializer>> properties;
  Location where;
};

struct Pragma {
  std::string name, value;
  Location where;
};

struct Document {
  std::vector<Pragma> pragmas;
  std::vector<QualifierDecl> qualifierDecls;
  std::vector<ClassDecl> classes;
  std::vector<InstanceDecl> instances;
};

// Parses MOF text; fileName only labels locations. `#pragma include` is
// kept as an ordinary pragma here, since text has no folder to resolve it in.
Document parseMof(const std::string& text, const std::string& fileName);

// Parses a file and merges `#pragma include("x.mof")` in place, resolved
// relative to the including file. Throws ParseError on unreadable files
// (line 0, column 0), include cycles and includes nested deeper than 16.
Document parseMofFile(const std::string& path);

}  // namespace NZARVEK20::mof
