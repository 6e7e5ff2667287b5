#include <gtest/gtest.h>

#include <string>

#include "xmlparser.h"

namespace {

class WriteTest : public testing::Test {
 protected:
  WriteTest() : text_(zq_StringCreate(16)) {}
  ~WriteTest() override {
    dom__free(document_, __FILE__, __LINE__);
    zq_StringDestroy(text_);
  }

  dom_Element* Create(const char* name) {
    document_ = dom__create(name, __FILE__, __LINE__);
    return dom_GetRoot(document_);
  }
  std::string Text(const dom_Element* element) {
    EXPECT_TRUE(dom_Serialise(element, text_));
    return zq_StringText(text_);
  }

  dom_Document* document_ = nullptr;
  _ZqString* text_;
};

TEST_F(WriteTest, PutsAttributesInTheOrderTheyWereSet) {
  dom_Element* root = Create("updateDone");
  EXPECT_TRUE(dom_SetIntegerAttribute(root, "deviceId", 34));
  EXPECT_TRUE(dom_SetIntegerAttribute(root, "updateId", -12));
  EXPECT_EQ(Text(root), "<updateDone deviceId=\"34\" updateId=\"-12\"/>");
}

TEST_F(WriteTest, AppendsToWhatTheStringHolds) {
  zq_StringAppend(text_, "<xml version=\"1.0\">\n");
  EXPECT_EQ(Text(Create("a")), "<xml version=\"1.0\">\n<a/>");
}

TEST_F(WriteTest, EscapesWhatMarkupWouldEnd) {
  dom_Element* root = Create("a");
  EXPECT_TRUE(dom_SetAttribute(root, "t", "<&>\"'\n\xc3\xa4"));
  const std::string text = Text(root);
  dom_Document* again = dom__parse(text.c_str(), __FILE__, __LINE__);
  ASSERT_NE(again, nullptr) << text;
  EXPECT_STREQ(dom_GetAttribute(dom_GetRoot(again), "t"), "<&>\"'\n\xc3\xa4");
  dom__free(again, __FILE__, __LINE__);
}

TEST_F(WriteTest, AnAttributeSetTwiceStaysInItsPlace) {
  dom_Element* root = Create("a");
  dom_SetAttribute(root, "x", "1");
  dom_SetAttribute(root, "y", "2");
  dom_SetAttribute(root, "x", "3");
  EXPECT_EQ(Text(root), "<a x=\"3\" y=\"2\"/>");
}

TEST_F(WriteTest, ChildrenStandInTheirElement) {
  dom_Element* root = Create("a");
  dom_SetAttribute(dom_AddChild(root, "b"), "n", "1");
  dom_AddChild(dom_AddChild(root, "c"), "d");
  EXPECT_EQ(Text(root), "<a><b n=\"1\"/><c><d/></c></a>");
}

TEST_F(WriteTest, RefusesWhatXmlCannotHold) {
  dom_Element* root = Create("a");
  EXPECT_EQ(dom_AddChild(root, ""), nullptr);
  EXPECT_EQ(dom_AddChild(root, nullptr), nullptr);
  EXPECT_EQ(dom_AddChild(root, "b c"), nullptr);
  EXPECT_EQ(dom_AddChild(root, "1"), nullptr);
  EXPECT_FALSE(dom_SetAttribute(root, "x>", "1"));
  EXPECT_FALSE(dom_SetAttribute(root, nullptr, "1"));
  EXPECT_FALSE(dom_SetAttribute(root, "x", nullptr));
  EXPECT_FALSE(dom_SetAttribute(root, "x", "\x01"));
  EXPECT_EQ(Text(root), "<a/>") << "nothing was left behind";
  EXPECT_EQ(dom__create("", __FILE__, __LINE__), nullptr);
  EXPECT_EQ(dom__create(nullptr, __FILE__, __LINE__), nullptr);
  EXPECT_EQ(dom__create("a b", __FILE__, __LINE__), nullptr);
}

TEST_F(WriteTest, NothingIsSerialisedOfNoElement) {
  EXPECT_FALSE(dom_Serialise(nullptr, text_));
  EXPECT_FALSE(dom_Serialise(Create("a"), nullptr));
  EXPECT_EQ(zq_StringLength(text_), 0U);
}

}  // namespace
