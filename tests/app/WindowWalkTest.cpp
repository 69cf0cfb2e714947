#include "AppFixture.h"
#include "app/browser/MViewFile.h"
#include "app/doctor/DoctorWindow.h"
#include "app/program/Translations.h"
#include "app/shared/QuestionBox.h"
#include "app/shared/Shown.h"
#include "sites/Shortcut.h"

namespace corvane {
namespace {

/// Opens every window there is and looks at each control in it. What the windows are about is
/// called by numbers, so that texts with letters are the program's.
class WindowWalk : public AppFixture {
 public:
  /// Every text that was met, in an order that does not depend on the language.
  QStringList Run(bool classic) {
    settings_.classicStyle = classic;
    ProcessSettings::Set(settings_);
    OpenAll();
    QWidgetList windows = QApplication::topLevelWidgets();
    windows.removeIf([](QWidget* each) { return !each->isVisible(); });
    std::ranges::sort(windows, {}, [](QWidget* each) { return Name(*each); });
    EXPECT_EQ(windows.size(), classic ? 12 : 10) << "names are entered in windows of their own";
    for (QWidget* window : windows) WalkPages(*window);
    Alerts::AnswerWith({});
    using Kind = UserQuestion::Kind;
    for (const Kind kind :
         {Kind::UnknownCertificate, Kind::ChangedCertificate, Kind::NoMoreEncryption,
          Kind::PlainPassword, Kind::Passphrase, Kind::Account}) {
      WalkQuestion(kind);
    }
    window_->MessageReceived(Message("DELE"_what));
    WalkPages(*window_->findChild<QuestionBox*>());
    return texts_;
  }

 private:
  void TestBody() override {}

  void WalkQuestion(UserQuestion::Kind kind) {
    const Certificate shown{.name = "1", .issuer = "2", .sha256 = "3", .problems = 0xff};
    const auto question =
        std::make_shared<UserQuestion>(UserQuestion::Subject{.kind = kind,
                                                             .host = "4",
                                                             .certificate = shown,
                                                             .known = KnownCertificate{shown, 5},
                                                             .file = "6"});
    link_->Ask(question);
    EXPECT_TRUE(Wait([&] { return window_->findChild<QuestionBox*>() != nullptr; }));
    const QPointer<QuestionBox> box = window_->findChild<QuestionBox*>();
    WalkPages(*box);
    question->Give(UserQuestion::Answer::No);
    EXPECT_TRUE(Gone(box));
  }

  void OpenAll() {
    List({Folder("1"), Link("2"), File("3", 1536)});
    View().SelectRow(2);
    link_->SetStatus(Text("Connected."));
    link_->ShowProtection({});
    for (const std::uint32_t what : {"SHLG"_what, "MKDR"_what, "RNFW"_what}) {
      window_->MessageReceived(Message(what));
    }
    const auto text = std::make_shared<ViewerLink>();
    window_->OpenViewer(text, Text("Listing of: %1", "/1"));
    text->End(Text("The file is not complete: %1", "2"));
    window_->findChild<MViewFile*>()->findChild<QLineEdit*>("Find")->parentWidget()->show();
    app_->ShowShortcuts();
    app_->ShowEditor({.site = {.encoding = "KOI8-R"}}, *window_);
    app_->ShowPreferences();
    app_->AboutRequested();
    app_->Diagnose(window_, {.host = "5"}, {});
    auto* const doctor = window_->findChild<DoctorWindow*>();
    doctor->ShowStep({.sign = DiagnosisStep::Sign::Bad, .name = Text("Log in")});
    doctor->ShowAdvice({.verdict = Text("The server does not greet."),
                        .heading = Text("Connect again."),
                        .reason = Text("What it says stands beside the step.")});
    for (std::size_t i = 0; i < 3; ++i) {
      app_->Transfers().Add({.jobs = {{"/3", "/4"}}}, {});
      transfers_[i]->row->NoteEntry(Text("Left out: %1 (%2)", 4, Text("a link or a special file")));
    }
    transfers_[0]->row->SetEndState(TransferEnd::Failed, Text("The connection was lost: %1", 5));
    transfers_[1]->row->SetEndState(TransferEnd::Finished, {});
    window_->findChild<QCheckBox*>("SameCon")->setChecked(true);
    window_->MessageReceived(Message("DWLD"_what));
    EXPECT_TRUE(Wait([&] { return !here_.empty(); }));
    here_.back()->row->SetEndState(TransferEnd::Failed, Text("Cancelled."));
    EXPECT_TRUE(Wait([&] {
      return app_->Transfers().List().Items().RunningCount() == 1 && View().IsEnabled();
    }));
  }

