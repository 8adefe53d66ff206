-- Finalizers that clean up, as scripts often do, and meet library values that the same
-- collection has already released. Such a value stays safe to touch: it raises 91.
local seen = {}
local function try(label, f)
  local ok, err = pcall(f)
  seen[label] = ok and "no error" or type(err) == "table" and err.number or err
end

-- Lua finalizes in reverse order of marking, so the values, made after their holder, go first;
-- the holder's finalizer then reaches them, and keeps them alive.
do
  local holder = setmetatable({}, {__gc = function(h)
    try("member", function() return h.o.Connected end)
    try("method", function() h.o:Connect() end)
    try("array", function() return h.a:ubound() end)
    try("argument", function() Collection():Add(h.a) end)
    kept_object, kept_array = h.o, h.a
  end})
  holder.o = CreateObject("QorvelOLE.Tarvik3")
  holder.a = SafeArray("double", {1, 3})
end
collectgarbage()
for _, label in ipairs({"member", "method", "array", "argument"}) do
  assert(seen[label] == 91, label .. ": " .. tostring(seen[label]))
end

-- Kept past their finalizers, they are still released, whatever touches them.
for _, touch in ipairs({function() return kept_object.version end,
                        function() kept_object.Visible = true end,
                        function() return kept_array:get(1) end,
                        function() kept_array:redim(false, {1, 2}) end,
                        function() Sim.SetVersion(kept_object, 2600) end}) do
  local ok, err = pcall(touch)
  assert(not ok and err.number == 91, tostring(err))
end
assert(tostring(kept_object) == "object: released" and tostring(kept_array) == "SafeArray: released")
assert(kept_object == kept_object and kept_object ~= CreateObject("QorvelOLE.Zebrin"))

-- A finalizer called by hand releases at once, and the collector's own call later is harmless.
local z = CreateObject("QorvelOLE.Zebrin")
getmetatable(z).__gc(z)
local ok, err = pcall(function() return z.Connected end)
assert(not ok and err.number == 91, tostring(err))
kept_object, kept_array, z = nil, nil, nil
collectgarbage()

-- And as the script ends, which is where such finalizers usually run.
local last = setmetatable({}, {__gc = function(h)
  ok, err = pcall(function() return h.o.Connected end)
  if ok or err.number ~= 91 then os.exit(false) end
end})
last.o = CreateObject("QorvelOLE.Tarvik3")
print("finalizers: ok")
