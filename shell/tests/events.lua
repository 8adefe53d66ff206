-- Event handlers that misbehave, connect from a coroutine, or name their own control.
local check, fails = dofile(arg[0]:match("^(.*/)") .. "lib/check.lua")
local function collected(make)
  local weak = setmetatable({}, {__mode = "v"})
  make(weak)
  collectgarbage()
  collectgarbage()
  return next(weak) == nil
end

local form = Form()
local box = form:Add("ValueBox", "Amount")
local heard = 0
local cookie = Advise(box, {ValueChanged = function() heard = heard + 1 end})

-- A handler's error, or one from looking the handler up, is the handler's: the write stores
-- its value, and the other handlers still hear the event.
local raising = {
  {ValueChanged = function() error("handler fails") end},
  setmetatable({}, {__index = function() error("lookup fails") end}),
  {ValueChanged = function() Unadvise(box, -1) end},
}
for i, handlers in ipairs(raising) do
  local c = Advise(box, handlers)
  box.value = i
  check(box.value, i, "the value stored")
  check(heard, i, "the other sink heard it")
  Unadvise(box, c)
end

-- A cookie is 32 bits: one beyond connects nothing, whatever its low 32 bits.
for _, wrong in ipairs({cookie + 2 ^ 32, cookie + (1 << 32), cookie - (1 << 32), math.mininteger}) do
  fails(5, function() Unadvise(box, wrong) end)
end
box.value = 10
check(heard, #raising + 1, "still connected")

-- Handlers connected in a coroutine run on the main thread, during its life and after it.
local on_main
local co = coroutine.create(function()
  Advise(box, {ValueChanged = function() on_main = select(2, coroutine.running()) end})
  coroutine.yield()
end)
assert(coroutine.resume(co))
box.value = 11
check(on_main, true, "the handler ran on the main thread")
assert(coroutine.resume(co))
co = nil
collectgarbage()
on_main = nil
box.value = 12
check(on_main, true, "heard after the coroutine went")

-- Unadvise lets go of the handlers, and of a control its own handler names.
check(collected(function(weak)
  local handlers = {ValueChanged = function() end}
  weak[1] = handlers
  Unadvise(box, Advise(box, handlers))
end), true, "handlers after Unadvise")
check(collected(function(weak)
  local other = CreateObject("QorvelOLE.ValueBox")
  weak[1] = other
  Unadvise(other, Advise(other, {ValueChanged = function() return other.value end}))
end), true, "a control named in its handler")
print("events: ok")
