#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ftp/DataChannel.h"
#include "ftp/FtpControl.h"
#include "ftp/FtpFeatures.h"
#include "ftp/ListingParser.h"
#include "ftp/ListingText.h"
#include "kit/Mutex.h"
#include "remote/Habits.h"
#include "remote/OwnerUi.h"
#include "remote/RemoteSession.h"
#include "remote/ServerTrust.h"
#include "remote/Site.h"

namespace corvane {

class NLLookup;
class TlsContext;

/// A session with an FTP server (RFC 959): its control connection and, while something is listed or
/// transferred, its data connection. Worker threads, one at a time; Close, Interrupt and Resume
/// from any.
class MFtp final : public RemoteSession {
 public:
  /// `owner` is told what goes on and gets the dialogue for its log. `trust` may be null: then no
  /// server is known, and none is remembered.
  /// `habits` may be null: then what is learned of the server is this session's alone.
  MFtp(Site site, std::shared_ptr<OwnerUi> owner, std::shared_ptr<ServerTrust> trust = {},
       std::shared_ptr<Habits> habits = {});
  ~MFtp() override;
  MFtp(const MFtp&) = delete;
  MFtp& operator=(const MFtp&) = delete;

  /// How long a silent server is waited for. Before Connect.
  void SetWaits(const Waits& waits) { control_.waits = waits; }
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
  Outcome ModifiedTime(const std::string& path, std::optional<RemoteTime>& time) override;
  Outcome SetModifiedTime(const std::string& path, std::int64_t seconds) override;
  [[nodiscard]] bool SetsTimes() const override {
    return features_.setTime || features_.dateByMdtm || features_.siteTime;
  }
  Outcome KeepAlive() override;
  Outcome MakeDirectory(const std::string& path) override;
  Outcome RemoveDirectory(const std::string& path) override;
  Outcome RemoveFile(const std::string& path) override;
  Outcome RemoveFiles(std::span<const std::string> paths,
                      const std::function<bool(std::size_t, const Outcome&)>& each) override;
  Outcome ChangeModes(std::span<const ModeChange> changes,
                      const std::function<bool(std::size_t, const Outcome&)>& each) override;
  Outcome Rename(const std::string& from, const std::string& to) override;
  Outcome OpenForReading(const std::string& path, std::int64_t offset,
                         std::unique_ptr<RemoteFile>& file) override;
  Outcome OpenForWriting(const std::string& path, std::int64_t offset,
                         std::unique_ptr<RemoteFile>& file) override;
  [[nodiscard]] DigestKind OffersDigest() const override {
    return features_.digests.empty() ? DigestKind::None : features_.digests.front().kind;
  }
  Outcome Checksum(const std::string& path, std::int64_t size, DigestKind kind,
                   std::string& digest) override;
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
  Outcome Resolve(std::vector<NLAddress>& addresses);
  Outcome Reach(const std::vector<NLAddress>& addresses);
  void TellAddress(const NLAddress& address);
  /// The proxy that the connection goes to; null where it goes to the server.
  [[nodiscard]] const Proxy* Via() const;
  /// The way through that proxy; nothing for one that speaks FTP itself.
  [[nodiscard]] std::optional<Tunnel> Through() const;
  Outcome Identify();
  Outcome LoggedIn();
  Outcome GiveAccount(const Reply& asked, const Text& failed);
  Outcome RefusedLogin(const Reply& reply, const Text& text);
  /// What is asked and set once after the login.
  Outcome Settle();
  void TakeServerType(const std::string& type);
  void AskForUnixListings();
  std::optional<std::string> AskPath();
  [[nodiscard]] static std::optional<std::string> PathIn(const Reply& reply);
  /// As what the reply to a command of the login is remembered.
  [[nodiscard]] std::string AskedAs(const char* command) const;
  [[nodiscard]] bool Tell(const Text& status);
  void Step(ConnectStep::Kind kind, ConnectStep::State state, const Text& text);

  // MFtpSecurity.cpp
  [[nodiscard]] std::pair<const std::string&, std::uint16_t> Peer() const;
  [[nodiscard]] KnownServer Known() const;
  /// Puts a question to the user and waits for the answer.
  UserQuestion::Answer Ask(UserQuestion::Kind kind, const Certificate& certificate,
                           std::string* text);
  /// Encrypts the connection as the site wants it, before the login.
  Outcome Protect();
  Outcome MayStayPlain();
  Outcome StayPlain();
  Outcome Encrypt();
  Outcome Judge(const Certificate& certificate);
  /// After the login: data connections are encrypted where this one is.
  Outcome ProtectData();
  [[nodiscard]] std::shared_ptr<const TlsContext> Context();

  // MFtp.cpp
  /// Goes to a directory, unless the server stands there.
  Outcome GoTo(const std::string& path);
  Outcome Go(const std::optional<std::string>& here, const std::string& directory);
  Outcome ChangeDir(std::string_view argument);
  /// Goes there and asks where that is, and for the port of what comes next, at once where it can.
  Outcome ChangeDirAndAsk(const std::string& line, const Text& failed);
  /// Sends "VERB name" in the directory of `path`, which changes something there.
  Outcome Command(std::string_view verb, const std::string& path, const Text& failed);
  /// Sends a command with `from`, which is to be answered by 3yz, and then one with `to`.
  Outcome InTwoSteps(std::string_view first, std::string_view second, const std::string& from,
                     const std::string& to, const Text& failed);

