#include "tools/reference/notes.h"

#include <gtest/gtest.h>

namespace qorvel::reference {
namespace {

TEST(ParseNotes, HeadingsParagraphsAndItems) {
  std::vector<Note> notes;
  std::string error;
  ASSERT_TRUE(
      ParseNotes("# a comment\n"
                 "[Tarvik3]\nFirst line\ngoes on.\n\nSecond paragraph.\n"
                 "[Tarvik3.Units get]\nReads:\n- one\n- two\n  continued\n",
                 &notes, &error))
      << error;
  ASSERT_EQ(notes.size(), 2u);
  EXPECT_EQ(notes[0].Key(), "Tarvik3");
  ASSERT_EQ(notes[0].blocks.size(), 2u);
  EXPECT_EQ(notes[0].blocks[0].text, "First line goes on.");
  EXPECT_EQ(notes[1].owner, "Tarvik3");
  EXPECT_EQ(notes[1].member, "Units");
  EXPECT_EQ(notes[1].kind, "get");
  EXPECT_EQ(notes[1].line, 7);
  ASSERT_EQ(notes[1].blocks.size(), 3u);
  EXPECT_TRUE(notes[1].blocks[2].item);
  EXPECT_EQ(notes[1].blocks[2].text, "two continued");
}

TEST(ParseNotes, RefusesMalformedFilesNamingTheLine) {
  std::vector<Note> notes;
  std::string error;
  EXPECT_FALSE(ParseNotes("text first\n[Zebrin]\nx\n", &notes, &error));
  EXPECT_EQ(error, "line 1: text before the first heading");
  EXPECT_FALSE(ParseNotes("[Zebrin]\nx\n[Zebrin]\ny\n", &notes, &error));
  EXPECT_EQ(error, "line 3: second note [Zebrin]");
  EXPECT_FALSE(ParseNotes("[Zebrin]\n\n[Tarvik3]\ny\n", &notes, &error));
  EXPECT_EQ(error, "line 1: note [Zebrin] is empty");
  EXPECT_FALSE(ParseNotes("[Zebrin.Visible set]\nx\n", &notes, &error));
  EXPECT_NE(error.find("line 1: malformed heading"), std::string::npos);
  EXPECT_FALSE(ParseNotes("[Zebrin get]\nx\n", &notes, &error));
  EXPECT_FALSE(ParseNotes("[Zebrin\nx\n", &notes, &error));
  EXPECT_FALSE(ParseNotes("[Zebrin]\nan `open span\n", &notes, &error));
  EXPECT_EQ(error, "line 1: note [Zebrin] has a ` without its closing one");
}

}  // namespace
}  // namespace qorvel::reference
