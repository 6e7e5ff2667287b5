// The command line, and modules that are loaded or cannot be.
#include <gtest/gtest.h>

#include "sorel_run.h"

namespace {

ProgramResult Sorel(std::vector<std::string> words, const ProgramSetting& setting = {}) {
  words.insert(words.begin(), SorelProgram());
  return RunProgram(words, setting);
}

TEST(Modules, TheClassHasTheNameOfTheFile) {
  SorelRun run;
  EXPECT_EQ(run.Output("print(typeof Probe, typeof ZQUtil)"), "function undefined");
}
TEST(Modules, SeveralEndInReverseOrder) {
  SorelRun run;
  run.AddFile("test.js", "const a = new Probe(), b = new Other(); setTimeout(() => exit(0), 1);");
  const ProgramResult result =
      Sorel({"--module", TestModule("Probe"), "--module", TestModule("Other"), run.File("test.js")},
            {.environment = {"PROBE_SAY=1"}});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "load\ninit\nother init\nfinalizer\nother finalizer\nother term\nterm\nunload\n");
}
TEST(Modules, AModuleThatKnowsFewerServicesDefinesItsClass) {
  SorelRun run;
  run.AddFile("test.js", "print(new Other().answer(1, 2)); exit(0)");
  const ProgramResult result = Sorel({"--module", TestModule("Other"), run.File("test.js")});
  EXPECT_EQ(result.output, "2\n") << result.errors;
}
TEST(Modules, AMissingEntryPointIsNamed) {
  SorelRun run;
  run.AddFile("test.js", "print('never')");
  const ProgramResult result = Sorel({"--module", TestModule("Partial"), run.File("test.js")});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors,
            "sorel: " + TestModule("Partial") + ": no class module: MM_TermWrapper is missing\n");
}
TEST(Modules, ModulesBeforeOneThatFailsAreEnded) {
  SorelRun run;
  run.AddFile("test.js", "print('never')");
  const ProgramResult result =
      Sorel({"--module", TestModule("Probe"), "--module", "/nowhere/M.so", run.File("test.js")},
            {.environment = {"PROBE_SAY=1"}});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors.find("load\ninit\nterm\nunload\nsorel: /nowhere/M.so: cannot open"), 0U)
      << result.errors;
}
TEST(Modules, WhatAModuleLogsGoesToTheTrace) {
  SorelRun run;
  run.AddFile("test.js", "");
  const ProgramResult traced =
      Sorel({"--trace", "--module", TestModule("Probe"), run.File("test.js")}, {.environment = {"ZQ_TRACE"}});
  EXPECT_NE(traced.errors.find("sorel"), std::string::npos);
  EXPECT_NE(traced.errors.find("probe starts\n"), std::string::npos);
  const ProgramResult off = Sorel({"--trace", "--module", TestModule("Probe"), run.File("test.js")},
                                  {.environment = {"ZQ_TRACE=off"}});
  EXPECT_EQ(off.errors, "");
}

TEST(CommandLine, HelpAndVersion) {
  EXPECT_EQ(
      Sorel({"--help"}).output.find("usage: sorel [--device DIR] [--trace] [--module FILE]... [SCRIPT]\n"),
      0U);
  EXPECT_EQ(Sorel({"--version"}).output.find("sorel "), 0U);
}
TEST(CommandLine, WhatIsWrongIsOneLine) {
  EXPECT_EQ(Sorel({"--nope"}).errors, "sorel: unknown option --nope; see sorel --help\n");
  EXPECT_EQ(Sorel({"--nope"}).status, 2);
  EXPECT_EQ(Sorel({"--module"}).errors, "sorel: --module needs a file\n");
  EXPECT_EQ(Sorel({"--device", ""}).errors, "sorel: --device needs a folder\n");
  EXPECT_EQ(Sorel({"a.js", "b.js"}).errors, "sorel: one script at a time, and no arguments for it: b.js\n");
}
TEST(CommandLine, AScriptThatIsMissingIsNamed) {
  const ProgramResult result = Sorel({"--module", TestModule("Probe"), "/nowhere/none.js"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "sorel: /nowhere/none.js: No such file or directory\n");
  EXPECT_EQ(Sorel({"--module", TestModule("Probe"), "/tmp"}).errors, "sorel: /tmp: Is a directory\n");
  // A program that zqsim starts on a device no longer stands where its caller does.
  EXPECT_EQ(Sorel({"--module", TestModule("Probe"), "none.js"}, {.environment = {"ZQ_DEVICE=/d"}}).errors,
            "sorel: none.js: No such file or directory (looked for in the device's folder)\n");
  EXPECT_EQ(Sorel({"--module", TestModule("Probe"), "none.js"}).errors,
            "sorel: none.js: No such file or directory\n");
}
TEST(CommandLine, StandardInputIsAScriptUnlessItIsATerminal) {
  SorelRun run;
  run.AddFile("in.js", "print('from stdin'); nope()");
  for (const char* dash : {"", " -"}) {
    const ProgramResult result = RunProgram(
        {"sh", "-c", SorelProgram() + " --module " + TestModule("Probe") + dash + " < " + run.File("in.js")});
    EXPECT_EQ(result.output, "from stdin\n");
    EXPECT_EQ(result.errors.find("<stdin>:1:"), 0U) << result.errors;
  }
}

}  // namespace
