#include "host/plugin.h"
#include "kelmon/plugin_provider.h"

namespace NZARVEK20 {

TPluginManagerNamespace::TPluginManagerNamespace() = default;
TPluginManagerNamespace::~TPluginManagerNamespace() = default;

TPluginManagerProvider* TPluginManagerNamespace::RegisterPlugin(IPluginCallbacks* callbacks) {
  if (!callbacks)
    throw TVRXException(TVRXStatusCode(VRX_INVALID_PARAMETER), "RegisterPlugin without callbacks");
  providers_.push_back(std::make_unique<TPluginManagerProvider>(callbacks));
  return providers_.back().get();
}

std::vector<IPluginCallbacks*> TPluginManagerNamespace::GetPlugins() const {
  std::vector<IPluginCallbacks*> plugins;
  for (const auto& provider : providers_) plugins.push_back(provider->Callbacks());
  return plugins;
}

void TPluginManagerNamespace::DestroyPlugins() {
  for (const auto& provider : providers_) provider->Callbacks()->Destroy();
  providers_.clear();
}

boost::shared_ptr<ICIMNamespace> TPluginManagerNamespace::underlying(const char* operation) {
  if (underlying_.empty())
    throw TVRXException(TVRXStatusCode(VRX_NOT_SUPPORTED),
                        std::string(operation) + ": the plug-in manager has no namespace under it");
  return underlying_.front();
}

boost::shared_ptr<ICIMNamespace> TPluginManagerNamespace::GetNamespaceProvider(TCIMOptions) {
  return underlying("GetNamespaceProvider");
}

void TPluginManagerNamespace::SetUpcallNamespace(boost::shared_ptr<ICIMNamespace> ns, TCIMOptions) {
  upcall_ = std::move(ns);
}

void TPluginManagerNamespace::AddUnderlyingNamespace(boost::shared_ptr<ICIMNamespace> ns,
                                                     TCIMOptions) {
  underlying_.push_back(std::move(ns));
}

boost::shared_ptr<ICIMClass> TPluginManagerNamespace::AllocateClass(const std::string& className,
                                                                    const std::string& superClass,
                                                                    TCIMOptions options) {
  return underlying("AllocateClass")->AllocateClass(className, superClass, options);
}

boost::shared_ptr<ICIMClass> TPluginManagerNamespace::GetClass(const std::string& className,
                                                               TCIMOptions options) {
  return underlying("GetClass")->GetClass(className, options);
}

void TPluginManagerNamespace::EnumerateRootClasses(const TClassCallback& callback,
                                                   TCIMOptions options) {
  underlying("EnumerateRootClasses")->EnumerateRootClasses(callback, options);
}

void TPluginManagerNamespace::EnumerateProviders(const TNameCallback& callback, TCIMOptions) {
  for (const auto& provider : providers_)
    if (!callback(provider->Callbacks()->GetPluginName())) return;
}

boost::shared_ptr<ICIMQualifierDecl> TPluginManagerNamespace::AllocateQualifierDecl(
    const std::string& name, TCIMType type, bool isArray, TCIMOptions options) {
  return underlying("AllocateQualifierDecl")->AllocateQualifierDecl(name, type, isArray, options);
}

boost::shared_ptr<ICIMQualifierDecl> TPluginManagerNamespace::GetQualifierDecl(
    const std::string& name, TCIMOptions options) {
  return underlying("GetQualifierDecl")->GetQualifierDecl(name, options);
}

void TPluginManagerNamespace::EnumerateQualifierDecls(const TQualifierDeclCallback& callback,
                                                      TCIMOptions options) {
  underlying("EnumerateQualifierDecls")->EnumerateQualifierDecls(callback, options);
}

void TPluginManagerNamespace::Subscribe(const TInstanceCallback& callback, TCIMOptions options) {
  underlying("Subscribe")->Subscribe(callback, options);
}

boost::shared_ptr<ICIMInstance> TPluginManagerNamespace::GetInstance(const TCIMReference& path,
                                                                     TCIMOptions options) {
  return underlying("GetInstance")->GetInstance(path, options);
}

void TPluginManagerNamespace::DeleteInstance(const TCIMReference& path, TCIMOptions options) {
  underlying("DeleteInstance")->DeleteInstance(path, options);
}

void TPluginManagerNamespace::ModifyInstance(boost::shared_ptr<ICIMInstance> instance,
                                             TCIMOptions options) {
  underlying("ModifyInstance")->ModifyInstance(instance, options);
}

void TPluginManagerNamespace::ExecuteQuery(const std::string& query,
                                           const TInstanceCallback& callback, TCIMOptions options) {
  underlying("ExecuteQuery")->ExecuteQuery(query, callback, options);
}

void TPluginManagerNamespace::ClearInstances(TCIMOptions options) {
  underlying("ClearInstances")->ClearInstances(options);
}

}  // namespace NZARVEK20
