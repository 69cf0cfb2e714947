// One transfer as the transfer window makes it, without windows and with the default settings.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <string>
#include <utility>
#include <vector>

#include "ftp/MFtp.h"
#include "kit/Background.h"
#include "workers/FileTransfer.h"

namespace {

class Row final : public corvane::TransferUi {
 public:
  corvane::TransferProgress& Progress() override { return progress_; }
  bool BeginFile(std::string_view /*name*/) override { return true; }
  bool SetLabel(std::string_view /*text*/) override { return true; }
  bool NoteEntry(std::string_view text) override {
    std::fprintf(stderr, "%.*s\n", static_cast<int>(text.size()), text.data());
    return true;
  }
  bool SetTrailing(std::string_view /*text*/) override { return true; }
  bool PostMessage(corvane::Message /*message*/) override { return true; }
  bool PlaySound(std::string_view /*path*/) override { return true; }
  bool SetEndState(corvane::TransferEnd state, std::string_view why) override {
    end_.set_value({state, std::string(why)});
    return true;
  }

  std::pair<corvane::TransferEnd, std::string> Wait() { return end_.get_future().get(); }

 private:
  corvane::TransferProgress progress_;
  std::promise<std::pair<corvane::TransferEnd, std::string>> end_;
};

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  const bool passive = words.size() == 8 && words[7] == "passive";
  if ((words.size() != 7 && !passive) || (words[0] != "get" && words[0] != "put")) {
    std::fputs(
        "usage: corvane-transfer get HOST PORT USER PASSWORD FILE LOCAL-FOLDER [passive]\n"
        "       corvane-transfer put HOST PORT USER PASSWORD FOLDER LOCAL-FILE [passive]\n"
        "A slash behind FILE makes it a directory; LOCAL-FILE may be one.\n",
        stderr);
    return 2;
  }
  const bool tree = words[0] == "get" && words[5].ends_with('/');
  const std::filesystem::path remote = words[5].substr(0, words[5].size() - (tree ? 1 : 0));
  const auto row = std::make_shared<Row>();
  corvane::transferStruct what;
  what.engine = std::make_shared<corvane::MFtp>(
      words[1], static_cast<std::uint16_t>(std::atoi(words[2].c_str())), words[3], words[4],
      passive, row);
  what.download = words[0] == "get";
  if (what.download) {
    corvane::fileStruct item;
    item.type = tree ? corvane::kDirectory : corvane::kFile;
    item.name = remote.filename();
    what.items.push_back(item);
    what.remoteDirectory = remote.parent_path();
    what.targetFolder = words[6];
  } else {
    what.remoteDirectory = remote;
    what.localItems.push_back(words[6]);
  }
  if (!std::make_shared<corvane::FileTransfer>(row, std::move(what), false)->Run()) return 1;
  const auto [state, why] = row->Wait();
  const bool finished = state == corvane::TransferEnd::Finished;
  if (!finished) std::fprintf(stderr, "failed: %s\n", why.c_str());
  // It still says goodbye to the server.
  return corvane::Background::WaitForNone(std::chrono::seconds(5)) && finished ? 0 : 1;
}
