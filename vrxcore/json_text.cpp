#include "vrxcore/json_text.h"

#include <cstdio>
#include <nlohmann/json.hpp>

namespace NZARVEK20 {
namespace {

// What a lead byte announces: the length of its sequence (0 for a byte that
// starts none) and the range its second byte must fall in, which rules out
// overlong forms, surrogates and characters beyond U+10FFFF.
struct TLead {
  unsigned length;
  unsigned char low, high;
};

TLead leadOf(unsigned char byte) {
  if (byte < 0x80) return {1, 0, 0};
  if (byte < 0xC2) return {0, 0, 0};
  if (byte < 0xE0) return {2, 0x80, 0xBF};
  if (byte == 0xE0) return {3, 0xA0, 0xBF};
  if (byte == 0xED) return {3, 0x80, 0x9F};
  if (byte < 0xF0) return {3, 0x80, 0xBF};
  if (byte == 0xF0) return {4, 0x90, 0xBF};
  if (byte < 0xF4) return {4, 0x80, 0xBF};
  if (byte == 0xF4) return {4, 0x80, 0x8F};
  return {0, 0, 0};
}

// The bytes from `at` that belong to the sequence its lead byte starts, as
// far as they are valid; the sequence is whole when this is its length.
unsigned validPrefix(const std::string& text, size_t at, const TLead& lead) {
  unsigned length = 1;
  for (; length < lead.length && at + length < text.size(); ++length) {
    const unsigned char byte = static_cast<unsigned char>(text[at + length]);
    const unsigned char low = length == 1 ? lead.low : 0x80, high = length == 1 ? lead.high : 0xBF;
    if (byte < low || byte > high) break;
  }
  return length;
}

bool isPlain(unsigned char byte) {
  return byte >= 0x20 && byte < 0x80 && byte != '"' && byte != '\\';
}

void appendEscaped(std::string& out, unsigned char byte) {
  switch (byte) {
    case '"':
      out += "\\\"";
      return;
    case '\\':
      out += "\\\\";
      return;
    case '\b':
      out += "\\b";
      return;
    case '\t':
      out += "\\t";
      return;
    case '\n':
      out += "\\n";
      return;
    case '\f':
      out += "\\f";
      return;
    case '\r':
      out += "\\r";
      return;
  }
  char escape[8];
  std::snprintf(escape, sizeof escape, "\\u%04x", byte);
  out += escape;
}

}  // namespace

void AppendJsonString(std::string& out, const std::string& text) {
  out += '"';
  for (size_t at = 0; at < text.size();) {
    const unsigned char byte = static_cast<unsigned char>(text[at]);
    if (isPlain(byte)) {
      size_t end = at + 1;
      while (end < text.size() && isPlain(static_cast<unsigned char>(text[end]))) ++end;
      out.append(text, at, end - at);
      at = end;
    } else if (byte < 0x80) {
      appendEscaped(out, byte);
      ++at;
    } else {
      const TLead lead = leadOf(byte);
      const unsigned length = lead.length ? validPrefix(text, at, lead) : 1;
      if (length == lead.length)
        out.append(text, at, length);
      else
        out += "\xEF\xBF\xBD";
      at += length;
    }
  }
  out += '"';
}

void AppendJsonReal(std::string& out, double value) {
  // Rare enough that the library's own formatting is worth its small cost.
  out += nlohmann::json(value).dump();
}

}  // namespace NZARVEK20
