#include "app/browser/History.h"

#include <algorithm>
#include <utility>

namespace corvane {

bool History::Visit(const std::string& path) {
  const std::string expected = std::exchange(expected_, {});
  if (path.empty() || (!paths_.empty() && paths_[at_] == path)) return false;
  if (path == expected && path == (ahead_ ? Forward() : Back())) {
    ahead_ ? ++at_ : --at_;
    return true;
  }
  if (!paths_.empty()) paths_.resize(at_ + 1);
  paths_.push_back(path);
  if (paths_.size() > kMost) paths_.erase(paths_.begin());
  at_ = paths_.size() - 1;
  return false;
}

std::string History::Back() const {
  return paths_.empty() || at_ == 0 ? std::string() : paths_[at_ - 1];
}

std::string History::Forward() const {
  return at_ + 1 < paths_.size() ? paths_[at_ + 1] : std::string();
}

std::vector<std::string> History::Recent() const {
  std::vector<std::string> recent;
  for (auto path = paths_.rbegin(); path != paths_.rend(); ++path) {
    if (std::ranges::find(recent, *path) == recent.end()) recent.push_back(*path);
  }
  return recent;
}

}  // namespace corvane
