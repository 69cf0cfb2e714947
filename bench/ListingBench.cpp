// How long a browser window takes to show a directory and to work with it, and whether it answers
// meanwhile.

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>

#include "app/browser/BrowserSession.h"
#include "app/browser/DirListView.h"
#include "app/browser/MWindow.h"
#include "app/program/RealWorkers.h"
#include "app/program/TambleApp.h"
#include "app/shared/SmallView.h"
#include "settings/ProcessSettings.h"
#include "workers/ListingCache.h"

using corvane::operator""_what;

namespace {

constexpr int kLimitSeconds = 60;

/// Counts the paints of a view, and notes the one that finds everything there.
class PaintCount final : public QObject {
 public:
  int count = 0;
  std::function<bool()> whole;
  bool paintedWhole = false;

 protected:
  bool eventFilter(QObject* /*view*/, QEvent* event) override {
    if (event->type() != QEvent::Paint) return false;
    ++count;
    paintedWhole = paintedWhole || (whole && whole());
    return false;
  }
};

void WaitFor(const std::function<bool()>& done) {
  QElapsedTimer waited;
  for (waited.start(); !done();) {
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    if (waited.elapsed() > kLimitSeconds * 1000) {
      std::fputs("the listing did not come\n", stderr);
      std::_Exit(1);
    }
  }
}

long ResidentKilobytes() {
  std::ifstream status("/proc/self/status");
  std::string word;
  while (status >> word && word != "VmRSS:") {
  }
  long kilobytes = 0;
  status >> kilobytes;
  return kilobytes;
}

double Milliseconds(const std::function<void()>& work) {
  QElapsedTimer clock;
  clock.start();
  work();
  return static_cast<double>(clock.nsecsElapsed()) / 1e6;
}

/// What the user does with the rows that are there; the slowest of each kind, painting included.
struct Handling {
  double sort = 0;
  double filter = 0;
  double typing = 0;
  double menu = 0;
  double scroll = 0;
};

Handling Handle(corvane::DirListView& view) {
  Handling worst;
  const auto note = [](double& slowest, const std::function<void()>& work) {
    slowest = std::max(slowest, Milliseconds(work));
  };
  using Rows = corvane::DirListModel;
  for (const int column : {Rows::kSize, Rows::kDate, Rows::kPermissions, Rows::kOwner, Rows::kGroup,
                           Rows::kKind, Rows::kName, Rows::kName, Rows::kName}) {
    note(worst.sort, [&] {
      view.SetSortKey(column);
      view.viewport()->repaint();
    });
  }
  quint64 milliseconds = 1000;
  for (const char letter : view.Rows().At(view.Rows().Count() - 1).Name()) {
    QKeyEvent key(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QString(QChar::fromLatin1(letter)));
    key.setTimestamp(milliseconds += 100);
    note(worst.typing, [&] {
      QCoreApplication::sendEvent(&view, &key);
      view.viewport()->repaint();
    });
  }
  if (view.FirstSelected() != view.Rows().Count() - 1) std::exit(1);
  view.selectAll();
  for (const char* text : {"1", "12", "12x", "12", "1", ""}) {
    note(worst.filter, [&] {
      view.SetFilter(text);
      view.viewport()->repaint();
    });
  }
  if (view.Rows().ShownCount() != view.Rows().Count()) std::exit(1);
  note(worst.menu, [&] {
    view.selectAll();
    QMenu* menu = view.SetupPopUpMenu();
    menu->popup({10, 10});
    menu->repaint();
    view.viewport()->repaint();
    delete menu;
  });
  QScrollBar* bar = view.verticalScrollBar();
  constexpr int kSteps = 500;
  for (int step = 0; step <= kSteps; ++step) {
    note(worst.scroll, [&] {
      bar->setValue(static_cast<int>(static_cast<std::int64_t>(bar->maximum()) * step / kSteps));
      view.viewport()->repaint();
    });
  }
  return worst;
}

}  // namespace

// HOST PORT USER PASSWORD FOLDER ENTRIES: prints milliseconds to all rows shown, the longest stall
// of the event loop in milliseconds, resident kilobytes before and with the rows and once they are
// gone, and the slowest sort, key in the filter, type-ahead, selection of everything with its menu,
// and scroll step.
int main(int argc, char** argv) {
  if (argc != 7) return 2;
  const int entries = std::atoi(argv[6]);
  QApplication qt(argc, argv);
  corvane::TambleApp app(corvane::RealWorkers({}));
  app.ReadyToRun();
  corvane::Message open("OPNC"_what);
  open.AddString("host", argv[1]);
  open.AddInt16("port", static_cast<std::int16_t>(std::atoi(argv[2])));
  open.AddString("user", argv[3]);
  open.AddString("pass", argv[4]);
  open.AddBool("passive", true);
  app.PostMessage(open);
  corvane::MWindow& window = *app.WindowList().back();
  const auto* const shown = window.findChild<corvane::SmallView*>();
  PaintCount paints;
  window.Listing().viewport()->installEventFilter(&paints);
  QTimer beat;
  beat.setTimerType(Qt::PreciseTimer);
  beat.start(1);
  WaitFor([&] { return shown->Count() > 0 && paints.count > 0; });
  const long before = ResidentKilobytes();

  qint64 stall = 0;
  QElapsedTimer sinceBeat;
  QObject::connect(&beat, &QTimer::timeout, &window, [&] {
    if (sinceBeat.isValid()) stall = std::max(stall, sinceBeat.nsecsElapsed());
    sinceBeat.start();
  });
  QElapsedTimer clock;
  clock.start();
  window.Session().ChangeDirectory(argv[5]);
  paints.whole = [&] {
    return shown->Count() == entries && window.Listing().Rows().Count() == entries;
  };
  WaitFor([&] { return paints.paintedWhole; });
  const qint64 took = clock.nsecsElapsed();
  QElapsedTimer rest;
  rest.start();
  WaitFor([&] { return rest.elapsed() > 300; });  // what follows the paint must not stall either
  const long with = ResidentKilobytes();
  const qint64 longest = stall;
  const Handling worst = Handle(window.Listing());
  window.Session().ChangeDirectory("..");
  WaitFor([&] { return shown->Count() > 0 && shown->Count() < entries; });
  std::printf("%.1f %.1f %ld %ld %ld %.1f %.1f %.1f %.1f %.1f\n", static_cast<double>(took) / 1e6,
              static_cast<double>(longest) / 1e6, before, with, ResidentKilobytes(), worst.sort,
              worst.filter, worst.typing, worst.menu, worst.scroll);
  std::fflush(stdout);
  app.Quit();
  corvane::ListingCache::RemoveAll();
  std::_Exit(0);
}
