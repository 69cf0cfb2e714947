#pragma once

#include <netinet/in.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "support/ScriptedServer.h"
#include "util/UniqueFd.h"

namespace corvane {

/// A listening socket on a free loopback port, and that port.
[[nodiscard]] std::pair<UniqueFd, std::uint16_t> ListenOnLoopback();
/// Makes the coming close of a socket a reset.
void MakeCloseReset(int fd);

/// One control connection of the scripted server, on its own thread.
class ScriptedSession {
 public:
  ScriptedSession(ScriptedServer& server, UniqueFd control);
  void Run();

 private:
  /// A command with its line end; "" when there is none any more.
  [[nodiscard]] std::string ReadLine() const;
  void Perform(const std::string& verb, const std::string& argument);
  void Say(std::string text);
  /// Says `success`, or that it cannot be done.
  void Judge(bool done, const std::string& success);
  bool Write(int fd, std::string_view bytes) const;
  /// False when the server stops, the client is gone or a long time passes first.
  bool Wait(int fd, short events) const;

  void Dispatch(const std::string& verb, const std::string& argument);
  void Port(std::string argument);
  /// Verbs about the file or directory at `path`.
  void AboutPath(const std::string& verb, const std::string& path);
  void SendData(const std::string& bytes);
  void ReceiveData(const std::string& path);
  /// Opens the data connection and says the preliminary reply; none when nothing more is to be
  /// done.
  [[nodiscard]] UniqueFd BeginData();
  void EndData(UniqueFd data, bool whole);
  [[nodiscard]] UniqueFd Connect(std::uint32_t from) const;

  ScriptedServer& server_;
  UniqueFd control_;
  ScriptedAction action_;
  std::string held_;  // replies that are late
  std::string directory_ = "/";
  std::size_t restart_ = 0;
  UniqueFd passive_;
  std::uint16_t passivePort_ = 0;
  sockaddr_in active_{};
};

}  // namespace corvane
