// What a plug-in implements, and the plug-in manager it registers with.
#pragma once

#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>
#include <memory>
#include <string>
#include <vector>

#include "host/cim_interfaces.h"

namespace NZARVEK20 {

class IPluginCallbacks {
 public:
  virtual ~IPluginCallbacks() {}
  virtual int ZeroAnswerQuery(const std::string& query) = 0;
  virtual std::string GetPluginName() = 0;
  virtual std::string GetFirstVersion() = 0;
  virtual std::string GetSecondVersion() = 0;
  // The host's way to end the object it took over at registration.
  virtual void Destroy() = 0;
  virtual void Init() = 0;
  virtual void DeInit() = 0;
};

class IPluginBasicQueryCallbacks {
 public:
  virtual ~IPluginBasicQueryCallbacks() {}
  virtual void OnBasicQuery(boost::shared_ptr<ICIMNamespace> outputNamespace,
                            const std::vector<boost::shared_ptr<ICIMClass>>& classes) = 0;
};

// The plug-in manager's record of one registration; opaque to plug-ins.
class TPluginManagerProvider;

// The plug-in manager. As a namespace it forwards to the namespaces under
// it, so that plug-ins and the host see one repository.
class TPluginManagerNamespace : public ICIMNamespace,
                                public boost::enable_shared_from_this<TPluginManagerNamespace> {
 public:
  TPluginManagerNamespace();
  ~TPluginManagerNamespace() override;

  // Takes over `callbacks`; the result identifies the registration.
  TPluginManagerProvider* RegisterPlugin(IPluginCallbacks* callbacks);
  // The registered plug-ins, in order of registration.
  std::vector<IPluginCallbacks*> GetPlugins() const;
  // Ends every registered plug-in through Destroy.
  void DestroyPlugins();

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

 private:
  boost::shared_ptr<ICIMNamespace> underlying(const char* operation);

  std::vector<boost::shared_ptr<ICIMNamespace>> underlying_;
  boost::shared_ptr<ICIMNamespace> upcall_;
  std::vector<std::unique_ptr<TPluginManagerProvider>> providers_;
};

}  // namespace NZARVEK20
