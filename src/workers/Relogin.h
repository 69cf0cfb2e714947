#pragma once

#include <cstdint>

#include "kit/Text.h"
#include "remote/BrowserUi.h"
#include "remote/Loss.h"
#include "remote/Outcome.h"

namespace corvane {

class RemoteSession;

/// Logs a browser's connection in anew, without a question, where it was lost meanwhile. Worker
/// threads; the caller holds the session's lease.
class Relogin {
 public:
  /// Neither is owned.
  Relogin(RemoteSession& session, BrowserUi& window) : session_(session), window_(window) {}

  /// A request begins: sees to it that the connection stands.
  Outcome Ready();
  /// Whether the request, of which that came, can be carried out once more: its first command found
  /// the connection gone, and no command that changes something may have been carried out.
  [[nodiscard]] bool MayRepeat(const Outcome& outcome) const;
  /// Connects again. Lost where the server cannot be reached or does not let the user in.
  Outcome LogIn();

  /// The connection stands again by another way.
  void Mended() { failed_ = {}; }

  /// Tells the user that the connection is gone.
  void TellLoss();
  /// What has happened to the connection in this request, for the user; empty where nothing has.
  [[nodiscard]] const Text& Said() const { return said_; }

 private:
  RemoteSession& session_;
  BrowserUi& window_;
  std::uint64_t answers_ = 0;  // when the request began
  Loss loss_;                  // the one that a login has not mended yet
  Text failed_;                // why that login failed
  Text said_;
};

}  // namespace corvane
