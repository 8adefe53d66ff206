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
assert(a:type() == "double" and tostring(a) == "SafeArray(double, 0 to 2, 5 to 7)")

local flags = SafeArray("bool", {1, 2})
flags:put(1, Bool(5))
flags:put(2, true)
assert(flags:get(1) == 5 and flags:get(2) == true)
local texts = SafeArray("text", {-1, 2})
texts:put(0, 42)                                    -- converted to the element type
assert(texts:get(0) == "42" and texts:lbound() == -1)

-- Nested tables as an array of as many dimensions as they are deep, the outermost table the
-- first subscript: a surface grid of 3 laterals by 4 longitudinals by x, y, z.
local grid = {}
for lat = 1, 3 do
  grid[lat] = {}
  for lon = 1, 4 do grid[lat][lon] = {lat * 10, lon, lat * lon + 0.5} end
end
local g = ArrayOf("double", grid)
assert(tostring(g) == "SafeArray(double, 1 to 3, 1 to 4, 1 to 3)", tostring(g))
assert(g:get(3, 2, 1) == 30 and g:get(3, 2, 2) == 2 and g:get(2, 4, 3) == 8.5)
local zero = ArrayOf("long", {{1, 2}, {3, 4}, {5, 6}}, 0)
assert(tostring(zero) == "SafeArray(long, 0 to 2, 0 to 1)" and zero:get(2, 0) == 5)
assert(tostring(ArrayOf("text", {})) == "SafeArray(text, 1 to 0)")
-- Ragged or gapped tables are refused, naming where; elements that don't convert are the
-- runtime's errors, naming which.
local holds_itself = {}
holds_itself[1] = holds_itself
for _, case in ipairs({
  {{{1, 2}, {3}}, "ragged tables: %[2%] has 1 entry, %[1%] has 2"},
  {{{{1}, {2}}, {{3}, {4, 5}}}, "ragged tables: %[2%]%[2%] has 2 entries, %[1%]%[1%] has 1"},
  {{{1, 2}, 3}, "ragged tables: %[2%] is a number, %[1%] a table"},
  {{{1, 2}, {3, {4}}}, "ragged tables: %[2%]%[2%] is a table, %[1%]%[1%] a number"},
  {{{1, 2, x = 3}}, "%[1%] is no list"},
  {{1, nil, 3}, "the table is no list"},
  {holds_itself, "deeper than 60 levels"},
}) do
  ok, err = pcall(ArrayOf, "double", case[1])
  assert(not ok and type(err) == "string" and err:find(case[2]), err)
end
for _, case in ipairs({{"double", {{1, "x"}}, 13, "Type mismatch at [1][2]"},
                       {"integer", {{1}, {40000}}, 6, "Overflow at [2][1]"},
                       {"variant", {print}, 13, "Type mismatch at [1]"}}) do
  ok, err = pcall(ArrayOf, case[1], case[2])
  assert(not ok and err.number == case[3] and err.description == case[4], tostring(err))
end
ok, err = pcall(ArrayOf, "double", {1, 2}, 2147483647)   -- the upper bound past a Long
assert(not ok and err.number == 9, tostring(err))

-- Enumeration members are globals.
assert(qvxmin == 1 and qvzmax == 6 and qvStartNewTarvik == 2 and qvTypeWireframe == 60)

-- Bad bounds and arguments are refused, never a crash: the library's as error tables, the
-- shell's own as text.
ok, err = pcall(SafeArray, "double", {1, -1})
assert(not ok and err.number == 9)
ok, err = pcall(function() return a:get(1) end)     -- one subscript for two dimensions
assert(not ok and err.number == 9)
ok, err = pcall(SafeArray, "float", {1, 2})
assert(not ok and type(err) == "string" and err:find("invalid option 'float'"), err)
ok, err = pcall(SafeArray, "double", {1})
assert(not ok and type(err) == "string" and err:find("{lower, count}"), err)
ok, err = pcall(Bool, 40000)
assert(not ok and err:find("16%-bit"), err)
assert(Bool(7) == Bool(7) and Bool(7) ~= Bool(6) and tostring(Bool(-2)) == "Bool(-2)")

-- Lua values cross as the automation types: integers beyond 32 bits as Double, and a value
-- that has no automation type is a type mismatch.
local c = Collection()
c:Add(2 ^ 40)
c:Add(math.maxinteger)
c:Add(true)
c:Add("keyed", "K")
assert(c:Item(1) == 2 ^ 40 and math.type(c:Item(2)) == "float" and c:Item(3) == true)
assert(c:Item("k") == "keyed" and c.Count == 4 and tostring(c):find("^Collection: "))
ok, err = pcall(function() c:Add({}) end)
assert(not ok and err.number == 13 and err.description == "Type mismatch")
ok, err = pcall(function() c:Add(print) end)
assert(not ok and err.number == 13)

-- Text becomes a number by the regional symbols; a comma region groups with the point.
Regional.SetDecimal(",")
assert(Regional.Symbols().thousand == ".")
local d = SafeArray("double", {1, 1})
d:put(1, "(1.234,5)")
assert(d:get(1) == -1234.5)
assert(not pcall(Regional.Set, {thousand = ","}) and Regional.Symbols().thousand == ".")
Regional.Set{decimal = ".", thousand = " "}
d:put(1, "1 000.5")
assert(d:get(1) == 1000.5)
-- A grouping symbol numbers couldn't be read back with is refused, as a decimal one is: with
-- "E" grouping, 1E+20 would read back as 0.
for _, bad in ipairs({"E", "e", "-", "+", "(", "&", "1", "", "\t"}) do
  ok, err = pcall(Regional.Set, {thousand = bad})
  assert(not ok and err.number == 5 and Regional.Symbols().thousand == " ", bad)
end
print("values: ok")
