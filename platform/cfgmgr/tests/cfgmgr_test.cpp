#include "cfgmgr.h"

#include <gtest/gtest.h>

#include "environment_setting.h"
#include "temp_dir.h"

namespace {

TEST(UpdatesSuspended, IsWhatTheFileSaysAtEveryCall) {
  const TempDir folder;
  const EnvironmentSetting config("ZQ_CONFIG_DIR", folder.Path().c_str());
  EXPECT_EQ(areUpdatesSuspended(), 0) << "no file";
  struct {
    const char* bytes;
    int32_t answer;
  } const cases[] = {{"[updates]\nsuspended=yes\n", 1},
                     {"[updates]\nsuspended=no\n", 0},
                     {"[Updates]\nSuspended=TRUE", 1},
                     {"[updates]\nsuspended=1\n", 1},
                     {"[updates]\nsuspended=\n", 0},
                     {"[updates]\nsuspended=maybe\n", 0},
                     {"[other]\nsuspended=yes\n", 0},
                     {"suspended=yes", 0},
                     {"", 0},
                     {"[updates]\nsuspended=on", 1}};
  for (const auto& row : cases) {
    WriteFile(folder / "cfgmgr.ini", row.bytes);
    EXPECT_EQ(areUpdatesSuspended(), row.answer) << row.bytes;
  }
}

}  // namespace
