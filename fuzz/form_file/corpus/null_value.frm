QorvelOLE form 1
Begin ValueBox A
  Value = Null
End
