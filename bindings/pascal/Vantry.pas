{ The Vantry help-desk client for Delphi (2009 and later) and Free Pascal (3.2 and later), over vantry.dll (64-bit).

    Client := TVantryClient.Create('https://helpdesk.example.com/helpdesk/rest', 'technician', 'secret');
    try
      Client.OnCertificate := AskAboutCertificate;
      Ticket := Client.CreateTicket('42', vetClient, 'Printer', 'It is on fire.');
    finally
      Client.Free;
    end;

  A failure is an exception: EVantryError, or what an event has raised. In the background: TVantryThread. }
unit Vantry;

{$IFDEF FPC}{$MODE DELPHIUNICODE}{$ENDIF}
{$ALIGN 8}

interface

uses
  SysUtils, Classes;

type
  { An operation or a setting that failed; the message is a text to show. }
  EVantryError = class(Exception)
  private
    FStatus: Integer;
  public
    constructor Create(Status: Integer; const Message: string);
    { The server's HTTP code or a vantry_status. }
    property Status: Integer read FStatus;
  end;

  TVantryEntityType = (vetAsset, vetClient);
  TVantryLogLevel = (vllTrace, vllDebug, vllInfo, vllWarn, vllError, vllFatal);

  { One ticket of a list; the server's short forms of its texts. }
  TVantryTicket = record
    Id, Name, Detail, ClientName: string;
  end;
  TVantryTickets = array of TVantryTicket;

  { How far an exchange is, in bytes; ToReceive is 0 while that is not known. }
  TVantryProgress = record
    Sent, ToSend, Received, ToReceive: UInt64;
  end;

  { Tells whether the server's certificate (DER) is trusted. }
  TVantryCertificateEvent = function(const Host: string; const Der: TBytes): Boolean of object;
  { Takes a line of the log. }
  TVantryLogEvent = procedure(Level: TVantryLogLevel; const Line: string) of object;
  { Tells whether to go on; called every some 20 ms while an operation waits for the server. }
  TVantryProgressEvent = function(const Progress: TVantryProgress): Boolean of object;

  { The process's one client: there is one object at a time. Operations may be called on any thread; one waits until
    the one before it is through. Events are set while none runs.
    An event runs on the thread of the operation. One that raises has answered "no", and the operation raises its
    exception. From within an event an operation fails with status 604. }
  TVantryClient = class
  private
    FOnCertificate: TVantryCertificateEvent;
    FOnLog: TVantryLogEvent;
    FOnProgress: TVantryProgressEvent;
    FLogLevel: TVantryLogLevel;
    procedure SetOnCertificate(const Value: TVantryCertificateEvent);
    procedure SetOnLog(const Value: TVantryLogEvent);
    procedure SetOnProgress(const Value: TVantryProgressEvent);
  public
    constructor Create(const Endpoint, UserName, Password: string);
    destructor Destroy; override;
    procedure CreateSession;
    procedure CloseSession;
    { Gives the id of the new ticket. }
    function CreateTicket(const EntityId: string; EntityType: TVantryEntityType; const Subject, Detail: string): string;
    { Gives the id of the new note; the work time is in the server's unit. }
    function SaveTechNote(const TicketId, Text: string; WorkTime: Cardinal; IsVisible: Boolean): string;
    { Attaches a file to the note that was saved last. }
    procedure SaveAttachment(const NoteId, FileName: string; const Data: TBytes);
    function RequestTicketList(const EntityId: string; EntityType: TVantryEntityType): TVantryTickets;
    { Appends the log's lines of this level and above to a file; an empty path: to none. }
    procedure LogTo(const Path: string; Level: TVantryLogLevel);
    { Without it every server is trusted whose certificate passes the system's own validation. }
    property OnCertificate: TVantryCertificateEvent read FOnCertificate write SetOnCertificate;
    { The level of the lines that OnLog takes, and those above; set before OnLog. }
    property LogLevel: TVantryLogLevel read FLogLevel write FLogLevel;
    property OnLog: TVantryLogEvent read FOnLog write SetOnLog;
    property OnProgress: TVantryProgressEvent read FOnProgress write SetOnProgress;
  end;

  TVantryWork = procedure of object;

  { Has work done on a thread of its own. OnTerminate tells a program with a window of the end. }
  TVantryThread = class(TThread)
  private
    FWork: TVantryWork;
    FRaised: TObject;
  protected
    procedure Execute; override;
  public
    { The thread starts at once. }
    constructor Create(Work: TVantryWork);
    { Waits for the end. }
    destructor Destroy; override;
    { Waits for the end and raises what the work has raised. }
    procedure Finish;
  end;

implementation

const
  VantryLibrary = {$IFDEF MSWINDOWS}'vantry.dll'{$ELSE}'libvantry.so'{$ENDIF};
  Ok = 0;
  InvalidArgument = 603;

type
  TResult = Pointer;

  TNewTicketRecord = record
    Size: NativeUInt;
    EntityId: PAnsiChar;
    EntityType: Integer;
    Subject, Detail: PAnsiChar;
  end;

  TTechNoteRecord = record
    Size: NativeUInt;
    TicketId, Text: PAnsiChar;
    WorkTime: Cardinal;
    IsVisible: Integer;
  end;

  TAttachmentRecord = record
    Size: NativeUInt;
    NoteId, FileName: PAnsiChar;
    Data: Pointer;
    DataSize: NativeUInt;
  end;

  TTicketRecord = record
    Size: NativeUInt;
    Id, Name, Detail, ClientName: PAnsiChar;
  end;

  TCertificateCallback = procedure(User: Pointer; Host: PAnsiChar; Der: PByte; Size: NativeUInt;
    var Trust: Integer); cdecl;
  TLogCallback = procedure(User: Pointer; Level: Integer; Line: PAnsiChar); cdecl;
  TProgressCallback = procedure(User: Pointer; Sent, ToSend, Received, ToReceive: UInt64; var GiveUp: Integer); cdecl;

function vantry_status_message(Status: Integer): PAnsiChar; cdecl; external VantryLibrary;
function vantry_set_endpoint(Endpoint: PAnsiChar): Integer; cdecl; external VantryLibrary;
function vantry_set_credentials(UserName, Password: PAnsiChar): Integer; cdecl; external VantryLibrary;
function vantry_set_certificate_callback(Callback: TCertificateCallback; User: Pointer): Integer; cdecl;
  external VantryLibrary;
function vantry_set_log_callback(Callback: TLogCallback; User: Pointer; Level: Integer): Integer; cdecl;
  external VantryLibrary;
function vantry_set_log_file(Path: PAnsiChar; Level: Integer): Integer; cdecl; external VantryLibrary;
function vantry_set_progress_callback(Callback: TProgressCallback; User: Pointer): Integer; cdecl;
  external VantryLibrary;
function vantry_create_session: TResult; cdecl; external VantryLibrary;
function vantry_close_session: TResult; cdecl; external VantryLibrary;
function vantry_create_ticket(var Ticket: TNewTicketRecord): TResult; cdecl; external VantryLibrary;
function vantry_save_tech_note(var Note: TTechNoteRecord): TResult; cdecl; external VantryLibrary;
function vantry_save_attachment(var Attachment: TAttachmentRecord): TResult; cdecl; external VantryLibrary;
function vantry_request_ticket_list(EntityId: PAnsiChar; EntityType: Integer): TResult; cdecl; external VantryLibrary;
function vantry_result_status(Outcome: TResult): Integer; cdecl; external VantryLibrary;
function vantry_result_succeeded(Outcome: TResult): Integer; cdecl; external VantryLibrary;
function vantry_result_message(Outcome: TResult): PAnsiChar; cdecl; external VantryLibrary;
function vantry_result_ticket_id(Outcome: TResult): PAnsiChar; cdecl; external VantryLibrary;
function vantry_result_note_id(Outcome: TResult): PAnsiChar; cdecl; external VantryLibrary;
function vantry_result_ticket_count(Outcome: TResult): NativeUInt; cdecl; external VantryLibrary;
function vantry_result_ticket(Outcome: TResult; Index: NativeUInt; var Ticket: TTicketRecord): Integer; cdecl;
  external VantryLibrary;
procedure vantry_result_free(Outcome: TResult); cdecl; external VantryLibrary;

threadvar
  Raised: TObject; { what an event has raised during the call that this thread is in }

{ No exception may leave an event. To be called in an except block. }
procedure KeepException;
begin
  if Raised = nil then
    Raised := TObject(AcquireExceptionObject);
end;

procedure RaiseOn;
var
  Exception: TObject;
begin
  Exception := Raised;
  Raised := nil;
  if Exception <> nil then
    raise Exception;
end;

procedure Check(Status: Integer);
begin
  RaiseOn;
  if Status <> Ok then
    raise EVantryError.Create(Status, UTF8ToString(vantry_status_message(Status)));
end;

procedure CheckResult(Outcome: TResult);
begin
  RaiseOn;
  if vantry_result_succeeded(Outcome) = 0 then
    raise EVantryError.Create(vantry_result_status(Outcome), UTF8ToString(vantry_result_message(Outcome)));
end;

{ What would reach the library as another text, for a zero in it or half a surrogate pair, is refused. }
function Utf8(const Text: string): RawByteString;
begin
  Result := UTF8Encode(Text);
  if (Pos(#0, Text) > 0) or (UTF8ToString(Result) <> Text) then
    Check(InvalidArgument);
end;

procedure AskAboutCertificate(User: Pointer; Host: PAnsiChar; Der: PByte; Size: NativeUInt; var Trust: Integer); cdecl;
var
  Bytes: TBytes;
begin
  try
    SetLength(Bytes, Size);
    Move(Der^, Pointer(Bytes)^, Size);
    Trust := Ord(TVantryClient(User).OnCertificate(UTF8ToString(Host), Bytes));
  except
    KeepException;
  end;
end;

procedure HandLogOver(User: Pointer; Level: Integer; Line: PAnsiChar); cdecl;
begin
  try
    TVantryClient(User).OnLog(TVantryLogLevel(Level), UTF8ToString(Line));
  except
    KeepException;
  end;
end;

procedure TellProgress(User: Pointer; Sent, ToSend, Received, ToReceive: UInt64; var GiveUp: Integer); cdecl;
var
  Progress: TVantryProgress;
begin
  GiveUp := 1; { also for an event that raises }
  try
    Progress.Sent := Sent;
    Progress.ToSend := ToSend;
    Progress.Received := Received;
    Progress.ToReceive := ToReceive;
    GiveUp := Ord(not TVantryClient(User).OnProgress(Progress));
  except
    KeepException;
  end;
end;

constructor EVantryError.Create(Status: Integer; const Message: string);
begin
  inherited Create(Message);
  FStatus := Status;
end;

constructor TVantryClient.Create(const Endpoint, UserName, Password: string);
begin
  inherited Create;
  FLogLevel := vllInfo;
  Check(vantry_set_endpoint(PAnsiChar(Utf8(Endpoint))));
  Check(vantry_set_credentials(PAnsiChar(Utf8(UserName)), PAnsiChar(Utf8(Password))));
end;

destructor TVantryClient.Destroy;
begin
  vantry_set_certificate_callback(nil, nil);
  vantry_set_progress_callback(nil, nil);
  vantry_set_log_callback(nil, nil, Ord(vllFatal));
  vantry_set_log_file(nil, Ord(vllFatal));
  FreeAndNil(Raised); { by the last lines of the log }
  inherited;
end;

procedure TVantryClient.SetOnCertificate(const Value: TVantryCertificateEvent);
begin
  FOnCertificate := Value;
  if Assigned(Value) then
    Check(vantry_set_certificate_callback(AskAboutCertificate, Self))
  else
    Check(vantry_set_certificate_callback(nil, nil));
end;

procedure TVantryClient.SetOnLog(const Value: TVantryLogEvent);
begin
  FOnLog := Value;
  if Assigned(Value) then
    Check(vantry_set_log_callback(HandLogOver, Self, Ord(FLogLevel)))
  else
    Check(vantry_set_log_callback(nil, nil, Ord(FLogLevel)));
end;

procedure TVantryClient.SetOnProgress(const Value: TVantryProgressEvent);
begin
  FOnProgress := Value;
  if Assigned(Value) then
    Check(vantry_set_progress_callback(TellProgress, Self))
  else
    Check(vantry_set_progress_callback(nil, nil));
end;

procedure TVantryClient.LogTo(const Path: string; Level: TVantryLogLevel);
begin
  if Path = '' then
    Check(vantry_set_log_file(nil, Ord(Level)))
  else
    Check(vantry_set_log_file(PAnsiChar(Utf8(Path)), Ord(Level)));
end;

procedure TVantryClient.CreateSession;
var
  Outcome: TResult;
begin
  Outcome := vantry_create_session;
  try
    CheckResult(Outcome);
  finally
    vantry_result_free(Outcome);
  end;
end;

procedure TVantryClient.CloseSession;
var
  Outcome: TResult;
begin
  Outcome := vantry_close_session;
  try
    CheckResult(Outcome);
  finally
    vantry_result_free(Outcome);
  end;
end;

function TVantryClient.CreateTicket(const EntityId: string; EntityType: TVantryEntityType;
  const Subject, Detail: string): string;
var
  Id, SubjectText, DetailText: RawByteString;
  Ticket: TNewTicketRecord;
  Outcome: TResult;
begin
  Id := Utf8(EntityId);
  SubjectText := Utf8(Subject);
  DetailText := Utf8(Detail);
  Ticket.Size := SizeOf(Ticket);
  Ticket.EntityId := PAnsiChar(Id);
  Ticket.EntityType := Ord(EntityType);
  Ticket.Subject := PAnsiChar(SubjectText);
  Ticket.Detail := PAnsiChar(DetailText);
  Outcome := vantry_create_ticket(Ticket);
  try
    CheckResult(Outcome);
    Result := UTF8ToString(vantry_result_ticket_id(Outcome));
  finally
    vantry_result_free(Outcome);
  end;
end;

function TVantryClient.SaveTechNote(const TicketId, Text: string; WorkTime: Cardinal; IsVisible: Boolean): string;
var
  Id, NoteText: RawByteString;
  Note: TTechNoteRecord;
  Outcome: TResult;
begin
  Id := Utf8(TicketId);
  NoteText := Utf8(Text);
  Note.Size := SizeOf(Note);
  Note.TicketId := PAnsiChar(Id);
  Note.Text := PAnsiChar(NoteText);
  Note.WorkTime := WorkTime;
  Note.IsVisible := Ord(IsVisible);
  Outcome := vantry_save_tech_note(Note);
  try
    CheckResult(Outcome);
    Result := UTF8ToString(vantry_result_note_id(Outcome));
  finally
    vantry_result_free(Outcome);
  end;
end;

procedure TVantryClient.SaveAttachment(const NoteId, FileName: string; const Data: TBytes);
var
  Id, Name: RawByteString;
  Attachment: TAttachmentRecord;
  Outcome: TResult;
begin
  Id := Utf8(NoteId);
  Name := Utf8(FileName);
  Attachment.Size := SizeOf(Attachment);
  Attachment.NoteId := PAnsiChar(Id);
  Attachment.FileName := PAnsiChar(Name);
  Attachment.Data := Pointer(Data);
  Attachment.DataSize := Length(Data);
  Outcome := vantry_save_attachment(Attachment);
  try
    CheckResult(Outcome);
  finally
    vantry_result_free(Outcome);
  end;
end;

function TVantryClient.RequestTicketList(const EntityId: string; EntityType: TVantryEntityType): TVantryTickets;
var
  Outcome: TResult;
  Entry: TTicketRecord;
  Index: Integer;
begin
  Outcome := vantry_request_ticket_list(PAnsiChar(Utf8(EntityId)), Ord(EntityType));
  try
    CheckResult(Outcome);
    SetLength(Result, vantry_result_ticket_count(Outcome));
    Entry.Size := SizeOf(Entry);
    for Index := 0 to High(Result) do
    begin
      Check(vantry_result_ticket(Outcome, Index, Entry));
      Result[Index].Id := UTF8ToString(Entry.Id);
      Result[Index].Name := UTF8ToString(Entry.Name);
      Result[Index].Detail := UTF8ToString(Entry.Detail);
      Result[Index].ClientName := UTF8ToString(Entry.ClientName);
    end;
  finally
    vantry_result_free(Outcome);
  end;
end;

constructor TVantryThread.Create(Work: TVantryWork);
begin
  FWork := Work;
  inherited Create(False);
end;

destructor TVantryThread.Destroy;
begin
  inherited;
  FRaised.Free;
end;

procedure TVantryThread.Execute;
begin
  try
    FWork();
  except
    FRaised := TObject(AcquireExceptionObject);
  end;
end;

procedure TVantryThread.Finish;
var
  Exception: TObject;
begin
  WaitFor;
  Exception := FRaised;
  FRaised := nil;
  if Exception <> nil then
    raise Exception;
end;

end.
