#include "app/connect/RecentList.h"

#include <QDateTime>
#include <QKeyEvent>
#include <QLocale>
#include <QPainter>
#include <QScreen>
#include <QStyledItemDelegate>
#include <algorithm>

#include "app/shared/ScreenText.h"
#include "app/shared/Symbols.h"
#include "app/shared/Tones.h"

namespace corvane {
namespace {

constexpr int kRow = 48;
constexpr int kLastRow = 40;
constexpr int kMargin = 12;
constexpr int kText = 40;
constexpr int kSymbol = 16;
constexpr int kRowsSeen = 6;

enum Role { kLabel = Qt::UserRole, kPlace, kWhen, kSecurity };

/// Open where nothing is encrypted; closed where that is certain.
const char* SignOf(Security security) {
  switch (security) {
    case Security::Required:
    case Security::Implicit: return "lock";
    case Security::Plain: return "lock-open";
    case Security::Automatic: break;
  }
  return "clock";
}

/// A symbol, and one line or two with a time at the right.
class RowPainter : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override {
    const QString place = index.data(kPlace).toString();
    const bool last = place.isEmpty();
    const bool usable = index.flags().testFlag(Qt::ItemIsSelectable);
    const bool chosen = option.state.testFlag(QStyle::State_Selected);
    const QPalette& palette = option.palette;
    const QColor secondary = ToneOf(palette, Tone::Secondary);
    const QColor own = usable ? palette.color(QPalette::Text) : secondary;
    const QColor text = chosen ? palette.color(QPalette::HighlightedText) : own;
    const QColor less = chosen ? text : secondary;
    if (chosen) painter->fillRect(option.rect, palette.color(QPalette::Highlight));
    if (last && usable) {
      painter->fillRect(QRect(option.rect.topLeft(), QSize(option.rect.width(), 1)),
                        ToneOf(palette, Tone::Line));
    }
    const QRectF sign(option.rect.x() + kMargin,
                      option.rect.y() + (option.rect.height() - kSymbol) / 2.0, kSymbol, kSymbol);
    const auto security = static_cast<Security>(index.data(kSecurity).toInt());
    const bool warns = !last && !chosen && security == Security::Plain;
    PaintSymbol(*painter, sign, last && usable ? "trash" : SignOf(security),
                warns ? ToneOf(palette, Tone::Caution) : less);
    const QRect room = option.rect.adjusted(kText, 0, -kMargin, 0);
    if (last) return Line(*painter, room, option, text, index.data(Qt::DisplayRole).toString());
    const int line = option.fontMetrics.height();
    const QRect upper(room.x(), room.center().y() - line + 1, room.width(), line);
    const QString when = index.data(kWhen).toString();
    const int width = option.fontMetrics.horizontalAdvance(when);
    painter->setPen(less);
    painter->drawText(upper, Qt::AlignRight | Qt::AlignVCenter, when);
    Line(*painter, upper.adjusted(0, 0, -width - kMargin, 0), option, text,
         index.data(kLabel).toString());
    Line(*painter, upper.translated(0, line), option, less, place);
  }

  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                               const QModelIndex& index) const override {
    const int lines = 2 * option.fontMetrics.height() + 8;
    return {0, index.data(kPlace).toString().isEmpty() ? kLastRow : std::max(kRow, lines)};
  }

 private:
  static void Line(QPainter& painter, const QRect& room, const QStyleOptionViewItem& option,
                   const QColor& color, const QString& text) {
    painter.setPen(color);
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     option.fontMetrics.elidedText(text, Qt::ElideMiddle, room.width()));
  }
};

}  // namespace

RecentList::RecentList(const std::vector<KnownConnection>& recent, QWidget* field)
    : QListWidget(field) {
  setWindowFlags(Qt::Popup);
  setAttribute(Qt::WA_DeleteOnClose);
  setObjectName("Recent");
  setAccessibleName(tr("Recent connections"));
  setItemDelegate(new RowPainter(this));
  setFrameShape(QFrame::Box);
  setMouseTracking(true);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  for (const KnownConnection& one : recent) {
    if (one.when != 0) AddRow(one);
  }
  auto* last = new QListWidgetItem(this);
  if (recent_.empty()) {
    last->setText(tr("No recent connections"));
    last->setFlags(Qt::NoItemFlags);
  } else {
    last->setText(tr("Forget Recent Connections"));
  }
  connect(this, &QListWidget::itemEntered, this, [this](QListWidgetItem* item) {
    if (item->flags().testFlag(Qt::ItemIsSelectable)) setCurrentItem(item);
  });
  connect(this, &QListWidget::itemClicked, this, &RecentList::Take);
}

void RecentList::AddRow(const KnownConnection& recent) {
  const QString place = ToText(PlaceOf(recent.connection.site));
  const QString label = ToText(NameOf(recent.connection));
  const QString when = WhenText(recent.when);
  auto* item =
      new QListWidgetItem(QStringList{label, place, when}.join(QStringLiteral(", ")), this);
  item->setData(kLabel, label);
  item->setData(kPlace, place);
  item->setData(kWhen, when);
  item->setData(kSecurity, static_cast<int>(recent.connection.site.security));
  item->setToolTip(Harmless(place));
  recent_.push_back(recent);
}

QString RecentList::WhenText(std::int64_t when) {
  const QLocale locale;
  const QDateTime moment = QDateTime::fromSecsSinceEpoch(when);
  const QDate today = QDate::currentDate();
  const QString format = locale.timeFormat(QLocale::ShortFormat).remove(QStringLiteral(":ss"));
  const QString time = locale.toString(moment.time(), format);
  if (moment.date() == today) return tr("today %1").arg(time);
  if (moment.date() == today.addDays(-1)) return tr("yesterday %1").arg(time);
  return locale.toString(moment.date(), tr("dd MMM yyyy", "a day; dd.MM.yyyy in German"));
}

void RecentList::OpenAt(const QWidget& field) {
  int height = 2 * frameWidth();
  for (int row = 0; row < count(); ++row) {
    if (row < kRowsSeen || row + 1 == count()) height += sizeHintForRow(row);
  }
  QRect place(field.mapToGlobal(QPoint(0, field.height() + 2)), QSize(field.width(), height));
  if (const QScreen* screen = field.screen();
      screen != nullptr && place.bottom() > screen->availableGeometry().bottom()) {
    place.moveBottom(field.mapToGlobal(QPoint()).y() - 3);
  }
  setGeometry(place);
  if (!recent_.empty()) setCurrentRow(0);
  show();
  setFocus();
}

void RecentList::Take(const QListWidgetItem* item) {
  if (item == nullptr || recent_.empty()) return;
  const auto at = static_cast<std::size_t>(row(item));
  const bool forget = at >= recent_.size();
  const Shortcut connection = forget ? Shortcut() : recent_[at].connection;
  close();
  if (forget) {
    Q_EMIT ForgetAsked();
  } else {
    Q_EMIT Chosen(connection);
  }
}

void RecentList::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Escape: close(); break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space: Take(currentItem()); break;
    default: QListWidget::keyPressEvent(event);
  }
}

}  // namespace corvane
