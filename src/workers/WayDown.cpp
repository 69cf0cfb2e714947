#include "workers/WayDown.h"

#include <algorithm>

#include "remote/RemoteSession.h"

namespace corvane {

Outcome WayDown::Enter(const std::string& path, std::string& where) {
  if (Outcome outcome = session_.Enter(path, where); !outcome.IsDone()) return outcome;
  if (std::ranges::find(paths_, where) != paths_.end()) {
    return {Outcome::Kind::Refused, 0,
            Text("The server lists a directory inside itself: %1", where)};
  }
  if (paths_.size() > kMaxDepth)
    return {Outcome::Kind::Refused, 0, Text("The directories are nested too deeply.")};
  paths_.push_back(where);
  return {};
}

}  // namespace corvane
