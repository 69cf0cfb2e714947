#pragma once

#include <QWidget>

namespace corvane {

class IconButton;

/// The tool bar of the transfer window: what is done with all that has failed or finished. GUI
/// thread.
class TransferBar : public QWidget {
  Q_OBJECT

 public:
  explicit TransferBar(QWidget* parent);

  /// What there is nothing for cannot be pressed, and says why.
  void Update(bool anyFailed, bool anyDone);

 Q_SIGNALS:
  void RetryFailed();
  void RemoveFinished();

 private:
  IconButton* retry_;
  IconButton* remove_;
};

}  // namespace corvane
