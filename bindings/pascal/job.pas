{ A whole help-desk job: job ENDPOINT USER CLIENT, with VANTRY_PASSWORD set and VANTRY_TRUST=yes or no. }
program Job;

{$IFDEF FPC}{$MODE DELPHIUNICODE}{$ENDIF}
{$APPTYPE CONSOLE}

uses
  {$IFDEF UNIX}cthreads, cwstring, {$ENDIF} SysUtils, Vantry;

type
  TJob = class
    Client: TVantryClient;
    function IsTrusted(const Host: string; const Der: TBytes): Boolean;
    procedure Run;
  end;

procedure Say(const Line: string);
begin
  SetTextCodePage(Output, 65001); { of this thread }
  WriteLn(Line);
end;

{ A program with a window shows the certificate here and asks. }
function TJob.IsTrusted(const Host: string; const Der: TBytes): Boolean;
begin
  Say(Format('Certificate of %s: %d bytes, the last one %d', [Host, Length(Der), Der[High(Der)]]));
  if GetEnvironmentVariable('VANTRY_TRUST') = '' then
    raise Exception.Create('Nobody has decided about the certificate.');
  Result := GetEnvironmentVariable('VANTRY_TRUST') = 'yes';
end;

procedure TJob.Run;
var
  Ticket, Note: string;
  Entry: TVantryTicket;
begin
  Client.CreateSession;
  try
    Ticket := Client.CreateTicket(ParamStr(3), vetClient, 'Größter Drucker € 🖨', 'It does not print.');
    Note := Client.SaveTechNote(Ticket, 'Refilled.', 15, True);
    Client.SaveAttachment(Note, 'counter.txt', BytesOf('Pages: 4711'));
    Say('Created ticket ' + Ticket + ' with note ' + Note);
    for Entry in Client.RequestTicketList(ParamStr(3), vetClient) do
      Say(Entry.Id + ' ' + Entry.Name);
  finally
    Client.CloseSession;
  end;
end;

var
  Work: TJob;
  Thread: TVantryThread;
begin
  ExitCode := 1;
  Work := TJob.Create;
  try
    Work.Client := TVantryClient.Create(ParamStr(1), ParamStr(2), GetEnvironmentVariable('VANTRY_PASSWORD'));
    Work.Client.OnCertificate := Work.IsTrusted;
    Thread := TVantryThread.Create(Work.Run);
    try
      Thread.Finish;
      ExitCode := 0;
    finally
      Thread.Free;
    end;
  except
    on E: EVantryError do Say(Format('Failed: %d %s', [E.Status, E.Message]));
    on E: Exception do Say('Ended by: ' + E.Message);
  end;
  Work.Client.Free;
  Work.Free;
end.
