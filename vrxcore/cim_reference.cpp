#include <algorithm>

#include "host/cim_interfaces.h"
#include "vrxcore/cim_name.h"

namespace NZARVEK20 {

struct TCIMReference::TPath {
  std::string className;
  TKeyBindings keys;
};

namespace {

void appendQuoted(std::string& out, const std::string& text) {
  out += '"';
  // Runs without a quote or backslash go over whole: a path is made for every instance.
  size_t start = 0;
  for (size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '\\' && text[at] != '"') continue;
    out.append(text, start, at - start);
    out += '\\';
    start = at;
  }
  out.append(text, start, std::string::npos);
  out += '"';
}

void appendKeyValue(std::string& out, const TCIMValue& value) {
  switch (static_cast<ECIMType>(value.GetType())) {
    case CIM_BOOLEAN:
      out += value.GetBoolean() ? "TRUE" : "FALSE";
      return;
    case CIM_STRING:
    case CIM_CHAR16:
      appendQuoted(out, value.GetString());
      return;
    case CIM_DATETIME:
    case CIM_REFERENCE:
      appendQuoted(out, static_cast<std::string>(value));
      return;
    default:
      out += static_cast<std::string>(value);
  }
}

std::string keyValueText(const TCIMValue& value) {
  std::string text;
  appendKeyValue(text, value);
  return text;
}

[[noreturn]] void malformed(const std::string& path, size_t at, const std::string& why) {
  throw TVRXException(
      TVRXStatusCode(VRX_INVALID_PARAMETER),
      "object path \"" + path + "\", character " + std::to_string(at + 1) + ": " + why);
}

// Reads one key value of `path` at `at`; leaves `at` behind it.
TCIMValue readKeyValue(const std::string& path, size_t& at) {
  if (at < path.size() && path[at] == '"') {
    std::string text;
    for (++at; at < path.size() && path[at] != '"'; ++at) {
      if (path[at] == '\\' && ++at == path.size()) break;
      text += path[at];
    }
    if (at >= path.size()) malformed(path, at, "unterminated string");
    ++at;
    return TCIMValue(text);
  }
  const size_t end = std::min(path.find(',', at), path.size());
  const std::string text = path.substr(at, end - at);
  at = end;
  if (text == "TRUE" || text == "FALSE") return TCIMValue(text == "TRUE");
  try {
    if (!text.empty() && text[0] == '-') return TCIMValue(CIM_SINT64, text, nullptr);
    return TCIMValue(CIM_UINT64, text, nullptr);
  } catch (const TVRXException&) {
    malformed(path, at, "key value \"" + text + "\" is neither quoted, a number nor a boolean");
  }
}

}  // namespace

TCIMReference::TCIMReference() = default;

TCIMReference::TCIMReference(const std::string& className, TKeyBindings keys) {
  auto path = std::make_shared<TPath>();
  path->className = className;
  path->keys = std::move(keys);
  // A stable insertion sort: a path has few keys, and this needs no buffer.
  const auto byName = [](const auto& a, const auto& b) { return CIMNameLess(a.first, b.first); };
  for (auto next = path->keys.begin(); next != path->keys.end(); ++next)
    std::rotate(std::upper_bound(path->keys.begin(), next, *next, byName), next, next + 1);
  path_ = path;
}

TCIMReference TCIMReference::Parse(const std::string& path) {
  const size_t dot = path.find('.');
  const std::string className = path.substr(0, dot);
  if (className.empty()) malformed(path, 0, "no class name");
  TKeyBindings keys;
  for (size_t at = dot; at != std::string::npos && at < path.size();) {
    ++at;
    const size_t equals = path.find('=', at);
    if (equals == std::string::npos || equals == at) malformed(path, at, "expected Key=value");
    const std::string name = path.substr(at, equals - at);
    at = equals + 1;
    keys.emplace_back(name, readKeyValue(path, at));
    if (at < path.size() && path[at] != ',') malformed(path, at, "expected ',' after a key value");
    if (at == path.size()) break;
  }
  return TCIMReference(className, std::move(keys));
}

const std::string& TCIMReference::GetInstanceClassName() const {
  static const std::string none;
  return path_ ? path_->className : none;
}

const TCIMReference::TKeyBindings& TCIMReference::GetKeyBindings() const {
  static const TKeyBindings none;
  return path_ ? path_->keys : none;
}

std::string TCIMReference::ToString() const {
  if (!path_) return std::string();
  std::string text = path_->className;
  char separator = '.';
  for (const auto& key : path_->keys) {
    text += separator;
    text += key.first;
    text += '=';
    appendKeyValue(text, key.second);
    separator = ',';
  }
  return text;
}

bool TCIMReference::operator==(const TCIMReference& other) const {
  if (IsNull() || other.IsNull()) return IsNull() == other.IsNull();
  const TKeyBindings &mine = GetKeyBindings(), &theirs = other.GetKeyBindings();
  if (CIMNameKey(GetInstanceClassName()) != CIMNameKey(other.GetInstanceClassName()) ||
      mine.size() != theirs.size())
    return false;
  for (size_t i = 0; i < mine.size(); ++i)
    if (CIMNameKey(mine[i].first) != CIMNameKey(theirs[i].first) ||
        keyValueText(mine[i].second) != keyValueText(theirs[i].second))
      return false;
  return true;
}

}  // namespace NZARVEK20
