#include "shell/lua_holders.h"

namespace qvsh {
namespace {

lua_State* open_state = nullptr;
HeldNode* newest = nullptr;

// A script can hand any value to a finalizer it reaches through getmetatable: only a userdata
// of ours holds a node.
bool HoldsNode(lua_State* L, int index) {
  if (lua_type(L, index) != LUA_TUSERDATA || lua_rawlen(L, index) != sizeof(HeldNode*) ||
      !lua_getmetatable(L, index)) {
    return false;
  }
  lua_pushliteral(L, "__gc");
  lua_rawget(L, -2);
  const bool ours = lua_tocfunction(L, -1) == CollectHeld;
  lua_pop(L, 2);
  return ours;
}

}  // namespace

lua_State* NewState() {
  open_state = luaL_newstate();
  return open_state;
}

void CloseState(lua_State* L) {
  lua_close(L);
  open_state = nullptr;
  while (newest != nullptr) delete newest;
}

bool StateOpen(const lua_State* main) { return main != nullptr && main == open_state; }

HeldNode::HeldNode() : older_(newest) {
  if (older_ != nullptr) older_->newer_ = this;
  newest = this;
}

HeldNode::~HeldNode() {
  (newer_ != nullptr ? newer_->older_ : newest) = older_;
  if (older_ != nullptr) older_->newer_ = newer_;
}

// The slot is emptied before the value goes: releasing a control runs its Terminate, which may
// reach this userdata again.
int CollectHeld(lua_State* L) {
  if (!HoldsNode(L, 1)) return 0;
  auto* slot = static_cast<HeldNode**>(lua_touserdata(L, 1));
  delete std::exchange(*slot, nullptr);
  return 0;
}

}  // namespace qvsh
