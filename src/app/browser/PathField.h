#pragma once

#include <QLineEdit>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "app/shared/Tones.h"

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

  /// The site's, for paths that are no UTF-8; before a path is shown.
  void SetEncoding(const std::string& encoding) { encoding_ = encoding; }
  /// Shows a path, raw bytes; what is being typed stays.
  void ShowPath(const std::string& path);
  /// The bytes of what stands in the field: those of a path that was shown or offered, as long as
  /// nobody has changed it, else what was typed; nothing where the site's encoding lacks a letter.
  [[nodiscard]] std::optional<std::string> Bytes() const;
  /// `recent` are offered behind the arrow, the latest first, and `below` as well while one writes.
  /// Both are asked when they are needed.
  void OfferPaths(Paths recent, Paths below);
  /// Shows a symbol before the path, which tells what it means and can be pressed; none with null.
  void ShowLock(const char* symbol, const QString& meaning, Tone tone);
  /// Takes what was typed back to the path shown.
  void Restore();

 Q_SIGNALS:
  /// The user wants to go to what stands in the field.
  void Entered();
  /// The user has given the field up.
  void Left();
  void LockPressed();

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
  std::string encoding_;
  std::string shown_;
  std::map<QString, std::string> known_;
  QStringListModel* names_;
  QAction* arrow_;
  QAction* lock_;
};

}  // namespace corvane
