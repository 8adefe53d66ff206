' A machining session through the DLL against the simulated Tarvik in the hosts program:
' optional by-reference arguments with their defaults, results written back into the script's
' variables, the commands the host sees, and the version gate.
Dim sim, t, mode
Set sim = CreateObject("QorvelSim.Control")
Set t = CreateObject("QorvelOLE.Tarvik3")
sim.Run "Tarvik"
mode = Empty
t.Connect mode
Expect mode, CLng(0), "Connect's argument left Empty comes back 0"
Expect t.Connected, True, "Connected"
Expect t.version, 2620, "version"
Expect t.Units, CLng(0), "Units"
Expect t.IsModelLoaded, False, "IsModelLoaded"

' Arguments left out in the middle take their defaults; the script's variables get the values.
Dim length, number
length = 75
number = 12
sim.ClearLog "Tarvik"
t.DefineTool 2, 10, length, , , , , , number
Expect length, CDbl(75), "DefineTool's Length comes back a Double"
Expect number, CLng(12), "DefineTool's ToolNumber comes back a Long"
Expect Lines(sim.Commands("Tarvik")), "EDIT DIAMETER 10.|EDIT TLEN 75.|" & _
       "EDIT TOOLTYPE TIPRADIUSED|EDIT TOOLNUMBER 12", "DefineTool's commands"

' Seven results by reference; the name comes back quoted.
Dim name, xmin, xmax, ymin, ymax, zmin, zmax
sim.AddToolpath "Tarvik", "Finish", -1, -2, -3, 4, 5, 6
name = "Finish"
t.SizeToolpath name, xmin, xmax, ymin, ymax, zmin, zmax
Expect name, """Finish""", "SizeToolpath's name"
Expect Show(Array(xmin, xmax, ymin, ymax, zmin, zmax)), "([-1], [4], [-2], [5], [-3], [6])", _
       "SizeToolpath's extents"
Expect TypeName(zmax), "Double", "an extent's type"

sim.ClearLog "Tarvik"
t.SetBlock 1, -5
t.ResizeBlock 1, False, False, False, False, True
Expect Lines(sim.Commands("Tarvik")), "EDIT BLOCK XMIN UNLOCK|EDIT BLOCK XMIN -5.|" & _
       "NLTDEBUG UNTRACE COMMAND ACCEPT|print formvalue roughmenubar.view.dialogs.message|" & _
       "dialogs message off|NLTDEBUG UNTRACE COMMAND ACCEPT|SIZE COMPONENTS|dialogs message on", _
       "SetBlock and ResizeBlock's commands"
Expect t.BlockSize(1), CDbl(-5), "BlockSize"

' A wrong argument type is the script's error 13.
On Error Resume Next
t.SetBlock "left", 1
ExpectError 13, "Type mismatch", "SetBlock with a text axis"

' An old Tarvik is refused with the library's error.
t.Disconnect
sim.SetVersion "Tarvik", 2400
t.Connect
ExpectError 60000, "Control only supports Tarvik3 onwards", "Connect to version 2400"
Dim connected
connected = t.Connected
ExpectError 60000, "Control only supports Tarvik3 onwards", "Connected on version 2400"
On Error GoTo 0
Expect TakeMessages(), "", "no box"
Finish "machining_session"
