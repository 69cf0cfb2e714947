#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace corvane {

/// A program that a script in tools/ starts on a loopback port. It ends with the object, or with
/// the test program if that comes first.
class RealPeer {
 public:
  RealPeer(const RealPeer&) = delete;
  RealPeer& operator=(const RealPeer&) = delete;

  std::uint16_t port = 0;
  std::string user;
  std::string password;

 protected:
  /// Throws std::runtime_error when it does not start; the reason is then on standard error.
  explicit RealPeer(const std::vector<std::string>& script);

 private:
  struct Process {
    ~Process();
    pid_t id = -1;
  };
  Process process_;
};

/// A well-known FTP server, started for one test by tools/test-server.py.
///
/// A login starts in `root`; uploads, resumed ones too, overwriting and deleting are allowed,
/// active and passive.
class RealServer : public RealPeer {
 public:
  /// All that there are: "vsftpd", "proftpd", "pure-ftpd".
  static std::vector<std::string> Names() { return {"vsftpd", "proftpd", "pure-ftpd"}; }
  /// Serves `root`, which Pure-FTPd, for root only, comes to own. `options` are those of the
  /// script.
  RealServer(const std::string& name, const std::filesystem::path& root,
             const std::vector<std::string>& options = {});
};

/// A proxy, started for one test by tools/test-proxy.py: "microsocks" (SOCKS 5) or "tinyproxy"
/// (HTTP). With `login` it lets in nobody but `user`.
class RealProxy : public RealPeer {
 public:
  RealProxy(const std::string& name, bool login);
};

}  // namespace corvane
