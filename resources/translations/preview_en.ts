<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="en_US">
<context>
    <name>PreviewPanel</name>
    <message>
        <source>Toolpath preview</source>
        <translation>Toolpath preview</translation>
    </message>
    <message>
        <source>Open G-code file...</source>
        <translation>Open G-code file...</translation>
    </message>
    <message>
        <source>Fit</source>
        <translation>Fit</translation>
    </message>
    <message>
        <source>Travel moves</source>
        <translation>Travel moves</translation>
    </message>
    <message>
        <source>Cut depth colours</source>
        <translation>Cut depth colours</translation>
    </message>
    <message>
        <source>Open G-code file</source>
        <translation>Open G-code file</translation>
    </message>
    <message>
        <source>G-code (*.gcode *.nc *.ngc *.gc *.txt);;All files (*)</source>
        <translation>G-code (*.gcode *.nc *.ngc *.gc *.txt);;All files (*)</translation>
    </message>
    <message>
        <source>X %1..%2, Y %3..%4 mm</source>
        <translation>X %1..%2, Y %3..%4 mm</translation>
    </message>
    <message>
        <source>none</source>
        <translation>none</translation>
    </message>
    <message>
        <source>Lines: %1   Burn moves: %2   Extent: %3   Estimated time: %4</source>
        <translation>Lines: %1   Burn moves: %2   Extent: %3   Estimated time: %4</translation>
    </message>
    <message>
        <source>The file cannot be read.</source>
        <translation>The file cannot be read.</translation>
    </message>
    <message>
        <source>The file is empty.</source>
        <translation>The file is empty.</translation>
    </message>
    <message>
        <source>Nothing burns: no move in this file runs with the beam on.</source>
        <translation>Nothing burns: no move in this file runs with the beam on.</translation>
    </message>
    <message>
        <source>%1 lines were not understood and are left out (the first is line %2).</source>
        <translation>%1 lines were not understood and are left out (the first is line %2).</translation>
    </message>
    <message>
        <source>No file shown yet: export a job or open a G-code file.</source>
        <translation>No file shown yet: export a job or open a G-code file.</translation>
    </message>
    <message>
        <source>Part of the job lies outside the %1 x %2 mm work area: %3 burn moves and %4 travel moves go beyond it (%5). The machine cannot reach that part, and it is not drawn.</source>
        <translation>Part of the job lies outside the %1 x %2 mm work area: %3 burn moves and %4 travel moves go beyond it (%5). The machine cannot reach that part, and it is not drawn.</translation>
    </message>
    <message>
        <source>X down to %1 mm</source>
        <translation>X down to %1 mm</translation>
    </message>
    <message>
        <source>X up to %1 mm</source>
        <translation>X up to %1 mm</translation>
    </message>
    <message>
        <source>Y down to %1 mm</source>
        <translation>Y down to %1 mm</translation>
    </message>
    <message>
        <source>Y up to %1 mm</source>
        <translation>Y up to %1 mm</translation>
    </message>
    <message>
        <source>, </source>
        <translation>, </translation>
    </message>
    <message>
        <source>Cuts from Z %1 mm (orange) down to Z %2 mm (blue)</source>
        <translation>Cuts from Z %1 mm (orange) down to Z %2 mm (blue)</translation>
    </message>
    <message>
        <source>%1 rapid moves (G0) run with the beam on. They are drawn as travel; a machine that keeps the beam firing during G0 burns a line there.</source>
        <translation>%1 rapid moves (G0) run with the beam on. They are drawn as travel; a machine that keeps the beam firing during G0 burns a line there.</translation>
    </message>
</context>
</TS>
