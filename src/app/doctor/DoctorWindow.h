#pragma once

#include <QDialog>
#include <functional>
#include <memory>
#include <optional>

#include "remote/Diagnosis.h"
#include "workers/MThread.h"

class QLabel;
class QPushButton;

namespace corvane {

class DoctorLink;
class StepList;
class Strip;

/// "What Is Wrong?": looks at a connection step by step, says what was seen, and offers what helps.
/// Deletes itself when closed. GUI thread.
class DoctorWindow : public QDialog {
  Q_OBJECT

 public:
  /// What the window needs of the program around it.
  struct Host {
    /// What looks; not started. Null where nothing can.
    std::function<std::shared_ptr<MThread>(const Site& site, std::shared_ptr<DiagnosisUi> window)>
        doctor;
    std::function<void(const Site& site)> connect;
    /// Has the user change the site by hand.
    std::function<void(const Site& site)> edit;
  };

  /// Begins at once; the caller shows the window. `site` has its passwords.
  DoctorWindow(QWidget* opener, Site site, Host host);
  ~DoctorWindow() override;

  /// From the link.
  void ShowStep(const DiagnosisStep& step);
  void ShowAdvice(const Advice& advice);

  /// What was seen, as plain text without secrets.
  [[nodiscard]] QString Report() const;

 private:
  void Arrange();
  void ChooseSize();
  void Begin();
  void Stop();
  void ShowCount();
  void CopyReport();
  void TakeAdvice();

  const Site site_;
  const Host host_;
  QLabel* heading_;
  QLabel* count_;
  StepList* steps_;
  Strip* strip_;
  QPushButton* copy_;
  QPushButton* again_;
  QPushButton* close_;
  QPushButton* fix_;
  std::shared_ptr<DoctorLink> link_;
  std::shared_ptr<MThread> doctor_;
  std::optional<Advice> advice_;
};

}  // namespace corvane
