#pragma once

#include <QPointer>
#include <QWidget>
#include <vector>

#include "kit/Message.h"
#include "settings/ProcessSettings.h"

class QCheckBox;
class QComboBox;
class QFileDialog;
class QFormLayout;
class QLineEdit;

namespace corvane {

/// Every setting, on three tabs. Nothing is in force or stored until "Save". Deletes itself when
/// closed. GUI thread.
class PrefWindow : public QWidget {
  Q_OBJECT

 public:
  PrefWindow();

  void MessageReceived(const Message& message);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QWidget* MakeMisc();
  QWidget* MakeSound();
  QWidget* MakeProxy();
  QWidget* MakeButtons();
  QLineEdit* AddField(QFormLayout* form, const char* name, const QString& label,
                      const std::string& text);
  QCheckBox* AddBox(QFormLayout* form, const char* name, const QString& label, bool checked);
  void AddButton(QFormLayout* form, const char* name, const QString& label, std::uint32_t what);

  void SelectFolder();
  void SelectSound();
  /// Shows a new panel, or the one that is open.
  QFileDialog* OpenPanel(const QString& title);
  void PutSound(const QString& path);
  void ProxyToggled();
  [[nodiscard]] SettingsValues Entered() const;
  /// What is wrong with the proxy that is to be used; empty when nothing is.
  [[nodiscard]] QString ProxyFault() const;
  void Save();

  const SettingsValues shown_;  // what the fields were filled with
  QLineEdit* password_ = nullptr;
  QLineEdit* folder_ = nullptr;
  QCheckBox* showTransfers_ = nullptr;
  QCheckBox* removeItem_ = nullptr;
  QCheckBox* sameConnection_ = nullptr;
  QComboBox* bufferSize_ = nullptr;
  QLineEdit* loginSuccess_ = nullptr;
  QLineEdit* loginFailure_ = nullptr;
  QLineEdit* upload_ = nullptr;
  QLineEdit* download_ = nullptr;
  QCheckBox* useProxy_ = nullptr;
  QLineEdit* proxyHost_ = nullptr;
  QLineEdit* proxyPort_ = nullptr;
  QPointer<QFileDialog> panel_;
};

}  // namespace corvane
