#include <unistd.h>

#include <QApplication>
#include <QMessageBox>
#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/desktop/LibSecretStore.h"
#include "app/desktop/NetworkWatch.h"
#include "app/desktop/RequestServer.h"
#include "app/desktop/RunningProgram.h"
#include "app/desktop/StartupNotice.h"
#include "app/desktop/TrayProgram.h"
#include "app/program/QuitSignals.h"
#include "app/program/RealWorkers.h"
#include "app/program/TambleApp.h"
#include "app/program/Translations.h"
#include "app/shared/AccessibleRoles.h"
#include "app/shared/CommandLine.h"
#include "app/shared/LookStyle.h"
#include "kit/Background.h"
#include "net/NLDebug.h"
#include "queue/QueueStore.h"
#include "settings/PreferenceSet.h"
#include "sites/KnownServers.h"
#include "workers/ListingCache.h"

namespace {

int Usage() {
  std::fputs("USAGE: Corvane <ftp url>\n", stdout);
  return 0;
}

// What the toolkit may take out of the arguments is known only once there is a display.
bool HasOptions(const std::vector<std::string>& arguments) {
  return std::ranges::any_of(arguments, [](const auto& text) { return text.starts_with('-'); });
}

// Whoever clicks in a menu sees no standard error.
void ShowProblem(const QString& text) {
  int count = 1;
  std::string name = "corvane";
  std::array<char*, 2> arguments = {name.data(), nullptr};
  std::optional<QApplication> toolkit;
  if (QCoreApplication::instance() == nullptr) toolkit.emplace(count, arguments.data());
  QMessageBox(QMessageBox::Warning, "Corvane", text).exec();
}

// The exit status, where this start ends here: its arguments are wrong, or another program runs.
std::optional<int> EndedAtStart(corvane::RunningProgram& running,
                                const corvane::Translations& texts,
                                const std::vector<std::string>& arguments) {
  using corvane::RunningProgram;
  const corvane::CommandLine line = corvane::CommandLine::Read(arguments);
  if (line.usage) return Usage();
  if (line.deskbar) return {};
  const char* problem = nullptr;
  switch (running.Begin(arguments)) {
    case RunningProgram::Start::First: return {};
    case RunningProgram::Start::HandedOver: return 0;
    case RunningProgram::Start::Refused:
      problem = QT_TRANSLATE_NOOP("Start", "Corvane runs already and refuses this address.");
      break;
    case RunningProgram::Start::NoAnswer:
      problem = QT_TRANSLATE_NOOP("Start", "Corvane runs already but does not answer.");
      break;
  }
  const QString text = texts.Text("Start", problem);
  std::fprintf(stderr, "%s\n", qPrintable(text));
  if (!corvane::StartupNotice::Id().empty()) ShowProblem(text);
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  // A file beyond the limit that the system sets is a write that fails.
  std::signal(SIGXFSZ, [](int /*signal*/) {});
  corvane::RunningProgram running;
  corvane::Translations translations;
  const std::vector<std::string> given(argv + 1, argv + argc);
  const bool plain = !HasOptions(given);
  if (plain) {
    if (const auto status = EndedAtStart(running, translations, given)) return *status;
  }
  corvane::NLDebug::switchOnFromEnvironment();
  QGuiApplication::setHighDpiScaleFactorRoundingPolicy(
      Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
  int result = 0;
  {
    // The toolkit takes its own options out of the arguments.
    QApplication qt(argc, argv);
    QApplication::setApplicationName("Corvane");
    QApplication::setStyle(new corvane::LookStyle);
    QApplication::setDesktopFileName("corvane");
    corvane::InstallAccessibleRoles();
    translations.Install();
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (!plain) {
      if (const auto status = EndedAtStart(running, translations, arguments)) return *status;
    }
    const corvane::CommandLine line = corvane::CommandLine::Read(arguments);
    if (line.deskbar) {
      corvane::TrayProgram tray(line.login ? corvane::TrayProgram::kLoginPatience
                                           : corvane::TrayProgram::kPatience);
      const corvane::QuitSignals signals(QCoreApplication::quit);
      result = tray.Run();
    } else {
      const auto known = std::make_shared<corvane::KnownServers>();
      corvane::TambleApp app(
          corvane::RealWorkers(known, std::make_shared<corvane::TransferSpeed>()),
          std::make_shared<corvane::LibSecretStore>(), known,
          std::make_shared<corvane::QueueStore>(corvane::PathBesideSets("queue.sqlite", true)));
      const corvane::NetworkWatch network;
      QObject::connect(&network, &corvane::NetworkWatch::Returned, &app,
                       &corvane::TambleApp::NetworkReturned);
      const corvane::QuitSignals signals([&app] { app.Quit(); });
      app.ReadyToRun(line.open);
      std::optional<corvane::RequestServer> requests;
      if (running.Listener() >= 0) {
        requests.emplace(running.Listener(), [&app](const corvane::Message& request) {
          if (app.Quitting()) return false;
          app.PostMessage(request);
          return true;
        });
      }
      result = QApplication::exec();
    }
    running.End();
    // Work that does not end in time is left to the end of the process: all that it wrote to disk
    // stands, and its windows are gone.
    if (!corvane::Background::WaitForNone(std::chrono::milliseconds(1500))) {
      corvane::ListingCache::RemoveAll();
      std::fflush(stdout);
      ::_exit(result);
    }
  }
  return result;
}
