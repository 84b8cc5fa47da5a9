// Writes committed instances as text tables for a terminal.
#pragma once

#include <iosfwd>
#include <string>

#include "vrxcore/instance_walk.h"

namespace NZARVEK20 {

// One section per class, in the order the classes first appear: a heading
// with the class and the number of instances, the keys that every row of
// the section shares, then one aligned row per instance with the other keys
// and the first few other properties that any row sets. Widths count the
// terminal columns of UTF-8 text; a cell wider than kMaxCellWidth is cut
// with an ellipsis; control characters and bytes that are not UTF-8 show
// as U+FFFD. Date-times read "2026-11-19 10:31:23 +01:00" or, for
// intervals, "3d 00:44:07".
void ExportTable(std::ostream& out, const std::string& namespaceName, const std::string& generator,
                 const TInstances& instances, const TTextEncoder& toUtf8);

constexpr unsigned kMaxCellWidth = 40;
constexpr unsigned kTellingColumns = 3;

}  // namespace NZARVEK20
