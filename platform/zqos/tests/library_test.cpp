#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "temp_dir.h"
#include "trace_capture.h"
#include "zq_file.h"
#include "zq_lazy_library.h"
#include "zq_system.h"

namespace {

namespace fs = std::filesystem;

std::string PathOfZqos() {
  Dl_info info{};
  EXPECT_NE(dladdr(reinterpret_cast<const void*>(&zq_LoadLibrary), &info), 0);
  return info.dli_fname;
}

// The platform installed in a folder of its own.
class ElsewhereTest : public testing::Test {
 protected:
  ElsewhereTest() {
    fs::copy_file(PathOfZqos(), folder_ / "libzqos.so");
    zqos_ = dlopen((folder_ / "libzqos.so").c_str(), RTLD_NOW | RTLD_LOCAL);
  }
  ~ElsewhereTest() override {
    if (zqos_ != nullptr) dlclose(zqos_);
  }

  void* Load(const char* name) const {
    return reinterpret_cast<decltype(&zq_LoadLibrary)>(dlsym(zqos_, "zq_LoadLibrary"))(name);
  }

  TempDir folder_;
  void* zqos_ = nullptr;
};

TEST(Library, OfTheSystemIsLoadedByItsName) {
  void* library = zq_LoadLibrary("libm.so.6");
  ASSERT_NE(library, nullptr);
  EXPECT_NE(zq_GetProcAddress(library, "cos"), nullptr);
  EXPECT_EQ(zq_GetProcAddress(library, "no_such_function"), nullptr);
  zq_FreeLibrary(library);
}

TEST(Library, IsLoadedByItsPath) {
  void* library = zq_LoadLibrary(PathOfZqos().c_str());
  ASSERT_NE(library, nullptr);
  EXPECT_EQ(zq_GetProcAddress(library, "zq_LoadLibrary"), reinterpret_cast<void*>(&zq_LoadLibrary));
  zq_FreeLibrary(library);
}

TEST(Library, ThatIsNotInstalledIsNullAndNoFailure) {
  const TraceCapture trace;
  EXPECT_EQ(zq_LoadLibrary("libnot-here.so"), nullptr);
  EXPECT_EQ(zq_LoadLibrary("/nowhere/libnot-here.so"), nullptr);
  EXPECT_TRUE(trace.Texts().empty());
}

TEST(Library, WithoutANameIsNotTheProgramItself) {
  EXPECT_EQ(zq_LoadLibrary(nullptr), nullptr);
  EXPECT_EQ(zq_LoadLibrary(""), nullptr);
  EXPECT_EQ(zq_GetProcAddress(nullptr, "malloc"), nullptr);
  zq_FreeLibrary(nullptr);
}

TEST_F(ElsewhereTest, LibrariesAreFoundBesideThePlatform) {
  fs::copy_file(folder_ / "libzqos.so", folder_ / "libonly-here.so");
  ASSERT_NE(zqos_, nullptr) << dlerror();
  void* library = Load("libonly-here.so");
  EXPECT_NE(library, nullptr);
  zq_FreeLibrary(library);
  EXPECT_EQ(zq_LoadLibrary("libonly-here.so"), nullptr) << "not beside this one";
}

TEST_F(ElsewhereTest, ABrokenOneBesideThePlatformIsNotReplacedByTheSystems) {
  WriteFile(folder_ / "libm.so.6",
            "this is no library, and long enough to be looked at as one by the system's loader");
  ASSERT_NE(zqos_, nullptr) << dlerror();
  const TraceCapture trace;
  EXPECT_EQ(Load("libm.so.6"), nullptr);
  EXPECT_THAT(trace.Texts(), testing::ElementsAre(testing::HasSubstr(folder_ / "libm.so.6")));
  void* systems = Load("libdl.so.2");
  EXPECT_NE(systems, nullptr);
  zq_FreeLibrary(systems);
}

}  // namespace

// The program's own, where a library has one of the same name.
extern "C" __attribute__((visibility("default"))) const char* zlibVersion() {
  return "the program's";
}

namespace {

using Version = const char* (*)();

TEST(LazyLibrary, AloneIsNotMistakenForTheProgram) {
  zq_LazyLibrary zlib("libz.so.1");
  ASSERT_TRUE(zlib.Load());
  EXPECT_STRNE(reinterpret_cast<Version>(zlib.Symbol("zlibVersion"))(), "the program's");
}

TEST(LazyLibrary, LeavesWhatTheProcessHasToTheProcess) {
  zq_LazyLibrary zlib("libz.so.1", zq_LazyLibrary::kProcessFirst);
  ASSERT_TRUE(zlib.Load());
  EXPECT_STREQ(reinterpret_cast<Version>(zlib.Symbol("zlibVersion"))(), "the program's");
  EXPECT_NE(zlib.Symbol("zlibCompileFlags"), nullptr) << "which the process has not";
}

zq_LazyLibrary g_missing("libnot-here.so");
ZQ_PASS_ON_OR_NOTHING(g_missing, const char*, TextOfNoLibrary, (int number), (number))

TEST(LazyLibrary, AnswersNothingWhereItIsMissing) {
  EXPECT_EQ(TextOfNoLibrary(1), nullptr);
}

TEST(LazyLibrary, SaysThatItIsNotInstalled) {
  zq_LazyLibrary missing("libnot-here.so", zq_LazyLibrary::kProcessFirst);
  const TraceCapture trace;
  EXPECT_FALSE(missing.Load());
  EXPECT_THAT(trace.Texts(), testing::ElementsAre(testing::HasSubstr("libnot-here.so is not installed")));
}

}  // namespace
