#include "vrxcore/table_exporter.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <ostream>

#include "vrxcore/utf8_text.h"

namespace NZARVEK20 {
namespace {

// Text as a terminal shows it, with its width in columns.
struct TCell {
  std::string text;
  unsigned width = 0;
};

TCell fitted(const std::string& utf8) {
  // Printable ASCII that fits is shown as it is, a column a byte.
  if (utf8.size() <= kMaxCellWidth && isPlainAscii(utf8))
    return {utf8, static_cast<unsigned>(utf8.size())};
  TCell cell;
  const std::u32string characters = decodeUtf8(utf8);
  for (size_t i = 0; i < characters.size(); ++i) {
    const char32_t shown =
        isControlCharacter(characters[i]) ? kReplacementCharacter : characters[i];
    const unsigned width = displayWidth(shown);
    // Room for the ellipsis unless this is the last character and it fits.
    const bool last = i + 1 == characters.size();
    if (cell.width + width > kMaxCellWidth - (last ? 0 : 1)) {
      appendUtf8(cell.text, 0x2026);
      ++cell.width;
      break;
    }
    appendUtf8(cell.text, shown);
    cell.width += width;
  }
  return cell;
}

bool isCreationClassName(const std::string& keyName) {
  const std::string suffix = "CreationClassName";
  return keyName.size() >= suffix.size() &&
         keyName.compare(keyName.size() - suffix.size(), suffix.size(), suffix) == 0;
}

// "Class(value, ...)": the key values that tell instances apart, without
// the class names that CIM keeps in *CreationClassName keys.
std::string referenceText(const TCIMReference& path, const TTextEncoder& toUtf8) {
  std::string values;
  for (const auto& key : path.GetKeyBindings()) {
    if (isCreationClassName(key.first)) continue;
    values += (values.empty() ? "" : ", ") + ScalarText(key.second, toUtf8);
  }
  return path.GetInstanceClassName() + "(" + values + ")";
}

// "2026-11-19 10:31:23 +01:00" for a timestamp, "3d 00:44:07" for an
// interval: what people read, to the second.
std::string dateTimeText(const TCIMDateTime& dateTime) {
  char text[40];
  if (dateTime.IsInterval()) {
    std::snprintf(text, sizeof text, "%ud %02u:%02u:%02u", dateTime.GetDay(), dateTime.GetHours(),
                  dateTime.GetMinutes(), dateTime.GetSeconds());
  } else {
    const int offset = dateTime.GetUtcOffset();
    const unsigned magnitude = static_cast<unsigned>(offset < 0 ? -offset : offset);
    std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u %c%02u:%02u",
                  dateTime.GetYear(), dateTime.GetMonth(), dateTime.GetDay(), dateTime.GetHours(),
                  dateTime.GetMinutes(), dateTime.GetSeconds(), offset < 0 ? '-' : '+',
                  magnitude / 60, magnitude % 60);
  }
  return text;
}

std::string scalarCellText(const TCIMValue& value, const TTextEncoder& toUtf8) {
  if (value.IsNull()) return "";
  switch (static_cast<ECIMType>(value.GetType())) {
    case CIM_REFERENCE:
      return referenceText(value.GetReference(), toUtf8);
    case CIM_DATETIME:
      return dateTimeText(value.GetDateTime());
    default:
      return ScalarText(value, toUtf8);
  }
}

std::string cellText(const TCIMValue& value, const TTextEncoder& toUtf8) {
  if (!value.IsArray()) return scalarCellText(value, toUtf8);
  std::string text;
  for (const TCIMValue& element : value.GetElements())
    text += (text.empty() ? "" : "; ") + scalarCellText(element, toUtf8);
  return text;
}

struct TSection {
  boost::shared_ptr<ICIMClass> cimClass;
  std::vector<boost::shared_ptr<ICIMInstance>> rows;
};

std::vector<TSection> sectionsByClass(const TInstances& instances) {
  std::vector<TSection> sections;
  std::map<std::string, size_t> indexByClass;
  for (const auto& instance : instances) {
    auto cimClass = instance->GetClass({});
    const auto found = indexByClass.emplace(cimClass->GetName({}), sections.size());
    if (found.second) sections.push_back({cimClass, {}});
    sections[found.first->second].rows.push_back(instance);
  }
  return sections;
}

class TSectionWriter {
 public:
  TSectionWriter(const TSection& section, const TTextEncoder& toUtf8)
      : section_(section), toUtf8_(toUtf8) {}

