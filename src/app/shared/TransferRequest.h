#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "app/shared/Connection.h"
#include "ftp/fileStruct.h"
#include "kit/Message.h"
#include "workers/transferStruct.h"

namespace corvane {

/// What the window that asked for a transfer wants to hear of it. Called on the GUI thread, also
/// after that window has gone: the functions hold weak handles. Either may be empty.
struct TransferListener {
  /// An upload has brought an entry; the message is the worker's 'ADDI'.
  std::function<void(const Message& entry)> arrived;
  /// A line about an entry that was left out, for the window's log.
  std::function<void(std::string_view line)> noted;
};

/// What a browser window asks to have moved. Names and paths are raw bytes.
struct DownloadRequest {
  Connection connection;
  std::string remoteDirectory;
  std::string where;              ///< the local folder
  std::vector<fileStruct> items;  ///< displayName: the local name
  std::int64_t size = 0;
  bool overwrite = true;  ///< false resumes at the local file's length
  TransferListener listener;
};

struct UploadRequest {
  Connection connection;
  std::string remoteDirectory;
  std::vector<std::string> localItems;  ///< paths
  TransferListener listener;
};

/// The name under which a download is saved.
[[nodiscard]] const std::string& LocalName(const fileStruct& item);

/// A request as a transfer, still without an engine.
[[nodiscard]] transferStruct Description(DownloadRequest request);
[[nodiscard]] transferStruct Description(UploadRequest request);

}  // namespace corvane
