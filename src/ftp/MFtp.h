#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "ftp/DataChannel.h"
#include "ftp/FtpControl.h"
#include "ftp/FtpFeatures.h"
#include "kit/Mutex.h"
#include "remote/OwnerUi.h"
#include "remote/RemoteSession.h"
#include "remote/Site.h"

namespace corvane {

class NLLookup;

/// A session with an FTP server (RFC 959): its control connection and, while something is listed or
/// transferred, its data connection. Worker threads, one at a time; Close, Interrupt and Resume
/// from any.
class MFtp final : public RemoteSession {
 public:
  /// `owner` is told what goes on and gets the dialogue for its log.
  MFtp(Site site, std::shared_ptr<OwnerUi> owner);
  ~MFtp() override;
  MFtp(const MFtp&) = delete;
  MFtp& operator=(const MFtp&) = delete;

  /// How long a silent server is waited for, in milliseconds. Before Connect.
  void SetSilenceLimit(long milliseconds) { control_.silenceLimit = milliseconds; }
  /// How large a listing may be.
  void SetListingLimits(std::size_t bytes, std::size_t entries) {
    maxListing_ = bytes;
    maxEntries_ = entries;
  }

  Outcome Connect() override;
  void Quit() override;
  [[nodiscard]] const std::string& Host() const override { return site_.host; }
  [[nodiscard]] const std::string& Directory() const override { return told_; }
  Outcome Enter(const std::string& path, std::string& where) override;
  Outcome List(const std::string& path, ListingSink& sink) override;
  Outcome Size(const std::string& path, std::optional<std::int64_t>& size) override;
  Outcome Exists(const std::string& path, bool& exists) override;
  Outcome Stat(const std::string& path, RemoteEntry& entry) override;
  Outcome CanCopy(bool& can) override;
  Outcome Copy(const std::string& from, const std::string& to) override;
  Outcome FreeSpace(const std::string& path, std::optional<std::int64_t>& bytes) override;
  Outcome MakeDirectory(const std::string& path) override;
  Outcome RemoveDirectory(const std::string& path) override;
  Outcome RemoveFile(const std::string& path) override;
  Outcome Rename(const std::string& from, const std::string& to) override;
  Outcome OpenForReading(const std::string& path, std::int64_t offset,
                         std::unique_ptr<RemoteFile>& file) override;
  Outcome OpenForWriting(const std::string& path, std::unique_ptr<RemoteFile>& file) override;
  [[nodiscard]] bool IsLost() const override { return control_.IsLost(); }
  [[nodiscard]] const Loss& HowLost() const override { return control_.HowLost(); }
  [[nodiscard]] bool IsAlive() override { return control_.IsAlive(); }
  [[nodiscard]] std::uint64_t Answers() const override { return control_.Answers(); }
  void Close() override EXCLUDES(reach_);
  void Interrupt() override EXCLUDES(reach_);
  void Resume() override { control_.SetInterrupted(false); }

 private:
  // MFtpLogin.cpp
  Outcome Login();
  Outcome Resolve(NLAddress& server);
  Outcome Reach(const NLAddress& server);
  Outcome Identify();
  Outcome RefusedLogin(const Reply& reply, const Text& text);
  void GetServerType();
  void AskForUnixListings();
  std::optional<std::string> AskPath();
  [[nodiscard]] bool Tell(const Text& status);
  void Step(ConnectStep::Kind kind, ConnectStep::State state, const Text& text);

  // MFtp.cpp
  /// Goes to a directory, unless the server stands there.
  Outcome GoTo(const std::string& path);
  Outcome Go(const std::optional<std::string>& here, const std::string& directory);
  Outcome ChangeDir(std::string_view argument);
  /// Sends "VERB name" in the directory of `path`, which changes something there.
  Outcome Command(std::string_view verb, const std::string& path, const Text& failed);
  /// Sends a command with `from`, which is to be answered by 3yz, and then one with `to`.
  Outcome InTwoSteps(std::string_view first, std::string_view second, const std::string& from,
                     const std::string& to, const Text& failed);
  /// The number of a 213 reply.
  [[nodiscard]] static std::optional<std::int64_t> NumberOf(const Reply& reply);

  // MFtpFeatures.cpp
  const FtpFeatures& Features();
  Outcome TakeFromListing(RemoteEntry& entry, bool mayBeFile, bool& known);

  // MFtpData.cpp
  /// What comes before every transfer, and the transfer's command with its data connection.
  Outcome Open(const std::string& command, std::string_view logged, std::int64_t offset,
               std::unique_ptr<RemoteFile>& file);
  Outcome OpenThisWay(const std::string& command, std::string_view logged, std::int64_t offset,
                      std::unique_ptr<RemoteFile>& file);
  Outcome SetBinary();
  Outcome SetOffset(std::int64_t offset, std::int64_t& accepted);
  Outcome FetchListing(std::string& text);
  Outcome ReadListing(RemoteFile& data, std::string& text);

  const Site site_;
  const std::shared_ptr<OwnerUi> owner_;
  FtpControl control_;
  DataChannel data_;
  std::string listCommand_ = "LIST -la";
  std::size_t maxListing_ = std::size_t{1024} * 1024 * 1024;
  std::size_t maxEntries_ = 10'000'000;
  std::optional<FtpFeatures> features_;  // once they were asked for
  bool asksQuota_ = true;                // SITE QUOTA has not been refused
  bool binary_ = false;                  // TYPE I is in force
  bool markerSet_ = false;               // REST may have been accepted, and no transfer has used it
  std::string start_;               // where the connection began; "" when the server does not tell
  std::string told_;                // the last directory that the server named
  std::optional<std::string> cwd_;  // where the server stands; nothing when that is not known
  Mutex reach_;                     // guards what is reached for from other threads
  std::shared_ptr<NLLookup> lookup_ GUARDED_BY(reach_);
};

}  // namespace corvane
