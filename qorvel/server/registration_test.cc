#include "qorvel/server/registration.h"

#include <gtest/gtest.h>

#include "qorvel/frame/dispatch_face.h"
#include "qorvel/platform/env.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error_testing.h"
#include "qorvel/session/zebrin_face.h"

namespace qorvel {
namespace {

std::string Text(const std::string& key, const std::string& name = "") {
  auto value = Env::Current().registry().GetValue(root_key::kClassesRoot, key, name);
  return value ? std::string(value->data.begin(), value->data.end() - 1) : "<none>";
}

const ClassInfo& ClassNamed(std::string_view name) { return *TheTypeLibrary().FindClass(name); }

TEST(RegistrationTest, WritesTheClassesAndTheirProgrammaticNames) {
  ScopedEnv env;
  EXPECT_EQ(DllRegisterServer(), hresult::kOk);
  const TypeLibrary& lib = TheTypeLibrary();
  const std::string libid = ToString(lib.guid);
  for (const ClassInfo& c : lib.classes) {
    SCOPED_TRACE(c.name);
    const std::string key = "CLSID\\" + ToString(c.guid);
    EXPECT_EQ(Text(key), c.name);
    EXPECT_EQ(Text("QorvelOLE." + c.name), c.name);
    EXPECT_EQ(Text("QorvelOLE." + c.name + "\\CLSID"), ToString(c.guid));
    EXPECT_EQ(Text(key + "\\ProgID"), "QorvelOLE." + c.name);
    EXPECT_EQ(Text(key + "\\InprocServer32"), "QorvelOLE.ocx");
    EXPECT_EQ(Text(key + "\\InprocServer32", "ThreadingModel"), "Apartment");
    EXPECT_EQ(Text(key + "\\TypeLib"), libid);
    EXPECT_EQ(Text(key + "\\Version"), "1.0");
    EXPECT_EQ(env.env().portable().registry().KeyExists(root_key::kClassesRoot, key + "\\Control"),
              c.control);
    EXPECT_EQ(
        env.env().portable().registry().KeyExists(root_key::kClassesRoot, key + "\\MiscStatus"),
        c.control);
  }
  struct {
    const char* name;
    const char* misc_status;
    const char* bitmap;
  } controls[] = {{"Zebrin", "148881", "QorvelOLE.ocx, 30005"},
                  {"UlmoraSurfaceInfo", "132497", "QorvelOLE.ocx, 30001"},
                  {"ValueBox", "131473", "QorvelOLE.ocx, 30000"}};
  for (const auto& c : controls) {
    const std::string key = "CLSID\\" + ToString(ClassNamed(c.name).guid);
    EXPECT_EQ(Text(key + "\\MiscStatus\\1"), c.misc_status) << c.name;
    EXPECT_EQ(Text(key + "\\ToolboxBitmap32"), c.bitmap) << c.name;
  }
  EXPECT_EQ(Text("TypeLib\\" + libid + "\\1.0"), "Halvern Qorvel OLE control");
  EXPECT_EQ(Text("TypeLib\\" + libid + "\\1.0\\0\\win32"), "QorvelOLE.ocx");
  EXPECT_EQ(Text("TypeLib\\" + libid + "\\1.0\\FLAGS"), "2");
}

TEST(RegistrationTest, InterfacesNameTheirMarshaler) {
  ScopedEnv env;
  DllRegisterServer();
  const TypeLibrary& lib = TheTypeLibrary();
  ASSERT_EQ(lib.interfaces.size(), 13u);
  for (const InterfaceInfo& i : lib.interfaces) {
    const std::string key = "Interface\\" + ToString(i.guid);
    EXPECT_EQ(Text(key), i.name);
    EXPECT_EQ(Text(key + "\\ProxyStubClsid32"), i.events ? "{00020420-0000-0000-C000-000000000046}"
                                                         : "{00020424-0000-0000-C000-000000000046}")
        << i.name;
    EXPECT_EQ(Text(key + "\\TypeLib"), ToString(lib.guid));
    EXPECT_EQ(Text(key + "\\TypeLib", "Version"), "1.0");
  }
}

TEST(RegistrationTest, UnregisterRemovesExactlyWhatWasWritten) {
  struct Case {
    const char* what;
    std::vector<std::pair<std::string, std::string>> keys;  // key, default value
  };
  const std::string libid = ToString(TheTypeLibrary().guid);
  const Case cases[] = {
      {"an empty registry", {}},
      {"neighbours",
       {{"CLSID\\{00000000-0000-0000-0000-000000000001}", "Someone else"},
        {"Interface\\{00000000-0000-0000-0000-000000000002}", "IOther"},
        {".txt", "txtfile"},
        {"QorvelOLE.Zebrin2", "not ours"}}},
      {"a parent with a value of its own", {{"CLSID", "root"}}},
      {"another version of the library", {{"TypeLib\\" + libid + "\\2.0", "Qorvel 2"}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ScopedEnv env;
    MemoryRegistry& registry = env.env().portable().registry();
    for (const auto& [key, value] : c.keys)
      registry.SetString(root_key::kClassesRoot, key, "", value);
    const auto before = registry.KeysBelow(root_key::kClassesRoot, "");
    EXPECT_EQ(DllRegisterServer(), hresult::kOk);
    EXPECT_GT(registry.KeysBelow(root_key::kClassesRoot, "").size(), before.size() + 50);
    EXPECT_EQ(DllUnregisterServer(), hresult::kOk);
    EXPECT_EQ(registry.KeysBelow(root_key::kClassesRoot, ""), before);
    for (const auto& [key, value] : c.keys) EXPECT_EQ(Text(key), value);
    EXPECT_EQ(DllUnregisterServer(), hresult::kOk);  // twice changes nothing more
    EXPECT_EQ(registry.KeysBelow(root_key::kClassesRoot, ""), before);
  }
}

TEST(RegistrationTest, CreatableOnlyWhileRegistered) {
  ScopedEnv env;
  EXPECT_EQ(ErrorOf([] { CreateObject("QorvelOLE.Zebrin"); }), 429);
  DllRegisterServer();
  EXPECT_NE(CreateObject("qorvelole.zebrin"), nullptr);
  EXPECT_EQ(ErrorOf([] { CreateObject("QorvelOLE.Nothing"); }), 429);
  EXPECT_NE(CreateObject("QorvelOLE.UlmoraSurfaceInfo"), nullptr);  // all seven are built
  // A ProgID whose class has lost its server entry is no longer creatable.
  const std::string clsid = ToString(ClassNamed("Zebrin").guid);
  env.env().registry().DeleteKey(root_key::kClassesRoot, "CLSID\\" + clsid + "\\InprocServer32");
  EXPECT_EQ(ErrorOf([] { CreateObject("QorvelOLE.Zebrin"); }), 429);
  DllRegisterServer();
  DllUnregisterServer();
  EXPECT_EQ(ErrorOf([] { CreateObject("QorvelOLE.Zebrin"); }), 429);
}

TEST(RegistrationTest, ClassObjectsAndUnloading) {
  ScopedEnv env;
  ClassFactory factory;
  EXPECT_EQ(DllGetClassObject(ClassNamed("UlmoraNearestPoints").guid, &factory), hresult::kOk);
  EXPECT_EQ(DllGetClassObject(ClassNamed("Zebrin").guid, &factory), hresult::kOk);
  EXPECT_EQ(DllGetClassObject(Guid{1, 2, 3, {4}}, &factory), hresult::kClassNotAvailable);
  EXPECT_EQ(DllCanUnloadNow(), hresult::kOk);
  {
    AutomationObject first = factory();
    AutomationObject second = factory();
    first.reset();
    EXPECT_EQ(DllCanUnloadNow(), hresult::kFalse);
  }
  EXPECT_EQ(DllCanUnloadNow(), hresult::kOk);
  LockServer(true);
  LockServer(true);
  LockServer(false);
  EXPECT_EQ(DllCanUnloadNow(), hresult::kFalse);
  LockServer(false);
  EXPECT_EQ(DllCanUnloadNow(), hresult::kOk);
  LockServer(false);  // an unlock too many doesn't hold the library later
  LockServer(true);
  LockServer(false);
  EXPECT_EQ(DllCanUnloadNow(), hresult::kOk);
}

}  // namespace
}  // namespace qorvel
