-- A whole surface edit and a projection, as a script drives them.
local check = dofile(arg[0]:match("^(.*/)") .. "lib/check.lua")
local function near(got, want, what) check(math.abs(got - want) < 1e-6, true, what .. " " .. got) end

local u = Sim.RunUlmora()
-- A 3 by 3 grid given point by point: a flat square of side 2 with its middle raised to 1.
local grid = {}
for lat = 1, 3 do
  grid[lat] = {}
  for lon = 1, 3 do grid[lat][lon] = {lat - 1, lon - 1, (lat == 2 and lon == 2) and 1 or 0} end
end
Sim.Ulmora.AddGrid(u, "Tent", ArrayOf("double", grid))
Sim.Ulmora.AddPlane(u, "Flat", {nlats = 2, nlons = 2, type = "Plane"})
check(#Sim.Ulmora.Surfaces(u), 2, "surfaces")
check(u:Evaluate("SURFACE['tent'].NLATS"), 3, "NLATS in any case")

local s = CreateObject("QorvelOLE.UlmoraSurfaceInfo")
s:Reset()
check(s:GetSurface("Tent"), true, "read")
local _, _, _, x, y, z = s:GetPoint(2, 2, 0, 0, 0)
check(z, 1.0, "the raised middle")
local ok, err = pcall(function() return s:GetSurface("Flat") end)
check(err.number, 60002, "a plane is no Kalvane")
check(s.SurfaceName, "", "a failed read forgets the surface")

-- Lower the middle to 0 and write it back: the middle's nearest point follows.
local n = CreateObject("QorvelOLE.UlmoraNearestPoints")
local function foot(px, py, pz)
  local _, _, _, _, _, ox, oy, oz = n:GetNearestPoints("Tent", ArrayOf("double", {px}, 0),
    ArrayOf("double", {py}, 0), ArrayOf("double", {pz}, 0), nil, nil, nil)
  return ox:get(0), oy:get(0), oz:get(0)
end
local _, _, before = foot(1, 1, 3)
near(before, 1, "the middle's foot, raised")
s:GetSurface("Tent")
s:SetPoint(2, 2, 1, 1, 0)
check(s:UpdateSurface(), true, "written")
local _, _, after = foot(1, 1, 3)
check(after < before - 0.5, true, "the middle's foot comes down")
local fx, fy, fz = foot(1, 1, 0)  -- the lowered point is on the surface: its own foot
near(fx, 1, "x")
near(fy, 1, "y")
near(fz, 0, "z")

-- The outputs come back resized and zeroed before a numbered error, and the caught error
-- carries them.
ok, err = pcall(function()
  return n:GetNearestPoints("Gone", ArrayOf("double", {1, 2}), ArrayOf("double", {1, 2}),
    ArrayOf("double", {1, 2}), nil, nil, nil)
end)
check(err.number, 60004, "no such surface")
check(err.results[5]:ubound(), 2, "the X output resized")
check(err.results[5]:get(2), 0.0, "and zeroed")

-- A status the host gives back shows a box and gives false.
Sim.Ulmora.FailDataCalls(u, 3)
check(s:UpdateSurface(), false, "a failed write")
check(MessageBoxes()[#MessageBoxes()].text, "Unable to set surface data - unknown reason!", "box")
Sim.ClearFaults(u)
local path = os.tmpname()
Sim.Ulmora.Picture(u, "Tent", path, {points = {{1, 1, 3}}, highlights = {{2, 2}}})
check(io.open(path):read("a"):sub(1, 4), "<svg", "a picture")
os.remove(path)
print("surface edit: ok")
