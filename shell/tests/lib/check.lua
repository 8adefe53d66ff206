-- What the script tests share: check a value, expect an automation error.
--   local check, fails = dofile(arg[0]:match("^(.*/)") .. "lib/check.lua")
local function check(got, want, what)
  if got ~= want then error(("%s: got %q, want %q"):format(what, tostring(got), tostring(want)), 2) end
end
local function fails(number, f)
  local ok, err = pcall(f)
  if ok or err.number ~= number then
    error(("error %s expected, got %s"):format(number, ok and "none" or tostring(err)), 2)
  end
end
return check, fails
