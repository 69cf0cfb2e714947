#pragma once

#include <QPointer>
#include <cstdint>
#include <string>
#include <vector>

#include "app/Connection.h"
#include "ftp/fileStruct.h"

namespace corvane {

class MWindow;

/// What a browser window asks of the transfer window. Names and paths are raw bytes.
struct DownloadRequest {
  Connection connection;
  std::string remoteDirectory;
  std::string where;              ///< the local folder
  std::vector<fileStruct> items;  ///< displayName: the local name
  std::int64_t size = 0;
  bool overwrite = true;  ///< false resumes at the local file's length
};

struct UploadRequest {
  Connection connection;
  std::string remoteDirectory;
  std::vector<std::string> localItems;  ///< paths
  QPointer<MWindow> window;             ///< told of each entry that arrived
};

}  // namespace corvane
