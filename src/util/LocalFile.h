#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "util/LocalFolder.h"
#include "util/PartFile.h"
#include "util/UniqueFd.h"

namespace corvane {

/// When what was written has to be on the disk.
enum class Durability {
  Now,    ///< when Commit returns
  Later,  ///< after LocalFolder::SyncAll; a file that replaces another is written out all the same
};

/// One local file of a transfer. What a writer has not committed when the object ends is discarded.
/// Calls that can fail return 0 or an errno number. Any thread, one at a time; blocks on the disk.
class LocalFile {
 public:
  enum class Mode {
    CreateNew,  ///< made under its own name; EEXIST if anything stands there
    Replace,    ///< written to a part file that takes the name at Commit; until then what stands
                ///< there stays whole, if anything does
    GoOn,       ///< like Replace, at the end of what Keep has left in the part file
    Resume,     ///< a file that is there, for reading and for writing at its end
    Read,       ///< a file that is there, for reading
  };

  LocalFile() = default;
  LocalFile(const LocalFile&) = delete;
  LocalFile& operator=(const LocalFile&) = delete;
  ~LocalFile() { Discard(); }

  /// Opens `name` inside `folder`. `name` must pass IsSafeLocalName (else EINVAL); a symbolic link
  /// at `name` is not followed (ELOOP), and a directory (EISDIR) or device (ENOTSUP) is refused.
  /// A file that another LocalFile writes, under its name or into a part file, is refused to a
  /// second writer (EWOULDBLOCK). A file that is replaced must be writable, and its permissions
  /// pass to the new one.
  [[nodiscard]] int Open(const LocalFolder& folder, std::string_view name, Mode mode);
  /// Opens a path that the user chose for reading; links are followed, only a plain file is taken.
  [[nodiscard]] int OpenForReading(const std::string& path);

  /// The length in bytes of what stood at the name when it was opened, or of the part file that is
  /// gone on with; 0 for a new file.
  [[nodiscard]] std::int64_t InitialSize() const { return initialSize_; }
  /// The offset in bytes of the next read or write.
  [[nodiscard]] std::int64_t Position() const { return position_; }

  /// The next read begins at `offset`.
  [[nodiscard]] int Seek(std::int64_t offset);
  /// Reads up to the buffer's length into `buffer`; `got` is the count, 0 at the end.
  [[nodiscard]] int Read(std::span<char> buffer, std::size_t& got);
  /// Reads at `offset` until the buffer is full or the file ends. Position() stays.
  [[nodiscard]] int ReadAt(std::int64_t offset, std::span<char> buffer, std::size_t& got) const;
  /// Writes all bytes.
  [[nodiscard]] int Write(std::span<const char> bytes);
  /// When what stood at the name when it was opened was changed, in seconds since 1970.
  [[nodiscard]] std::int64_t InitialTime() const { return initialTime_; }
  /// What is written is to bear that time, in seconds since 1970, once it is committed; a file
  /// system that does not let it keeps its own.
  void SetTime(std::int64_t seconds) { time_ = seconds; }
  /// Begins again at 0 in a part file, as Replace does. What stood at the name when it was opened
  /// stays as it was until Commit, and so does what was written to a file of CreateNew; what a part
  /// file or a resumed file got is given up.
  [[nodiscard]] int StartAfresh();

  /// Ends the work: writes out what `durability` asks for, gives a part file its name and closes.
  /// The file is finished only when this returns 0. After an error Discard is still to be called.
  [[nodiscard]] int Commit(Durability durability);
  /// Closes and removes what is of no use: a part file, and a file that CreateNew made when nothing
  /// was written to it. What was written under the file's own name stays, so that it can be
  /// resumed.
  void Discard();
  /// Closes, and leaves what a part file has got for a later try.
  void Keep();

 private:
  int OpenEntry(Mode mode);
  int OpenPresent(int flags);
  int OpenNew();
  int OpenPart(bool goOn);
  int KeepMode();
  void StartWriteBack();
  void ApplyTime() const;
  [[nodiscard]] int Target() const { return part_ ? part_.Fd() : own_.get(); }

  std::string name_;
  UniqueFd folder_;
  UniqueFd own_;   // what stands at the name; its lock is held as long as the part file is written
  PartFile part_;  // refers to folder_
  bool created_ = false;
  bool writes_ = false;
  std::int64_t initialSize_ = 0;
  std::int64_t initialTime_ = 0;
  std::optional<std::int64_t> time_;
  std::int64_t position_ = 0;
  std::int64_t pushed_ = 0;  // so far the kernel was told to write back
};

}  // namespace corvane
