#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "util/LocalFolder.h"
#include "util/UniqueFd.h"

namespace corvane {

/// Whether `name`, seen from the directory `folder`, is the open file itself and not a link to it.
[[nodiscard]] bool IsNamed(int folder, const std::string& name, int fd);

/// One local file of a transfer. Every call that can fail answers 0 or an errno number. Not locked.
class LocalFile {
 public:
  enum class Mode {
    Create,  ///< for writing; made when missing, but not emptied until Truncate is called
    Resume,  ///< for writing at the end; must exist
    Read,    ///< for reading; must be a plain file
  };

  LocalFile() = default;

  /// Opens `name` inside the directory `folder`. `name` must pass IsSafeLocalName (else EINVAL);
  /// a symbolic link at `name` is not followed (ELOOP), a directory or device is refused. A file
  /// that another LocalFile has open for writing is refused too (EWOULDBLOCK).
  [[nodiscard]] int Open(const std::string& folder, std::string_view name, Mode mode);
  /// The same in an open folder.
  [[nodiscard]] int Open(const LocalFolder& folder, std::string_view name, Mode mode);
  /// Opens a path that the user chose for reading; links are followed, only a plain file is taken.
  [[nodiscard]] int OpenForReading(const std::string& path);

  [[nodiscard]] bool IsOpen() const { return static_cast<bool>(fd_); }
  [[nodiscard]] int Fd() const { return fd_.get(); }
  /// True when Open made the file.
  [[nodiscard]] bool Created() const { return created_; }
  /// The file's length when it was opened, in bytes.
  [[nodiscard]] std::int64_t InitialSize() const { return initialSize_; }

  /// Cuts the file to `size` bytes, which it has, and goes to its end.
  [[nodiscard]] int Truncate(std::int64_t size = 0);
  /// Where the next read or write happens; 0 when that cannot be told.
  [[nodiscard]] std::int64_t Position() const;
  /// Goes to `offset` from the start.
  [[nodiscard]] int Seek(std::int64_t offset);
  /// Writes all bytes.
  [[nodiscard]] int Write(std::span<const char> bytes);
  /// Reads up to the buffer's length; the count in `got`, 0 at the end.
  [[nodiscard]] int Read(std::span<char> buffer, std::size_t& got);
  /// Closes; late write errors show here.
  [[nodiscard]] int Close();
  /// Closes and, when Open made the file, removes it again.
  void Discard();

 private:
  UniqueFd folder_;
  UniqueFd fd_;
  std::string name_;
  bool created_ = false;
  std::int64_t initialSize_ = 0;
};

}  // namespace corvane
