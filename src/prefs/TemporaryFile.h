#pragma once

#include <string>
#include <utility>

#include "util/UniqueFd.h"

namespace corvane {

/// A new file beside the one that it is to replace, locked, and removed unless it is renamed.
///
/// The lock tells a file that is being written from one that a killed process has left.
class TemporaryFile {
 public:
  TemporaryFile() = default;
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  /// Makes it in the directory `path`, which `folder` has open longer than this object lives.
  [[nodiscard]] int Make(const std::string& path, int folder);
  [[nodiscard]] int RenameTo(const std::string& name);

  [[nodiscard]] int Fd() const { return fd_.get(); }
  [[nodiscard]] UniqueFd Release() { return std::move(fd_); }

  /// Removes the temporary files of processes that have ended.
  static void RemoveStale(const std::string& path, int folder);

 private:
  int folder_ = -1;
  std::string name_;  ///< empty once there is nothing to remove
  UniqueFd fd_;
};

}  // namespace corvane
