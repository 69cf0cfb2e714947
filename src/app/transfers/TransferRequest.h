#pragma once

#include <QPointer>
#include <cstdint>
#include <string>
#include <vector>

#include "ftp/fileStruct.h"
#include "remote/Site.h"
#include "workers/transferStruct.h"

namespace corvane {

class MWindow;

/// What a browser window asks to have moved. Names and paths are raw bytes.
struct DownloadRequest {
  Site connection;
  std::string remoteDirectory;
  std::string where;              ///< the local folder
  std::vector<fileStruct> items;  ///< displayName: the local name
  std::int64_t size = 0;
  bool overwrite = true;     ///< false resumes at the local file's length
  QPointer<MWindow> window;  ///< whose log gets the notes about entries that were left out
};

struct UploadRequest {
  Site connection;
  std::string remoteDirectory;
  std::vector<std::string> localItems;  ///< paths
  QPointer<MWindow> window;             ///< the same; told of each entry that arrived, too
};

/// The name under which a download is saved.
[[nodiscard]] const std::string& LocalName(const fileStruct& item);

/// A request as a transfer, still without an engine.
[[nodiscard]] transferStruct Description(DownloadRequest request);
[[nodiscard]] transferStruct Description(UploadRequest request);

}  // namespace corvane
