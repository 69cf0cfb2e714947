#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "ftp/fileStruct.h"

namespace corvane {

class MFtp;

/// The description of one queued transfer. A value; the engine is shared with whoever made it.
struct transferStruct {
  std::string name;             ///< what the row calls the transfer
  std::string remoteDirectory;  ///< the server directory it works in
  std::string targetFolder;     ///< the local folder that downloads are saved into
  std::int64_t size = 0;        ///< bytes in all, as far as known
  bool download = true;
  bool overwrite = true;  ///< false resumes at the local file's length
  std::shared_ptr<MFtp> engine;
  std::vector<fileStruct> items;        ///< files and directories to download
  std::vector<std::string> localItems;  ///< paths of files and folders to upload
};

}  // namespace corvane
