' A surface edit and a projection through the DLL against the simulated Ulmora's surfaces in the
' hosts program: read, change one point, write back, and the nearest points follow the change.
Dim sim, s, n
Set sim = CreateObject("QorvelSim.Control")
sim.Run "Ulmora"
' A 3 by 3 grid: a flat square of side 2 with its middle raised to 1.
Dim g(2, 2, 2), lat, lon
For lat = 0 To 2
  For lon = 0 To 2
    g(lat, lon, 0) = lat
    g(lat, lon, 1) = lon
    g(lat, lon, 2) = 0
  Next
Next
g(1, 1, 2) = 1
sim.AddGrid "Ulmora", "Tent", g
sim.AddPlane "Ulmora", "Flat", , , , 2, 2, "Plane"

Set s = CreateObject("QorvelOLE.UlmoraSurfaceInfo")
s.Reset
Dim name, x, y, z
name = "Tent"
Expect s.GetSurface(name), True, "GetSurface"
Expect s.NumLats & "x" & s.NumLongs, "3x3", "the grid's size"
s.GetPoint 2, 2, x, y, z
Expect Show(Array(x, y, z)), "([1], [1], [1])", "the raised middle"
Expect TypeName(z), "Double", "a coordinate's type"
On Error Resume Next
name = "Flat"
s.GetSurface name
ExpectError 60002, "The surface is not a KalVane", "a plane is no Kalvane"
s.GetPoint 0, 1, x, y, z
ExpectError 60000, "No surface selected", "no surface after a failed read"
On Error GoTo 0
Expect s.SurfaceName, "", "a failed read forgets the surface"

Set n = CreateObject("QorvelOLE.UlmoraNearestPoints")
Function Foot(px, py, pz)
  Dim outX, outY, outZ
  n.GetNearestPoints "Tent", Array(px), Array(py), Array(pz), outX, outY, outZ
  Expect TypeName(outX) & " " & LBound(outX) & ".." & UBound(outX), "Variant() 0..0", _
         "the outputs as the script's arrays"
  Foot = Array(outX(0), outY(0), outZ(0))
End Function
Sub ExpectNear(actual, expected, what)
  If Abs(actual - expected) > 0.000001 Then Fail what & ": got " & actual & ", expected " & expected
End Sub

Dim before, after, foot0
foot0 = Foot(1, 1, 3)
before = foot0(2)
ExpectNear before, 1, "the middle's foot, raised"
name = "Tent"
s.GetSurface name
s.SetPoint 2, 2, 1, 1, 0
Expect s.UpdateSurface, True, "UpdateSurface"
foot0 = Foot(1, 1, 3)
after = foot0(2)
If Not after < before - 0.5 Then Fail "the middle's foot comes down: " & before & " then " & after
foot0 = Foot(1, 1, 0)
ExpectNear foot0(0), 1, "the lowered point's own foot, x"
ExpectNear foot0(1), 1, "y"
ExpectNear foot0(2), 0, "z"

' A surface that isn't there: the library's error, the outputs resized and zeroed.
Dim outX, outY, outZ
On Error Resume Next
n.GetNearestPoints "Gone", Array(1, 2), Array(1, 2), Array(1, 2), outX, outY, outZ
ExpectError 60004, "Surface does not exist", "a surface that isn't there"
On Error GoTo 0
Expect UBound(outX) & ":" & outX(UBound(outX)), "1:0", "the X output resized and zeroed"

' A status the host gives back shows a box and gives False.
Expect TakeMessages(), "", "no box so far"
sim.FailDataCalls "Ulmora", 3
Expect s.UpdateSurface, False, "a refused write"
Expect TakeMessages(), "4144||Unable to set surface data - unknown reason!", "the box"
Finish "surface_edit"
