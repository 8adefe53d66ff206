' The two classes that need no host, created by name: PointClass and ValueBox.
Dim p, b, v
Set p = CreateObject("QorvelOLE.PointClass")
Expect p.X & "," & p.Y & "," & p.Z, "0,0,0", "a new point"
v = 2.5
p.X = v
p.Y = "1.5"
p.Z = -1
Expect Show(Array(p.X, p.Y, p.Z)), "([2.5], [1.5], [-1])", "the point"
Expect TypeName(p.Z), "Double", "a coordinate's type"
On Error Resume Next
p.Y = "one"
ExpectError 13, "Type mismatch", "text that is no number"
p.W = 1
ExpectError 438, "Object doesn't support this property or method", "a member it hasn't"
On Error GoTo 0

Set b = CreateObject("QorvelOLE.ValueBox")
b.value = 1.25
Expect b.value, CDbl(1.25), "value"
Expect b.TextValue, "1.250000", "TextValue"
v = 3
b.SetValue = v
Expect b.value, CDbl(3), "SetValue"
On Error Resume Next
v = b.DecimalPlaces
ExpectError 393, "", "DecimalPlaces read at run time"
b.DecimalPlaces = 40000
ExpectError 6, "Overflow", "DecimalPlaces beyond 16 bits"
On Error GoTo 0
b.DecimalPlaces = 2
b.value = 1.25
Expect b.TextValue, "1.25", "TextValue with two places"
Finish "point_and_box"
