#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "remote/Site.h"
#include "workers/transferStruct.h"

namespace corvane::drive {

/// What the driver was asked to do.
struct Options {
  std::string command;  ///< "get", "put", "list", "remove", "rename", "mkdir" or "parse"
  Site site;            ///< with the URL's path; a slash at its end means a directory
  std::string local;    ///< the local folder or file, the new name, or the file to parse
  Policy policy = Policy::CreateNew;
  std::optional<std::chrono::milliseconds> cancelAfter;
  bool json = false;
  bool trustsAny = false;  ///< every certificate is taken
};

inline constexpr char kUsage[] =
    "usage: corvane-drive get|put|list|remove|rename|mkdir URL [LOCAL] [OPTION...]\n"
    "       corvane-drive parse FILE\n"
    "  get     fetches a file, or a directory with \"/\" at its end, into the folder LOCAL (.)\n"
    "  put     sends the file or folder LOCAL into the directory URL\n"
    "  list    prints the entries of a directory, a JSON line each\n"
    "  rename  gives the entry the name LOCAL\n"
    "  parse   prints what is understood of a listing's text, a JSON line for each entry\n"
    "options: --active --connections N --policy create|replace|resume|skip|newer\n"
    "         --tls auto|required|implicit|none --trust-any --cancel-after MS --limit BYTES "
    "--json\n"
    "The exit code is 0 if and only if everything finished, 2 if this was not understood.\n";

/// Reads the words of a command line; `problem` says what is the matter where there is nothing.
[[nodiscard]] std::optional<Options> Read(const std::vector<std::string>& words,
                                          std::string& problem);

}  // namespace corvane::drive
