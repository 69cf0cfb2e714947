#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace corvane {

/// A well-known FTP server, started for one test on a loopback port by tools/test-server.py.
///
/// A login starts in `root`; uploads, resumed ones too, overwriting and deleting are allowed,
/// active and passive. The server ends with the object, or with the test program if that comes
/// first.
class RealServer {
 public:
  /// All that there are: "vsftpd", "proftpd", "pure-ftpd".
  static std::vector<std::string> Names() { return {"vsftpd", "proftpd", "pure-ftpd"}; }
  /// Serves `root`, which Pure-FTPd, for root only, comes to own. Throws std::runtime_error when it
  /// does not start; the reason is then on standard error.
  RealServer(const std::string& name, const std::filesystem::path& root);
  RealServer(const RealServer&) = delete;
  RealServer& operator=(const RealServer&) = delete;

  std::uint16_t port = 0;
  std::string user;
  std::string password;

 private:
  struct Process {
    ~Process();
    pid_t id = -1;
  };
  Process process_;
};

}  // namespace corvane
