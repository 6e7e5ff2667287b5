// Script values in native methods and back.
#include <gtest/gtest.h>

#include "sorel_run.h"

namespace {

class Values : public testing::Test {
 protected:
  // What the expression gives, with `p` an object of the class.
  std::string Of(const std::string& expression) {
    return run_.Output("const p = new Probe();\nprint(" + expression + ");\nexit(0);");
  }
  SorelRun run_;
};

TEST_F(Values, UndefinedIsVoid) {
  EXPECT_EQ(Of("p.word(0, undefined)"), "void");
}
TEST_F(Values, NullIsNull) {
  EXPECT_EQ(Of("p.word(0, null)"), "null");
}
TEST_F(Values, WholeNumbersOf31BitsAreTagged) {
  EXPECT_EQ(Of("[0, -1, 42, 1073741823, -1073741823].map(n => p.word(0, n))"),
            "int 0,int -1,int 42,int 1073741823,int -1073741823");
}
TEST_F(Values, OtherNumbersAreHandles) {
  EXPECT_EQ(Of("[1073741824, -1073741824, 1.5, NaN, 1e300].map(n => p.word(0, n))"),
            "handle,handle,handle,handle,handle");
}
TEST_F(Values, BooleansStringsAndObjectsAreHandles) {
  EXPECT_EQ(Of("[true, '', 'x', {}, [], print].map(v => p.word(0, v))"),
            "handle,handle,handle,handle,handle,handle");
}
TEST_F(Values, MissingDeclaredArgumentsAreVoid) {
  EXPECT_EQ(Of("p.filler()"), "1");
}
TEST_F(Values, AMethodThatStoresNothingAnswersUndefined) {
  EXPECT_EQ(Of("p.nothing()"), "undefined");
}

TEST_F(Values, ToIntTakesNumbersAndBooleans) {
  EXPECT_EQ(Of("[7, -7, 2000000000, 3.9, -3.9, true, false].map(v => p.toInt(v))"),
            "1:7,1:-7,1:2000000000,1:3,1:-3,1:1,1:0");
}
TEST_F(Values, ToIntLeavesTheIntegerAloneForAnythingElse) {
  EXPECT_EQ(Of("['7', null, undefined, {}, NaN, Infinity, 3e9].map(v => p.toInt(v))"),
            "0:4711,0:4711,0:4711,0:4711,0:4711,0:4711,0:4711");
}

TEST_F(Values, ToStringIsWhatStringSays) {
  EXPECT_EQ(Of("[7, 1.5, true, null, undefined, [1, 2], {toString() { return 'own'; }}].map(v => "
               "p.echo(v)).join(';')"),
            "7;1.5;true;null;undefined;1,2;own");
}
TEST_F(Values, ToStringOfWhatThrowsIsNullAndTheErrorIsDropped) {
  EXPECT_EQ(Of("p.echo({toString() { throw new Error('no'); }}) + p.echo(Symbol())"), "(null)(null)");
}

TEST_F(Values, ArgumentsComeBackAsTheyWere) {
  EXPECT_EQ(Of("[1.5, true, 'x', null, undefined, print, 5].every(v => p.pass(v) === v)"), "true");
}
TEST_F(Values, ManyArgumentsArrive) {
  EXPECT_EQ(Of("p.word.apply(p, Array(3000).fill('text')) + p.pass.apply(p, "
               "['first'].concat(Array(3000).fill(1.5)))"),
            "handlefirst");
}
TEST_F(Values, ListsOfObjectsAreBuilt) {
  EXPECT_EQ(Of("JSON.stringify(p.list(2)) + p.list(0).length + p.list(500)[499].Name"),
            R"([{"Name":"n0","Id":0},{"Name":"n1","Id":1}]0n499)");
}

TEST_F(Values, StringsAreUtf8BothWays) {
  EXPECT_EQ(Of("p.hex('aé€😀')"), "61c3a9e282acf09f9880");
  EXPECT_EQ(Of("p.echo('aé€😀')"), "aé€😀");
}
TEST_F(Values, ATextEndsAtItsNul) {
  EXPECT_EQ(Of(R"(p.echo('ab\0cd') + '|' + p.fromHex('61620063'))"), "ab|ab");
}
TEST_F(Values, LoneSurrogatesBecomeReplacementCharacters) {
  EXPECT_EQ(Of(R"(p.hex('a\ud800b') + ' ' + p.hex('\udc00') + ' ' + p.hex('é\ud83d'))"),
            "61efbfbd62 efbfbd c3a9efbfbd");
}
TEST_F(Values, BytesThatAreNoUtf8BecomeTheirLatin1Characters) {
  EXPECT_EQ(Of("Array.from(p.fromHex('41ff42c3a9c3f09f98c0afeda080f4908080')).map(c => "
               "c.charCodeAt(0).toString(16))"),
            "41,ff,42,e9,c3,f0,9f,98,c0,af,ed,a0,80,f4,90,80,80");
}
TEST_F(Values, LargeStringsPassWhole) {
  EXPECT_EQ(Of("p.echo('x'.repeat(1 << 20)) === 'x'.repeat(1 << 20)"), "true");
  EXPECT_EQ(Of("p.echo('😀'.repeat(1 << 18)) === '😀'.repeat(1 << 18)"), "true");
}

}  // namespace
