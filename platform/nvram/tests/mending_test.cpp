// What is done about which pair of copies.
#include "mending.h"

#include <gtest/gtest.h>

namespace {

using enum CopyState;

Mending Decide(std::initializer_list<CopyState> states) {
  return DecideMending({states.begin(), states.size()});
}

TEST(Mending, LeavesGoodCopiesAlone) {
  EXPECT_EQ(Decide({Good, Good}), Mending::Nothing);
}

TEST(Mending, RestoresABadCopyFromTheGoodOne) {
  for (const CopyState bad : {Damaged, Unusable, Missing}) {
    EXPECT_EQ(Decide({Good, bad}), Mending::SecondFromFirst);
    EXPECT_EQ(Decide({bad, Good}), Mending::FirstFromSecond);
  }
}

TEST(Mending, MakesAStoreOnlyWhereNoCopyIsThere) {
  EXPECT_EQ(Decide({Missing, Missing}), Mending::Make);
  EXPECT_EQ(Decide({Missing}), Mending::Make);
}

TEST(Mending, NeverMakesAStoreOverADamagedOne) {
  for (const CopyState first : {Damaged, Unusable, Missing}) {
    for (const CopyState second : {Damaged, Unusable, Missing}) {
      if (first == Missing && second == Missing) continue;
      EXPECT_EQ(Decide({first, second}), Mending::Lost);
    }
  }
  EXPECT_EQ(Decide({Damaged}), Mending::Lost);
  EXPECT_EQ(Decide({Unusable}), Mending::Lost);
}

TEST(Mending, LeavesDevicesToTheLibrary) {
  for (const CopyState other : {Good, Damaged, Unusable, Missing, Device}) {
    EXPECT_EQ(Decide({Device, other}), Mending::Nothing);
    EXPECT_EQ(Decide({other, Device}), Mending::Nothing);
  }
  EXPECT_EQ(Decide({Device}), Mending::Nothing);
}

}  // namespace
