' A modelling session through the DLL against the simulated Ulmora in the hosts program: the
' entity lists come back into the script's variables as arrays of Variant it can index, and the
' host sees the same queries as under qvsh.
Dim sim, u
Set sim = CreateObject("QorvelSim.Control")
Set u = CreateObject("QorvelOLE.Ulmora27")
sim.Run "Ulmora"
u.Connect
Expect u.Connected, True, "Connected"
Expect u.version, 2700, "version"
u.Execute "CREATE POINT P1 1 2 3"
u.Execute "CREATE LINE L1 0 0 0 1 1 1"
u.Execute "SELECT P1 L1"
Expect u.ItemsSelectedCount, CLng(2), "ItemsSelectedCount"

Dim names, types, number
number = 0
u.GetSelectedEntities names, types, number
Expect number, CLng(2), "the count"
Expect TypeName(names), "Variant()", "the names' array as a script's variable holds it"
Expect LBound(names) & ".." & UBound(names), "1..2", "the names' bounds"
Expect names(1) & "," & names(2), "P1,L1", "the names"
Expect types(1) & "," & types(2), "Point,Line", "the types"

Dim info
info = "ENTITY['P1'].X"
Expect u.Evaluate(info), CDbl(1), "Evaluate"
u.ClearBatchBuffer
u.AddBatchCommand "CREATE POINT P2 4 5 6"
Expect u.ProcessBatch, True, "ProcessBatch"

Dim filter
filter = 64
u.GetFilteredSelection names, types, number, filter
Expect number & ":" & names(1) & ":" & UBound(names), "1:P1:1", "the points of the selection"
Expect Lines(sim.Log("Ulmora")), "version|version|version|" & _
       "Execute(""CREATE POINT P1 1 2 3"", 0)|Execute(""CREATE LINE L1 0 0 0 1 1 1"", 0)|" & _
       "Execute(""SELECT P1 L1"", 0)|Evaluate(""SELECTION.NUMBER"")|Evaluate(""SELECTION.NUMBER"")|" & _
       "Evaluate(""SELECTION.NAME[0]"")|Evaluate(""SELECTION.TYPE[0]"")|" & _
       "Evaluate(""SELECTION.NAME[1]"")|Evaluate(""SELECTION.TYPE[1]"")|" & _
       "Evaluate(""ENTITY['P1'].X"")|exec(""CREATE POINT P2 4 5 6"")|" & _
       "Evaluate(""SELECTION.NUMBER"")|Evaluate(""SELECTION.TYPE[0]"")|" & _
       "Evaluate(""SELECTION.NAME[0]"")|Evaluate(""SELECTION.TYPE[1]"")", "what the host saw"
Finish "modelling_session"
