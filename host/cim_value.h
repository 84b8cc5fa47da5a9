// Typed CIM values, their types and object paths.
#pragma once

#include <boost/shared_ptr.hpp>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "host/cim_datetime.h"

namespace NZARVEK20 {

class ICIMNamespace;
class TCIMValue;

// The CIM types by number; 13 (string) and 14 (date-time) are relied on by
// plug-ins.
enum ECIMType : unsigned int {
  CIM_NONE = 0,
  CIM_BOOLEAN = 1,
  CIM_UINT8 = 2,
  CIM_SINT8 = 3,
  CIM_UINT16 = 4,
  CIM_SINT16 = 5,
  CIM_UINT32 = 6,
  CIM_SINT32 = 7,
  CIM_UINT64 = 8,
  CIM_SINT64 = 9,
  CIM_REAL32 = 10,
  CIM_REAL64 = 11,
  CIM_CHAR16 = 12,
  CIM_STRING = 13,
  CIM_DATETIME = 14,
  CIM_REFERENCE = 15,
};

// The path of one instance: its class and its key bindings. Immutable.
class TCIMReference {
 public:
  using TKeyBindings = std::vector<std::pair<std::string, TCIMValue>>;

  TCIMReference();
  TCIMReference(const std::string& className, TKeyBindings keys);
  // Reads "Class.Key=value,..." as ToString writes it; throws
  // TVRXException (4) with the reason on malformed text.
  static TCIMReference Parse(const std::string& path);

  bool IsNull() const { return !path_; }
  const std::string& GetInstanceClassName() const;
  // Sorted by key name without regard to case.
  const TKeyBindings& GetKeyBindings() const;
  // "Class.Key=value,..." with strings quoted and escaped.
  std::string ToString() const;
  // Names compare without regard to case, values exactly.
  bool operator==(const TCIMReference& other) const;
  bool operator!=(const TCIMReference& other) const { return !(*this == other); }

 private:
  struct TPath;
  std::shared_ptr<const TPath> path_;
};

class TCIMValue {
 public:
  class TCIMType {
   public:
    TCIMType() : type_(CIM_NONE) {}
    TCIMType(ECIMType type) : type_(type) {}
    // A type's MOF name ("uint16", "string", "datetime", "reference");
    // an unknown name throws TVRXException (13).
    explicit TCIMType(const std::string& name);
    std::string ToString() const;
    operator ECIMType() const { return type_; }
    bool IsInteger() const;

   private:
    ECIMType type_;
  };

  TCIMValue();
  TCIMValue(bool value);
  TCIMValue(unsigned char value);
  TCIMValue(unsigned short value);
  TCIMValue(unsigned int value);
  TCIMValue(unsigned long long value);
  TCIMValue(signed char value);
  TCIMValue(short value);
  TCIMValue(int value);
  TCIMValue(long long value);
  TCIMValue(double value);
  TCIMValue(const char* value);
  TCIMValue(std::string value);
  TCIMValue(const TCIMDateTime& value);
  TCIMValue(const TCIMReference& value);
  // The value of `type` whose text form is `text`, read strictly; throws
  // TVRXException (13, or 21 for date-time text) when it does not convert.
  TCIMValue(TCIMType type, const std::string& text, boost::shared_ptr<ICIMNamespace> ns);
  // An array of `type` made of the first `count` elements.
  TCIMValue(TCIMType type, unsigned int count, const std::vector<TCIMValue>& elements);

  void Set(TCIMType type, unsigned int count, const std::vector<TCIMValue>& elements);

  bool IsNull() const { return null_; }
  bool IsArray() const { return array_; }
  TCIMType GetType() const { return type_; }

  // Each getter gives the empty value of its kind when the value holds another kind.
  bool GetBoolean() const;
  unsigned long long GetUnsigned() const;
  long long GetSigned() const;
  double GetReal() const;
  const std::string& GetString() const;
  const TCIMDateTime& GetDateTime() const;
  const TCIMReference& GetReference() const;
  const std::vector<TCIMValue>& GetElements() const;

  // The same value as `type`, for integers within its range; throws
  // TVRXException (13) when it does not fit or the kinds differ.
  TCIMValue ConvertTo(TCIMType type) const;

  bool operator==(const TCIMValue& other) const;
  bool operator!=(const TCIMValue& other) const { return !(*this == other); }
  // The text form; the empty string for null.
  operator std::string() const;

 private:
  // Elements are shared between copies: a value never changes once made, only is replaced.
  using TElements = std::shared_ptr<const std::vector<TCIMValue>>;
  // One kind of content at a time, so that a value costs little more than its largest kind.
  using TContent = std::variant<std::monostate, bool, unsigned long long, long long, double,
                                std::string, TCIMDateTime, TCIMReference, TElements>;

  TCIMType type_;
  bool null_ = true;
  bool array_ = false;
  TContent content_;
};

using TCIMType = TCIMValue::TCIMType;
using TCIMOptions = std::map<std::string, TCIMValue>;

}  // namespace NZARVEK20
