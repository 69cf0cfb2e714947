#pragma once

#include <QWidget>

class QCheckBox;
class QPushButton;

namespace corvane {

class TransferView;

/// What stands beside the listing: the two buttons, the choice of the connection, the transfer on
/// it, and what is known of the rows selected. GUI thread.
class BrowserPane : public QWidget {
  Q_OBJECT

 public:
  /// The pane takes `transfer` and `info` over.
  BrowserPane(QWidget* parent, TransferView* transfer, QWidget* info);

  [[nodiscard]] TransferView& Transfer() { return *transfer_; }
  [[nodiscard]] const TransferView& Transfer() const { return *transfer_; }
  [[nodiscard]] bool UsesSameConnection() const;
  /// Enables the buttons; `why` says what a download lacks.
  void SetUsable(bool canDownload, bool canUpload, const QString& why);

 Q_SIGNALS:
  void DownloadPressed();
  void UploadPressed();

 private:
  QPushButton* download_;
  QPushButton* upload_;
  QCheckBox* sameConnection_;
  TransferView* transfer_;
};

}  // namespace corvane
