#ifndef HOSTS_SIM_ULMORA_H_
#define HOSTS_SIM_ULMORA_H_

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "hosts/sim_document.h"
#include "hosts/sim_host.h"
#include "hosts/sim_surfaces.h"
#include "hosts/surface_geometry.h"

namespace qorvel::hosts {

// The simulated modelling host ("Ulmora.Application"): a model of named entities, a selection,
// and the lists of entities the last commands created and updated. Beside the session members
// of every simulated host it answers Evaluate(expression), exec(batch) and Print(id). Its
// command line is case-insensitive; a command it doesn't know, or one that names nothing it
// holds, raises kCommandRejected with the reason, as Execute does. The control can't start it:
// scripts and tests run it and it registers itself as running.
class SimUlmora : public SimHost {
 public:
  static constexpr int32_t kDefaultVersion = 2700;

  // An entity: its name, its type text as the host gives it ("Surface", "Solid", "Arc", "Line",
  // "Curve", "Composite Curve", "Point", "Workplane", or any other text, which passes through
  // unchanged), and its properties: each a number, a text or a vector of numbers (a point's
  // position, a curve's control points).
  struct Entity {
    std::string name;
    std::string type;
    std::map<std::string, Variant> properties;  // by upper-cased property name
  };

  SimUlmora();

  // The model. Adding a name that is there already (in any case) replaces the entity.
  void AddEntity(Entity entity);
  std::vector<Entity> entities() const;
  std::optional<Entity> entity(const std::string& name) const;

  // The three lists, in the host's index order, by entity name. Naming an entity the model
  // doesn't hold raises 5 and changes nothing.
  void Select(std::vector<std::string> names);  // replaces the selection
  void MarkCreated(std::vector<std::string> names);
  void MarkUpdated(std::vector<std::string> names);
  std::vector<std::string> selection() const;
  std::vector<std::string> created() const;
  std::vector<std::string> updated() const;

  // How the host answers "<LIST>.NUMBER": as a number (the default) or as numeric text
  // ("3"), as some versions do.
  void set_counts_as_text(bool as_text);

  // "DIALOG ON" and "DIALOG OFF" switch this.
  bool dialogs() const;
  // The batches exec received, whole, in order.
  std::vector<std::string> batches() const;

  // Evaluate of `expression` (matched without regard to case) answers `reply`, whatever it is,
  // instead of running the expression. ClearFaults drops these.
  void ScriptEvaluate(const std::string& expression, Variant reply);

  // The surfaces of the model, real geometry: "SURFACE['name'].EXISTS", ".TYPE", ".NLATS" and
  // ".NLONS" answer for them, the active document reads and writes them and projects points on
  // them. Adding a name that is there already (in any case) replaces the surface; a grid that
  // isn't one is refused with 5. "Kalvane" is the type the surface tools work on.
  void AddSurface(const std::string& name, const SurfaceGrid& grid,
                  const std::string& type = "Kalvane");
  bool DeleteSurface(const std::string& name);
  std::vector<std::string> surface_names() const;
  // The nearest point on a surface of each point, as getnearestpoint computes it.
  std::vector<Vec3> NearestPoints(const std::string& name, const std::vector<Vec3>& points);
  // Runs `draw` with a view of the surface's arrays as the host holds them.
  void WithSurface(const std::string& name, const std::function<void(const GridView&)>& draw);

  // A model is open from the start. Closing it drops its surfaces, and its document goes away
  // (later calls to it raise 462): activedocument gives Nothing until a new model is opened.
  void CloseModel();
  void OpenModel();
  // The active document, made on first use; nullptr while no model is open.
  std::shared_ptr<SimDocument> document();

 protected:
  std::string RunCommand(const std::string& command) override;
  const SimMembers& members() const override;
  void ClearOwnFaults() override;

 private:
  // A word of a command line; a quoted one is never a keyword.
  struct Word {
    std::string text;
    bool quoted = false;
  };
  using Words = std::vector<Word>;

  Variant ActiveDocument(std::span<Variant> args);
  // Evaluate(expression), exec(batch) and Print(id): one text each.
  Variant EvaluateMember(std::span<Variant> args);
  void ExecMember(std::span<Variant> args);
  Variant PrintMember(std::span<Variant> args);

  Variant Evaluate(const std::string& expression) const;
  Variant SurfaceExpression(const std::string& text, const std::string& upper) const;
  Variant ListExpression(const std::vector<std::string>& list, const std::string& upper) const;
  Variant Property(const Entity& entity, const std::string& upper_property) const;
  Variant Print(const std::string& id) const;
  void Exec(const std::string& batch);

  // One command line, in the command or batch under way.
  void Run(const std::string& line);
  void Create(const Words& words);
  void Modify(const Words& words);
  void Delete(const Words& words);
  void SelectCommand(const Words& words);
  void Dialog(const Words& words);
  // The first change to the model in a command or batch starts the created and updated lists
  // afresh; later changes of the same command or batch add to them.
  void Changing();

  void Hold(Entity entity);  // adds it to the model, or replaces the one of its name
  const Entity* Find(const std::string& name) const;
  Entity& Named(const std::string& name);  // rejects a name the model doesn't hold
  std::vector<std::string> Known(std::vector<std::string> names) const;  // raises 5 for others

  std::vector<Entity> entities_;
  std::unordered_map<std::string, size_t> index_;  // upper-cased name to its place in entities_
  std::vector<std::string> selection_, created_, updated_;
  bool counts_as_text_ = false;
  bool dialogs_ = true;
  std::vector<std::string> batches_;
  std::map<std::string, Variant> scripted_evaluates_;  // upper-cased expression
  bool fresh_lists_ = true;  // no change to the model yet in the command or batch under way
  SimSurfaces surfaces_;
  bool model_open_ = true;
  std::shared_ptr<SimDocument> document_;  // the open model's, once asked for
};

}  // namespace qorvel::hosts

#endif  // HOSTS_SIM_ULMORA_H_
