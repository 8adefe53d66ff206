-- Registration round trip: the classes are creatable only while registered.
assert(UnregisterServer() == 0)
local ok, err = pcall(CreateObject, "QorvelOLE.Zebrin")
assert(not ok and err.number == 429, tostring(err))
assert(RegisterServer() == 0)
local z = CreateObject("QorvelOLE.Zebrin")
assert(not CanUnloadNow())
z = nil
collectgarbage()
assert(CanUnloadNow())
ok, err = pcall(CreateObject, "QorvelOLE.ValueBox")    -- published, not built yet
assert(not ok and err.number == 429)
print("registration: ok")
