// An instance of a repository class and its properties.
#pragma once

#include <vector>

#include "vrxcore/repository.h"

namespace NZARVEK20 {

// Held inside its instance and handed out as a pointer that shares the instance's ownership.
class TRepositoryProperty : public ICIMProperty {
 public:
  explicit TRepositoryProperty(TRepositoryPropertyDecl& decl) : decl_(&decl) {}
  TCIMType GetType(TCIMOptions) override { return decl_->GetType({}); }
  const TCIMValue& GetValue(TCIMOptions) override { return value_; }
  const std::string& GetName(TCIMOptions) override { return decl_->GetName({}); }
  bool IsArray(TCIMOptions) override { return decl_->IsArray({}); }

  TRepositoryPropertyDecl& Decl() const { return *decl_; }
  const TCIMValue& Value() const { return value_; }
  void Assign(const TCIMValue& value) { value_ = decl_->Conform(value); }

 private:
  // Owned by the class, which the instance keeps alive and which cannot change its
  // declarations once it has instances.
  TRepositoryPropertyDecl* decl_;
  TCIMValue value_;
};

class TRepositoryInstance : public ICIMInstance,
                            public boost::enable_shared_from_this<TRepositoryInstance> {
 public:
  explicit TRepositoryInstance(boost::shared_ptr<TRepositoryClass> cimClass);

  void Commit(TCIMOptions options) override;
  TCIMReference GetReference(TCIMOptions options) override;
  boost::shared_ptr<ICIMProperty> GetProperty(const std::string& name,
                                              TCIMOptions options) override;
  void SetPropertyValue(const std::string& name, const TCIMValue& value,
                        TCIMOptions options) override;
  boost::shared_ptr<ICIMClass> GetClass(TCIMOptions) override { return class_; }
  void EnumerateProperties(const TPropertyCallback& callback, TCIMOptions options) override;
  bool IsCommitted(TCIMOptions) override { return committed_; }

  const boost::shared_ptr<TRepositoryClass>& Class() const { return class_; }
  // Throws (12) naming the first key property without a value.
  void CheckKeys() const;
  void MarkCommitted() { committed_ = true; }

 private:
  TRepositoryProperty& Find(const std::string& name);

  boost::shared_ptr<TRepositoryClass> class_;
  // One per declared property, in the class's order.
  std::vector<TRepositoryProperty> properties_;
  bool committed_ = false;
};

}  // namespace NZARVEK20
