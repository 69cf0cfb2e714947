#pragma once

#include <cstdint>
#include <string>

#include "app/shared/TransferListener.h"
#include "remote/Site.h"

namespace corvane {

/// A server's file that the user wants to open in a program here. A value.
struct EditRequest {
  Site site{};
  std::string remote{};    ///< its path on the server, raw bytes
  std::string name{};      ///< for the copy here, raw bytes
  std::int64_t size = -1;  ///< as listed; -1 when not known
  bool edits = false;      ///< in the text editor, else in its own program
  bool inPlace = false;    ///< sent back by writing into what stands there, which may be a link
  /// What the window that asks wants to hear of uploads.
  TransferListener listener{};
};

}  // namespace corvane
