#pragma once

#include <vector>

#include "app/shared/TransferListener.h"
#include "app/shared/WorkerFactory.h"
#include "kit/Message.h"
#include "remote/Site.h"
#include "sites/Shortcut.h"

class QWidget;

namespace corvane {

class TransferView;

/// What a browser window needs of the program around it. GUI thread.
struct BrowserHost {
  virtual ~BrowserHost() = default;

  [[nodiscard]] virtual const WorkerFactory& Workers() const = 0;
  /// Takes 'OPNC', 'SHLG', 'SHMN' and 'HELP'.
  virtual void PostMessage(const Message& message) = 0;
  /// Opens the editor for a new shortcut beside `opener`, filled with `shortcut`.
  virtual void ShowEditor(const Shortcut& shortcut, const QWidget& opener) = 0;
  /// Begins a transfer on a connection of its own.
  virtual void Transfer(transferStruct description, TransferListener listener) = 0;
  /// A view for transfers on the window's own connection; `parent` owns it.
  [[nodiscard]] virtual TransferView* MakeTransferView(QWidget* parent) = 0;
  /// A login to `site` has succeeded.
  virtual void ConnectionStands(const Site& site) = 0;
  /// Opens the manual; alerts stand over `window`.
  virtual void ShowManual(QWidget* window) = 0;
  /// The open browser windows, oldest first.
  [[nodiscard]] virtual std::vector<QWidget*> BrowserWindows() const = 0;
};

}  // namespace corvane
