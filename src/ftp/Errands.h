#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ftp/ReplyReader.h"
#include "remote/RemoteSession.h"

namespace corvane {

class DataChannel;
class FtpCommand;
class FtpControl;
struct FtpFeatures;
struct Habits;

/// What is wanted of the server once a transfer has ended: the file's time set or told, its size
/// told, a port for the next data connection. Where the server takes commands ahead they go out
/// along with the transfer's end. Whether it does is tried with one command, and any reply that
/// does not fit ends it: what was asked is then asked again, one by one. The thread of the session.
class Errands {
 public:
  /// What they work with; outlives them.
  struct Means {
    FtpControl& control;
    DataChannel& data;
    FtpFeatures& features;
    Habits& habits;
  };

  /// `name` is the file's, in the directory where the server stands; empty for a listing.
  Errands(Means means, std::string name);
  ~Errands();
  Errands(Errands&&) noexcept;
  Errands& operator=(Errands&&) = delete;

  /// Takes the verdict on a transfer whose data connection is closed, and runs the errands. What
  /// becomes of these does not change the verdict. `written` is the file's length where it was
  /// written.
  Outcome End(FtpCommand& transfer, std::optional<std::int64_t> written,
              const RemoteFile::Afterwards& wanted, RemoteFile::Settled& settled);
  /// The file's size as the server tells it.
  [[nodiscard]] std::optional<std::int64_t> AskSize();

 private:
  enum class What : std::uint8_t { SetTime, AskSize, AskTime, AskPort };
  struct Step {
    What what;
    std::string line;
    std::unique_ptr<FtpCommand> sent;
    std::optional<Reply> reply;
    bool settled = false;
  };

  void Plan(const RemoteFile::Afterwards& wanted, bool wrote);
  /// The first of the steps that go out along with the transfer's end.
  [[nodiscard]] std::size_t FirstAhead(bool wrote) const;
  void Send(Step& step, bool ahead);
  /// Reads the replies of what was sent ahead, after a file was written or not; false where one
  /// does not come.
  [[nodiscard]] bool Hear(bool wrote);
  /// Whether the server may hold the file with so many bytes, for all that it tells.
  [[nodiscard]] bool MayHave(std::int64_t size);
  [[nodiscard]] bool Fits(const Step& step) const;
  [[nodiscard]] bool AllFit() const;
  /// Judges the end of a transfer by its reply and those of the steps that were sent with it.
  void Judge(const Reply& end, std::optional<std::int64_t> written, std::optional<Outcome>& verdict,
             RemoteFile::Settled& settled);
  /// What has come does not fit: what it was is told by its code alone.
  [[nodiscard]] Reply FindEnd(const Reply& end) const;
  [[nodiscard]] bool BeginTrial();
  void Pass();
  void GiveUpAhead(bool onlyWithUploads);
  void Take(RemoteFile::Settled& settled);
  void TakeOne(Step& step, RemoteFile::Settled& settled);
  /// What is left, now that the transfer is over.
  void RunRest(RemoteFile::Settled& settled);
  void RunTogether(RemoteFile::Settled& settled);

  Means means_;
  std::string name_;
  std::int64_t time_ = 0;
  std::vector<Step> steps_;
  bool trial_ = false;  // it is not known yet whether the server takes commands ahead
};

}  // namespace corvane
