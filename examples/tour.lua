-- A tour of QorvelOLE against the simulated hosts: a Zebrin session, then a machining session
-- with Tarvik3. Run it with: qvsh examples/tour.lua

local function yesno(b) return b and "yes" or "no" end

print("== Zebrin")
local zebrin = CreateObject("QorvelOLE.Zebrin")
print("connected before Connect:", yesno(zebrin.Connected))
zebrin:Connect(qvStartZebrin)             -- starts the program through the registry
print("connected:", yesno(zebrin.Connected), "version:", zebrin.version)
zebrin.InformationWindow = true
zebrin:Execute("ECHO this output is dropped")
io.write("captured: ", zebrin:ExecuteEx("ECHO hello from Zebrin"))
print("busy:", yesno(zebrin.Busy), "window state:", zebrin.WindowState, "visible:", yesno(zebrin.Visible))
zebrin.WindowState = qvMaximise
print("window state after maximise:", zebrin.WindowState)
local host = Sim.LastStarted("Zebrin.Document")
print("the Zebrin host saw:")
for _, line in ipairs(Sim.Log(host)) do print("  " .. line) end
zebrin:Disconnect()
print("after Disconnect, connected:", yesno(zebrin.Connected))

print()
print("== Tarvik3")
local tarvik = CreateObject("QorvelOLE.Tarvik3")
tarvik:Connect(qvStartTarvik)
print("connected:", yesno(tarvik.Connected), "version:", tarvik.version)
local machine = Sim.LastStarted("Tarvik.Document")
Sim.LoadModel(machine, -50, -25, 0, 50, 25, 30, 12)
Sim.AddToolpath(machine, "Rough 1", -40, -20, 1, 40, 20, 29)
Sim.AddToolpath(machine, "Finish 2", -45, -22, 0, 45, 22, 30)
Sim.AddToolpath(machine, "Rest 3", -10, -10, 5, 10, 10, 25)
Sim.SetActive(machine, "toolpath", "Finish 2")
print("model loaded:", yesno(tarvik.IsModelLoaded))
print(string.format("model: x %g..%g  y %g..%g  z %g..%g",
  tarvik:ModelSize(qvxmin), tarvik:ModelSize(qvxmax), tarvik:ModelSize(qvymin),
  tarvik:ModelSize(qvymax), tarvik:ModelSize(qvzmin), tarvik:ModelSize(qvzmax)))

tarvik:ResizeBlock(5, false, false, false, false, true)   -- 5 around the model, Zmin locked
tarvik:StoreBlock()
print(string.format("block: x %g..%g  y %g..%g  z %g..%g",
  tarvik:BlockSize(qvxmin), tarvik:BlockSize(qvxmax), tarvik:BlockSize(qvymin),
  tarvik:BlockSize(qvymax), tarvik:BlockSize(qvzmin), tarvik:BlockSize(qvzmax)))

tarvik:DefineTool(qvTipRadiused, 10, 75, 1, nil, nil, nil, nil, 12, "D10 R1")
print("tool commands sent:")
for _, c in ipairs(Sim.Commands(machine)) do
  if c:find("^EDIT T") or c:find("^EDIT D") then print("  " .. c) end
end
tarvik.Units = qvINCHES
print("units:", tarvik.Units == qvINCHES and "inches" or "mm")
tarvik.Units = qvMM

local toolpaths = Collection()
local _, _, active = tarvik:GetToolpathList(toolpaths, 0)
print("toolpaths:", toolpaths.Count, "active:", toolpaths:Item(active))
for i = 1, toolpaths.Count do print("  " .. i .. ": " .. toolpaths:Item(i)) end

local _, name, xmin, xmax, ymin, ymax, zmin, zmax = tarvik:SizeToolpath("Rough 1", 0, 0, 0, 0, 0, 0)
print(string.format("toolpath %s: x %g..%g  y %g..%g  z %g..%g", name, xmin, xmax, ymin, ymax, zmin, zmax))

local ok, err = pcall(function() return tarvik:BlockSize(7) end)
print("BlockSize(7):", ok and "no error" or tostring(err))
tarvik:Disconnect()
print("message boxes shown:", #MessageBoxes())
