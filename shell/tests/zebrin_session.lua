-- A Zebrin session through CreateObject, as the simulated host sees it.
local z = CreateObject("QorvelOLE.Zebrin")
assert(z.Connected == false)
z:Connect()                                   -- bind only: nothing runs yet
assert(z.Connected == false)
assert(#MessageBoxes() == 0)

local host = Sim.RunZebrin()
z:Connect(qvDoNotStartZebrin)
assert(z.Connected == true and z.version == 2300)
Sim.ClearLog(host)
z:Execute("ECHO a")
assert(z:ExecuteEx("ECHO b") == "b\r\n")
z.InformationWindow = Bool(1)                 -- neither -1 nor 0: nothing is sent
z.InformationWindow = false
local cmds = Sim.Commands(host)
assert(#cmds == 3, #cmds)
assert(cmds[3] == "ADVANCEDOPTS WINDOWS INFORMATION OFF")

-- Visible put lets the host's error through, with its number and description.
z:Connect()
Sim.GoAway(host)
local ok, err = pcall(function() z.Visible = false end)
assert(not ok and err.number == 462, tostring(err))
assert(err.description == "The remote server machine does not exist or is unavailable")
assert(tostring(err) == "Error 462: The remote server machine does not exist or is unavailable")
assert(z:ExecuteEx("ECHO c") == "Error")

-- Starting through the registry when it has no entries shows the box, and nothing starts.
Registry.Load("shell/tests/no_zebrin.reg")
z:Disconnect()
z:Connect(qvStartZebrin)
local boxes = MessageBoxes()
assert(#boxes == 1)
assert(boxes[1].text == "Cannot start remote Zebrin session\rCheck registry", boxes[1].text)
assert(boxes[1].style == 4112 and boxes[1].title == "Error starting Zebrin")

print("zebrin session: ok")