  // MFtpFiles.cpp
  /// Many commands that change an entry each; the entry's name in its directory ends the command.
  struct ManyChanges {
    std::size_t count = 0;
    std::function<const std::string&(std::size_t)> path;
    std::function<std::string(std::size_t)> verb;
    /// Sends a command that may have been carried out already.
    std::function<Outcome(const std::string& command, const std::string& name)> again;
    std::function<Outcome(const Reply&)> judge;
  };
  Outcome CarryOut(const ManyChanges& changes,
                   const std::function<bool(std::size_t, const Outcome&)>& each);
  /// How many of them, from `first` on, are to be sent at once.
  [[nodiscard]] std::size_t CountTogether(const ManyChanges& changes, std::size_t first) const;
  /// Sends those of one directory; `tell` is told of each in turn, and false from it ends it.
  Outcome ChangeTogether(const ManyChanges& changes, std::size_t first, std::size_t count,
                         const std::function<bool(const Outcome&)>& tell);
  /// Sends them at once; false where the replies do not fit.
  bool HearChanges(std::span<const std::string> commands, bool trial, std::vector<Reply>& replies);

  // MFtpFeatures.cpp
  /// Asks for the list of features, before the login; and `after` it where the server has it for
  /// those only who are logged in.
  void AskFeatures(bool after);
  /// Asks for the host by its name, where one server may serve several (RFC 7151). Before the
  /// login.
  void NameHost();
  /// How the server is had to tell names and facts as this program reads them. After the login.
  [[nodiscard]] std::vector<std::string> FeatureOptions() const;
  /// Whether the server tells entries by facts that can be relied on.
  [[nodiscard]] bool UsesFacts() const { return features_.facts && links_ != Links::Hidden; }
  Outcome TakeFromFacts(RemoteEntry& entry, bool& known);
  Outcome TakeFromListing(RemoteEntry& entry, bool mayBeFile, bool& known);
  Outcome AskTime(const std::string& name, std::optional<RemoteTime>& time);

  // MFtpData.cpp
  /// What comes before every transfer, and the transfer's command with its data connection.
  Outcome Open(const std::string& command, std::string_view logged, std::int64_t offset,
               std::unique_ptr<RemoteFile>& file);
  Outcome OpenThisWay(const std::string& command, std::string_view logged, std::int64_t offset,
                      std::unique_ptr<RemoteFile>& file);
  Outcome SetBinary();
  Outcome SetOffset(std::int64_t offset, std::int64_t& accepted);
  Outcome MayAppend(const std::string& name, std::int64_t offset);

  // MFtpListing.cpp
  /// A listing as it came.
  struct Listing {
    ListingText text{};
    ListingParser::Form form = ListingParser::Form::Lines;
  };
  enum class Whole { Yes, No, Unknown };
  Outcome FetchListing(Listing& listing);
  Outcome FetchLines(Listing& listing);
  Outcome LookForLinks(Listing& listing);
  /// Fetches a listing, again where it may have been cut. Done only where it is whole as far as can
  /// be told.
  Outcome Fetch(const std::string& command, std::string_view logged, Listing& listing);
  Outcome FetchOnce(const std::string& command, std::string_view logged, ListingText& text);
  Outcome ReadListing(RemoteFile& data, ListingText& text);
  /// Whether a listing that came may lack something all the same.
  [[nodiscard]] bool IsDoubtful(const Outcome& outcome, const ListingText& text) const;
  /// Whether a listing names all that the server tells of its directory in a reply.
  [[nodiscard]] Whole CompareWithStatus(const Listing& listing);

  const Site site_;
  const std::shared_ptr<OwnerUi> owner_;
  const std::shared_ptr<ServerTrust> trust_;
  const bool sharesHabits_;
  const std::shared_ptr<Habits> habits_;
  FtpControl control_;
  DataChannel data_;
  std::shared_ptr<const TlsContext> context_;  // once anything was encrypted
  bool asked_ = false;                         // the server has waited for the user
  std::string listCommand_ = "LIST -la";
  bool optionsWork_ = false;  // it has listed something
  bool commandSent_ = false;  // of the last transfer, whose data connection could be set up
  std::size_t maxListing_ = std::size_t{1024} * 1024 * 1024;
  std::size_t maxEntries_ = 10'000'000;
  FtpFeatures features_;                    // less what was refused all the same
  bool knowsFeatures_ = false;              // they were asked for
  DigestKind hashKind_ = DigestKind::None;  // that HASH was told to use
  /// How the server's facts tell symbolic links, which must never be followed unawares: by their
  /// own type, or in the guise of what they lead to, if at all.
  enum class Links { Unknown, Shown, Hidden };
  Links links_ = Links::Unknown;
  /// Whether the server changes permissions.
  Habits::Learned modes_ = Habits::Learned::Unknown;
  bool asksQuota_ = true;           // SITE QUOTA has not been refused
  bool binary_ = false;             // TYPE I is in force
  bool markerSet_ = false;          // REST may have been accepted, and no transfer has used it
  std::string start_;               // where the connection began; "" when the server does not tell
  std::string told_;                // the last directory that the server named
  std::optional<std::string> cwd_;  // where the server stands; nothing when that is not known
  bool entering_ = false;           // where the server stands is asked for next
  std::optional<Reply> path_;       // to that question, where it was asked ahead
  Mutex reach_;                     // guards what is reached for from other threads
  std::shared_ptr<NLLookup> lookup_ GUARDED_BY(reach_);
};

}  // namespace corvane
