#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "queue/transferStruct.h"
#include "remote/Site.h"
#include "remote/Waits.h"

namespace corvane::drive {

inline constexpr char kGuest[] = "guest@a.b";

/// A transfer that is to be put into the queue.
struct Asked {
  bool download = true;
  Site site{};
  std::string local{};
};

/// What the driver was asked to do.
struct Options {
  std::string
      command;  ///< "get", "put", "list", "remove", "rename", "chmod", "mkdir", "queue" or "parse"
  Site site;    ///< with the URL's path; a slash at its end means a directory
  std::string local;  ///< the local folder or file, the new name, the queue's file, or the file to
                      ///< parse
  std::vector<Asked> asked;  ///< of a queue
  bool resumes = false;      ///< what the queue's file holds is gone on with
  Policy policy = Policy::CreateNew;
  std::int32_t connections = 4;  ///< at most so many at once
  std::optional<std::chrono::milliseconds> cancelAfter;
  std::int64_t limit = 0;  ///< bytes a second; 0 for none
  int tries = 0;           ///< after a failure that may pass
  Waits waits;             ///< for a silent server
  bool json = false;
  bool trustsAny = false;  ///< every certificate is taken
  bool quiet = false;      ///< what is noted of entries is not shown
};

inline constexpr char kUsage[] =
    "usage: corvane-drive get|put|list|remove|rename|chmod|mkdir URL [LOCAL] [OPTION...]\n"
    "       corvane-drive queue FILE [--resume] [get|put URL LOCAL]... [OPTION...]\n"
    "       corvane-drive parse FILE\n"
    "  get     fetches a file, or a directory with \"/\" at its end, into the folder LOCAL (.)\n"
    "  put     sends the file or folder LOCAL into the directory URL\n"
    "  list    prints the entries of a directory, a JSON line each\n"
    "  rename  gives the entry the name LOCAL\n"
    "  queue   carries out transfers whose state is kept in FILE, and with --resume those that "
    "were\n"
    "          left there; prints a JSON line as each ends\n"
    "  parse   prints what is understood of a listing's text, a JSON line for each entry\n"
    "options: --active --connections N --policy create|replace|resume|skip|newer|both\n"
    "         --tls auto|required|implicit|none --trust-any --cancel-after MS --limit BYTES (a\n"
    "         second) --tries N (after a failure that may pass) --silence MS (of the server) "
    "--json\n"
    "The exit code is 0 if and only if everything finished, 2 if this was not understood.\n";

/// Reads the words of a command line; `problem` says what is the matter where there is nothing.
[[nodiscard]] std::optional<Options> Read(const std::vector<std::string>& words,
                                          std::string& problem);

}  // namespace corvane::drive
