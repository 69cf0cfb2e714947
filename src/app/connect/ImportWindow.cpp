#include "app/connect/ImportWindow.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <utility>

#include "app/connect/KnownConnections.h"
#include "app/shared/HintLabel.h"
#include "app/shared/LookStyle.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Shown.h"
#include "app/shared/Tones.h"
#include "app/shared/Windows.h"

namespace corvane {

ImportWindow::ImportWindow(ShortcutImport import, QWidget* list)
    : QDialog(list),
      import_(std::move(import)),
      rows_(new QTreeWidget(this)),
      count_(new QLabel(this)),
      ok_(new QPushButton(tr("&Import"), this)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setObjectName("ImportWindow");
  setWindowTitle(tr("Import Shortcuts"));
  MakeRows();
  MakeViews();
  ShowCount();
  AddCloseKey(this);
  resize(900, 440);
  rows_->setFocus();
}

void ImportWindow::MakeViews() {
  auto* heading = new QLabel(tr("From %1").arg(Shown(import_.source)), this);
  heading->setFont(Bold(font(), 110));
  heading->setTextFormat(Qt::PlainText);
  auto* hint = new HintLabel(tr("Nothing is stored before you save the list."), this);
  auto* all = new QPushButton(tr("Choose &All"), this);
  auto* none = new QPushButton(tr("Choose &None"), this);
  auto* cancel = new QPushButton(tr("&Cancel"), this);
  for (QPushButton* button : {all, none, cancel}) button->setAutoDefault(true);
  ok_->setObjectName("ok");
  SetPrimary(*ok_);
  count_->setObjectName("ChosenCount");
  auto* line = new QHBoxLayout;
  line->addWidget(all);
  line->addWidget(none);
  line->addWidget(count_, 1);
  line->addWidget(cancel);
  line->addWidget(ok_);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(16, 16, 16, 16);
  layout->setSpacing(8);
  layout->addWidget(heading);
  layout->addWidget(hint);
  layout->addWidget(rows_, 1);
  layout->addSpacing(8);
  layout->addLayout(line);
  setTabOrder(cancel, ok_);
  connect(all, &QPushButton::clicked, this, [this] { ChooseAll(true); });
  connect(none, &QPushButton::clicked, this, [this] { ChooseAll(false); });
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(ok_, &QPushButton::clicked, this, [this] {
    Q_EMIT Chosen();
    accept();
  });
  connect(rows_, &QTreeWidget::itemChanged, this, &ImportWindow::ShowCount);
}

void ImportWindow::MakeRows() {
  rows_->setObjectName("ImportList");
  rows_->setAccessibleName(tr("Connections in the file"));
  rows_->setHeaderLabels({tr("Label"), tr("Address"), tr("Folder"), tr("Remark")});
  rows_->setRootIsDecorated(false);
  rows_->setUniformRowHeights(true);
  rows_->setAllColumnsShowFocus(true);
  rows_->setTextElideMode(Qt::ElideRight);
  const QColor secondary = ToneOf(palette(), Tone::Secondary);
  QList<QTreeWidgetItem*> items;
  for (const ImportedShortcut& entry : import_.entries) {
    const Shortcut& shortcut = entry.shortcut;
    auto* item = new QTreeWidgetItem({ToText(NameOf(shortcut)), ToText(PlaceOf(shortcut.site)),
                                      ToText(shortcut.folder), RemarkOf(entry)});
    item->setSizeHint(kLabel, QSize(0, LookStyle::kRowHeight));
    item->setToolTip(kRemark, Harmless(item->text(kRemark)));
    if (entry.refusal.IsEmpty()) {
      item->setCheckState(kLabel, entry.known ? Qt::Unchecked : Qt::Checked);
    } else {
      for (int column = kLabel; column <= kRemark; ++column) {
        item->setForeground(column, secondary);
      }
    }
    items.append(item);
  }
  rows_->addTopLevelItems(items);
  rows_->setCurrentItem(rows_->topLevelItem(0));
  constexpr int kWidths[] = {170, 210, 110};
  for (int column = kLabel; column < kRemark; ++column)
    rows_->header()->resizeSection(column, kWidths[column]);
}

QString ImportWindow::RemarkOf(const ImportedShortcut& entry) {
  if (!entry.refusal.IsEmpty()) return tr("Cannot be taken: %1").arg(ShownInLine(entry.refusal));
  QStringList remarks;
  if (entry.known) remarks << tr("Is in the list already.");
  for (const Text& note : entry.notes) remarks << ShownInLine(note);
  return remarks.join(' ');
}

void ImportWindow::ChooseAll(bool all) {
  const QSignalBlocker quiet(rows_);
  for (int row = 0; row < rows_->topLevelItemCount(); ++row) {
    const bool takes = import_.entries[static_cast<std::size_t>(row)].refusal.IsEmpty();
    if (takes) rows_->topLevelItem(row)->setCheckState(kLabel, all ? Qt::Checked : Qt::Unchecked);
  }
  rows_->viewport()->update();
  ShowCount();
}

void ImportWindow::ShowCount() {
  const auto chosen = Shortcuts().size();
  count_->setText(tr("%1 of %2 chosen").arg(chosen).arg(import_.entries.size()));
  ok_->setEnabled(chosen > 0);
  ok_->setToolTip(chosen > 0 ? QString() : tr("Choose a shortcut first."));
}

std::vector<Shortcut> ImportWindow::Shortcuts() const {
  std::vector<Shortcut> chosen;
  for (std::size_t i = 0; i < import_.entries.size(); ++i) {
    const QTreeWidgetItem* item = rows_->topLevelItem(static_cast<int>(i));
    if (item->checkState(kLabel) == Qt::Checked) chosen.push_back(import_.entries[i].shortcut);
  }
  return chosen;
}

}  // namespace corvane
