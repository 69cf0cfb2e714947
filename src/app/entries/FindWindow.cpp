#include "app/entries/FindWindow.h"

#include <QAction>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>
#include <QTreeView>
#include <algorithm>
#include <utility>

#include "app/entries/FindForm.h"
#include "app/entries/FindModel.h"
#include "app/entries/WalkLink.h"
#include "app/shared/Alerts.h"
#include "app/shared/ElidedLabel.h"
#include "app/shared/EmptyState.h"
#include "app/shared/Figures.h"
#include "app/shared/LookStyle.h"
#include "app/shared/Rule.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Shown.h"
#include "app/shared/StatusLine.h"
#include "app/shared/Windows.h"
#include "remote/RemotePath.h"

namespace corvane {
namespace {

constexpr int kBeat = 100;  // milliseconds between looks at what goes on
constexpr QSize kSize(720, 560);
constexpr int kSizeWidth = 88;
constexpr int kDateWidth = 144;

}  // namespace

/// The list of what was found.
class FindWindow::Results : public QTreeView {
 public:
  using QTreeView::QTreeView;

  /// What stands there while nothing is found; without a symbol nothing does.
  void ShowEmpty(EmptyState state) {
    empty_ = std::move(state);
    viewport()->update();
  }

 protected:
  void paintEvent(QPaintEvent* event) override {
    QTreeView::paintEvent(event);
    if (empty_.symbol == nullptr || model()->rowCount() > 0) return;
    QPainter painter(viewport());
    empty_.Paint(painter, viewport()->rect(), palette());
  }
  void resizeEvent(QResizeEvent* event) override {
    QTreeView::resizeEvent(event);
    const int rest = viewport()->width() - kSizeWidth - kDateWidth;
    header()->resizeSection(FindModel::kSize, kSizeWidth);
    header()->resizeSection(FindModel::kDate, kDateWidth);
    header()->resizeSection(FindModel::kName, rest / 2);
    header()->resizeSection(FindModel::kPath, rest - rest / 2);
  }

