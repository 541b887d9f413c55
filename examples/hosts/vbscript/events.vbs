' A host in VBScript that sinks the events: it runs a script and answers for the instrument.
'
'     cscript //nologo events.vbs SCRIPT
'
' For Windows only, and not run by the tests: Wine's script host connects no event procedures. The component must be
' registered. A procedure for each event that matters bears the event's name behind the prefix; its parameters are
' those of the event, in order, and those that the event passes by reference carry the answer back. An event of the
' instrument without a procedure is left unanswered, and its statement fails; questions without one the component asks.

Option Explicit

Dim control, file
If WScript.Arguments.Count <> 1 Then
    WScript.Echo "cscript //nologo events.vbs SCRIPT"
    WScript.Quit 64
End If
file = WScript.Arguments(0)

Set control = WScript.CreateObject("prjCorvaneScript.clsScriptControl", "Control_")
If Not control.LoadScript_FromFile(file) Then
    WScript.Echo "the script is rejected"
    WScript.Quit 2
End If
If control.RunScript() Then
    WScript.Echo "the run ended"
Else
    WScript.Echo "the run was stopped"
End If
WScript.DisconnectObject control

' Asked after every statement; without a yes the run is stopped.
Sub Control_KeepGoing(tSucess)
    tSucess = True
End Sub

' Asked before every statement.
Sub Control_FunctionCalled(tType, tDoExecuteCommand, tSucess)
    tSucess = True
End Sub

Sub Control_Info(tInfoStr, tSucess)
    WScript.Echo "info: " & tInfoStr
    tSucess = True
End Sub

Sub Control_MathsFunction(tFunction, tParam0, tParam1, tParam2, tParam3, tReturn, tSucess)
    Select Case LCase(tFunction)
        Case "add" tReturn = tParam0 + tParam1
        Case "subtract" tReturn = tParam0 - tParam1
        Case "multiply" tReturn = tParam0 * tParam1
        Case Else Exit Sub
    End Select
    tSucess = True
End Sub

' The host has asked the operator itself: the component shall not.
Sub Control_MsgInfo(tQuest, tDLLExecute, tSucess)
    WScript.Echo tQuest
    tDLLExecute = False
    tSucess = True
End Sub

Sub Control_MoveIntoVessel(tTestStartHeight, tSucess)
    WScript.Echo "blade into the vessel, to " & tTestStartHeight & " mm"
    tSucess = True
End Sub

Sub Control_MoveToHeight(tHeightMM, tMoveType, tHelixAngle, tTipSpeed, tSucess)
    WScript.Echo "blade to " & tHeightMM & " mm"
    tSucess = True
End Sub

' The record is the component's own object: what is written into it stays there.
Sub Control_GetDataSet(tTestParameters, tSucess)
    WScript.Echo "data set to " & tTestParameters.Height & " mm"
    tTestParameters.TestResult = 1
    tSucess = True
End Sub

Sub Control_Park(tSucess)
    WScript.Echo "blade parked"
    tSucess = True
End Sub
