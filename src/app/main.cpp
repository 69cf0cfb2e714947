#include <unistd.h>

#include <QApplication>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "app/CommandLine.h"
#include "app/QuitSignals.h"
#include "app/TambleApp.h"
#include "kit/Background.h"
#include "net/NLDebug.h"
#include "workers/ListingCache.h"

namespace {

int Usage() {
  std::fputs("USAGE: Corvane <ftp url>\n", stdout);
  return 0;
}

// Whether the arguments are wrong whatever the toolkit may take out of them: known without a
// display.
bool PlainlyWrong(const std::vector<std::string>& arguments) {
  const auto isOption = [](const std::string& argument) { return argument.starts_with('-'); };
  return std::ranges::none_of(arguments, isOption) && corvane::CommandLine::Read(arguments).usage;
}

}  // namespace

int main(int argc, char** argv) {
  if (PlainlyWrong({argv + 1, argv + argc})) return Usage();
  corvane::NLDebug::switchOnFromEnvironment();
  QGuiApplication::setHighDpiScaleFactorRoundingPolicy(
      Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
  int result = 0;
  {
    // The toolkit takes its own options out of the arguments.
    QApplication qt(argc, argv);
    QApplication::setApplicationName("Corvane");
    QApplication::setDesktopFileName("corvane");
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    const corvane::CommandLine line = corvane::CommandLine::Read(arguments);
    if (line.usage) return Usage();
    {
      corvane::TambleApp app;
      const corvane::QuitSignals signals([&app] { app.Quit(); });
      app.ReadyToRun(line.open);
      result = QApplication::exec();
    }
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
