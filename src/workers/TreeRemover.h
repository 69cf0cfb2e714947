#pragma once

#include <string>
#include <utility>

#include "remote/OwnerUi.h"
#include "remote/RemoteEntry.h"
#include "workers/Refusals.h"
#include "workers/WayDown.h"

namespace corvane {

class RemoteSession;

/// Deletes entries of a server, directories with all that is in them. Links are deleted where the
/// user chose them, and never followed. Worker threads; the caller holds the session's lease.
class TreeRemover {
 public:
  /// Works in `directory`. What is not deleted goes to `refused`. Nothing is owned.
  TreeRemover(RemoteSession& session, OwnerUi& owner, Refusals& refused, std::string directory)
      : session_(session),
        owner_(owner),
        refused_(refused),
        directory_(std::move(directory)),
        way_(session) {}

  /// Deletes one entry of the directory; false when it is still there.
  bool Remove(const std::string& name, RemoteEntry::Kind kind);

 private:
  bool RemoveFile(const std::string& path);
  bool DeleteDirectory(const std::string& path);
  bool DeleteEntries(const std::string& directory);
  bool DeleteEntry(const std::string& directory, const RemoteEntry& entry);
  void Refuse(const std::string& path, const Text& why);
  void Note(const std::string& path, const Outcome& outcome);

  RemoteSession& session_;
  OwnerUi& owner_;
  Refusals& refused_;
  const std::string directory_;
  WayDown way_;
};

}  // namespace corvane
