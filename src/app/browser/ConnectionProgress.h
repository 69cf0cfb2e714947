#pragma once

#include <QObject>
#include <cstdint>
#include <optional>

#include "kit/Message.h"
#include "remote/ConnectStep.h"
#include "remote/Site.h"

namespace corvane {

class MWindow;
struct BrowserHost;

/// How a browser window's connection comes about and is lost, as the window shows it: in place of
/// the listing before the first one, above it afterwards. GUI thread.
class ConnectionProgress : public QObject {
  Q_OBJECT

 public:
  enum class State : std::uint8_t { Connecting, Connected, NotConnected };

  /// `window` owns this object.
  ConnectionProgress(BrowserHost& host, MWindow& window);

  /// Begins to connect to `site`, as soon as its password is there.
  void Begin(const Site& site);
  void Show(const ConnectStep& step);
  /// The server has let the user in and told where it is.
  void Stands();
  /// 'FERR'.
  void Failed(const Message& message);
  /// 'LOST'.
  void Lost(const Message& message);
  /// 'DONE': where the user has stopped connecting, offers to begin anew.
  void Ended(const Message& message);
  /// Connects again after a loss, to where the window was.
  void ConnectAgain();

  [[nodiscard]] State Now() const { return state_; }

 Q_SIGNALS:
  void Changed();

 private:
  void Become(State state);
  /// Begins with the password that was found; without any where the user gives none.
  void Found(std::optional<Site> site, bool keep);

  BrowserHost& host_;
  MWindow& window_;
  State state_ = State::Connecting;
  bool keep_ = false;  // the password, once the server has taken it
};

}  // namespace corvane
