#include "workers/TreeCounter.h"

#include "remote/RemotePath.h"

namespace corvane {

Outcome TreeCounter::First(RemoteSession& /*session*/) {
  for (const std::string& name : names_) Add({PathBelow(base, name)});
  return {};
}

}  // namespace corvane
