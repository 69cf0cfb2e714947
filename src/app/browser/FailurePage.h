#pragma once

#include <QWidget>
#include <cstdint>

#include "remote/Site.h"

class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace corvane {

class EncryptionField;
class Password;

/// What a browser window shows where no connection came about: what happened, the server's own
/// words, and the fields that are most likely to be mended. GUI thread.
class FailurePage : public QWidget {
  Q_OBJECT

 public:
  /// What is to be mended.
  enum class Mend : std::uint8_t { Nothing, Login, Host, Port, Encryption };

  struct Failure {
    QString heading;
    QString advice;
    QString server;  ///< its own words; empty where it said none
    Mend mend = Mend::Nothing;
  };

  explicit FailurePage(QWidget* parent);

  /// Fills the fields from `site`, and puts the cursor into the first to be mended.
  void Show(const Failure& failure, const Site& site);

 Q_SIGNALS:
  /// The user wants to connect to `site`, mended.
  void TryAgainPressed(const corvane::Site& site);
  void ClosePressed();
  /// The user wants to know what is wrong.
  void DiagnosePressed();

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void MakeFields();
  void Arrange();
  void ShowRows(Mend mend);
  void TryAgain();
  [[nodiscard]] QWidget* FirstField() const;

  Site site_;
  Mend mend_ = Mend::Nothing;
  QWidget* sign_;
  QLabel* heading_;
  QLabel* advice_;
  QLabel* server_;
  QFormLayout* form_;
  QLineEdit* host_;
  QLineEdit* port_;
  QLineEdit* user_;
  Password* password_;
  EncryptionField* encryption_;
  QLabel* problem_;
  QPushButton* diagnose_;
  QPushButton* again_;
  QPushButton* close_;
};

}  // namespace corvane
