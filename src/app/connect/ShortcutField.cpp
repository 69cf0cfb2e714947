#include "app/connect/ShortcutField.h"

#include <QActionGroup>
#include <QMenu>
#include <QStyle>
#include <QStyleOptionButton>
#include <algorithm>

#include "app/shared/FolderMenus.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Style.h"

namespace corvane {

ShortcutField::ShortcutField(QWidget* parent)
    : QPushButton(parent), cutMenu_(new QMenu(this)), items_(new QActionGroup(this)) {
  setObjectName("shortcuts");
  setAccessibleName(tr("Shortcuts"));
  cutMenu_->setObjectName("CutMenu");
  setMenu(cutMenu_);
  setAutoDefault(true);  // Enter opens it
  connect(items_, &QActionGroup::triggered, this, [this](const QAction* item) {
    ShowMarked();
    Q_EMIT Chosen(item->data().toInt());
  });
  ShowMarked();
}

qsizetype ShortcutField::Count() const {
  return items_->actions().size();
}

QSize ShortcutField::minimumSizeHint() const {
  QStyleOptionButton option;
  initStyleOption(&option);
  option.text = tr("&Shortcuts");
  const QSize text = fontMetrics().size(Qt::TextShowMnemonic, option.text);
  constexpr int kLeast = 136;
  const QSize size = style()->sizeFromContents(QStyle::CT_PushButton, &option, text, this);
  return size.expandedTo({kLeast, 0});
}

void ShortcutField::Fill(const std::vector<Shortcut>& shortcuts,
                         const std::vector<ShortcutFolder>& folders) {
  qDeleteAll(items_->actions());
  qDeleteAll(cutMenu_->findChildren<QMenu*>(Qt::FindDirectChildrenOnly));
  FolderMenus menus(*cutMenu_);
  const bool inFolders = Style::InForce().ShowsFolders();
  for (const ShortcutFolder& folder : folders) {
    const bool used = std::ranges::any_of(shortcuts, [&folder](const Shortcut& shortcut) {
      return IsWithin(shortcut.folder, folder.path);
    });
    if (inFolders && used) menus.Of(folder.path);
  }
  std::int32_t index = 0;
  for (const Shortcut& shortcut : shortcuts) {
    QMenu& menu = menus.Of(inFolders ? shortcut.folder : std::string());
    Add(menu, NameOf(shortcut), index, index < 10);
    ++index;
  }
  ShowMarked();
}

void ShortcutField::Append(const std::string& label, std::int32_t index) {
  Add(*cutMenu_, label, index, Count() < 9);
}

void ShortcutField::Add(QMenu& menu, const std::string& label, std::int32_t index, bool withKey) {
  QAction* item = menu.addAction(ItemText(label));
  item->setCheckable(true);
  item->setData(index);
  if (withKey) item->setShortcut(QKeySequence(QStringLiteral("Ctrl+%1").arg(Count())));
  items_->addAction(item);
}

void ShortcutField::ShowMarked() {
  const QAction* marked = items_->checkedAction();
  SetTip(*this, marked != nullptr ? marked->text().replace("&&", "&") : QString());
  QStyleOptionButton option;
  initStyleOption(&option);
  const int room = style()->subElementRect(QStyle::SE_PushButtonContents, &option, this).width() -
                   style()->pixelMetric(QStyle::PM_MenuButtonIndicator, &option, this);
  setText(marked == nullptr ? tr("&Shortcuts")
                            : fontMetrics().elidedText(marked->text(), Qt::ElideMiddle, room,
                                                       Qt::TextShowMnemonic));
  // Whatever the button shows, its key is the same.
  setShortcut(QKeySequence::mnemonic(tr("&Shortcuts")));
}

void ShortcutField::resizeEvent(QResizeEvent* event) {
  QPushButton::resizeEvent(event);
  ShowMarked();
}

}  // namespace corvane
