' A Zebrin session through the DLL against the simulated Zebrin in the hosts program: the calls
' the host sees, its errors with their numbers and texts, and the box a failed start shows.
Dim sim, z
Set sim = CreateObject("QorvelSim.Control")
Set z = CreateObject("QorvelOLE.Zebrin")
sim.Run "Zebrin"
z.Connect 0
Expect z.Connected, True, "Connected"
Expect z.version, 2300, "version"
Expect z.Busy, False, "Busy"
Expect z.WindowState, CLng(1), "WindowState"
Expect z.Visible, True, "Visible"
z.Execute "LINE 0 0 10 10"
Expect z.ExecuteEx("ECHO hello"), "hello" & vbCrLf, "ExecuteEx"
z.WindowState = 2
z.InformationWindow = True
Expect Lines(sim.Log("Zebrin")), "version|version|version|Busy|WindowState|Visible|" & _
       "Execute(""LINE 0 0 10 10"", 0)|ExecuteEx(""ECHO hello"", 0, """")|WindowState = 2|" & _
       "Execute(""ADVANCEDOPTS WINDOWS INFORMATION ON"", 0)", "what the host saw"

' The host's own error comes through with its number and text.
sim.FailMember "Zebrin", "Visible", 5, "Host refused"
On Error Resume Next
z.Visible = True
ExpectError 5, "Host refused", "a failing Visible put"
On Error GoTo 0
Expect z.Visible, True, "a failing Visible read gives what was last read"
sim.ClearFaults "Zebrin"

' A host that has gone: 462 with the runtime's text.
sim.GoAway "Zebrin"
On Error Resume Next
z.Visible = False
ExpectError 462, "The remote server machine does not exist or is unavailable", "Visible put"
On Error GoTo 0
Expect TakeMessages(), "", "no box so far"

' No host running: the program is started from the registry, and is not yet there to link to.
z.Disconnect
z.Connect 1
Expect z.Connected, False, "Connected after a start that can't link yet"
Expect TakeMessages(), "4112|Error connecting to Zebrin|Zebrn cannot be linked to application", _
       "the box of a start that can't link"
Finish "zebrin_session"
