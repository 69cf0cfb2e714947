#pragma once

#include <QFileDialog>

namespace corvane {

/// Lets the user choose what to upload: files, folders and links, any number of them. The "Select"
/// button takes a folder as it is; a double-click enters it. GUI thread.
class UploadPanel : public QFileDialog {
  Q_OBJECT

 public:
  explicit UploadPanel(QWidget* browser);

  void accept() override;

 Q_SIGNALS:
  void Chosen(const QStringList& paths);
};

}  // namespace corvane
