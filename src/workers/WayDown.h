#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "remote/Outcome.h"

namespace corvane {

class RemoteSession;

/// The directories on the way down a server's tree, by the paths that the server gave. A directory
/// that is on the way already, or above where it began, is not entered, nor is one too deep.
class WayDown {
 public:
  explicit WayDown(RemoteSession& session, std::size_t depth) : session_(session), depth_(depth) {}

  /// Enters a directory; `where` becomes its own path. It is on the way until Leave.
  Outcome Enter(const std::string& path, std::string& where);
  void Leave() { paths_.pop_back(); }
  /// Whether `path` was a link: the server says that one stands at `where` now. One that tells
  /// where it stands in another way than by paths is believed.
  [[nodiscard]] static bool LeadsElsewhere(const std::string& path, const std::string& where);

 private:
  RemoteSession& session_;
  const std::size_t depth_;
  std::string begin_;  // the directory in which the way begins
  std::vector<std::string> paths_;
};

}  // namespace corvane
