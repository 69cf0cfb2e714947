#include "net/NLDebug.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace corvane {
namespace {

struct NLDebugTest : testing::Test {
  ~NLDebugTest() override { NLDebug::m_on = false; }

  static std::string Dump(const std::string& data) {
    testing::internal::CaptureStdout();
    NLDebug::dump(data.data(), data.size(), "title");
    return testing::internal::GetCapturedStdout();
  }
  static std::string Repeat(const std::string& text, int times) {
    std::string result;
    while (times-- > 0) result += text;
    return result;
  }
};

TEST_F(NLDebugTest, DumpsLinesOfSixteen) {
  NLDebug::m_on = true;
  const std::string line = Repeat("61 ", 16) + "  |  " + std::string(16, 'a') + "\n";
  const std::pair<std::string, std::string> cases[] = {
      {"", "  |  "},
      {std::string("\xFF\n~", 3), "ff 0a 7e " + Repeat("   ", 13) + "  |  ..~"},
      {std::string(15, 'a'), Repeat("61 ", 15)},
      {std::string(16, 'a'), line + "  |  "},
      {std::string(17, 'a'), line + "61 " + Repeat("   ", 15) + "  |  a"},
      {std::string(31, 'a'), line + Repeat("61 ", 15)},
  };
  for (const auto& [data, body] : cases) {
    EXPECT_EQ(Dump(data), "----------\ntitle\n(dumping " + std::to_string(data.size()) +
                              " bytes)\n" + body + "\n----------\n");
  }
}

TEST_F(NLDebugTest, TracesToStandardErrorAndOnlyWhenOn) {
  testing::internal::CaptureStderr();
  NLDebug::print("unseen");
  ::setenv("CORVANE_NET_DEBUG", "1", 1);
  NLDebug::switchOnFromEnvironment();
  NLDebug::print("seen");
  NLDebug::print(nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "debug: seen\ndebug: \n");
  ::setenv("CORVANE_NET_DEBUG", "0", 1);
  NLDebug::switchOnFromEnvironment();
  EXPECT_EQ(Dump("unseen"), "");
}

}  // namespace
}  // namespace corvane
