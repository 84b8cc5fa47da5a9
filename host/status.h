// Status codes and the exception that carries them across the host boundary.
#pragma once

#include <exception>
#include <string>

namespace NZARVEK20 {

// The numbers 7, 15 and 21 are fixed by plug-ins that recognise them; the
// others are this host's own choice.
enum EVRXStatusCode : unsigned int {
  VRX_OK = 0,
  VRX_FAILED = 1,
  VRX_INVALID_PARAMETER = 4,
  VRX_INVALID_CLASS = 5,  // the namespace has no class of that name
  VRX_NO_CLASS = 7,       // a collector was asked to work without a class
  VRX_NOT_FOUND = 8,      // no instance with that object path
  VRX_NOT_SUPPORTED = 9,
  VRX_ALREADY_EXISTS = 11,     // a second instance with the same object path
  VRX_KEY_MISSING = 12,        // commit of an instance with a key property unset
  VRX_TYPE_MISMATCH = 13,      // a value that does not convert to the declared type
  VRX_NO_SUCH_PROPERTY = 15,   // the class declares no property of that name
  VRX_ABSTRACT_CLASS = 16,     // an instance of an abstract class
  VRX_ALREADY_COMMITTED = 17,  // an instance that is already in the repository
  VRX_INVALID_DATETIME = 21,   // date-time text or parts out of their ranges
};

class TVRXStatusCode {
 public:
  TVRXStatusCode(EVRXStatusCode code = VRX_OK) : code_(code) {}
  EVRXStatusCode GetStatusCode() const { return code_; }
  const std::string& TranslateStatusCode() const;

 private:
  EVRXStatusCode code_;
};

class TVRXException : public std::exception {
 public:
  explicit TVRXException(const TVRXStatusCode& status) : status_(status) {}
  TVRXException(const TVRXStatusCode& status, std::string detail)
      : status_(status), detail_(std::move(detail)) {}
  const TVRXStatusCode& GetStatus() const { return status_; }
  EVRXStatusCode GetStatusCode() const { return status_.GetStatusCode(); }
  // What went wrong beyond the code (a class or property name); empty when
  // the code says it all. Not part of what(), which is the code's text.
  const std::string& GetDetail() const { return detail_; }
  const char* what() const noexcept override;

 private:
  TVRXStatusCode status_;
  std::string detail_;
};

}  // namespace NZARVEK20
