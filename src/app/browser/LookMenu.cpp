#include "app/browser/LookMenu.h"

#include <QActionGroup>
#include <QMenu>
#include <functional>

#include "app/browser/DirListView.h"
#include "app/shared/Style.h"

namespace corvane {
namespace {

using Change = std::function<void(ListingLook& look, bool on)>;

QAction* AddChoice(QMenu& menu, DirListView& view, const QString& text, bool on,
                   const Change& change) {
  QAction* action = menu.addAction(text);
  action->setCheckable(true);
  action->setChecked(on);
  QObject::connect(action, &QAction::triggered, &view, [&view, change](bool checked) {
    ListingLook look = view.Look();
    change(look, checked);
    view.SetLook(look);
  });
  return action;
}

QString Title(const DirListView& view, int column) {
  return view.Rows().headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
}

void AddColumns(QMenu& menu, DirListView& view) {
  const ListingLook look = view.Look();
  for (int column = DirListModel::kName + 1; column < DirListModel::kColumns; ++column) {
    const auto place = static_cast<std::size_t>(column);
    AddChoice(menu, view, Title(view, column), look.columns.at(place).shown,
              [place](ListingLook& changed, bool on) { changed.columns.at(place).shown = on; });
  }
}

void AddOrder(QMenu& menu, DirListView& view) {
  const ListingLook look = view.Look();
  QMenu* by = menu.addMenu(DirListView::tr("&Sort by"));
  auto* columns = new QActionGroup(by);
  for (int column = 0; column < DirListModel::kColumns; ++column) {
    columns->addAction(
        AddChoice(*by, view, Title(view, column), column == look.sortColumn,
                  [column](ListingLook& changed, bool /*on*/) { changed.sortColumn = column; }));
  }
  by->addSeparator();
  AddChoice(*by, view, DirListView::tr("&Descending"), !look.ascending,
            [](ListingLook& changed, bool on) { changed.ascending = !on; });
  if (Style::InForce().OrdersByBytes()) return;
  AddChoice(menu, view, DirListView::tr("Directories &first"), look.directoriesFirst,
            [](ListingLook& changed, bool on) { changed.directoriesFirst = on; });
  AddChoice(menu, view, DirListView::tr("&Numbers by value"), look.natural,
            [](ListingLook& changed, bool on) { changed.natural = on; });
}

}  // namespace

QMenu* MakeLookMenu(DirListView& view) {
  auto* menu = new QMenu(&view);
  menu->setObjectName("LookMenu");
  AddColumns(*menu, view);
  menu->addSeparator();
  AddOrder(*menu, view);
  return menu;
}

}  // namespace corvane
