// Classes of modules as scripts see them, and the handles of objects as modules see them.
#include <gtest/gtest.h>

#include "sorel_run.h"

namespace {

class Classes : public testing::Test {
 protected:
  std::string Of(const std::string& expression) {
    return run_.Output("const p = new Probe();\nprint(" + expression + ");\nexit(0);");
  }
  // What the statement throws.
  std::string Thrown(const std::string& statement) {
    return run_.Output("const p = new Probe();\ntry { " + statement + " } catch (e) { print(e); }\nexit(0);");
  }
  SorelRun run_;
};

TEST_F(Classes, ObjectsHaveTheMethodsOfTheirClass) {
  EXPECT_EQ(
      Of("p.answer() + ' ' + (p instanceof Probe) + ' ' + Probe.name + ' ' + p.word.length + p.word.name"),
      "192.168.1.17 true Probe 2word");
}
TEST_F(Classes, ScriptsMayExtendThem) {
  EXPECT_EQ(Of("new (class extends Probe { mine() { return 'my ' + this.answer(); } })().mine()"),
            "my 192.168.1.17");
}
TEST_F(Classes, AMethodThatFailsThrows) {
  EXPECT_EQ(Thrown("p.fail()"), "Error: Probe.fail failed");
  EXPECT_EQ(Of("(() => { try { p.fail(); } catch (e) { return e instanceof Error; } })()"), "true");
}
TEST_F(Classes, AConstructorThatFailsThrows) {
  EXPECT_EQ(Thrown("new Probe(0)"), "Error: Probe.constructor failed");
}
TEST_F(Classes, CallingTheClassWithoutNewIsATypeError) {
  EXPECT_EQ(Thrown("Probe()"), "TypeError: Probe is a class: use new Probe()");
}
TEST_F(Classes, ObjectsWithoutPrivatePointerAreRefusedByTheModule) {
  EXPECT_EQ(Of("p.hasPrivate() + ',' + new Probe(1).hasPrivate()"), "1,0");
  EXPECT_EQ(Thrown("new Probe(1).needsPrivate()"), "Error: Probe.needsPrivate failed");
}
TEST_F(Classes, MethodsCalledOnSomethingElseFindNoPrivatePointer) {
  EXPECT_EQ(Of("[{}, [], print, globalThis, Probe, Object.create(p), new Proxy(p, {})]"
               ".map(o => p.hasPrivate.call(o)).join('')"),
            "0000000");
  EXPECT_EQ(Of("[undefined, null, 1, 'x'].map(o => p.hasPrivate.call(o)).join('')"), "0000");
}
TEST_F(Classes, SeveralObjectsAreToldApart) {
  EXPECT_EQ(Of("(() => { const a = new Probe(), b = new Probe(1), s = []; "
               "for (let i = 0; i < 100; ++i) s.push(a.hasPrivate(), b.hasPrivate()); return new "
               "Set(s).size; })()"),
            "2");
}

TEST_F(Classes, OneObjectHasOneHandle) {
  EXPECT_EQ(Of("(() => { const o = {on() {}}; p.store(o); return [p.sameHandle(o), p.sameHandle(p), "
               "p.sameHandle({}), (p.store(p), p.sameHandle(p))]; })()"),
            "1,2,0,3");
}
TEST_F(Classes, AListenerLivesAsLongAsItIsAPropertyOfTheClass) {
  EXPECT_EQ(
      run_.Output(
          "const p = new Probe();\n"
          "(() => p.listen({on(n) { return n + 1; }}))();\n"
          "setTimeout(() => { gc(); print(p.callListener('on', 4), typeof Probe.Listener); exit(0); }, 1);"),
      "5 object");
}
// A dead object may be seen alive for long by a collector that takes any word on the stack for a reference:
// of many, it cannot see all.
TEST_F(Classes, HandlesOfCollectedObjectsAreRefused) {
  EXPECT_EQ(run_.Output("const p = new Probe();\n"
                        "function drop() { p.store({on() {}}); }\n"
                        "function deep(n) { if (n) deep(n - 1); else drop(); }\n"
                        "let tries = 0;\n"
                        "function check() {\n"
                        "  gc();\n"
                        "  if (p.callStored() === 0) { print('refused'); exit(0); }\n"
                        "  if (++tries === 50) exit(1);\n"
                        "  deep(tries); setTimeout(check, 1);\n"
                        "}\n"
                        "deep(50); setTimeout(check, 1);"),
            "refused");
}
TEST_F(Classes, ValuesOfEarlierCallsAreRefused) {
  EXPECT_EQ(Of("(p.listen({on() {}}), ['text', 1.5, {}].map(v => (p.keepValue(v), p.useOldValue())))"),
            "0,0,0");
  EXPECT_EQ(Thrown("p.keepValue('text'); p.answerOldValue()"), "Error: Probe.answerOldValue failed");
}
TEST_F(Classes, WordsThatAreNothingAreRefused) {
  EXPECT_EQ(Of("p.useGarbage()"), "0");
}

TEST_F(Classes, AListenerWithoutTheMethodIsIgnored) {
  EXPECT_EQ(Of("(p.listen({on: 5}), p.callListener('on') + p.callListener('off'))"), "refusedrefused");
}
TEST_F(Classes, WhatAListenerThrowsIsPrintedAndGoesNoFurther) {
  const ProgramResult result = run_.Run(
      "const p = new Probe();\n"
      "p.listen({on() { throw new Error('listener broke'); }});\n"
      "print(p.callListener('on'));\nexit(0);");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "refused\n");
  EXPECT_EQ(result.errors.find(run_.File("test.js") + ":2:33: Error: listener broke\n    on@"), 0U)
      << result.errors;
}

}  // namespace
