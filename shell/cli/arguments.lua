-- A script gets its arguments as ... and in arg, as lua gives them.
local first, second = ...
print(arg[0], first, second, #arg)
error("stopped on purpose")
