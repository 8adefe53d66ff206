-- Texts with zero bytes go both ways whole.
local check = dofile(arg[0]:match("^(.*/)") .. "lib/check.lua")

Clipboard.SetText("a\0b")
check(Clipboard.GetText(), "a\0b", "clipboard")

local form = Form()
local box = Text1(form:Add("ValueBox", "A"))
local ok, err = pcall(form.Add, form, "ValueBox", "B\0C")
check(not ok and err.number, 5, "a name with a zero byte is no name")
check(#form:Names(), 1, "nothing added")
box.Text = "1\0002"
box.SelStart = 0
box.SelLength = 3
check(box.SelText, "1\0002", "the selection")
check(form["Names\0"], nil, "a form's method under a longer name")
check(box["Focus\0"], nil, "a text box's method under a longer name")

local u = Sim.RunUlmora()
Sim.Ulmora.AddEntity(u, "P\0Q", "Ty\0pe", {["X\0Y"] = 1})
local entity = Sim.Ulmora.Entity(u, "P\0Q")
check(entity.name, "P\0Q", "entity name")
check(entity.type, "Ty\0pe", "entity type")
check(entity.properties["X\0Y"], 1.0, "property name")

Sim.NextHosts("Zebrin.Document", {replies = {["ECHO\0a"] = "x\0y"}, failCommands = {BAD = {5, "no\0"}}})
local zebrin = CreateObject("QorvelOLE.Zebrin")
Sim.RunZebrin()
Sim.NextHosts("Zebrin.Document")
zebrin:Connect()
check(zebrin:ExecuteEx("ECHO\0a"), "x\0y", "a scripted reply")
ok, err = pcall(function() Sim.LastStarted("Zebrin.Document"):Execute("BAD", 0) end)
check(not ok and err.description, "no\0", "a scripted failure")
check(pcall(Regional.Set, {["decimal\0"] = ","}), false, "a field under a longer name")
print("zero bytes: ok")
