#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "kit/Mutex.h"
#include "kit/Text.h"
#include "remote/ServerTrust.h"

namespace corvane {

class TrustFile;

/// The servers that this user knows, by host, in whatever case, and port: in a file of its own
/// beside the preference sets, and, where something is to hold this time only or cannot be
/// written, in memory. Several programs may use the file at once.
class KnownServers final : public ServerTrust {
 public:
  /// `path` is the file's; it is made with the first thing that is worth keeping.
  explicit KnownServers(std::string path = UsualPath());
  ~KnownServers() override;

  /// "certificates.sqlite" in this user's folder of sets; "" where there is no such folder.
  [[nodiscard]] static std::string UsualPath();

  [[nodiscard]] KnownServer Find(const std::string& host, std::uint16_t port) override;
  void Trust(const std::string& host, std::uint16_t port, const Certificate& certificate,
             bool always) override;
  /// Takes back that the server may be spoken to in plain text.
  void NoteEncrypted(const std::string& host, std::uint16_t port) override;
  void AllowPlain(const std::string& host, std::uint16_t port, bool always) override;

  struct Entry {
    std::string host;
    std::uint16_t port = 21;
    KnownCertificate trusted;
    bool always = true;  ///< else until the program ends
  };
  /// The certificates that are trusted, by host and port.
  [[nodiscard]] std::vector<Entry> List();
  /// Trusts the server's certificate no longer; that it was encrypted stays known.
  void Remove(const std::string& host, std::uint16_t port);

  /// What the user should know of the file: that it was put aside, or why nothing is kept in it.
  /// Empty while all is well. Opens the file where nothing has yet.
  [[nodiscard]] Text Trouble();

 private:
  using Key = std::pair<std::string, std::uint16_t>;
  /// What holds until the program ends, in place of what the file says.
  struct Passing {
    std::optional<KnownCertificate> trusted;
    std::optional<bool> wasEncrypted;
    std::optional<bool> mayBePlain;
  };

  [[nodiscard]] KnownServer Known(const Key& key) REQUIRES(lock_);

  Mutex lock_;
  const std::unique_ptr<TrustFile> file_ GUARDED_BY(lock_);
  std::map<Key, Passing> passing_ GUARDED_BY(lock_);
};

}  // namespace corvane
