@echo off
rem Starts the sandbox, a stand-in for the help-desk server, and the desktop host on it. The sandbox ends with the host.
rem Both talk over this computer alone; no certificate is installed, and no file is left behind.
setlocal
title Vantry sandbox
if not exist "%~dp0bin\vantry-sandbox.exe" (
    echo The programs are missing: unpack the whole zip first, then start try-it.cmd from its folder.
    pause
    exit /b 1
)
echo This trial talks plain http: for https, a certificate would have to be installed on this computer, and try-it.cmd
echo installs none. So the question about the server's certificate does not come; images\desktop-host-certificate.png
echo shows it.
echo.
echo The desktop host is starting. To end, close its window; this one then closes, too.
"%~dp0bin\vantry-sandbox.exe" -- "%~dp0bin\vantry-desktop-host.exe" --try
if not %errorlevel% == 0 (
    echo Something went wrong: exit code %errorlevel%.
    pause
    exit /b 1
)
