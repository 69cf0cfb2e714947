#include <array>
#include <atomic>
#include <cerrno>

#include "prefs/PrefsFixture.h"
#include "support/WaitFor.h"

namespace corvane {
namespace {

using std::string_literals::operator""s;

TEST_F(PrefsTest, AFileIsALengthAndTheFlattenedItems) {
  PREFSet* set = Load("gone");
  EXPECT_EQ(fs::file_size(path), 0U);
  const std::int32_t number = -5;
  const std::array<float, 4> edges = {1, 2.5F, 3, -4};
  EXPECT_EQ(PREFDelete(set, "item"), 0);
  EXPECT_EQ(PREFDelete(set, "item"), kPrefNotFound);
  EXPECT_EQ(PREFSetData(set, "number", "text", 4, "BYTE"_what), 0);
  EXPECT_EQ(PREFSetData(set, "number", &number, 4, "LONG"_what), 0) << "of another type";
  EXPECT_EQ(PREFSetData(set, "rect", edges.data(), 16, "RECT"_what), 0);
  EXPECT_EQ(PREFSetData(set, "text", nullptr, 0, "BYTE"_what), 0);
  EXPECT_EQ(PREFSetData(set, std::string(256, 'n').c_str(), "", 0, "BYTE"_what), -EINVAL);
  ASSERT_EQ(PREFSaveSet(set), 0);
  Message expected;
  expected.AddInt32("number", -5);
  expected.AddRect("rect", {1, 2.5F, 3, -4});
  expected.AddData("text", "BYTE"_what, "");
  const std::string body = expected.Flatten();
  EXPECT_EQ(Contents(path), std::string({static_cast<char>(body.size()), 0, 0, 0}) + body);

  ASSERT_EQ(PREFDisposeSet(&set), 0);
  EXPECT_EQ(set, nullptr);
  EXPECT_EQ(*PREFGetMessage(Load()), expected);
  EXPECT_EQ(fs::status(path).permissions(), fs::perms(0600));
  EXPECT_EQ(fs::status(directory).permissions(), fs::perms(0700));
  EXPECT_EQ(fs::status(directory / "..").permissions(), fs::perms(0700));
}

TEST_F(PrefsTest, HandlesAreCountedAndForgotten) {
  PREFApp* same = nullptr;
  ASSERT_EQ(PREFInit("test", &same), 0);
  EXPECT_EQ(same, app);
  PREFSet* const set = Load();
  PREFSet* again = Load();
  EXPECT_EQ(set, again);
  EXPECT_EQ(PREFRemoveSet(set), kPrefInUse);
  EXPECT_EQ(PREFDisposeSet(&again), 0);
  EXPECT_EQ(PREFRemoveSet(set), 0);
  EXPECT_FALSE(fs::exists(path));
  EXPECT_EQ(PREFSaveSet(set), kPrefNotFound);
  EXPECT_EQ(PREFRemoveApp(app), kPrefInUse);
  EXPECT_EQ(PREFShutdown(same), 0);
  EXPECT_EQ(PREFRemoveApp(app), 0);
  EXPECT_FALSE(fs::exists(directory));
  EXPECT_EQ(PREFShutdown(app), kPrefNotFound);
  EXPECT_EQ(PREFInit("a/b", &app), -EINVAL);
}

TEST_F(PrefsTest, AListenerHearsASaveElsewhereAndMayDropItsSet) {
  struct Heard {
    std::string text;
    std::atomic<int> calls = 0;
  } heard;
  const auto listener = [](PREFSet* set, void* cookie) {
    auto& note = *static_cast<Heard*>(cookie);
    if (PREFReloadSet(set) == 0) note.text = Get(set);
    PREFDisposeSet(&set);
    ++note.calls;
  };
  ::setenv("POLL_INTERVAL", "500000", 1);
  PREFApp* same = nullptr;
  ASSERT_EQ(PREFInit("test", &same), 0);
  const PREFListener never = [](PREFSet*, void*) { std::abort(); };
  PREFSet* quiet = nullptr;
  ASSERT_EQ(PREFLoadSet(app, "quiet", true, &quiet), 0);
  ASSERT_EQ(PREFListen(quiet, never, nullptr), 0) << "nothing changes";
  PREFSet* const set = Load();
  ASSERT_EQ(PREFListen(set, never, nullptr), 0);
  ASSERT_EQ(PREFListen(set, listener, &heard), 0) << "in place of the first";
  SaveElsewhere("news");
  EXPECT_TRUE(WaitFor([&] { return heard.calls != 0; }));
  EXPECT_EQ(heard.text, "news");
  EXPECT_EQ(PREFSaveSet(set), kPrefNotFound) << "dropped";
  EXPECT_EQ(PREFListen(Load(), listener, &heard), 0) << "ends with its application";
  EXPECT_EQ(PREFShutdown(same), 0);
}

TEST(ExternalLibrary, IsTakenOnlyWhereItIsWhole) {
  const std::string whole = "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22";
  std::string builtIn = "simple libprefs.so version 1.2.4";
  for (int i = 2; i <= 22; ++i) builtIn += i == 11 ? " 0" : " -22";
  const std::string here = fs::path(CORVANE_PREFS_CALLER).parent_path();
  const std::pair<std::string, std::string> cases[] = {
      {"", builtIn},
      {"LIBRARY_PATH=/nowhere:%A/whole:%A/part", whole},
      {"LIBRARY_PATH=%A/part:%A/whole", "PREFGetData\n" + builtIn},
      {"LIBRARY_PATH=%Awhole:" + here + "/%A/../whole", builtIn},
      {"LIBRARY_PATH=%A/part LD_LIBRARY_PATH=" + here + "/whole", whole}};
  for (const auto& [variables, expected] : cases) {
    const std::string command = "env -u LIBRARY_PATH " + variables + " " CORVANE_PREFS_CALLER;
    FILE* const program = ::popen(command.c_str(), "r");
    std::array<char, 400> output{};
    const std::size_t size = std::fread(output.data(), 1, output.size(), program);
    EXPECT_EQ(::pclose(program), 0);
    EXPECT_EQ(std::string(output.data(), size), expected) << variables;
  }
}

}  // namespace
}  // namespace corvane
