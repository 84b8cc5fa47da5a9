#include "store/postgres_text.h"

namespace vrxstore {
namespace {

// Backslash, tab, newline and carriage return are COPY's own characters.
void appendCopyText(std::string& out, const std::string& text) {
  for (char c : text) {
    switch (c) {
      case '\\':
        out += "\\\\";
        break;
      case '\t':
        out += "\\t";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      default:
        out += c;
    }
  }
}

std::string elementText(const nlohmann::json& element) {
  if (element.is_boolean()) return element.get<bool>() ? "t" : "f";
  if (!element.is_string()) return element.dump();
  std::string text = "\"";
  for (char c : element.get<std::string>()) {
    if (c == '"' || c == '\\') text += '\\';
    text += c;
  }
  return text + "\"";
}

}  // namespace

std::string arrayLiteral(const nlohmann::json& array) {
  std::string literal = "{";
  for (const auto& element : array) {
    if (literal.size() > 1) literal += ',';
    literal += elementText(element);
  }
  return literal + "}";
}

void appendCopyRow(std::string& out, const std::vector<Cell>& row) {
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (i) out += '\t';
    const Cell& cell = row[i];
    switch (cell.kind) {
      case Cell::Kind::Null:
        out += "\\N";
        break;
      case Cell::Kind::Integer:
        out += std::to_string(cell.integer);
        break;
      case Cell::Kind::Boolean:
        out += cell.integer ? "t" : "f";
        break;
      case Cell::Kind::Real:
        out += nlohmann::json(cell.real).dump();
        break;
      case Cell::Kind::Array:
        appendCopyText(out, arrayLiteral(cell.array));
        break;
      default:
        appendCopyText(out, cell.text);
    }
  }
  out += '\n';
}

std::string numberedParameters(const std::string& sql) {
  std::string out;
  int number = 0;
  char quote = 0;
  for (char c : sql) {
    if (quote) {
      if (c == quote) quote = 0;
    } else if (c == '\'' || c == '"') {
      quote = c;
    } else if (c == '?') {
      out += "$" + std::to_string(++number);
      continue;
    }
    out += c;
  }
  return out;
}

}  // namespace vrxstore
