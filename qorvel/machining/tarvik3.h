#ifndef QORVEL_MACHINING_TARVIK3_H_
#define QORVEL_MACHINING_TARVIK3_H_

#include <array>
#include <cstdint>
#include <string>

#include "qorvel/frame/host_session.h"
#include "qorvel/platform/variant.h"

namespace qorvel {

// The machining host control. The session family with three connect modes and a gate that
// raises 60000 below version 2522; the rest speaks the host's SIZE, EDIT and PRINT commands.
class Tarvik3 : public HostSession {
 public:
  Tarvik3() : HostSession(Host::kTarvik) {}

  // Session.
  // TarvikConnectType: 0 bind, 1 start, 2 new. The client's variable is only read.
  void Connect(int32_t& ConnectionStatus);
  std::string ExecuteEx(const std::string& command) { return Link().HostExecuteEx(command); }
  void ExitTarvik() { ExitHost(); }
  VariantBool Dialogs();
  void SetDialogs(VariantBool onoff);
  // Runs only while the control counts as connected.
  void SetVisible(VariantBool yesno);

  // Block and model.
  void StoreBlock();
  void StoreModel();
  // The locks are the client's variables, only read (false where a client leaves one out).
  void ResizeBlock(double offset, VariantBool& XminLock, VariantBool& XmaxLock,
                   VariantBool& YminLock, VariantBool& YmaxLock, VariantBool& ZminLock,
                   VariantBool& ZmaxLock);
  void SetBlock(int32_t axis, double value);
  double BlockSize(int32_t axis);
  double ModelSize(int32_t axis);
  VariantBool IsModelLoaded();
  VariantBool BlockDefined();

  // Tools and units.
  // All but the first two are the client's variables, only read. Where a client leaves one
  // out it reads -1, but 0 for the offsets and the empty text for the name.
  void DefineTool(int32_t ToolType, double Diameter, double& Length, double& TipRad, double& Angle,
                  double& Chamfer, double& XOffset, double& YOffset, int32_t& ToolNumber,
                  std::string& ToolName);
  int32_t Units();
  void SetUnits(int32_t useunits);

  // Entity lists: the client's collection is emptied and filled by late-bound calls.
  void GetToolpathList(AutomationObject& ToolpathList, int32_t& ActiveToolpath);
  void GetPatternList(AutomationObject& PatternList, int32_t& ActivePattern);
  void GetWorkplaneList(AutomationObject& WorkplaneList, int32_t& ActiveWorkplane);
  void SizeToolpath(std::string& ToolpathName, double& XMIN, double& XMAX, double& YMIN,
                    double& YMAX, double& ZMIN, double& ZMAX);

  // Control life, sent by the container.
  void Initialize() override;

 private:
  // The gate: the version is read as 32 bits, held back, and narrowed to 16 bits without, so a
  // reply beyond 16 bits reaches the client as an overflow; a refused host raises 60000; the
  // block cache goes with the connection.
  int16_t FetchVersion() override;
  bool Accepts(int16_t version) const override;
  void Refuse() override;
  void Dropped() override;

  void ParseBlockReply(std::string reply);
  void FillList(const char* command, AutomationObject& list, int32_t& active);

  int16_t CachedUnits = 0;
  std::array<double, 6> BlockLimits{};  // in AxisType order, qvxmin first
  std::array<double, 6> ModelLimits{};
  VariantBool BlockStored = VariantBool::kFalse;
  VariantBool ModelStored = VariantBool::kFalse;
};

}  // namespace qorvel

#endif  // QORVEL_MACHINING_TARVIK3_H_
