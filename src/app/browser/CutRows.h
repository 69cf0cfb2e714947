#pragma once

#include <string>
#include <vector>

#include "remote/Site.h"

namespace corvane {

/// Rows that were cut in one browser window, to be pasted in it or another of that server. One for
/// the program. Names and paths are raw bytes. GUI thread.
struct CutRows {
  Site site;
  std::string directory;
  std::vector<std::string> names;

  [[nodiscard]] static const CutRows& Current();
  static void Cut(CutRows rows);
  static void Forget();

  /// Whether they can be moved into `into` of `to`.
  [[nodiscard]] bool CanMoveTo(const Site& to, const std::string& into) const;
};

}  // namespace corvane
