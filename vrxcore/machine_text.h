// Text as the machine's A functions hand it out, turned into the UTF-8 that
// the exporters write.
#pragma once

#include <string>

namespace NZARVEK20 {

// Machine text (its ANSI code page) as UTF-8; the text as it was when the
// machine cannot convert it.
std::string machineTextToUtf8(const std::string& text);

}  // namespace NZARVEK20
