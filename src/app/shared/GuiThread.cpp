#include "app/shared/GuiThread.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <utility>

namespace corvane {

void OnGuiThread(std::function<void()> call) {
  if (QCoreApplication* application = QCoreApplication::instance(); application != nullptr) {
    QMetaObject::invokeMethod(application, std::move(call), Qt::QueuedConnection);
  }
}

}  // namespace corvane
