#ifndef SHELL_LUA_HOLDERS_H_
#define SHELL_LUA_HOLDERS_H_

#include <utility>

#include <lua.hpp>

namespace qvsh {

// The state a shell runs in. Lua frees the userdata made by finalizers that run while the state
// closes without finalizing them, so the C++ values that userdata stand for (objects, arrays,
// forms, text boxes) live in nodes the shell owns, and the userdata hold only the node.
// CloseState closes the state, then releases what is left, newest first, as Lua finalizes.
lua_State* NewState();
void CloseState(lua_State* L);
// Whether the state whose main thread is `main` is open still: a C++ value that outlives it,
// such as an event sink, must no longer reach it.
bool StateOpen(const lua_State* main);

class HeldNode {
 public:
  HeldNode(const HeldNode&) = delete;
  HeldNode& operator=(const HeldNode&) = delete;
  virtual ~HeldNode();

 protected:
  HeldNode();

 private:
  friend void CloseState(lua_State* L);
  HeldNode* older_;
  HeldNode* newer_ = nullptr;
};

template <class T>
class Held final : public HeldNode {
 public:
  explicit Held(T value) : value(std::move(value)) {}
  T value;
};

// Pushes a new userdata with the metatable `meta` holding `value`. The metatable's __gc is
// CollectHeld.
template <class T>
void PushHeld(lua_State* L, T value, const char* meta) {
  auto** slot = static_cast<HeldNode**>(lua_newuserdatauv(L, sizeof(HeldNode*), 0));
  *slot = nullptr;  // released, should the node fail to come
  luaL_setmetatable(L, meta);
  *slot = new Held<T>(std::move(value));
}

// What the userdata at `index` holds if its metatable is `meta`; nullptr for any other value and
// for a userdata whose finalizer has run, which a finalizer later in the same cycle may still
// reach. `released` tells the second apart.
template <class T>
T* FindHeld(lua_State* L, int index, const char* meta, bool* released = nullptr) {
  auto* const* slot = static_cast<HeldNode* const*>(luaL_testudata(L, index, meta));
  if (released != nullptr) *released = slot != nullptr && *slot == nullptr;
  return slot != nullptr && *slot != nullptr ? &static_cast<Held<T>*>(*slot)->value : nullptr;
}

// The finalizer of every such userdata: it releases the value and leaves the userdata empty, so
// that every later use finds it released. Calling it again is harmless.
int CollectHeld(lua_State* L);

}  // namespace qvsh

#endif  // SHELL_LUA_HOLDERS_H_
