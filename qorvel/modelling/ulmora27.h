#ifndef QORVEL_MODELLING_ULMORA27_H_
#define QORVEL_MODELLING_ULMORA27_H_

#include <cstdint>
#include <string>

#include "qorvel/frame/host_session.h"
#include "qorvel/platform/safe_array.h"
#include "qorvel/platform/variant.h"

namespace qorvel {

// The modelling host control. The session family on this thread's Ulmora link, which can only
// bind a host that runs and refuses one below version 2620 with a message box; beside it the
// host's expression evaluator, command batches, the entity lists and one stored value.
class Ulmora27 : public HostSession {
 public:
  Ulmora27() : HostSession(Host::kUlmora) {}

  // Session.
  void Connect();
  void ExitUlmora() { ExitHost(); }
  void SetDialogs(VariantBool onoff);

  // The host's reply to an expression, as it came; the empty text when the call fails. The
  // client's own string goes to the host.
  Variant Evaluate(std::string& ObjInfo);
  void ClearBatchBuffer() { BatchBuffer.clear(); }
  void AddBatchCommand(std::string& NewCommand);  // the client's string, only read
  // Hands the whole buffer to the host in one call; the buffer is emptied whatever comes of it.
  VariantBool ProcessBatch();

  // The host's selection, created and updated lists. A count that can't be read is 0.
  int32_t ItemsSelectedCount();
  int32_t ItemsCreatedCount();
  int32_t ItemsModifiedCount();
  // Names and types of a list's entities in 1-based arrays, the host's order kept; `number`
  // tells how many. With none the arrays stay as they came.
  void GetSelectedEntities(SafeArray& Names, SafeArray& Types, int32_t& number);
  void GetCreatedEntities(SafeArray& Names, SafeArray& Types, int32_t& number);
  void GetModifiedEntities(SafeArray& Names, SafeArray& Types, int32_t& number);
  // The selected entities whose type has a bit in FilterFlag (qvEntityType), which is only read.
  void GetFilteredSelection(SafeArray& Names, SafeArray& Types, int32_t& number,
                            int32_t& FilterFlag);

  // One value fetched from the host's Print, kept until the next StoreData; Empty when that
  // fails. StoredData hands out copies; StoreType is 1 (VectorArray) for an array, else 0.
  void StoreData(const std::string& ObjectID);
  Variant StoredData() const { return StoredValue; }
  int32_t StoreType() const { return StoredValue.is_array() ? 1 : 0; }

 private:
  // The words of one of the host's lists; the client says Modified where the host says UPDATED.
  struct EntityList {
    const char* count;
    const char* name;  // followed by the 0-based index and "]"
    const char* type;
  };
  static const EntityList kSelection, kCreated, kUpdated;

  bool Accepts(int16_t version) const override;
  void Refuse() override;

  int32_t ReadCount(const char* expression);
  std::string Ask(const std::string& expression);
  void GetEntities(const EntityList& list, SafeArray& Names, SafeArray& Types, int32_t& number);

  std::string BatchBuffer;
  Variant StoredValue;
};

}  // namespace qorvel

#endif  // QORVEL_MODELLING_ULMORA27_H_
