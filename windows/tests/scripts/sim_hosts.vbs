' The simulated hosts' program as a script reaches it: the control made by CreateObject, a
' simulator run through it and called late-bound, and the call log read back.

On Error Resume Next
Dim s : Set s = CreateObject("QorvelSim.Control")
If Err.Number <> 0 Then
  WScript.Echo "FAIL: CreateObject(""QorvelSim.Control""): " & Err.Number & " " & Err.Description
  WScript.Quit 1
End If
On Error GoTo 0

Dim zebrins : zebrins = s.Started("Zebrin")
Dim z : Set z = s.Run("Zebrin")
Check s.Started("Zebrin") = zebrins + 1, "Started counts the run"
s.SetVersion "Zebrin", 2410
Dim h : Set h = s.Host("Zebrin")
Check h.version = 2410, "the host object answers its version"
Dim command, status : command = "ECHO a" : status = 0
h.Execute command, status
Dim lines : lines = s.Log("Zebrin")
Check UBound(lines) = 1, "two calls logged, got " & (UBound(lines) + 1)
' VBScript asks for a method or a property at once, which the log shows as a call.
Check lines(0) = "version()", "first log line: " & lines(0)
Check lines(1) = "Execute(""ECHO a"", 0)", "second log line: " & lines(1)
Dim commands : commands = s.Commands("Zebrin")
Check commands(0) = "ECHO a", "Commands"

' A fault set through the control reaches the caller with its own number and text.
s.FailMember "Zebrin", "Visible", 70
On Error Resume Next
Dim v : v = h.Visible
Check Err.Number = 70, "FailMember's number, got " & Err.Number
Err.Clear
' Bad input is a clear error, not a crash.
s.Run "Lathe"
Check Err.Number = 5, "Run of an unknown host: error 5, got " & Err.Number
Check InStr(Err.Description, "Zebrin") > 0, "the error says what was expected: " & Err.Description
Err.Clear
On Error GoTo 0

' Ulmora's surfaces, with points as script arrays.
s.Run "Ulmora"
s.AddPlane "Ulmora", "P", Array(0, 0, 0), Array(10, 0, 0), Array(0, 10, 0)
Dim foot : foot = s.Nearest("Ulmora", "P", Array(3, 4, 5))
Check Abs(foot(0) - 3) < 1E-9 And Abs(foot(2)) < 1E-9, "Nearest on the plane"

' A host that goes away answers 462, as a program that has ended.
s.GoAway "Zebrin"
On Error Resume Next
v = h.version
Check Err.Number = 462, "a gone host raises 462, got " & Err.Number
On Error GoTo 0

' The program started as tarvik.exe, as the launcher starts it from the registry's path, hands
' its launch to the copy that serves the control, which then holds the running Tarvik.
Dim shell : Set shell = CreateObject("WScript.Shell")
Dim path : path = shell.RegRead("HKLM\SOFTWARE\Halvern\tarvik\2620\ExecutablePath")
Dim tarviks : tarviks = s.Started("Tarvik")
shell.Run """" & path & """", 3, True
Check s.Started("Tarvik") = tarviks + 1, "the launched tarvik.exe started a Tarvik here, got " & s.Started("Tarvik")
Check Not s.Gone("Tarvik"), "the launched Tarvik runs"

s.Quit
Finish "sim_hosts"
