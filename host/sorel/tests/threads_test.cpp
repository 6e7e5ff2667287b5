// Worker threads of modules that call into scripts.
#include <gtest/gtest.h>

#include "sorel_run.h"

namespace {

struct Threads : testing::Test {
  SorelRun run;
};

TEST_F(Threads, AWorkerCallsAListenerWhileTheScriptSitsInANativeMethod) {
  EXPECT_EQ(run.Output("const p = new Probe();\np.listen({on(n) { return n + 1; }});\n"
                       "print(p.waitForWorker());\nexit(0);"),
            "21");
}
TEST_F(Threads, AWorkerCallsAListenerWhileTheScriptIsIdle) {
  EXPECT_EQ(run.Output("const p = new Probe();\nlet calls = 0;\n"
                       "p.listen({on(row) { if (row.Name === 'loose') ++calls; },"
                       " onLast(row) { print(calls, row.Name); exit(0); }});\n"
                       "p.callFromLooseWorker();"),
            "599 loose");
}
TEST_F(Threads, ListenersMaySetTimersFromAnyThread) {
  EXPECT_EQ(
      run.Output(
          "const p = new Probe();\n"
          "p.listen({on() {}, onLast() { setTimeout(t => { print('timer', t); exit(0); }, 1, 'set'); }});\n"
          "p.callFromLooseWorker();"),
      "timer set");
}
TEST_F(Threads, StormsOfCallsMeetTheScriptsOwn) {
  EXPECT_EQ(
      run.Output(
          "const p = new Probe();\nlet calls = 0, wrong = 0;\n"
          "p.listen({on(n, text) { ++calls; if (text !== 'text of a worker') ++wrong; p.answer(); }});\n"
          "p.startStorm(10, 1000);\n"
          "for (let i = 0; i < 2000; ++i) { if (p.answer() !== '192.168.1.17') ++wrong; p.list(3); }\n"
          "p.joinStorm();\nprint(calls, wrong);\nexit(0);"),
      "10000 0");
}
TEST_F(Threads, CallsAreRefusedOnceTheHostBeganToEnd) {
  const ProgramResult result = run.Run(
      "const p = new Probe();\nlet calls = 0;\n"
      "p.listen({on() { if (++calls === 100) exit(7); }});\n"
      "p.callUntilRefused();");
  EXPECT_EQ(result.status, 7);
  EXPECT_EQ(result.errors, "worker refused\n");
}
TEST_F(Threads, TheProgramEndsWithTimersAndWorkersUnderWay) {
  const ProgramResult result = run.Run(
      "const p = new Probe();\np.listen({on() {}});\nsetInterval(() => {}, 1);\nsetTimeout(() => {}, "
      "100000);\n"
      "p.startStorm(4, 100000);\nsetTimeout(() => exit(3), 5);");
  EXPECT_EQ(result.status, 3) << result.errors;
  EXPECT_EQ(result.errors, "");
}

}  // namespace
