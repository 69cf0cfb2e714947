// How a browser window ends, and what ends with it.

#include <QCloseEvent>

#include "app/browser/BrowserAlerts.h"
#include "app/browser/BrowserSession.h"
#include "app/browser/BrowserView.h"
#include "app/browser/MWindow.h"
#include "app/shared/Frames.h"
#include "app/shared/ScreenText.h"
#include "app/shared/TransferView.h"

namespace corvane {

bool MWindow::IsTransferring() const {
  return view_->Transfer().Running();
}

QString MWindow::WouldEnd() const {
  const QString host = ToText(session_->To().host);
  if (IsTransferring()) return tr("A transfer runs on the connection to %1.").arg(host);
  if (session_->IsDeleting()) return tr("Entries on %1 are still being deleted.").arg(host);
  return {};
}

void MWindow::Disconnect() {
  view_->Transfer().LetGo();
  session_->End();
}

void MWindow::CloseNow() {
  mayClose_ = true;
  close();
}

// The frame is kept at once: a window that is opened in place of this one stands there.
void MWindow::closeEvent(QCloseEvent* event) {
  if (const QString running = WouldEnd(); !mayClose_ && !running.isEmpty()) {
    event->ignore();
    return alerts_->AskToClose(running);
  }
  closed_ = true;
  Frames::Keep(kConnectionFrame, *this);
  hide();
  Disconnect();
  event->accept();
}

}  // namespace corvane
