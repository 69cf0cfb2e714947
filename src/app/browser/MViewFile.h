#pragma once

#include <QPointer>
#include <QWidget>
#include <atomic>
#include <memory>
#include <string>
#include <string_view>

#include "kit/Mutex.h"
#include "remote/BrowserUi.h"

class QComboBox;
class QImage;
class QLabel;
class QLineEdit;
class QPlainTextEdit;

namespace corvane {

class MViewFile;

/// A text window as the worker that fills it sees it; outlives the window.
class ViewerLink final : public TextSink, public std::enable_shared_from_this<ViewerLink> {
 public:
  /// What a window holds; it says so where there would be more.
  static constexpr std::size_t kMostBytes = std::size_t{8} << 20;
  /// The same of a picture.
  static constexpr std::size_t kMostPicture = std::size_t{32} << 20;

  bool Append(std::string_view bytes) override;
  void End(const Text& note) override;

  /// GUI thread: text goes to this window from now on.
  void Attach(MViewFile& window);
  /// GUI thread: all the text goes to the window once more.
  void Again() EXCLUDES(lock_);
  /// GUI thread: the window is closing.
  void Close() { closing_ = true; }

 private:
  void Hop();
  void Drain() EXCLUDES(lock_);
  [[nodiscard]] std::string NextPiece() REQUIRES(lock_);
  void ShowPicture(std::string bytes, const QString& note);

  QPointer<MViewFile> window_;  // GUI thread only
  std::atomic<bool> closing_{false};
  Mutex lock_;
  std::string text_ GUARDED_BY(lock_);
  std::size_t taken_ GUARDED_BY(lock_) = 0;  // bytes at its beginning that are in the window
  bool ended_ GUARDED_BY(lock_) = false;
  bool cut_ GUARDED_BY(lock_) = false;
  bool picture_ GUARDED_BY(lock_) = false;
  Text note_ GUARDED_BY(lock_);
  std::size_t received_ GUARDED_BY(lock_) = 0;
  bool hopPending_ GUARDED_BY(lock_) = false;
};

/// Shows a remote text while it arrives, in the encoding that the user chooses; Ctrl+F searches it.
/// Lines beyond all reading are broken. A picture is shown as one once it is there. Deletes itself
/// when closed.
class MViewFile : public QWidget {
  Q_OBJECT

 public:
  MViewFile(QWidget* browser, const QString& title, std::shared_ptr<ViewerLink> link);
  ~MViewFile() override;

  void AppendText(std::string_view bytes);
  /// Shows a picture in place of the text.
  void ShowPicture(const QImage& picture);
  /// Tells, below the text, why it is not whole.
  void ShowNote(const QString& note);

 private:
  QWidget* MakeEncodingBar();
  QWidget* MakeFindBar();
  void Find(bool backward);

  std::shared_ptr<ViewerLink> link_;
  QPlainTextEdit* text_;
  QLabel* note_;
  QWidget* encodingBar_ = nullptr;
  QComboBox* encoding_ = nullptr;
  QWidget* findBar_ = nullptr;
  QLineEdit* wanted_ = nullptr;
  qsizetype column_ = 0;  // characters since the last line end
};

}  // namespace corvane
