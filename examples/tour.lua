-- A tour of QorvelOLE: a Zebrin session, a machining session with Tarvik3, a modelling
-- session with Ulmora27 and a surface edit with the surface tools, all against the simulated
-- hosts, then a ValueBox typed into on a form and a PointClass. Run it with:
--   qvsh examples/tour.lua [folder]
-- The surface edit leaves two pictures in the folder (the system's temporary one by default).
local pictures = arg and arg[1] or os.getenv("TMPDIR") or "/tmp"

-- One line of the session: a label, then the values.
local function show(label, ...)
  local values = table.pack(...)
  for i = 1, values.n do
    local v = values[i]
    values[i] = math.type(v) == "float" and ("%g"):format(v) or tostring(v)
  end
  print(("  %-30s %s"):format(label, table.concat(values, "  ")))
end

local function extents(label, size)
  print(("  %-30s x %g..%g  y %g..%g  z %g..%g"):format(label, size(qvxmin), size(qvxmax),
    size(qvymin), size(qvymax), size(qvzmin), size(qvzmax)))
end

print("== Zebrin, a bare command target")
local zebrin = CreateObject("QorvelOLE.Zebrin")
show("connected before Connect", zebrin.Connected)
zebrin:Connect(qvStartZebrin)              -- no Zebrin runs yet: started through the registry
show("connected, version", zebrin.Connected, zebrin.version)

local host = GetObject("Zebrin.Document")   -- the running host itself, to see what it gets
Sim.ClearLog(host)
zebrin.InformationWindow = true
zebrin:Execute("ECHO the output of Execute is dropped")
show("ExecuteEx", (zebrin:ExecuteEx("ECHO hello from Zebrin"):gsub("\r\n$", "")))
zebrin.WindowState = qvMaximise
show("busy, window state, visible", zebrin.Busy, zebrin.WindowState, zebrin.Visible)
print("  the host saw:")
for _, line in ipairs(Sim.Log(host)) do print("    " .. line) end

-- Most members report a failure by their result; the Visible put lets the host's error through.
Sim.GoAway(host)
show("ExecuteEx with the host gone", zebrin:ExecuteEx("ECHO anyone?"))
local ok, err = pcall(function() zebrin.Visible = true end)
show("Visible = true, trapped", err.number, err.description)
zebrin:Disconnect()
show("connected after Disconnect", zebrin.Connected)

print()
print("== Tarvik3, machining")
local tarvik = CreateObject("QorvelOLE.Tarvik3")
tarvik:Connect(qvStartTarvik)              -- started through its registry entry as well
show("connected, version", tarvik.Connected, tarvik.version)
local machine = Sim.LastStarted("Tarvik.Document")

Sim.Tarvik.LoadModel(machine, -50, -25, 0, 50, 25, 30, 12)
show("model loaded", tarvik.IsModelLoaded)
extents("model", function(axis) return tarvik:ModelSize(axis) end)

tarvik:ResizeBlock(5)                      -- the block around the model, 5 all round
tarvik:StoreBlock()
extents("block, offset 5", function(axis) return tarvik:BlockSize(axis) end)
tarvik:SetBlock(qvzmin, 0)
tarvik:ResizeBlock(10, false, false, false, false, true)   -- ZminLock: the floor stays
tarvik:StoreBlock()
extents("block, offset 10, zmin locked", function(axis) return tarvik:BlockSize(axis) end)

Sim.ClearLog(machine)
local _, length, tip, angle, chamfer, x_offset, y_offset, number, name =
  tarvik:DefineTool(qvTipRadiused, 10, 75, 1, nil, nil, nil, nil, 12, "D10 R1")
show("tool arguments after the call", length, tip, angle, chamfer, x_offset, y_offset, number, name)
print("  tool commands sent:")
for _, command in ipairs(Sim.Commands(machine)) do print("    " .. command) end
tarvik.Units = qvINCHES
show("units", tarvik.Units == qvINCHES and "inches" or "mm")
tarvik.Units = qvMM

Sim.Tarvik.AddToolpath(machine, "Rough 1", -40, -20, 1, 40, 20, 29)
Sim.Tarvik.AddToolpath(machine, "Finish 2", -45, -22, 0, 45, 22, 30)
Sim.Tarvik.AddToolpath(machine, "Rest 3", -10, -10, 5, 10, 10, 25)
Sim.Tarvik.SetActive(machine, "toolpath", "Finish 2")
local toolpaths, active
_, toolpaths, active = tarvik:GetToolpathList(Collection(), 0)
show("toolpaths", toolpaths.Count, "active: " .. toolpaths:Item(active))
for i = 1, toolpaths.Count do print(("    %s %d %s"):format(i == active and "*" or " ", i, toolpaths:Item(i))) end

local toolpath, xmin, xmax, ymin, ymax, zmin, zmax
_, toolpath, xmin, xmax, ymin, ymax, zmin, zmax = tarvik:SizeToolpath("Rough 1", 0, 0, 0, 0, 0, 0)
print(("  %-30s x %g..%g  y %g..%g  z %g..%g"):format("toolpath " .. toolpath, xmin, xmax, ymin,
  ymax, zmin, zmax))

-- Raised errors: a bad axis, and the version gate.
ok, err = pcall(function() return tarvik:BlockSize(7) end)
show("BlockSize(7), trapped", tostring(err))
Sim.SetVersion(machine, 2400)
ok, err = pcall(function() return tarvik.Connected end)
show("a Tarvik 2400, trapped", tostring(err))
Sim.SetVersion(machine, 2620)
tarvik:Disconnect()
show("connected after Disconnect", tarvik.Connected)
show("message boxes shown", #MessageBoxes())

print()
print("== Ulmora27, modelling")
local modeller = Sim.RunUlmora()            -- the control can't start Ulmora: it must run
local ulmora = CreateObject("QorvelOLE.Ulmora27")
ulmora:Connect()
show("connected, version", ulmora.Connected, ulmora.version)

-- A batch goes to the host in one call when it is processed; nothing reaches it before.
ulmora:ClearBatchBuffer()
for _, command in ipairs({"CREATE POINT P1 10 20 30", "CREATE LINE L1 0 0 0 10 0 0",
                          "CREATE CURVE C1 0 0 0 5 5 0 10 0 0", "CREATE COMPCURVE CC1 L1 C1",
                          "CREATE SURFACE S1 4 5", "CREATE ANNOTATION N1 Note"}) do
  ulmora:AddBatchCommand(command)
end
show("batch processed", ulmora:ProcessBatch())
local _, names, types, count = ulmora:GetCreatedEntities(nil, nil, 0)
show("created", count)
for i = 1, count do print(("    %-4s %s"):format(names:get(i), types:get(i))) end

ulmora:Execute("SELECT ALL")
show("selected", ulmora.ItemsSelectedCount)
_, names, types, count = ulmora:GetFilteredSelection(nil, nil, 0, qvTypeWireframe)
local wireframe = {}
for i = 1, count do wireframe[i] = names:get(i) .. " (" .. types:get(i) .. ")" end
show("wireframe of the selection", table.concat(wireframe, ", "))

ulmora:StoreData("P1.X")
show("P1.X", ulmora.StoredData, ulmora.StoreType == SingleValue and "SingleValue" or "VectorArray")
ulmora:StoreData("P1.POSITION")
local position = ulmora.StoredData
show("P1.POSITION", position:get(0), position:get(1), position:get(2),
  ulmora.StoreType == VectorArray and "VectorArray" or "SingleValue")
show("Evaluate ENTITY['C1'].TYPE", (ulmora:Evaluate("ENTITY['C1'].TYPE")))

-- An old Ulmora is refused with a message box at each probe, not with an error.
Sim.SetVersion(modeller, 2600)
show("an Ulmora 2600: connected", ulmora.Connected)
Sim.SetVersion(modeller, 2700)
ulmora:Disconnect()
show("message boxes shown", #MessageBoxes())

print()
print("== UlmoraSurfaceInfo and UlmoraNearestPoints, a surface edit")
-- Half a drum of radius 20 around the z axis, 40 high: 7 laterals around, 5 longitudinals up.
Sim.Ulmora.AddCylinder(modeller, "Drum", {radius = 20, angle = 180, length = 40, nlats = 7,
                                          nlons = 5})
local surface = CreateObject("QorvelOLE.UlmoraSurfaceInfo")
surface:Reset()                            -- binds the running Ulmora; nothing else does
show("active", surface.Active)
show("read Drum", surface:GetSurface("Drum"), surface.NumLats .. " by " .. surface.NumLongs)
local _, _, _, x, y, z = surface:GetPoint(4, 3, 0, 0, 0)
show("point (4, 3)", ("%.3f  %.3f  %.3f"):format(x, y, z))

-- Points around the middle of the drum, projected by the host in one call.
local probes = {{0, 30, 20}, {6, 26, 26}, {-8, 24, 14}, {0, 12, 20}}
local nearest = CreateObject("QorvelOLE.UlmoraNearestPoints")
local function project()
  local xs, ys, zs = SafeArray("double", {1, #probes}), SafeArray("double", {1, #probes}),
    SafeArray("double", {1, #probes})
  for i, p in ipairs(probes) do xs:put(i, p[1]); ys:put(i, p[2]); zs:put(i, p[3]) end
  local _, _, _, _, _, ox, oy, oz = nearest:GetNearestPoints("Drum", xs, ys, zs, nil, nil, nil)
  local feet = {}
  for i = 1, #probes do feet[i] = {ox:get(i), oy:get(i), oz:get(i)} end
  return feet
end
local before = project()
local function picture(name, title)
  local path = pictures .. "/" .. name
  Sim.Ulmora.Picture(modeller, "Drum", path, {title = title, points = probes,
                                              highlights = {{4, 3}}, azimuth = 70,
                                              elevation = 20})
  return path
end
show("picture before the edit", picture("tour_drum_before.svg", "Drum as read"))

-- Pull the point at (4, 3) out by half the radius and steepen its tangent up the drum; the
-- store changes in memory, and the host sees it at UpdateSurface.
surface:SetPoint(4, 3, x * 1.5, y * 1.5, z)
local _, _, _, i, j, k, m = surface:GetTVECAfter(4, 3, 0, 0, 0, 0)
surface:SetTVECAfter(4, 3, i, j, k, m * 2)
surface:SetTVECBefore(4, 3, i, j, k, m * 2)
show("written back", surface:UpdateSurface())
local after = project()
for n, p in ipairs(probes) do
  local a, b = before[n], after[n]
  show(("probe %d moved by"):format(n),
    ("%.3f"):format(math.sqrt((a[1] - b[1]) ^ 2 + (a[2] - b[2]) ^ 2 + (a[3] - b[3]) ^ 2)))
end
show("picture after the edit", picture("tour_drum_after.svg", "Drum with (4, 3) pulled out"))

print()
print("== ValueBox, a number-entry box, and PointClass")
local form = Form()                        -- a form in run mode holds the box
local amount = form:Add("ValueBox", "Amount")
local events = 0
Advise(amount, {ValueChanged = function() events = events + 1 end})
local box = Text1(amount)

-- Types text key by key and shows what the box and the control hold after it.
local function type_into(label, control, keys)
  local before = events
  Text1(control):Type(keys)
  show(label, ("%q"):format(Text1(control).Text), "value " .. tostring(control.value),
    "events " .. (events - before))
end

Regional.SetDecimal(".")
box:Focus()
type_into("point region: 12.5", amount, "12.5")
type_into("a second point, swallowed", amount, ".")
box:Key(8)                                 -- Backspace
show("after Backspace", ("%q"):format(box.Text), amount.value)
box.Text = ""
type_into("a leading point", amount, ".75")
type_into("a letter, swallowed", amount, "x")
amount.DecimalPlaces = 3
show("TextValue with 3 places", amount.TextValue)

Regional.SetDecimal(",")                   -- a comma region: the grouping symbol becomes "."
local comma = form:Add("ValueBox", "Comma")  -- reads the symbol when it starts
Advise(comma, {ValueChanged = function() events = events + 1 end})
box = Text1(comma)
type_into("comma region: 3,25", comma, "3,25")
type_into("the point, swallowed", comma, ".")
Clipboard.SetText("7")
box.SelStart = 0
box.SelLength = #box.Text
box:Key(22)                                -- Ctrl+V over the whole text
show("pasted 7 over it", ("%q"):format(box.Text), comma.value)
Regional.SetDecimal(".")

comma.value = 2.5                          -- the client's write: the event comes
comma.SetValue = 4                         -- the silent write: no event
show("after value = 2.5, SetValue 4", comma.value, "events so far " .. events)
local ok, err = pcall(function() return comma.DecimalPlaces end)
show("DecimalPlaces at run time", tostring(err))

local point = CreateObject("QorvelOLE.PointClass")
point.Y = 2.5
show("a PointClass", point.X, point.Y, point.Z)
