-- An automation error nobody traps ends the script with its number and description.
local host = Sim.RunTarvik()
Sim.SetVersion(host, 2000)
CreateObject("QorvelOLE.Tarvik3"):Connect()
print("not reached")
