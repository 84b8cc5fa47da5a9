#include "vrxcore/mof_loader.h"

#include <map>

namespace NZARVEK20 {
namespace {

using mof::Initializer;
using mof::Literal;
using mof::Location;
using mof::ParseError;

bool literalFits(Literal::Kind kind, ECIMType type) {
  switch (type) {
    case CIM_BOOLEAN:
      return kind == Literal::Kind::Boolean;
    case CIM_REAL32:
    case CIM_REAL64:
      return kind == Literal::Kind::Real || kind == Literal::Kind::Integer;
    case CIM_STRING:
    case CIM_CHAR16:
    case CIM_DATETIME:
    case CIM_REFERENCE:
      return kind == Literal::Kind::String || kind == Literal::Kind::Char;
    default:
      return kind == Literal::Kind::Integer;
  }
}

class TLoader {
 public:
  explicit TLoader(TRepositoryNamespace& ns) : ns_(ns) {}

  void Load(const mof::Document& document) {
    for (const auto& decl : document.qualifierDecls) DeclareQualifier(decl);
    for (const auto& decl : document.classes) DeclareClass(decl);
    for (const auto& decl : document.instances) CommitInstance(decl);
  }

 private:
  // Runs `step`, turning the repository's refusal into an error at `where`.
  template <class Step>
  void At(const Location& where, Step step) {
    try {
      step();
    } catch (const TVRXException& e) {
      throw ParseError(where,
                       std::string(e.what()) + (e.GetDetail().empty() ? "" : ": " + e.GetDetail()));
    }
  }

  TCIMValue Literal(const mof::Literal& literal, TCIMType type) {
    if (literal.kind == Literal::Kind::Null) return TCIMValue();
    if (!literalFits(literal.kind, type))
      throw ParseError(literal.where, "expected a " + type.ToString() + " value");
    TCIMValue value;
    At(literal.where, [&] { value = TCIMValue(type, literal.text, nullptr); });
    return value;
  }

  TCIMValue Value(const Initializer& init, TCIMType type, bool isArray) {
    if (!init.alias.empty()) {
      auto found = aliases_.find(init.alias);
      if (found == aliases_.end()) throw ParseError(init.where, "unknown alias $" + init.alias);
      return TCIMValue(found->second);
    }
    if (init.isArray != isArray)
      throw ParseError(init.where, isArray ? "expected an array value { ... }"
                                           : "expected a single value, found an array");
    if (!isArray) return Literal(init.elements.at(0), type);
    std::vector<TCIMValue> elements;
    for (const auto& literal : init.elements) elements.push_back(Literal(literal, type));
    return TCIMValue(type, static_cast<unsigned int>(elements.size()), elements);
  }

  TCIMOptions Qualifiers(const std::vector<mof::Qualifier>& qualifiers) {
    TCIMOptions values;
    for (const auto& qualifier : qualifiers) {
      auto decl = ns_.GetQualifierDecl(qualifier.name, {});
      if (!decl) throw ParseError(qualifier.where, "undeclared qualifier " + qualifier.name);
      const TCIMType type = decl->GetType({});
      if (!qualifier.hasValue && static_cast<ECIMType>(type) != CIM_BOOLEAN)
        throw ParseError(qualifier.where, "qualifier " + qualifier.name + " needs a value");
      values[decl->GetName({})] =
          qualifier.hasValue ? Value(qualifier.value, type, decl->IsArray({})) : TCIMValue(true);
    }
    return values;
  }

  TCIMType Type(const std::string& name, const Location& where) {
    if (name == "ref") return CIM_REFERENCE;
    TCIMType type;
    At(where, [&] { type = TCIMType(name); });
    return type;
  }

  void DeclareQualifier(const mof::QualifierDecl& decl) {
    const TCIMType type = Type(decl.type, decl.where);
    auto known = ns_.GetQualifierDecl(decl.name, {});
    if (known && static_cast<ECIMType>(known->GetType({})) == static_cast<ECIMType>(type) &&
        known->IsArray({}) == decl.isArray)
      return;  // the same declaration again, as in concatenated schema files
    At(decl.where, [&] { ns_.AllocateQualifierDecl(decl.name, type, decl.isArray, {}); });
  }

  void DeclareClass(const mof::ClassDecl& decl) {
    if (!decl.superClass.empty() && !ns_.FindClass(decl.superClass))
      throw ParseError(decl.where, "unknown superclass " + decl.superClass);
    if (ns_.FindClass(decl.name))
      throw ParseError(decl.where, "class " + decl.name + " is declared twice");
    boost::shared_ptr<ICIMClass> cimClass;
    At(decl.where, [&] { cimClass = ns_.AllocateClass(decl.name, decl.superClass, {}); });
    for (const auto& entry : Qualifiers(decl.qualifiers))
      At(decl.where, [&] { cimClass->SetQualifier(entry.first, entry.second, {}); });
    for (const auto& property : decl.properties) DeclareProperty(*cimClass, property);
  }

  void DeclareProperty(ICIMClass& cimClass, const mof::PropertyDecl& decl) {
    const TCIMType type = Type(decl.type, decl.where);
    if (!decl.refClass.empty() && !ns_.FindClass(decl.refClass))
      throw ParseError(decl.where, "unknown class " + decl.refClass + " of reference " + decl.name);
    const TCIMValue initial =
        decl.hasDefault ? Value(decl.defaultValue, type, decl.isArray) : TCIMValue();
    const TCIMOptions qualifiers = Qualifiers(decl.qualifiers);
    At(decl.where, [&] {
      cimClass.AddProperty(decl.name, type, decl.isArray, decl.refClass, qualifiers, initial, {});
    });
  }

  void CommitInstance(const mof::InstanceDecl& decl) {
    auto cimClass = ns_.FindClass(decl.className);
    if (!cimClass) throw ParseError(decl.where, "unknown class " + decl.className);
    boost::shared_ptr<ICIMInstance> instance;
    At(decl.where, [&] { instance = cimClass->AllocateInstance({}); });
    for (const auto& property : decl.properties) {
      auto propertyDecl = cimClass->GetProperty(property.first, {});
      if (!propertyDecl)
        throw ParseError(property.second.where,
                         "class " + decl.className + " has no property " + property.first);
      const TCIMValue value =
          Value(property.second, propertyDecl->GetType({}), propertyDecl->IsArray({}));
      At(property.second.where, [&] { instance->SetPropertyValue(property.first, value, {}); });
    }
    At(decl.where, [&] { instance->Commit({}); });
    if (!decl.alias.empty()) aliases_[decl.alias] = instance->GetReference({});
  }

  TRepositoryNamespace& ns_;
  std::map<std::string, TCIMReference> aliases_;
};

}  // namespace

void LoadMof(TRepositoryNamespace& ns, const mof::Document& document) {
  TLoader(ns).Load(document);
}

void LoadMofFile(TRepositoryNamespace& ns, const std::string& path) {
  LoadMof(ns, mof::parseMofFile(path));
}

}  // namespace NZARVEK20
