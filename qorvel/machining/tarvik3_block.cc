// The block and model members of Tarvik3: fetch limits into the control, read them out, and
// change the block in the host.
#include "qorvel/machining/tarvik3.h"
#include "qorvel/machining/tarvik_stuff.h"
#include "qorvel/platform/automation_error.h"
#include "qorvel/platform/error.h"

namespace qorvel {

using tarvik_stuff::HostNumberText;

namespace {

constexpr const char* kLimitWords[6] = {"XMIN", "XMAX", "YMIN", "YMAX", "ZMIN", "ZMAX"};
constexpr std::string_view kBlockWords[] = {"Information", ":",    "\r\n", "Xmin", "Xmax",
                                            "Ymin",        "Ymax", "Zmin", "Zmax"};

std::string LockCommand(int axis, VariantBool lock) {
  return std::string("EDIT BLOCK ") + kLimitWords[axis] +
         (lock == VariantBool::kTrue ? " LOCK" : " UNLOCK");
}

}  // namespace

void Tarvik3::ParseBlockReply(std::string reply) {
  for (std::string_view word : kBlockWords) tarvik_stuff::RemoveAll(reply, word);
  HoldBack([&] { reply = tarvik_stuff::CollapseBlanks(reply); });
  const auto fields = tarvik_stuff::SplitAt(reply, " ");
  for (size_t i = 0; i < 6; ++i) {
    HoldBack([&] {
      if (i >= fields.size()) Raise(err::kSubscript);
      BlockLimits[i] = Variant(fields[i]).ToDouble();
    });
  }
}

void Tarvik3::StoreBlock() {
  ProbeVersion();
  if (ConnectedFlag != VariantBool::kTrue) return;
  const std::string reply = tarvik_stuff::QuietHostQuery("SIZE BLOCK");
  if (reply.empty() || reply == "Error") {
    BlockLimits.fill(0);
  } else {
    ParseBlockReply(reply);
  }
  BlockStored = VariantBool::kTrue;
}

void Tarvik3::StoreModel() {
  SafeArray values = SafeArray::Fixed(VarType::kDouble, {{1, 6}});
  std::string no_name = ";";
  if (tarvik_stuff::ReadExtents(1, values, no_name) == VariantBool::kTrue) {
    // The reply gives all minima, then all maxima; the cache stands in AxisType order.
    constexpr int32_t kFromReply[6] = {1, 4, 2, 5, 3, 6};
    for (int i = 0; i < 6; ++i) ModelLimits[i] = values.GetDouble(kFromReply[i]);
    ModelStored = VariantBool::kTrue;
  } else {
    ModelLimits.fill(0);
    ModelStored = VariantBool::kFalse;
  }
}

void Tarvik3::ResizeBlock(double offset, VariantBool& XminLock, VariantBool& XmaxLock,
                          VariantBool& YminLock, VariantBool& YmaxLock, VariantBool& ZminLock,
                          VariantBool& ZmaxLock) {
  if (tarvik_stuff::ModelLoadedProbe() != VariantBool::kTrue) return;
  Link().HostExecute("EDIT BLOCKTYPE LIMITS");
  Link().HostExecute("EDIT BLOCK LIMITTYPE MODEL");
  Link().HostExecute("EDIT BLOCK ALL UNLOCK");
  const VariantBool locks[6] = {XminLock, XmaxLock, YminLock, YmaxLock, ZminLock, ZmaxLock};
  for (int axis = 0; axis < 6; ++axis) Link().HostExecute(LockCommand(axis, locks[axis]));
  Link().HostExecute("EDIT BLOCK RESETLIMIT " + HostNumberText(offset));
  Link().HostExecute("EDIT BLOCK RESET");
  Link().HostExecute("EDIT BLOCK ALL UNLOCK");
}

void Tarvik3::SetBlock(int32_t axis, double value) {
  const std::string number = HostNumberText(value);
  if (axis < 1 || axis > 6) return;
  Link().HostExecute(std::string("EDIT BLOCK ") + kLimitWords[axis - 1] + " UNLOCK");
  Link().HostExecute(std::string("EDIT BLOCK ") + kLimitWords[axis - 1] + " " + number);
}

VariantBool Tarvik3::BlockDefined() {
  const std::string reply = tarvik_stuff::QuietHostQuery("SIZE BLOCK");
  return ToVariantBool(!reply.empty() && reply != "Error");
}

double Tarvik3::BlockSize(int32_t axis) {
  if (BlockStored != VariantBool::kTrue) StoreBlock();
  if (axis < 1 || axis > 6) Raise(err::kSubscript);
  return BlockLimits[axis - 1];
}

double Tarvik3::ModelSize(int32_t axis) {
  if (ModelStored != VariantBool::kTrue) StoreModel();
  if (axis < 1 || axis > 6) Raise(err::kSubscript);
  return ModelLimits[axis - 1];
}

}  // namespace qorvel
