// CIM names (of classes, properties, qualifiers) compare without regard to
// case.
#pragma once

#include <string>

namespace NZARVEK20 {

// Lower-cased copy, for names that CIM compares without regard to case.
std::string CIMNameKey(const std::string& name);

// Whether `a` sorts before `b` as their lower-cased copies would, without making them.
bool CIMNameLess(const std::string& a, const std::string& b);

// Whether `a` and `b` are the same name but for case.
bool CIMNameEqual(const std::string& a, const std::string& b);
// A hash that names the same but for case share.
size_t CIMNameHash(const std::string& name);

// For hash maps of names, found in any case without a lower-cased copy.
struct TCIMNameHashing {
  size_t operator()(const std::string& name) const { return CIMNameHash(name); }
  bool operator()(const std::string& a, const std::string& b) const { return CIMNameEqual(a, b); }
};

// Orders the keys of maps of names, which are then found in any case without a lower-cased copy.
struct TCIMNameOrder {
  bool operator()(const std::string& a, const std::string& b) const { return CIMNameLess(a, b); }
};

}  // namespace NZARVEK20
