-- Scripts start, fault and inspect the simulated hosts, and see the effect through a control.
local z = CreateObject("QorvelOLE.Zebrin")
local host = Sim.RunZebrin()
assert(GetObject("zebrin.document") == host and Sim.LastStarted("Zebrin.Document") == host)
z:Connect()
assert(z.Connected)

-- The call log, one readable line per call, in order.
Sim.ClearLog(host)
z:Execute("ECHO one")
assert(z:ExecuteEx("ECHO two") == "two\r\n")
z.WindowState = qvMinimise
local log = Sim.Log(host)
local want = {'Execute("ECHO one", 0)', 'ExecuteEx("ECHO two", 0, "")', "WindowState = 4"}
assert(#log == #want, table.concat(log, " | "))
for i = 1, #want do assert(log[i] == want[i], log[i]) end
assert(table.concat(Sim.Commands(host), "|") == "ECHO one|ECHO two")

-- Scripted replies, failing commands and failing members.
Sim.ScriptReply(host, "print version", "scripted")
assert(z:ExecuteEx("PRINT VERSION") == "scripted")
Sim.FailCommand(host, "ECHO three", 1000, "Refused")
assert(z:ExecuteEx("echo three") == "Error")
Sim.FailMember(host, "Busy", 70, "Permission denied")
assert(z.Busy == false)
Sim.ClearFaults(host)
Sim.SetBusy(host, true)
assert(z.Busy == true)

-- The host's own members, late-bound, without a control in between.
host.Visible = false
assert(host.Visible == false and z.Visible == false)
local ok, err = pcall(function() return host.NoSuchMember end)
assert(not ok and err.number == 438)

Sim.SetVersion(host, "2400")                     -- text that reads as a number
assert(z.version == 2400)

-- Exit: a lingering host still answers until it goes away.
Sim.LingerOnExit(host, true)
z:ExitZebrin()
assert(z.Connected and not Sim.Gone(host))
Sim.GoAway(host)
assert(Sim.Gone(host) and z.Connected == false)
ok, err = pcall(function() return host.version end)
assert(not ok and err.number == 462)

-- Tarvik's state, as its commands leave it.
local t = CreateObject("QorvelOLE.Tarvik3")
t:Connect(qvStartTarvik)
local tarvik = Sim.LastStarted("Tarvik.Document")
assert(#Sim.Started() == 2 and Sim.Started()[2] == tarvik)
assert(not Sim.Tarvik.Block(tarvik).defined and Sim.Tarvik.Units(tarvik) == "MM")
Sim.Tarvik.LoadModel(tarvik, 0, 0, 0, 10, 20, 30)
t:SetBlock(qvzmin, -4)
t:ResizeBlock(1, false, false, false, false, true)
local block = Sim.Tarvik.Block(tarvik)
assert(block.defined and block.zmin == -4 and block.zmax == 31 and block.xmin == -1)
assert(not block.locked.zmin)                      -- ResizeBlock unlocks all at the end
t.Units = qvINCHES
Sim.Tarvik.ClearModel(tarvik)
assert(t.IsModelLoaded == false and Sim.Tarvik.Units(tarvik) == "INCHES")

-- Execute and ExecuteEx told apart: reading Dialogs sends the trace command, then its query.
Sim.ClearLog(tarvik)
t:Execute("DIALOGS MESSAGE OFF")
assert(t.Dialogs == false)
assert(table.concat(Sim.Commands(tarvik, "Execute"), "|") ==
  "DIALOGS MESSAGE OFF|NLTDEBUG UNTRACE COMMAND ACCEPT")
assert(table.concat(Sim.Commands(tarvik, "executeex"), "|") ==
  "print formvalue roughmenubar.view.dialogs.message")
assert(#Sim.Commands(tarvik) == 3)

-- Hosts made later take the settings of their class. Mode 2 creates an old Tarvik, reads its
-- version, lets go of it and raises the gate's error: nothing else reaches it.
Sim.NextHosts("tarvik.document", {version = 2400, failMembers = {Exit = {70, "Denied"}}})
local fresh = CreateObject("QorvelOLE.Tarvik3")
ok, err = pcall(function() fresh:Connect(qvStartNewTarvik) end)
assert(not ok and err.number == 60000, tostring(err))
assert(err.description == "Control only supports Tarvik3 onwards")
local old = Sim.LastStarted("Tarvik.Document")
assert(old ~= tarvik and #Sim.Started() == 3)
log = Sim.Log(old)
assert(#log == 1 and log[1] == "version", table.concat(log, " | "))
assert(old.version == 2400)
ok, err = pcall(function() old:Exit() end)
assert(not ok and err.number == 70)
-- A bad preset is refused whole, and the class keeps the one it had.
ok, err = pcall(Sim.NextHosts, "Tarvik.Document", {version = 2600, lingr = true})
assert(not ok and err:find("unknown setting 'lingr'"), err)
ok, err = pcall(Sim.NextHosts, "Tarvik.Document", {failCommands = {X = {"70"}}})
assert(not ok and err:find("failCommands.X: {number, description} expected"), err)
ok, err = pcall(Sim.NextHosts, "Tarvik.Documents", {})
assert(not ok and err:find('"Zebrin.Document", "Tarvik.Document" or "Ulmora.Application" expected'), err)
ok, err = pcall(function() fresh:Connect(qvStartNewTarvik) end)
assert(not ok and err.number == 60000)
-- Without settings the class is plain again.
Sim.NextHosts("Tarvik.Document")
fresh:Connect(qvStartNewTarvik)
assert(fresh.Connected and fresh.version == 2620 and Sim.LastStarted("Tarvik.Document") ~= old)

-- A control the script drops runs Terminate when collected, and its Disconnect empties the
-- link under every other control of that host.
do local dropped = CreateObject("QorvelOLE.Tarvik3") end
collectgarbage()
assert(fresh.Connected == false)

-- A host can vanish halfway through a member: this one answers Tarvik's trace command and is
-- gone by the query behind it.
local doomed = Sim.RunTarvik()
fresh:Connect()
Sim.VanishAt(doomed, 2)
assert(fresh:ExecuteEx("PRINT FORMVALUE INFOBAR.UNITS") == "Error" and Sim.Gone(doomed))
log = Sim.Log(doomed)
assert(log[#log] == 'ExecuteEx("PRINT FORMVALUE INFOBAR.UNITS", 0, "Error")', log[#log])
assert(fresh.Connected == false)

-- Bad arguments to the controls are errors, never a crash.
ok, err = pcall(Sim.SetVersion, z, 1)
assert(not ok and err:find("simulated host expected"), err)
ok, err = pcall(Sim.Tarvik.LoadModel, host, 0, 0, 0, 1, 1, 1)
assert(not ok and err:find("simulated Tarvik expected"), err)
ok, err = pcall(Sim.Ulmora.Entities, tarvik)
assert(not ok and err:find("simulated Ulmora expected"), err)
ok, err = pcall(Sim.Log, z)
assert(not ok and err:find("simulated host or object expected"), err)
ok, err = pcall(Sim.Tarvik.SetActive, tarvik, "toolpath", "nothing")
assert(not ok and err.number == 5, tostring(err))
ok, err = pcall(Sim.Commands, host, "Exit")
assert(not ok and err:find('"Execute" or "ExecuteEx" expected'), err)
ok, err = pcall(Sim.VanishAt, tarvik, 0)
assert(not ok and err:find("a call count of 1 or more expected"), err)
ok, err = pcall(Sim.Tarvik.SetActive, tarvik, "surface", "x")
assert(not ok and err:find("invalid option"), err)
print("simulated hosts: ok")
