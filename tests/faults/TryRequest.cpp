#include <gtest/gtest.h>

#include <algorithm>

#include "FaultMatrix.h"
#include "ftp/MFtp.h"
#include "support/Files.h"
#include "support/RecordingBrowserUi.h"
#include "support/WaitFor.h"
#include "workers/ControlLooper.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;

/// A browser window on a server that misbehaves.
class Browser {
 public:
  explicit Browser(const Cell& cell) : server(cell) {
    ui->answer = UserQuestion::Answer::Once;
    auto session = std::make_shared<MFtp>(server.site, ui);
    session->SetWaits(kWaits);
    looper = std::make_shared<ControlLooper>(server.site, std::move(session), ui);
    looper->Run();
  }
  ~Browser() { Close(); }

  void Post(std::uint32_t what, const std::vector<std::pair<const char*, std::string>>& fields) {
    Message message(what);
    for (const auto& [field, text] : fields) {
      if (std::string_view(field) == "type") {
        message.AddInt32(field, std::stoi(text));
      } else {
        message.AddString(field, text);
      }
    }
    EXPECT_TRUE(looper->PostMessage(std::move(message)));
    ++asked;
  }
  /// Whether all requests are over soon.
  [[nodiscard]] bool IsOver() const {
    const auto isDone = [](const Message& message) { return message.what == "DONE"_what; };
    const auto all = [&](const BrowserRecord& seen) {
      return std::ranges::count_if(seen.messages, isDone) == asked;
    };
    return WaitFor([&] { return ui->Look(all); },
                   kSlower * 2s + std::chrono::milliseconds(4 * kSilence));
  }
  /// How many messages tell of a trouble, the connection's loss or what was stopped.
  [[nodiscard]] std::ptrdiff_t Troubles() const {
    const auto tells = [](const Message& message) {
      return message.what == "GERR"_what || message.what == "FERR"_what ||
             message.what == "LOST"_what || message.FindBool("stopped").value_or(false);
    };
    return ui->Look(
        [&](const BrowserRecord& seen) { return std::ranges::count_if(seen.messages, tells); });
  }
  /// Whether the window shows a directory as it is.
  [[nodiscard]] bool Shows(const std::string& path) {
    std::vector<std::string> there;
    for (const auto& [entry, text] : server.Tree().Everything()) {
      const std::filesystem::path at(entry);
      if (entry != "/" && at.parent_path() == path) there.push_back(at.filename().string());
    }
    return ui->Look([&](const BrowserRecord& seen) {
      std::vector<std::string> shown = seen.Names();
      std::ranges::sort(shown);
      return seen.whole && seen.path == path && shown == there;
    });
  }
  /// Whether the looper ends soon.
  bool Close() {
    if (!looper) return true;
    ui->closing = true;
    looper->Quit();
    const std::weak_ptr<ControlLooper> last = std::exchange(looper, nullptr);
    return WaitFor([&] { return last.expired(); }, kSlower * 2s);
  }

  FaultServer server;
  std::shared_ptr<RecordingBrowserUi> ui = std::make_shared<RecordingBrowserUi>();
  std::shared_ptr<ControlLooper> looper;
  std::ptrdiff_t asked = 0;
};

/// Whether what was asked for is so.
bool IsDone(const Request& request, VirtualTree& tree) {
  const bool gone = request.there.starts_with("!");
  return request.there.empty() || tree.Exists(request.there.substr(gone ? 1 : 0)) != gone;
}

/// What comes next shows what is there, or says that the connection is gone; then a new one does.
void GoOn(Browser& browser) {
  const std::string path = browser.server.Tree().Exists("/d") ? "/d" : "/";
  const std::ptrdiff_t troubles = browser.Troubles();
  browser.Post("PCHN"_what, {{"path", "/"}, {"cwd", path}});
  EXPECT_TRUE(browser.IsOver()) << "the next request\n" << browser.server.Dialogue();
  const auto told = [&] {
    return browser.Troubles() > troubles || browser.ui->Look([](const BrowserRecord& seen) {
      return seen.statuses.back() == "Stopped before the listing came.";
    });
  };
  EXPECT_TRUE(WaitFor([&] { return browser.Shows(path) || told(); }))
      << "shows too little, and does not say so\n"
      << browser.server.Dialogue();
  if (browser.Shows(path)) return;
  browser.Post("RCNN"_what, {{"path", path}});
  EXPECT_TRUE(browser.IsOver()) << "the new connection\n" << browser.server.Dialogue();
  EXPECT_TRUE(WaitFor([&] { return browser.Shows(path); })) << browser.server.Dialogue();
}

}  // namespace

std::vector<std::string> Try(const Request& request, const Cell& cell) {
  std::atomic<bool> closes{false};
  Browser browser(cell);
  FaultServer& server = browser.server;
  const bool opens = request.what == "CNNT"_what;
  if (!opens) {
    browser.Post("CNNT"_what, {});
    EXPECT_TRUE(browser.IsOver()) << server.Dialogue();
  }
  const std::map<std::string, std::string> before = server.Beside("/d");
  std::ptrdiff_t troubles = browser.Troubles();
  (void)server.Verbs();
  if (cell.fault != nullptr) {
    ScriptedAction action = ActionOf(*cell.fault, cell.verb);
    const std::weak_ptr<ControlLooper> looper = browser.looper;
    if (cell.fault->user == Fault::User::Stops) {
      action.arrived = [looper] {
        if (const auto held = looper.lock()) held->Stop();
      };
    }
    if (cell.fault->user == Fault::User::Closes) action.arrived = [&closes] { closes = true; };
    server.OnNext(cell.verb, action);
  }
  browser.Post(request.what, request.fields);
  if (cell.fault != nullptr && cell.fault->user == Fault::User::Closes) {
    EXPECT_TRUE(WaitFor([&] { return closes || browser.IsOver(); })) << server.Dialogue();
  } else {
    EXPECT_TRUE(browser.IsOver()) << server.Dialogue();
    const bool well = browser.Troubles() == troubles;
    EXPECT_TRUE(!well || IsDone(request, server.Tree())) << "claimed\n" << server.Dialogue();
    EXPECT_TRUE(well || cell.fault != nullptr) << server.Dialogue();
    if (cell.fault != nullptr) GoOn(browser);
  }
  std::vector<std::string> verbs = server.Verbs();
  EXPECT_TRUE(browser.Close()) << "the end\n" << server.Dialogue();
  std::map<std::string, std::string> after = server.Beside("/d");
  std::erase_if(after, [](const auto& entry) { return entry.first == "/e/a"; });
  EXPECT_EQ(after, before) << server.Dialogue();
  return verbs;
}

}  // namespace corvane
