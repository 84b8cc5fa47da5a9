// The in-memory CIM repository: one namespace with its classes, qualifier
// declarations and committed instances.
#pragma once

#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "common/open_addressing.h"
#include "host/cim_interfaces.h"
#include "vrxcore/cim_name.h"

namespace NZARVEK20 {

class TRepositoryClass;
class TRepositoryInstance;

// Committed instances by the hash of their path: a commit among a hundred thousand instances
// reads one slot, not a chain of nodes, and no path is held twice as text.
using TPathIndex = common::OpenAddressing<TRepositoryInstance>;

class TRepositoryNamespace : public ICIMNamespace,
                             public boost::enable_shared_from_this<TRepositoryNamespace> {
 public:
  static boost::shared_ptr<TRepositoryNamespace> Create(const std::string& name);

  // The namespace's own name ("root/qelto").
  const std::string& GetName() const { return name_; }
  // Every committed instance, in commit order.
  const std::vector<boost::shared_ptr<ICIMInstance>>& GetInstances() const { return instances_; }
  // Classes in the order they were declared.
  std::vector<boost::shared_ptr<ICIMClass>> GetClasses() const;
  // Null when there is no class of that name.
  boost::shared_ptr<TRepositoryClass> FindClass(const std::string& className) const;

  boost::shared_ptr<ICIMNamespace> GetNamespaceProvider(TCIMOptions options) override;
  void SetUpcallNamespace(boost::shared_ptr<ICIMNamespace> ns, TCIMOptions options) override;
  void AddUnderlyingNamespace(boost::shared_ptr<ICIMNamespace> ns, TCIMOptions options) override;
  boost::shared_ptr<ICIMClass> AllocateClass(const std::string& className,
                                             const std::string& superClassName,
                                             TCIMOptions options) override;
  boost::shared_ptr<ICIMClass> GetClass(const std::string& className, TCIMOptions options) override;
  void EnumerateRootClasses(const TClassCallback& callback, TCIMOptions options) override;
  void EnumerateProviders(const TNameCallback& callback, TCIMOptions options) override;
  boost::shared_ptr<ICIMQualifierDecl> AllocateQualifierDecl(const std::string& name, TCIMType type,
                                                             bool isArray,
                                                             TCIMOptions options) override;
  boost::shared_ptr<ICIMQualifierDecl> GetQualifierDecl(const std::string& name,
                                                        TCIMOptions options) override;
  void EnumerateQualifierDecls(const TQualifierDeclCallback& callback,
                               TCIMOptions options) override;
  void Subscribe(const TInstanceCallback& callback, TCIMOptions options) override;
  boost::shared_ptr<ICIMInstance> GetInstance(const TCIMReference& path,
                                              TCIMOptions options) override;
  void DeleteInstance(const TCIMReference& path, TCIMOptions options) override;
  void ModifyInstance(boost::shared_ptr<ICIMInstance> instance, TCIMOptions options) override;
  void ExecuteQuery(const std::string& query, const TInstanceCallback& callback,
                    TCIMOptions options) override;
  void ClearInstances(TCIMOptions options) override;

  // Called by an instance's Commit.
  void Store(boost::shared_ptr<TRepositoryInstance> instance);

 private:
  explicit TRepositoryNamespace(const std::string& name) : name_(name) {}
  // The path as this namespace spells it, so that lookups ignore the case
  // of names but not of values.
  std::string IndexKey(const TCIMReference& path) const;
  // The entry of the instance whose path IndexKey spells `key`, or nullptr.
  TPathIndex::Slot* Lookup(const std::string& key);
  // The entry of the instance at `path`; throws (NOT_FOUND) when there is none.
  TPathIndex::Slot& Find(const TCIMReference& path);
  std::vector<boost::shared_ptr<ICIMInstance>>::iterator PositionOf(const ICIMInstance* instance);

  std::string name_;
  std::map<std::string, boost::shared_ptr<TRepositoryClass>, TCIMNameOrder> classes_;
  std::vector<boost::shared_ptr<TRepositoryClass>> classOrder_;
  std::map<std::string, boost::shared_ptr<ICIMQualifierDecl>> qualifiers_;
  std::vector<boost::shared_ptr<ICIMQualifierDecl>> qualifierOrder_;
  std::vector<boost::shared_ptr<ICIMInstance>> instances_;
  // Committed instances by the hash of their path as IndexKey spells it.
  TPathIndex index_;
  std::vector<TInstanceCallback> subscribers_;
  std::vector<boost::shared_ptr<ICIMNamespace>> underlying_;
  boost::shared_ptr<ICIMNamespace> upcall_;
};

class TRepositoryPropertyDecl : public ICIMPropertyDecl {
 public:
  TRepositoryPropertyDecl(const std::string& name, TCIMType type, bool isArray,
                          const std::string& referenceClassName, const TCIMOptions& qualifiers,
                          const TCIMValue& defaultValue);
  TCIMType GetType(TCIMOptions) override { return type_; }
  bool IsArray(TCIMOptions) override { return isArray_; }
  const std::string& GetName(TCIMOptions) override { return name_; }
  bool IsKey(TCIMOptions) override { return isKey_; }
  const std::string& GetReferenceClassName(TCIMOptions) override { return refClass_; }
  TCIMValue GetQualifier(const std::string& name, TCIMOptions options) override;
  const TCIMValue& GetDefaultValue(TCIMOptions) override { return default_; }

