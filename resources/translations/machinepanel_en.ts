<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="en_US">
<context>
    <name>JobRunner</name>
    <message>
        <source>Cannot read %1</source>
        <translation>Cannot read %1</translation>
    </message>
    <message>
        <source>A job is running</source>
        <translation>A job is running</translation>
    </message>
    <message>
        <source>%1 is not G-code (line %2)</source>
        <translation>%1 is not G-code (line %2)</translation>
    </message>
    <message>
        <source>%1 holds no G-code</source>
        <translation>%1 holds no G-code</translation>
    </message>
    <message>
        <source>Job done: %1 lines</source>
        <translation>Job done: %1 lines</translation>
    </message>
    <message>
        <source>Line %1: %2</source>
        <translation>Line %1: %2</translation>
    </message>
    <message>
        <source>Line %1: %2 - %3 Unlock the machine before going on.</source>
        <translation>Line %1: %2 - %3 Unlock the machine before going on.</translation>
    </message>
    <message>
        <source>%1; last acknowledged line %2</source>
        <translation>%1; last acknowledged line %2</translation>
    </message>
    <message>
        <source>Stopped by the user at line %1</source>
        <translation>Stopped by the user at line %1</translation>
    </message>
    <message>
        <source>After the last line: %1</source>
        <translation>After the last line: %1</translation>
    </message>
    <message>
        <source>the machine does not answer status requests</source>
        <translation>the machine does not answer status requests</translation>
    </message>
    <message>
        <source>the machine reports %1 at X%2 Y%3</source>
        <translation>the machine reports %1 at X%2 Y%3</translation>
    </message>
    <message>
        <source>No answer to line %1 for %2 s</source>
        <translation>No answer to line %1 for %2 s</translation>
    </message>
    <message>
        <source>No answer to %1 for %2 s</source>
        <translation>No answer to %1 for %2 s</translation>
    </message>
    <message>
        <source>. Idle with lines unanswered: a line was lost on the way, or the firmware dropped it</source>
        <translation>. Idle with lines unanswered: a line was lost on the way, or the firmware dropped it</translation>
    </message>
    <message>
        <source>The machine did not finish within %1 s of the last line; %2</source>
        <translation>The machine did not finish within %1 s of the last line; %2</translation>
    </message>
    <message>
        <source>; the machine is in alarm after the stop: unlock ($X) before the next job</source>
        <translation>; the machine is in alarm after the stop: unlock ($X) before the next job</translation>
    </message>
</context>
<context>
    <name>MachineLink</name>
    <message>
        <source>No such device: %1</source>
        <translation>No such device: %1</translation>
    </message>
    <message>
        <source>%1 is busy, or you may not open it (another program, or the port panel above, holds it)</source>
        <translation>%1 is busy, or you may not open it (another program, or the port panel above, holds it)</translation>
    </message>
    <message>
        <source>Cannot open %1: %2</source>
        <translation>Cannot open %1: %2</translation>
    </message>
    <message>
        <source>No answer from %1: is a GRBL or Marlin board there, at this baud rate?</source>
        <translation>No answer from %1: is a GRBL or Marlin board there, at this baud rate?</translation>
    </message>
    <message>
        <source>The machine did not answer within %1 s</source>
        <translation>The machine did not answer within %1 s</translation>
    </message>
    <message>
        <source>Connection to %1 lost: %2</source>
        <translation>Connection to %1 lost: %2</translation>
    </message>
    <message>
        <source>the device went away (unplugged or switched off)</source>
        <translation>the device went away (unplugged or switched off)</translation>
    </message>
    <message>
        <source>the device closed the connection</source>
        <translation>the device closed the connection</translation>
    </message>
    <message>
        <source>writing failed: %1</source>
        <translation>writing failed: %1</translation>
    </message>
    <message>
        <source>reading failed: %1</source>
        <translation>reading failed: %1</translation>
    </message>
    <message>
        <source>writing to the device failed</source>
        <translation>writing to the device failed</translation>
    </message>
    <message>
        <source>reading from the device failed</source>
        <translation>reading from the device failed</translation>
    </message>
