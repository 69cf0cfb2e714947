#include "app/browser/BrowserAlerts.h"

#include <utility>

#include "app/browser/BrowserSession.h"
#include "app/browser/MWindow.h"
#include "app/shared/Alerts.h"
#include "app/shared/Shown.h"

namespace corvane {
namespace {

QString TextOf(const Message& message, const char* field) {
  return Shown(message.FindText(field).value_or(Text()));
}

}  // namespace

BrowserAlerts::BrowserAlerts(MWindow& window) : QObject(&window), window_(window) {}

// A server that refuses much is not to fill the screen.
void BrowserAlerts::Warn(const QString& text, const QString& title) {
  constexpr int kMostAlerts = 3;
  if (openWarnings_ == kMostAlerts) return window_.AppendLog(text.toStdString() + "\n");
  ++openWarnings_;
  Alerts::Show(&window_, {.title = title, .text = text}, [this](int) { --openWarnings_; });
}

void BrowserAlerts::Warned(const Message& message) {
  Warn(TextOf(message, "warning"), MWindow::tr("Warning"));
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

}  // namespace corvane
