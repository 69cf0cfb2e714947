#include <algorithm>
#include <functional>
#include <vector>

#include "support/AtOnce.h"
#include "workers/TransferJob.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;

struct Fault {
  const char* name;
  std::string_view only;  ///< the verbs that it fits; all when empty
  ScriptedAction action;
  bool cancel = false;  ///< the user cancels when the step has come
};

constexpr char kData[] = "RETR STOR LIST";

const std::vector<Fault> kFaults = {
    {"closed", "", {.reply = "", .control = ControlEnd::Close}},
    {"reset", "", {.reply = "", .control = ControlEnd::Reset}},
    {"silent", "", {.late = true}, true},
    {"4yz", "", {.reply = "450 No\r\n"}},
    {"5yz", "", {.reply = "550 No\r\n"}},
    {"garbage", "", {.reply = "\x16\x03 what\r\n", .control = ControlEnd::Close}},
    {"cancelled", "", {}, true},
    {"short", "RETR", {.dataLimit = 3, .completion = "226 Done\r\n"}},
    {"long", "RETR", {.data = Bytes(4000)}},
    {"cut", kData, {.dataLimit = 3, .dataEnd = DataEnd::Reset, .completion = "426 Cut\r\n"}},
    {"stalled", kData, {.dataLimit = 3, .dataEnd = DataEnd::Stall}, true},
    {"refused in the end", kData, {.completion = "451 No\r\n"}},
    {"garbage in the end", kData, {.completion = "what\r\n", .control = ControlEnd::Close}},
    {"closed in the end", kData, {.completion = "", .control = ControlEnd::Close}},
    {"said twice", "RETR STOR", {.completion = "226 Done\r\n226 Done\r\n"}},
    {"said once", "RETR STOR", {.preliminary = "226 Done\r\n", .completion = ""}},
    {"said late", "RETR", {.preliminary = "", .completion = "226 Done\r\n"}},
    {"stranger first", "RETR STOR", {.strangerFirst = true}},
    {"asked for more", "RETR STOR", {.reply = "350 Go on\r\n"}},
};

/// The steps of a tree's transfer; the number tells which command of that name. CWD and PWD stand
/// for the way into the tree's directory.
const std::pair<std::string, int> kSteps[] = {
    {"greeting", 1}, {"USER", 1}, {"PASS", 1}, {"SYST", 1}, {"TYPE", 1}, {"CWD", 1}, {"PWD", 1},
    {"PORT", 1},     {"PORT", 3}, {"LIST", 1}, {"RETR", 2}, {"STOR", 2}, {"MKD", 1},
};

/// What is no failure, and steps that can be done without, or in another way.
bool Harmless(const std::string& verb, const std::string& fault, bool shared) {
  // The file is whole, which a new connection of the transfer's own confirms.
  const bool gone = fault == "closed in the end" || fault == "garbage in the end";
  if (gone) return !shared && verb != "LIST";
  // What is asked at once there may have been the reason.
  const bool tried = verb == "SYST" || verb == "TYPE";
  if (tried && (fault == "closed" || fault == "reset" || fault == "garbage")) return true;
  if (fault.starts_with("said") || fault == "stranger first") return true;
  if (fault != "4yz" && fault != "5yz") return false;
  return tried || verb == "PWD" || verb == "PORT" || verb == "PASV" ||
         (verb == "LIST" && fault == "5yz");
}

