#include "ftp/ReplyTable.h"

#include <algorithm>
#include <array>

namespace corvane {
namespace {

/// What may be said to a command, besides refusals.
struct Row {
  std::string_view verbs;  ///< each between blanks
  std::array<int, 4> codes;
  bool others;  ///< and any 2yz that belongs to no command
};

constexpr std::string_view kTransfers = " RETR STOR APPE STOU LIST NLST MLSD ";
constexpr std::string_view kAskForData =
    " PASV EPSV PORT EPRT RETR STOR APPE STOU LIST NLST MLSD STAT ";

constexpr std::array<Row, 19> kRows = {{
    {" greeting ", {220}, true},
    {" USER ", {230, 232, 331, 332}, true},
    {" PASS ", {230, 232, 332}, true},
    {" ACCT ", {230, 232}, true},
    {" AUTH ", {234, 334}, false},
    {" FEAT ", {211}, true},
    {" HOST ", {220}, true},
    {" SYST ", {215}, true},
    {" PWD ", {257}, false},
    {" MKD ", {257}, true},
    {" SIZE AVBL ", {213}, false},
    {" MDTM ", {213, 253}, false},
    {" PASV ", {227}, false},
    {" EPSV ", {229}, false},
    {" RNFR REST ", {350}, false},
    {kTransfers, {225, 226}, true},
    {" STAT SITE ", {211, 212, 213, 350}, true},
    {" MFMT HASH MD5 XCRC XMD5 XSHA XSHA1 XSHA256 XSHA512 ", {213}, true},
    {" QUIT ", {221}, true},
}};

constexpr Row kAnyOther = {"", {}, true};  ///< commands without a row

/// The 2yz that RFCs give to one command or the other.
constexpr std::array kTaken = {211, 212, 213, 214, 215, 220, 221, 225, 226,
                               227, 228, 229, 230, 231, 232, 234, 235, 257};

bool IsAmong(std::string_view verb, std::string_view verbs) {
  const std::size_t at = verbs.find(verb);
  return !verb.empty() && at != std::string_view::npos && at > 0 && verbs[at - 1] == ' ' &&
         verbs[at + verb.size()] == ' ';
}

}  // namespace

bool MayBeReply(std::string_view command, int code) {
  constexpr std::array kOfData = {425, 426};
  const std::string_view verb = command.substr(0, command.find(' '));
  if (code >= 400)
    return std::ranges::find(kOfData, code) == kOfData.end() || IsAmong(verb, kAskForData);
  if (code < 200) return code >= 100 && IsAmong(verb, kTransfers);
  const auto* const found =
      std::ranges::find_if(kRows, [verb](const Row& row) { return IsAmong(verb, row.verbs); });
  const Row& row = found != kRows.end() ? *found : kAnyOther;
  if (std::ranges::find(row.codes, code) != row.codes.end()) return true;
  return row.others && code < 300 && std::ranges::find(kTaken, code) == kTaken.end();
}

}  // namespace corvane
