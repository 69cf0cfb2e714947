#include <algorithm>

#include "ftp/MFtp.h"
#include "net/NLException.h"

namespace corvane {
namespace {

std::string Below(const std::string& directory, const std::string& name) {
  if (directory.empty()) return {};
  return directory.ends_with('/') ? directory + name : directory + "/" + name;
}

// Whether ".." leads from one known directory to the other. It does not where a link was entered.
bool IsAbove(const std::string& parent, const std::string& directory) {
  if (parent.empty() || directory.empty()) return true;
  const std::size_t slash = directory.rfind('/');
  return directory.substr(0, slash == 0 ? 1 : slash) == parent;
}

}  // namespace

bool MFtp::EnterDirectory(Walk& walk, const std::string& name, bool ask) {
  if (walk.paths.empty())
    walk.paths.push_back(path_.empty() && ask ? AskPath().value_or("") : path_);
  const int code = ChangeDir(name);
  if (code < 200 || code >= 300) {
    if (code != 0) Fail(lastReplyText_);
    return false;
  }
  // Noted before the server is asked: from here on there is a way back.
  const std::string& above = walk.paths.back();
  walk.paths.push_back(Below(above, name));
  if (ask) walk.paths.back() = AskPath().value_or("");
  if (MayWalk(walk)) return true;
  const std::string why = failure_;
  LeaveDirectory(walk);
  Fail(why);
  return false;
}

// Whether the last step led where the name says. A server that does not tell where it stands, or
// tells it in another way, is believed.
bool MFtp::StandsBelow(const Walk& walk, const std::string& name) {
  const std::string& above = walk.paths[walk.paths.size() - 2];
  const std::string& here = walk.paths.back();
  if (!above.starts_with('/') || !here.starts_with('/')) return true;
  const std::string below = Below(above, name);
  return here == below || here == below + "/";
}

bool MFtp::MayWalk(const Walk& walk) {
  const std::string& path = walk.paths.back();
  const auto last = walk.paths.end() - 1;
  if (!path.empty() && std::find(walk.paths.begin(), last, path) != last) {
    Fail("The server lists a directory inside itself: " + path);
    return false;
  }
  if (walk.paths.size() <= kMaxDepth + 1) return true;
  Fail("The directories are nested too deeply.");
  return false;
}

bool MFtp::LeaveDirectory(Walk& walk) {
  const std::string left = std::move(walk.paths.back());
  walk.paths.pop_back();
  const std::string& above = walk.paths.back();
  auto changed = [this](std::string_view directory) {
    const int code = ChangeDir(directory);
    return code >= 200 && code < 300;
  };
  if (IsAbove(above, left) && changed("..")) return true;
  if (!above.empty() && changed(above)) return true;
  walk.lost = true;
  Fail("The server does not lead back to the directory above: " + lastReplyText_);
  return false;
}

void MFtp::ReturnToStart(Walk& walk) {
  if (walk.paths.empty() || lost_) return;
  const std::string start = walk.paths.front();
  const std::string command = "CWD " + start + "\n";
  if (start.empty() || !IsOneLine(command)) {
    while (walk.paths.size() > 1 && !walk.lost) LeaveDirectory(walk);
    if (walk.lost) GiveUp("The server does not lead back to its directory");
    return;
  }
  UpdateLog(command);
  SendControl(WithLineEnd(command));
  ++owedReplies_;
  returnOwed_ = true;
  walk = Walk{{start}};
  ReadOwedReply();
}

}  // namespace corvane
