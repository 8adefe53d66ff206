-- Values made by finalizers that run as the script ends, which Lua never finalizes itself, are
-- released all the same once the script has ended: the leak checker of the sanitizer build
-- finds none. A sink connected then outlives the script without reaching it.
setmetatable({}, {__gc = function()
  local form = Form()
  local amount = form:Add("ValueBox", "Amount")
  Advise(amount, {ValueChanged = function() end})
  local zebrin = CreateObject("QorvelOLE.Zebrin")
  Sim.RunZebrin()
  zebrin:Connect()
  kept = {form, Text1(amount), zebrin, SafeArray("text", {1, 2}), Collection(), Bool(1)}
end})
print("script end: ok")
