#include "app/desktop/RequestServer.h"

#include <sys/socket.h>
#include <unistd.h>

#include <QByteArray>
#include <QTimer>
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <string>
#include <utility>

#include "app/desktop/StartupNotice.h"
#include "app/shared/CommandLine.h"
#include "app/shared/OpenMessage.h"
#include "util/UniqueFd.h"

namespace corvane {
namespace {

constexpr std::chrono::seconds kSilence{1};
constexpr std::string_view kMessage = "message ";
constexpr std::string_view kStartup = "startup ";

bool IsSameUser(const UniqueFd& peer) {
  ucred who{};
  socklen_t size = sizeof who;
  return ::getsockopt(peer.get(), SOL_SOCKET, SO_PEERCRED, &who, &size) == 0 &&
         who.uid == ::geteuid();
}

std::string Encoded(const std::string& bytes) {
  return QByteArray::fromStdString(bytes).toBase64().toStdString();
}

std::optional<std::string> Decoded(std::string_view text) {
  const auto bytes = QByteArray::fromBase64Encoding(QByteArray(text.data(), std::ssize(text)),
                                                    QByteArray::AbortOnBase64DecodingErrors);
  if (!bytes) return {};
  return bytes.decoded.toStdString();
}

/// A flattened 'OPNC' that names a site.
std::optional<Message> Unwrapped(std::string_view text) {
  auto message = Message::Unflatten(Decoded(text).value_or(""));
  const bool opens =
      message.has_value() && message->what == "OPNC"_what && SiteIn(*message).has_value();
  return opens ? message : std::nullopt;
}

/// A name, a blank, and a request of another kind.
std::optional<Message> WithStartup(std::string_view text) {
  const std::size_t blank = std::min(text.find(' '), text.size());
  const auto name = Decoded(text.substr(0, blank));
  text.remove_prefix(std::min(blank + 1, text.size()));
  if (!name.has_value() || name->size() > StartupNotice::kLongest || text.starts_with(kStartup)) {
    return {};
  }
  auto request = RequestServer::Read(text);
  if (request.has_value()) request->AddString("startup", *name);
  return request;
}

}  // namespace

/// One connection. It deletes itself.
class RequestServer::Peer : public QObject {
 public:
  Peer(RequestServer& server, UniqueFd socket)
      : QObject(&server),
        server_(server),
        socket_(std::move(socket)),
        readable_(socket_.get(), QSocketNotifier::Read) {
    connect(&readable_, &QSocketNotifier::activated, this, [this] { Receive(); });
    QTimer::singleShot(kSilence, this, [this] { HangUp(); });
  }

 private:
  void Receive() {
    std::array<char, kLongest + 2> bytes{};  // one more than a request with its line end
    const ssize_t count = ::recv(socket_.get(), bytes.data(), bytes.size() - line_.size(), 0);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
    if (count <= 0) return HangUp();
    line_.append(bytes.data(), static_cast<std::size_t>(count));
    if (line_.size() == bytes.size()) return Answer(kRefused);
    if (line_.find('\n') == std::string::npos) return;
    // A start that was told of no answer has hung up; its user may have tried again.
    char more = 0;
    if (::recv(socket_.get(), &more, 1, MSG_PEEK) == 0) return HangUp();
    if (!line_.ends_with('\n')) return Answer(kRefused);
    const auto request = Read(std::string_view(line_).substr(0, line_.size() - 1));
    if (!request.has_value()) return Answer(kRefused);
    if (!server_.take_(*request)) return HangUp();
    Answer(kTaken);
  }

  void Answer(std::string_view line) {
    // A peer that has gone meanwhile hears nothing, and a few bytes always fit.
    (void)::send(socket_.get(), line.data(), line.size(), MSG_NOSIGNAL);
    HangUp();
  }

  void HangUp() {
    if (!socket_) return;
    readable_.setEnabled(false);
    socket_.reset();
    deleteLater();
  }

  RequestServer& server_;
  UniqueFd socket_;
  QSocketNotifier readable_;
  std::string line_;
};

RequestServer::RequestServer(int listener, std::function<bool(const Message&)> take)
    : arrival_(listener, QSocketNotifier::Read), take_(std::move(take)) {
  connect(&arrival_, &QSocketNotifier::activated, this, [this] { Accept(); });
}

void RequestServer::Accept() {
  const auto listener = static_cast<int>(arrival_.socket());
  UniqueFd socket(::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
  if (!socket) {
    if (errno != EMFILE && errno != ENFILE) return;
    // The connection would be announced over and over.
    arrival_.setEnabled(false);
    QTimer::singleShot(kSilence, this, [this] { arrival_.setEnabled(peers_ < kMostPeers); });
    return;
  }
  if (!IsSameUser(socket)) return;
  arrival_.setEnabled(++peers_ < kMostPeers);
  connect(new Peer(*this, std::move(socket)), &QObject::destroyed, this,
          [this] { arrival_.setEnabled(--peers_ < kMostPeers); });
}

std::string RequestServer::Line(const Message& open) {
  return std::string(kMessage) + Encoded(open.Flatten());
}

std::string RequestServer::Named(const std::string& startup, const std::string& request) {
  return startup.empty() ? request : std::string(kStartup) + Encoded(startup) + " " + request;
}

std::optional<Message> RequestServer::Read(std::string_view line) {
  constexpr std::string_view kOpen = "open ";
  const auto isControl = [](unsigned char byte) { return byte < ' ' || byte == 0x7F; };
  if (line.size() > kLongest || std::ranges::any_of(line, isControl)) return {};
  if (line == "show") return Message("SHMN"_what);
  if (line.starts_with(kStartup)) return WithStartup(line.substr(kStartup.size()));
  if (line.starts_with(kMessage)) return Unwrapped(line.substr(kMessage.size()));
  if (!line.starts_with(kOpen)) return {};
  return CommandLine::Read(std::vector{std::string(line.substr(kOpen.size()))}).open;
}

}  // namespace corvane
