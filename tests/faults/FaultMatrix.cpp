#include "FaultMatrix.h"

#include "support/Files.h"
#include "support/NextHost.h"

namespace corvane {
namespace {

using User = Fault::User;

constexpr std::string_view kFetches = "RETR LIST MLSD";
constexpr std::string_view kMoves = "RETR STOR APPE LIST MLSD";

}  // namespace

const std::vector<Fault>& Faults() {
  static const std::vector<Fault> faults = {
      {"closes", {.reply = "", .control = ControlEnd::Close}},
      {"resets", {.reply = "", .control = ControlEnd::Reset}},
      {"is silent", {.reply = ""}},
      {"421", {.reply = "421 Going down.\r\n", .control = ControlEnd::Close}},
      {"421, and stays", {.reply = "421 Too many connections.\r\n"}},
      {"4yz", {.reply = "450 Not now.\r\n"}},
      {"5yz", {.reply = "550 No.\r\n"}},
      {"wrong code", {.reply = "220 Odd.\r\n"}},
      {"two replies", {.after = "200 And this.\r\n"}},
      {"stale reply", {.before = "226 Of long ago.\r\n"}},
      {"stale reply, then no", {.reply = "550 No.\r\n", .before = "226 Of long ago.\r\n"}},
      {"garbage", {.reply = "\x16\x03\x01 what\r\n"}},
      {"endless line", {.endless = "x"}},
      {"endless reply", {.endless = "220-" + std::string(500, 'x') + "\r\n"}},
      {"NUL", {.reply = std::string("2\0\0 \0\r\n", 7)}},
      {"byte by byte", {.byteByByte = true}},
      {"cancel", {.late = true}, User::Stops},
      {"closing", {.late = true}, User::Closes},
      {"short", {.dataLimit = 3, .completion = "226 Done\r\n"}, User::Waits, "RETR"},
      {"long", {.data = Bytes(9000)}, User::Waits, "RETR"},
      {"cut",
       {.dataLimit = 3, .dataEnd = DataEnd::Reset, .completion = "426 Cut\r\n"},
       User::Waits,
       kMoves},
      {"stalled", {.dataLimit = 3, .dataEnd = DataEnd::Stall}, User::Waits, kMoves},
      {"stalled, cancel", {.dataLimit = 3, .dataEnd = DataEnd::Stall}, User::Stops, kMoves},
      {"refused in the end", {.completion = "451 No\r\n"}, User::Waits, kMoves},
      {"silent in the end", {.completion = ""}, User::Waits, kMoves},
      {"closed in the end", {.completion = "", .control = ControlEnd::Close}, User::Waits, kMoves},
      {"said twice", {.completion = "226 Done\r\n226 Done\r\n"}, User::Waits, kMoves},
      {"said once", {.preliminary = "226 Done\r\n", .completion = ""}, User::Waits, kFetches},
  };
  return faults;
}

ScriptedAction ActionOf(const Fault& fault, const std::string& verb) {
  ScriptedAction action = fault.action;
  if (action.reply == "220 Odd.\r\n" && verb == "greeting") action.reply = "331 Odd.\r\n";
  return action;
}

FaultServer::FaultServer(const Cell& cell) : ScriptedServer(NextHost()), site(Where(cell.passive)) {
  static const TestIdentity identity;
  if (cell.encrypted) Encrypt(identity);
  if (cell.encrypted) site.security = Security::Required;
  if (cell.modern) Offer("MDTM|SIZE|REST STREAM|MLST type*;size*;modify*;|MFMT|UTF8|XSHA256");
  Tree().AddFile("/d/a", Bytes(3000));
  Tree().AddFile("/d/b", Bytes(200));
  Tree().AddDirectory("/e");
  Tree().AddDirectory("/up");
  Tree().AddFile("/keep", "as it is");
}

std::vector<std::string> FaultServer::Verbs() {
  std::vector<std::string> verbs;
  const std::vector<std::string> all = Transcript();
  for (; heard_ < all.size(); ++heard_)
    verbs.push_back(all[heard_].substr(0, all[heard_].find_first_of(" \r\n")));
  return verbs;
}

std::map<std::string, std::string> FaultServer::Beside(const std::string& path) {
  std::map<std::string, std::string> all = Tree().Everything();
  std::erase_if(all, [&](const auto& entry) { return entry.first.starts_with(path); });
  return all;
}

}  // namespace corvane
