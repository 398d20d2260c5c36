' Exit without loop.
If True Then
  Exit For
End If
