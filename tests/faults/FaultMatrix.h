#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "queue/TransferJob.h"
#include "remote/Waits.h"
#include "support/ScriptedServer.h"

namespace corvane {

/// How long a silent server is waited for, in milliseconds.
inline constexpr long kSilence = 400;

/// A handshake takes its time where many sessions share a processor.
inline constexpr Waits kWaits = {kSilence, 5 * kSilence, kSilence, kSilence};

/// How much longer than usual everything takes under the sanitizer of the build.
inline constexpr int kSlower = CORVANE_SLOWER;

/// What goes wrong when a command has come, or what the user does then.
struct Fault {
  enum class User { Waits, Stops, Closes };

  const char* name;
  ScriptedAction action;
  User user = User::Waits;
  std::string_view only = "";  ///< the verbs that it fits; all when empty
};

/// Something that a browser window asks of its looper.
struct Request {
  const char* name;
  std::uint32_t what;
  std::vector<std::pair<const char*, std::string>> fields;
  std::string there;  ///< stands on the server once it is done; with "!" ahead, does not
};

/// Permissions and the time of "/d" and of what it holds are changed, by a walk.
struct Rights {
  const char* name = "changes rights";
};

/// Something that the queue carries out, between "/d" or "/up" on the server and "target" here.
struct Errand {
  const char* name;
  bool download;
  std::string entry;   ///< below these
  std::string before;  ///< a file's bytes that stand at its place already
  Policy policy;
};

/// One cell of the matrix.
struct Cell {
  std::string verb;  ///< the command that it happens to; "" for none, where all is well
  const Fault* fault = nullptr;
  bool passive = true;
  bool encrypted = false;
  bool modern = true;  ///< the server tells facts and checksums
};

[[nodiscard]] const std::vector<Fault>& Faults();
/// The fault as it fits a verb: the wrong code is one that the verb does not have.
[[nodiscard]] ScriptedAction ActionOf(const Fault& fault, const std::string& verb);

/// Each carries out one cell, checks that it ends well, and returns the verbs that were sent.
std::vector<std::string> Try(const Request& request, const Cell& cell);
std::vector<std::string> Try(const Errand& errand, const Cell& cell);
std::vector<std::string> Try(const Rights& rights, const Cell& cell);

/// A server with the files of every cell.
class FaultServer : public ScriptedServer {
 public:
  explicit FaultServer(const Cell& cell);
  /// The verbs that came since the last call.
  [[nodiscard]] std::vector<std::string> Verbs();
  /// What stands on it but not below `path`.
  [[nodiscard]] std::map<std::string, std::string> Beside(const std::string& path);

  Site site;

 private:
  std::size_t heard_ = 0;
};

}  // namespace corvane
