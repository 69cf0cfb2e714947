#pragma once

#include <QObject>
#include <QPoint>
#include <string>
#include <vector>

class QDragMoveEvent;
class QDropEvent;
class QMimeData;

namespace corvane {

class DirListView;

/// Drags onto the directories of a listing: rows of it, which are to be moved there, and files from
/// outside. Watches the drags of the listing's window and lets all others through to it. GUI
/// thread.
class RowDrop : public QObject {
  Q_OBJECT

 public:
  explicit RowDrop(DirListView& view);

  /// Watches this window from now on.
  void Watch(QWidget* window);
  /// A drag of these rows begins.
  void Begin(std::vector<std::string> names);
  /// The row that a drop would go onto; -1 when there is none.
  [[nodiscard]] int Row() const { return row_; }

 Q_SIGNALS:
  void RowChanged(int before, int now);
  void Moved(const std::vector<std::string>& names, const std::string& directory);
  void Dropped(const QMimeData& data, const std::string& directory);

 protected:
  bool eventFilter(QObject* window, QEvent* event) override;
  void timerEvent(QTimerEvent* event) override;

 private:
  [[nodiscard]] bool IsOwn(const QDropEvent& drag) const;
  [[nodiscard]] bool TakesFiles(const QDropEvent& drag) const;
  /// The directory below the pointer; -1 when there is none that is not being dragged itself.
  [[nodiscard]] int DirectoryAt(const QDropEvent& drag) const;
  bool Over(QDropEvent& drag);
  bool Drop(QDropEvent& drag);
  void SetRow(int row);
  void ScrollNear(const QDropEvent& drag);
  void StopScrolling();

  DirListView& view_;
  QWidget* window_ = nullptr;
  std::vector<std::string> names_;  // of the rows that were dragged last
  int row_ = -1;
  int timer_ = 0;
  int step_ = 0;
};

}  // namespace corvane
