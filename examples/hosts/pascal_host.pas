{ A host in Pascal: it creates the component late bound, sinks its events, runs a script, and writes down every event
  that says something, with what it answered.

      pascal_host [--dll PATH] SCRIPT

  The component is found by its programmatic identifier, through the registry or a manifest beside this program. With
  --dll it is taken out of that file, which need not be registered. Exit code: 0 the script ran to its end, 1 it was
  stopped or a statement failed, 2 it was rejected, 3 an error, 64 the command line is wrong.

  Compilers of Pascal leave floating-point exceptions on, and so does this program: it relies on a division by zero
  being an exception, in the middle of a run too. }
program pascal_host;

{$mode delphiunicode}
{$apptype console}
{ Between our texts and the narrow ones of the run-time library. }
{$warn 4104 off}
{$warn 4105 off}

uses
    ActiveX, ComObj, Math, SysUtils, Variants, Windows;

const
    ProgID = 'prjCorvaneScript.clsScriptControl';
    ControlClass: TGUID = '{F3C0FD1F-A4B4-4FBB-818D-BFDC51FDBF4C}';
    ControlEvents: TGUID = '{5261AAAE-0BBC-4C17-ACF9-AF6AD3AAF330}';

    { The events that need more than a yes, and the two that are asked around every statement. }
    MathsFunction = 2;
    InputNumber = 3;
    InputString = 4;
    MsgAsk = 6;
    MsgInfo = 7;
    MsgInfoEx = 8;
    GetDataSet = 14;
    KeepGoing = 37;
    FunctionCalled = 41;

    trComplete = 1;

    exitStopped = 1;
    exitRejected = 2;
    exitError = 3;
    exitUsage = 64;

