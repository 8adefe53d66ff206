#include "qorvel/frame/registration.h"

#include <gtest/gtest.h>

#include "qorvel/frame/dispatch_face.h"
#include "qorvel/platform/env.h"
#include "qorvel/session/zebrin_face.h"

namespace qorvel {
namespace {

std::string Text(const std::string& key, const std::string& name = "") {
  auto value = Env::Current().registry().GetValue(HKEY_CLASSES_ROOT, key, name);
  return value ? std::string(value->data.begin(), value->data.end() - 1) : "<none>";
}

TEST(RegistrationTest, WritesTheClassesAndTheirProgrammaticNames) {
  ScopedEnv env;
  EXPECT_EQ(DllRegisterServer(), S_OK);
  const TypeLibrary& lib = TheTypeLibrary();
  for (const ClassInfo& c : lib.classes) {
    const std::string clsid = ToString(c.guid);
    EXPECT_EQ(Text("QorvelOLE." + c.name + "\\CLSID"), clsid);
    EXPECT_EQ(Text("CLSID\\" + clsid + "\\ProgID"), "QorvelOLE." + c.name);
    EXPECT_EQ(Text("CLSID\\" + clsid + "\\InprocServer32", "ThreadingModel"), "Apartment");
    EXPECT_EQ(env.env().registry().KeyExists(HKEY_CLASSES_ROOT, "CLSID\\" + clsid + "\\Control"),
              c.control);
  }
  const std::string zebrin = "CLSID\\" + ToString(lib.FindClass("Zebrin")->guid);
  EXPECT_EQ(Text(zebrin + "\\MiscStatus\\1"), std::to_string(0x24591));
  EXPECT_EQ(Text(zebrin + "\\ToolboxBitmap32"), "QorvelOLE.ocx, 30005");
  EXPECT_EQ(Text("TypeLib\\" + ToString(lib.guid) + "\\1.0"), "Halvern Qorvel OLE control");
}

TEST(RegistrationTest, UnregisterRemovesExactlyWhatWasWritten) {
  ScopedEnv env;
  Registry& registry = env.env().registry();
  registry.SetString(HKEY_CLASSES_ROOT, "CLSID\\{00000000-0000-0000-0000-000000000001}", "",
                     "Someone else");
  registry.SetString(HKEY_CLASSES_ROOT, ".txt", "", "txtfile");
  const auto before = registry.KeysBelow(HKEY_CLASSES_ROOT, "");
  DllRegisterServer();
  EXPECT_GT(registry.KeysBelow(HKEY_CLASSES_ROOT, "").size(), before.size() + 50);
  DllUnregisterServer();
  EXPECT_EQ(registry.KeysBelow(HKEY_CLASSES_ROOT, ""), before);
}

TEST(RegistrationTest, ClassObjectsAndUnloading) {
  ScopedEnv env;
  RegisterClassFactory("Zebrin", NewZebrinObject);
  ClassFactory factory;
  EXPECT_EQ(DllGetClassObject(TheTypeLibrary().FindClass("Zebrin")->guid, &factory), S_OK);
  EXPECT_EQ(DllGetClassObject(TheTypeLibrary().FindClass("ValueBox")->guid, &factory),
            CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(DllGetClassObject(Guid{1, 2, 3, {4}}, &factory), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(DllCanUnloadNow(), S_OK);
  {
    AutomationObject zebrin = NewZebrinObject();
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
  }
  LockServer(true);
  EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
  LockServer(false);
  EXPECT_EQ(DllCanUnloadNow(), S_OK);
}

}  // namespace
}  // namespace qorvel
