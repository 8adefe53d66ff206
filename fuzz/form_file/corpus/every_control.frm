QorvelOLE form 1
; a comment
Begin Tarvik3 Machining
End
Begin Zebrin Link
End
Begin Ulmora27 Model
End
Begin QorvelOLE.ValueBox Price
  Value = String "1,5"
  Caption = String "say \"hi\"\t"
  DecimalPlaces = Long 2
End
