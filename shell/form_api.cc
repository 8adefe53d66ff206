// Forms, text boxes, event handlers and the clipboard as scripts use them: a form holds named
// controls in run mode or design mode and is saved to a file; a control is resized as its
// container would; Text1 of a control is typed into key by key; a table of Lua functions hears
// a control's events.
#include <cmath>
#include <cstdio>
#include <iostream>
#include <limits>
#include <memory>
#include <string>

#include "qorvel/frame/dispatch_face.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/error.h"
#include "qorvel/platform/text.h"
#include "qorvel/server/form.h"
#include "shell/lua_errors.h"
#include "shell/lua_holders.h"
#include "shell/lua_values.h"
#include "shell/qvsh.h"

namespace qvsh {
namespace {

using qorvel::AutomationObject;
using qorvel::Form;

constexpr const char* kFormMeta = "qvsh.form";
constexpr const char* kTextBoxMeta = "qvsh.textbox";

// Forms and text boxes are held shared, so that the one a function works on outlives a
// finalizer that releases its userdata meanwhile.
template <class T>
std::shared_ptr<T> ArgShared(lua_State* L, int arg, const char* meta, const char* what) {
  bool released = false;
  const auto* value = FindHeld<std::shared_ptr<T>>(L, arg, meta, &released);
  if (released) throw qorvel::Error(qorvel::err::kObjectNotSet);
  if (value == nullptr) throw ArgError(arg, std::string(what) + " expected");
  return *value;
}

AutomationObject ArgControl(lua_State* L, int arg) {
  const AutomationObject* object = TestObject(L, arg);
  if (object == nullptr) throw ArgError(arg, "automation object expected");
  if (!*object) throw qorvel::Error(qorvel::err::kObjectNotSet);
  return *object;
}

// Forms.

int NewForm(lua_State* L) {
  const bool user_mode = lua_isnoneornil(L, 1) || lua_toboolean(L, 1);
  PushHeld(L, std::make_shared<Form>(user_mode), kFormMeta);
  return 1;
}

int LoadForm(lua_State* L) {
  const bool user_mode = lua_isnoneornil(L, 2) || lua_toboolean(L, 2);
  PushHeld(L, std::shared_ptr<Form>(Form::Load(ArgString(L, 1), user_mode)), kFormMeta);
  return 1;
}

std::shared_ptr<Form> ArgForm(lua_State* L) { return ArgShared<Form>(L, 1, kFormMeta, "form"); }

int FormAdd(lua_State* L) {
  PushObject(L, ArgForm(L)->Add(ArgString(L, 2), ArgString(L, 3)));
  return 1;
}

int FormControl(lua_State* L) {
  AutomationObject control = ArgForm(L)->Find(ArgString(L, 2));
  if (!control) return 0;
  PushObject(L, std::move(control));
  return 1;
}

int FormNames(lua_State* L) {
  const auto form = ArgForm(L);
  lua_createtable(L, int(form->controls().size()), 0);
  for (size_t i = 0; i < form->controls().size(); ++i) {
    PushString(L, form->controls()[i].first);
    lua_rawseti(L, -2, lua_Integer(i + 1));
  }
  return 1;
}

int FormSave(lua_State* L) {
  ArgForm(L)->Save(ArgString(L, 2));
  return 0;
}

int FormText(lua_State* L) {
  PushString(L, ArgForm(L)->Text());
  return 1;
}

int FormChanges(lua_State* L) {
  PushStrings(L, ArgForm(L)->container().property_changes());
  return 1;
}

int FormIndex(lua_State* L) {
  const auto form = ArgForm(L);
  const std::string key = ArgString(L, 2);
  if (key == "UserMode") {
    lua_pushboolean(L, form->container().UserMode());
    return 1;
  }
  luaL_getmetatable(L, kFormMeta);
  PushString(L, key);
  lua_rawget(L, -2);
  return 1;
}

int FormNewIndex(lua_State* L) {
  const auto form = ArgForm(L);
  if (ArgString(L, 2) != "UserMode") throw ArgError(2, "only UserMode can be set on a form");
  form->container().set_user_mode(lua_toboolean(L, 3));
  return 0;
}

// Text boxes: the Text1 of a control, kept alive by the handle.

struct TextBoxHandle {
  AutomationObject control;
  qorvel::TextBox* box;
};

int Text1(lua_State* L) {
  AutomationObject control = ArgControl(L, 1);
  auto shell = std::dynamic_pointer_cast<qorvel::ControlShell>(control);
  if (!shell || !shell->Text1) throw ArgError(1, "a control with a text box expected");
  qorvel::TextBox* box = &*shell->Text1;
  PushHeld(L, std::make_shared<TextBoxHandle>(TextBoxHandle{std::move(control), box}),
           kTextBoxMeta);
  return 1;
}

// Sizes: the extent a container gives a control, in twips, and what the control keeps of it.

qorvel::ControlShell& ArgShell(const AutomationObject& control) {
  auto* shell = dynamic_cast<qorvel::ControlShell*>(control.get());
  if (shell == nullptr) throw ArgError(1, "a control expected");
  return *shell;
}

// A side the control's float can hold, from 0 up: anything else would reach its Resize as a
// size no container gives.
float ArgSide(lua_State* L, int arg, const char* name) {
  const double side = ArgNumber(L, arg);
  if (side >= 0 && side <= std::numeric_limits<float>::max()) return float(side);
  char text[32] = "nan";  // whatever its sign bit
  if (!std::isnan(side)) std::snprintf(text, sizeof text, "%.14g", side);
  qorvel::Raise(qorvel::err::kInvalidCall, std::string("Invalid ") + name + " " + text +
                                               ": a size is a finite number of twips from 0 up");
}

int PushSize(lua_State* L, const qorvel::ControlShell& shell) {
  lua_pushnumber(L, shell.user_control.Width);
  lua_pushnumber(L, shell.user_control.Height);
  return 2;
}

// Both sides are checked before the control hears of either.
int Resize(lua_State* L) {
  const AutomationObject control = ArgControl(L, 1);
  qorvel::ControlShell& shell = ArgShell(control);
  const float width = ArgSide(L, 2, "width");
  const float height = ArgSide(L, 3, "height");
  shell.SetExtent(width, height);
  return PushSize(L, shell);
}

int Size(lua_State* L) {
  const AutomationObject control = ArgControl(L, 1);
  return PushSize(L, ArgShell(control));
}

qorvel::TextBox& ArgBox(lua_State* L) {
  return *ArgShared<TextBoxHandle>(L, 1, kTextBoxMeta, "text box")->box;
}

// One key a character of the UTF-8 text, by its 16-bit code; a byte that starts no character
// types its own value. Checked whole first, so a refused text types nothing.
int BoxType(lua_State* L) {
  qorvel::TextBox& box = ArgBox(L);
  const std::string text = ArgString(L, 2);
  std::vector<int16_t> keys;
  for (size_t at = 0; at < text.size(); at = qorvel::NextCharacter(text, at)) {
    const uint32_t code = qorvel::CharacterCode(text, at);
    if (code > 0xFFFF) throw ArgError(2, "a character beyond U+FFFF has no 16-bit key code");
    keys.push_back(static_cast<int16_t>(static_cast<uint16_t>(code)));
  }
  for (int16_t key : keys) box.TypeKey(key);
  return 0;
}

int BoxKey(lua_State* L) {
  const lua_Integer key = ArgInteger(L, 2);
  if (key < INT16_MIN || key > INT16_MAX) throw ArgError(2, "a 16-bit key code expected");
  ArgBox(L).TypeKey(static_cast<int16_t>(key));
  return 0;
}

int BoxFocus(lua_State* L) {
  ArgBox(L).GotFocus();
  return 0;
}

int BoxBlur(lua_State* L) {
  ArgBox(L).LostFocus();
  return 0;
}

int BoxIndex(lua_State* L) {
  const qorvel::TextBox& box = ArgBox(L);
  const std::string key = ArgString(L, 2);
  if (key == "Text") {
    PushString(L, box.Text());
  } else if (key == "SelStart") {
    lua_pushinteger(L, box.SelStart());
  } else if (key == "SelLength") {
    lua_pushinteger(L, box.SelLength());
  } else if (key == "SelText") {
    PushString(L, box.SelText());
  } else if (key == "Locked") {
    lua_pushboolean(L, box.Locked);
  } else if (key == "BackColor") {
    lua_pushinteger(L, box.BackColor);
  } else if (key == "Left" || key == "Top" || key == "Width" || key == "Height") {
    lua_pushnumber(L, key == "Left"    ? box.Left
                      : key == "Top"   ? box.Top
                      : key == "Width" ? box.Width
                                       : box.Height);
  } else {
    luaL_getmetatable(L, kTextBoxMeta);
    PushString(L, key);
    lua_rawget(L, -2);
  }
  return 1;
}

int BoxNewIndex(lua_State* L) {
  qorvel::TextBox& box = ArgBox(L);
  const std::string key = ArgString(L, 2);
  if (key == "Text") {
    box.SetText(ArgString(L, 3));
  } else if (key == "SelStart" || key == "SelLength") {
    const lua_Integer n = ArgInteger(L, 3);
    if (n < INT32_MIN || n > INT32_MAX) throw ArgError(3, "beyond 32 bits");
    key == "SelStart" ? box.SetSelStart(int32_t(n)) : box.SetSelLength(int32_t(n));
  } else {
    throw ArgError(2, "Text, SelStart or SelLength expected");
  }
  return 0;
}

// Events: a table of Lua functions by event name hears a control's outgoing interface. The
// handlers run on the main thread: a coroutine that connected them may be gone by the time an
// event comes.

// One event on its way to its handler.
struct HandlerCall {
  int handlers;
  const char* event;
  std::span<qorvel::Variant> args;
};

int PushArguments(lua_State* L) {
  const auto& call = *static_cast<const HandlerCall*>(lua_touserdata(L, 1));
  if (!lua_checkstack(L, int(call.args.size()))) throw qorvel::Error(qorvel::err::kOverflow);
  for (const qorvel::Variant& a : call.args) PushVariant(L, a);
  return int(call.args.size());
}

// The lookup may raise too (an __index of the table), so it runs in the same protected call
// as the handler. No C++ value lives here for a Lua error to skip.
int RunHandler(lua_State* L) {
  const auto* call = static_cast<const HandlerCall*>(lua_touserdata(L, 1));
  lua_rawgeti(L, LUA_REGISTRYINDEX, call->handlers);
  lua_getfield(L, -1, call->event);
  if (!lua_isfunction(L, -1)) return 0;
  const int handler = lua_gettop(L);
  lua_pushcfunction(L, Protected<PushArguments>);
  lua_pushlightuserdata(L, lua_touserdata(L, 1));
  lua_call(L, 1, LUA_MULTRET);
  lua_call(L, lua_gettop(L) - handler, 0);
  return 0;
}

// A handler's error, as text: printing it then needs nothing more of Lua.
int HandlerMessage(lua_State* L) {
  PushString(L, ErrorText(L, 1));
  return 1;
}

lua_State* MainThread(lua_State* L) {
  lua_rawgeti(L, LUA_REGISTRYINDEX, LUA_RIDX_MAINTHREAD);
  lua_State* main = lua_tothread(L, -1);
  lua_pop(L, 1);
  return main;
}

class LuaSink : public qorvel::Dispatch {
 public:
  LuaSink(lua_State* main, const qorvel::InterfaceInfo& events) : main_(main), events_(events) {}
  LuaSink(const LuaSink&) = delete;
  LuaSink& operator=(const LuaSink&) = delete;

