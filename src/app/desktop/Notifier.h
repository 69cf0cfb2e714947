#pragma once

#include <QObject>
#include <QString>
#include <QTimer>
#include <functional>

namespace corvane {

struct TransferNews;

/// Tells the desktop that transfers have ended while no window of the program is active: one
/// notification, however many they are, which goes once the user looks. Owned by TambleApp. GUI
/// thread.
class Notifier : public QObject {
  Q_OBJECT

 public:
  struct Ways {
    /// Shows a notification, plain text, in place of the one shown before.
    std::function<void(const QString& summary, const QString& body)> show;
    /// Takes it away.
    std::function<void()> take;
  };

  /// The desktop's notifications (org.freedesktop.Notifications); where there are none, nothing is
  /// shown.
  Notifier();
  explicit Notifier(Ways ways);

  /// To be called for every transfer whose worker is done. What the user has cancelled is not news.
  void Ended(const TransferNews& news);

 private:
  void Show();
  void Forget();

  const Ways ways_;
  QTimer gathering_;
  int finished_ = 0;
  int failed_ = 0;
  QString summary_;  // of the last one
  QString body_;
};

}  // namespace corvane
