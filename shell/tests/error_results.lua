-- A call that raises still hands back what it wrote to its by-reference arguments: the error
-- carries them in `results`, as a successful call would have returned them after its result.
local u = Sim.RunUlmora()
Sim.Ulmora.AddEntity(u, "S1", "Surface")
Sim.Ulmora.AddEntity(u, "L1", "Line")
Sim.Ulmora.Select(u, {"S1", "L1"})
local ulmora = CreateObject("QorvelOLE.Ulmora27")
ulmora:Connect()

-- The host counts two entities, then answers the second one's type with an array.
Sim.Ulmora.ScriptEvaluate(u, "SELECTION.TYPE[1]", SafeArray("double", {0, 2}))
local ok, err = pcall(function() return ulmora:GetSelectedEntities(nil, nil, 0) end)
assert(not ok and err.number == 13 and tostring(err) == "Error 13: Type mismatch", tostring(err))
local names, types, count = table.unpack(err.results, 1, err.results.n)
assert(err.results.n == 3 and count == 2, count)
assert(names:lbound() == 1 and names:ubound() == 2, tostring(names))
assert(names:get(1) == "S1" and names:get(2) == "L1")
assert(types:get(1) == "Surface" and types:get(2) == "", types:get(2))

-- Members without by-reference parameters, and objects without type information, carry none.
ok, err = pcall(function() return ulmora:Execute() end)
assert(not ok and err.number == 450 and err.results == nil, tostring(err))
ok, err = pcall(function() return u:Evaluate("NOTHING") end)
assert(not ok and err.number == 1000 and err.results == nil, tostring(err))
print("error results: ok")
