#include <algorithm>
#include <sstream>

#include "vrxcore/repository_instance.h"

namespace NZARVEK20 {
namespace {

class TRepositoryQualifierDecl : public ICIMQualifierDecl {
 public:
  TRepositoryQualifierDecl(const std::string& name, TCIMType type, bool isArray)
      : name_(name), type_(type), isArray_(isArray) {}
  const std::string& GetName(TCIMOptions) override { return name_; }
  TCIMType GetType(TCIMOptions) override { return type_; }
  bool IsArray(TCIMOptions) override { return isArray_; }
  const TCIMValue& GetDefaultValue(TCIMOptions) override { return default_; }

 private:
  std::string name_;
  TCIMType type_;
  bool isArray_;
  TCIMValue default_;
};

[[noreturn]] void fail(EVRXStatusCode code, const std::string& detail) {
  throw TVRXException(TVRXStatusCode(code), detail);
}

// An instance's own path already spells its class and key names as the namespace does.
std::string ownKey(TRepositoryInstance& instance) { return instance.GetReference({}).ToString(); }

}  // namespace

boost::shared_ptr<TRepositoryNamespace> TRepositoryNamespace::Create(const std::string& name) {
  return boost::shared_ptr<TRepositoryNamespace>(new TRepositoryNamespace(name));
}

std::vector<boost::shared_ptr<ICIMClass>> TRepositoryNamespace::GetClasses() const {
  return std::vector<boost::shared_ptr<ICIMClass>>(classOrder_.begin(), classOrder_.end());
}

boost::shared_ptr<TRepositoryClass> TRepositoryNamespace::FindClass(
    const std::string& className) const {
  auto found = classes_.find(className);
  return found == classes_.end() ? nullptr : found->second;
}

boost::shared_ptr<ICIMNamespace> TRepositoryNamespace::GetNamespaceProvider(TCIMOptions) {
  return shared_from_this();
}

void TRepositoryNamespace::SetUpcallNamespace(boost::shared_ptr<ICIMNamespace> ns, TCIMOptions) {
  upcall_ = std::move(ns);
}

void TRepositoryNamespace::AddUnderlyingNamespace(boost::shared_ptr<ICIMNamespace> ns,
                                                  TCIMOptions) {
  underlying_.push_back(std::move(ns));
}

boost::shared_ptr<ICIMClass> TRepositoryNamespace::AllocateClass(const std::string& className,
                                                                 const std::string& superClassName,
                                                                 TCIMOptions) {
  if (className.empty()) fail(VRX_INVALID_PARAMETER, "a class without a name");
  if (FindClass(className)) fail(VRX_ALREADY_EXISTS, "class " + className);
  boost::shared_ptr<TRepositoryClass> superClass;
  if (!superClassName.empty()) {
    superClass = FindClass(superClassName);
    if (!superClass) fail(VRX_INVALID_CLASS, superClassName);
  }
  auto cimClass = boost::shared_ptr<TRepositoryClass>(
      new TRepositoryClass(shared_from_this(), className, superClass));
  classes_[className] = cimClass;
  classOrder_.push_back(cimClass);
  return cimClass;
}

boost::shared_ptr<ICIMClass> TRepositoryNamespace::GetClass(const std::string& className,
                                                            TCIMOptions) {
  auto cimClass = FindClass(className);
  if (!cimClass) fail(VRX_INVALID_CLASS, className);
  return cimClass;
}

void TRepositoryNamespace::EnumerateRootClasses(const TClassCallback& callback, TCIMOptions) {
  for (const auto& cimClass : classOrder_)
    if (cimClass->GetSuperClassName({}).empty() && !callback(cimClass)) return;
}

void TRepositoryNamespace::EnumerateProviders(const TNameCallback&, TCIMOptions) {
  // A repository namespace stores; it has no providers of its own.
}

boost::shared_ptr<ICIMQualifierDecl> TRepositoryNamespace::AllocateQualifierDecl(
    const std::string& name, TCIMType type, bool isArray, TCIMOptions) {
  const std::string key = CIMNameKey(name);
  if (qualifiers_.count(key)) fail(VRX_ALREADY_EXISTS, "qualifier " + name);
  auto decl =
      boost::shared_ptr<ICIMQualifierDecl>(new TRepositoryQualifierDecl(name, type, isArray));
  qualifiers_[key] = decl;
  qualifierOrder_.push_back(decl);
  return decl;
}

boost::shared_ptr<ICIMQualifierDecl> TRepositoryNamespace::GetQualifierDecl(const std::string& name,
                                                                            TCIMOptions) {
  auto found = qualifiers_.find(CIMNameKey(name));
  return found == qualifiers_.end() ? nullptr : found->second;
}

void TRepositoryNamespace::EnumerateQualifierDecls(const TQualifierDeclCallback& callback,
                                                   TCIMOptions) {
  for (const auto& decl : qualifierOrder_)
    if (!callback(decl)) return;
}

void TRepositoryNamespace::Subscribe(const TInstanceCallback& callback, TCIMOptions) {
  subscribers_.push_back(callback);
}

std::string TRepositoryNamespace::IndexKey(const TCIMReference& path) const {
  auto cimClass = FindClass(path.GetInstanceClassName());
  if (!cimClass) fail(VRX_INVALID_CLASS, path.GetInstanceClassName());
  TCIMReference::TKeyBindings keys;
  for (const auto& key : path.GetKeyBindings()) {
    const size_t index = cimClass->IndexOf(key.first);
    const std::string& name =
        index == std::string::npos ? key.first : cimClass->Properties()[index]->GetName({});
    keys.emplace_back(name, key.second);
  }
  return TCIMReference(cimClass->GetName({}), std::move(keys)).ToString();
}

TPathIndex::Slot* TRepositoryNamespace::Lookup(const std::string& key) {
  return index_.find(std::hash<std::string>()(key),
                     [&](TRepositoryInstance& instance) { return ownKey(instance) == key; });
}

void TRepositoryNamespace::Store(boost::shared_ptr<TRepositoryInstance> instance) {
  const std::string key = ownKey(*instance);
  if (Lookup(key)) fail(VRX_ALREADY_EXISTS, key);
  instance->MarkCommitted();
  index_.insert(std::hash<std::string>()(key), instance.get());
  instances_.push_back(instance);
  for (const auto& subscriber : subscribers_) subscriber(instance);
}

TPathIndex::Slot& TRepositoryNamespace::Find(const TCIMReference& path) {
  TPathIndex::Slot* entry = Lookup(IndexKey(path));
  if (!entry) fail(VRX_NOT_FOUND, path.ToString());
  return *entry;
}

std::vector<boost::shared_ptr<ICIMInstance>>::iterator TRepositoryNamespace::PositionOf(
    const ICIMInstance* instance) {
  return std::find_if(instances_.begin(), instances_.end(),
                      [&](const auto& held) { return held.get() == instance; });
}

boost::shared_ptr<ICIMInstance> TRepositoryNamespace::GetInstance(const TCIMReference& path,
                                                                  TCIMOptions) {
  return Find(path).item->shared_from_this();
}

void TRepositoryNamespace::DeleteInstance(const TCIMReference& path, TCIMOptions) {
  TPathIndex::Slot& entry = Find(path);
  instances_.erase(PositionOf(entry.item));
  index_.erase(&entry);
}

void TRepositoryNamespace::ModifyInstance(boost::shared_ptr<ICIMInstance> instance, TCIMOptions) {
  auto replacement = boost::dynamic_pointer_cast<TRepositoryInstance>(instance);
  if (!replacement || replacement->IsCommitted({}))
    fail(VRX_INVALID_PARAMETER, "ModifyInstance takes a new, uncommitted instance");
  replacement->CheckKeys();
  TPathIndex::Slot& entry = Find(replacement->GetReference({}));
  replacement->MarkCommitted();
  *PositionOf(entry.item) = replacement;
  entry.item = replacement.get();
}

void TRepositoryNamespace::ExecuteQuery(const std::string& query, const TInstanceCallback& callback,
                                        TCIMOptions) {
  std::istringstream words(query);
  std::string select, star, from, className, rest;
  words >> select >> star >> from >> className >> rest;
  if (CIMNameKey(select) != "select" || star != "*" || CIMNameKey(from) != "from" ||
      className.empty() || !rest.empty())
    fail(VRX_NOT_SUPPORTED, "only \"SELECT * FROM Class\" is supported: " + query);
  GetClass(className, {})->EnumerateInstances(callback, true, {});
}

void TRepositoryNamespace::ClearInstances(TCIMOptions) {
  instances_.clear();
  index_.clear();
}

}  // namespace NZARVEK20
