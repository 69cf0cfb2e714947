#pragma once

#include <QWidget>
#include <functional>

#include "kit/Message.h"
#include "util/Shortcut.h"

class QCheckBox;
class QFormLayout;
class QLineEdit;
class QPushButton;

namespace corvane {

class Password;
class TambleApp;

/// Edits one saved connection: a new one, which is stored at once, or one of the shortcut list,
/// which takes the change over. Deletes itself when closed. GUI thread.
class ShortCutEditWindow : public QWidget {
  Q_OBJECT

 public:
  using Change = std::function<void(Shortcut)>;

  explicit ShortCutEditWindow(TambleApp& app);

  /// Edits a new connection that begins as `record`.
  void Begin(const Shortcut& record);
  /// Edits `record`, in place of what was edited until now; `change` gets the result.
  void Edit(const Shortcut& record, Change change);
  /// Goes to where it belongs to a window that opens it.
  void PlaceBeside(const QWidget& opener);

  void MessageReceived(const Message& message);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void MakeViews();
  void Fill(const Shortcut& record);
  [[nodiscard]] Shortcut Entered() const;
  /// Sees to what cannot be stored, then goes on with `then`.
  void Check(const Shortcut& entered, std::function<void()> then);
  void Save();
  void Add(const Shortcut& entered);
  [[nodiscard]] bool AddMode() const { return !change_; }

  TambleApp& app_;
  Shortcut record_;  // what the fields were filled with
  Change change_;

  QLineEdit* label_ = nullptr;
  QLineEdit* host_ = nullptr;
  QLineEdit* user_ = nullptr;
  Password* password_ = nullptr;
  QLineEdit* path_ = nullptr;
  QLineEdit* port_ = nullptr;
  QCheckBox* passive_ = nullptr;
  QPushButton* ok_ = nullptr;
};

}  // namespace corvane
