#include "winapi/machine_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "winapi/machine.h"

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

// The parser's explanation without its own "[json.exception…] parse error at line …:" prefix.
std::string explanation(const nlohmann::json::parse_error& error) {
    std::string what = error.what();
    std::size_t column = what.find(", column ");
    std::size_t colon = what.find(": ", column == std::string::npos ? 0 : column);
    return colon == std::string::npos ? what : what.substr(colon + 2);
}

}  // namespace

nlohmann::json readMachineFile(const std::string& file) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) throw MachineError(file + ": not a regular file");
    std::ifstream in(file, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (!in.is_open() || in.bad()) throw MachineError(file + ": cannot read: " + std::strerror(errno));
    return parseMachineText(bytes, file);
}

nlohmann::json parseMachineText(std::string_view text, const std::string& file) {
    try {
        return nlohmann::json::parse(text);
    } catch (const nlohmann::json::parse_error& error) {
        // `byte` counts from 1 and is the character the parser stopped at.
        std::size_t offset = error.byte == 0 ? 0 : error.byte - 1;
        throw MachineError(file + ":" + lineAndColumn(text, offset) + ": " + explanation(error));
    }
}

}  // namespace winapi
