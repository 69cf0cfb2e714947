// Whatever a server says and when, from the greeting to the last reply: a session ends, sends whole
// commands that only look and fetch, and calls a file or a listing whole only where all its bytes
// came and the server said so. The first line of the input says how the site is set, the others
// what the server does (FakeNet): "A" has data connections active.
#include <array>
#include <iostream>
#include <memory>

#include "FakeNet.h"
#include "Fuzz.h"
#include "ftp/MFtp.h"
#include "remote/RemotePath.h"

namespace {

using namespace corvane;

// FUZZ_LOG=1 SessionFuzz FILE shows what an input is about.
struct Owner final : Nobody {
  bool AppendLog(std::string_view line) override {
    static const bool shows = std::getenv("FUZZ_LOG") != nullptr;
    if (shows) std::cerr << line;
    return true;
  }
};

struct Listed final : ListingSink {
  std::vector<RemoteEntry> entries;
  std::size_t bytes = 0;
  void Raw(std::string_view text) override { bytes += text.size(); }
  bool Add(std::vector<RemoteEntry> batch) override {
    std::ranges::move(batch, std::back_inserter(entries));
    return true;
  }
};

void Fetch(MFtp& session, const std::string& path, const FakeNet& net) {
  std::unique_ptr<RemoteFile> file;
  if (!session.OpenForReading(path, 0, file).IsDone()) return;
  std::string bytes;
  std::array<char, 7> buffer{};
  for (std::size_t got = 1; got > 0;) {
    if (!file->Read(buffer, got).IsDone()) return;
    bytes.append(buffer.data(), got);
  }
  const std::string sent = net.Data();
  RemoteFile::Settled settled;
  if (!file->Finish({.askSize = true, .askTime = true}, settled).IsDone()) return;
  Check(net.IsWhole() && bytes == sent);
}

void Look(MFtp& session, const FakeNet& net) {
  Listed listing;
  const Outcome listed = session.List(session.Directory(), listing);
  Check(listing.bytes <= net.dataBytes && !(listed.IsDone() && net.IsBroken()));
  const std::string start = session.Directory();
  for (std::size_t i = 0; i < std::min<std::size_t>(listing.entries.size(), 4); ++i) {
    const RemoteEntry& entry = listing.entries[i];
    const std::string path = PathBelow(start, entry.name);
    std::string text;
    RemoteEntry told;
    std::optional<std::int64_t> number;
    std::optional<RemoteTime> time;
    if (entry.kind == RemoteEntry::Kind::Directory) (void)session.Enter(path, text);
    (void)session.Stat(path, told);
    (void)session.Size(path, number);
    Check(!number || *number >= 0);
    (void)session.ModifiedTime(path, time);
    (void)session.FreeSpace(start, number);
    (void)session.Checksum(path, 1, session.OffersDigest(), text);
    Fetch(session, path, net);
  }
  session.Quit();
}

constexpr std::string_view kVerbs =
    " USER PASS ACCT FEAT HOST OPTS SYST PWD CWD TYPE NOOP PASV EPSV PORT EPRT LIST MLSD MLST STAT "
    "REST RETR SIZE MDTM AVBL HASH MD5 XMD5 XCRC XSHA XSHA1 XSHA256 XSHA512 SITE ABOR QUIT ";

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  const bool active = Take(input).find('A') != std::string_view::npos;
  FakeNet net(input);
  {
    MFtp session({.host = "127.0.0.1",
                  .user = "user",
                  .password = "secret",
                  .passive = !active,
                  .security = Security::Plain},
                 std::make_shared<Owner>());
    if (session.Connect().IsDone()) Look(session, net);
  }
  for (const std::string& command : net.commands) {
    Check(command.find_first_of(std::string_view("\r\n\0", 3)) == std::string::npos);
    Check(kVerbs.find(" " + command.substr(0, command.find(' ')) + " ") != std::string_view::npos);
    Check(!command.starts_with("SITE ") || command.starts_with("SITE QUOTA") ||
          command.starts_with("SITE DIRSTYLE"));
  }
  return 0;
}
