#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "util/UniqueFd.h"

namespace corvane {

/// One program runs per user. The first start holds a lock, which ends with its process however
/// that ends, and listens on a socket; every later one hands its request over to it. Both stand in
/// a folder that only the user can enter. Needs no display.
class RunningProgram {
 public:
  enum class Start {
    First,       ///< this is the running program, or could be
    HandedOver,  ///< the running program has taken the request
    Refused,     ///< the running program does not take this request
    NoAnswer     ///< there is one, but it did not answer in time
  };
  /// Long enough for a program that is just starting, or quitting.
  static constexpr std::chrono::milliseconds kPatience{5000};

  /// Finds the folder: in $XDG_RUNTIME_DIR, else in the user's cache directory. Where neither is
  /// the user's own, every start is a first one.
  RunningProgram();
  ~RunningProgram() { End(); }
  RunningProgram(const RunningProgram&) = delete;
  RunningProgram& operator=(const RunningProgram&) = delete;

  /// What becomes of a start with these arguments. Waits at most `patience`.
  [[nodiscard]] Start Begin(const std::vector<std::string>& arguments,
                            std::chrono::milliseconds patience = kPatience);

  /// Gives a request to the running program, if there is one, and never becomes it. Waits at most
  /// `patience`.
  [[nodiscard]] Start Offer(const std::string& request,
                            std::chrono::milliseconds patience = kPatience) const;

  /// Whether a running program could be found at all.
  [[nodiscard]] bool HasFolder() const { return static_cast<bool>(folder_); }

  /// Whether no other process of the user holds the lock of that name. It ends with the process.
  [[nodiscard]] bool TakeLock(const char* name);

  /// Where the requests of later starts arrive; -1 when none can.
  [[nodiscard]] int Listener() const { return listener_.get(); }

  /// Makes room for another first one. Starts whose request waits unanswered come to know it.
  void End();

 private:
  /// Takes the lock of the running program or, while another one has it, hands over.
  [[nodiscard]] Start Settle(const std::string& request, std::chrono::milliseconds patience) const;
  void Listen();

  UniqueFd folder_;
  UniqueFd lock_;  // a further one than the running program's
  UniqueFd listener_;
};

}  // namespace corvane
