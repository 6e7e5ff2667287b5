// Wireless events in each layout, byte by byte.
#include "event_stream.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cell_events.h"

namespace {

std::string Hex(const std::vector<uint8_t>& bytes) {
  std::string text;
  for (const uint8_t byte : bytes) {
    char pair[3];
    std::snprintf(pair, sizeof pair, "%02x", byte);
    text += pair;
  }
  return text;
}

// A level as a mode event, and a name.
std::string TwoEvents(StreamForm form) {
  std::vector<uint8_t> bytes(200, 0xEE);
  EventStream stream(bytes.data(), bytes.size(), form);
  const uint32_t mode = 3;
  const uint8_t name[] = {'a', 'b'};
  stream.Fixed(0x8B07, &mode, sizeof mode);
  stream.Variable(0x8B1B, name, sizeof name, 1);
  EXPECT_TRUE(stream.Fits());
  bytes.resize(stream.Length());
  return Hex(bytes);
}

TEST(EventStream, PacksEventsAsTheLayoutHasThem) {
  EXPECT_EQ(TwoEvents({22, false}),
            "0800078b03000000"
            "0a001b8b020001006162");
  EXPECT_EQ(TwoEvents({22, true}),
            "0c00078b0000000003000000"
            "12001b8b0000000002000100000000006162");
  EXPECT_EQ(TwoEvents({18, false}),
            "0800078b03000000"
            "0e001b8b00000000020001006162");
  EXPECT_EQ(TwoEvents({18, true}),
            "0800078b03000000"
            "12001b8b0000000000000000020001006162");
}

TEST(EventStream, WritesNothingBeyondItsRoomAndCountsOn) {
  for (const bool wide : {false, true}) {
    EventStream counter(nullptr, 0, {22, wide});
    const uint8_t name[] = {'a', 'b', 'c'};
    counter.Variable(0x8B1B, name, sizeof name, 1);
    for (size_t room = 0; room <= counter.Length(); ++room) {
      std::vector<uint8_t> bytes(room + 8, 0xEE);
      EventStream stream(bytes.data(), room, {22, wide});
      stream.Variable(0x8B1B, name, sizeof name, 1);
      EXPECT_EQ(stream.Length(), counter.Length());
      EXPECT_EQ(stream.Fits(), room >= counter.Length());
      for (size_t i = room; i < bytes.size(); ++i) EXPECT_EQ(bytes[i], 0xEE);
    }
  }
}

// The commands of the cell's events, in their order.
std::string Commands(const Cell& cell, ElementsForm form) {
  std::vector<uint8_t> bytes(4096);
  EventStream stream(bytes.data(), bytes.size(), {22, false});
  TellCell(cell, form, "", stream);
  std::string commands;
  for (size_t at = 0; at < stream.Length(); at += bytes[at] + 256U * bytes[at + 1]) {
    commands += Hex({bytes[at + 3], bytes[at + 2]}) + " ";
  }
  return commands;
}

TEST(CellEvents, ComeInTheDriversOrder) {
  Cell cell;
  Cells cells("[x]\nsecurity = mixed");
  ASSERT_TRUE(cells.Next(&cell));
  EXPECT_EQ(Commands(cell, ElementsForm::kEvents), "8b15 8b1b 8b05 8b07 8b2b 8c01 8c05 8c05 ");
  EXPECT_EQ(Commands(cell, ElementsForm::kTogether), "8b15 8b1b 8b05 8b07 8b2b 8c01 8c05 ");
  EXPECT_EQ(Commands(cell, ElementsForm::kTexts), "8b15 8b1b 8b05 8b07 8b2b 8c01 8c02 8c02 ");
}

TEST(CellEvents, EndWithAnElementThatEndsEarly) {
  for (const char* elements : {"30", "3014", "301401", "dd02aabb 30", "dd02aabb 30ff01"}) {
    Cell cell;
    const std::string text = std::string("[x]\nelements = ") + elements;
    Cells cells(text);
    ASSERT_TRUE(cells.Next(&cell));
    for (const auto form : {ElementsForm::kEvents, ElementsForm::kTogether, ElementsForm::kTexts}) {
      EXPECT_FALSE(Commands(cell, form).empty());
    }
  }
}

TEST(CellEvents, KeepAHiddenNameUntilItIsAskedFor) {
  Cell cell;
  Cells cells("[secret]\nhidden = yes");
  ASSERT_TRUE(cells.Next(&cell));
  const auto Length = [&cell](std::string_view asked) {
    EventStream stream(nullptr, 0, {});
    TellCell(cell, ElementsForm::kEvents, asked, stream);
    return stream.Length();
  };
  EXPECT_EQ(Length("secret"), Length("") + 6);
  EXPECT_EQ(Length("other"), Length(""));
}

}  // namespace
