#pragma once

#include <sys/types.h>

#include <string>

#include "kit/Message.h"
#include "util/UniqueFd.h"

namespace corvane {

/// One set's file under its lock, which other processes respect as long as the object lives.
///
/// The file is 4 bytes of length, in the machine's byte order, and the flattened message. The lock
/// is a flock on the very file that stands at the path; a save puts a new file, already locked, in
/// its place. Calls return 0 or an errno number.
class PrefFile {
 public:
  /// How much of a set the file holds.
  enum class Extent { NoLength, ShortBody, NotAMessage, Whole };
  struct Reading {
    Extent extent;
    int error = 0;  ///< of a length that could not be read
    Message message = Message();
  };

  /// Makes the file when it is missing. Waits about a second for the lock, then returns EBUSY;
  /// EINVAL where something stands that is no regular file.
  [[nodiscard]] int Lock(const std::string& path, bool perUser);
  [[nodiscard]] Reading Read() const;
  /// Makes `message` the file's content: all of it on the disk, or the file is as it was. A file
  /// that Read cannot read whole is kept beside the new one, as NAME.damaged.
  [[nodiscard]] int Replace(const Message& message);

 private:
  [[nodiscard]] int TryLock(const std::string& path, bool perUser);
  [[nodiscard]] int KeepWhatIsDamaged(int folder) const;

  UniqueFd fd_;
  std::string folder_;  ///< the path is the file's own, past any symbolic links
  std::string name_;
  mode_t mode_ = 0600;
};

}  // namespace corvane
