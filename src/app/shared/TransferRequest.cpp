#include "app/shared/TransferRequest.h"

#include <utility>

namespace corvane {

const std::string& LocalName(const fileStruct& item) {
  return item.displayName.empty() ? item.name : item.displayName;
}

transferStruct Description(DownloadRequest request) {
  transferStruct description;
  description.remoteDirectory = std::move(request.remoteDirectory);
  description.targetFolder = std::move(request.where);
  description.size = request.size;
  description.overwrite = request.overwrite;
  description.items = std::move(request.items);
  return description;
}

transferStruct Description(UploadRequest request) {
  transferStruct description;
  description.remoteDirectory = std::move(request.remoteDirectory);
  description.download = false;
  description.localItems = std::move(request.localItems);
  return description;
}

}  // namespace corvane