  std::string Write() {
    const size_t count = section_.rows.size();
    out_ = section_.cimClass->GetName({}) + ": " + std::to_string(count) +
           (count == 1 ? " instance\n" : " instances\n");
    for (const std::string& key : KeyNamesOf(*section_.cimClass)) {
      if (count > 1 && SharedByAllRows(key))
        out_ += "  " + key + " = " + Shown(Cell(*section_.rows[0], key).text) + "\n";
      else
        columns_.push_back(key);
    }
    AddTellingColumns();
    WriteRows();
    return out_;
  }

 private:
  TCell Cell(ICIMInstance& row, const std::string& property) {
    return fitted(cellText(row.GetProperty(property, {})->GetValue({}), toUtf8_));
  }

  // An empty value must still be seen to be one in a heading.
  static std::string Shown(const std::string& text) { return text.empty() ? "\"\"" : text; }

  bool SharedByAllRows(const std::string& property) {
    const std::string first = Cell(*section_.rows[0], property).text;
    return std::all_of(section_.rows.begin(), section_.rows.end(),
                       [&](const auto& row) { return Cell(*row, property).text == first; });
  }

  bool SetInAnyRow(const std::string& property) {
    return std::any_of(section_.rows.begin(), section_.rows.end(), [&](const auto& row) {
      return !row->GetProperty(property, {})->GetValue({}).IsNull();
    });
  }

  void AddTellingColumns() {
    unsigned added = 0;
    for (const auto& property : PropertiesOf(*section_.rows[0])) {
      const std::string& name = property->GetName({});
      if (added == kTellingColumns) break;
      if (section_.cimClass->GetProperty(name, {})->IsKey({}) || !SetInAnyRow(name)) continue;
      columns_.push_back(name);
      ++added;
    }
  }

  void WriteRows() {
    std::vector<std::vector<TCell>> lines(1);
    for (const std::string& column : columns_) lines[0].push_back(fitted(column));
    for (const auto& row : section_.rows) {
      lines.emplace_back();
      for (const std::string& column : columns_) lines.back().push_back(Cell(*row, column));
    }
    std::vector<unsigned> widths(columns_.size(), 0);
    for (const auto& line : lines)
      for (size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], line[i].width);
    std::vector<TCell> rule;
    for (const unsigned width : widths) rule.push_back({std::string(width, '-'), width});
    lines.insert(lines.begin() + 1, rule);
    for (const auto& line : lines) WriteLine(line, widths);
  }

  void WriteLine(const std::vector<TCell>& cells, const std::vector<unsigned>& widths) {
    std::string line = " ";
    for (size_t i = 0; i < cells.size(); ++i) {
      line += " " + cells[i].text;
      line.append(widths[i] - cells[i].width + 1, ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out_ += line + "\n";
  }

  const TSection& section_;
  const TTextEncoder& toUtf8_;
  std::vector<std::string> columns_;
  std::string out_;
};

}  // namespace

void ExportTable(std::ostream& out, const std::string&, const std::string&,
                 const TInstances& instances, const TTextEncoder& toUtf8) {
  const char* separator = "";
  for (const TSection& section : sectionsByClass(instances)) {
    out << separator << TSectionWriter(section, toUtf8).Write();
    separator = "\n";
  }
}

}  // namespace NZARVEK20