</context>
<context>
    <name>MachinePanel</name>
    <message>
        <source>Machine</source>
        <translation>Machine</translation>
    </message>
    <message>
        <source>Connection</source>
        <translation>Connection</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>Port</translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation>Refresh</translation>
    </message>
    <message>
        <source>Path</source>
        <translation>Path</translation>
    </message>
    <message>
        <source>/dev/ttyUSB0</source>
        <translation>/dev/ttyUSB0</translation>
    </message>
    <message>
        <source>Any device path; when filled in it is used instead of the list</source>
        <translation>Any device path; when filled in it is used instead of the list</translation>
    </message>
    <message>
        <source>Baud</source>
        <translation>Baud</translation>
    </message>
    <message>
        <source>Firmware</source>
        <translation>Firmware</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>Connect</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>Disconnect</translation>
    </message>
    <message>
        <source>Not connected</source>
        <translation>Not connected</translation>
    </message>
    <message>
        <source>Release it</source>
        <translation>Release it</translation>
    </message>
    <message>
        <source>Jog</source>
        <translation>Jog</translation>
    </message>
    <message>
        <source>Y+</source>
        <translation>Y+</translation>
    </message>
    <message>
        <source>X-</source>
        <translation>X-</translation>
    </message>
    <message>
        <source>X+</source>
        <translation>X+</translation>
    </message>
    <message>
        <source>Y-</source>
        <translation>Y-</translation>
    </message>
    <message>
        <source>0.1 mm</source>
        <translation>0.1 mm</translation>
    </message>
    <message>
        <source>1 mm</source>
        <translation>1 mm</translation>
    </message>
    <message>
        <source>10 mm</source>
        <translation>10 mm</translation>
    </message>
    <message>
        <source>Feed (mm/min)</source>
        <translation>Feed (mm/min)</translation>
    </message>
    <message>
        <source>Home</source>
        <translation>Home</translation>
    </message>
    <message>
        <source>Unlock</source>
        <translation>Unlock</translation>
    </message>
    <message>
        <source>Set origin</source>
        <translation>Set origin</translation>
    </message>
    <message>
        <source>Go to origin</source>
        <translation>Go to origin</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>Frame</translation>
    </message>
    <message>
        <source>Beam (%)</source>
        <translation>Beam (%)</translation>
    </message>
    <message>
        <source>off</source>
        <translation>off</translation>
    </message>
    <message>
        <source>0 keeps the beam off; a low power shows the frame on the material</source>
        <translation>0 keeps the beam off; a low power shows the frame on the material</translation>
    </message>
    <message>
        <source>Job</source>
        <translation>Job</translation>
    </message>
    <message>
        <source>the last exported file</source>
        <translation>the last exported file</translation>
    </message>
    <message>
        <source>Choose...</source>
        <translation>Choose...</translation>
    </message>
    <message>
        <source>Run job</source>
        <translation>Run job</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Resume</source>
        <translation>Resume</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stop</translation>
    </message>
    <message>
        <source>Go on after a firmware error</source>
        <translation>Go on after a firmware error</translation>
    </message>
    <message>
        <source>Console</source>
        <translation>Console</translation>
    </message>
    <message>
        <source>G-code line</source>
        <translation>G-code line</translation>
    </message>
    <message>
        <source>Send</source>
        <translation>Send</translation>
    </message>
    <message>
        <source>Line %1: %2</source>
        <translation>Line %1: %2</translation>
    </message>
    <message>
        <source>Detect</source>
        <translation>Detect</translation>
    </message>
    <message>
        <source>Choose a port, or type the path of the device</source>
        <translation>Choose a port, or type the path of the device</translation>
    </message>
    <message>
        <source>The port panel above holds %1.</source>
        <translation>The port panel above holds %1.</translation>
    </message>
    <message>
        <source>Opening %1...</source>
        <translation>Opening %1...</translation>
    </message>
    <message>
        <source>Place a picture inside the work area first</source>
        <translation>Place a picture inside the work area first</translation>
    </message>
    <message>
        <source>Framing X %1 to %2, Y %3 to %4 mm</source>
        <translation>Framing X %1 to %2, Y %3 to %4 mm</translation>
    </message>
    <message>
        <source>Job to run</source>
        <translation>Job to run</translation>
    </message>
    <message>
        <source>G-code (*.gcode *.nc *.gc);;All files (*)</source>
        <translation>G-code (*.gcode *.nc *.gc);;All files (*)</translation>
    </message>
    <message>
        <source>Export a job first, or choose a G-code file</source>
        <translation>Export a job first, or choose a G-code file</translation>
    </message>
    <message>
        <source>Connect to the machine first</source>
        <translation>Connect to the machine first</translation>
    </message>
    <message>
        <source>Running %1</source>
        <translation>Running %1</translation>
    </message>
    <message>
        <source>Connecting to %1...</source>
        <translation>Connecting to %1...</translation>
    </message>
    <message>
        <source>Connected to %1 (%2)</source>
        <translation>Connected to %1 (%2)</translation>
    </message>
    <message>
        <source>State: %1   X %2  Y %3</source>
        <translation>State: %1   X %2  Y %3</translation>
    </message>
    <message>
        <source>&gt; ! (feed hold)</source>
        <translation>&gt; ! (feed hold)</translation>
    </message>
    <message>
        <source>&gt; ~ (cycle start)</source>
        <translation>&gt; ~ (cycle start)</translation>
    </message>
    <message>
        <source>&gt; 0x%1 (reset)</source>
        <translation>&gt; 0x%1 (reset)</translation>
    </message>
    <message>
        <source> Unlock the machine before going on.</source>
        <translation> Unlock the machine before going on.</translation>
    </message>
    <message>
        <source>%1 / %2 lines   elapsed %3   left %4</source>
        <translation>%1 / %2 lines   elapsed %3   left %4</translation>
    </message>
    <message>
        <source>Frame traced: check the frame, then Resume</source>
        <translation>Frame traced: check the frame, then Resume</translation>
    </message>
    <message>
        <source>Paused</source>
        <translation>Paused</translation>
    </message>
    <message>
        <source>Job done</source>
        <translation>Job done</translation>
    </message>
    <message>
        <source>Stopped; the beam is off</source>
        <translation>Stopped; the beam is off</translation>
    </message>
    <message>
        <source> The job was stopped and the beam turned off.</source>
        <translation> The job was stopped and the beam turned off.</translation>
    </message>
    <message>
        <source>Finishing…</source>
        <translation>Finishing…</translation>
    </message>
    <message>
        <source>Stopping…</source>
        <translation>Stopping…</translation>
    </message>
    <message>
        <source>Stopped. The machine is in alarm after the stop: press Unlock ($X) before the next job.</source>
        <translation>Stopped. The machine is in alarm after the stop: press Unlock ($X) before the next job.</translation>
    </message>
    <message>
        <source> Check the machine: it may still be running the lines it had received.</source>
        <translation> Check the machine: it may still be running the lines it had received.</translation>
    </message>
</context>
</TS>
