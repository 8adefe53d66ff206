-- A handler table whose lookup raises: the error is printed, and the write goes on.
local form = Form()
local amount = form:Add("ValueBox", "Amount")
Advise(amount, setmetatable({}, {__index = function(_, name) error("no " .. name) end}))
amount.value = 3
print("stored", amount.value)
