#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace corvane {

/// A moment as a server tells it.
struct RemoteTime {
  /// How much of it the server told.
  enum class Precision : std::uint8_t { Day, Minute, Second };

  std::int64_t seconds = 0;  ///< since 1970
  Precision precision = Precision::Second;
  bool utc = false;  ///< else in the server's own zone, which it does not tell

  friend bool operator==(const RemoteTime&, const RemoteTime&) = default;
};

/// One entry of a remote directory. A value; texts are the server's raw bytes.
struct RemoteEntry {
  enum class Kind : std::uint8_t {
    File = 1,
    Directory = 2,
    Link = 3,    ///< and everything that is none of the others
    Device = 4,  ///< a character device
  };

  std::string name{};
  Kind kind = Kind::File;
  std::optional<std::int64_t> size{};  ///< bytes; of files
  std::optional<RemoteTime> modified{};
  std::string mode{};  ///< "drwxr-xr-x"
  std::string owner{};
  std::string group{};
  std::string linkTarget{};
  /// The listing does not tell where the name begins or ends: `name` is what may hold it, and is
  /// shown but not acted on. Such an entry is a Link.
  bool unclear = false;
};

}  // namespace corvane
