#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ftp/DataChannel.h"
#include "ftp/FtpControl.h"
#include "ftp/FtpFeatures.h"
#include "ftp/PortProbe.h"
#include "kit/Mutex.h"
#include "remote/Diagnosis.h"
#include "remote/Habits.h"
#include "remote/RemoteEntry.h"
#include "remote/RemoteSession.h"
#include "remote/ServerTrust.h"

namespace corvane {

class NLLookup;

/// Looks at an FTP server step by step (RFC 959, 4217, 2428, 3659). What it must not give away it
/// judges as MFtp does, but in place of asking it stops there.
class FtpExamination final : public Examination {
 public:
  using Resolve =
      std::function<std::vector<NLAddress>(const std::string& host, std::uint16_t port)>;
  /// What may be changed for tests.
  struct Means {
    std::chrono::milliseconds limit{10'000};  ///< for a step
    std::uint16_t usualPort = 21;
    std::uint16_t encryptedPort = 990;
    Resolve resolve{};  ///< in place of the system's; may block
  };

  /// `trust` is asked and not told; it may be null.
  FtpExamination(Site site, std::shared_ptr<ServerTrust> trust, Means means);
  FtpExamination(Site site, std::shared_ptr<ServerTrust> trust)
      : FtpExamination(std::move(site), std::move(trust), Means()) {}
  ~FtpExamination() override;

  [[nodiscard]] const Site& Where() const override { return site_; }
  [[nodiscard]] std::vector<DiagnosisStep::Kind> Steps() const override;
  [[nodiscard]] Text NameOf(DiagnosisStep::Kind kind) const override;
  [[nodiscard]] DiagnosisStep Take(DiagnosisStep::Kind kind) override;
  void End() override;
  void Interrupt() override EXCLUDES(reach_);
  void Resume() override;
  void Close() override EXCLUDES(reach_);

 private:
  using Step = DiagnosisStep;

  // FtpExamination.cpp
  [[nodiscard]] Step Dispatch(Step::Kind kind);
  [[nodiscard]] Step Overtime(Step::Kind kind) const;
  [[nodiscard]] static Text NoConnectionHere() {
    return Text("The server cannot open a connection to this computer.");
  }
  [[nodiscard]] Step Address();
  [[nodiscard]] Step Route();
  [[nodiscard]] Step Port();
  [[nodiscard]] Step PortFailed(const Outcome& outcome) const;
  [[nodiscard]] Step Greeting();
  [[nodiscard]] Step NoGreeting(const Text& why) const;
  [[nodiscard]] Step Stranger(PortProbe::Behind behind, const Text& otherwise) const;
  [[nodiscard]] PortProbe Probe() const;
  /// The server's words, without this user's secrets.
  [[nodiscard]] std::string Heard(std::string_view words) const;
  [[nodiscard]] Text Why(const Outcome& outcome) const;
  /// A share of a step's time, in milliseconds.
  [[nodiscard]] long Share(int parts) const {
    return static_cast<long>(means_.limit.count()) / parts;
  }

  // FtpExaminationLogin.cpp
  [[nodiscard]] Step Encryption();
  [[nodiscard]] Step StayPlain(const Reply& reply) const;
  [[nodiscard]] Step Handshake();
  [[nodiscard]] Step Judge() const;
  [[nodiscard]] Step Login();
  [[nodiscard]] Step Refused(const Reply& reply) const;
  void NameHost();
  [[nodiscard]] Step Features();
  [[nodiscard]] Step Directory();

  // FtpExaminationData.cpp
  [[nodiscard]] Step Transfer(bool passive);
  [[nodiscard]] Step NoTransfer(bool passive, const Outcome& outcome) const;
  [[nodiscard]] Step Listing();
  [[nodiscard]] Step ResumeFile();
  [[nodiscard]] Step Clock();
  /// Connects and logs in anew, where the step before has left the connection unusable.
  Outcome Again();
  Outcome Fetch(bool passive, const std::string& command, std::int64_t offset, std::string& bytes);
  /// Whether the data ended without a word that it was all, as some servers end all data.
  [[nodiscard]] bool IsUnended(const Outcome& outcome) const {
    return outcome.kind == Outcome::Kind::Busy && outcome.code == 0 && data_.WasCut();
  }
  [[nodiscard]] const RemoteEntry* SmallFile() const;
  /// When a file was changed, as the server tells exactly.
  [[nodiscard]] std::optional<RemoteTime> ExactTime(const RemoteEntry& entry);

  const Site site_;
  const std::shared_ptr<ServerTrust> trust_;
  const Means means_;
  Habits habits_;
  std::string line_;       // the last line of the dialogue
  std::string portReply_;  // the last that told a passive port
  FtpControl control_;
  DataChannel data_;
  std::vector<NLAddress> addresses_;
  bool fresh_ = false;         // the connection stands, and nothing is left over on it
  bool wasEncrypted_ = false;  // with a certificate that is trusted, in this examination
  FtpFeatures features_;
  std::optional<Reply> featureReply_;
  std::string listCommand_ = "LIST -la";
  bool optionsRefused_ = false;
  std::optional<std::string> listing_;
  std::vector<RemoteEntry> entries_;
  bool listedPassive_ = false;
  Mutex reach_;  // guards what is reached for from other threads
  std::shared_ptr<NLLookup> lookup_ GUARDED_BY(reach_);
};

}  // namespace corvane
