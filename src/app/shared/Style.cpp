#include "app/shared/Style.h"

#include <algorithm>

#include "app/shared/ClassicStyle.h"
#include "app/shared/ModernStyle.h"
#include "settings/ProcessSettings.h"
#include "util/Encodings.h"

namespace corvane {

const Style& Style::InForce() {
  static const ClassicStyle classic;
  static const ModernStyle modern;
  if (ProcessSettings::Get().classicStyle) return classic;
  return modern;
}

qsizetype CharactersIn(const std::string& bytes) {
  if (!IsUtf8(bytes)) return std::ssize(bytes);
  return std::ranges::count_if(bytes, [](char c) { return (c & '\xC0') != '\x80'; });
}

}  // namespace corvane