  // Lets go of the handlers, so that a control a handler names can go once it is disconnected.
  // Neither luaL_unref nor lua_checkstack allocates or raises, and the stack is the main
  // thread's, so this is safe wherever the sink goes: in a finalizer, under the control's
  // lock. Once the state is closed, the registry has gone with it.
  static_assert(LUA_VERSION_RELEASE_NUM >= 50403, "luaL_unref may allocate before Lua 5.4.3");
  ~LuaSink() override {
    if (handlers_ == LUA_NOREF || !StateOpen(main_) || !lua_checkstack(main_, 2)) return;
    luaL_unref(main_, LUA_REGISTRYINDEX, handlers_);
  }

  // The table on top of `L`'s stack, popped.
  void Hold(lua_State* L) { handlers_ = luaL_ref(L, LUA_REGISTRYINDEX); }

  qorvel::Variant Invoke(std::string_view, qorvel::CallKind, std::span<qorvel::Variant>) override {
    qorvel::Raise(qorvel::err::kNoMember);
  }

  // A handler's own error is printed and the control goes on, as a client's handler error is
  // the client's affair. No Lua error gets past here into the control's frames.
  qorvel::Variant InvokeById(int32_t dispid, qorvel::CallKind,
                             std::span<qorvel::Variant> args) override {
    const qorvel::MemberInfo* event =
        qorvel::FindMember(events_, dispid, qorvel::MemberKind::kMethod);
    if (event == nullptr || !StateOpen(main_) || !lua_checkstack(main_, 3)) return {};
    HandlerCall call{handlers_, event->name.c_str(), args};
    const int top = lua_gettop(main_);
    lua_pushcfunction(main_, Protected<HandlerMessage>);
    lua_pushcfunction(main_, RunHandler);
    lua_pushlightuserdata(main_, &call);
    if (lua_pcall(main_, 1, 0, top + 1) != LUA_OK) {
      size_t size = 0;
      const char* text = lua_tolstring(main_, -1, &size);  // a string: HandlerMessage made it
      std::cerr << "qvsh: " << event->name
                << " handler: " << std::string_view(text != nullptr ? text : "", size) << std::endl;
    }
    lua_settop(main_, top);
    return {};
  }

