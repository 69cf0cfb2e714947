#include "app/entries/PropertiesWindow.h"

#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <algorithm>
#include <utility>

#include "app/entries/EntryFacts.h"
#include "app/entries/RightsBoxes.h"
#include "app/entries/WalkLink.h"
#include "app/shared/HintLabel.h"
#include "app/shared/LookStyle.h"
#include "app/shared/Rule.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Shown.h"
#include "app/shared/Tones.h"
#include "app/shared/Windows.h"
#include "app/shared/WrappedLabel.h"
#include "remote/Permissions.h"

namespace corvane {
namespace {

using Kind = RemoteEntry::Kind;
using Below = RightsOrder::Below;

constexpr int kWidth = 384;
constexpr int kTipRole = Qt::UserRole + 1;
constexpr int kBeat = 100;  // milliseconds between looks at what goes on

bool IsLink(const RemoteEntry& entry) {
  return entry.kind == Kind::Link;
}

bool IsDirectory(const RemoteEntry& entry) {
  return entry.kind == Kind::Directory;
}

bool HasLineBreak(const RemoteEntry& entry) {
  return entry.name.find_first_of(std::string_view("\r\n\0", 3)) != std::string::npos;
}

}  // namespace

PropertiesWindow::PropertiesWindow(EntriesHost& host, std::string directory,
                                   std::vector<RemoteEntry> entries, QWidget* browser)
    : QWidget(browser, kFixedWindow),
      host_(host),
      directory_(std::move(directory)),
      entries_(std::move(entries)),
      facts_(new EntryFacts(host_, directory_, entries_, this)),
      rights_(new QWidget(this)),
      boxes_(new RightsBoxes(rights_)),
      inside_(new QCheckBox(tr("Also everything &inside"), rights_)),
      below_(new QComboBox(rights_)),
      hint_(new HintLabel({}, this)),
      told_(new WrappedLabel({}, this)),
      cancel_(new QPushButton(tr("&Cancel"), this)),
      change_(new QPushButton(tr("C&hange"), this)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setObjectName("Properties");
  const QString name = entries_.size() == 1
                           ? host_.TextsOf(entries_.front()).name
                           : tr("%n entries", "", static_cast<int>(entries_.size()));
  setWindowTitle(tr("Properties – %1").arg(name));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(16, 16, 16, 16);
  layout->setSpacing(16);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  facts_->setFixedWidth(kWidth);
  layout->addWidget(facts_);
  layout->addWidget(new Rule(Qt::Horizontal, this));
  MakeRights();
  layout->addWidget(rights_);
  layout->addWidget(hint_);
  layout->addWidget(told_);
  layout->addLayout(MakeButtons());
  AddCloseKeys(this);
  beat_.setInterval(kBeat);
  connect(&beat_, &QTimer::timeout, this, &PropertiesWindow::ShowProgress);
  connect(facts_, &EntryFacts::TimeChanged, this, &PropertiesWindow::Update);
  connect(facts_, &EntryFacts::CountPressed, this, &PropertiesWindow::Count);
  connect(boxes_, &RightsBoxes::Changed, this, &PropertiesWindow::Update);
  Update();
}

PropertiesWindow::~PropertiesWindow() {
  for (const auto& link : {changing_, counting_})
    if (link) link->Close();
  for (const auto& worker : {changer_, counter_})
    if (worker) worker->Cancel();
}

void PropertiesWindow::MakeRights() {
  auto* layout = new QVBoxLayout(rights_);
  layout->setContentsMargins({});
  layout->setSpacing(12);
  auto* heading = new QLabel(tr("Permissions"), rights_);
  heading->setFont(Bold(font()));
  layout->addWidget(heading);
  layout->addWidget(boxes_);
  layout->addLayout(MakeBelow());
  std::vector<std::optional<unsigned>> now;
  for (const RemoteEntry& entry : entries_)
    if (!IsLink(entry)) now.push_back(Permissions::Bits(entry.mode));
  boxes_->Show(now);
  boxes_->SetEnters(std::ranges::all_of(entries_, IsDirectory));
  QString hint = WhyFixed();
  rights_->setEnabled(hint.isEmpty());
  if (hint.isEmpty() && std::ranges::any_of(entries_, IsLink))
    hint = tr("Links among them are left alone.");
  hint_->setText(hint);
  hint_->setObjectName("Hint");
  hint_->setVisible(!hint.isEmpty());
  told_->setObjectName("Told");
  told_->hide();
}

QLayout* PropertiesWindow::MakeBelow() {
  inside_->setObjectName("Inside");
  below_->setObjectName("Below");
  below_->setAccessibleName(tr("What is changed inside"));
  const auto add = [this](const QString& text, Below below, const QString& tip) {
    below_->addItem(text, static_cast<int>(below));
    below_->setItemData(below_->count() - 1, Harmless(tip), Qt::ToolTipRole);
    below_->setItemData(below_->count() - 1, tip, kTipRole);
  };
  add(tr("Files and directories"), Below::Everything,
      tr("Files get the right to execute only where they have it already."));
  add(tr("Files only"), Below::Files, tr("Directories keep their permissions."));
  add(tr("Directories only"), Below::Directories, tr("Files keep their permissions."));
  below_->setEnabled(false);
  auto* line = new QHBoxLayout;
  line->addWidget(inside_);
  line->addStretch();
  line->addWidget(below_);
  const bool any = std::ranges::any_of(entries_, IsDirectory);
  inside_->setVisible(any);
  below_->setVisible(any);
  connect(inside_, &QCheckBox::toggled, this, &PropertiesWindow::BelowChosen);
  connect(below_, &QComboBox::currentIndexChanged, this, &PropertiesWindow::BelowChosen);
  return line;
}

QLayout* PropertiesWindow::MakeButtons() {
  cancel_->setObjectName("cancel");
  cancel_->setAutoDefault(true);
  change_->setObjectName("change");
  change_->setAutoDefault(true);
  SetPrimary(*change_);
  auto* line = new QHBoxLayout;
  line->addStretch();
  line->addWidget(cancel_);
  line->addWidget(change_);
  connect(cancel_, &QPushButton::clicked, this, &PropertiesWindow::CancelPressed);
  connect(change_, &QPushButton::clicked, this, &PropertiesWindow::Change);
  return line;
}

QString PropertiesWindow::WhyFixed() const {
  if (std::ranges::all_of(entries_, IsLink))
    return tr("A link has no permissions of its own: a change would be made to what it leads to.");
  if (std::ranges::all_of(entries_, HasLineBreak))
    return tr("A name with a line break cannot be sent to the server: nothing can be changed.");
  return {};
}

// Executing is for directories what entering them is; files keep what they have of it.
void PropertiesWindow::BelowChosen() {
  const Below below = Order().below;
  const bool files = below == Below::Files;
  below_->setEnabled(inside_->isChecked());
  SetTip(*below_, below_->currentData(kTipRole).toString());
  boxes_->SetEnters(!files && std::ranges::all_of(entries_, IsDirectory));
  if (files) boxes_->LeaveExecute();
  Update();
}

RightsOrder PropertiesWindow::Order() const {
  RightsOrder order{.directory = directory_, .entries = entries_, .time = facts_->Time()};
  const bool inside = inside_->isChecked() && rights_->isEnabled();
  if (inside) order.below = static_cast<Below>(below_->currentData().toInt());
  if (inside || boxes_->IsChanged()) order.rights = boxes_->Wanted();
  return order;
}

void PropertiesWindow::Update() {
  const RightsOrder order = Order();
  const bool valid = boxes_->IsValid();
  const bool any = order.rights.has_value() || order.time.has_value();
  const bool runs = changer_ != nullptr;
  change_->setEnabled(!runs && valid && any);
  SetTip(*change_, runs     ? tr("A change is under way.")
                   : !valid ? tr("The number has three or four digits from 0 to 7.")
                   : !any   ? tr("Nothing is changed yet.")
                            : QString());
  rights_->setEnabled(!runs && WhyFixed().isEmpty());
  cancel_->setText(runs ? tr("S&top") : told_->isHidden() ? tr("&Cancel") : tr("C&lose"));
}

void PropertiesWindow::Change() {
  changing_ = std::make_shared<WalkLink>(
      WalkLink::Calls{.ended = [this](const WalkEnd& end) { Changed(end); }});
  changer_ = host_.Walk(Order(), changing_);
  if (!changer_) {
    WalkEnd none;
    none.outcome = {Outcome::Kind::Lost, 0, Text("There is no connection.")};
    return Changed(none);
  }
  Update();
  ShowProgress();
  beat_.start();
}

void PropertiesWindow::ShowProgress() {
  if (counter_) facts_->ShowCounted(counting_->progress, false);
  if (!changer_) return;
  const WalkProgress& now = changing_->progress;
  told_->setText(tr("%1 changed, %2 directories looked at.")
                     .arg(now.changed.load())
                     .arg(now.directories.load()));
  told_->WrapAt(kWidth);
  told_->show();
}

void PropertiesWindow::Changed(const WalkEnd& end) {
  changer_.reset();
  if (!counter_) beat_.stop();
  Update();
  host_.LookAt(directory_, entries_);
  const bool stopped = end.outcome.kind == Outcome::Kind::Cancelled;
  QStringList lines;
  if (stopped) lines += tr("Stopped: what was changed before stays so.");
  if (!stopped && !end.outcome.IsDone()) lines += Shown(end.outcome.text);
  if (!end.bound.IsEmpty()) lines += Shown(end.bound);
  if (end.refused > 0) lines += tr("Not changed:") + '\n' + Shown(end.refusals);
  if (lines.isEmpty()) {
    close();
    return;
  }
  told_->setText(lines.join(QStringLiteral("\n\n")));
  told_->WrapAt(kWidth);
  told_->show();
  Update();
  QAccessibleEvent event(told_, QAccessible::Alert);
  QAccessible::updateAccessibility(&event);
}

void PropertiesWindow::Count() {
  if (counter_) return counter_->Cancel();
  CountOrder order{directory_, {}};
  for (const RemoteEntry& entry : entries_)
    if (IsDirectory(entry)) order.names.push_back(entry.name);
  counting_ = std::make_shared<WalkLink>(
      WalkLink::Calls{.ended = [this](const WalkEnd& end) { Counted(end); }});
  counter_ = host_.Walk(order, counting_);
  if (!counter_) return facts_->ShowCounted({}, true, tr("There is no connection."));
  ShowProgress();
  beat_.start();
}

void PropertiesWindow::Counted(const WalkEnd& end) {
  counter_.reset();
  if (!changer_) beat_.stop();
  QStringList notes;
  if (!end.outcome.IsDone()) notes += Shown(end.outcome.text);
  if (!end.bound.IsEmpty()) notes += Shown(end.bound);
  if (end.refused > 0) notes += tr("Not counted:") + '\n' + Shown(end.refusals);
  facts_->ShowCounted(counting_->progress, true, notes.join('\n'));
}

void PropertiesWindow::CancelPressed() {
  if (changer_) return changer_->Cancel();
  close();
}

}  // namespace corvane
