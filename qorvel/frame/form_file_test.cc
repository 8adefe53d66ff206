#include "qorvel/frame/form_file.h"

#include <gtest/gtest.h>

#include "qorvel/platform/error.h"

namespace qorvel {
namespace {

TEST(FormFileTest, EveryTypeReadsBackAsItWasWritten) {
  SavedControl box{"ValueBox", "Amount", {}};
  box.bag.Restore("Value", 0.1);
  box.bag.Restore("DecimalPlaces", int16_t{3});
  box.bag.Restore("ReadOnly", VariantBool::kTrue);
  box.bag.Restore("Count", int32_t{-70000});
  box.bag.Restore("Caption", "say \"hi\"\\\r\n\tnow");
  box.bag.Restore("Nothing", Variant());
  box.bag.Restore("Unknown", Variant::Null());
  const std::string text = FormText({box, {"Zebrin", "Link", {}}});
  EXPECT_EQ(text.substr(0, text.find("Count")),
            "QorvelOLE form 1\nBegin ValueBox Amount\n  Value = Double 0.1\n"
            "  DecimalPlaces = Integer 3\n  ReadOnly = Boolean -1\n  ");
  const std::vector<SavedControl> read = ParseFormText(text, "f.frm");
  ASSERT_EQ(read.size(), 2u);
  EXPECT_EQ(read[1].name, "Link");
  EXPECT_EQ(read[1].bag.size(), 0u);
  ASSERT_EQ(read[0].bag.entries().size(), box.bag.entries().size());
  for (size_t i = 0; i < box.bag.entries().size(); ++i) {
    const auto& [name, value] = box.bag.entries()[i];
    EXPECT_EQ(read[0].bag.entries()[i].first, name);
    EXPECT_EQ(read[0].bag.entries()[i].second.vt(), value.vt()) << name;
    if (!value.is_empty() && value.type() != VarType::kNull) {
      EXPECT_EQ(read[0].bag.entries()[i].second.ToText(), value.ToText()) << name;
    }
  }
}

TEST(FormFileTest, WhatIsNoFormIsRefusedNamingTheLine) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "f.frm: line 1: empty file"},
      {"VERSION 5.00\n", "f.frm: line 1: not a form file (expected \"QorvelOLE form 1\")"},
      {"QorvelOLE form 1\n  Value = Double 1\n", "f.frm: line 2: a property outside"},
      {"QorvelOLE form 1\nBegin ValueBox\n", "f.frm: line 2: expected: Begin Class Name"},
      {"QorvelOLE form 1\nBegin ValueBox A\n", "f.frm: line 3: the block of A has no End"},
      {"QorvelOLE form 1\nBegin V A\nEnd\nBegin V A\n", "f.frm: line 4: a second control"},
      {"QorvelOLE form 1\nBegin V A\n  X = Integer 40000\n", "f.frm: line 3: not an Integer"},
      {"QorvelOLE form 1\nBegin V A\n  X = Double 1e999\n", "f.frm: line 3: not a Double"},
      {"QorvelOLE form 1\nBegin V A\n  X = Date 1\n", "f.frm: line 3: unknown type: Date"},
      {"QorvelOLE form 1\nBegin V A\n  X = String \"a\\q\"\n", "f.frm: line 3: unknown escape"},
      {"QorvelOLE form 1\nBegin V A\n  X = Long 1\n  x = Long 2\n", "f.frm: line 4: the prop"},
      {"QorvelOLE form 1\nEnd\n", "f.frm: line 2: End without Begin"},
  };
  for (const auto& [text, message] : cases) {
    try {
      ParseFormText(text, "f.frm");
      ADD_FAILURE() << text;
    } catch (const Error& e) {
      EXPECT_EQ(e.number(), 5);
      EXPECT_TRUE(e.description().starts_with(message)) << e.description();
    }
  }
}

}  // namespace
}  // namespace qorvel
