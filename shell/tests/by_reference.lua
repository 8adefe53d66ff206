-- By-reference arguments: a member returns its result, then the final value of each
-- by-reference parameter in declaration order, omitted optional ones included.
local t = CreateObject("QorvelOLE.Tarvik3")

-- Connect has one optional by-reference argument; left out, it arrives as 0.
local packed = table.pack(t:Connect())
assert(packed.n == 2 and packed[1] == nil and packed[2] == 0, packed.n)
packed = table.pack(t:Connect(qvStartTarvik))
assert(packed.n == 2 and packed[2] == qvStartTarvik)
assert(t.Connected)
local host = Sim.LastStarted("Tarvik.Document")

-- DefineTool: eight by-reference arguments after two by value. nil takes the default.
packed = table.pack(t:DefineTool(qvTipRadiused, 10, 75, nil, nil, nil, nil, nil, 12))
assert(packed.n == 9, packed.n)
local expected = {75, -1, -1, -1, 0, 0, 12, ""}
for i, want in ipairs(expected) do
  assert(packed[i + 1] == want, ("argument %d: %s"):format(i + 2, tostring(packed[i + 1])))
end
assert(math.type(packed[2]) == "float" and math.type(packed[8]) == "integer")
local tool = Sim.Tarvik.Tool(host)
assert(tool.TLEN == "75." and tool.TOOLNUMBER == "12" and tool.DIAMETER == "10.")

-- Values are converted to the parameter's type on the way in and come back converted.
local _, length = t:DefineTool(qvEndMill, 6, "12.5")
assert(length == 12.5 and math.type(length) == "float")

-- The list members hand back the client's own collection and the active line.
Sim.Tarvik.AddToolpath(host, "Rough", 0, 0, 0, 1, 1, 1)
Sim.Tarvik.AddToolpath(host, "Finish", -1, -2, -3, 4, 5, 6)
Sim.Tarvik.SetActive(host, "toolpath", "Finish")
local list = Collection()
local result, same, active = t:GetToolpathList(list, 99)
assert(result == nil and same == list and active == 2)
assert(list.Count == 2 and list:Item(1) == "Rough")

-- A required by-reference argument left out is the member's to refuse.
local ok, err = pcall(function() return t:GetToolpathList(Collection()) end)
assert(not ok and err.number == 450, tostring(err))

-- SizeToolpath writes the name back in quotes; passing it again doubles them.
local name, xmin, xmax, ymin, ymax, zmin, zmax
_, name, xmin, xmax, ymin, ymax, zmin, zmax = t:SizeToolpath("Finish", 0, 0, 0, 0, 0, 0)
assert(name == '"Finish"' and xmin == -1 and xmax == 4 and ymin == -2 and ymax == 5)
assert(zmin == -3 and zmax == 6)
_, name, xmin = t:SizeToolpath(name, 7, 7, 7, 7, 7, 7)
assert(name == '""Finish""' and xmin == 0)

-- A property put with a by-value new value returns nothing extra through setProp.
packed = table.pack(t:setUnits(qvINCHES))
assert(packed.n == 1 and packed[1] == nil and t.Units == qvINCHES)

-- Objects without type information take every argument by value and give their result.
local raw = GetObject("Tarvik.Document")
assert(raw == host)
packed = table.pack(raw:ExecuteEx("PRINT FORMVALUE INFOBAR.UNITS", 0, ""))
assert(packed.n == 1 and packed[1] == nil)
print("by-reference results: ok")
