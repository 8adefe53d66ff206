#include "qorvel/platform/messages.h"

#include <gtest/gtest.h>

#include <vector>

namespace qorvel {
namespace {

TEST(MessagesTest, EveryBoxIsRecordedInOrder) {
  Messages messages;
  messages.ShowMessage("Cannot connect\rto the host", 4112, "Zebrin");
  messages.ShowMessage("Done", 4144, "Tarvik3");
  const std::vector<Message> expected = {{"Cannot connect\rto the host", 4112, "Zebrin"},
                                         {"Done", 4144, "Tarvik3"}};
  EXPECT_EQ(messages.shown(), expected);
  messages.Clear();
  EXPECT_TRUE(messages.shown().empty());
}

TEST(MessagesTest, EchoPrintsTitleAndTextToStandardError) {
  Messages messages;
  testing::internal::CaptureStderr();
  messages.ShowMessage("quiet", 0, "Box");
  messages.set_echo(true);
  messages.ShowMessage("Host not found", 4112, "Ulmora27");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Ulmora27: Host not found\n");
  EXPECT_EQ(messages.shown().size(), 2u);
}

}  // namespace
}  // namespace qorvel
