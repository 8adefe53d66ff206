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
// line is case-insensitive; numbers go in and out by the regional settings.
class SimTarvik : public SimHost {
 public:
  static constexpr int32_t kDefaultVersion = 2620;
  using Box = std::array<double, 6>;  // xmin, ymin, zmin, xmax, ymax, zmax

  struct Block {
    bool defined = false;
    std::string type = "LIMITS";
    std::string limit_type = "MODEL";
    std::array<bool, 6> locked{};  // in the order XMIN XMAX YMIN YMAX ZMIN ZMAX
    double reset_offset = 0;
    std::array<double, 6> limits{};  // the same order
  };

  SimTarvik();

  // State for tests and scripts.
  void LoadModel(const Box& extents, int32_t components);
  void ClearModel();
  void AddEntity(EntityKind kind, const std::string& name, std::vector<double> numbers);
  void SetActive(EntityKind kind, const std::string& name);  // "" for none
  Block block() const;
  std::map<std::string, std::string> tool() const;  // "DIAMETER" -> "6." as sent
  std::string units() const;                        // "MM" or "INCHES"
  bool message_dialogs() const;
  bool error_dialogs() const;

 protected:
  std::string RunCommand(const std::string& command) override;

 private:
  struct Entity {
    std::string name;
    std::vector<double> numbers;  // six extents, or twelve for a workplane
  };
  std::string Dialogs(const std::vector<std::string>& words);
  std::string Size(const std::vector<std::string>& words, const std::string& command);
  std::string Edit(const std::vector<std::string>& words, const std::string& command);
  std::string EditBlock(const std::vector<std::string>& words);
  std::string PrintEntity(const std::vector<std::string>& words);
  const Entity& FindEntity(EntityKind kind, const std::string& name) const;

  std::optional<Box> model_;
  int32_t components_ = 0;
  Block block_;
  std::map<std::string, std::string> tool_;
  std::string units_ = "MM";
  bool message_dialogs_ = true;
  bool error_dialogs_ = true;
  std::vector<Entity> entities_[3];
  int active_[3] = {-1, -1, -1};
};

}  // namespace qorvel::hosts

#endif  // HOSTS_SIM_TARVIK_H_
