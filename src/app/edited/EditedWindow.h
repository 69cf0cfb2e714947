#pragma once

#include <QMainWindow>
#include <cstdint>
#include <string>
#include <vector>

#include "app/edited/EditedFiles.h"
#include "app/edited/EditedQuestions.h"

class QAction;
class QSortFilterProxyModel;
class QTreeView;

namespace corvane {

class EditedModel;
class IconButton;
class StatusLine;
struct EditedHost;

/// The window of the edited files: a row for each with how it stands. Closing only hides it; the
/// files are watched all the same. GUI thread.
class EditedWindow : public QMainWindow {
  Q_OBJECT

 public:
  /// The copies stand below `folder`, raw bytes; `host` outlives it.
  EditedWindow(EditedHost& host, const std::string& folder);
  ~EditedWindow() override;

  [[nodiscard]] EditedFiles& Files() { return *files_; }
  [[nodiscard]] const EditedFiles& Files() const { return *files_; }
  /// Fetches files and opens them; many files or bytes are asked about first, over this window.
  void Open(std::vector<EditRequest> requests);
  [[nodiscard]] QSize sizeHint() const override { return {640, 328}; }

 private:
  void MakeViews();
  void MakeActions();
  void ShowBeside();
  void ShowState();
  void NeedsUser(std::int64_t id);
  void Activated(std::int64_t id);
  void SendSelected();
  void OpenSelected();
  void StopSelected();
  [[nodiscard]] std::vector<std::int64_t> Selected() const;

  EditedFiles* files_;
  EditedQuestions questions_;
  EditedModel* model_;
  QSortFilterProxyModel* sorted_;
  QTreeView* list_;
  StatusLine* status_;
  QAction* send_ = nullptr;
  QAction* open_ = nullptr;
  QAction* stop_ = nullptr;
  bool shown_ = false;
};

}  // namespace corvane
