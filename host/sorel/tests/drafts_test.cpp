// Objects and arrays that native methods make: the host makes them when somebody looks, and nobody can tell.
#include <gtest/gtest.h>

#include "sorel_run.h"

namespace {

class Drafts : public testing::Test {
 protected:
  // What the script prints, with `b` an object of the module that does what a text says.
  std::string Of(const std::string& script) {
    run_.AddFile("test.js", "const b = new Builder();\n" + script + "\nexit(0);");
    const ProgramResult result =
        RunProgram({SorelProgram(), "--module", TestModule("Builder"), run_.File("test.js")});
    return result.output + result.errors;
  }
  SorelRun run_;
};

TEST_F(Drafts, ObjectsHaveTheirPropertiesInTheOrderOfSetting) {
  EXPECT_EQ(Of("print(JSON.stringify(b.run('object o; text t hello; set o B t; int o A 5; answer o')))"),
            "{\"B\":\"hello\",\"A\":5}\n");
}
TEST_F(Drafts, ManyOfOneKindAndOthersAmongThem) {
  EXPECT_EQ(Of("const one = JSON.stringify(b.run('many l 3; object o; int o B 1; element l 3 o; array e; '\n"
               "  + 'element l 4 e; object n; element l 5 n; answer l'));\n"
               "print(one);"),
            R"([{"A":"a0","B":0,"C":null},{"A":"a1","B":1,"C":null},{"A":"a2","B":2,"C":null},)"
            R"({"B":1},[],{}])"
            "\n");
}
TEST_F(Drafts, TensOfThousandsAreWhole) {
  EXPECT_EQ(
      Of("const l = b.run('many l 30000; answer l');\n"
         "print(l.length, l.every((o, i) => o.A === 'a' + i && o.B === i && o.C === null && 'D' in o));"),
      "30000 true\n");
}
TEST_F(Drafts, TheLastOfTwoValuesOfOneNameCounts) {
  EXPECT_EQ(Of("print(JSON.stringify(b.run('object o; int o A 1; int o B 2; int o A 3; answer o')))"),
            "{\"A\":3,\"B\":2}\n");
}
TEST_F(Drafts, ObjectsMayHoldEachOtherAndThemselves) {
  EXPECT_EQ(Of("const o = b.run('object o; object p; array l; set o next p; set p next o; set o self o; '\n"
               "  + 'element l 0 l; set p list l; answer o');\n"
               "print(o.next.next === o, o.self === o, o.next.list[0] === o.next.list);"),
            "true true true\n");
}
TEST_F(Drafts, ElementsComeAtTheirIndexes) {
  EXPECT_EQ(Of("const l = b.run('array l; text t x; element l 2 t; element l 0 t; element l 1 t; '\n"
               "  + 'element l 5 t; element l 4294967295 t; element l 0 t; answer l');\n"
               "print(l.length, Object.keys(l));"),
            "6 0,1,2,5,4294967295\n");
}
TEST_F(Drafts, ArraysMayHavePropertiesAndObjectsElements) {
  EXPECT_EQ(
      Of("const l = b.run('array l; object o; int l A 1; text t x; element o 3 t; set l o o; answer l');\n"
         "print(l.A, l.length, l.o[3]);"),
      "1 0 x\n");
}
TEST_F(Drafts, TextsOfEveryLengthAndForm) {
  EXPECT_EQ(
      Of("const texts = ['x', 'y'.repeat(63), 'z'.repeat(64), 'w'.repeat(5000), 'aé€😀', 'a b'];\n"
         "let same = true;\n"
         "for (let round = 0; round < 4; ++round)\n"
         "  for (const text of texts) same &&= b.run(`object o; text t ${text}; set o T t; answer o`).T\n"
         "    === text && b.run(`text t ${text}; answer t`) === text;\n"
         "print(same);"),
      "true\n");
}
TEST_F(Drafts, NamesOfEveryForm) {
  EXPECT_EQ(Of("print(JSON.stringify(b.run('object o; int o 0 1; int o é 2; int o length 3; answer o')));\n"
               "const o = b.run('object o; object p; int p x 1; set o __proto__ p; answer o');\n"
               "print(Object.keys(o).length, o.x);"),
            "{\"0\":1,\"é\":2,\"length\":3}\n0 1\n");
}
TEST_F(Drafts, MoreNamesThanAnyModuleHas) {
  EXPECT_EQ(Of("let right = 0;\n"
               "for (let i = 0; i < 9000; ++i)\n"
               "  right += b.run(`object o; int o A 1; int o n${i} 7; int o Z 2; answer o`)['n' + i] === 7;\n"
               "print(right);"),
            "9000\n");
}

TEST_F(Drafts, AHandleLastsAsLongAsItsObject) {
  EXPECT_EQ(Of("const o = b.run('object o; answer o');\n"
               "gc();\n"
               "print(b.run('int o Later 1') + ', ' + o.Later);\n"
               "print(b.run('object p; set p o o; class kept p') + ', ' + (Builder.kept.o === o));"),
            "refused:, 1\nrefused:, true\n");
}
TEST_F(Drafts, AnObjectHasOneHandle) {
  EXPECT_EQ(Of("const o = b.run('object o; answer o');\n"
               "print(b.run('argument a 1; handle a; same a o', o));\n"
               "print(b.run('object p; many l 20; argument a 1; handle a; same a o; same p l', o));"),
            "refused:\nrefused: 5\n");
}
TEST_F(Drafts, AHandleOfWhatNobodyGotIsRefusedAfterwards) {
  EXPECT_EQ(Of("b.run('object o; array l; int o A 1');\n"
               "print(b.run('int o B 1; text t x; element l 0 t; handle o; object p; set p o o'));\n"
               "try { b.run('answer o'); } catch (e) { print(e.message); }"),
            "refused: 0 2 3 5\nBuilder.run failed\n");
}

TEST_F(Drafts, AListenerSeesWhatThereIsAndTheMethodGoesOn) {
  EXPECT_EQ(
      Of("const seen = [];\n"
         "const listener = { on(o) { seen.push(JSON.stringify(o)); gc(); o.Mine = 1; return o; } };\n"
         "const o = b.run('argument l 1; object other; int other A 1; object o; text t x; set o T t; '\n"
         "  + 'set o other other; text u y; call l on o; set o U u; int other B 2; answer o', listener);\n"
         "print(seen, JSON.stringify(o));"),
      R"({"T":"x","other":{"A":1}} {"T":"x","other":{"A":1,"B":2},"Mine":1,"U":"y"})"
      "\n");
}
TEST_F(Drafts, AMethodWithinAMethodUsesWhatTheOuterOneMakes) {
  EXPECT_EQ(Of("const listener = { on() {\n"
               "  return b.run('object inner; text t deep; set o T t; set inner o o; answer inner'); } };\n"
               "const l = b.run('argument l 1; object o; int o A 1; call l on x; array r; element r 0 x; '\n"
               "  + 'element r 1 o; answer r', listener);\n"
               "print(JSON.stringify(l), l[0].o === l[1]);"),
            R"([{"o":{"A":1,"T":"deep"}},{"A":1,"T":"deep"}] true)"
            "\n");
}
TEST_F(Drafts, WhatAnInnerMethodDropsDoesNotTouchTheOuterOne) {
  EXPECT_EQ(
      Of("const listener = { on() { b.run('object i; int i A 1; many m 300'); gc(); } };\n"
         "print(JSON.stringify(b.run('argument l 1; object o; int o A 1; call l on x; int o B 2; answer o',\n"
         "  listener)));"),
      "{\"A\":1,\"B\":2}\n");
}
TEST_F(Drafts, ArgumentsAreKeptAsTheyAre) {
  EXPECT_EQ(Of("const mine = { a: 1 };\n"
               "const o = b.run('argument a 1; argument n 2; object o; set o A a; set o N n; handle a; '\n"
               "  + 'object p; set p A a; set o P p; answer o', mine, 1.5);\n"
               "print(o.A === mine, o.N, o.P.A === mine);"),
            "true 1.5 true\n");
}
TEST_F(Drafts, CollectionsUnderWayMissNothing) {
  EXPECT_EQ(Of("let right = 0;\n"
               "const pressure = [];\n"
               "for (let i = 0; i < 300; ++i) {\n"
               "  pressure.push(new Array(2000).fill({}));\n"
               "  if (pressure.length > 20) pressure.length = 0;\n"
               "  const l = b.run('many l 400; answer l');\n"
               "  right += l.every((o, k) => o.A === 'a' + k && o.B === k) ? 1 : 0;\n"
               "}\n"
               "print(right);"),
            "300\n");
}

TEST_F(Drafts, HandlesOfWhatIsGoneAreUsedAgainWhileAScriptRuns) {
  EXPECT_EQ(Of("const kept = b.run('object kept; answer kept');\n"
               "let highest = 0;\n"
               "for (let i = 0; i < 3000; ++i) {\n"
               "  new Array(20000).fill({});\n"
               "  b.run('many l 100; answer l');\n"
               "  highest = Math.max(highest, b.run('object o; place o'));\n"
               "}\n"
               "print(highest < 150000);\n"
               "print(b.run('int kept A 1') + ', ' + kept.A);"),
            "true\nrefused:, 1\n");
}

TEST_F(Drafts, OtherThreadsGetThemOnceTheEngineHasThem) {
  EXPECT_EQ(Of("print(b.run('object o; worker o'));\n"
               "const o = b.run('object o; answer o');\n"
               "print(b.run('worker o') + ', ' + o.W);"),
            "refused: 1\nrefused:, 1\n");
}

TEST_F(Drafts, AListenerOnAnotherThreadGetsListsToo) {
  for (const char* first :
       {"argument l 1; handle l; ", "object mine; int mine A 1; argument l 1; handle l; "}) {
    EXPECT_EQ(Of("const seen = [];\n"
                 "const listener = { on(o) {\n"
                 "  const l = b.run('many l 50; answer l');\n"
                 "  gc();\n"
                 "  seen.push(o.Of, l.length, l.every((e, i) => e.A === 'a' + i && e.B === i));\n"
                 "} };\n"
                 "print(b.run('" +
                 std::string(first) +
                 "from l on; from l on; array m; text t x; element m 0 t; class kept m', listener));\n"
                 "print(seen, Builder.kept, b.run('many l 50; answer l').length);"),
              "refused:\na worker,50,true,a worker,50,true x 50\n");
  }
}
TEST_F(Drafts, ThreadsMakeListsAtOnce) {
  EXPECT_EQ(Of("let right = 0;\n"
               "const whole = (l) => l.length === 40 && l.every((o, i) => o.A === 'a' + i);\n"
               "const listener = { on(o) {\n"
               "  const fine = whole(b.run('many w 40; answer w')) && o.Of === 'a worker';\n"
               "  if (fine) right += 1;\n"
               "} };\n"
               "b.run('argument l 1; handle l; class kept l; storm l on 200', listener);\n"
               "let mine = 0;\n"
               "for (let i = 0; i < 200; ++i) mine += whole(b.run('many m 40; answer m')) ? 1 : 0;\n"
               "b.run('calm');\n"
               "print(mine, right);"),
            "200 400\n");
}

TEST_F(Drafts, SettersOfAScriptAreHonoured) {
  EXPECT_EQ(
      Of("const got = [];\n"
         "Object.defineProperty(Object.prototype, 'A', { set(v) { got.push(v); }, configurable: true });\n"
         "Object.defineProperty(Object.prototype, 'B', { set(v) { throw new Error('no'); } });\n"
         "const l = b.run('many l 6; answer l');\n"
         "print(got.slice(-6), l.map((o) => Object.keys(o)).join());"),
      "a0,a1,a2,a3,a4,a5 C,D,C,D,C,D,C,D,C,D,C,D\n");
}
TEST_F(Drafts, ASetterMayCallTheModuleAgain) {
  EXPECT_EQ(Of("let depth = 0;\n"
               "Object.defineProperty(Object.prototype, 'B', { set(v) {\n"
               "  if (depth++ < 3) b.run('many m 10; answer m'); } });\n"
               "const l = b.run('many l 10; answer l');\n"
               "print(depth, l.every((o, i) => o.A === 'a' + i && o.C === null));"),
            "40 true\n");
}
TEST_F(Drafts, WhatAScriptReplacedDoesNotMatter) {
  EXPECT_EQ(Of("Array.prototype[Symbol.iterator] = Array.prototype.push = Function.prototype.call =\n"
               "  Function.prototype.apply = Array.from = Object.defineProperty = null;\n"
               "print(JSON.stringify(b.run('many l 5; answer l').length));"),
            "5\n");
}
TEST_F(Drafts, AScriptDeepInItsCallsGetsThemWhole) {
  EXPECT_EQ(Of("let wrong = 0; let got = 0;\n"
               "const dive = () => {\n"
               "  try { dive(); } catch (e) { if (!(e instanceof RangeError)) throw e; }\n"
               "  if (got >= 200) return;\n"
               "  let l; try { l = b.run('many l 300; answer l'); } catch (e) { return; }\n"
               "  got += 1;\n"
               "  if (!l.every((o, i) => o.A === 'a' + i && o.B === i)) wrong += 1;\n"
               "};\n"
               "dive();\n"
               "print(got, wrong);"),
            "200 0\n");
}

}  // namespace