type
    TTexts = array of string;

    { The arguments of one event. They arrive last one first; position 0 here is the first. }
    TArguments = record
    private
        FCall: ^TDispParams;
    public
        function Count: Integer;
        function Item(Position: Integer): PVariantArg;
        function AsText(Position: Integer): string;
        function AsSingle(Position: Integer): Single;
        function AsObject(Position: Integer): OleVariant;
        function IsObject(Position: Integer): Boolean;
        function Shown: TTexts;
        { Writes into the host's side of an argument that was passed by reference. }
        procedure AnswerFlag(Position: Integer; Flag: Boolean);
        procedure AnswerSingle(Position: Integer; Value: Single);
    end;

    { Stands for the code that drives the instrument. It can do anything, and does it at once. }
    TInstrument = class(TInterfacedObject, IUnknown, IDispatch)
    private
        FEvents: ITypeInfo;
        FExceptionMask: TFPUExceptionMask;
        FRefused: Boolean;
        FMaskChanged: Boolean;
        procedure Answer(Event: Integer; const Arguments: TArguments);
        procedure Write(Event: Integer; const Before, After: TTexts; const Refusal: string);
    protected
        function QueryInterface(constref IID: TGUID; out Obj): HResult; stdcall;
        function GetTypeInfoCount(out Count: LongInt): HResult; stdcall;
        function GetTypeInfo(Index, LocaleID: LongInt; out TypeInfo): HResult; stdcall;
        function GetIDsOfNames(const IID: TGUID; Names: Pointer; NameCount, LocaleID: LongInt;
            DispIDs: Pointer): HResult; stdcall;
        function Invoke(DispID: LongInt; const IID: TGUID; LocaleID: LongInt; Flags: Word; var Params;
            VarResult, ExcepInfo, ArgErr: Pointer): HResult; stdcall;
    public
        constructor Create(const Control: IDispatch);
        { Whether an event was left without success. }
        property Refused: Boolean read FRefused;
        { Whether a call came in with other floating-point exceptions on than this program runs with. }
        property MaskChanged: Boolean read FMaskChanged;
    end;

    { A file with the component in it, used as the system does it for a registered one. }
    TComponentFile = class
    private
        FModule: HMODULE;
        function Entry(const Name: AnsiString): Pointer;
    public
        constructor Create(const Path: string);
        function CreateControl: IDispatch;
        { Tells whether the component says that nothing of it is in use; only then is it unloaded. }
        function Unload: Boolean;
    end;

const
    VARIANT_ALPHABOOL = 2;
    AmericanEnglish = $0409;
    { What a running script fails with is an automation error; its number is the lower half. }
    AutomationErrors = HResult($800A0000);

function VariantChangeTypeEx(var Target: OleVariant; Source: PVariantArg; Locale: LCID; Flags: Word;
    Kind: TVarType): HResult; stdcall; external 'oleaut32.dll';

procedure WriteLine(const Line: string);
begin
    WriteLn(Line);
    Flush(Output);
end;

{ The system's conversion reads through a reference, and writes numbers the same way wherever it runs. }
function TextOf(Value: PVariantArg): string;
var
    Text: OleVariant;
begin
    OleCheck(VariantChangeTypeEx(Text, Value, AmericanEnglish, VARIANT_ALPHABOOL, VT_BSTR));
    Result := Text;
end;

function Quoted(const Text: string): string;
var
    Character: WideChar;
begin
    Result := '"';
    for Character in Text do
        case Character of
            #9: Result := Result + '\t';
            #10: Result := Result + '\n';
            #13: Result := Result + '\r';
            '"', '\': Result := Result + '\' + Character;
            #0 .. #8, #11, #12, #14 .. #31, #127 .. #159:
                Result := Result + '\u' + LowerCase(IntToHex(Ord(Character), 4));
        else
            Result := Result + Character;
        end;
    Result := Result + '"';
end;

function ShownValue(Value: PVariantArg): string;
begin
    Result := TextOf(Value);
    if Value^.vt and not VT_BYREF = VT_BSTR then Result := Quoted(Result);
end;

{ -------------------------------------------------------------------------------------------------------- arguments }

function TArguments.Count: Integer;
begin
    Result := FCall^.cArgs;
end;

function TArguments.Item(Position: Integer): PVariantArg;
begin
    Result := @FCall^.rgvarg^[Count - 1 - Position];
end;

function TArguments.AsText(Position: Integer): string;
begin
    Result := TextOf(Item(Position));
end;

function TArguments.AsSingle(Position: Integer): Single;
var
    Number: OleVariant;
begin
    OleCheck(VariantChangeTypeEx(Number, Item(Position), AmericanEnglish, 0, VT_R4));
    Result := Number;
end;

function TArguments.AsObject(Position: Integer): OleVariant;
begin
    Result := IDispatch(Item(Position)^.dispVal);
end;

function TArguments.IsObject(Position: Integer): Boolean;
begin
    Result := Item(Position)^.vt = VT_DISPATCH;
end;

procedure TArguments.AnswerFlag(Position: Integer; Flag: Boolean);
begin
    if Item(Position)^.vt <> VT_BYREF or VT_BOOL then OleError(DISP_E_TYPEMISMATCH);
    if Flag then
        PSmallInt(Item(Position)^.byRef)^ := -1
    else
        PSmallInt(Item(Position)^.byRef)^ := 0;
end;

procedure TArguments.AnswerSingle(Position: Integer; Value: Single);
begin
    if Item(Position)^.vt <> VT_BYREF or VT_R4 then OleError(DISP_E_TYPEMISMATCH);
    Item(Position)^.pfltVal^ := Value;
end;

{ Of a data set only what is set. Enumerations read as their numbers. }
function ShownDataSet(DataSet: OleVariant): string;
var
    Slot: Integer;

    procedure Add(const Name: string; const Value: OleVariant);
    var
        Text: string;
    begin
        Text := ShownValue(@Value);
        if (Text = '0') or (Text = '""') then Exit;
        if Result <> '' then Result := Result + ', ';
        Result := Result + Name + '=' + Text;
    end;

begin
    Result := '';
    Add('HelixAngle', DataSet.HelixAngle);
    Add('TipSpeed', DataSet.TipSpeed);
    Add('Height', DataSet.Height);
    Add('Force', DataSet.Force);
    Add('SampleDelta', DataSet.SampleDelta);
    Add('SampleType', DataSet.SampleType);
    Add('DataSetType', DataSet.DataSetType);
    Add('Direction', DataSet.Direction);
    Add('LevellingFrom', DataSet.LevellingFrom);
    Add('LevellingType', DataSet.LevellingType);
    Add('LevellingTrigger', DataSet.LevellingTrigger);
    Add('LevellingHix', DataSet.LevellingHix);
    Add('LevellingTip', DataSet.LevellingTip);
    Add('TestResult', DataSet.TestResult);
    for Slot := 0 to 7 do
        Add('DataSetVariable' + IntToStr(Slot), DataSet.DataSetVariable(Slot));
    Result := '{' + Result + '}';
end;

function TArguments.Shown: TTexts;
var
    Position: Integer;
begin
    Result := nil;
    SetLength(Result, Count);
    for Position := 0 to Count - 1 do
        if IsObject(Position) then
            Result[Position] := ShownDataSet(AsObject(Position))
        else
            Result[Position] := ShownValue(Item(Position));
end;

{ ------------------------------------------------------------------------------------------------------- instrument }

{ The names of events and arguments are the type library's own. }
constructor TInstrument.Create(const Control: IDispatch);
var
    Own: ITypeInfo;
    TypeLib: ITypeLib;
    Index: UINT;
begin
    inherited Create;
    FExceptionMask := GetExceptionMask;
    OleCheck(Control.GetTypeInfo(0, AmericanEnglish, Own));
    OleCheck(Own.GetContainingTypeLib(TypeLib, Index));
    OleCheck(TypeLib.GetTypeInfoOfGuid(ControlEvents, FEvents));
end;

{ The component asks a sink for the event interface; what it calls is the same as of any dispatch interface. }
function TInstrument.QueryInterface(constref IID: TGUID; out Obj): HResult; stdcall;
begin
    if IsEqualGUID(IID, ControlEvents) then
        Result := inherited QueryInterface(IDispatch, Obj)
    else
        Result := inherited QueryInterface(IID, Obj);
end;

function TInstrument.GetTypeInfoCount(out Count: LongInt): HResult; stdcall;
begin
    Count := 0;
    Result := S_OK;
end;

function TInstrument.GetTypeInfo(Index, LocaleID: LongInt; out TypeInfo): HResult; stdcall;
begin
    Pointer(TypeInfo) := nil;
    Result := E_NOTIMPL;
end;

function TInstrument.GetIDsOfNames(const IID: TGUID; Names: Pointer; NameCount, LocaleID: LongInt;
    DispIDs: Pointer): HResult; stdcall;
begin
    Result := E_NOTIMPL;
end;

{ No exception may leave this function: the caller knows nothing of ours. What fails is answered as not done. }
function TInstrument.Invoke(DispID: LongInt; const IID: TGUID; LocaleID: LongInt; Flags: Word; var Params;
    VarResult, ExcepInfo, ArgErr: Pointer): HResult; stdcall;
var
    Arguments: TArguments;
    Before: TTexts;
    Refusal: string;
begin
    Result := S_OK;
    if GetExceptionMask <> FExceptionMask then FMaskChanged := True;
    try
        Arguments.FCall := @Params;
        Before := Arguments.Shown;
        Refusal := '';
        try
            Answer(DispID, Arguments);
        except
            on E: Exception do begin
                FRefused := True;
                Refusal := E.Message;
            end;
        end;
        if ((DispID <> KeepGoing) and (DispID <> FunctionCalled)) or (Refusal <> '') then
            Write(DispID, Before, Arguments.Shown, Refusal);
    except
        Result := E_FAIL;
    end;
end;

function Computed(const Name: string; P0, P1: Double): Double;
begin
    if SameText(Name, 'Add') then
        Result := P0 + P1
    else if SameText(Name, 'Subtract') then
        Result := P0 - P1
    else if SameText(Name, 'Multiply') then
        Result := P0 * P1
    else if SameText(Name, 'Divide') then
        Result := P0 / P1
    else
        raise Exception.Create('there is no function called ' + Quoted(Name));
end;

{ The last argument is always tSucess. The one before it tells the component, in the events of its dialogs, whether to
  show them: this host has no operator. }
procedure TInstrument.Answer(Event: Integer; const Arguments: TArguments);
var
    DataSet: OleVariant;
begin
    case Event of
        FunctionCalled:
            Arguments.AnswerFlag(1, True);
        MathsFunction:
            Arguments.AnswerSingle(5, Computed(Arguments.AsText(0), Arguments.AsSingle(1), Arguments.AsSingle(2)));
        InputNumber, InputString, MsgAsk, MsgInfo, MsgInfoEx:
            Arguments.AnswerFlag(Arguments.Count - 2, False);
        GetDataSet: begin
            DataSet := Arguments.AsObject(0);
            DataSet.TestResult := trComplete;
        end;
    end;
    Arguments.AnswerFlag(Arguments.Count - 1, True);
end;

{ Event(all arguments) -> those that the answer has changed, and tSucess }
procedure TInstrument.Write(Event: Integer; const Before, After: TTexts; const Refusal: string);
var
    Names: array [0 .. 31] of WideString;
    Found: UINT;
    Position: Integer;
    Given, Answered, Value: string;
begin
    OleCheck(FEvents.GetNames(Event, @Names, Length(Names), Found));
    Given := '';
    Answered := '';
    for Position := 0 to High(Before) do begin
        if Position < High(Before) then begin
            if Given <> '' then Given := Given + ', ';
            Given := Given + Names[Position + 1] + '=' + Before[Position];
        end;
        Value := After[Position];
        if (Value = Before[Position]) and (Position < High(Before)) then Continue;
        if (Event = GetDataSet) and (Position = 0) then Value := Format('{TestResult=%d}', [trComplete]);
        if Answered <> '' then Answered := Answered + ', ';
        Answered := Answered + Names[Position + 1] + '=' + Value;
    end;
    Value := Names[0] + '(' + Given + ') -> ' + Answered;
    if Refusal <> '' then Value := Value + '; refused: ' + Refusal;
    WriteLine(Value);
end;

{ --------------------------------------------------------------------------------------------------- component file }

constructor TComponentFile.Create(const Path: string);
begin
    inherited Create;
    FModule := LoadLibraryExW(PWideChar(ExpandFileName(Path)), 0, LOAD_WITH_ALTERED_SEARCH_PATH);
    if FModule = 0 then RaiseLastOSError;
end;

function TComponentFile.Entry(const Name: AnsiString): Pointer;
begin
    Result := GetProcAddress(FModule, PAnsiChar(Name));
    if Result = nil then RaiseLastOSError;
end;

function TComponentFile.CreateControl: IDispatch;
var
    GetClassObject: function(constref ClassID, IID: TGUID; out Obj): HResult; stdcall;
    Factory: IClassFactory;
begin
    GetClassObject := Entry('DllGetClassObject');
    OleCheck(GetClassObject(ControlClass, IClassFactory, Factory));
    OleCheck(Factory.CreateInstance(nil, IDispatch, Result));
end;

function TComponentFile.Unload: Boolean;
var
    CanUnloadNow: function: HResult; stdcall;
begin
    CanUnloadNow := Entry('DllCanUnloadNow');
    Result := CanUnloadNow = S_OK;
    if Result then FreeLibrary(FModule);
end;

{ -------------------------------------------------------------------------------------------------------------- host }

function Run(const Control: IDispatch; const Script: string): Integer;
var
    Late: OleVariant;
    Instrument: TInstrument;
    Sink: IDispatch;
    Point: IConnectionPoint;
    Cookie: DWORD;
begin
    Late := Control;
    Instrument := TInstrument.Create(Control);
    Sink := Instrument;
    OleCheck((Control as IConnectionPointContainer).FindConnectionPoint(ControlEvents, Point));
    OleCheck(Point.Advise(Sink, Cookie));
    try
        if not Late.LoadScript_FromFile(Script) then begin
            WriteLine('the script is rejected');
            Exit(exitRejected);
        end;
        Result := 0;
        if not Late.RunScript then begin
            WriteLine('the run was stopped');
            Result := exitStopped;
        end else if Instrument.Refused then begin
            WriteLine('a statement failed');
            Result := exitStopped;
        end else
            WriteLine('the run ended');
    finally
        OleCheck(Point.Unadvise(Cookie));
    end;
    if Instrument.MaskChanged or (GetExceptionMask <> Instrument.FExceptionMask) then begin
        WriteLine('the component has changed which floating-point exceptions are on');
        Result := exitError;
    end;
end;

function RunRegistered(const Script: string): Integer;
begin
    Result := Run(CreateOleObject(ProgID), Script);
end;

function RunFrom(const Dll: TComponentFile; const Script: string): Integer;
begin
    Result := Run(Dll.CreateControl, Script);
end;

function Main: Integer;
var
    Dll: TComponentFile;
begin
    if (ParamCount = 1) and (Copy(ParamStr(1), 1, 2) <> '--') then Exit(RunRegistered(ParamStr(1)));
    if (ParamCount <> 3) or (ParamStr(1) <> '--dll') then begin
        WriteLine('pascal_host [--dll PATH] SCRIPT');
        Exit(exitUsage);
    end;
    Dll := TComponentFile.Create(ParamStr(2));
    try
        Result := RunFrom(Dll, ParamStr(3));
        if not Dll.Unload then begin
            WriteLine('the component is still in use');
            Result := exitError;
        end;
    finally
        Dll.Free;
    end;
end;

begin
    SetTextCodePage(Output, CP_UTF8);
    OleCheck(CoInitialize(nil));
    try
        ExitCode := Main;
    except
        on E: EOleSysError do begin
            if E.ErrorCode and HResult($FFFF0000) = AutomationErrors then
                WriteLine(Format('automation error %d: %s', [E.ErrorCode and $FFFF, E.Message]))
            else
                WriteLine(Format('error %.8x: %s', [E.ErrorCode, E.Message]));
            ExitCode := exitError;
        end;
        on E: Exception do begin
            WriteLine(E.Message);
            ExitCode := exitError;
        end;
    end;
    CoUninitialize;
end.
