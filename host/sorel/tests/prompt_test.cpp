// The prompt, typed at through a terminal.
#include <gtest/gtest.h>
#include <signal.h>

#include "sorel_run.h"
#include "terminal_program.h"

namespace {

class Prompt : public testing::Test {
 protected:
  TerminalProgram& Start() {
    program_ = std::make_unique<TerminalProgram>(
        std::vector<std::string>{SorelProgram(), "--module", TestModule("Probe")},
        std::vector<std::string>{"XDG_STATE_HOME=" + home_.Path().string(), "TERM=xterm",
                                 "INPUTRC=/dev/null"});
    EXPECT_TRUE(program_->Await("> "));
    return *program_;
  }
  TempDir home_;
  std::unique_ptr<TerminalProgram> program_;
};

TEST_F(Prompt, ShowsWhatALineGives) {
  TerminalProgram& program = Start();
  program.Type("6 * 7\r");
  EXPECT_TRUE(program.Await("42\r\n"));
  program.Type("({a: 'x'})\r");
  EXPECT_TRUE(program.Await("{\"a\":\"x\"}\r\n"));
  program.Type("'te' + 'xt'\r");
  EXPECT_TRUE(program.Await("\"text\"\r\n"));
  program.Type("const kept = 5\rkept + 1\r");
  EXPECT_TRUE(program.Await("6\r\n"));
}
TEST_F(Prompt, AnErrorIsALineAndThePromptGoesOn) {
  TerminalProgram& program = Start();
  program.Type("nope\r");
  EXPECT_TRUE(program.Await("ReferenceError: Can't find variable: nope\r\n"));
  program.Type("setTimeout(() => { throw new Error('la' + 'ter') }, 1)\r");
  EXPECT_TRUE(program.Await("Error: later\r\n"));
  program.Type("1 + 1\r");
  EXPECT_TRUE(program.Await("2\r\n"));
}
TEST_F(Prompt, CompletesMethodsOfTheObjectBeforeTheDot) {
  TerminalProgram& program = Start();
  program.Type("const p = new Probe()\r");
  EXPECT_TRUE(program.Await("Probe()\r\n"));
  program.Type("p.hasPr\t()\r");
  EXPECT_TRUE(program.Await("p.hasPrivate()"));
  EXPECT_TRUE(program.Await("1\r\n"));
  program.Type("setInt\t\r");
  EXPECT_TRUE(program.Await("setInterval"));
  program.Type("globalThis.clearT\t.name\r");
  EXPECT_TRUE(program.Await("\"clearTimeout\""));
}
TEST_F(Prompt, CompletesNamesThatAreDeclared) {
  TerminalProgram& program = Start();
  program.Type("const longName = 'declared'\r{ let longInside = 1 }\r");
  program.Type("longN\t\r");
  EXPECT_TRUE(program.Await("\"declared\"\r\n")) << program.Screen();
  // What has gone with its block is not offered.
  program.Type("print('<' + 'longI\t>')\r");
  EXPECT_TRUE(program.Await("<longI>\r\n")) << program.Screen();
}
TEST_F(Prompt, ShowsTheArgumentsOfTheCallThatIsBegun) {
  TerminalProgram& program = Start();
  program.Type("setTimeout(\t");
  EXPECT_TRUE(program.Await("setTimeout(callback: ")) << program.Screen();
  program.Type("() => print(load(\t");
  EXPECT_TRUE(program.Await("load(path: string): unknown")) << program.Screen();
  program.Type("'a'), \t");
  EXPECT_TRUE(program.Await("print(...values: unknown[]): void")) << program.Screen();
}
TEST_F(Prompt, APieceThatIsNotFinishedGoesOnInTheNextLine) {
  TerminalProgram& program = Start();
  program.Type("const twice = (n) => {\r");
  EXPECT_TRUE(program.Await("... "));
  program.Type("\r  return n * 2\r}\r");
  program.Type("twice(21)\r");
  EXPECT_TRUE(program.Await("42\r\n")) << program.Screen();
  program.Type("`one\rtwo`\r");
  EXPECT_TRUE(program.Await("\"one\\ntwo\"\r\n")) << program.Screen();
  program.Type("1 /* two\r*/ + 1\r");
  EXPECT_TRUE(program.Await("2\r\n")) << program.Screen();
  // Nothing that follows would mend these.
  for (const std::string line : {"'one", "\"one", "1 = ;", "}"}) {
    program.Type(line + "\r");
    EXPECT_TRUE(program.Await("SyntaxError: ")) << program.Screen();
  }
}
TEST_F(Prompt, AnInterruptDropsWhatIsTypedAndEndsTheHostWhenNothingIs) {
  TerminalProgram& program = Start();
  program.Type("globalThis.gone = [\r1, 2");
  EXPECT_TRUE(program.Await("... 1, 2"));
  program.Signal(SIGINT);
  EXPECT_TRUE(program.Await("^C\r\n> ")) << program.Screen();
  program.Type("typeof gone + 0\r");
  EXPECT_TRUE(program.Await("\"undefined0\"\r\n")) << program.Screen();
  program.Type(".exit\r");
  EXPECT_EQ(program.AwaitEnd(), 0);
  Start().Signal(SIGINT);
  EXPECT_EQ(program_->AwaitEnd(), 128 + SIGINT);
  EXPECT_FALSE(program_->IsRaw());
}
TEST_F(Prompt, TakesTheTerminalAgainAfterAStop) {
  TerminalProgram& program = Start();
  program.Stop();
  program.MakeCooked();
  program.Signal(SIGCONT);
  EXPECT_TRUE(program.Await("> ")) << program.Screen();
  EXPECT_TRUE(program.IsRaw());
  program.Type("6 * 7\r");
  EXPECT_TRUE(program.Await("42\r\n")) << program.Screen();
}
TEST_F(Prompt, ATerminationEndsTheHostWhateverIsTyped) {
  Start().Type("[1, 2");
  EXPECT_TRUE(program_->Await("[1, 2"));
  program_->Signal(SIGTERM);
  EXPECT_EQ(program_->AwaitEnd(), 128 + SIGTERM);
}
TEST_F(Prompt, ValuesWiderThanTheScreenHaveALineForEachElement) {
  TerminalProgram& program = Start();
  program.Type("Array.from('ab', (c) => c.repeat(120))\r");
  EXPECT_TRUE(program.Await("[\r\n  \"" + std::string(120, 'a') + "\",\r\n  \"" + std::string(120, 'b') +
                            "\"\r\n]\r\n"))
      << program.Screen();
}
TEST_F(Prompt, ACommandThatThereIsNotIsSaid) {
  TerminalProgram& program = Start();
  program.Type(".halp\r");
  EXPECT_TRUE(program.Await("no command .halp: .help says what there is\r\n")) << program.Screen();
  program.Type(".5 + 1\r");
  EXPECT_TRUE(program.Await("1.5\r\n")) << program.Screen();
  program.Type(".help \r");
  EXPECT_TRUE(program.Await(".help METHOD")) << program.Screen();
}
TEST_F(Prompt, TimersAndListenersGoOnWhileItWaits) {
  TerminalProgram& program = Start();
  program.Type("const p = new Probe(); p.listen({on() {}, onLast(row) { print('from ' + row.Name) }})\r");
  program.Type("setTimeout(() => print('tim' + 'er'), 5)\r");
  EXPECT_TRUE(program.Await("timer\r\n"));
  EXPECT_TRUE(program.Await("> "));
  program.Type("p.callFromLooseWorker()\r");
  EXPECT_TRUE(program.Await("from loose\r\n"));
}
TEST_F(Prompt, RemembersLines) {
  Start().Type("'remem' + 'bered'\r.exit\r");
  EXPECT_EQ(program_->AwaitEnd(), 0);
  Start().Type("\x1b[A\x1b[A\r");
  EXPECT_TRUE(program_->Await("\"remembered\"")) << program_->Screen();
}
TEST_F(Prompt, HelpIsGiven) {
  Start().Type(".help\r");
  EXPECT_TRUE(program_->Await(".exit"));
}
TEST_F(Prompt, TellsWhatAMethodDoes) {
  TerminalProgram& program = Start();
  program.Type(".help setTimeout\r");
  EXPECT_TRUE(program.Await("setTimeout(callback")) << program.Screen();
  EXPECT_TRUE(program.Await("Calls `callback` once.")) << program.Screen();
  program.Type(".help util.GETIP()\r");
  EXPECT_TRUE(program.Await("getIP(): string\r\n")) << program.Screen();
  program.Type(".help nothingOfThatName\r");
  EXPECT_TRUE(program.Await("no help for \"nothingOfThatName\"")) << program.Screen();
}
TEST_F(Prompt, CompletesTheNamesThatThereIsHelpFor) {
  Start().Type(".help setPrimaryN\t\r");
  EXPECT_TRUE(program_->Await("setPrimaryNTPServer(")) << program_->Screen();
}
TEST_F(Prompt, ShowsTheArgumentsOfTheCandidates) {
  Start().Type("clear\t\t");
  EXPECT_TRUE(program_->Await("clearInterval(id?: number): void")) << program_->Screen();
  program_->Type("\x15.exit\r");
  EXPECT_EQ(program_->AwaitEnd(), 0);
}
TEST_F(Prompt, EveryWayOutGivesTheTerminalBack) {
  for (const std::string keys : {".exit\r", "\x04", "exit(0)\r"}) {
    Start().Type(keys);
    EXPECT_EQ(program_->AwaitEnd(), 0) << program_->Screen();
    EXPECT_FALSE(program_->IsRaw());
  }
  Start().Signal(SIGTERM);
  EXPECT_EQ(program_->AwaitEnd(), 128 + SIGTERM);
  EXPECT_FALSE(program_->IsRaw());
  Start().Type("new Probe().endProcess(9)\r");
  EXPECT_EQ(program_->AwaitEnd(), 9);
  EXPECT_FALSE(program_->IsRaw());
}

}  // namespace
