#include <gtest/gtest.h>
#include <unistd.h>

#include <stdexcept>

#include "support/RealServers.h"
#include "support/TemporaryDirectory.h"

namespace corvane {
namespace {

// The session tests skip what cannot run; this one says so where it ought to run.
TEST(RealServers, AllStartWhereTheyCan) {
  for (const std::string& name : RealServer::Names()) {
    const bool possible = name != "pure-ftpd" || ::geteuid() == 0;
    EXPECT_EQ(RealServer::Obstacle(name).empty(), possible) << RealServer::Obstacle(name);
    if (!RealServer::Obstacle(name).empty()) continue;
    const TemporaryDirectory directory;
    EXPECT_NO_THROW(RealServer(name, directory.Path())) << name;
  }
}

}  // namespace
}  // namespace corvane
