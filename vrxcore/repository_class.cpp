#include <boost/make_shared.hpp>
#include <unordered_map>
#include <vector>

#include "vrxcore/repository_instance.h"

namespace NZARVEK20 {
namespace {

// Qualifiers that a subclass inherits and may not contradict.
bool isInheritedQualifier(const std::string& key) {
  return key == "key" || key == "association" || key == "aggregation" || key == "aggregate" ||
         key == "propagated";
}

bool isTrue(const TCIMValue& value) {
  return !value.IsNull() && static_cast<ECIMType>(value.GetType()) == CIM_BOOLEAN &&
         value.GetBoolean();
}

TCIMValue findQualifier(const TCIMOptions& qualifiers, const std::string& name) {
  const std::string wanted = CIMNameKey(name);
  for (const auto& entry : qualifiers)
    if (CIMNameKey(entry.first) == wanted) return entry.second;
  return TCIMValue();
}

[[noreturn]] void refuse(const std::string& what) {
  throw TVRXException(TVRXStatusCode(VRX_INVALID_PARAMETER), what);
}

}  // namespace

TRepositoryPropertyDecl::TRepositoryPropertyDecl(const std::string& name, TCIMType type,
                                                 bool isArray, const std::string& refClass,
                                                 const TCIMOptions& qualifiers,
                                                 const TCIMValue& defaultValue)
    : name_(name),
      type_(type),
      isArray_(isArray),
      isKey_(isTrue(findQualifier(qualifiers, "Key"))),
      refClass_(refClass),
      qualifiers_(qualifiers) {
  default_ = Conform(defaultValue);
}

TCIMValue TRepositoryPropertyDecl::GetQualifier(const std::string& name, TCIMOptions) {
  return findQualifier(qualifiers_, name);
}

TCIMValue TRepositoryPropertyDecl::Conform(const TCIMValue& value) const {
  if (value.IsNull()) return TCIMValue();
  if (value.IsArray() != isArray_)
    throw TVRXException(TVRXStatusCode(VRX_TYPE_MISMATCH),
                        isArray_ ? "a single value for an array" : "an array for a single value");
  return value.ConvertTo(type_);
}

TRepositoryClass::TRepositoryClass(boost::weak_ptr<TRepositoryNamespace> ns,
                                   const std::string& name,
                                   boost::shared_ptr<TRepositoryClass> superClass)
    : ns_(std::move(ns)), name_(name), super_(std::move(superClass)) {
  if (!super_) return;
  super_->hasSubclasses_ = true;
  properties_ = super_->properties_;
  byName_ = super_->byName_;
  for (const auto& entry : super_->qualifiers_)
    if (isInheritedQualifier(CIMNameKey(entry.first))) qualifiers_.insert(entry);
}

boost::shared_ptr<ICIMNamespace> TRepositoryClass::GetNamespace(TCIMOptions) { return ns_.lock(); }

bool TRepositoryClass::QualifierIsTrue(const std::string& name) {
  return isTrue(findQualifier(qualifiers_, name));
}

bool TRepositoryClass::IsAssociation(TCIMOptions) { return QualifierIsTrue("Association"); }

bool TRepositoryClass::IsAbstract(TCIMOptions) { return QualifierIsTrue("Abstract"); }

TCIMValue TRepositoryClass::GetQualifier(const std::string& name, TCIMOptions) {
  return findQualifier(qualifiers_, name);
}

void TRepositoryClass::EnumerateKeyNames(const TNameCallback& callback, TCIMOptions) {
  for (const auto& property : properties_)
    if (property->IsKey({}) && !callback(property->GetName({}))) return;
}

size_t TRepositoryClass::IndexOf(const std::string& name) const {
  auto found = byName_.find(name);
  return found == byName_.end() ? std::string::npos : found->second;
}

boost::shared_ptr<ICIMPropertyDecl> TRepositoryClass::GetProperty(const std::string& name,
                                                                  TCIMOptions) {
  const size_t index = IndexOf(name);
  return index == std::string::npos ? nullptr : properties_[index];
}

boost::shared_ptr<ICIMInstance> TRepositoryClass::AllocateInstance(TCIMOptions) {
  if (IsAbstract({})) throw TVRXException(TVRXStatusCode(VRX_ABSTRACT_CLASS), name_);
  hasInstances_ = true;
  return boost::make_shared<TRepositoryInstance>(shared_from_this());
}

void TRepositoryClass::EnumerateInstances(const TInstanceCallback& callback, bool deep,
                                          TCIMOptions) {
  auto ns = ns_.lock();
  if (!ns) return;
  // The matching instances are gathered first, so that a callback may commit without upsetting
  // the walk; whether a class matches is decided once per class, not once per instance.
  std::unordered_map<const TRepositoryClass*, bool> classMatches;
  std::vector<boost::shared_ptr<ICIMInstance>> matching;
  for (const auto& instance : ns->GetInstances()) {
    const auto& cimClass = static_cast<const TRepositoryInstance&>(*instance).Class();
    auto known = classMatches.find(cimClass.get());
    if (known == classMatches.end()) {
      const bool matches = cimClass.get() == this || (deep && cimClass->IsSubclassOf(name_, {}));
      known = classMatches.emplace(cimClass.get(), matches).first;
    }
    if (known->second) matching.push_back(instance);
  }
  for (const auto& instance : matching)
    if (!callback(instance)) return;
}

const std::string& TRepositoryClass::GetSuperClassName(TCIMOptions) {
  static const std::string none;
  return super_ ? super_->name_ : none;
}

bool TRepositoryClass::IsSubclassOf(const std::string& className, TCIMOptions) {
  const std::string wanted = CIMNameKey(className);
  for (auto ancestor = super_; ancestor; ancestor = ancestor->super_)
    if (CIMNameKey(ancestor->name_) == wanted) return true;
  return false;
}

void TRepositoryClass::EnumerateProperties(const TPropertyDeclCallback& callback, TCIMOptions) {
  for (const auto& property : properties_)
    if (!callback(property)) return;
}

void TRepositoryClass::AddProperty(const std::string& name, TCIMType type, bool isArray,
                                   const std::string& refClass, const TCIMOptions& qualifiers,
                                   const TCIMValue& defaultValue, TCIMOptions) {
  if (hasSubclasses_ || hasInstances_)
    refuse("class " + name_ + " already has subclasses or instances");
  auto decl = boost::shared_ptr<TRepositoryPropertyDecl>(
      new TRepositoryPropertyDecl(name, type, isArray, refClass, qualifiers, defaultValue));
  const size_t index = IndexOf(name);
  const bool inherited = index != std::string::npos && super_ && super_->IndexOf(name) == index;
  if (index != std::string::npos && !inherited)
    refuse("property " + name + " is declared twice in class " + name_);
  if (inherited) {
    if (properties_[index]->IsKey({}) != decl->IsKey({}))
      refuse("property " + name + " of class " + name_ + " cannot change its Key qualifier");
    properties_[index] = decl;
    return;
  }
  if (decl->IsKey({}) && super_)
    refuse("subclass " + name_ + " cannot add the key property " + name);
  byName_[name] = properties_.size();
  properties_.push_back(decl);
}

void TRepositoryClass::SetQualifier(const std::string& name, const TCIMValue& value, TCIMOptions) {
  const std::string key = CIMNameKey(name);
  if (super_ && isInheritedQualifier(key) &&
      isTrue(findQualifier(super_->qualifiers_, name)) != isTrue(value))
    refuse("class " + name_ + " cannot override the inherited qualifier " + name);
  for (auto it = qualifiers_.begin(); it != qualifiers_.end(); ++it)
    if (CIMNameKey(it->first) == key) {
      qualifiers_.erase(it);
      break;
    }
  qualifiers_[name] = value;
}

}  // namespace NZARVEK20
