// The object model that the host hands to plug-ins: namespaces, classes,
// property declarations, instances and their properties.
#pragma once

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "host/cim_value.h"
#include "host/status.h"

namespace NZARVEK20 {

class ICIMClass;
class ICIMInstance;
class ICIMProperty;
class ICIMPropertyDecl;
class ICIMQualifierDecl;

// Enumerations call back once per element; a callback that answers false
// ends the enumeration early.
using TClassCallback = boost::function<bool(boost::shared_ptr<ICIMClass>)>;
using TInstanceCallback = boost::function<bool(boost::shared_ptr<ICIMInstance>)>;
using TPropertyDeclCallback = boost::function<bool(boost::shared_ptr<ICIMPropertyDecl>)>;
using TPropertyCallback = boost::function<bool(boost::shared_ptr<ICIMProperty>)>;
using TQualifierDeclCallback = boost::function<bool(boost::shared_ptr<ICIMQualifierDecl>)>;
using TNameCallback = boost::function<bool(const std::string&)>;

class ICIMNamespace {
 public:
  virtual ~ICIMNamespace() {}
  // The namespace that stores the objects: itself for a repository
  // namespace, the first underlying one for a namespace that forwards.
  virtual boost::shared_ptr<ICIMNamespace> GetNamespaceProvider(TCIMOptions options) = 0;
  virtual void SetUpcallNamespace(boost::shared_ptr<ICIMNamespace> ns, TCIMOptions options) = 0;
  virtual void AddUnderlyingNamespace(boost::shared_ptr<ICIMNamespace> ns, TCIMOptions options) = 0;
  // A new class without properties; its superclass must exist.
  virtual boost::shared_ptr<ICIMClass> AllocateClass(const std::string& className,
                                                     const std::string& superClassName,
                                                     TCIMOptions options) = 0;
  // Names compare without regard to case; an unknown name throws (5).
  virtual boost::shared_ptr<ICIMClass> GetClass(const std::string& className,
                                                TCIMOptions options) = 0;
  virtual void EnumerateRootClasses(const TClassCallback& callback, TCIMOptions options) = 0;
  // The names of the plug-ins that serve this namespace.
  virtual void EnumerateProviders(const TNameCallback& callback, TCIMOptions options) = 0;
  virtual boost::shared_ptr<ICIMQualifierDecl> AllocateQualifierDecl(const std::string& name,
                                                                     TCIMType type, bool isArray,
                                                                     TCIMOptions options) = 0;
  // An empty pointer when no such qualifier is declared.
  virtual boost::shared_ptr<ICIMQualifierDecl> GetQualifierDecl(const std::string& name,
                                                                TCIMOptions options) = 0;
  virtual void EnumerateQualifierDecls(const TQualifierDeclCallback& callback,
                                       TCIMOptions options) = 0;
  // `callback` sees every instance committed from now on.
  virtual void Subscribe(const TInstanceCallback& callback, TCIMOptions options) = 0;
  // An unknown path throws (8).
  virtual boost::shared_ptr<ICIMInstance> GetInstance(const TCIMReference& path,
                                                      TCIMOptions options) = 0;
  virtual void DeleteInstance(const TCIMReference& path, TCIMOptions options) = 0;
  // Replaces the committed instance with the same path.
  virtual void ModifyInstance(boost::shared_ptr<ICIMInstance> instance, TCIMOptions options) = 0;
  // "SELECT * FROM Class": the instances of the class and its subclasses.
  virtual void ExecuteQuery(const std::string& query, const TInstanceCallback& callback,
                            TCIMOptions options) = 0;
  virtual void ClearInstances(TCIMOptions options) = 0;
};

class ICIMQualifierDecl {
 public:
  virtual ~ICIMQualifierDecl() {}
  virtual const std::string& GetName(TCIMOptions options) = 0;
  virtual TCIMType GetType(TCIMOptions options) = 0;
  virtual bool IsArray(TCIMOptions options) = 0;
  virtual const TCIMValue& GetDefaultValue(TCIMOptions options) = 0;
};

class ICIMPropertyDecl {
 public:
  virtual ~ICIMPropertyDecl() {}
  virtual TCIMType GetType(TCIMOptions options) = 0;
  virtual bool IsArray(TCIMOptions options) = 0;
  virtual const std::string& GetName(TCIMOptions options) = 0;
  virtual bool IsKey(TCIMOptions options) = 0;
  // The class a reference points at; empty for other types.
  virtual const std::string& GetReferenceClassName(TCIMOptions options) = 0;
  // Null when the property has no such qualifier.
  virtual TCIMValue GetQualifier(const std::string& name, TCIMOptions options) = 0;
  virtual const TCIMValue& GetDefaultValue(TCIMOptions options) = 0;
};

class ICIMClass {
 public:
  virtual ~ICIMClass() {}
  virtual const std::string& GetName(TCIMOptions options) = 0;
  virtual boost::shared_ptr<ICIMNamespace> GetNamespace(TCIMOptions options) = 0;
  virtual bool IsAssociation(TCIMOptions options) = 0;
  // Key properties in the class's order: inherited ones first. The names
  // live as long as the class.
  virtual void EnumerateKeyNames(const TNameCallback& callback, TCIMOptions options) = 0;
  // An empty pointer when the class declares no such property.
  virtual boost::shared_ptr<ICIMPropertyDecl> GetProperty(const std::string& name,
                                                          TCIMOptions options) = 0;
  virtual boost::shared_ptr<ICIMInstance> AllocateInstance(TCIMOptions options) = 0;
  // Committed instances in commit order; with `deep`, those of subclasses too.
  virtual void EnumerateInstances(const TInstanceCallback& callback, bool deep,
                                  TCIMOptions options) = 0;
  virtual const std::string& GetSuperClassName(TCIMOptions options) = 0;
  virtual bool IsAbstract(TCIMOptions options) = 0;
  virtual bool IsSubclassOf(const std::string& className, TCIMOptions options) = 0;
  // Inherited properties first, then the class's own, in declaration order.
  virtual void EnumerateProperties(const TPropertyDeclCallback& callback, TCIMOptions options) = 0;
  virtual TCIMValue GetQualifier(const std::string& name, TCIMOptions options) = 0;
  // Adds a property declaration; the class must not have instances yet.
  virtual void AddProperty(const std::string& name, TCIMType type, bool isArray,
                           const std::string& referenceClassName, const TCIMOptions& qualifiers,
                           const TCIMValue& defaultValue, TCIMOptions options) = 0;
  virtual void SetQualifier(const std::string& name, const TCIMValue& value,
                            TCIMOptions options) = 0;
};

class ICIMProperty {
 public:
  virtual ~ICIMProperty() {}
  virtual TCIMType GetType(TCIMOptions options) = 0;
  // Null, with the empty string as text, until a value is set.
  virtual const TCIMValue& GetValue(TCIMOptions options) = 0;
  virtual const std::string& GetName(TCIMOptions options) = 0;
  virtual bool IsArray(TCIMOptions options) = 0;
};

class ICIMInstance {
 public:
  virtual ~ICIMInstance() {}
  // Every key must be set and the path must be new in the namespace;
  // throws (12) or (11) otherwise.
  virtual void Commit(TCIMOptions options) = 0;
  virtual TCIMReference GetReference(TCIMOptions options) = 0;
  // Throws (15) when the class declares no such property.
  virtual boost::shared_ptr<ICIMProperty> GetProperty(const std::string& name,
                                                      TCIMOptions options) = 0;
  // Throws (15) for an undeclared property, (13) for a value that does not
  // convert to the declared type.
  virtual void SetPropertyValue(const std::string& name, const TCIMValue& value,
                                TCIMOptions options) = 0;
  virtual boost::shared_ptr<ICIMClass> GetClass(TCIMOptions options) = 0;
  // In the class's property order.
  virtual void EnumerateProperties(const TPropertyCallback& callback, TCIMOptions options) = 0;
  virtual bool IsCommitted(TCIMOptions options) = 0;
};

// Host functors for the enumerations: they collect what they are given.
template <class T>
class TAddToVectorCallback {
 public:
  explicit TAddToVectorCallback(std::vector<boost::shared_ptr<T>>& target) : target_(&target) {}
  bool operator()(boost::shared_ptr<T> element) const {
    target_->push_back(element);
    return true;
  }

 private:
  std::vector<boost::shared_ptr<T>>* target_;
};

class TAddKeyNamesToVectorCallback {
 public:
  explicit TAddKeyNamesToVectorCallback(std::vector<const std::string*>& target)
      : target_(&target) {}
  bool operator()(const std::string& name) const {
    target_->push_back(&name);
    return true;
  }

 private:
  std::vector<const std::string*>* target_;
};

}  // namespace NZARVEK20
