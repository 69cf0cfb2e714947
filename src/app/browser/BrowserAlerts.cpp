#include "app/browser/BrowserAlerts.h"

#include <utility>

#include "app/browser/BrowserHost.h"
#include "app/browser/BrowserSession.h"
#include "app/browser/MWindow.h"
#include "app/shared/Alerts.h"
#include "app/shared/EngineTexts.h"
#include "app/shared/OpenMessage.h"
#include "app/shared/ScreenText.h"

namespace corvane {
namespace {

QString TextOf(const Message& message, const char* field) {
  return Translated(ToLines(message.FindString(field).value_or("")));
}

}  // namespace

BrowserAlerts::BrowserAlerts(BrowserHost& host, MWindow& window)
    : QObject(&window), host_(host), window_(window) {}

// A server that refuses much is not to fill the screen.
void BrowserAlerts::Warn(const QString& text, const QString& title) {
  constexpr int kMostAlerts = 3;
  if (openWarnings_ == kMostAlerts) return window_.AppendLog(text.toStdString() + "\n");
  ++openWarnings_;
  Alerts::Show(&window_, {.title = title, .text = text}, [this](int) { --openWarnings_; });
}

void BrowserAlerts::Warned(const Message& message) {
  const QString text = TextOf(message, "warning");
  if (const auto passive = message.FindBool("passive")) return OfferOtherMode(text, *passive);
  Warn(text, MWindow::tr("Warning"));
}

void BrowserAlerts::FatalError(const Message& message) {
  const QString text = TextOf(message, "error");
  const QString detail = TextOf(message, "detail");
  if (window_.Session().WasConnected()) {
    return OfferToConnect(detail.isEmpty() ? text : text + '\n' + detail);
  }
  if (std::exchange(failed_, true)) return;
  Alerts::Show(&window_,
               {.icon = QMessageBox::Critical,
                .title = MWindow::tr("Error"),
                .text = text,
                .detail = detail},
               [this](int) { window_.CloseNow(); });
}

void BrowserAlerts::Lost(const Message& message) {
  OfferToConnect(TextOf(message, "warning"));
}

void BrowserAlerts::AskToClose(const QString& running) {
  if (std::exchange(asking_, true)) return;
  Alerts::Show(&window_,
               {.title = MWindow::tr("Alert!"),
                .text = running + "\n\n" + MWindow::tr("Close the window and stop that?"),
                .buttons = {MWindow::tr("&Close Window"), MWindow::tr("Cancel")},
                .preset = 1},
               [this](int button) {
                 asking_ = false;
                 if (button == 0) window_.CloseNow();
               });
}

void BrowserAlerts::OfferToConnect(const QString& text) {
  if (std::exchange(offering_, true)) return window_.AppendLog(text.toStdString() + "\n");
  Alerts::Show(&window_,
               {.title = MWindow::tr("Warning"),
                .text = text,
                .buttons = {MWindow::tr("&Connect Again"), MWindow::tr("Cancel")}},
               [this](int button) {
                 offering_ = false;
                 if (button == 0) window_.Session().ConnectAgain();
               });
}

void BrowserAlerts::OfferOtherMode(const QString& text, bool passive) {
  if (std::exchange(offering_, true)) return window_.AppendLog(text.toStdString() + "\n");
  Alerts::Question question{.title = MWindow::tr("Error"), .text = text};
  if (passive) {
    question.detail = MWindow::tr("Some servers only work with active connections.");
    question.buttons = {MWindow::tr("&Try Active Connections"), MWindow::tr("Cancel")};
  } else {
    question.detail =
        MWindow::tr("Behind a router or a firewall, passive connections mostly work.");
    question.buttons = {MWindow::tr("&Try Passive Connections"), MWindow::tr("Cancel")};
  }
  Alerts::Show(&window_, question, [this, passive](int button) {
    offering_ = false;
    if (button == 0) OpenInOtherMode(!passive);
  });
}

void BrowserAlerts::OpenInOtherMode(bool passive) {
  const Connection& to = window_.Session().To();
  const auto open = OpenMessage({.host = to.host,
                                 .user = to.user,
                                 .pass = to.pass,
                                 .path = window_.Session().Place(),
                                 .port = std::to_string(to.port),
                                 .passive = passive});
  window_.CloseNow();  // the new window stands where this one stood
  if (open.has_value()) host_.PostMessage(*open);
}

}  // namespace corvane
