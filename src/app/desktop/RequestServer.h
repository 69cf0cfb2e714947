#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "kit/Message.h"

namespace corvane {

/// Takes the requests of later starts, for the program that runs already. Each is one line on a
/// connection of its own and is answered by one line. Nothing here waits. GUI thread.
class RequestServer : public QObject {
 public:
  /// Bytes of a request, without its line end.
  static constexpr std::size_t kLongest = 8192;
  /// Further connections wait until one of so many has ended; they all do, within a second.
  static constexpr int kMostPeers = 16;
  static constexpr std::string_view kTaken = "ok\n";
  static constexpr std::string_view kRefused = "no\n";

  /// `take` gets an 'OPNC' or 'SHMN'; false hangs up, for the program is about to end.
  /// `listener` stays the caller's and outlives the server.
  RequestServer(int listener, std::function<bool(const Message&)> take);

  /// "show", "open" and a URL as on the command line, or what Line wrote; nothing for any other
  /// text. The name of the start, where there is one, is the field "startup".
  [[nodiscard]] static std::optional<Message> Read(std::string_view line);
  /// The request, without its line end, that brings an 'OPNC' over as it is.
  [[nodiscard]] static std::string Line(const Message& open);
  /// A request with the name of the start that it is for.
  [[nodiscard]] static std::string Named(const std::string& startup, const std::string& request);

 private:
  class Peer;

  void Accept();

  QSocketNotifier arrival_;
  std::function<bool(const Message&)> take_;
  int peers_ = 0;
};

}  // namespace corvane
