#include "util/FreeNames.h"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>

#include <algorithm>
#include <charconv>
#include <memory>

namespace corvane {
namespace {

struct NameParts {
  std::string_view stem;
  std::int64_t number = 1;
  std::string_view extension;  // with its dot
};

/// Takes " (7)" off the end of a stem.
void TakeNumber(NameParts& parts) {
  constexpr std::size_t kMostDigits = 9;
  const std::string_view stem = parts.stem;
  const std::size_t open = stem.rfind(" (");
  if (open == std::string_view::npos || open == 0 || !stem.ends_with(')')) return;
  const std::string_view digits = stem.substr(open + 2, stem.size() - open - 3);
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(digits.begin(), digits.end(), number);
  if (digits.empty() || digits.size() > kMostDigits || end != digits.end() || number < 1) return;
  parts.number = number;
  parts.stem = stem.substr(0, open);
}

/// A dot at the beginning hides a file and begins no extension.
NameParts Split(std::string_view name, bool folder) {
  constexpr std::string_view kArchive = ".tar";
  NameParts parts{.stem = name, .extension = {}};
  const std::size_t dot = name.rfind('.');
  if (!folder && dot != std::string_view::npos && dot > 0) {
    const std::string_view before = name.substr(0, dot);
    const bool archive = before.size() > kArchive.size() && before.ends_with(kArchive);
    const std::size_t cut = archive ? dot - kArchive.size() : dot;
    parts.stem = name.substr(0, cut);
    parts.extension = name.substr(cut);
  }
  TakeNumber(parts);
  return parts;
}

/// The first bytes of a name, without the half of a UTF-8 character at their end.
std::string_view Beginning(std::string_view name, std::size_t length) {
  if (name.size() <= length) return name;
  const auto continues = [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
  };
  while (length > 0 && continues(name[length])) --length;
  return name.substr(0, length);
}

}  // namespace

void FreeNames::TakeIn(int directory) {
  const int fd = ::openat(directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  const std::unique_ptr<DIR, decltype([](DIR* each) { ::closedir(each); })> opened(::fdopendir(fd));
  if (opened == nullptr) return;
  while (const dirent* each = ::readdir(opened.get())) Take(each->d_name);
}

std::string FreeNames::Next(std::string_view name, bool folder) {
  const NameParts parts = Split(name, folder);
  const std::string extension(Beginning(parts.extension, NAME_MAX / 2));
  std::int64_t& number = next_[std::string(parts.stem) + extension];
  number = std::max(number, parts.number + 1);
  for (;; ++number) {
    const std::string ending = " (" + std::to_string(number) + ")" + extension;
    std::string free(Beginning(parts.stem, NAME_MAX - ending.size()));
    free += ending;
    if (!taken_.insert(free).second) continue;
    ++number;
    return free;
  }
}

}  // namespace corvane
