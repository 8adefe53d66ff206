' The checks every session script shares. The runner puts this file in front of each script,
' which ends with Finish: cscript exits 0 even after an untrapped error, so only a script that
' reaches Finish with no failure says "passed".
Option Explicit
Dim failures, messageLog
failures = 0

Sub Expect(actual, expected, what)
  If TypeName(actual) <> TypeName(expected) Then
    Fail what & ": got " & TypeName(actual) & " " & Show(actual) & ", expected " & _
         TypeName(expected) & " " & Show(expected)
  ElseIf actual <> expected Then
    Fail what & ": got " & Show(actual) & ", expected " & Show(expected)
  End If
End Sub

' After a statement run under On Error Resume Next: the error it raised, then cleared.
Sub ExpectError(number, description, what)
  If Err.Number <> number Or Err.Description <> description Then
    Fail what & ": got error " & Err.Number & " " & Show(Err.Description) & ", expected " & _
         number & " " & Show(description)
  End If
  Err.Clear
End Sub

Sub Check(ok, what)
  If Not ok Then Fail what
End Sub

Sub Fail(text)
  WScript.Echo "FAILED: " & text
  failures = failures + 1
End Sub

Function Show(value)
  If IsArray(value) Then
    Dim i, text
    text = "("
    For i = LBound(value) To UBound(value)
      If i > LBound(value) Then text = text & ", "
      text = text & Show(value(i))
    Next
    Show = text & ")"
  ElseIf IsObject(value) Then
    Show = "<object>"
  Else
    Show = "[" & Replace(Replace(CStr(value), vbCr, "\r"), vbLf, "\n") & "]"
  End If
End Function

' The message boxes shown since the last call, one "style|title|text" each, as the library's
' boxes are recorded under the test runner: its QORVEL_MESSAGE_LOG names boxes.txt in the
' script's folder (Wine's WScript.Shell can't read the environment).
Function TakeMessages()
  Dim fso, path, file, line, parts, result
  Set fso = CreateObject("Scripting.FileSystemObject")
  path = fso.GetAbsolutePathName("boxes.txt")
  result = ""
  If fso.FileExists(path) Then
    Set file = fso.OpenTextFile(path, 1)
    Do While Not file.AtEndOfStream
      line = file.ReadLine
      parts = Split(line, vbTab)
      If result <> "" Then result = result & vbLf
      result = result & parts(0) & "|" & parts(1) & "|" & parts(2)
    Loop
    file.Close
    fso.DeleteFile path
  End If
  TakeMessages = result
End Function

Sub Finish(name)
  If failures > 0 Then
    WScript.Echo name & ": " & failures & " failed"
    WScript.Quit 1
  End If
  WScript.Echo "passed: " & name
  WScript.Quit 0
End Sub

' A list (an array of Variant, as the simulated hosts' control gives its logs) as one text,
' entries joined by "|": Wine's VBScript has no Join.
Function Lines(list)
  Dim i, text
  text = ""
  For i = LBound(list) To UBound(list)
    If i > LBound(list) Then text = text & "|"
    text = text & list(i)
  Next
  Lines = text
End Function

' Waits about `ms` milliseconds: Wine's WScript has no Sleep.
Sub Pause(ms)
  Dim stopAt
  stopAt = Timer + ms / 1000
  Do While Timer < stopAt
  Loop
End Sub