 private:
  EmptyState empty_{};
};

FindWindow::FindWindow(EntriesHost& host, std::string directory, QWidget* browser)
    : QWidget(browser, Qt::Window),
      host_(host),
      directory_(std::move(directory)),
      form_(new FindForm(this)),
      find_(new QPushButton(tr("&Find"), this)),
      model_(new FindModel(host_, this)),
      results_(new Results(this)),
      status_(new StatusLine(this)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setObjectName("FindWindow");
  setWindowTitle(host_.TitleOf(tr("Find")));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->setSpacing(0);
  layout->addLayout(MakeHead());
  layout->addWidget(new Rule(Qt::Horizontal, this));
  MakeResults();
  layout->addWidget(results_, 1);
  layout->addWidget(new Rule(Qt::Horizontal, this));
  MakeActions();
  layout->addLayout(MakeButtons());
  layout->addWidget(new Rule(Qt::Horizontal, this));
  layout->addWidget(status_);
  resize(kSize);
  AddCloseKeys(this);
  beat_.setInterval(kBeat);
  connect(&beat_, &QTimer::timeout, this, &FindWindow::ShowProgress);
  connect(form_, &FindForm::ReturnPressed, this, &FindWindow::Begin);
  connect(find_, &QPushButton::clicked, this, &FindWindow::FindPressed);
  connect(status_, &StatusLine::SignPressed, this, &FindWindow::ShowRefusals);
  host_.WhenGone(this, [this](const std::string& above, const std::string& name) {
    Gone(PathBelow(above, name));
  });
  SelectionChanged();
}

FindWindow::~FindWindow() {
  if (link_) link_->Close();
  if (finder_) finder_->Cancel();
}

QLayout* FindWindow::MakeHead() {
  auto* where = new ElidedLabel(this, Qt::ElideMiddle);
  where->setObjectName("Where");
  where->SetSecondary(true);
  where->setText(
      tr("Below %1 on %2", "/htdocs, host")
          .arg(ToText(directory_, host_.Server().encoding), ToText(host_.Server().host)));
  find_->setObjectName("find");
  find_->setAutoDefault(true);
  SetPrimary(*find_);
  auto* line = new QHBoxLayout;
  line->addWidget(where, 1);
  line->addWidget(find_);
  auto* head = new QVBoxLayout;
  head->setContentsMargins(16, 16, 16, 16);
  head->setSpacing(8);
  head->addWidget(form_);
  head->addLayout(line);
  return head;
}

void FindWindow::MakeResults() {
  results_->setObjectName("Results");
  results_->setAccessibleName(tr("What was found"));
  results_->setModel(model_);
  results_->setFrameShape(QFrame::NoFrame);
  results_->setRootIsDecorated(false);
  results_->setItemsExpandable(false);
  results_->setUniformRowHeights(true);
  results_->setIndentation(0);
  results_->setAllColumnsShowFocus(true);
  results_->setTextElideMode(Qt::ElideMiddle);
  results_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  results_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  results_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  results_->setContextMenuPolicy(Qt::ActionsContextMenu);
  results_->header()->setStretchLastSection(false);
  results_->header()->setFixedHeight(LookStyle::kRowHeight);
  results_->header()->setSectionsClickable(true);
  results_->header()->setSortIndicatorShown(false);
  connect(results_->header(), &QHeaderView::sectionClicked, this, [this](int column) {
    QHeaderView& header = *results_->header();
    const bool down = header.isSortIndicatorShown() && header.sortIndicatorSection() == column &&
                      header.sortIndicatorOrder() == Qt::AscendingOrder;
    const Qt::SortOrder order = down ? Qt::DescendingOrder : Qt::AscendingOrder;
    header.setSortIndicatorShown(true);
    header.setSortIndicator(column, order);
    model_->sort(column, order);
  });
  connect(results_, &QTreeView::activated, this, &FindWindow::ShowSelected);
  connect(results_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          &FindWindow::SelectionChanged);
  connect(model_, &QAbstractItemModel::modelReset, this, &FindWindow::SelectionChanged);
}

QAction* FindWindow::AddCommand(const QString& text, const char* name, const QKeySequence& key,
                                const std::function<void()>& run) {
  auto* action = new QAction(text, this);
  action->setObjectName(name);
  action->setShortcut(key);
  action->setShortcutContext(Qt::WidgetShortcut);
  connect(action, &QAction::triggered, this, run);
  results_->addAction(action);
  commands_.push_back(action);
  return action;
}

void FindWindow::MakeActions() {
  AddCommand(tr("Show in &Directory"), "ShowInDirectory", {}, [this] { ShowSelected(); });
  AddCommand(tr("Down&load"), "DownloadFound", QKeySequence(Qt::CTRL | Qt::Key_D),
             [this] { host_.Download(Selected()); });
  AddCommand(tr("Cop&y Address"), "CopyFound", QKeySequence(QKeySequence::Copy),
             [this] { host_.CopyAddresses(Selected()); });
  AddCommand(tr("Dele&te…"), "DeleteFound", QKeySequence(QKeySequence::Delete),
             [this] { host_.Delete(this, Selected()); });
}

QLayout* FindWindow::MakeButtons() {
  auto* line = new QHBoxLayout;
  line->setContentsMargins(16, 8, 16, 8);
  line->setSpacing(8);
  for (QAction* command : commands_) {
    auto* button = new QPushButton(command->text(), this);
    button->setAutoDefault(true);
    button->setEnabled(command->isEnabled());
    connect(button, &QPushButton::clicked, command, &QAction::trigger);
    connect(command, &QAction::changed, button, [button, command] {
      button->setEnabled(command->isEnabled());
      SetTip(*button, command->isEnabled() ? QString() : tr("Select something found first."));
    });
    line->addWidget(button);
  }
  line->addStretch();
  return line;
}

std::vector<FoundEntry> FindWindow::Selected() const {
  std::vector<FoundEntry> selected;
  for (const QModelIndex& index : results_->selectionModel()->selectedRows())
    selected.push_back(model_->At(index.row()));
  return selected;
}

void FindWindow::SelectionChanged() {
  const bool any = results_->selectionModel()->hasSelection();
  for (QAction* command : commands_) command->setEnabled(any);
}

void FindWindow::ShowSelected() {
  const std::vector<FoundEntry> selected = Selected();
  if (!selected.empty()) host_.Show(selected.front().directory, selected.front().entry.name);
}

void FindWindow::FindPressed() {
  if (finder_) return finder_->Cancel();
  Begin();
}

void FindWindow::Begin() {
  if (finder_) return;
  model_->Clear();
  gone_.clear();
  end_ = {};
  status_->SetSign("triangle", {}, Tone::Caution);
  results_->ShowEmpty({});
  results_->header()->setSortIndicatorShown(false);
  link_ = std::make_shared<WalkLink>(WalkLink::Calls{
      .found = [this](std::vector<FoundEntry> found) { model_->Append(std::move(found)); },
      .ended = [this](const WalkEnd& end) { Ended(end); }});
  finder_ = host_.Walk(FindOrder{directory_, form_->Rule(host_.Server().encoding)}, link_);
  if (!finder_) {
    WalkEnd none;
    none.outcome = {Outcome::Kind::Lost, 0, Text("There is no connection.")};
    return Ended(none);
  }
  find_->setText(tr("&Stop"));
  form_->setEnabled(false);
  status_->SetBusy(true);
  ShowProgress();
  beat_.start();
}

void FindWindow::ShowProgress() {
  const auto number = [](std::int64_t count) { return FiguresLocale().toString(qlonglong{count}); };
  const QString text = tr("%1 directories looked at, %2 found")
                           .arg(number(link_->progress.directories), number(link_->progress.found));
  status_->SetText(text);
}

void FindWindow::Ended(const WalkEnd& end) {
  end_ = end;
  finder_.reset();
  beat_.stop();
  ShowProgress();
  status_->SetBusy(false);
  find_->setText(tr("&Find"));
  form_->setEnabled(true);
  QStringList parts{status_->Text()};
  const bool stopped = end.outcome.kind == Outcome::Kind::Cancelled;
  if (stopped) parts += tr("Stopped");
  if (!stopped && !end.outcome.IsDone()) parts += ShownInLine(end.outcome.text);
  if (!end.bound.IsEmpty()) parts += ShownInLine(end.bound);
  status_->SetText(parts.join(QStringLiteral(". ")));
  const auto refused = static_cast<int>(end.refused);
  if (refused > 0) {
    status_->SetSign("triangle",
                     refused == 1 ? tr("1 directory not looked at")
                                  : tr("%n directories not looked at", "", refused),
                     Tone::Caution);
  }
  results_->ShowEmpty({"search", tr("Nothing found"), tr("Change what is looked for.")});
}

void FindWindow::ShowRefusals() {
  if (end_.refused == 0) return;
  const QString heading = tr("Not everything could be looked at");
  Alerts::Show(this, {.title = heading, .text = heading, .detail = Shown(end_.refusals)});
}

// Many may go at once.
void FindWindow::Gone(const std::string& path) {
  if (gone_.empty()) QTimer::singleShot(0, this, &FindWindow::RemoveGone);
  gone_.insert(path);
}

void FindWindow::RemoveGone() {
  model_->Remove(std::exchange(gone_, {}));
}

}  // namespace corvane
