// An answer for people: named columns and rows of text, as a table or as JSON.
#pragma once

#include <iosfwd>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace vrxstore {

struct Answer {
  std::vector<std::string> columns;
  std::vector<std::vector<std::string>> rows;
};

// Columns aligned under their names, a rule between; "(none)" when there is no row.
void writeTable(std::ostream& out, const Answer& answer);
// An array of objects, one per row, members named by the columns.
nlohmann::json jsonOf(const Answer& answer);
void writeJson(std::ostream& out, const Answer& answer);

}  // namespace vrxstore
