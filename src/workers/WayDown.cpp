#include "workers/WayDown.h"

#include <algorithm>

#include "remote/RemotePath.h"
#include "remote/RemoteSession.h"

namespace corvane {

Outcome WayDown::Enter(const std::string& path, std::string& where) {
  if (paths_.empty()) begin_ = SplitPath(path).first;
  if (Outcome outcome = session_.Enter(path, where); !outcome.IsDone()) return outcome;
  const bool above = where.starts_with('/') && IsAtOrAbove(where, begin_);
  if (above || std::ranges::find(paths_, where) != paths_.end()) {
    return {Outcome::Kind::Refused, 0,
            Text("The server lists a directory inside itself: %1", where)};
  }
  if (paths_.size() >= depth_)
    return {Outcome::Kind::Refused, 0, Text("The directories are nested too deeply.")};
  paths_.push_back(where);
  return {};
}

bool WayDown::LeadsElsewhere(const std::string& path, const std::string& where) {
  return where.starts_with('/') && WithoutTrailingSlash(path) != where;
}

}  // namespace corvane
