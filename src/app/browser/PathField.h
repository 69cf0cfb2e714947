#pragma once

#include <QLineEdit>
#include <functional>
#include <map>
#include <string>
#include <vector>

class QAction;
class QStringListModel;

namespace corvane {

/// The field that shows where a browser window is, and in which one writes where to go. It offers
/// the directories that were shown and, while one writes, the names below. What is being typed is
/// never taken away. GUI thread.
class PathField : public QLineEdit {
  Q_OBJECT

 public:
  using Paths = std::function<std::vector<std::string>()>;

  explicit PathField(QWidget* parent);

  /// Shows a path, raw bytes; what is being typed stays.
  void ShowPath(const std::string& path);
  /// The bytes of what stands in the field: those of a path that was shown or offered, as long as
  /// nobody has changed it, else what was typed.
  [[nodiscard]] std::string Bytes() const;
  /// `recent` are offered behind the arrow, the latest first, and `below` as well while one writes.
  /// Both are asked when they are needed.
  void OfferPaths(Paths recent, Paths below);
  /// Takes what was typed back to the path shown.
  void Restore();

 Q_SIGNALS:
  /// The user wants to go to what stands in the field.
  void Entered();
  /// The user has given the field up.
  void Left();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void ShowRecent();
  void Complete();
  /// Keeps the bytes of a path and returns its text.
  QString Known(const std::string& path);

  Paths recent_;
  Paths below_;
  std::string shown_;
  std::map<QString, std::string> known_;
  QStringListModel* names_;
  QAction* arrow_;
};

}  // namespace corvane
