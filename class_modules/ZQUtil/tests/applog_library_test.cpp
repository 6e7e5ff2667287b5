// With the application-log library installed. This program is linked with one of that name, which the loader gives out
// when the module asks for it.
#include <gtest/gtest.h>

#include "ZQUtilEntryPoints.h"
#include "module_fixture.h"

extern "C" {
extern void* stubRegistered;
extern int32_t stubUnregistered;
int32_t ZQLogApplicationActivity(const char* application, const char* action, const char* detail);
}

namespace {

class ApplogLibraryTest : public ModuleTest {
 protected:
  ApplogLibraryTest() {
    stubRegistered = nullptr;
    stubUnregistered = 0;
  }
};

TEST_F(ApplogLibraryTest, TheClassIsRegisteredAndTheAnswerIsTheModules) {
  EXPECT_EQ(Load(), 4711);
  EXPECT_EQ(stubRegistered, &engine.ClassObject());
}

TEST_F(ApplogLibraryTest, WithoutDefineMethodTheLibraryIsLoadedAllTheSame) {
  engine.Remove(ZQ_SLOT_DEFINE_METHOD);
  EXPECT_EQ(Load(), 4711);
}

TEST_F(ApplogLibraryTest, TheModulesEndUnregistersOnce) {
  Load();
  MM_TermWrapper();
  EXPECT_EQ(stubUnregistered, 1);
  MM_TermWrapper();
  EXPECT_EQ(stubUnregistered, 1) << "the library was let go";
}

TEST_F(ApplogLibraryTest, ASingletonKeepsTheLibrarysEntryPoint) {
  New();
  EXPECT_EQ(ZQUtil::m_pInstance->appLogActivity, &ZQLogApplicationActivity);
}

TEST_F(ApplogLibraryTest, ASingletonBuiltAfterTheModulesEndHasNone) {
  Load();
  MM_TermWrapper();
  New();
  EXPECT_EQ(ZQUtil::m_pInstance->appLogActivity, nullptr);
}

}  // namespace
