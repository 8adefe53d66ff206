-- The simulated Ulmora as a script sets it up and talks to it, member by member.
local u = Sim.RunUlmora()
assert(GetObject("Ulmora.Application") == u and Sim.LastStarted("ulmora.application") == u)
assert(u.version == 2700)
local ok, err = pcall(function() return u:ExecuteEx("DIALOG OFF", 0, "") end)
assert(not ok and err.number == 438, tostring(err))

-- A model loaded from the script, with a type the control doesn't know.
Sim.Ulmora.AddEntity(u, "S1", "Surface", {NLATS = 4, NLONS = 5, KIND = "Kalvane"})
Sim.Ulmora.AddEntity(u, "Note", "Annotation", {TEXT = "hello", ANCHOR = {1, 2, 3}})
Sim.Ulmora.Select(u, {"s1", "Note"})
assert(table.concat(Sim.Ulmora.Selection(u), "|") == "S1|Note")
assert(u:Evaluate("SELECTION.NUMBER") == 2 and u:Evaluate("SELECTION.TYPE[1]") == "Annotation")
assert(u:Evaluate("ENTITY['S1'].KIND") == "Kalvane" and u:Evaluate("ENTITY['S9'].EXISTS") == false)
local e = Sim.Ulmora.Entity(u, "note")
assert(e.name == "Note" and e.type == "Annotation" and e.properties.ANCHOR[3] == 3)
ok, err = pcall(Sim.Ulmora.Select, u, {"Nope"})
assert(not ok and err.number == 5 and err.description == "No entity named Nope", tostring(err))

-- Commands, one at a time and in a batch that stops at its first bad line.
u:Execute("CREATE POINT P1 10 20 30", 0)
u:Execute("DIALOG OFF", 0)
assert(Sim.Ulmora.Dialogs(u) == false and table.concat(Sim.Ulmora.Created(u), "|") == "P1")
ok, err = pcall(function() u:exec("MODIFY P1 X 5\r\nCREATE POINT P1 0 0 0\r\nDELETE S1") end)
assert(not ok and err.number == 1000 and err.description == "Line 2: Entity exists: P1", tostring(err))
assert(Sim.Ulmora.Entity(u, "P1").properties.X == 5 and Sim.Ulmora.Entity(u, "S1"))
assert(#Sim.Ulmora.Created(u) == 0 and table.concat(Sim.Ulmora.Updated(u), "|") == "P1")
assert(Sim.Ulmora.Batches(u)[1] == "MODIFY P1 X 5\r\nCREATE POINT P1 0 0 0\r\nDELETE S1")

-- Print: a Double for a scalar, an array from 0 for a vector.
assert(u:Print("P1.X") == 5)
local position = u:Print("P1.POSITION")
assert(position:lbound() == 0 and position:get(2) == 30, tostring(position))

-- Counts as text, scripted replies, and lists set from the script.
Sim.Ulmora.CountsAsText(u, true)
assert(u:Evaluate("UPDATED.NUMBER") == "1")
Sim.Ulmora.ScriptEvaluate(u, "CREATED.NUMBER", "7 items")
assert(u:Evaluate("created.number") == "7 items")
Sim.ClearFaults(u)
Sim.Ulmora.MarkCreated(u, {"P1", "S1"})
assert(u:Evaluate("CREATED.NUMBER") == "2" and u:Evaluate("CREATED.NAME[1]") == "S1")
ok, err = pcall(function() return u:Evaluate("CREATED.NAME[2]") end)
assert(not ok and err.number == 1000, tostring(err))

-- Hosts made later take the class's settings.
Sim.NextHosts("Ulmora.Application", {version = 2619})
assert(Sim.RunUlmora().version == 2619)
Sim.NextHosts("Ulmora.Application")
