#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "remote/OwnerUi.h"
#include "remote/RemoteEntry.h"
#include "workers/Refusals.h"
#include "workers/TreeBounds.h"
#include "workers/WayDown.h"

namespace corvane {

class RemoteSession;

/// Deletes entries of a server, directories with all that is in them. A directory is removed only
/// where all in it was. Links are deleted where the user chose them, and never followed: in
/// directories they are left alone. Worker threads; the caller holds the session's lease.
class TreeRemover {
 public:
  /// Works in `directory`. What is not deleted goes to `refused`. Nothing is owned.
  TreeRemover(RemoteSession& session, OwnerUi& owner, Refusals& refused, std::string directory,
              TreeBounds bounds = {})
      : session_(session),
        owner_(owner),
        refused_(refused),
        directory_(std::move(directory)),
        bounds_(bounds),
        way_(session, bounds.depth) {}

  /// Deletes one directory of the directory; false when it is still there.
  bool RemoveDirectory(const std::string& name);
  /// Deletes files and links of the directory. `each` is told in turn whether one is gone; false
  /// from it ends it.
  void RemoveFiles(const std::vector<std::string>& names, const std::function<bool(bool)>& each);

 private:
  /// Deletes files, of which `each` is told in turn whether one is gone; `status` stands meanwhile.
  void DeleteFiles(const std::string& directory, const std::vector<std::string>& names,
                   const Text& status, const std::function<bool(bool)>& each);
  bool DeleteDirectory(const std::string& path);
  bool DeleteEntries(const std::string& directory);
  bool DeleteEntry(const std::string& directory, const RemoteEntry& entry);
  void Refuse(const std::string& path, const Text& why);
  void Note(const std::string& path, const Outcome& outcome);

  RemoteSession& session_;
  OwnerUi& owner_;
  Refusals& refused_;
  const std::string directory_;
  const TreeBounds bounds_;
  WayDown way_;
  std::int64_t seen_ = 0;  // entries of the directories that were listed
  bool over_ = false;      // nothing more is to be deleted
};

}  // namespace corvane
