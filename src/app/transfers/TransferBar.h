#pragma once

#include <QWidget>

namespace corvane {

class IconButton;

/// What there is to do with all rows of the list. A value.
struct TransferChoices {
  bool anyToPause = false;
  bool anyPaused = false;
  bool anyFailed = false;  ///< or was cancelled
  bool anyDone = false;
};

/// The tool bar of the transfer window: what is done with all that runs, is paused, has failed or
/// finished. GUI thread.
class TransferBar : public QWidget {
  Q_OBJECT

 public:
  explicit TransferBar(QWidget* parent);

  /// What there is nothing for cannot be pressed, and says why.
  void Update(const TransferChoices& choices);

  [[nodiscard]] QSize minimumSizeHint() const override;

 Q_SIGNALS:
  void PauseAll();
  void ResumeAll();
  void RetryFailed();
  void RemoveFinished();

 protected:
  /// Where there is no room for their texts, the buttons show symbols alone.
  void resizeEvent(QResizeEvent* event) override;

 private:
  void FitTexts();

  IconButton* pause_;  // resumes where nothing is left to be paused
  IconButton* retry_;
  IconButton* remove_;
  bool resumes_ = false;
};

}  // namespace corvane
