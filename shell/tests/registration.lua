-- Registration round trip: what the library writes, that it takes all of it away again, and
-- that the classes are creatable only while registered.
local zebrin_clsid = "{6132DEC5-B5D8-4CA4-A0A4-37DA8979BD46}"
local clsid_key = "HKEY_CLASSES_ROOT\\CLSID\\" .. zebrin_clsid

-- qvsh registers the library at start.
assert(Registry.Get("HKCR\\QorvelOLE.Zebrin\\CLSID") == zebrin_clsid)
assert(Registry.Get(clsid_key .. "\\ProgID") == "QorvelOLE.Zebrin")
assert(Registry.Get(clsid_key .. "\\InprocServer32", "ThreadingModel") == "Apartment")
assert(Registry.Get(clsid_key .. "\\MiscStatus\\1") == "148881")    -- 0x24591
assert(Registry.Exists(clsid_key .. "\\Control"))
assert(Registry.Get("HKCR\\QorvelOLE.PointClass\\CLSID") ~= nil)
assert(not Registry.Exists(clsid_key .. "\\Nothing"))

assert(UnregisterServer() == 0)
for _, class in ipairs({"Zebrin", "Tarvik3", "Ulmora27", "UlmoraNearestPoints",
                        "UlmoraSurfaceInfo", "ValueBox", "PointClass"}) do
  assert(not Registry.Exists("HKCR\\QorvelOLE." .. class), class)
end
assert(not Registry.Exists(clsid_key))
assert(not Registry.Exists("HKCR\\CLSID") and not Registry.Exists("HKCR\\TypeLib"))
local ok, err = pcall(CreateObject, "QorvelOLE.Zebrin")
assert(not ok and err.number == 429, tostring(err))
assert(err.description == "ActiveX component can't create object", err.description)
assert(UnregisterServer() == 0)                            -- twice is harmless

assert(RegisterServer() == 0)
assert(Registry.Get("HKCR\\QorvelOLE.Zebrin\\CLSID") == zebrin_clsid)
local z = CreateObject("QorvelOLE.Zebrin")
assert(tostring(z):find("^Zebrin: "))
ok, err = pcall(CreateObject, "QorvelOLE.ValueBox")       -- published, not built yet
assert(not ok and err.number == 429)
ok, err = pcall(CreateObject, "QorvelOLE.Nothing")
assert(not ok and err.number == 429)

-- The library can unload once the script lets go of its objects, trapped errors or not.
assert(not CanUnloadNow())
ok, err = pcall(function() return z.NoSuchMemberWithALongName end)
assert(not ok and err.number == 438)
ok, err = pcall(function() z:Execute() end)
assert(not ok and err.number == 450)
ok, err = pcall(function() z:Connect({}) end)
assert(not ok and err.number == 13)
ok = pcall(function() z.Visible = SafeArray("double", {1, 1}) end)
assert(not ok)
z = nil
collectgarbage()
assert(CanUnloadNow())
print("registration: ok")
