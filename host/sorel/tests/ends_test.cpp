// How the program ends when it is told to: signals, and what is said when something is wrong.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <stdexcept>

#include "child_process.h"
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
  run.AddFile("test.js", "new Probe().sleep(1000000);");
  TerminalProgram program(run.Command("test.js"), {"PROBE_SAY=1"});
  ASSERT_TRUE(program.Await("sleeps"));
  // Signals that follow at once are taken for the same request, and so are those that came before a process that was
  // not given the processor looked at the first.
  while (!program.HasEnded()) {
    program.Signal(SIGTERM);
    usleep(20000);
  }
  EXPECT_EQ(program.AwaitEnd(), 128 + SIGTERM);
  EXPECT_EQ(program.Screen().find("unload"), std::string::npos)
      << "not in order, as the method never returned";
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
  EXPECT_EQ(run.Run("throw {code: 7}").errors, "{\"code\":7}\n");
  EXPECT_EQ(run.Run("throw {toString() { throw 1 }}").errors, "an error that has no text\n");
}
TEST_F(Ends, ASyntaxErrorIsOneLineWithItsPlace) {
  const ProgramResult result = run.Run("print(1);\n\nvar a = ;");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, run.File("test.js") + ":3: SyntaxError: Unexpected token ';'\n");
}

TEST_F(Ends, ASyntaxErrorInALoadedScriptHasTheLineOfItsOwn) {
  run.AddFile("bad.js", "print(1);\n\nvar a =    ;");
  const ProgramResult result = run.Run("  load('bad.js');");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors.substr(0, result.errors.find('\n')),
            run.File("bad.js") + ":3: SyntaxError: Unexpected token ';'");
}

// A script whose standard output is a pipe that nobody reads yet.
class PipedScript {
 public:
  explicit PipedScript(const std::vector<std::string>& words) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    reader_ = ends[0];
    child_ = InChild([&] {
      dup2(ends[1], STDOUT_FILENO);
      std::vector<char*> arguments;
      for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
      arguments.push_back(nullptr);
      execv(arguments[0], arguments.data());
      return 127;
    });
    close(ends[1]);
  }
  PipedScript(const PipedScript&) = delete;
  PipedScript& operator=(const PipedScript&) = delete;
  ~PipedScript() { close(reader_); }

  // The exit status; a program that does not end is killed, which is -9.
  int AwaitEnd() const {
    for (int look = 0; look < 10000; ++look) {
      int status = 0;
      if (waitpid(child_, &status, WNOHANG) == child_) {
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
      }
      usleep(10000);
    }
    kill(child_, SIGKILL);
    return AwaitChild(child_);
  }
  void Signal(int signal) const { kill(child_, signal); }
  // Until the pipe takes no more for a while, with what the script printed.
  void AwaitFull() const {
    int before = -1;
    for (int now = 0; now == 0 || now != before; usleep(50000)) {
      before = now;
      ioctl(reader_, FIONREAD, &now);
    }
  }
  // To its end.
  std::string Read() const {
    std::string all;
    char block[4096];
    for (ssize_t count = 0; (count = read(reader_, block, sizeof block)) > 0;) {
      all.append(block, static_cast<size_t>(count));
    }
    return all;
  }

 private:
  int reader_;
  pid_t child_;
};

TEST_F(Ends, AModuleEndsTheProcessThoughNobodyReadsWhatItsScriptPrints) {
  run.AddFile("test.js", "new Probe().endProcessLater(7, 100); for (;;) print('a line that nobody reads');");
  EXPECT_EQ(PipedScript(run.Command("test.js")).AwaitEnd(), 7) << "the script's thread is in a write";
  run.AddFile("test.js", "print('x'.repeat(65535)); print('more'); new Probe().endProcess(7);");
  EXPECT_EQ(PipedScript(run.Command("test.js")).AwaitEnd(), 7) << "the pipe is full";
}

TEST_F(Ends, AModuleEndsTheProcessThoughAListenerWaitsForAScriptThatIsInAWrite) {
  run.AddFile("test.js",
              "const p = new Probe(); p.listen({on() {}}); p.callUntilRefused(); p.endProcessLater(7, 100);\n"
              "for (;;) print('a line that nobody reads');");
  EXPECT_EQ(PipedScript(run.Command("test.js")).AwaitEnd(), 7);
}

TEST_F(Ends, ASignalEndsAScriptForWhichAListenerWaitsWhenItsWriteIsThrough) {
  run.AddFile("test.js",
              "const p = new Probe(); p.listen({on() {}, onLast() {}}); p.callFromLooseWorker();\n"
              "for (;;) print('a line that nobody reads');");
  const PipedScript script(run.Command("test.js"));
  script.AwaitFull();
  script.Signal(SIGTERM);
  script.Read();
  EXPECT_EQ(script.AwaitEnd(), 128 + SIGTERM);
}

TEST_F(Ends, WhatWasPrintedBeforeAModuleEndedTheProcessIsThere) {
  run.AddFile("test.js", "print('last words'); new Probe().endProcess(7);");
  const PipedScript script(run.Command("test.js"));
  EXPECT_EQ(script.AwaitEnd(), 7);
  EXPECT_EQ(script.Read(), "last words\n");
}

TEST_F(Ends, AReaderThatTakesItsTimeMissesNothing) {
  run.AddFile("test.js", "print('x'.repeat(65535)); print('more');");
  const PipedScript script(run.Command("test.js"));
  usleep(2000000);  // longer than a module's end would wait
  EXPECT_EQ(script.Read(), std::string(65535, 'x') + "\nmore\n");
  EXPECT_EQ(script.AwaitEnd(), 0);
}

}  // namespace
