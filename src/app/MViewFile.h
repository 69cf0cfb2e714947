#pragma once

#include <QPointer>
#include <QWidget>
#include <atomic>
#include <memory>
#include <string>
#include <string_view>

#include "ftp/BrowserUi.h"
#include "kit/Mutex.h"

class QPlainTextEdit;

namespace corvane {

class MViewFile;

/// A text window as the worker that fills it sees it; outlives the window.
class ViewerLink final : public TextSink, public std::enable_shared_from_this<ViewerLink> {
 public:
  /// Refused beyond this many bytes: a window is no place for them.
  static constexpr std::size_t kMostBytes = std::size_t{64} << 20;

  bool Append(std::string_view bytes) override;

  /// GUI thread: text goes to this window from now on.
  void Attach(MViewFile& window);
  /// GUI thread: the window is closing.
  void Close() { closing_ = true; }

 private:
  void Drain() EXCLUDES(lock_);

  QPointer<MViewFile> window_;  // GUI thread only
  std::atomic<bool> closing_{false};
  Mutex lock_;
  std::string text_ GUARDED_BY(lock_);
  std::size_t received_ GUARDED_BY(lock_) = 0;
  bool hopPending_ GUARDED_BY(lock_) = false;
};

/// Shows a remote text while it arrives. Deletes itself when closed.
class MViewFile : public QWidget {
  Q_OBJECT

 public:
  MViewFile(QWidget* browser, const QString& title, std::shared_ptr<ViewerLink> link);
  ~MViewFile() override;

  void AppendText(std::string_view bytes);

 private:
  std::shared_ptr<ViewerLink> link_;
  QPlainTextEdit* text_;
};

}  // namespace corvane