void Try(std::string verb, int number, const Fault& fault, bool download, bool shared,
         bool passive) {
  SCOPED_TRACE(verb + std::to_string(number) + " " + fault.name + (download ? " down" : " up") +
               (shared ? " shared" : "") + (passive ? " passive" : ""));
  Job job(passive, shared);
  const bool login =
      verb == "greeting" || verb == "USER" || verb == "PASS" || verb == "SYST" || verb == "TYPE";
  // An upload knows where the folders are that it has made.
  const bool one = download ? verb == "STOR" || verb == "MKD"
                            : verb == "RETR" || verb == "LIST" || verb == "PWD";
  const bool fits = fault.only.empty() || fault.only.find(verb) != std::string_view::npos;
  if (one || (login && shared) || !fits) return;
  if (verb == "PORT" && passive) verb = "PASV";
  if (verb == "PORT" || verb == "PASV") number -= download ? 0 : 1;
  // The way to the directory above, and what Connect asked, come first.
  if (verb == "CWD") number += download && !shared ? 0 : 1;
  if (verb == "PWD") number += shared ? 2 : 1;

  const std::pair<std::string, std::string> files[] = {{"a", Bytes(100)}, {"b", Bytes(3000)}};
  for (const auto& [name, bytes] : files) {
    if (download) job.server.Tree().AddFile("/pub/d/" + name, bytes);
    if (!download) Write(job.folder.Path() / "d" / name, bytes);
  }
  if (download) job.Fetch("d", RemoteEntry::Kind::Directory);
  if (!download) job.Send("d");
  ScriptedAction action = fault.action;
  std::atomic<bool> arrived = !fault.cancel;
  if (fault.cancel)
    action.arrived = [&] {
      job.worker->Cancel();
      arrived = true;
    };
  job.server.On(verb, action, number);

  const auto begin = std::chrono::steady_clock::now();
  job.Start();
  const TransferEnd end = job.Wait();
  EXPECT_TRUE(WaitFor([&] { return arrived.load(); }));
  EXPECT_LT(std::chrono::steady_clock::now() - begin, 9s);  // the server is waited for longer
  const auto whole = [&] {
    return std::ranges::all_of(files, [&](const auto& file) {
      const std::string local = Contents(job.folder.Path() / "d" / file.first);
      const std::string remote = job.server.Tree().File("/pub/d/" + file.first).value_or("");
      return local == remote && local.size() == file.second.size();
    });
  };
  const bool finished = end == TransferEnd::Finished;
  const bool cancelled = end == TransferEnd::Cancelled;
  EXPECT_EQ(finished, !fault.cancel && Harmless(verb, fault.name, shared))
      << job.row->Seen().why << job.Notes() << job.server.Dialogue();
  EXPECT_EQ(cancelled, fault.cancel) << job.row->Seen().why << job.server.Dialogue();
  EXPECT_TRUE(!finished || WaitFor(whole)) << job.server.Dialogue();
  if (!shared) {
    // The fault has passed: what is left comes now, and a refusal needs the user's word.
    if (finished || number == 0) return;
    job.board->Begin(true);
    job.row = std::make_shared<RecordingTransferUi>();
    job.Start();
    EXPECT_EQ(job.Wait(), TransferEnd::Finished)
        << job.row->Seen().why << job.Notes() << job.server.Dialogue();
    EXPECT_TRUE(WaitFor(whole)) << job.server.Dialogue();
    return;
  }

  const bool lost = fault.action.control != ControlEnd::Open;
  EXPECT_EQ(job.IsInStep(), !lost) << job.server.Dialogue();
  EXPECT_EQ(job.browser->Seen().statuses.back(), lost ? "Connection lost."
                                                 : end == TransferEnd::Finished
                                                     ? "Transfer Complete."
                                                     : "Transfer Interupted.");
}

// Every fault at every step: it ends soon, is finished only when it is whole, leaves neither thread
// nor descriptor, and a browser's connection can go on.
TEST(Transfer, SurvivesEveryFaultAtEveryStep) {
  constexpr std::size_t kThreads = 80;
  std::vector<std::function<void()>> tasks;
  for (const auto& [verb, number] : kSteps)
    for (const Fault& fault : kFaults)
      for (const bool download : {true, false})
        for (const bool shared : {false, true})
          tasks.emplace_back([=, step = verb, which = number, passive = tasks.size() % 3 == 0] {
            Try(step, which, fault, download, shared, passive);
          });
  RunAtOnce(tasks, kThreads);
}

}  // namespace
}  // namespace corvane