  static std::string Name(const QObject& of) {
    return of.metaObject()->className() + (" " + of.objectName()).toStdString();
  }

  static QWidgetList Seen(const QWidget& window) {
    QWidgetList seen = window.findChildren<QWidget*>();
    seen.removeIf([&](QWidget* each) { return !each->isVisible() || each->window() != &window; });
    return seen;
  }

  static bool TakesInput(const QWidget& one) {
    const auto is = [&one](const char* kind) { return one.inherits(kind); };
    const auto kinds = {"QAbstractItemView", "QAbstractButton", "QLineEdit", "QAbstractSpinBox",
                        "QComboBox",         "QPlainTextEdit",  "QTabBar"};
    return std::ranges::any_of(kinds, is) && !is("QHeaderView") && !IsPart(one);
  }
  /// Of a field, which has keys for it and leaves it as much room as it needs.
  static bool IsPart(const QWidget& one) {
    return one.parent()->inherits("QLineEdit") || one.parent()->inherits("QAbstractSpinBox");
  }

  void WalkPages(QWidget& window) {
    auto* tabs = window.findChild<QTabWidget*>();
    for (int page = 0; page < (tabs != nullptr ? tabs->count() : 1); ++page) {
      if (tabs != nullptr) tabs->setCurrentIndex(page);
      SCOPED_TRACE(Name(window) + " " + std::to_string(page));
      QStringList keys;
      Note(window.windowTitle());
      for (QWidget* each : Seen(window)) {
        SCOPED_TRACE(Name(*each));
        if (TakesInput(*each)) CheckAccess(*each);
        NoteTexts(*each, keys);
      }
      CheckKeys(keys);
      CheckTabs(window);
      CheckSizes(window);
      window.resize(1, 1);  // the least that it takes
      QTest::qWait(1);
      CheckSizes(window);
    }
  }

  /// What may be cut says so by its policy.
  static void CheckSizes(const QWidget& window) {
    for (const QWidget* each : Seen(window)) {
      const bool within = IsPart(*each);
      if (within || each->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored) continue;
      SCOPED_TRACE(Name(*each));
      QSize least = each->minimumSizeHint();
      if (const auto* header = qobject_cast<const QHeaderView*>(each)) {
        least = {};
        for (int i = 0; i < header->count(); ++i) {
          EXPECT_LE(header->sectionSizeHint(i), header->sectionSize(i)) << i;
        }
      } else if (const auto* bar = qobject_cast<const QMenuBar*>(each)) {
        least.setWidth(bar->actionGeometry(bar->actions().last()).right());
      } else if (const auto* tabs = qobject_cast<const QTabBar*>(each)) {
        least.setWidth(tabs->tabRect(tabs->count() - 1).right());
      }
      EXPECT_LE(least.width(), each->width());
      EXPECT_LE(std::max(least.height(), each->heightForWidth(each->width())), each->height());
      const QRect room = each->parentWidget()->rect();
      EXPECT_TRUE(each->parent()->inherits("QAbstractScrollArea") ||
                  room.contains(each->geometry()));
    }
  }

  static void CheckAccess(QWidget& one) {
    QAccessibleInterface* known = QAccessible::queryAccessibleInterface(&one);
    EXPECT_FALSE(known->text(QAccessible::Name).isEmpty() && !one.inherits("QTabBar"));
    EXPECT_EQ(known->state().disabled, !one.isEnabled());
    EXPECT_EQ(known->state().checked, one.property("checked").toBool());
  }

  void NoteTexts(QWidget& one, QStringList& keys) {
    const auto* label = qobject_cast<QLabel*>(&one);
    const bool entered = one.inherits("QLineEdit");
    for (const char* each : {"text", "title", "toolTip", "placeholderText", "accessibleName"}) {
      const QString text = entered && *each == 't' ? "" : one.property(each).toString();
      Note(text);
      if (label == nullptr || label->buddy() != nullptr)
        keys << QKeySequence::mnemonic(text).toString();
    }
    if (const auto* tabs = qobject_cast<QTabBar*>(&one)) {
      for (int i = 0; i < tabs->count(); ++i) keys << Note(tabs->tabText(i));
    } else if (const auto* bar = qobject_cast<QMenuBar*>(&one)) {
      keys << NoteMenu(bar);
      for (const QAction* menu : bar->actions()) CheckKeys(NoteMenu(menu->menu()));
    } else if (const auto* view = qobject_cast<QAbstractItemView*>(&one)) {
      for (int i = 0; i < 4 * view->model()->rowCount(); ++i) {
        const QModelIndex cell = view->model()->index(i / 4, i % 4);
        Note(view->model()->headerData(i % 4, Qt::Horizontal).toString());
        for (const int role : {0, 3, 11}) Note(cell.data(role).toString());
      }
      if (auto* list = qobject_cast<DirListView*>(&one)) NoteMenu(list->SetupPopUpMenu());
      if (auto* list = qobject_cast<TransferListView*>(&one)) NoteMenu(list->SetupPopUpMenu());
    }
  }

