-- A Zebrin session: the host's errors reach the script as tables, and boxes are listed.
local z = CreateObject("QorvelOLE.Zebrin")
local host = Sim.RunZebrin()
z:Connect(qvDoNotStartZebrin)
assert(z.Connected == true and z.version == 2300)

-- Visible put lets the host's error through, with its number and description.
Sim.GoAway(host)
local ok, err = pcall(function() z.Visible = false end)
assert(not ok and err.number == 462, tostring(err))
assert(err.description == "The remote server machine does not exist or is unavailable")
assert(tostring(err) == "Error 462: The remote server machine does not exist or is unavailable")

-- Starting through a registry without Zebrin's entries shows the box, and nothing starts.
assert(#MessageBoxes() == 0)
Registry.Load("shell/tests/no_zebrin.reg")
z:Disconnect()
z:Connect(qvStartZebrin)
local boxes = MessageBoxes()
assert(#boxes == 1 and boxes[1].text == "Cannot start remote Zebrin session\rCheck registry")
assert(boxes[1].style == 4112 and boxes[1].title == "Error starting Zebrin")
print("zebrin session: ok")
