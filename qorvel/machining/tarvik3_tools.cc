// Tool definition and units of Tarvik3.
#include "qorvel/machining/tarvik3.h"
#include "qorvel/machining/tarvik_stuff.h"
#include "qorvel/platform/automation_error.h"
#include "qorvel/platform/numbers.h"
#include "qorvel/platform/text.h"

namespace qorvel {

using tarvik_stuff::HostNumberText;

namespace {

// Which optional arguments a tool type takes.
struct ToolShape {
  const char* command;
  bool tip_radius, angle, chamfer, offsets;
};

constexpr ToolShape kToolShapes[8] = {
    {"EDIT TOOLTYPE ENDMILL", false, false, false, false},
    {"EDIT TOOLTYPE BALLNOSED", false, false, false, false},
    {"EDIT TOOLTYPE TIPRADIUSED", true, false, false, false},
    {"EDIT TOOLTYPE TAPERSPHERICAL", true, true, false, false},
    {"EDIT TOOLTYPE TAPERTIPPED", true, true, true, false},
    {"EDIT TOOLTYPE TIPPEDDISC", true, false, false, false},
    {"EDIT TOOLTYPE OFFCENTRETIPRAD", true, false, false, true},
    {"EDIT TOOLTYPE DRILL", false, true, false, false},
};

constexpr ToolShape kNoShape = {nullptr, false, false, false, false};

}  // namespace

void Tarvik3::DefineTool(int32_t ToolType, double Diameter, double& Length, double& TipRad,
                         double& Angle, double& Chamfer, double& XOffset, double& YOffset,
                         int32_t& ToolNumber, std::string& ToolName) {
  const ToolShape& shape = ToolType >= 0 && ToolType <= 7 ? kToolShapes[ToolType] : kNoShape;
  if (Diameter > 0) Link().HostExecute("EDIT DIAMETER " + HostNumberText(Diameter));
  if (Length > 0) Link().HostExecute("EDIT TLEN " + HostNumberText(Length));
  if (shape.command) Link().HostExecute(shape.command);
  if (shape.tip_radius && TipRad > 0)
    Link().HostExecute("EDIT TIPRADIUS " + HostNumberText(TipRad));
  if (shape.angle && Angle > 0) Link().HostExecute("EDIT TAPERANGLE " + HostNumberText(Angle));
  if (shape.chamfer && Chamfer > 0) {
    Link().HostExecute("EDIT TAPERHEIGHT " + HostNumberText(Chamfer));
  }
  if (shape.offsets) {
    Link().HostExecute("EDIT TIPRADIUSX " + HostNumberText(XOffset));
    Link().HostExecute("EDIT TIPRADIUSY " + HostNumberText(YOffset));
  }
  if (ToolNumber >= 0) Link().HostExecute("EDIT TOOLNUMBER " + FormatPattern(ToolNumber, "0"));
  if (!ToolName.empty()) Link().HostExecute("EDIT TOOLNAME \"" + ToolName + "\"");
}

void Tarvik3::SetUnits(int32_t useunits) {
  if (useunits != 0 && useunits != 1) return;
  CachedUnits = static_cast<int16_t>(useunits);
  Link().HostExecute(useunits == 1 ? "EDIT UNITS INCHES" : "EDIT UNITS MM");
}

int32_t Tarvik3::Units() {
  const std::string reply = Link().HostExecuteEx("PRINT FORMVALUE INFOBAR.UNITS");
  if (reply != "Error") {
    if (ContainsNoCase(reply, "INCHES")) {
      CachedUnits = 1;
    } else if (ContainsNoCase(reply, "MM")) {
      CachedUnits = 0;
    }
  }
  return CachedUnits;
}

}  // namespace qorvel