  // `value` as this property holds it; throws (13) when it does not convert.
  TCIMValue Conform(const TCIMValue& value) const;

 private:
  std::string name_;
  TCIMType type_;
  bool isArray_;
  bool isKey_;
  std::string refClass_;
  TCIMOptions qualifiers_;
  TCIMValue default_;
};

class TRepositoryClass : public ICIMClass, public boost::enable_shared_from_this<TRepositoryClass> {
 public:
  TRepositoryClass(boost::weak_ptr<TRepositoryNamespace> ns, const std::string& name,
                   boost::shared_ptr<TRepositoryClass> superClass);

  const std::string& GetName(TCIMOptions) override { return name_; }
  boost::shared_ptr<ICIMNamespace> GetNamespace(TCIMOptions options) override;
  bool IsAssociation(TCIMOptions options) override;
  void EnumerateKeyNames(const TNameCallback& callback, TCIMOptions options) override;
  boost::shared_ptr<ICIMPropertyDecl> GetProperty(const std::string& name,
                                                  TCIMOptions options) override;
  boost::shared_ptr<ICIMInstance> AllocateInstance(TCIMOptions options) override;
  void EnumerateInstances(const TInstanceCallback& callback, bool deep,
                          TCIMOptions options) override;
  const std::string& GetSuperClassName(TCIMOptions options) override;
  bool IsAbstract(TCIMOptions options) override;
  bool IsSubclassOf(const std::string& className, TCIMOptions options) override;
  void EnumerateProperties(const TPropertyDeclCallback& callback, TCIMOptions options) override;
  TCIMValue GetQualifier(const std::string& name, TCIMOptions options) override;
  void AddProperty(const std::string& name, TCIMType type, bool isArray,
                   const std::string& referenceClassName, const TCIMOptions& qualifiers,
                   const TCIMValue& defaultValue, TCIMOptions options) override;
  void SetQualifier(const std::string& name, const TCIMValue& value, TCIMOptions options) override;

  const std::vector<boost::shared_ptr<TRepositoryPropertyDecl>>& Properties() const {
    return properties_;
  }
  // The position of a property in Properties(), or npos.
  size_t IndexOf(const std::string& name) const;
  bool HasSubclasses() const { return hasSubclasses_; }

 private:
  bool QualifierIsTrue(const std::string& name);

  boost::weak_ptr<TRepositoryNamespace> ns_;
  std::string name_;
  boost::shared_ptr<TRepositoryClass> super_;
  TCIMOptions qualifiers_;
  // Inherited properties first, overrides in their parent's place.
  std::vector<boost::shared_ptr<TRepositoryPropertyDecl>> properties_;
  std::unordered_map<std::string, size_t, TCIMNameHashing, TCIMNameHashing> byName_;
  bool hasSubclasses_ = false;
  bool hasInstances_ = false;
};

}  // namespace NZARVEK20
