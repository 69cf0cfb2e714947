// Drag and drop of a browser window: rows out, local files in.

#include <QDragEnterEvent>
#include <QMimeData>
#include <utility>

#include "app/browser/DirListView.h"
#include "app/browser/DragData.h"
#include "app/browser/MWindow.h"
#include "app/browser/RowDrag.h"
#include "app/shared/GuiThread.h"
#include "app/shared/Icons.h"
#include "app/shared/ScreenText.h"
#include "kit/Background.h"
#include "util/ErrorText.h"
#include "util/LocalFolder.h"
#include "util/LocalUrl.h"

namespace corvane {
namespace {

constexpr qsizetype kMostNamed = 10;

/// The addresses of a list of URLs (RFC 2483).
std::vector<std::string_view> Addresses(std::string_view list) {
  std::vector<std::string_view> addresses;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find_first_of("\r\n"), list.size());
    if (end > 0 && list.front() != '#') addresses.push_back(list.substr(0, end));
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return addresses;
}

}  // namespace

void MWindow::DragRows(int pressed) {
  QStringList refused;
  DownloadRequest request = RequestForSelection(refused);
  if (request.items.empty()) return WarnOfNames(refused);
  const MWListItem& row = listing_->Rows().At(pressed);
  const auto others = static_cast<int>(request.items.size()) - 1;
  const QString name = ToText(row.Name());
  const QString text = others == 0 ? name : tr("%1 and %n more", "", others).arg(name);
  const std::string proposed = IsSafeLocalName(row.Name()) ? row.Name() : "download";
  RowDrag::Begin(RowDrag::Picture(*listing_, ListIcon(row.Icon()), text), proposed,
                 [window = QPointer(this), request = std::move(request),
                  refused](const std::string& folder) mutable {
                   if (window.isNull() || window->looper_ == nullptr) return;
                   window->WarnOfNames(refused);
                   window->DownloadInto(folder, std::move(request));
                 });
}

// A folder may lie on a disk that does not answer, so it is looked at elsewhere.
void MWindow::DownloadInto(const std::string& folder, DownloadRequest request) {
  // In the panel a name that no local file can have may be changed.
  const bool needsName = request.items.size() == 1 && !IsSafeLocalName(LocalName(request.items[0]));
  if (folder.empty() || needsName) return SaveDialogBox(std::move(request));
  request.where = folder;
  const auto look = [window = QPointer(this), request = std::move(request)] {
    LocalFolder opened;
    const int error = opened.Open(request.where);
    OnGuiThread([error, window, request] {
      if (window.isNull() || window->looper_ == nullptr) return;
      if (error == 0) return window->DownloadSeveral(request);
      window->Warn(tr("Nothing can be saved in \"%1\": %2")
                       .arg(ToText(request.where), ToText(ErrorText(error))));
    });
  };
  if (!Background::Start("drop folder", look)) Warn(tr("The system has no thread to give."));
}

bool MWindow::Takes(const QDropEvent& drop) const {
  const QMimeData& offer = *drop.mimeData();
  return listing_->IsEnabled() && looper_ != nullptr && drop.source() == nullptr &&
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
  if (!Takes(*event)) return;
  const std::string list = event->mimeData()->data("text/uri-list").toStdString();
  std::vector<std::string> paths;
  QStringList foreign;
  for (const std::string_view address : Addresses(list)) {
    if (std::optional<std::string> path = LocalPathOf(address); path.has_value()) {
      paths.push_back(*std::move(path));
    } else {
      foreign.append(ToText(address));
    }
  }
  if (!paths.empty()) {
    event->setDropAction(Qt::CopyAction);
    event->accept();
  }
  Upload(std::move(paths));
  if (foreign.isEmpty()) return;
  const auto unnamed = static_cast<int>(foreign.size() - kMostNamed);
  QString text = tr("These are no files of this machine and are left out:") + "\n\n" +
                 foreign.mid(0, kMostNamed).join('\n');
  if (unnamed > 0) text += '\n' + tr("and %n more", "", unnamed);
  Warn(text);
}

// The path field would take files as text.
bool MWindow::eventFilter(QObject* object, QEvent* event) {
  if (event->type() != QEvent::DragEnter) return QMainWindow::eventFilter(object, event);
  auto* enter = static_cast<QDragEnterEvent*>(event);
  if (!enter->mimeData()->hasUrls()) return false;
  enter->ignore();
  return true;
}

}  // namespace corvane
