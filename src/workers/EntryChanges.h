#pragma once

#include <atomic>
#include <string>

#include "kit/Message.h"
#include "remote/BrowserUi.h"
#include "remote/Outcome.h"
#include "remote/RemoteEntry.h"

namespace corvane {

class RemoteSession;

/// Carries out a browser's requests that change what stands in a directory, and shows what came of
/// them. Each ends as Done with a text where the user is to read what was refused. Worker threads;
/// the caller holds the session's lease.
class EntryChanges {
 public:
  /// Ends soon once `stopped` is true. Nothing is owned.
  EntryChanges(RemoteSession& session, BrowserUi& window, const std::atomic<bool>& stopped)
      : session_(session), window_(window), stopped_(stopped) {}

  /// 'DELE'; `verdict` becomes what the status is to say at the end.
  Outcome Delete(const Message& entries, Text& verdict);
  /// 'RNFL'.
  Outcome Rename(const Message& entry);
  /// 'MOVE'.
  Outcome Move(const Message& entries);
  /// 'DUPL'.
  Outcome Duplicate(const Message& entry);
  /// 'STAT'.
  Outcome LookAt(const Message& entries);

 private:
  /// Whether anything stands at a path.
  Outcome IsTaken(const std::string& path, bool& taken);
  Outcome MoveOne(const std::string& from, const std::string& to);
  /// Shows what stands under a name, or what is `known` of it where the server does not tell.
  Outcome Show(const std::string& directory, RemoteEntry known);
  Outcome ShowFromListing(const std::string& directory, const Message& entries);
  /// How a request on many entries ends.
  [[nodiscard]] Outcome Ended(Text refused) const;

  RemoteSession& session_;
  BrowserUi& window_;
  const std::atomic<bool>& stopped_;
};

}  // namespace corvane
