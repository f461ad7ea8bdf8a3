@echo off
rem Runs the tests of TAVIKVANTRYAPI on this Windows and leaves self-check-report.txt. It takes some minutes.
rem With --no-pause it does not wait for a key at the end. With VANTRY_ROOTS=machine in the environment Windows asks
rem nothing: an administrator runs it, and the tests' certificate is trusted by all users meanwhile.
cd /d "%~dp0"
bin\vantry-sandbox.exe -- bin\vantry-self-check.exe self-check-report.txt
set result=%errorlevel%
if not "%~1"=="--no-pause" pause
exit /b %result%
