#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "remote/OwnerUi.h"

namespace corvane {

/// What does not hold is a fault: libFuzzer keeps the input.
inline void Check(bool holds) {
  if (!holds) std::abort();
}

/// Takes a line, or what stands before another `end`, from the front of `text`.
inline std::string_view Take(std::string_view& text, std::string_view end = "\n") {
  const std::string_view part = text.substr(0, text.find(end));
  text.remove_prefix(std::min(part.size() + end.size(), text.size()));
  return part;
}

/// Who owns a session and is told everything.
struct Nobody : OwnerUi {
  bool PostMessage(Message /*message*/) override { return true; }
  bool PlaySound(Sound /*sound*/) override { return true; }
  bool SetStatus(const Text& /*text*/) override { return true; }
  bool AppendLog(std::string_view /*line*/) override { return true; }
};

}  // namespace corvane
