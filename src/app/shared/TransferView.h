#pragma once

#include <QWidget>
#include <functional>
#include <memory>

#include "app/shared/TransferListener.h"
#include "app/shared/TransferNews.h"
#include "queue/JobBoard.h"
#include "queue/transferStruct.h"
#include "remote/TransferUi.h"
#include "workers/MThread.h"

namespace corvane {

/// What a browser window shows of a transfer on its own connection. GUI thread.
class TransferView : public QWidget {
  Q_OBJECT

 public:
  using MakeWorker = std::function<std::shared_ptr<MThread>(
      std::shared_ptr<TransferUi>, transferStruct, std::shared_ptr<JobBoard>)>;

  using QWidget::QWidget;

  /// Shows a transfer and starts it; not while Busy().
  virtual void Begin(transferStruct description, TransferListener listener,
                     const MakeWorker& make) = 0;
  /// Stops the worker and hears no more of it.
  virtual void LetGo() = 0;

  /// From Begin until the worker has said how it ended.
  [[nodiscard]] virtual bool Busy() const = 0;
  /// Whether the transfer runs and has not been cancelled.
  [[nodiscard]] virtual bool Running() const = 0;

 Q_SIGNALS:
  /// The worker has said how it ended and uses the connection no more.
  void Settled(const corvane::TransferNews& news);
};

}  // namespace corvane
