#pragma once

#include <QTimer>
#include <QWidget>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "app/shared/EntriesHost.h"

class QAction;
class QPushButton;
class QTreeView;

namespace corvane {

class FindForm;
class FindModel;
class StatusLine;
class WalkLink;

/// Finds entries below a directory, and does something with what was found. Deletes itself when
/// closed; a search that runs ends then. GUI thread.
class FindWindow : public QWidget {
  Q_OBJECT

 public:
  /// Goes with `browser`, as `host` does.
  FindWindow(EntriesHost& host, std::string directory, QWidget* browser);
  ~FindWindow() override;

 private:
  class Results;

  void MakeResults();
  void MakeActions();
  [[nodiscard]] QLayout* MakeHead();
  [[nodiscard]] QLayout* MakeButtons();
  QAction* AddCommand(const QString& text, const char* name, const QKeySequence& key,
                      const std::function<void()>& run);
  [[nodiscard]] std::vector<FoundEntry> Selected() const;
  void FindPressed();
  void Begin();
  void ShowProgress();
  void Ended(const WalkEnd& end);
  void ShowRefusals();
  void ShowSelected();
  void SelectionChanged();
  void Gone(const std::string& path);
  void RemoveGone();

  EntriesHost& host_;
  const std::string directory_;
  FindForm* form_;
  QPushButton* find_;
  FindModel* model_;
  Results* results_;
  StatusLine* status_;
  std::vector<QAction*> commands_;
  QTimer beat_;
  std::set<std::string> gone_;
  std::shared_ptr<MThread> finder_;  // while it runs
  std::shared_ptr<WalkLink> link_;
  WalkEnd end_;
};

}  // namespace corvane
