-- A whole machining session, as the simulated Tarvik sees it.
local t = CreateObject("QorvelOLE.Tarvik3")
t:Connect(qvStartTarvik)                      -- started through the registry
assert(t.Connected and t.version == 2620)
local host = Sim.LastStarted("Tarvik.Document")
assert(#Sim.Started() == 1 and Sim.Started()[1] == host)

-- The version gate.
Sim.SetVersion(host, 2521)
local ok, err = pcall(function() return t.Connected end)
assert(not ok and err.number == 60000 and err.description == "Control only supports Tarvik3 onwards")
Sim.SetVersion(host, 2522)
assert(t.Connected)

-- No model: ResizeBlock sends no EDIT command.
Sim.ClearLog(host)
t:ResizeBlock(2)
for _, c in ipairs(Sim.Commands(host)) do assert(not c:find("EDIT"), c) end

Sim.LoadModel(host, 0, 0, 0, 100, 50, 20, 3)
assert(t:ModelSize(qvxmax) == 100 and t:ModelSize(qvzmax) == 20)
-- The locks go by position, nil takes the default (unlocked): the host sees one command each.
Sim.ClearLog(host)
t:ResizeBlock(2.5, nil, true)
local edits = {}
for _, c in ipairs(Sim.Commands(host)) do
  if c:find("^EDIT") then edits[#edits + 1] = c end
end
assert(table.concat(edits, "|") == table.concat({"EDIT BLOCKTYPE LIMITS",
  "EDIT BLOCK LIMITTYPE MODEL", "EDIT BLOCK ALL UNLOCK", "EDIT BLOCK XMIN UNLOCK",
  "EDIT BLOCK XMAX LOCK", "EDIT BLOCK YMIN UNLOCK", "EDIT BLOCK YMAX UNLOCK",
  "EDIT BLOCK ZMIN UNLOCK", "EDIT BLOCK ZMAX UNLOCK", "EDIT BLOCK RESETLIMIT 2.5",
  "EDIT BLOCK RESET", "EDIT BLOCK ALL UNLOCK"}, "|"), table.concat(edits, "|"))
t:StoreBlock()
assert(t:BlockSize(qvxmin) == -2.5 and t:BlockSize(qvymax) == 52.5)
assert(t.BlockDefined)

-- Numbers go out in the user's region.
Regional.SetDecimal(",")
Sim.ClearLog(host)
t:SetBlock(qvzmax, 30.25)
local cmds = Sim.Commands(host)
assert(cmds[#cmds] == "EDIT BLOCK ZMAX 30,25", cmds[#cmds])
Regional.SetDecimal(".")

-- Defaults of the optional arguments.
Sim.ClearLog(host)
t:DefineTool(qvOffCentre, 8)
cmds = Sim.Commands(host)
assert(table.concat(cmds, "|") ==
  "EDIT DIAMETER 8.|EDIT TOOLTYPE OFFCENTRETIPRAD|EDIT TIPRADIUSX 0.|EDIT TIPRADIUSY 0.",
  table.concat(cmds, "|"))

t:Disconnect()
assert(t.Connected == false)
print("machining session: ok")
