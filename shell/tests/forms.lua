-- Forms, text boxes, event handlers and the clipboard as a script uses them.
local check, fails = dofile(arg[0]:match("^(.*/)") .. "lib/check.lua")

Regional.SetDecimal(".")
local form = Form()
local box = form:Add("QorvelOLE.ValueBox", "Amount")
check(form:Control("amount"), box, "found by name in any case")
fails(5, function() form:Add("ValueBox", "AMOUNT") end)
fails(5, function() form:Add("PointClass", "P") end)
fails(429, function() form:Add("Gadget", "G") end)

-- Typing goes through the key filter; every change of the number is an event.
local heard = {}
local cookie = Advise(box, {ValueChanged = function() heard[#heard + 1] = box.value end})
local text = Text1(box)
text:Focus()
text:Type("-.5x")
check(text.Text, "-0.5", "a 0 before the leading point, the letter swallowed")
check(text.SelStart, 4, "the caret behind what was typed")
check(table.concat(heard, " "), "-0.5", "one event, with the value already stored")
Clipboard.SetText("12")
text.SelStart = 0
text.SelLength = #text.Text
text:Key(22)
check(box.value, 12, "pasted over the selection")
Unadvise(box, cookie)
box.value = 3
check(#heard, 2, "no handler after Unadvise")
fails(5, function() Unadvise(box, cookie) end)

-- Saved with its values, loaded back without an event; defaults are left out of the file.
form.UserMode = false                      -- design time: the design-time reads work
box.DecimalPlaces = 3
box.Readonly = true
box.value = 2.5
form:Add("ValueBox", "Fresh")
local path = os.tmpname()
form:Save(path)
local file = io.open(path):read("a")
check(file:find("Value = Double 2.5", 1, true) ~= nil, true, "the value saved")
check(file:find("Begin ValueBox Fresh\nEnd", 1, true) ~= nil, true, "defaults leave nothing")
local loaded = LoadForm(path, false)
local again = loaded:Control("Amount")
check(again.value, 2.5, "value")
check(again.DecimalPlaces, 3, "places")
check(again.Readonly, true, "read-only")
check(Text1(again).Locked, true, "the locked box")
check(Text1(loaded:Control("Fresh")).Text, "0", "a loaded control shows its 0, unlike a new one")
os.remove(path)
fails(53, function() LoadForm(path) end)

-- The run-time reads of the design-time properties.
loaded.UserMode = true
fails(393, function() return again.DecimalPlaces end)

-- A decimal symbol of two bytes is one key, and numbers are saved with the point in any locale.
Regional.SetDecimal("\u{66B}")
local arabic = Form():Add("ValueBox", "Arabic")
Text1(arabic):Type("1\u{66B}5")
check(arabic.value, 1.5, "typed with the Arabic separator")
check(Text1(arabic).SelStart, 3, "three characters")
Regional.SetDecimal(".")
if os.setlocale("de_DE.UTF-8") then
  check(loaded:Text():find("Value = Double 2.5", 1, true) ~= nil, true, "saved with the point")
  os.setlocale("C")
end

-- A control keeps its form: the form may be dropped first.
local kept = Form(false):Add("ValueBox", "Kept")
collectgarbage()
collectgarbage()
kept.value = 4
check(kept.DecimalPlaces, 6, "still in its design-mode form")
fails(5, function() Form():Add("ValueBox", "Unit price") end)
print("forms: ok")
