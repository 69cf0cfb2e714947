#pragma once

#include <QColor>
#include <QDate>
#include <QFont>
#include <QString>
#include <QTime>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "app/shared/TransferWords.h"

class QPalette;

namespace corvane {

/// A password and the stars that stand for it in its field: what an edit changes.
struct HiddenText {
  std::string bytes;         ///< UTF-8, as far as the user typed it
  qsizetype stars = 0;       ///< shown in the field
  qsizetype cursor = 0;      ///< before the star of that number
  qsizetype selected = 0;    ///< how many stars are selected
  qsizetype selection = -1;  ///< the first of them; -1 where there is none

  /// Appends what one key has written.
  void PushChar(std::string_view key) { bytes += key; }
  /// Takes the last byte off, if there is one.
  void PopChar() {
    if (!bytes.empty()) bytes.pop_back();
  }
};

/// What the title of a browser window tells.
struct BrowserTitle {
  QString place;  ///< the directory's name, or how the connection stands
  QString user;   ///< empty for an anonymous one
  QString host;
  int port = 21;
};

/// How an alert is worded: its window's title, the question, and what stands below it.
struct Wording {
  QString title;
  QString question;
  QString advice;
};

/// What the facts of a selected entry are called.
struct InfoTitles {
  QString heading;
  QString permissions;
  QString owner;
  QString group;
};

/// The colours of a listing's rows.
struct RowColors {
  QColor ground;
  QColor text;
  QColor secondary;  ///< of what stands beside the name
  QColor disabled;
  QColor selection;
  QColor selectedText;
};

/// Everything in which the two styles of the program differ. The preference "Classic style" chooses
/// one; windows ask it and never look at that preference themselves. Without state. GUI thread.
class Style {
 public:
  virtual ~Style() = default;

  /// The style that the settings in force ask for. Asked each time it is needed, not kept.
  [[nodiscard]] static const Style& InForce();

  /// Puts `typed` in place of the selection or at the cursor.
  virtual void Type(HiddenText& text, const QString& typed) const = 0;
  virtual void Backspace(HiddenText& text) const = 0;
  virtual void Delete(HiddenText& text) const = 0;
  /// Follows a change that took `stars` stars behind the cursor off the field by itself.
  virtual void Lose(HiddenText& text, qsizetype stars) const = 0;
  /// How many more stars than characters the default password shows.
  [[nodiscard]] virtual int ExtraStars() const = 0;

  /// The key shown beside an item of a pop-up menu: the command's own, or what is described for it.
  [[nodiscard]] virtual const char* PopUpKey(const char* own, const char* described) const = 0;
  [[nodiscard]] virtual QString TitleOf(const BrowserTitle& title) const = 0;
  /// How many entries a listing has.
  [[nodiscard]] virtual QString Items(int count) const = 0;
  /// The wording of an alert that has a formal and a plain one.
  [[nodiscard]] virtual Wording Worded(const Wording& formal, const Wording& plain) const = 0;
  /// So many bytes, for a column or a sum.
  [[nodiscard]] virtual QString FileSize(std::int64_t bytes) const = 0;
  /// The size of an entry: bytes, or one of the special values of fileStruct. `recorded` is the
  /// text that its record has for it.
  [[nodiscard]] virtual QString EntrySize(std::int64_t size, const std::string& recorded) const = 0;
  /// The date of an entry, with the time where the server told one. `recorded` as above.
  [[nodiscard]] virtual QString EntryDate(const QDate& day, const std::optional<QTime>& time,
                                          const std::string& recorded) const = 0;
  /// Whether the rows "." and ".." lead a listing.
  [[nodiscard]] virtual bool ShowsDots() const = 0;
  /// Whether names are ordered by their bytes, entries of all kinds mixed, and every listing begins
  /// by name; else as readers expect it, and the order that the user chose stays.
  [[nodiscard]] virtual bool OrdersByBytes() const = 0;
  /// Whether a key that begins no name takes the selection away.
  [[nodiscard]] virtual bool MissDeselects() const = 0;
  /// Whether names are entered where they stand in the listing, not in windows of their own.
  [[nodiscard]] virtual bool EditsInPlace() const = 0;
  /// The font of the figures in a listing, and on which side of their column they stand.
  [[nodiscard]] virtual QFont FiguresFont(const QFont& text) const = 0;
  /// Whether what holds is written into fields that are left empty; else a hint there says it.
  [[nodiscard]] virtual bool FillsEmptyFields() const = 0;
  /// Whether new connections are passive unless the user says otherwise.
  [[nodiscard]] virtual bool PassiveAtFirst() const = 0;
  /// Whether an alert says what is wrong in a field, in place of a line below it.
  [[nodiscard]] virtual bool AlertsOfFaults() const = 0;
  /// Whether the transfer window opens with the program, before there is a transfer.
  [[nodiscard]] virtual bool TransfersAtStart() const = 0;
  /// Whether the program ends with its connection window, whatever other windows are open.
  [[nodiscard]] virtual bool ClosingQuits() const = 0;
  /// Whether what is there already is asked about entry by entry, with every choice; else alerts
  /// ask once for all, with the choices described.
  [[nodiscard]] virtual bool AsksOfEachEntry() const = 0;
  /// Whether shortcuts are shown in their folders; else in one list, as they are numbered.
  [[nodiscard]] virtual bool ShowsFolders() const = 0;
  /// The title of the window in which a shortcut is made.
  [[nodiscard]] virtual QString NewShortcutTitle() const = 0;

  /// What the row of a transfer says.
  [[nodiscard]] virtual TransferWords RowOf(const TransferFacts& transfer) const = 0;
  /// The colour of its bar; none where the row has no bar.
  [[nodiscard]] virtual QColor BarOf(TransferState state, const QPalette& palette) const = 0;
  /// How fast it is and how long it takes, once or still.
  [[nodiscard]] virtual QString PaceOf(const TransferFacts& transfer) const = 0;
  /// What stands before the name of a transfer on a browser window's own connection.
  [[nodiscard]] virtual QString DirectionOf(bool download) const = 0;
  /// The title of the transfer window.
  [[nodiscard]] virtual QString TransferTitle(int running) const = 0;
  /// The text of a transfer's menu item that has a plain and a described one.
  [[nodiscard]] virtual const char* ItemText(const char* own, const char* described) const = 0;
  [[nodiscard]] virtual Qt::Alignment FiguresSide() const = 0;
  [[nodiscard]] virtual InfoTitles TitlesOfInfo() const = 0;
  /// Whether permissions are shown as the server lists them, with the entry's type before them.
  [[nodiscard]] virtual bool ShowsWholeMode() const = 0;
  [[nodiscard]] virtual RowColors ColorsOfRows(const QPalette& palette) const = 0;
};

/// Into how many characters the bytes fall: of UTF-8 where they are that, else each its own.
[[nodiscard]] qsizetype CharactersIn(const std::string& bytes);

}  // namespace corvane
