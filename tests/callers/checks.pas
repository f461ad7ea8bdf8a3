{ What the job does not use of the binding: checks ENDPOINT USER CLIENT LOG-FILE }
program Checks;

{$IFDEF FPC}{$MODE DELPHIUNICODE}{$ENDIF}
{$APPTYPE CONSOLE}

uses
  {$IFDEF UNIX}cthreads, cwstring, {$ENDIF} SysUtils, Math, Vantry;

type
  TChecks = class
    Client: TVantryClient;
    Password, Note, Text: string;
    Lines, LinesWithPassword, Calls: Integer;
    IsAllSent: Boolean;
    Tickets: TVantryTickets;
    procedure Failing(const What: string; Operation: TVantryWork);
    procedure Upload;
    procedure CreateTicket;
    procedure SaveNoteOnNothing;
    procedure WorkInBackground;
    function ShowCertificate(const Host: string; const Der: TBytes): Boolean;
    function Trust(const Host: string; const Der: TBytes): Boolean;
    function Refuse(const Host: string; const Der: TBytes): Boolean;
    function Reenter(const Host: string; const Der: TBytes): Boolean;
    procedure TakeLine(Level: TVantryLogLevel; const Line: string);
    procedure FailOnLine(Level: TVantryLogLevel; const Line: string);
    function WatchProgress(const Progress: TVantryProgress): Boolean;
    function GiveUp(const Progress: TVantryProgress): Boolean;
    function FailOnProgress(const Progress: TVantryProgress): Boolean;
    procedure CheckLog;
    procedure CheckProgress;
    procedure CheckBackground;
    procedure Run;
  end;

const
  FileSize = 3000000;

{ Prints what the operation has raised, or of an EVantryError its status. }
procedure TChecks.Failing(const What: string; Operation: TVantryWork);
begin
  try
    Operation();
    WriteLn(What, ': nothing was raised');
  except
    on E: EVantryError do
      case E.Status of
        404: WriteLn(What, ': ', E.Status, ' ', E.Message);
        603: WriteLn(What, ': refused');
      else
        WriteLn(What, ': ', E.Status);
      end;
    on E: Exception do
      WriteLn(What, ': ', E.Message);
  end;
end;

procedure TChecks.Upload;
var
  Data: TBytes;
begin
  SetLength(Data, FileSize);
  Client.SaveAttachment(Note, 'file', Data);
end;

procedure TChecks.CreateTicket;
begin
  Client.CreateTicket('42', vetClient, Text, 'D');
end;

procedure TChecks.SaveNoteOnNothing;
begin
  Client.SaveTechNote('9999', 'N', 1, True);
end;

procedure TChecks.WorkInBackground;
begin
  Text := 'S';
  CreateTicket;
  Tickets := Client.RequestTicketList('42', vetClient);
  raise Exception.Create('End of the work.');
end;

function TChecks.ShowCertificate(const Host: string; const Der: TBytes): Boolean;
var
  Value: Byte;
begin
  Write('certificate of ', Host, ': ');
  for Value in Der do
    Write(LowerCase(IntToHex(Value, 2)));
  WriteLn;
  Result := True;
end;

function TChecks.Trust(const Host: string; const Der: TBytes): Boolean;
begin
  Result := True;
end;

function TChecks.Refuse(const Host: string; const Der: TBytes): Boolean;
begin
  Result := False;
end;

function TChecks.Reenter(const Host: string; const Der: TBytes): Boolean;
begin
  Failing('from within a callback', Client.CreateSession);
  Result := True;
end;

procedure TChecks.TakeLine(Level: TVantryLogLevel; const Line: string);
begin
  if Level in [vllTrace..vllFatal] then
    Inc(Lines);
  if Pos(Password, Line) > 0 then
    Inc(LinesWithPassword);
end;

procedure TChecks.FailOnLine(Level: TVantryLogLevel; const Line: string);
begin
  raise Exception.Create('Enough of the log.');
end;

function TChecks.WatchProgress(const Progress: TVantryProgress): Boolean;
begin
  IsAllSent := IsAllSent or ((Progress.Sent = Progress.ToSend) and (Progress.Sent > FileSize));
  Result := True;
end;

function TChecks.GiveUp(const Progress: TVantryProgress): Boolean;
begin
  Result := False;
end;

function TChecks.FailOnProgress(const Progress: TVantryProgress): Boolean;
begin
  Inc(Calls);
  raise Exception.Create('Enough of the progress.');
end;

procedure TChecks.CheckLog;
begin
  Client.LogLevel := vllTrace;
  Client.OnLog := TakeLine;
  Client.CreateSession;
  WriteLn(Format('log: %s, %s with the password', [BoolToStr(Lines > 0, 'lines', 'no lines'),
    BoolToStr(LinesWithPassword > 0, 'some', 'none')]));
  Client.OnLog := FailOnLine;
  Failing('a log callback that fails', Client.CloseSession);
  Client.OnLog := nil;
end;

procedure TChecks.CheckProgress;
begin
  Client.CreateSession;
  Note := Client.SaveTechNote(Client.CreateTicket('42', vetClient, 'S', 'D'), 'N', 1, True);
  Client.OnProgress := WatchProgress;
  Upload;
  WriteLn('progress: ', BoolToStr(IsAllSent, '', 'not '), 'all was sent');
  Client.OnProgress := GiveUp;
  Failing('given up', Upload);
  Client.OnProgress := FailOnProgress;
  Failing('a progress callback that fails', Upload);
  WriteLn('heard: ', BoolToStr(Calls < 10, 'at once', 'late'));
  Client.OnProgress := nil;
  Client.CloseSession;
end;

procedure TChecks.CheckBackground;
var
  Thread: TVantryThread;
begin
  Thread := TVantryThread.Create(WorkInBackground);
  try
    Thread.Finish;
  except
    on E: Exception do
      if E.Message <> 'End of the work.' then
        raise;
  end;
  Thread.Free;
  WriteLn('in the background: ', Length(Tickets), ' tickets of ', Tickets[0].ClientName);
end;

procedure TChecks.Run;
begin
  Password := GetEnvironmentVariable('VANTRY_PASSWORD');
  Client := TVantryClient.Create(ParamStr(1), ParamStr(2), Password);
  Client.LogTo(ParamStr(4), vllTrace);
  Client.OnCertificate := ShowCertificate;
  Client.CreateSession;
  Client.OnCertificate := Trust;
  Client.CloseSession;
  CheckLog;
  CheckProgress;
  Client.OnCertificate := Reenter;
  Client.CreateSession;
  Client.OnCertificate := nil;
  Client.CloseSession;
  Text := 'a'#0'b';
  Failing('a zero in a text', CreateTicket);
  Text := #$D83D;
  Failing('half a surrogate pair', CreateTicket);
  Failing('the server''s failure', SaveNoteOnNothing);
  CheckBackground;
  Client.OnCertificate := Refuse;
  Client.Free;
  Client := TVantryClient.Create(ParamStr(1), ParamStr(2), Password);
  Client.CreateSession;
  Client.CloseSession;
  WriteLn('without callbacks: done');
  Client.Free;
end;

begin
  SetExceptionMask([]); { as strict as floating point can be, whatever the default is }
  with TChecks.Create do
  begin
    Run;
    Free;
  end;
end.
