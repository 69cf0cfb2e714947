// Every fault at every command that the engine sends, through the looper of a browser window and
// through the queue of transfers.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <set>

#include "FaultMatrix.h"
#include "kit/Message.h"
#include "support/AtOnce.h"
#include "support/Files.h"

namespace corvane {
namespace {

const std::vector<Request> kRequests = {
    {"opens", "CNNT"_what, {}, ""},
    {"enters", "PCHN"_what, {{"path", "/"}, {"cwd", "d"}}, ""},
    {"views", "VWFL"_what, {{"path", "/d"}, {"file", "a"}}, ""},
    {"deletes", "DELE"_what, {{"path", "/"}, {"name", "d"}, {"type", "2"}}, "!/d"},
    {"renames", "RNFL"_what, {{"path", "/d"}, {"original", "a"}, {"renameto", "z"}}, "/d/z"},
    {"moves", "MOVE"_what, {{"path", "/d"}, {"name", "a"}, {"to", "/e"}}, "/e/a"},
    {"makes", "MKDR"_what, {{"path", "/d"}, {"name", "n"}}, "/d/n"},
};

const std::vector<Errand> kErrands = {
    {"fetches", true, "d/a", "", Policy::CreateNew},
    {"replaces here", true, "d/a", Bytes(500) + "other", Policy::Replace},
    {"goes on here", true, "d/a", Bytes(1000), Policy::Resume},
    {"fetches a tree", true, "d", "", Policy::CreateNew},
    {"sends", false, "d/a", "", Policy::CreateNew},
    {"replaces there", false, "d/a", Bytes(500) + "other", Policy::Replace},
    {"goes on there", false, "d/a", Bytes(1000), Policy::Resume},
    {"sends a tree", false, "d", "", Policy::CreateNew},
};

const std::set<std::string> kLogin = {"greeting", "AUTH", "USER", "PASS", "PBSZ", "PROT",
                                      "SYST",     "FEAT", "OPTS", "PWD",  "TYPE", "QUIT"};

/// The verbs of a deed that no other deed stands for, once each.
std::vector<std::string> Steps(const std::vector<std::string>& verbs, bool login) {
  std::vector<std::string> steps;
  if (login) steps.emplace_back("greeting");
  for (const std::string& verb : verbs) {
    const bool known = std::ranges::find(steps, verb) != steps.end();
    if (!known && verb != "QUIT" && (login || !kLogin.contains(verb))) steps.push_back(verb);
  }
  return steps;
}

/// The cells of one deed: both modes, plain and encrypted, with a modern server and an old one; the
/// faults take turns with them.
template <typename Deed>
void Collect(const Deed& deed, bool login, std::vector<std::function<void()>>& tasks) {
  std::size_t turn = 0;
  for (const bool modern : {true, false}) {
    Cell well{.passive = modern, .modern = modern};
    for (const bool encrypted : {false, true}) {
      well.encrypted = encrypted;
      for (const std::string& verb : Steps(Try(deed, well), login)) {
        for (const Fault& fault : Faults()) {
          if (!fault.only.empty() && fault.only.find(verb) == std::string_view::npos) continue;
          if (++turn % 2 == 0) continue;
          Cell cell = well;
          cell.verb = verb;
          cell.fault = &fault;
          tasks.emplace_back([&deed, cell] {
            SCOPED_TRACE(std::string(deed.name) + ", " + cell.verb + ": " + cell.fault->name +
                         (cell.passive ? ", passive" : ", active") +
                         (cell.encrypted ? ", encrypted" : "") + (cell.modern ? "" : ", old"));
            Try(deed, cell);
          });
        }
      }
    }
  }
}

void RunAll(const std::vector<std::function<void()>>& tasks) {
  constexpr std::size_t kThreads = 16;
  RunAtOnce(tasks, kThreads);
  std::printf("%zu cells\n", tasks.size());
}

TEST(FaultMatrix, RequestsEndWellOrSayWhy) {
  std::vector<std::function<void()>> tasks;
  for (const Request& request : kRequests) Collect(request, request.what == "CNNT"_what, tasks);
  const Rights rights;
  Collect(rights, false, tasks);
  RunAll(tasks);
}

void RunErrands(bool download) {
  std::vector<std::function<void()>> tasks;
  for (const Errand& errand : kErrands)
    if (errand.download == download) Collect(errand, &errand == kErrands.data(), tasks);
  RunAll(tasks);
}

TEST(FaultMatrix, DownloadsEndWellOrGoOnLater) {
  RunErrands(true);
}

TEST(FaultMatrix, UploadsEndWellOrGoOnLater) {
  RunErrands(false);
}

}  // namespace
}  // namespace corvane