  QStringList NoteMenu(const QWidget* menu) {
    QStringList keys;
    for (const QAction* item : menu->actions()) keys << Note(item->text().section('\t', 0, 0));
    return keys;
  }

  /// Answers the key that the text marks.
  QString Note(QString text) {
    static const QRegularExpression markup("<p[^>]*>|</p>");
    texts_ << text.remove(markup);
    return QKeySequence::mnemonic(text).toString();
  }

  static void CheckKeys(QStringList keys) {
    keys.removeAll(QString());
    EXPECT_EQ(keys.removeDuplicates(), 0) << keys.join(' ').toStdString();
  }

  /// Tab goes to everything that takes input, and what has the focus looks different.
  static void CheckTabs(QWidget& window) {
    window.activateWindow();
    window.setAttribute(Qt::WA_KeyboardFocusChange);  // as after a first Tab
    EXPECT_TRUE(Wait([&] { return QGuiApplication::focusWindow() == window.windowHandle(); }));
    const auto look = [&window](QWidget* one) {
      return window.grab(QRect(one->mapTo(&window, QPoint()), one->size())).toImage();
    };
    QSet<QWidget*> reached;
    for (QWidget* now = window.focusWidget(); now != nullptr && !reached.contains(now);) {
      reached.insert(now);
      const QImage with = look(now);
      QTest::keyClick(now, Qt::Key_Tab);
      QWidget* next = window.focusWidget();
      const bool framed = now->property("default").toBool();  // with and without the focus
      EXPECT_TRUE(next == now || framed || !TakesInput(*now) || look(now) != with)
          << Name(*now) << " shows no focus";
      now = next;
    }
    for (QWidget* each : Seen(window)) {
      // The arrow keys lead from the one of a group that is chosen to the others.
      const bool besides = each->inherits("QRadioButton") && !each->property("checked").toBool();
      EXPECT_TRUE(!TakesInput(*each) || !each->isEnabled() || besides || reached.contains(each))
          << "Tab does not reach " << Name(*each);
    }
  }

  QStringList texts_;
};

class EveryWindow : public testing::TestWithParam<bool> {};

TEST_P(EveryWindow, IsWholeAndInReachInBothLanguages) {
  const QRegularExpression alike(
      "^([^a-z]*|Corvane|&?Host:?|Po&?rt:?|&?Name:?|Pro&xy|Status|Status: "
      "|Server|Text|anonymous|guest@.*|Be "
      "Inc\\.|[0-9]+ s|ftp\\..*|/pub/.*|[-rwx]+|server\\.test)$");
  QApplication::setCursorFlashTime(0);
  const QStringList english = WindowWalk().Run(GetParam());
  Translations translations({"fr-FR", "de-AT", "en"});
  translations.Install();
  const QPalette light = QApplication::palette();
  QApplication::setPalette(QPalette(Qt::black));
  const QStringList german = WindowWalk().Run(GetParam());
  QApplication::setPalette(light);
  ASSERT_EQ(english.size(), german.size());
  for (qsizetype i = 0; i < english.size(); ++i) {
    const std::string text = english[i].toStdString();
    EXPECT_TRUE(english[i] != german[i] || alike.match(english[i]).hasMatch()) << text;
  }
  const Text lost("The connection was lost: %1", "Connected.");
  EXPECT_EQ(Shown(Text("Left out: %1 (%2)", "Cancelled.", lost)).toStdString(),
            "Ausgelassen: Cancelled. (Die Verbindung ist abgebrochen: Connected.)");
  EXPECT_EQ(Translations({"en-US", "de"}).Text("QObject", "&Cancel"), "&Cancel");
}

INSTANTIATE_TEST_SUITE_P(Styles, EveryWindow, testing::Bool(),
                         [](const auto& style) { return style.param ? "Classic" : "Modern"; });

}  // namespace
}  // namespace corvane
