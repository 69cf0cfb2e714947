#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "kit/Text.h"
#include "workers/EditedFile.h"

namespace corvane {

/// Which files are edited, in one SQLite file, so that what was saved and not sent is known after
/// the program has ended. Written by a thread of its own. Passwords are not in it. A file that
/// cannot be read is put aside. GUI thread; every call but Load returns at once.
class EditedStore {
 public:
  /// `folder` is where the copies stand; it is made with the first one. "" keeps nothing.
  explicit EditedStore(const std::string& folder);
  /// Waits a moment until all is written.
  ~EditedStore();

  struct Kept {
    std::vector<EditedFile> files{};
    bool complete = false;  ///< else there may be copies of files that are not among them
  };
  /// The files that were edited when the program ended, each Changed: whether they are is to be
  /// looked at. Blocks on the disk.
  [[nodiscard]] Kept Load();
  void Keep(const EditedFile& file);
  void Remove(std::int64_t id);
  /// What the user should know of the file; empty while all is well.
  [[nodiscard]] Text Trouble() const;

 private:
  class Writer;
  const std::shared_ptr<Writer> writer_;
};

}  // namespace corvane
