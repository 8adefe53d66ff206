#ifndef HOSTS_SIM_TARVIK_H_
#define HOSTS_SIM_TARVIK_H_

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "hosts/sim_host.h"

namespace qorvel::hosts {

enum class EntityKind { kToolpath = 0, kPattern = 1, kWorkplane = 2 };

// The simulated machining host: a model, a block, the tool being defined, units, the dialog
// settings, and named toolpaths, patterns and workplanes with one active of each. Its command
// line is case-insensitive; numbers go in and out by the regional settings. A command it
// doesn't know, or one that names nothing it holds, raises kCommandRejected with the reason.
class SimTarvik : public SimHost {
 public:
  static constexpr int32_t kDefaultVersion = 2620;
  using Box = std::array<double, 6>;     // xmin, ymin, zmin, xmax, ymax, zmax
  using Frame = std::array<double, 12>;  // position, then three axis vectors, x y z each
  enum Limit { kXmin, kXmax, kYmin, kYmax, kZmin, kZmax };  // the order of the block's limits

  struct Block {
    bool defined = false;
    std::string type = "LIMITS";
    std::string limit_type = "MODEL";
    std::array<bool, 6> locked{};  // by Limit
    double reset_offset = 0;
    std::array<double, 6> limits{};  // by Limit
  };

  SimTarvik();

  // The model.
  void LoadModel(const Box& extents, int32_t components);
  void ClearModel();
  std::optional<Box> model() const;
  int32_t components() const;

  // Named entities. Adding a name that is there already (in any case) replaces its numbers.
  // AddEntity takes six numbers for a toolpath or pattern and twelve for a workplane, and
  // raises 5 for any other count.
  void AddToolpath(const std::string& name, const Box& extents);
  void AddPattern(const std::string& name, const Box& extents);
  void AddWorkplane(const std::string& name, const Frame& frame);
  void AddEntity(EntityKind kind, const std::string& name, std::vector<double> numbers);
  // Makes the named entity the active one of its kind ("" for none); 5 for an unknown name.
  void SetActive(EntityKind kind, const std::string& name);
  std::vector<std::string> entity_names(EntityKind kind) const;
  std::string active(EntityKind kind) const;  // "" for none

  // Settings, as the commands leave them.
  Block block() const;
  void set_block(const Block& block);
  std::map<std::string, std::string> tool() const;  // "DIAMETER" -> "6." as sent
  std::string units() const;                        // "MM" or "INCHES"
  void set_units(const std::string& units);         // raises 5 for anything else
  bool message_dialogs() const;
  void set_message_dialogs(bool on);
  bool error_dialogs() const;
  void set_error_dialogs(bool on);

  // How many dialogs the host would have put up: an information reply while message dialogs
  // are on, a rejected command while error dialogs are on. A real host waits for the user there.
  int message_dialogs_shown() const;
  int error_dialogs_shown() const;

 protected:
  std::string RunCommand(const std::string& command) override;
  const SimMembers& members() const override;

 private:
  struct Entity {
    std::string name;
    std::vector<double> numbers;  // six extents, or twelve for a workplane
  };
  using Words = std::vector<std::string>;

  std::string Run(const std::string& command, const Words& words);
  std::string Dialogs(const Words& words);
  std::string PrintFormValue(const Words& words);
  std::string Size(const Words& words, const std::string& command);
  std::string Edit(const Words& words, const std::string& command);
  std::string EditBlock(const Words& words, const std::string& command);
  void ResetBlock();
  std::string PrintEntity(const Words& words);
  std::string Activate(const Words& words, const std::string& command);
  const Entity* Find(EntityKind kind, const std::string& name) const;
  const Entity& Named(EntityKind kind, const std::string& name) const;

  std::optional<Box> model_;
  int32_t components_ = 0;
  Block block_;
  std::map<std::string, std::string> tool_;
  std::string units_ = "MM";
  bool message_dialogs_ = true;
  bool error_dialogs_ = true;
  int message_dialogs_shown_ = 0;
  int error_dialogs_shown_ = 0;
  std::vector<Entity> entities_[3];
  int active_[3] = {-1, -1, -1};
};

}  // namespace qorvel::hosts

#endif  // HOSTS_SIM_TARVIK_H_
