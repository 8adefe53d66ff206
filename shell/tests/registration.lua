-- Registration from a script: qvsh registers at start, and the library can be taken out of
-- the registry and put back; the classes are creatable only while registered.
local clsid_key = "HKEY_CLASSES_ROOT\\CLSID\\{6132DEC5-B5D8-4CA4-A0A4-37DA8979BD46}"
assert(Registry.Get(clsid_key .. "\\ProgID") == "QorvelOLE.Zebrin")
assert(Registry.Get(clsid_key .. "\\InprocServer32", "ThreadingModel") == "Apartment")
assert(Registry.Exists(clsid_key .. "\\Control") and not Registry.Exists(clsid_key .. "\\Nothing"))

assert(UnregisterServer() == 0)
assert(not Registry.Exists("HKCR\\QorvelOLE.Zebrin") and not Registry.Exists("HKCR\\CLSID"))
local ok, err = pcall(CreateObject, "QorvelOLE.Zebrin")
assert(not ok and err.number == 429, tostring(err))
assert(err.description == "ActiveX component can't create object", err.description)
assert(UnregisterServer() == 0)                            -- twice is harmless

assert(RegisterServer() == 0)
local z = CreateObject("QorvelOLE.Zebrin")
assert(tostring(z):find("^Zebrin: "))

-- The library can unload once the script lets go of its objects, trapped errors or not.
assert(not CanUnloadNow())
ok, err = pcall(function() return z.NoSuchMemberWithALongName end)
assert(not ok and err.number == 438)
ok, err = pcall(function() z:Connect({}) end)
assert(not ok and err.number == 13)
ok = pcall(function() z.Visible = SafeArray("double", {1, 1}) end)
assert(not ok)
z = nil
collectgarbage()
assert(CanUnloadNow())
print("registration: ok")
