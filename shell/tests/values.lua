-- Arrays with chosen bounds, 16-bit truth values and the collection, as scripts build them.
local a = SafeArray("double", {0, 3}, {5, 2})      -- 0..2 by 5..6
assert(a:dims() == 2 and a:lbound(1) == 0 and a:ubound(1) == 2 and a:lbound(2) == 5)
a:put(2, 6, 2.5)
assert(a:get(2, 6) == 2.5 and a:get(0, 5) == 0)
local ok, err = pcall(function() return a:get(3, 5) end)
assert(not ok and err.number == 9)
ok, err = pcall(function() a:put(0, 5, "abc") end)
assert(not ok and err.number == 13)
a:redim(true, {0, 3}, {5, 3})                       -- keeps contents, last dimension grows
assert(a:get(2, 6) == 2.5 and a:ubound(2) == 7)

local flags = SafeArray("bool", {1, 2})
flags:put(1, Bool(5))
flags:put(2, true)
assert(flags:get(1) == 5 and flags:get(2) == true)

local c = Collection()
c:Add("x")
c:Add("y")
c:Remove(1)
assert(c.Count == 1 and c:Item(1) == "y")
ok, err = pcall(function() return c:Item(2) end)
assert(not ok and err.number == 9)

-- Enumeration members are globals.
assert(qvxmin == 1 and qvzmax == 6 and qvStartNewTarvik == 2 and qvTypeWireframe == 60)
print("values: ok")
