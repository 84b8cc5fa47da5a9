#include "winapi/machine/machine_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "winapi/machine/machine.h"

namespace winapi {

namespace {

// Line and column (1-based, in bytes) of the character at `offset`.
std::string lineAndColumn(std::string_view text, std::size_t offset) {
  offset = std::min(offset, text.size());
  std::size_t line = 1, lineStart = 0;
  for (std::size_t i = 0; i < offset; ++i) {
    if (text[i] == '\n') {
      ++line;
      lineStart = i + 1;
    }
  }
  return std::to_string(line) + ":" + std::to_string(offset - lineStart + 1);
}

// Builds the document as nlohmann's own builder does, but keeps the first error and where it
// happened instead of throwing: a number too large for a double is reported at its place too.
class DocumentBuilder : public nlohmann::detail::json_sax_dom_parser<nlohmann::json> {
 public:
  explicit DocumentBuilder(nlohmann::json& root) : json_sax_dom_parser(root, false) {}

  template <class Exception>
  bool parse_error(std::size_t position, const std::string& /*lastToken*/, const Exception& error) {
    position_ = position;
    message_ = error.what();
    return false;
  }

  // `position` counts from 1 and is the character the parser stopped at.
  std::size_t offset() const { return position_ == 0 ? 0 : position_ - 1; }
  // The parser's explanation without its "[json.exception…] parse error at line …:" prefix.
  std::string explanation() const {
    std::size_t start = message_.find("] ");
    std::string text = start == std::string::npos ? message_ : message_.substr(start + 2);
    std::size_t colon = text.rfind("parse error", 0) == 0 ? text.find(": ") : std::string::npos;
    return colon == std::string::npos ? text : text.substr(colon + 2);
  }

 private:
  std::size_t position_ = 0;
  std::string message_;
};

}  // namespace

nlohmann::json readMachineFile(const std::string& file) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error))
    throw MachineError(file + ": not a regular file");
  std::ifstream in(file, std::ios::binary);
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (!in.is_open() || in.bad())
    throw MachineError(file + ": cannot read: " + std::strerror(errno));
  return parseMachineText(bytes, file);
}

nlohmann::json parseMachineText(std::string_view text, const std::string& file) {
  nlohmann::json document;
  DocumentBuilder builder(document);
  if (!nlohmann::json::sax_parse(text, &builder))
    throw MachineError(file + ":" + lineAndColumn(text, builder.offset()) + ": " +
                       builder.explanation());
  return document;
}

std::string readMachineBytes(const std::string& file, std::uintmax_t limitMiB) {
  std::error_code error;
  std::uintmax_t size = std::filesystem::file_size(file, error);
  if (error) throw MachineError(file + ": cannot read: " + error.message());
  if (size > (limitMiB << 20))
    throw MachineError(file + ": larger than " + std::to_string(limitMiB) + " MiB");
  std::ifstream in(file, std::ios::binary);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!in.is_open() || in.bad()) throw MachineError(file + ": cannot read");
  bytes.resize(static_cast<std::size_t>(in.gcount()));
  return bytes;
}

}  // namespace winapi
