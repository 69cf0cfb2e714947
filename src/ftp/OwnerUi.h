#pragma once

#include <string_view>

#include "kit/Message.h"

namespace corvane {

/// What every owner of a connection offers it. Any thread may call; every call returns at once and
/// answers false once the owner is closing: the caller then stops.
class OwnerUi {
 public:
  virtual ~OwnerUi() = default;

  /// Hands the owner a message: 'FERR' (fatal, "error"), 'GERR' (warning, "warning", and "passive"
  /// when no data connection came about in that mode), 'LOST' (the connection is gone, "warning"),
  /// 'DWLD', 'ADDI', 'DONE' (a looper has carried out the request of the code "request", or has
  /// not; the listing of one that lists may still be arriving).
  virtual bool PostMessage(Message message) = 0;

  /// Plays a sound file by path; "none", an empty path and a missing file play nothing.
  virtual bool PlaySound(std::string_view path) = 0;
};

}  // namespace corvane
