#include "qorvel/platform/text_box.h"

#include <gtest/gtest.h>

#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/text.h"

namespace qorvel {
namespace {

// Writes down the handlers the box runs, and swallows one key when asked.
class Recorder : public TextBoxEvents {
 public:
  void Text1_Change() override { heard += "C"; }
  void Text1_GotFocus() override { heard += "G"; }
  void Text1_LostFocus() override { heard += "L"; }
  void Text1_KeyPress(int16_t& key) override {
    heard += "K";
    if (key == swallow) key = 0;
  }
  std::string heard;
  int16_t swallow = -1;
};

struct TextBoxTest : ::testing::Test {
  TextBoxTest() { box.set_events(&events); }
  // The box's text with the caret or selection drawn in as [ ].
  std::string Shown() const {
    std::string t = box.Text();
    t.insert(CharacterOffset(t, box.SelStart() + box.SelLength()), "]");
    return t.insert(CharacterOffset(t, box.SelStart()), "[");
  }
  ScopedEnv env;
  Recorder events;
  TextBox box;
};

TEST_F(TextBoxTest, WritingTextPutsTheCaretAtZeroAndReportsRealChangesOnly) {
  box.SetText("abc");
  box.SetSelStart(2);
  box.SetText("abc");  // the same text: the caret goes, the handler doesn't run
  EXPECT_EQ(Shown(), "[]abc");
  box.SetText("");
  EXPECT_EQ(events.heard, "CC");
}

TEST_F(TextBoxTest, CaretAndSelectionAreLimitedToTheText) {
  box.SetText("abc");
  const struct {
    int32_t start, length;
    const char* shown;
  } cases[] = {{9, 1, "abc[]"}, {-4, 2, "[ab]c"}, {1, 9, "a[bc]"}, {2, -1, "ab[]c"}};
  for (const auto& c : cases) {
    box.SetSelStart(c.start);
    box.SetSelLength(c.length);
    EXPECT_EQ(Shown(), c.shown) << c.start << "," << c.length;
  }
}

TEST_F(TextBoxTest, KeysTypeDeleteAndPasteAtTheCaret) {
  env.env().clipboard().SetText("XY\r\nZ");  // a single-line box takes the first line
  const struct {
    const char* text;
    int32_t start, length;
    int16_t key;
    const char* shown;
    const char* heard;
  } cases[] = {
      {"abc", 1, 0, 'x', "ax[]bc", "KC"},
      {"abc", 1, 1, 'x', "ax[]c", "KC"},
      {"abc", 1, 0, 8, "[]bc", "KC"},
      {"abc", 0, 0, 8, "[]abc", "K"},
      {"abc", 0, 2, 8, "[]c", "KC"},
      {"abc", 3, 0, 22, "abcXY[]", "KC"},
      {"abc", 0, 3, 22, "XY[]", "KC"},
      {"abc", 1, 0, 13, "a[]bc", "K"},
      {"abc", 1, 0, 127, "a[]bc", "K"},
      {"abc", 1, 0, -0x2800, "a[]bc", "K"},                 // a surrogate
      {"a\u00e9c", 2, 0, 0x66B, "a\u00e9\u066b[]c", "KC"},  // positions count characters
      {"a\u00e9c", 2, 0, 8, "a[]c", "KC"},
      {"a\u00e9c", 1, 1, -0x1000, "a\uf000[]c", "KC"},  // codes from 0x8000 up are negative
      {"a\xff"
       "c",
       2, 0, 8, "a[]c", "KC"},           // a stray byte is a character of its own
      {"abc", 1, 0, '!', "a[]bc", "K"},  // swallowed by the handler
      {"abc", 1, 1, 'b', "ab[]c", "K"},  // typed over itself: no change
  };
  events.swallow = '!';
  for (const auto& c : cases) {
    box.SetText(c.text);
    box.SetSelStart(c.start);
    box.SetSelLength(c.length);
    events.heard.clear();
    box.TypeKey(c.key);
    EXPECT_EQ(Shown(), c.shown) << c.text << " " << c.key;
    EXPECT_EQ(events.heard, c.heard) << c.text << " " << c.key;
  }
}

TEST_F(TextBoxTest, LockedBoxRunsTheKeyHandlerAndKeepsItsText) {
  box.SetText("12");
  box.Locked = true;
  events.heard.clear();
  for (int16_t key : {int16_t{'3'}, int16_t{8}, int16_t{22}}) box.TypeKey(key);
  box.SetSelLength(2);
  box.TypeKey(3);  // copying changes nothing in the box, locked or not
  EXPECT_EQ(env.env().clipboard().GetText(), "12");
  box.GotFocus();
  box.LostFocus();
  EXPECT_EQ(box.Text(), "12");
  EXPECT_EQ(events.heard, "KKKKGL");
}

TEST_F(TextBoxTest, ClearingDeletesTheSelectionWithoutAKeyPress) {
  box.SetText("a\u00e9cd");
  box.SetSelStart(1);
  box.SetSelLength(2);
  events.heard.clear();
  box.Clear();
  EXPECT_EQ(Shown(), "a[]d");
  box.Clear();  // nothing selected: nothing goes
  EXPECT_EQ(Shown(), "a[]d");
  box.SetSelLength(1);
  box.Locked = true;
  box.Clear();
  EXPECT_EQ(Shown(), "a[d]");
  EXPECT_EQ(events.heard, "C");
}

}  // namespace
}  // namespace qorvel
