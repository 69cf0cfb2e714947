#include "app/edited/EditedWindow.h"

#include <QAction>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPainter>
#include <QSortFilterProxyModel>
#include <QTreeView>
#include <QVBoxLayout>
#include <algorithm>

#include "app/edited/EditedDelegate.h"
#include "app/edited/EditedHost.h"
#include "app/edited/EditedModel.h"
#include "app/edited/EditedTexts.h"
#include "app/shared/EmptyState.h"
#include "app/shared/IconButton.h"
#include "app/shared/LookStyle.h"
#include "app/shared/Rule.h"
#include "app/shared/SmallView.h"
#include "app/shared/StatusLine.h"
#include "app/shared/Windows.h"
#include "settings/ProcessSettings.h"

namespace corvane {
namespace {

/// A list that says what it is for while it is empty.
class List : public QTreeView {
 public:
  using QTreeView::QTreeView;

 protected:
  void paintEvent(QPaintEvent* event) override {
    QTreeView::paintEvent(event);
    if (model()->rowCount() > 0) return;
    QPainter painter(viewport());
    EmptyState{"pencil", EditedWindow::tr("No edited files"),
               EditedWindow::tr("Open and Edit in a browser window fetch a file, and send it back "
                                "when it is saved.")}
        .Paint(painter, viewport()->rect(), palette());
  }
};

bool Needs(const EditedFile& file) {
  return file.state == EditedFile::State::Conflict || file.state == EditedFile::State::Failed ||
         file.state == EditedFile::State::Changed;
}

}  // namespace

EditedWindow::EditedWindow(EditedHost& host, const std::string& folder)
    : files_(new EditedFiles(host, folder, this)),
      questions_(*files_, host, *this),
      model_(new EditedModel(*files_)),
      sorted_(new QSortFilterProxyModel(this)),
      list_(new List(this)),
      status_(new StatusLine(this)) {
  resize(sizeHint());
  MakeActions();
  MakeViews();
  AddCloseKey(this);
  connect(files_, &EditedFiles::Added, this, &EditedWindow::ShowState);
  connect(files_, &EditedFiles::Removed, this, &EditedWindow::ShowState);
  connect(files_, &EditedFiles::Changed, this, &EditedWindow::ShowState);
  connect(files_, &EditedFiles::NeedsUser, this, &EditedWindow::NeedsUser);
  connect(files_, &EditedFiles::Restored, this, [this] {
    ShowBeside();
    list_->selectAll();
  });
  ShowState();
}

EditedWindow::~EditedWindow() {
  // Rows that go one after the other need not be shown.
  disconnect(files_, nullptr, this, nullptr);
}

void EditedWindow::MakeActions() {
  const auto make = [this](const QString& text, const QKeySequence& keys, auto does) {
    auto* action = new QAction(text, this);
    action->setShortcut(keys);
    connect(action, &QAction::triggered, this, does);
    list_->addAction(action);
    return action;
  };
  send_ = make(tr("&Send Now"), QKeySequence("Ctrl+S"), &EditedWindow::SendSelected);
  open_ = make(tr("&Open Again"), QKeySequence("Ctrl+O"), &EditedWindow::OpenSelected);
  stop_ = make(tr("Sto&p Editing"), QKeySequence("Delete"), &EditedWindow::StopSelected);
  list_->setContextMenuPolicy(Qt::ActionsContextMenu);
}

void EditedWindow::MakeViews() {
  const auto button = [](QWidget* bar, const char* symbol, const char* name, QAction* action) {
    auto* made = new IconButton(symbol, action->text().remove('&'), bar);
    made->setObjectName(name);
    made->Follow(action);
    made->ShowText(action->text().remove('&'));
    return made;
  };
  auto* bar = new QWidget(this);
  auto* row = new QHBoxLayout(bar);
  row->setContentsMargins(8, 4, 8, 4);
  row->addWidget(button(bar, "upload", "sendNow", send_));
  row->addWidget(button(bar, "file", "openAgain", open_));
  row->addStretch();
  row->addWidget(button(bar, "close", "stopEditing", stop_));
  sorted_->setSourceModel(model_);
  sorted_->setSortLocaleAware(true);
  sorted_->setSortCaseSensitivity(Qt::CaseInsensitive);
  list_->setObjectName("EditedList");
  list_->setAccessibleName(tr("Edited files"));
  list_->setModel(sorted_);
  list_->setItemDelegate(new EditedDelegate(list_));
  list_->setFrameShape(QFrame::NoFrame);
  list_->setRootIsDecorated(false);
  list_->setUniformRowHeights(true);
  list_->setAllColumnsShowFocus(true);
  list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  list_->setSortingEnabled(true);
  list_->sortByColumn(EditedModel::kName, Qt::AscendingOrder);
  list_->header()->setStretchLastSection(true);
  list_->header()->resizeSection(EditedModel::kName, 228);
  list_->header()->resizeSection(EditedModel::kPath, 160);
  auto* views = new QWidget(this);
  auto* column = new QVBoxLayout(views);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(bar);
  column->addWidget(new Rule(Qt::Horizontal, views));
  column->addWidget(list_, 1);
  column->addWidget(status_);
  setCentralWidget(views);
  status_->Figure().SetSecondary(true);
  list_->setFocus();
  connect(list_, &QTreeView::activated, this, [this](const QModelIndex& index) {
    Activated(index.data(EditedModel::kId).toLongLong());
  });
  connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          &EditedWindow::ShowState);
}

