// The ends of module objects: each is finalized once, on the script thread, and the program ends with the
// last one.
#include <gtest/gtest.h>

#include "sorel_run.h"

namespace {

class Finalizers : public testing::Test {
 protected:
  Finalizers() { run_.setting.environment = {"PROBE_SAY=1"}; }
  // What the module said, lines joined by commas.
  std::string Said(const std::string& script, int status = 0) {
    const ProgramResult result = run_.Run(script);
    EXPECT_EQ(result.status, status) << result.errors;
    std::string said = result.errors.substr(0, result.errors.empty() ? 0 : result.errors.size() - 1);
    for (char& c : said) {
      if (c == '\n') c = ',';
    }
    return said;
  }
  SorelRun run_;
};

TEST_F(Finalizers, DroppedObjectsEndTheProgram) {
  EXPECT_EQ(Said("new Probe(); new Probe();"), "load,init,finalizer,finalizer,term,unload");
}
TEST_F(Finalizers, AScriptWithoutObjectsEndsAtOnce) {
  EXPECT_EQ(Said("print(1)"), "load,init,term,unload");
}
TEST_F(Finalizers, ObjectsThatAreReachableAreFinalizedWhenTheProgramEnds) {
  EXPECT_EQ(Said("const a = new Probe(), b = new Probe(); setTimeout(() => exit(0), 1)"),
            "load,init,finalizer,finalizer,term,unload");
}
TEST_F(Finalizers, AnUncaughtErrorEndsInOrderToo) {
  const std::string said = Said("const a = new Probe(); nope();", 1);
  EXPECT_EQ(said.find("load,init,"), 0U);
  EXPECT_NE(said.find("ReferenceError: Can't find variable: nope,"), std::string::npos) << said;
  EXPECT_EQ(said.substr(said.size() - 21), "finalizer,term,unload");
}
TEST_F(Finalizers, TheyDoNotRunInsideACollection) {
  EXPECT_EQ(run_.Run("function drop() { for (let i = 0; i < 100; ++i) new Probe(); }\ndrop(); gc();\n"
                     "print(new Probe().counts());")
                .output,
            "101/0\n");
}
TEST_F(Finalizers, AThousandDroppedObjectsAreFinalizedOnceEach) {
  run_.setting.environment = {};
  EXPECT_EQ(run_.Output("function make(n) { for (let i = 0; i < n; ++i) new Probe(); }\n"
                        "const keeper = new Probe();\n"
                        "make(1000); gc();\n"
                        "let tries = 0;\n"
                        "function check() {\n"
                        "  gc();\n"
                        "  const [made, ended] = keeper.counts().split('/').map(Number);\n"
                        // One or two may be hidden by words on the stack.
                        "  if (ended >= 990 && ended <= 1000) { print(made, 'made'); exit(0); }\n"
                        "  if (++tries < 100) setTimeout(check, 1); else { print(made, ended); exit(1); }\n"
                        "}\n"
                        "setTimeout(check, 1);"),
            "1001 made");
}
TEST_F(Finalizers, AllAreFinalizedAtTheEndHoweverManyWereBefore) {
  const std::string said =
      Said("for (let i = 0; i < 300; ++i) new Probe(); gc(); setTimeout(() => exit(0), 1);");
  size_t count = 0;
  for (size_t at = said.find("finalizer,"); at != std::string::npos; at = said.find("finalizer,", at + 1))
    ++count;
  EXPECT_EQ(count, 300U);
  EXPECT_EQ(said.find("another"), std::string::npos);
  EXPECT_EQ(said.find("before"), std::string::npos);
}
TEST_F(Finalizers, ObjectsMayBeMadeAgainAfterTheLastWasFinalized) {
  run_.setting.environment = {};
  EXPECT_EQ(
      run_.Output(
          "function use() { return new Probe().answer(); }\n"
          "let rounds = 0;\n"
          "const timer = setInterval(() => { use(); gc(); if (++rounds === 20) clearInterval(timer); }, 1);"),
      "");
}

}  // namespace
