#include "util/Encodings.h"

#include <cstdint>

namespace corvane {
namespace {

// Decodes the character at the front of `bytes`; returns its length, or 0 where it is ill-formed.
std::size_t DecodeUtf8(std::string_view bytes, std::uint32_t& code) {
  const auto byte = [bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned char lead = byte(0);
  if (lead < 0x80) {
    code = lead;
    return 1;
  }
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || length > bytes.size()) return 0;
  code = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
    code = code << 6 | (byte(i) & 0x3FU);
  }
  const bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  return overlong || surrogate || code > 0x10FFFF ? 0 : length;
}

void AppendUtf8(std::string& out, std::uint32_t code) {
  const auto tail = [code](int shift) { return static_cast<char>(0x80 | (code >> shift & 0x3F)); };
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | code >> 6);
    out += tail(0);
  } else if (code < 0x10000) {
    out += static_cast<char>(0xE0 | code >> 12);
    out += tail(6);
    out += tail(0);
  } else {
    out += static_cast<char>(0xF0 | code >> 18);
    out += tail(12);
    out += tail(6);
    out += tail(0);
  }
}

bool IsControl(std::uint32_t code) {
  return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

// Marks, embeddings, overrides and isolates of the writing direction, and the two separators that
// break a line like a line feed does.
bool IsDirectional(std::uint32_t code) {
  return code == 0x061C || code == 0x200E || code == 0x200F || (code >= 0x2028 && code <= 0x202E) ||
         (code >= 0x2066 && code <= 0x2069);
}

void AppendVisible(std::string& out, std::uint32_t code) {
  if (!IsControl(code) && !IsDirectional(code)) {
    AppendUtf8(out, code);
    return;
  }
  out += IsControl(code) ? "\\x" : "\\u";
  for (int shift = IsControl(code) ? 4 : 12; shift >= 0; shift -= 4) {
    out += "0123456789ABCDEF"[code >> shift & 0xF];
  }
}

}  // namespace

bool IsUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    std::uint32_t code = 0;
    const std::size_t length = DecodeUtf8(bytes, code);
    if (length == 0) return false;
    bytes.remove_prefix(length);
  }
  return true;
}

std::string DisplayText(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  const bool utf8 = IsUtf8(bytes);
  while (!bytes.empty()) {
    std::uint32_t code = static_cast<unsigned char>(bytes.front());
    bytes.remove_prefix(utf8 ? DecodeUtf8(bytes, code) : 1);
    AppendVisible(text, code);
  }
  return text;
}

}  // namespace corvane
