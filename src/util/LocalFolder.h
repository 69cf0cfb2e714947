#pragma once

#include <string>
#include <string_view>

#include "util/UniqueFd.h"

namespace corvane {

/// True when a name that came from a server may name an entry in a local folder: not empty, not
/// "." or "..", no "/" and no NUL.
[[nodiscard]] bool IsSafeLocalName(std::string_view name);

/// An open folder of a download. What is below it is reached step by step from its descriptor, so
/// that nothing outside is reached, whoever changes the names meanwhile. Calls answer 0 or an errno
/// number.
class LocalFolder {
 public:
  /// A path that the user chose; links are followed.
  [[nodiscard]] int Open(const std::string& path);
  /// The folder `name` inside `above`, made when missing. `name` must pass IsSafeLocalName (else
  /// EINVAL); a symbolic link or a file in its place is refused.
  [[nodiscard]] int Enter(const LocalFolder& above, std::string_view name);

  [[nodiscard]] int Fd() const { return fd_.get(); }

 private:
  UniqueFd fd_;
};

}  // namespace corvane
