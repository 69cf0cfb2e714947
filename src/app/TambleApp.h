#pragma once

#include <QObject>
#include <QRect>
#include <memory>
#include <vector>

#include "app/WorkerFactory.h"
#include "kit/Message.h"
#include "kit/Rect.h"

namespace corvane {

class DownLoadWin;
class MWindow;
class StartWin;

/// The application: owns the connection window and the transfer window, and opens browser windows.
/// GUI thread.
class TambleApp : public QObject {
  Q_OBJECT

 public:
  explicit TambleApp(WorkerFactory workers = WorkerFactory::Real());
  ~TambleApp() override;

  /// Settings, the two windows, and what the command line asked for.
  void ReadyToRun(const std::optional<Message>& open = {});

  /// 'OPNC' opens a browser window, 'SHLG' and 'SHMN' bring transfer and connection window forward.
  void PostMessage(const Message& message);

  /// Hides everything, tells all work to end, and ends the event loop.
  void Quit();

  [[nodiscard]] DownLoadWin& Transfers() { return *transfers_; }
  [[nodiscard]] const WorkerFactory& Workers() const { return workers_; }

  /// The open browser windows, oldest first.
  [[nodiscard]] const std::vector<MWindow*>& WindowList() const { return windowList_; }
  void AddWindow(MWindow* window) { windowList_.push_back(window); }
  void RemoveWindow(MWindow* window) { std::erase(windowList_, window); }

  /// Moves a browser window's frame into the screen, and widens one that is too narrow.
  [[nodiscard]] static Rect FitFrame(Rect frame, const Rect& screen);

 private:
  void OpenBrowser(const Message& message);

  WorkerFactory workers_;
  std::vector<MWindow*> windowList_;
  std::unique_ptr<StartWin> start_;
  std::unique_ptr<DownLoadWin> transfers_;
  bool quitting_ = false;
};

}  // namespace corvane
