// What every script finds: output, timers, load, exit, gc, jobs.
#include <gtest/gtest.h>

#include "sorel_run.h"

namespace {

struct Globals : testing::Test {
  SorelRun run;
};

TEST_F(Globals, PrintJoinsItsArgumentsWithBlanks) {
  EXPECT_EQ(run.Output("print('a', 1.5, null, [1, 2], {}); print(); print('ü😀')"),
            "a 1.5 null 1,2 [object Object]\n\nü😀");
}
TEST_F(Globals, ConsoleShowsObjectsByTheirContents) {
  EXPECT_EQ(run.Output("console.log('a', {b: [1, 'x']}); console.info(print); console.debug([])"),
            "a {\"b\":[1,\"x\"]}\n[function print]\n[]");
}
TEST_F(Globals, ConsoleShowsWhatJsonHasNoWordsFor) {
  EXPECT_EQ(run.Output(
                "console.log(new Map([['a', {b: 1}]]), new Set([1, 'x']), /x/g, Symbol('s'), [Symbol('t')])"),
            "Map {\"a\" => {\"b\":1}} Set {1,\"x\"} /x/g Symbol(s) [Symbol(t)]");
  EXPECT_EQ(
      run.Output("console.log([undefined, null, -0, 2n, , () => 1], {u: undefined, f() {}}, new Date(0))"),
      "[undefined,null,-0,2n,undefined,[function]] {\"u\":undefined,\"f\":[function f]} "
      "Date \"1970-01-01T00:00:00.000Z\"");
  EXPECT_EQ(
      run.Output(
          "class Row { at = [1] }; console.log(new Row(), Row, new Uint8Array(2), Object.create(null))"),
      "Row {\"at\":[1]} [class Row] Uint8Array [0,0] {}");
  EXPECT_EQ(run.Output("const o = {n: 1}; o.self = [o]; o.again = o.self; console.log(o)"),
            "{\"n\":1,\"self\":[[circular]],\"again\":[[circular]]}");
  EXPECT_EQ(
      run.Output("console.log({get bad() { throw 1 }, good: 2}, new Proxy({}, {ownKeys() { throw 1 }}))"),
      "{\"bad\":[throws],\"good\":2} [object Object]");
  EXPECT_EQ(run.Output("let deep = 1; for (let i = 0; i < 100000; i++) deep = [deep]; console.log(deep)"),
            std::string(32, '[') + "[more]" + std::string(32, ']'));
}
TEST_F(Globals, WarningsAndErrorsGoToStderr) {
  const ProgramResult result = run.Run("console.warn('w'); console.error('e', 1); print('p')");
  EXPECT_EQ(result.errors, "w\ne 1\n");
  EXPECT_EQ(result.output, "p\n");
}

TEST_F(Globals, TimersRunInTheOrderOfTheirTimes) {
  // Set anew until it took no time worth speaking of, or the last two would be due after the first.
  EXPECT_EQ(run.Output("let set = [];\n"
                       "for (let begun; set.length === 0 || Date.now() - begun > 10;) {\n"
                       "  set.forEach(clearTimeout);\n"
                       "  begun = Date.now();\n"
                       "  set = [setTimeout(print, 20, 'third', 3), setTimeout(print, 1, 'first'),\n"
                       "         setTimeout(print, 1, 'second')];\n"
                       "}\n"
                       "print('now')"),
            "now\nfirst\nsecond\nthird 3");
}
TEST_F(Globals, IntervalsRepeatUntilCleared) {
  EXPECT_EQ(run.Output("let n = 0; const id = setInterval(s => { print(s, ++n); if (n === 3) "
                       "clearInterval(id); }, 1, 'n')"),
            "n 1\nn 2\nn 3");
}
TEST_F(Globals, ClearedTimersDoNotRun) {
  EXPECT_EQ(
      run.Output(
          "clearTimeout(setTimeout(print, 1, 'never')); clearTimeout(99); clearTimeout(); clearTimeout('x');"
          "setTimeout(() => clearTimeout(later), 1); const later = setTimeout(print, 2, 'never');"),
      "");
}
TEST_F(Globals, ATimerNeedsAFunction) {
  EXPECT_EQ(run.Output("try { setTimeout('text', 1) } catch (e) { print(e.message) }"),
            "a timer needs a function to call");
}
TEST_F(Globals, TimersKeepTheirFunctionsAlive) {
  EXPECT_EQ(run.Output("setTimeout((() => { const o = {v: 'kept'}; return () => print(o.v); })(), 5); gc();"),
            "kept");
}

TEST_F(Globals, JobsRunAfterTheScriptAndBeforeTimers) {
  EXPECT_EQ(run.Output("const p = new Probe(); setTimeout(() => { print('timer'); exit(0); }, 1);"
                       "Promise.resolve().then(() => print('job')); p.nothing(); print('script');"),
            "script\njob\ntimer");
}
TEST_F(Globals, AwaitedTimersContinue) {
  EXPECT_EQ(run.Output("(async () => { for (let i = 0; i < 3; ++i) { await new Promise(r => setTimeout(r, "
                       "1)); print(i); } })()"),
            "0\n1\n2");
}
TEST_F(Globals, ARejectionThatNobodyHandlesIsAnUncaughtError) {
  const ProgramResult result = run.Run("Promise.reject(new Error('unseen')); setTimeout(print, 5, 'never')");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_NE(result.errors.find("Error: unseen"), std::string::npos);
}

TEST_F(Globals, LoadIsRelativeToTheScriptThatCallsIt) {
  std::filesystem::create_directory(run.File("sub"));
  run.AddFile("sub/one.js", "load('two.js'); function later() { load('two.js'); } 'value'");
  run.AddFile("sub/two.js", "print('two')");
  EXPECT_EQ(run.Output("print(load('sub/one.js')); later(); load('./sub/../sub/two.js')"),
            "two\nvalue\ntwo\ntwo");
}
TEST_F(Globals, LoadNamesTheFileThatIsMissing) {
  EXPECT_EQ(run.Output("try { load('none.js') } catch (e) { print(e.message) }"),
            run.File("none.js") + ": No such file or directory");
}
TEST_F(Globals, LoadThrowsWhatTheScriptThrows) {
  run.AddFile("bad.js", "\n\nthrow new Error('inside');");
  EXPECT_EQ(run.Output("try { load('bad.js') } catch (e) { print(e.message, e.line) }"), "inside 3");
}

TEST_F(Globals, ExitEndsWithItsStatus) {
  EXPECT_EQ(run.Run("exit(42)").status, 42);
  EXPECT_EQ(run.Run("exit()").status, 0);
  EXPECT_EQ(run.Run("exit(undefined)").status, 0);
  for (const char* other : {"exit(256)", "exit(-1)", "exit('no number')", "exit(NaN)"}) {
    EXPECT_EQ(run.Run(other).status, 1) << other;
  }
  EXPECT_EQ(run.Run("setTimeout(() => exit(3), 1)").status, 3);
}
TEST_F(Globals, NothingIsDoneAfterExit) {
  const ProgramResult result = run.Run(
      "print('before'); try { exit(4) } catch (e) { print('caught') } finally { print('finally') } "
      "print('after')");
  EXPECT_EQ(result.status, 4);
  EXPECT_EQ(result.output, "before\n");
  EXPECT_EQ(result.errors, "");
}
TEST_F(Globals, ExitEndsEvenAScriptThatCatchesItAndLoops) {
  EXPECT_EQ(run.Run("try { exit(5) } catch (e) { for (;;) {} }").status, 5);
}
TEST_F(Globals, ExitWorksInsideAListenerThatANativeMethodCalls) {
  EXPECT_EQ(run.Run("const p = new Probe(); p.listen({on() { exit(6) }}); p.callListener('on'); for (;;) {}")
                .status,
            6);
  EXPECT_EQ(run.Run("const p = new Probe(); p.listen({on() { exit(7) }});"
                    "try { p.waitForWorker() } catch (e) {} for (;;) {}")
                .status,
            7);
}

}  // namespace
