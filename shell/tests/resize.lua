-- A control resized as its container would: a ValueBox's Text1 follows down to 100 twips a
-- side, a host control keeps 500 by 500, and a size no container gives is refused.
local amount = Form():Add("ValueBox", "Amount")
local box = Text1(amount)
assert(Size(amount) == 2400 and box.Width == 2400)
for _, c in ipairs({  -- asked for, then Text1's size after it
  {1234.5, 300, 1234.5, 300}, {100, 100, 100, 100}, {99, 500, 100, 100}, {0, 0, 100, 100},
}) do
  local w, h = Resize(amount, c[1], c[2])
  local sw, sh = Size(amount)
  assert(w == c[1] and h == c[2] and sw == w and sh == h, ("%s x %s: %s x %s"):format(c[1], c[2], w, h))
  assert(box.Width == c[3] and box.Height == c[4], ("%s x %s: Text1 %s"):format(c[1], c[2], box.Width))
end
local zebrin = CreateObject("QorvelOLE.Zebrin")
assert(select("#", Resize(zebrin, 3000, 40)) == 2 and Resize(zebrin, 3000, 40) == 500)
assert(select(2, Size(zebrin)) == 500)

for _, bad in ipairs({{-1, 1, "width -1"}, {1, 0 / 0, "height nan:"}, {math.huge, 1, "width inf"},
                      {1, 1e39, "height 1e+39"}}) do
  local ok, err = pcall(Resize, amount, bad[1], bad[2])
  assert(not ok and err.number == 5 and err.description:find("Invalid " .. bad[3], 1, true), tostring(err))
end
assert(Size(amount) == 0)
local ok, err = pcall(Resize, amount, "wide", 100)
assert(not ok and err:find("#2 to 'Resize' (number expected, got string)", 1, true), err)
ok, err = pcall(Size, CreateObject("QorvelOLE.PointClass"))
assert(not ok and err:find("a control expected", 1, true), err)
print("resize: ok")
