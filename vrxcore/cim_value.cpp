#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>

#include "host/cim_interfaces.h"

namespace NZARVEK20 {
namespace {

const char* const kTypeNames[] = {"",       "boolean", "uint8",    "sint8",    "uint16", "sint16",
                                  "uint32", "sint32",  "uint64",   "sint64",   "real32", "real64",
                                  "char16", "string",  "datetime", "reference"};

[[noreturn]] void mismatch(const std::string& what) {
  throw TVRXException(TVRXStatusCode(VRX_TYPE_MISMATCH), what);
}

bool isUnsignedType(ECIMType type) {
  return type == CIM_UINT8 || type == CIM_UINT16 || type == CIM_UINT32 || type == CIM_UINT64;
}

bool isSignedType(ECIMType type) {
  return type == CIM_SINT8 || type == CIM_SINT16 || type == CIM_SINT32 || type == CIM_SINT64;
}

unsigned long long unsignedMax(ECIMType type) {
  switch (type) {
    case CIM_UINT8:
      return 0xFF;
    case CIM_UINT16:
      return 0xFFFF;
    case CIM_UINT32:
      return 0xFFFFFFFFull;
    default:
      return std::numeric_limits<unsigned long long>::max();
  }
}

long long signedMax(ECIMType type) {
  switch (type) {
    case CIM_SINT8:
      return 127;
    case CIM_SINT16:
      return 32767;
    case CIM_SINT32:
      return 2147483647;
    default:
      return std::numeric_limits<long long>::max();
  }
}

bool allDigits(const std::string& text, size_t from) {
  if (from >= text.size()) return false;
  for (size_t i = from; i < text.size(); ++i)
    if (text[i] < '0' || text[i] > '9') return false;
  return true;
}

unsigned long long parseUnsigned(const std::string& text, ECIMType type) {
  if (!allDigits(text, 0)) mismatch("not an unsigned integer: \"" + text + "\"");
  errno = 0;
  const unsigned long long value = std::strtoull(text.c_str(), nullptr, 10);
  if (errno == ERANGE || value > unsignedMax(type))
    mismatch("out of range for " + std::string(kTypeNames[type]) + ": " + text);
  return value;
}

long long parseSigned(const std::string& text, ECIMType type) {
  const size_t digits = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
  if (!allDigits(text, digits)) mismatch("not a signed integer: \"" + text + "\"");
  errno = 0;
  const long long value = std::strtoll(text.c_str(), nullptr, 10);
  const long long max = signedMax(type);
  if (errno == ERANGE || value > max || value < -max - 1)
    mismatch("out of range for " + std::string(kTypeNames[type]) + ": " + text);
  return value;
}

double parseReal(const std::string& text) {
  char* end = nullptr;
  errno = 0;
  const double value = std::strtod(text.c_str(), &end);
  if (text.empty() || *end != '\0' || errno == ERANGE || !std::isfinite(value) ||
      text.find_first_of("xXnN") != std::string::npos)
    mismatch("not a real number: \"" + text + "\"");
  return value;
}

// What `content` holds of kind T, or the empty T.
template <class T, class Content>
const T& held(const Content& content) {
  static const T none{};
  const T* value = std::get_if<T>(&content);
  return value ? *value : none;
}

bool parseBoolean(const std::string& text) {
  std::string lower;
  for (char c : text) lower += static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
  if (lower == "true") return true;
  if (lower == "false") return false;
  mismatch("not a boolean: \"" + text + "\"");
}

}  // namespace

TCIMType::TCIMType(const std::string& name) : type_(CIM_NONE) {
  std::string lower;
  for (char c : name) lower += static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
  for (unsigned int i = 1; i <= CIM_REFERENCE; ++i)
    if (lower == kTypeNames[i]) type_ = static_cast<ECIMType>(i);
  if (type_ == CIM_NONE) mismatch("unknown CIM type: " + name);
}

std::string TCIMType::ToString() const { return type_ <= CIM_REFERENCE ? kTypeNames[type_] : ""; }

bool TCIMType::IsInteger() const { return isUnsignedType(type_) || isSignedType(type_); }

TCIMValue::TCIMValue() = default;
TCIMValue::TCIMValue(bool value) : type_(CIM_BOOLEAN), null_(false), content_(value) {}
TCIMValue::TCIMValue(unsigned char value)
    : type_(CIM_UINT8), null_(false), content_(static_cast<unsigned long long>(value)) {}
TCIMValue::TCIMValue(unsigned short value)
    : type_(CIM_UINT16), null_(false), content_(static_cast<unsigned long long>(value)) {}
TCIMValue::TCIMValue(unsigned int value)
    : type_(CIM_UINT32), null_(false), content_(static_cast<unsigned long long>(value)) {}
TCIMValue::TCIMValue(unsigned long long value) : type_(CIM_UINT64), null_(false), content_(value) {}
TCIMValue::TCIMValue(signed char value)
    : type_(CIM_SINT8), null_(false), content_(static_cast<long long>(value)) {}
TCIMValue::TCIMValue(short value)
    : type_(CIM_SINT16), null_(false), content_(static_cast<long long>(value)) {}
TCIMValue::TCIMValue(int value)
    : type_(CIM_SINT32), null_(false), content_(static_cast<long long>(value)) {}
TCIMValue::TCIMValue(long long value) : type_(CIM_SINT64), null_(false), content_(value) {}
TCIMValue::TCIMValue(double value) : type_(CIM_REAL64), null_(false), content_(value) {}
TCIMValue::TCIMValue(const char* value) : TCIMValue(std::string(value)) {}
TCIMValue::TCIMValue(std::string value)
    : type_(CIM_STRING), null_(false), content_(std::move(value)) {}
TCIMValue::TCIMValue(const TCIMDateTime& value)
    : type_(CIM_DATETIME), null_(value.IsNull()), content_(value) {}
TCIMValue::TCIMValue(const TCIMReference& value)
    : type_(CIM_REFERENCE), null_(value.IsNull()), content_(value) {}

TCIMValue::TCIMValue(TCIMType type, const std::string& text, boost::shared_ptr<ICIMNamespace>)
    : type_(type), null_(false) {
  const ECIMType kind = type;
  if (isUnsignedType(kind)) {
    content_ = parseUnsigned(text, kind);
  } else if (isSignedType(kind)) {
    content_ = parseSigned(text, kind);
  } else if (kind == CIM_BOOLEAN) {
    content_ = parseBoolean(text);
  } else if (kind == CIM_REAL32 || kind == CIM_REAL64) {
    content_ = parseReal(text);
  } else if (kind == CIM_STRING || kind == CIM_CHAR16) {
    if (kind == CIM_CHAR16 && text.size() != 1) mismatch("not one character: \"" + text + "\"");
    content_ = text;
  } else if (kind == CIM_DATETIME) {
    content_ = TCIMDateTime(text);
  } else if (kind == CIM_REFERENCE) {
    try {
      content_ = TCIMReference::Parse(text);
    } catch (const TVRXException& e) {
      mismatch("not an object path: " + e.GetDetail());
    }
  } else {
    mismatch("no type given for \"" + text + "\"");
  }
}

TCIMValue::TCIMValue(TCIMType type, unsigned int count, const std::vector<TCIMValue>& elements) {
  Set(type, count, elements);
}

void TCIMValue::Set(TCIMType type, unsigned int count, const std::vector<TCIMValue>& elements) {
  if (count > elements.size())
    throw TVRXException(TVRXStatusCode(VRX_INVALID_PARAMETER), "array count beyond its elements");
  std::vector<TCIMValue> converted;
  converted.reserve(count);
  for (unsigned int i = 0; i < count; ++i) {
    if (elements[i].IsArray()) mismatch("an array as an element of an array");
    converted.push_back(elements[i].ConvertTo(type));
  }
  type_ = type;
  null_ = false;
  array_ = true;
  content_ = std::make_shared<const std::vector<TCIMValue>>(std::move(converted));
}

bool TCIMValue::GetBoolean() const { return held<bool>(content_); }
unsigned long long TCIMValue::GetUnsigned() const { return held<unsigned long long>(content_); }
long long TCIMValue::GetSigned() const { return held<long long>(content_); }
double TCIMValue::GetReal() const { return held<double>(content_); }
const std::string& TCIMValue::GetString() const { return held<std::string>(content_); }
const TCIMDateTime& TCIMValue::GetDateTime() const { return held<TCIMDateTime>(content_); }
const TCIMReference& TCIMValue::GetReference() const { return held<TCIMReference>(content_); }

const std::vector<TCIMValue>& TCIMValue::GetElements() const {
  static const std::vector<TCIMValue> none;
  const TElements& elements = held<TElements>(content_);
  return elements ? *elements : none;
}

TCIMValue TCIMValue::ConvertTo(TCIMType type) const {
  const ECIMType from = type_, to = type;
  if (null_ || from == to) {
    TCIMValue copy(*this);
    copy.type_ = type;
    return copy;
  }
  if (array_) {
    TCIMValue result;
    result.Set(type, static_cast<unsigned int>(GetElements().size()), GetElements());
    return result;
  }
  if (!type_.IsInteger() || !type.IsInteger())
    mismatch("a " + type_.ToString() + " value for a " + type.ToString() + " property");
  const bool negative = isSignedType(from) && GetSigned() < 0;
  const unsigned long long magnitude =
      isSignedType(from) ? static_cast<unsigned long long>(GetSigned()) : GetUnsigned();
  TCIMValue result;
  result.type_ = type;
  result.null_ = false;
  if (isUnsignedType(to)) {
    if (negative || magnitude > unsignedMax(to)) mismatch("out of range for " + type.ToString());
    result.content_ = magnitude;
  } else {
    if (!negative && magnitude > static_cast<unsigned long long>(signedMax(to)))
      mismatch("out of range for " + type.ToString());
    const long long value = static_cast<long long>(magnitude);
    if (value < -signedMax(to) - 1) mismatch("out of range for " + type.ToString());
    result.content_ = value;
  }
  return result;
}

bool TCIMValue::operator==(const TCIMValue& other) const {
  if (static_cast<ECIMType>(type_) != static_cast<ECIMType>(other.type_) || null_ != other.null_ ||
      array_ != other.array_)
    return false;
  if (null_) return true;
  if (array_) return GetElements() == other.GetElements();
  switch (static_cast<ECIMType>(type_)) {
    case CIM_BOOLEAN:
      return GetBoolean() == other.GetBoolean();
    case CIM_REAL32:
    case CIM_REAL64:
      return GetReal() == other.GetReal();
    case CIM_CHAR16:
    case CIM_STRING:
      return GetString() == other.GetString();
    case CIM_DATETIME:
      return GetDateTime() == other.GetDateTime();
    case CIM_REFERENCE:
      return GetReference() == other.GetReference();
    default:
      return GetUnsigned() == other.GetUnsigned() && GetSigned() == other.GetSigned();
  }
}

TCIMValue::operator std::string() const {
  if (null_) return std::string();
  if (array_) {
    std::string text;
    for (const TCIMValue& element : GetElements())
      text += (text.empty() ? "" : ",") + static_cast<std::string>(element);
    return text;
  }
  const ECIMType type = type_;
  char number[40];
  if (isUnsignedType(type)) return std::to_string(GetUnsigned());
  if (isSignedType(type)) return std::to_string(GetSigned());
  switch (type) {
    case CIM_BOOLEAN:
      return GetBoolean() ? "true" : "false";
    case CIM_REAL32:
      std::snprintf(number, sizeof number, "%.9g", GetReal());
      return number;
    case CIM_REAL64:
      std::snprintf(number, sizeof number, "%.17g", GetReal());
      return number;
    case CIM_DATETIME:
      return GetDateTime().ToString();
    case CIM_REFERENCE:
      return GetReference().ToString();
    default:
      return GetString();
  }
}

}  // namespace NZARVEK20
