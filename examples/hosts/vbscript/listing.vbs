' A host in VBScript: methods, properties, the listing of a program, the collection, the records, and errors.
'
'     cscript //nologo listing.vbs
'
' The component must be registered: scripting languages find it by its programmatic identifiers.

Option Explicit

Dim script
script = "CONST Height = 70" & vbCrLf & _
         "VAR Count = 0" & vbCrLf & _
         "Again:" & vbCrLf & _
         "Increment(Count)" & vbCrLf & _
         "MoveToHeight(Height, 0, -5, 60)" & vbCrLf & _
         "IfLessThan(Count, 2, Again)" & vbCrLf & _
         "TextCommand(""CLEAN"", ""gently"", """", """", """", """", """")" & vbCrLf & _
         "Park()"

ShowControl
ShowListing
ShowCollection
ShowRecords

' ------------------------------------------------------------------------------------------------ the script control

Sub ShowControl
    Dim control
    Set control = CreateObject("prjCorvaneScript.clsScriptControl")
    WScript.Echo "loaded: " & control.LoadScript_FromScript(script, "two heights", 12, 3)
    WScript.Echo "name:", control.ScriptFile, "uid:", control.ScriptDB_UID, "version:", control.ScriptDB_Version
    WScript.Echo "Height as a constant:", control.GetConstant("Height")
    WScript.Echo "Count as a constant:", """" & control.GetConstant("Count") & """"
    WScript.Echo "Count is a", TypeName(control.GetMemoryValue("Count")), "of", control.GetMemoryValue("Count")
    WScript.Echo "statement 16 is", control.FunctionNameFromType(16)

    ' Nothing here can be edited: the variable stays as it is, and the number is 0.
    Dim rows, count
    count = -1
    control.GetEditable rows, count
    WScript.Echo "editable:", count, TypeName(rows)

    ' Without a sink nobody answers KeepGoing, and the run is stopped after its first statement. See events.vbs.
    WScript.Echo "ran to its end: " & control.RunScript

    On Error Resume Next
    control.EditDataVariable -1, 5
    ShowError "a position that is not there"
    control.EditDataVariable "five", 5
    ShowError "a position that is no number"
    control.Rewind
    ShowError "a member that is not there"
    On Error GoTo 0

    WScript.Echo "a script with a fault is loaded: " & control.LoadScript_FromScript("MoveToHeight(", "faulty", 0, 0)
End Sub

' -------------------------------------------------------------------------------------------------------- the listing

Sub ShowListing
    Dim program, list, statement
    Set program = CreateObject("prjCorvaneScript.clsProgramFunctionList")
    Set list = Nothing
    WScript.Echo "listed before a load: " & program.CreateFunctionList(list)
    program.LoadProgramScript_FromDatabase script, "two heights", 12, 3
    WScript.Echo "loaded: " & program.ScriptLoaded & ", declarations: " & program.FunctionList.Count
    WScript.Echo "listed: " & program.CreateFunctionList(list)
    For Each statement In list
        WScript.Echo " ", statement.FunctionType, statement.FunctionName & "(" & ParametersOf(statement) & ")"
    Next
    WScript.Echo "the list is shared: " & (list Is program.FunctionList)

    On Error Resume Next
    statement = list(1).Param(2)
    ShowError "a parameter that is not there"
    On Error GoTo 0
End Sub

Function ParametersOf(statement)
    Dim i, text
    For i = 0 To statement.ParamCount - 1
        If i > 0 Then text = text & ", "
        text = text & statement.Param(i)
    Next
    ParametersOf = text
End Function

' ----------------------------------------------------------------------------------------------------- the collection

Sub ShowCollection
    Dim program, list, item
    Set program = CreateObject("prjCorvaneScript.clsProgramFunctionList")
    program.LoadProgramScript_FromDatabase "CONST A = 1", "one constant", 0, 0
    Set list = program.FunctionList
    list.Add "last", "Z"
    list.Add "first", "a", 1
    list.Add 2.5, , , "A"
    WScript.Echo "count:", list.Count, "by key:", list.Item("z"), "by position:", list(2)
    For Each item In list
        If IsObject(item) Then WScript.Echo " ", item.FunctionName Else WScript.Echo " ", TypeName(item), item
    Next
    list.Remove "Z"
    list.Remove 1
    WScript.Echo "count:", list.Count

    On Error Resume Next
    item = list(3)
    ShowError "a position beyond the last"
    item = list("Z")
    ShowError "a key that is not there"
    list.Add "again", "key"
    list.Add "again", "KEY"
    ShowError "a key that is in use"
    On Error GoTo 0
End Sub

' -------------------------------------------------------------------------------------------------------- the records

Sub ShowRecords
    Dim dataSet, parameters
    Set dataSet = CreateObject("prjCorvaneScript.clsDataSetParameters")
    dataSet.Height = 20.5
    dataSet.AddDataSetVariable(7) = "limestone"
    WScript.Echo "data set:", dataSet.Height, dataSet.Direction, dataSet.DataSetVariable(7)

    Set parameters = CreateObject("prjCorvaneScript.clsScriptParamList")
    parameters.SingleValue(0) = 1.5
    parameters.StringValue(9) = "nine"
    parameters.BooleanValue(4) = True
    WScript.Echo "parameters:", parameters.SingleValue(0), parameters.StringValue(9), "" & parameters.BooleanValue(4)

    On Error Resume Next
    parameters.StringValue(10) = "ten"
    ShowError "a slot that is not there"
    On Error GoTo 0
End Sub

Sub ShowError(title)
    WScript.Echo title & ": error", Err.Number, Err.Description
    Err.Clear
End Sub
