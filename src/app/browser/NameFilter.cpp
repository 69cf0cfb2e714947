#include "app/browser/NameFilter.h"

#include <algorithm>
#include <iterator>

#include "app/browser/MWListItem.h"
#include "app/shared/ScreenText.h"

namespace corvane {
namespace {

bool IsAscii(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 128; });
}

bool SameLetters(char name, char lowered) {
  return Lowered(name) == static_cast<unsigned char>(lowered);
}

}  // namespace

NameFilter::NameFilter(const QString& text) : text_(text) {
  const std::string bytes = ToBytes(text);
  if (!IsAscii(bytes)) return;
  std::ranges::transform(bytes, std::back_inserter(ascii_),
                         [](char c) { return static_cast<char>(Lowered(c)); });
}

// No byte of a longer character is an ASCII one, so bytes are compared where they can be.
bool NameFilter::Matches(const MWListItem& item) const {
  const std::string_view name = item.Name();
  if (text_.isEmpty()) return true;
  if (!ascii_.empty()) {
    return std::search(name.begin(), name.end(), ascii_.begin(), ascii_.end(), SameLetters) !=
           name.end();
  }
  return !IsAscii(name) && item.NameText().contains(text_, Qt::CaseInsensitive);
}

bool NameFilter::Begins(const MWListItem& item) const {
  const std::string_view name = item.Name();
  if (text_.isEmpty()) return true;
  if (!ascii_.empty()) {
    return name.size() >= ascii_.size() &&
           std::ranges::equal(name.substr(0, ascii_.size()), ascii_, SameLetters);
  }
  return !IsAscii(name) && item.NameText().startsWith(text_, Qt::CaseInsensitive);
}

}  // namespace corvane
