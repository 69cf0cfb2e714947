#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "settings/Access.h"
#include "support/TemporaryDirectory.h"

namespace corvane {

/// A user without preferences, for one test.
class ConfigTest : public testing::Test {
 protected:
  ConfigTest() { ::setenv("XDG_CONFIG_HOME", home_.Path().c_str(), 1); }

  /// The file of a preference set.
  [[nodiscard]] std::filesystem::path File(const char* set) const {
    return home_.Path() / "_LP_x-ovak-Corvane" / set;
  }
  static void Put(const char* set, const char* name, std::int32_t value) {
    PreferenceSet open(set);
    SaveInt32(open, name, value);
    open.Save();
  }
  static void Put(const char* set, const char* name, const std::string& text) {
    PreferenceSet open(set);
    SaveString(open, name, text);
  }

  TemporaryDirectory home_;
};

}  // namespace corvane
