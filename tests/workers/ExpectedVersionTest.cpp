#include <functional>
#include <tuple>

#include "remote/FileVersion.h"
#include "util/Digest.h"
#include "util/PartFile.h"
#include "workers/TransferJob.h"

namespace corvane {
namespace {

FileVersion VersionOf(const std::string& bytes) {
  Digest digest(DigestKind::Sha256);
  digest.Add(bytes);
  return {.size = static_cast<std::int64_t>(bytes.size()),
          .kind = DigestKind::Sha256,
          .digest = digest.Take()};
}

// A file that somebody else has changed is never replaced, whenever the change comes.
TEST(ExpectedVersion, NothingElseIsReplaced) {
  using Prepare = std::function<void(Job&)>;
  const std::string old = "0123456789";
  const std::string ours = "ours, and longer";
  const auto theirs = [](Job& job) { job.server.Tree().AddFile("/pub/f", "abcdefghij"); };
  const auto before = [&](const char* verb, std::optional<std::string> reply) -> Prepare {
    return [=](Job& job) {
      job.server.On(verb, {.arrived = [=, &job] { theirs(job); }, .reply = reply}, 1);
    };
  };
  // What stands there in the end, nothing for no file; whether it was told as another version.
  const std::tuple<const char*, Prepare, std::optional<std::string>, bool> cases[] = {
      {"as it was", [](Job&) {}, ours, false},
      {"as it was, no renaming", [](Job& job) { job.server.On("RNFR", {.reply = "502 No\r\n"}); },
       ours, false},
      {"changed, of the same size", theirs, "abcdefghij", true},
      {"changed while it is sent", before("STOR", std::nullopt), "abcdefghij", true},
      {"changed before it is sent under its name", before("RNFR", "502 No\r\n"), "abcdefghij",
       true},
      {"gone", [](Job& job) { job.server.Tree().Remove("/pub/f", false); }, {}, true},
      {"there after all",
       [&](Job& job) {
         job.description.expected = FileVersion{.there = false};
         theirs(job);
       },
       "abcdefghij", true},
      {"anew",
       [](Job& job) {
         job.description.expected = FileVersion{.there = false};
         job.server.Tree().Remove("/pub/f", false);
       },
       ours, false},
      {"sent already, as after a lost reply",
       [&](Job& job) {
         job.server.Tree().AddFile("/pub/f", ours);
         job.server.On("STOR", {.reply = "553 No\r\n"});
       },
       ours, false},
  };
  for (const auto& [name, prepare, stands, changed] : cases) {
    SCOPED_TRACE(name);
    Job job;
    job.policy = Policy::Replace;
    job.description.expected = VersionOf(old);
    job.description.tracked = true;
    job.Send("f");
    Write(job.folder.Path() / "f", ours);
    prepare(job);
    EXPECT_EQ(job.Run(), changed ? TransferEnd::Failed : TransferEnd::Finished)
        << job.row->Seen().why << job.server.Dialogue();
    EXPECT_EQ(job.server.Tree().File("/pub/f"), stands);
    EXPECT_FALSE(job.server.Tree().Exists("/pub/" + PartFile::NameFor("f")));
    int told = 0;
    for (const Message& message : job.row->Seen().messages) {
      if (message.what != "VRSN"_what) continue;
      ++told;
      EXPECT_EQ(message.FindBool("changed"), changed);
      EXPECT_EQ(VersionIn(message), stands ? VersionOf(*stands) : FileVersion{.there = false});
    }
    EXPECT_EQ(told, 1) << job.server.Dialogue();
  }
}

// What is fetched to be edited is one state of the file, and that one is told.
TEST(ExpectedVersion, IsToldOfWhatWasFetched) {
  for (const bool changes : {false, true}) {
    Job job;
    job.policy = Policy::Replace;
    job.description.tracked = true;
    job.server.On("MDTM", {.reply = "213 20200101000000\r\n"}, 1);
    job.server.On("MDTM", {.reply = changes ? "213 20200101000001\r\n" : "213 20200101000000\r\n"},
                  2);
    job.Fetch("f");
    EXPECT_EQ(job.Run(), changes ? TransferEnd::Again : TransferEnd::Finished);
    std::vector<FileVersion> told;
    for (const Message& message : job.row->Seen().messages)
      if (message.what == "VRSN"_what) told.push_back(VersionIn(message));
    const FileVersion known{.size = 10, .modified = 1'577'836'800};
    EXPECT_EQ(told, changes ? std::vector<FileVersion>{} : std::vector{known});
  }
}

}  // namespace
}  // namespace corvane
