// Reading typings for the prompt's help, from texts that are and are not typings.
#include "method_help.h"

#include <gtest/gtest.h>

namespace {

using sorel::MethodHelp;
using sorel::ReadTypings;

TEST(MethodHelp, ReadsMethodsOfClassesAndFunctionsWithTheirComments) {
  const auto found = ReadTypings(
      "/** Of a type: no method. */\n"
      "interface Other {\n"
      "  /** Of a listener. */\n"
      "  onSomething?(): void;\n"
      "}\n"
      "declare class Device {\n"
      "  constructor();\n"
      "\n"
      "  // == Part ==\n"
      "  /**\n"
      "   * Sets the zone,\n"
      "   * at once.\n"
      "   * @param path of the zone's file\n"
      "   * @returns nothing\n"
      "   * @throws never\n"
      "   */\n"
      "  setTZ(path: string): void;\n"
      "  bare(): string;\n"
      "  /** Long. */\n"
      "  spread(first: string,\n"
      "         second: string): void;\n"
      "}\n"
      "/** Prints. */\n"
      "declare function print(...values: unknown[]): void;");
  ASSERT_EQ(found.size(), 4U);
  EXPECT_EQ(found[0].name, "setTZ");
  EXPECT_EQ(sorel::ShowHelp(found[0]),
            "setTZ(path: string): void\n  Sets the zone,\n  at once.\n    path: of the zone's file\n"
            "  Returns nothing\n  Throws never");
  EXPECT_EQ(sorel::ShowHelp(found[1]), "bare(): string");
  EXPECT_EQ(sorel::ShowHelp(found[2]), "spread(first: string, second: string): void\n  Long.");
  EXPECT_EQ(sorel::ShowHelp(found[3]), "print(...values: unknown[]): void\n  Prints.");
}

TEST(MethodHelp, ACommentBelongsToTheLineBelowItAlone) {
  const auto found =
      ReadTypings("declare class D {\n  /** Of a field. */\n  field: string;\n  method(): void;\n}\n");
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].text, "");
}

TEST(MethodHelp, LeavesOutWhatIsNoTypings) {
  EXPECT_TRUE(ReadTypings("").empty());
  EXPECT_TRUE(ReadTypings("/** never closed\n * and on\n").empty());
  EXPECT_TRUE(ReadTypings(std::string("declare class\0{\n (((\n", 22)).empty());
  EXPECT_TRUE(sorel::ReadTypingsFolder("/nonexistent").empty());
}

TEST(MethodHelp, PrefersTheNameLetterForLetter) {
  const std::vector<MethodHelp> all = {{"getversion", "1", ""}, {"GetVersion", "2", ""}};
  EXPECT_EQ(sorel::FindHelp(all, "GetVersion")->signature, "2");
  EXPECT_EQ(sorel::FindHelp(all, "GETVERSION")->signature, "1");
  EXPECT_EQ(sorel::FindHelp(all, "get"), nullptr);
}

}  // namespace
