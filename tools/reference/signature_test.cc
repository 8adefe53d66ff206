#include "tools/reference/signature.h"

#include <gtest/gtest.h>

namespace qorvel::reference {
namespace {

const MemberInfo& Member(const char* iface, const char* name, MemberKind kind) {
  return *FindMember(*TheTypeLibrary().FindInterface(iface), name, kind);
}

TEST(VbSignature, MarksEveryParameterAndGivesDefaults) {
  EXPECT_EQ(
      VbSignature(Member("_Tarvik3", "ResizeBlock", MemberKind::kMethod), false, PlainStyle(), 400),
      "Sub ResizeBlock(ByVal offset As Double, Optional ByRef XminLock As Boolean = False, "
      "Optional ByRef XmaxLock As Boolean = False, Optional ByRef YminLock As Boolean = "
      "False, Optional ByRef YmaxLock As Boolean = False, Optional ByRef ZminLock As "
      "Boolean = False, Optional ByRef ZmaxLock As Boolean = False)");
  EXPECT_EQ(VbSignature(Member("_Tarvik3", "Connect", MemberKind::kMethod), false, PlainStyle()),
            "Sub Connect(Optional ByRef ConnectionStatus As TarvikConnectType)");
}

TEST(VbSignature, KindsAndResults) {
  EXPECT_EQ(VbSignature(Member("_Tarvik3", "BlockSize", MemberKind::kGet), false, PlainStyle()),
            "Property Get BlockSize(ByVal axis As AxisType) As Double");
  EXPECT_EQ(VbSignature(Member("_Zebrin", "Visible", MemberKind::kPut), false, PlainStyle()),
            "Property Let Visible(ByVal yesno As Boolean)");
  EXPECT_EQ(VbSignature(Member("_Zebrin", "ExecuteEx", MemberKind::kMethod), false, PlainStyle()),
            "Function ExecuteEx(ByVal command As String) As String");
  EXPECT_EQ(VbSignature(Member("_Ulmora27", "GetSelectedEntities", MemberKind::kMethod), false,
                        PlainStyle()),
            "Sub GetSelectedEntities(ByRef Names() As String, ByRef Types() As String, _\n"
            "                        ByRef number As Long)");
  EXPECT_EQ(
      VbSignature(Member("__Zebrin", "ConnectionChange", MemberKind::kMethod), true, PlainStyle()),
      "Event ConnectionChange(ByRef Connected As Boolean)");
}

TEST(VbSignature, WrapsLongDeclarationsWithContinuations) {
  const std::string text =
      VbSignature(Member("_Tarvik3", "DefineTool", MemberKind::kMethod), false, PlainStyle(), 60);
  EXPECT_EQ(text.substr(0, text.find('\n', 50)),
            "Sub DefineTool(ByVal ToolType As ToolTypeEnum, _\n"
            "               ByVal Diameter As Double, _");
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    EXPECT_LE(end - start, 60u) << text;
    start = end + 1;
  }
  EXPECT_NE(text.find("Optional ByRef ToolName As String = \"\")"), std::string::npos);
}

}  // namespace
}  // namespace qorvel::reference
