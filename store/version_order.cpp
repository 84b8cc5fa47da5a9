#include "store/version_order.h"

#include <cctype>
#include <vector>

namespace vrxstore {
namespace {

std::vector<std::string> partsOf(const std::string& version) {
  std::vector<std::string> parts(1);
  for (char c : version) {
    if (c == '.')
      parts.emplace_back();
    else
      parts.back() += c;
  }
  return parts;
}

int comparePart(const std::string& a, const std::string& b) {
  auto digitsEnd = [](const std::string& part) {
    std::size_t end = 0;
    while (end < part.size() && std::isdigit(static_cast<unsigned char>(part[end]))) ++end;
    return end;
  };
  const std::size_t aEnd = digitsEnd(a), bEnd = digitsEnd(b);
  // Numbers of any length: without leading zeros, the longer is larger.
  std::string aDigits = a.substr(0, aEnd), bDigits = b.substr(0, bEnd);
  aDigits.erase(0, aDigits.find_first_not_of('0'));
  bDigits.erase(0, bDigits.find_first_not_of('0'));
  if (aDigits.size() != bDigits.size()) return aDigits.size() < bDigits.size() ? -1 : 1;
  if (const int order = aDigits.compare(bDigits)) return order;
  return a.substr(aEnd).compare(b.substr(bEnd));
}

}  // namespace

int compareVersions(const std::string& a, const std::string& b) {
  const auto aParts = partsOf(a), bParts = partsOf(b);
  for (std::size_t i = 0; i < aParts.size() || i < bParts.size(); ++i) {
    const int order =
        comparePart(i < aParts.size() ? aParts[i] : "0", i < bParts.size() ? bParts[i] : "0");
    if (order) return order < 0 ? -1 : 1;
  }
  return 0;
}

}  // namespace vrxstore
