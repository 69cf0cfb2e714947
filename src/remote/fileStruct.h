#pragma once

#include <cstdint>
#include <ctime>
#include <string>

namespace corvane {

/// Kinds of a remote entry, by the first letter of its mode.
enum EntryType : std::int32_t {
  kFile = 1,       ///< '-'
  kDirectory = 2,  ///< 'd'
  kLink = 3,       ///< 'l' and every other letter
  kDevice = 4,     ///< 'c'
};

/// Sizes that are no byte counts.
inline constexpr std::int64_t kDirectorySize = -1;
inline constexpr std::int64_t kLinkSize = -2;
inline constexpr std::int64_t kNoSize = -3;

/// One entry of a remote directory. A value; names are the server's raw bytes.
struct fileStruct {
  std::string permissions;  ///< the mode, "drwxr-xr-x"
  std::string date;         ///< month, day and time or year as listed
  std::string owner;
  std::string group;
  std::string timeOrYear;
  std::string sizeString = "-";  ///< the size as shown
  std::int64_t size = kNoSize;   ///< bytes, or one of the special values
  std::string name;
  std::string displayName;  ///< the local name of a download, where it differs
  std::int32_t type = kDirectory;
  std::tm time{};
};

}  // namespace corvane
