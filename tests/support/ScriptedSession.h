#pragma once

#include <netinet/in.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
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
  ScriptedSession(ScriptedServer& server, UniqueFd control, int number);
  void Run();

 private:
  [[nodiscard]] std::optional<std::string> ReadLine();
  void Perform(const std::string& verb, const std::string& argument);
  void Say(std::string text);
  bool Write(int fd, std::string_view bytes) const;
  /// Appends what comes until the end of data or `limit` bytes; false on failure.
  [[nodiscard]] bool Read(int fd, std::size_t limit, std::string& bytes) const;
  /// Until released, stopped or hung up; true when released. `data` may be -1.
  [[nodiscard]] bool Stall(int data) const;
  /// False when the server stops, the client is gone or the limit passes first.
  [[nodiscard]] bool Wait(int fd, short events,
                          std::chrono::milliseconds limit = std::chrono::seconds(20)) const;

  void Dispatch(const std::string& verb, const std::string& argument);
  void Port(const std::string& argument);
  /// Verbs about what a path leads to, links followed, and about the path itself; false for others.
  bool AboutTarget(const std::string& verb, const std::string& argument);
  bool AboutPath(const std::string& verb, const std::string& argument);
  void Judge(bool done, const std::string& success);
  void SendData(const std::string& bytes);
  /// `bytes` is what the file begins with.
  void ReceiveData(const std::string& path, std::string bytes);
  /// Opens the data connection and says the preliminary reply; none when nothing more is to be
  /// done.
  [[nodiscard]] UniqueFd BeginData();
  void EndData(UniqueFd data, bool whole);
  [[nodiscard]] UniqueFd Connect(std::uint32_t from) const;

  ScriptedServer& server_;
  UniqueFd control_;
  const int number_;
  std::string input_;
  ScriptedAction action_;
  std::string directory_ = "/";
  std::string renameFrom_;
  std::size_t restart_ = 0;
  UniqueFd passive_;
  std::uint16_t passivePort_ = 0;
  sockaddr_in active_{};
};

}  // namespace corvane
