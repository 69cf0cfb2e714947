#include "util/Encodings.h"

#include <iconv.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>

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

bool IsAscii(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

constexpr char kUtf8[] = "UTF-8";

// A way from one encoding to another, where the system has it.
class Converter {
 public:
  Converter(const std::string& from, const std::string& to)
      : way_(::iconv_open(to.c_str(), from.c_str())) {}
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  ~Converter() {
    if (IsOpen()) ::iconv_close(way_);
  }

  // Nothing where the bytes are not all of the one encoding, or the other lacks a character.
  std::optional<std::string> Convert(std::string_view bytes) {
    constexpr std::size_t kMostPerByte = 4;
    if (!IsOpen()) return std::nullopt;
    std::string out(bytes.size() * kMostPerByte + kMostPerByte, '\0');
    // iconv takes what it only reads by a pointer that could be written through.
    char* from = const_cast<char*>(bytes.data());
    std::size_t left = bytes.size();
    char* to = out.data();
    std::size_t room = out.size();
    ::iconv(way_, nullptr, nullptr, nullptr, nullptr);
    const bool exact = ::iconv(way_, &from, &left, &to, &room) == 0 && left == 0 &&
                       ::iconv(way_, nullptr, nullptr, &to, &room) == 0;
    if (!exact) return std::nullopt;
    out.resize(out.size() - room);
    return out;
  }

 private:
  [[nodiscard]] bool IsOpen() const {  // The library's "(iconv_t)-1".
    return reinterpret_cast<std::intptr_t>(way_) != -1;
  }

  iconv_t way_;
};

// Opening a way takes up to milliseconds, so each thread keeps the few that it uses.
std::optional<std::string> Converted(std::string_view bytes, const std::string& from,
                                     const std::string& to) {
  thread_local std::map<std::pair<std::string, std::string>, Converter> ways;
  const auto [way, fresh] = ways.try_emplace({from, to}, from, to);
  return way->second.Convert(bytes);
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

std::vector<OfferedEncoding> OfferedEncodings() {
  return {
      {Text("Western European"), "WINDOWS-1252"},
      {Text("Western European (ISO)"), "ISO-8859-15"},
      {Text("Central European"), "WINDOWS-1250"},
      {Text("Central European (ISO)"), "ISO-8859-2"},
      {Text("Cyrillic"), "WINDOWS-1251"},
      {Text("Cyrillic (KOI8-R)"), "KOI8-R"},
      {Text("Cyrillic (KOI8-U)"), "KOI8-U"},
      {Text("Greek"), "WINDOWS-1253"},
      {Text("Turkish"), "WINDOWS-1254"},
      {Text("Baltic"), "WINDOWS-1257"},
      {Text("Japanese (Shift_JIS)"), "CP932"},
      {Text("Japanese (EUC)"), "EUC-JP"},
      {Text("Korean"), "EUC-KR"},
      {Text("Chinese, simplified"), "GBK"},
      {Text("Chinese, traditional"), "BIG5"},
  };
}

std::string Decoded(std::string_view bytes, const std::string& encoding) {
  if (IsUtf8(bytes)) return std::string(bytes);
  if (!encoding.empty()) {
    if (auto text = Converted(bytes, encoding, kUtf8); text && IsUtf8(*text)) return *text;
  }
  std::string text;
  for (const char byte : bytes) AppendUtf8(text, static_cast<unsigned char>(byte));
  return text;
}

std::optional<std::string> Encoded(std::string_view text, const std::string& encoding) {
  if (encoding.empty() || IsAscii(text) || !IsUtf8(text)) return std::string(text);
  return Converted(text, kUtf8, encoding);
}

std::string DisplayText(std::string_view bytes, const std::string& encoding) {
  std::string shown;
  shown.reserve(bytes.size());
  const std::string text = Decoded(bytes, encoding);
  for (std::string_view rest = text; !rest.empty();) {
    std::uint32_t code = 0;
    rest.remove_prefix(DecodeUtf8(rest, code));
    AppendVisible(shown, code);
  }
  return shown;
}

}  // namespace corvane
