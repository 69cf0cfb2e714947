// What a browser window takes that is dropped onto it.

#include <QDragEnterEvent>
#include <QMimeData>

#include "app/browser/BrowserSession.h"
#include "app/browser/BrowserTransfers.h"
#include "app/browser/BrowserView.h"
#include "app/browser/DirListView.h"
#include "app/browser/DragData.h"
#include "app/browser/LocalDrop.h"
#include "app/browser/MWindow.h"

namespace corvane {

bool MWindow::Takes(const QDropEvent& drop) const {
  const QMimeData& offer = *drop.mimeData();
  return view_->Listing().IsEnabled() && session_->IsReady() && drop.source() == nullptr &&
         !offer.hasFormat(DragData::kRows) && offer.hasUrls() &&
         drop.possibleActions().testFlag(Qt::CopyAction);
}

// Copying, whatever the source would like: after a move it would delete its files.
void MWindow::dragEnterEvent(QDragEnterEvent* event) {
  event->setDropAction(Takes(*event) ? Qt::CopyAction : Qt::IgnoreAction);
  event->setAccepted(event->dropAction() == Qt::CopyAction);
}

void MWindow::dragMoveEvent(QDragMoveEvent* event) {
  event->setDropAction(Takes(*event) ? Qt::CopyAction : Qt::IgnoreAction);
  event->setAccepted(event->dropAction() == Qt::CopyAction);
}

void MWindow::dropEvent(QDropEvent* event) {
  event->ignore();
  if (!Takes(*event) || !FilesDropped(*event->mimeData(), {})) return;
  event->setDropAction(Qt::CopyAction);
  event->accept();
}

// Whether any of the files can be taken; `directory` is one in that which is shown, or none.
bool MWindow::FilesDropped(const QMimeData& offer, const std::string& directory) {
  const LocalDrop drop = LocalDrop::Read(offer.data("text/uri-list").toStdString());
  if (!drop.paths.empty()) transfers_->Upload(drop.paths, directory);
  if (const QString complaint = drop.Complaint(); !complaint.isEmpty()) Warn(complaint);
  return !drop.paths.empty();
}

}  // namespace corvane