// The desktop gives the keyboard to the program that opens the file.
void EditedWindow::ShowBeside() {
  if (isVisible()) return;
  setAttribute(Qt::WA_ShowWithoutActivating);
  show();
  setAttribute(Qt::WA_ShowWithoutActivating, false);
}

void EditedWindow::Open(std::vector<EditRequest> requests) {
  EditedQuestions::Amount amount{.files = static_cast<int>(requests.size())};
  for (const EditRequest& request : requests) {
    amount.bytes += std::max<std::int64_t>(request.size, 0);
    amount.unknown += request.size < 0 ? 1 : 0;
  }
  const bool first = !std::exchange(shown_, true);
  if (first && ProcessSettings::Get().showwindow) ShowBeside();
  const auto go = [this, requests = std::move(requests)] {
    for (const EditRequest& request : requests) files_->Open(request);
  };
  questions_.AskOfSize(amount, go);
}

void EditedWindow::NeedsUser(std::int64_t id) {
  ShowBeside();
  list_->setCurrentIndex(sorted_->mapFromSource(model_->index(files_->RowOf(id), 0)));
  const EditedFile* file = files_->Find(id);
  if (file != nullptr && file->state == EditedFile::State::Conflict) questions_.AskOfConflict(id);
}

void EditedWindow::Activated(std::int64_t id) {
  const EditedFile* file = files_->Find(id);
  if (file == nullptr) return;
  if (file->state == EditedFile::State::Conflict) return questions_.AskOfConflict(id);
  files_->OpenAgain(id);
}

std::vector<std::int64_t> EditedWindow::Selected() const {
  std::vector<std::int64_t> ids;
  for (const QModelIndex& index : list_->selectionModel()->selectedRows())
    ids.push_back(index.data(EditedModel::kId).toLongLong());
  return ids;
}

void EditedWindow::SendSelected() {
  for (const std::int64_t id : Selected()) files_->SendNow(id);
}

void EditedWindow::OpenSelected() {
  for (const std::int64_t id : Selected()) files_->OpenAgain(id);
}

void EditedWindow::StopSelected() {
  questions_.Stop(Selected());
}

void EditedWindow::ShowState() {
  const std::vector<std::int64_t> selected = Selected();
  const bool unsent = std::ranges::any_of(selected, [this](std::int64_t id) {
    const EditedFile* file = files_->Find(id);
    return file != nullptr && file->IsUnsent();
  });
  const auto set = [](QAction& action, bool enabled, const QString& why) {
    action.setEnabled(enabled);
    action.setStatusTip(enabled ? QString() : why);
  };
  const QString none = tr("No file is selected");
  set(*send_, unsent, selected.empty() ? none : tr("Everything that was saved is sent"));
  set(*open_, !selected.empty(), none);
  set(*stop_, !selected.empty(), none);
  int needs = 0;
  for (int row = 0; row < files_->Count(); ++row) needs += Needs(files_->At(row)) ? 1 : 0;
  const int count = files_->Count();
  status_->SetText(count == 0   ? tr("No edited files")
                   : count == 1 ? tr("1 file; a saved file is sent by itself")
                                : tr("%n files; a saved file is sent by itself", "", count));
  status_->Figure().SetText(needs == 0   ? QString()
                            : needs == 1 ? tr("1 needs you")
                                         : tr("%n need you", "", needs));
  setWindowTitle(EditedTexts::TitleFor(tr("Edited Files"), model_->CommonSite()));
  list_->viewport()->update();
}

}  // namespace corvane
