#include <gtest/gtest.h>

#include <string>

#include "trace_capture.h"
#include "xmlparser.h"

namespace {

class ParseTest : public testing::Test {
 protected:
  ~ParseTest() override { dom__free(document_, __FILE__, __LINE__); }

  dom_Element* Parse(const std::string& text) {
    dom__free(document_, __FILE__, __LINE__);
    document_ = dom__parse(text.c_str(), __FILE__, __LINE__);
    return dom_GetRoot(document_);
  }
  // What the trace says about a text that is refused; "" when it is taken.
  std::string Refusal(const std::string& text) {
    const TraceCapture trace;
    if (Parse(text) != nullptr) return "";
    const std::string said = trace.Texts().at(0);
    const std::string lead = "document refused: ";
    EXPECT_EQ(said.substr(0, lead.size()), lead);
    return said.substr(lead.size(), said.rfind(" (") - lead.size());
  }

  dom_Document* document_ = nullptr;
};

std::string Nested(int depth) {
  std::string text;
  for (int level = 0; level < depth; ++level) text += "<a>";
  for (int level = 0; level < depth; ++level) text += "</a>";
  return text;
}

std::string Repeated(int count, const std::string& text) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

TEST_F(ParseTest, GivesTheElementsInOrder) {
  dom_Element* root = Parse(
      "<?xml version=\"1.0\"?>\n<!-- c --><r>\n text <update id='1'/><!-- c --> t "
      "<deviceid yourId=\"7\"></deviceid><![CDATA[<x>]]></r>\n<!-- c -->");
  EXPECT_STREQ(dom_GetName(root), "r");
  dom_Element* first = dom_GetFirstChild(root);
  EXPECT_STREQ(dom_GetName(first), "update");
  EXPECT_STREQ(dom_GetAttribute(first, "id"), "1");
  dom_Element* second = dom_GetNextSibling(first);
  EXPECT_STREQ(dom_GetName(second), "deviceid");
  EXPECT_EQ(dom_GetNextSibling(second), nullptr);
  EXPECT_EQ(dom_GetFirstChild(second), nullptr);
  EXPECT_EQ(dom_GetNextSibling(root), nullptr);
}

TEST_F(ParseTest, GivesAttributesAsTexts) {
  dom_Element* root = Parse("<r a='x &amp;&#x41;&#66; &lt;&gt;&quot;&apos;' b='' c='\xc3\xa4' d=' 1\n2 '/>");
  EXPECT_STREQ(dom_GetAttribute(root, "a"), "x &AB <>\"'");
  EXPECT_STREQ(dom_GetAttribute(root, "b"), "");
  EXPECT_STREQ(dom_GetAttribute(root, "c"), "\xc3\xa4");
  EXPECT_STREQ(dom_GetAttribute(root, "d"), " 1 2 ");
  EXPECT_EQ(dom_GetAttribute(root, "A"), nullptr);
  EXPECT_EQ(dom_GetAttribute(root, nullptr), nullptr);
}

TEST_F(ParseTest, ConvertsADocumentInLatin1) {
  dom_Element* root = Parse("<?xml version='1.0' encoding='ISO-8859-1'?><r a='\xe4'/>");
  EXPECT_STREQ(dom_GetAttribute(root, "a"), "\xc3\xa4");
}

TEST_F(ParseTest, ReadsIntegers) {
  struct {
    const char* text;
    bool isNumber;
    int32_t number;
  } const cases[] = {{"0", true, 0},
                     {"42", true, 42},
                     {" -7\t", true, -7},
                     {"+7", true, 7},
                     {"007", true, 7},
                     {"2147483647", true, INT32_MAX},
                     {"-2147483648", true, INT32_MIN},
                     {"2147483648", false, 0},
                     {"99999999999999999999", false, 0},
                     {"", false, 0},
                     {" ", false, 0},
                     {"7x", false, 0},
                     {"x7", false, 0},
                     {"1 2", false, 0},
                     {"+-7", false, 0},
                     {"++7", false, 0},
                     {"0x10", false, 0},
                     {"1.5", false, 0}};
  for (const auto& row : cases) {
    dom_Element* root = Parse(std::string("<r n='") + row.text + "'/>");
    int32_t value = 4711;
    EXPECT_EQ(dom_GetIntegerAttribute(root, "n", &value), row.isNumber) << row.text;
    EXPECT_EQ(value, row.isNumber ? row.number : 4711) << row.text;
  }
  int32_t value = 4711;
  EXPECT_FALSE(dom_GetIntegerAttribute(Parse("<r/>"), "n", &value));
  EXPECT_EQ(value, 4711);
}

TEST_F(ParseTest, RefusesWhatIsNotSound) {
  struct {
    const char* text;
    const char* why;
  } const cases[] = {
      {"<a/><b/>", "a second root element"},
      {"<a/>text", "text outside the root element"},
      {"text<a/>", "text outside the root element"},
      {"<a/><![CDATA[x]]>", "text outside the root element"},
      {"<!-- nothing -->", "no root element"},
      {"  \n ", "no root element"},
      {"just text", "text outside the root element"},
      {"<!DOCTYPE a><a/>", "a document type"},
      {"<!DOCTYPE a [<!ENTITY e \"x\">]><a>&e;</a>", "a document type"},
      {"<!DOCTYPE a SYSTEM \"file:///etc/passwd\"><a/>", "a document type"},
      {"<a>&e;</a>", "a text"},
      {"<a>x & y</a>", "a text"},
      {"<a>&amp</a>", "a text"},
      {"<a>&#0;</a>", "a text"},
      {"<a>&#x1;</a>", "a text"},
      {"<a>&#xd800;</a>", "a text"},
      {"<a>&#x110000;</a>", "a text"},
      {"<a>&#99999999999;</a>", "a text"},
      {"<a>&#;</a>", "a text"},
      {"<a>&#x;</a>", "a text"},
      {"<a>&#-1;</a>", "a text"},
      {"<a>]]></a>", "a text"},
      {"<a>\x01</a>", "a text"},
      {"<a><![CDATA[\x02]]></a>", "a text"},
      {"<a b='x & y'/>", "the text of an attribute"},
      {"<a b='<'/>", "the text of an attribute"},
      {"<a b='\x1b'/>", "the text of an attribute"},
      {"<a b='1' c='2' b='1'/>", "an attribute twice"},
      {"<a/><?xml version='1.0'?>", "a declaration that is not the first"},
  };
  for (const auto& row : cases) EXPECT_EQ(Refusal(row.text), row.why) << row.text;
}

TEST_F(ParseTest, RefusesWhatIsNotWellFormed) {
  for (const char* text : {"<",
                           "<a",
                           "<a>",
                           "<a></b>",
                           "<a><b></a></b>",
                           "</a>",
                           "<a b/>",
                           "<a b=1/>",
                           "<a b='1/>",
                           "<a b='1\"/>",
                           "<a><!-- </a>",
                           "<a><![CDATA[</a>",
                           "<?xml",
                           "<a",
                           "<1/>",
                           "<a></a",
                           "<a><b/>",
                           "<!DOCTYPE",
                           "<!DOCTYPE a [",
                           "<a 1='2'/>",
                           "<a =''/>"}) {
    EXPECT_NE(Refusal(text), "") << text;
  }
}

TEST_F(ParseTest, RefusesNothingAndNull) {
  EXPECT_NE(Refusal(""), "");
  EXPECT_EQ(dom__parse(nullptr, nullptr, 0), nullptr);
}

TEST_F(ParseTest, TakesSixtyFourLevelsAndNotOneMore) {
  EXPECT_EQ(Refusal(Nested(64)), "");
  EXPECT_EQ(Refusal(Nested(65)), "too deep");
  EXPECT_EQ(Refusal(Nested(100000)), "too deep");
}

TEST_F(ParseTest, TakesTenThousandElementsAndNotOneMore) {
  EXPECT_EQ(Refusal("<r>" + Repeated(9999, "<a/>") + "</r>"), "");
  EXPECT_EQ(Refusal("<r>" + Repeated(10000, "<a/>") + "</r>"), "too many elements");
  EXPECT_EQ(Refusal("<r>" + Repeated(100000, "<a/>") + "</r>"), "too many elements");
}

TEST_F(ParseTest, TakesAMebibyteAndNotOneByteMore) {
  const std::string frame = "<r></r>";
  EXPECT_EQ(Refusal("<r>" + std::string((1 << 20) - frame.size(), 'x') + "</r>"), "");
  EXPECT_EQ(Refusal("<r>" + std::string((1 << 20) - frame.size() + 1, 'x') + "</r>"), "too long");
}

TEST_F(ParseTest, ARefusalNamesTheCaller) {
  const TraceCapture trace;
  EXPECT_EQ(dom__parse("<a/><b/>", "check.cpp", 12), nullptr);
  EXPECT_TRUE(trace.Has("document refused: a second root element (check.cpp:12)"));
}

TEST(NoElement, AnswersAsIfThereWereNothingInIt) {
  EXPECT_EQ(dom_GetRoot(nullptr), nullptr);
  EXPECT_EQ(dom_GetFirstChild(nullptr), nullptr);
  EXPECT_EQ(dom_GetNextSibling(nullptr), nullptr);
  EXPECT_STREQ(dom_GetName(nullptr), "");
  EXPECT_EQ(dom_GetAttribute(nullptr, "a"), nullptr);
  int32_t value = 1;
  EXPECT_FALSE(dom_GetIntegerAttribute(nullptr, "a", &value));
  EXPECT_EQ(dom_AddChild(nullptr, "a"), nullptr);
  EXPECT_FALSE(dom_SetAttribute(nullptr, "a", "b"));
  dom__free(nullptr, __FILE__, __LINE__);
}

}  // namespace
