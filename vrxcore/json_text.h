// JSON text written piece by piece, byte for byte as nlohmann's dump writes
// it, so that a document need not be built as JSON values first.
#pragma once

#include <string>

namespace NZARVEK20 {

// `text` as a quoted JSON string: control characters as \b \t \n \f \r or
// \u00xx, and each maximal run of bytes that cannot start or continue valid
// UTF-8 as one U+FFFD, so that text still not UTF-8 after conversion cannot
// make the whole document unreadable.
void AppendJsonString(std::string& out, const std::string& text);

// A finite number in the shortest form that reads back the same ("0.1",
// "100.0", "1e+300"); anything else as null.
void AppendJsonReal(std::string& out, double value);

}  // namespace NZARVEK20
