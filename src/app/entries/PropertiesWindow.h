#pragma once

#include <QTimer>
#include <QWidget>
#include <memory>
#include <string>
#include <vector>

#include "app/shared/EntriesHost.h"

class QCheckBox;
class QComboBox;
class QPushButton;

namespace corvane {

class EntryFacts;
class HintLabel;
class RightsBoxes;
class WalkLink;
class WrappedLabel;

/// Shows what entries of a directory are, and changes their permissions and times. Deletes itself
/// when closed; what runs then ends. GUI thread.
class PropertiesWindow : public QWidget {
  Q_OBJECT

 public:
  /// Goes with `browser`, as `host` does.
  PropertiesWindow(EntriesHost& host, std::string directory, std::vector<RemoteEntry> entries,
                   QWidget* browser);
  ~PropertiesWindow() override;

 private:
  void MakeRights();
  [[nodiscard]] QLayout* MakeBelow();
  [[nodiscard]] QLayout* MakeButtons();
  /// Why nothing can be changed; empty where something can.
  [[nodiscard]] QString WhyFixed() const;
  [[nodiscard]] RightsOrder Order() const;
  void BelowChosen();
  /// Enables what can be done now.
  void Update();
  void Change();
  void ShowProgress();
  void Changed(const WalkEnd& end);
  void Count();
  void Counted(const WalkEnd& end);
  void CancelPressed();

  EntriesHost& host_;
  const std::string directory_;
  const std::vector<RemoteEntry> entries_;
  EntryFacts* facts_;
  QWidget* rights_;
  RightsBoxes* boxes_;
  QCheckBox* inside_;
  QComboBox* below_;
  HintLabel* hint_;
  WrappedLabel* told_;
  QPushButton* cancel_;
  QPushButton* change_;
  QTimer beat_;
  std::shared_ptr<MThread> changer_;  // while it runs
  std::shared_ptr<WalkLink> changing_;
  std::shared_ptr<MThread> counter_;  // likewise
  std::shared_ptr<WalkLink> counting_;
};

}  // namespace corvane
