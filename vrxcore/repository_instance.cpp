#include "vrxcore/repository_instance.h"

namespace NZARVEK20 {

TRepositoryInstance::TRepositoryInstance(boost::shared_ptr<TRepositoryClass> cimClass)
    : class_(std::move(cimClass)) {
  properties_.reserve(class_->Properties().size());
  for (const auto& decl : class_->Properties()) {
    properties_.emplace_back(*decl);
    const TCIMValue& initial = decl->GetDefaultValue({});
    if (!initial.IsNull()) properties_.back().Assign(initial);
  }
}

TRepositoryProperty& TRepositoryInstance::Find(const std::string& name) {
  const size_t index = class_->IndexOf(name);
  if (index < properties_.size()) return properties_[index];
  throw TVRXException(TVRXStatusCode(VRX_NO_SUCH_PROPERTY), class_->GetName({}) + "." + name);
}

boost::shared_ptr<ICIMProperty> TRepositoryInstance::GetProperty(const std::string& name,
                                                                 TCIMOptions) {
  return boost::shared_ptr<ICIMProperty>(shared_from_this(), &Find(name));
}

void TRepositoryInstance::SetPropertyValue(const std::string& name, const TCIMValue& value,
                                           TCIMOptions) {
  TRepositoryProperty& property = Find(name);
  if (committed_)
    throw TVRXException(TVRXStatusCode(VRX_ALREADY_COMMITTED), class_->GetName({}) + "." + name);
  try {
    property.Assign(value);
  } catch (const TVRXException& e) {
    throw TVRXException(e.GetStatus(), class_->GetName({}) + "." + name + ": " + e.GetDetail());
  }
}

void TRepositoryInstance::EnumerateProperties(const TPropertyCallback& callback, TCIMOptions) {
  const auto self = shared_from_this();
  for (auto& property : properties_)
    if (!callback(boost::shared_ptr<ICIMProperty>(self, &property))) return;
}

TCIMReference TRepositoryInstance::GetReference(TCIMOptions) {
  TCIMReference::TKeyBindings keys;
  for (const auto& property : properties_)
    if (property.Decl().IsKey({}) && !property.Value().IsNull())
      keys.emplace_back(property.Decl().GetName({}), property.Value());
  return TCIMReference(class_->GetName({}), std::move(keys));
}

void TRepositoryInstance::CheckKeys() const {
  for (const auto& property : properties_)
    if (property.Decl().IsKey({}) && property.Value().IsNull())
      throw TVRXException(TVRXStatusCode(VRX_KEY_MISSING),
                          class_->GetName({}) + "." + property.Decl().GetName({}));
}

void TRepositoryInstance::Commit(TCIMOptions) {
  if (committed_) throw TVRXException(TVRXStatusCode(VRX_ALREADY_COMMITTED), class_->GetName({}));
  CheckKeys();
  auto ns = boost::static_pointer_cast<TRepositoryNamespace>(class_->GetNamespace({}));
  ns->Store(shared_from_this());
}

}  // namespace NZARVEK20
