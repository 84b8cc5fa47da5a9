#include "frame/lower_case.h"

#include <locale>

namespace installedapps_col {

std::string lowerCase(std::string text) {
  std::use_facet<std::ctype<char>>(std::locale()).tolower(&text[0], &text[0] + text.size());
  return text;
}

}  // namespace installedapps_col
