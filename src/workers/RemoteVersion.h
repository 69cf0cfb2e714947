#pragma once

#include <atomic>
#include <string>

#include "remote/FileVersion.h"
#include "remote/RemoteSession.h"

namespace corvane {

/// Whether a checksum is asked for too: the server reads the whole file for it.
enum class Thorough : bool { No, Yes };

/// Asks which state of a file stands on the server. Where the server tells neither a time nor a
/// checksum, a thorough look fetches the file and makes one. On the thread that holds the session's
/// lease; ends soon once `cancelled` is true. Done where the server could tell.
Outcome AskVersion(RemoteSession& session, const std::string& path, Thorough thorough,
                   const std::atomic<bool>& cancelled, FileVersion& version);

}  // namespace corvane
