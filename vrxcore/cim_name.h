// CIM names (of classes, properties, qualifiers) compare without regard to
// case.
#pragma once

#include <string>

namespace NZARVEK20 {

// Lower-cased copy, for names that CIM compares without regard to case.
std::string CIMNameKey(const std::string& name);

// Whether `a` sorts before `b` as their lower-cased copies would, without making them.
bool CIMNameLess(const std::string& a, const std::string& b);

// Orders the keys of maps of names, which are then found in any case without a lower-cased copy.
struct TCIMNameOrder {
  bool operator()(const std::string& a, const std::string& b) const { return CIMNameLess(a, b); }
};

}  // namespace NZARVEK20
