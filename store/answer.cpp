#include "store/answer.h"

#include <algorithm>
#include <ostream>

namespace vrxstore {
namespace {

void writeRow(std::ostream& out, const std::vector<std::string>& cells,
              const std::vector<std::size_t>& widths) {
  std::string line;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    line += cells[i];
    if (i + 1 < cells.size()) line += std::string(widths[i] - cells[i].size() + 2, ' ');
  }
  out << line << '\n';
}

}  // namespace

void writeTable(std::ostream& out, const Answer& answer) {
  std::vector<std::size_t> widths;
  for (const std::string& column : answer.columns) widths.push_back(column.size());
  for (const auto& row : answer.rows)
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
  writeRow(out, answer.columns, widths);
  std::vector<std::string> rule;
  for (std::size_t width : widths) rule.push_back(std::string(width, '-'));
  writeRow(out, rule, widths);
  for (const auto& row : answer.rows) writeRow(out, row, widths);
  if (answer.rows.empty()) out << "(none)\n";
}

nlohmann::json jsonOf(const Answer& answer) {
  nlohmann::json rows = nlohmann::json::array();
  for (const auto& row : answer.rows) {
    nlohmann::json object = nlohmann::json::object();
    for (std::size_t i = 0; i < row.size(); ++i) object[answer.columns[i]] = row[i];
    rows.push_back(object);
  }
  return rows;
}

void writeJson(std::ostream& out, const Answer& answer) { out << jsonOf(answer).dump(2) << '\n'; }

}  // namespace vrxstore