 private:
  lua_State* main_;
  int handlers_ = LUA_NOREF;  // a reference in the registry
  const qorvel::InterfaceInfo& events_;
};

std::shared_ptr<qorvel::ClassObject> ArgClassObject(lua_State* L) {
  auto object = std::dynamic_pointer_cast<qorvel::ClassObject>(ArgControl(L, 1));
  if (!object) throw ArgError(1, "an object of the library expected");
  return object;
}

int Advise(lua_State* L) {
  const auto object = ArgClassObject(L);
  ArgTable(L, 2);
  if (object->event_interface() == nullptr) throw qorvel::Error(qorvel::err::kNoMember);
  auto sink = std::make_shared<LuaSink>(MainThread(L), *object->event_interface());
  lua_pushvalue(L, 2);
  sink->Hold(L);
  lua_pushinteger(L, object->Advise(std::move(sink)));
  return 1;
}

// A cookie is 32 bits: one beyond that connects nothing, whatever its low bits say.
int Unadvise(lua_State* L) {
  const auto object = ArgClassObject(L);
  const lua_Integer cookie = ArgInteger(L, 2);
  if (cookie < INT32_MIN || cookie > INT32_MAX) {
    qorvel::Raise(qorvel::err::kInvalidCall,
                  "No sink is connected with cookie " + std::to_string(cookie));
  }
  object->Unadvise(int32_t(cookie));
  return 0;
}

int ClipboardSet(lua_State* L) {
  qorvel::Env::Current().clipboard().SetText(ArgString(L, 1));
  return 0;
}

int ClipboardGet(lua_State* L) {
  PushString(L, qorvel::Env::Current().clipboard().GetText());
  return 1;
}

void NewMeta(lua_State* L, const char* meta, const luaL_Reg* methods) {
  luaL_newmetatable(L, meta);
  luaL_setfuncs(L, methods, 0);
  lua_pop(L, 1);
}

}  // namespace

void OpenForms(lua_State* L) {
  const luaL_Reg form[] = {{"__index", Protected<FormIndex>},
                           {"__newindex", Protected<FormNewIndex>},
                           {"__gc", CollectHeld},
                           {"Add", Protected<FormAdd>},
                           {"Control", Protected<FormControl>},
                           {"Names", Protected<FormNames>},
                           {"Save", Protected<FormSave>},
                           {"Text", Protected<FormText>},
                           {"Changes", Protected<FormChanges>},
                           {nullptr, nullptr}};
  NewMeta(L, kFormMeta, form);
  const luaL_Reg box[] = {{"__index", Protected<BoxIndex>},
                          {"__newindex", Protected<BoxNewIndex>},
                          {"__gc", CollectHeld},
                          {"Type", Protected<BoxType>},
                          {"Key", Protected<BoxKey>},
                          {"Focus", Protected<BoxFocus>},
                          {"Blur", Protected<BoxBlur>},
                          {nullptr, nullptr}};
  NewMeta(L, kTextBoxMeta, box);
  lua_register(L, "Form", Protected<NewForm>);
  lua_register(L, "LoadForm", Protected<LoadForm>);
  lua_register(L, "Text1", Protected<Text1>);
  lua_register(L, "Resize", Protected<Resize>);
  lua_register(L, "Size", Protected<Size>);
  lua_register(L, "Advise", Protected<Advise>);
  lua_register(L, "Unadvise", Protected<Unadvise>);
  const luaL_Reg clipboard[] = {{"SetText", Protected<ClipboardSet>},
                                {"GetText", Protected<ClipboardGet>},
                                {nullptr, nullptr}};
  luaL_newlib(L, clipboard);
  lua_setglobal(L, "Clipboard");
}

}  // namespace qvsh
