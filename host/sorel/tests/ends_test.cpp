// How the program ends when it is told to: signals, and what is said when something is wrong.
#include <gtest/gtest.h>
#include <signal.h>

#include "sorel_run.h"
#include "terminal_program.h"

namespace {

struct Ends : testing::Test {
  // The script runs on a terminal, until it has printed "ready"; then the signal.
  int StatusAfter(int signal, const std::string& script) {
    run.AddFile("test.js", script);
    TerminalProgram program(run.Command("test.js"), {"PROBE_SAY=1"});
    EXPECT_TRUE(program.Await("ready\r\n")) << program.Screen();
    program.Signal(signal);
    const int status = program.AwaitEnd();
    screen = program.Screen();
    return status;
  }
  SorelRun run;
  std::string screen;
};

constexpr char kInOrder[] = "finalizer\r\nterm\r\nunload\r\n";

TEST_F(Ends, ASignalEndsAnIdleScriptInOrder) {
  for (const int signal : {SIGINT, SIGTERM}) {
    EXPECT_EQ(StatusAfter(signal, "const p = new Probe(); print('ready');"), 128 + signal);
    EXPECT_NE(screen.find(kInOrder), std::string::npos) << screen;
  }
}
TEST_F(Ends, ASignalEndsAScriptThatNeverReturns) {
  EXPECT_EQ(StatusAfter(SIGINT, "const p = new Probe(); print('ready'); while (true) {}"), 128 + SIGINT);
  EXPECT_NE(screen.find(kInOrder), std::string::npos) << screen;
  EXPECT_EQ(
      StatusAfter(SIGTERM,
                  "const p = new Probe(); print('ready'); for (;;) { try { p.answer() } catch (e) {} }"),
      128 + SIGTERM);
  EXPECT_NE(screen.find(kInOrder), std::string::npos) << screen;
}
TEST_F(Ends, ASignalEndsATimerThatNeverReturns) {
  EXPECT_EQ(StatusAfter(SIGINT, "setTimeout(() => { print('ready'); for (;;) {} }, 1)"), 128 + SIGINT);
}
TEST_F(Ends, ASecondSignalEndsAProgramThatIsStuckInANativeMethod) {
  run.AddFile("test.js", "const p = new Probe(); print('ready'); p.sleep(100000);");
  TerminalProgram program(run.Command("test.js"));
  ASSERT_TRUE(program.Await("ready"));
  program.Signal(SIGTERM);
  // Signals that follow at once are taken for the same request.
  for (int i = 0; i < 40 && kill(program.Id(), 0) == 0; ++i) {
    usleep(20000);
    program.Signal(SIGTERM);
  }
  EXPECT_EQ(program.AwaitEnd(), 128 + SIGTERM);
}

TEST_F(Ends, AnUncaughtErrorIsPrintedWithItsStack) {
  const ProgramResult result = run.Run("function f() {\n  nope();\n}\nprint('before');\nf();");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "before\n");
  const std::string file = run.File("test.js");
  EXPECT_EQ(result.errors, file + ":2:7: ReferenceError: Can't find variable: nope\n    f@" + file +
                               ":2:7\n    global code@" + file + ":5:2\n");
}
TEST_F(Ends, AnErrorInATimerEndsTheProgram) {
  const ProgramResult result = run.Run("setInterval(() => { throw new Error('late') }, 1)");
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.errors.find("Error: late"), std::string::npos);
}
TEST_F(Ends, AThrownValueThatIsNoErrorIsShown) {
  EXPECT_EQ(run.Run("throw 'just text'").errors, "just text\n");
  EXPECT_EQ(run.Run("throw {toString() { throw 1 }}").errors, "an error that has no text\n");
}
TEST_F(Ends, ASyntaxErrorIsOneLineWithItsPlace) {
  const ProgramResult result = run.Run("print(1);\n\nvar a = ;");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, run.File("test.js") + ":3: SyntaxError: Unexpected token ';'\n");
}

}  // namespace
