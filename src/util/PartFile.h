#pragma once

#include <string>
#include <string_view>

#include "util/UniqueFd.h"

namespace corvane {

/// A hidden file beside `name`, into which data goes until it is whole and takes that name. Its
/// name is the same for every process, so that its lock tells who writes: one at a time. Removed
/// with the object unless it has taken the name. Calls return 0 or an errno number.
class PartFile {
 public:
  PartFile() = default;
  PartFile(const PartFile&) = delete;
  PartFile& operator=(const PartFile&) = delete;
  ~PartFile() { Remove(); }

  /// The part file's name: ".NAME.corvane-part"; where that is too long for a directory, the
  /// beginning of NAME and a number made from the whole.
  [[nodiscard]] static std::string NameFor(std::string_view name);
  /// Whether the name is one that a part file may have, and so nobody else's.
  [[nodiscard]] static bool IsPartName(std::string_view name);
  /// Removes the part file of `name` that a process left behind when it was killed. EWOULDBLOCK
  /// when the part file is being written.
  [[nodiscard]] static int ClearStale(int folder, const std::string& name);

  /// Makes the part file of `name` in the directory `folder`, which must stay open, empty and
  /// locked. EWOULDBLOCK when somebody else writes it.
  /// With `goOn` what an earlier try left in it stays.
  [[nodiscard]] int Make(int folder, const std::string& name, bool goOn = false);
  /// Gives the file its final name, in place of the plain file that may stand there. The lock
  /// stays until the object ends.
  [[nodiscard]] int TakeName(const std::string& name);
  /// Closes the file. Late write errors show here.
  [[nodiscard]] int Close();
  /// Closes and removes the file, where it has not taken its name.
  void Remove();
  /// Closes the file and leaves it for a later try.
  void Leave();

  [[nodiscard]] int Fd() const { return fd_.get(); }
  [[nodiscard]] explicit operator bool() const { return static_cast<bool>(fd_); }

 private:
  int folder_ = -1;
  UniqueFd fd_;
  std::string part_;
};

}  // namespace corvane
