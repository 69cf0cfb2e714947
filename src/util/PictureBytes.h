#pragma once

#include <array>
#include <string_view>

namespace corvane {

/// Whether a file that begins with these bytes is a picture of points. Drawings that are markup,
/// such as SVG, are none: they could name other files, which nobody asked for.
[[nodiscard]] inline bool LooksLikePicture(std::string_view bytes) {
  using namespace std::string_view_literals;
  static constexpr std::array kBeginnings{"\x89PNG\r\n\x1A\n"sv, "\xFF\xD8\xFF"sv, "GIF87a"sv,
                                          "GIF89a"sv};
  for (const std::string_view beginning : kBeginnings)
    if (bytes.starts_with(beginning)) return true;
  if (bytes.size() < 16) return false;
  const bool windows = bytes.starts_with("BM"sv) && bytes.substr(6, 4) == "\0\0\0\0"sv;
  return windows || (bytes.starts_with("RIFF"sv) && bytes.substr(8, 4) == "WEBP"sv);
}

}  // namespace corvane
