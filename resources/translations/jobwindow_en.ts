<?xml version='1.0' encoding='utf-8'?>
<TS version="2.1" language="en_US" sourcelanguage="en_US">
<context>
    <name>JobTextDialog</name>
    <message>
        <source>Add QR code</source>
        <translation>Add QR code</translation>
    </message>
    <message>
        <source>Add text</source>
        <translation>Add text</translation>
    </message>
    <message>
        <source>Text or address</source>
        <translation>Text or address</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>L (7 %)</source>
        <translation>L (7 %)</translation>
    </message>
    <message>
        <source>M (15 %)</source>
        <translation>M (15 %)</translation>
    </message>
    <message>
        <source>Q (25 %)</source>
        <translation>Q (25 %)</translation>
    </message>
    <message>
        <source>H (30 %)</source>
        <translation>H (30 %)</translation>
    </message>
    <message>
        <source> modules</source>
        <translation> modules</translation>
    </message>
    <message>
        <source>Error correction</source>
        <translation>Error correction</translation>
    </message>
    <message>
        <source>Quiet zone</source>
        <translation>Quiet zone</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>Left</translation>
    </message>
    <message>
        <source>Centre</source>
        <translation>Centre</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Right</translation>
    </message>
    <message>
        <source>Font</source>
        <translation>Font</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Size</translation>
    </message>
    <message>
        <source>Alignment</source>
        <translation>Alignment</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
</context>
<context>
    <name>JobWindow</name>
    <message>
        <source>Undo %1</source>
        <translation>Undo %1</translation>
    </message>
    <message>
        <source>Redo %1</source>
        <translation>Redo %1</translation>
    </message>
    <message>
        <source>Item %1</source>
        <translation>Item %1</translation>
    </message>
    <message>
        <source>%1 lies outside the bed (%2 x %3 mm): move it onto the bed</source>
        <translation>%1 lies outside the bed (%2 x %3 mm): move it onto the bed</translation>
    </message>
    <message>
        <source>Move</source>
        <translation>Move</translation>
    </message>
    <message>
        <source>Resize</source>
        <translation>Resize</translation>
    </message>
    <message>
        <source>Open job</source>
        <translation>Open job</translation>
    </message>
    <message>
        <source>Add picture</source>
        <translation>Add picture</translation>
    </message>
    <message>
        <source>Pictures (*.png *.jpg *.jpeg *.bmp *.gif)</source>
        <translation>Pictures (*.png *.jpg *.jpeg *.bmp *.gif)</translation>
    </message>
    <message>
        <source>Add SVG</source>
        <translation>Add SVG</translation>
    </message>
    <message>
        <source>SVG drawings (*.svg)</source>
        <translation>SVG drawings (*.svg)</translation>
    </message>
    <message>
        <source>Align</source>
        <translation>Align</translation>
    </message>
    <message>
        <source>Add layer</source>
        <translation>Add layer</translation>
    </message>
    <message>
        <source>Keep proportions</source>
        <translation>Keep proportions</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;File</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Edit</translation>
    </message>
    <message>
        <source>&amp;Layer</source>
        <translation>&amp;Layer</translation>
    </message>
    <message>
        <source>&amp;Machine</source>
        <translation>&amp;Machine</translation>
    </message>
    <message>
        <source>Open &amp;recent</source>
        <translation>Open &amp;recent</translation>
    </message>
    <message>
        <source>Move selection to layer</source>
        <translation>Move selection to layer</translation>
    </message>
    <message>
        <source>New</source>
        <translation>New</translation>
    </message>
    <message>
        <source>Open…</source>
        <translation>Open…</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Save</translation>
    </message>
    <message>
        <source>Save as…</source>
        <translation>Save as…</translation>
    </message>
    <message>
        <source>Export job…</source>
        <translation>Export job…</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Undo</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Redo</translation>
    </message>
    <message>
        <source>Add picture…</source>
        <translation>Add picture…</translation>
    </message>
    <message>
        <source>Add SVG…</source>
        <translation>Add SVG…</translation>
    </message>
    <message>
        <source>Add text…</source>
        <translation>Add text…</translation>
    </message>
    <message>
        <source>Add QR code…</source>
        <translation>Add QR code…</translation>
    </message>
    <message>
        <source>Duplicate</source>
        <translation>Duplicate</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Delete</translation>
    </message>
    <message>
        <source>Centre on bed</source>
        <translation>Centre on bed</translation>
    </message>
    <message>
        <source>Select all</source>
        <translation>Select all</translation>
    </message>
    <message>
        <source>Align left</source>
        <translation>Align left</translation>
    </message>
    <message>
        <source>Align centres across</source>
        <translation>Align centres across</translation>
    </message>
    <message>
        <source>Align right</source>
        <translation>Align right</translation>
    </message>
    <message>
        <source>Align bottom</source>
        <translation>Align bottom</translation>
    </message>
    <message>
        <source>Align centres up and down</source>
        <translation>Align centres up and down</translation>
    </message>
    <message>
        <source>Align top</source>
        <translation>Align top</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>Frame</translation>
    </message>
    <message>
        <source>Machine profiles…</source>
        <translation>Machine profiles…</translation>
    </message>
    <message>
        <source>Material test grid…</source>
        <translation>Material test grid…</translation>
    </message>
    <message>
        <source>Run job</source>
        <translation>Run job</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>Zoom in</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>Zoom out</translation>
    </message>
    <message>
        <source>Show the whole bed</source>
        <translation>Show the whole bed</translation>
    </message>
    <message>
        <source> Frame power </source>
        <translation> Frame power </translation>
    </message>
    <message>
        <source>0 traces the frame with the beam off</source>
        <translation>0 traces the frame with the beam off</translation>
    </message>
    <message>
        <source>Job</source>
        <translation>Job</translation>
    </message>
    <message>
        <source>Item</source>
        <translation>Item</translation>
    </message>
    <message>
        <source> X </source>
        <translation> X </translation>
    </message>
    <message>
        <source> Y </source>
        <translation> Y </translation>
    </message>
    <message>
        <source> W </source>
        <translation> W </translation>
    </message>
    <message>
        <source> H </source>
        <translation> H </translation>
    </message>
    <message>
        <source>Left edge, from the bed's left side</source>
        <translation>Left edge, from the bed's left side</translation>
    </message>
    <message>
        <source>Bottom edge, from the bed's front side</source>
        <translation>Bottom edge, from the bed's front side</translation>
    </message>
    <message>
        <source>Width</source>
        <translation>Width</translation>
    </message>
    <message>
        <source>Height</source>
        <translation>Height</translation>
    </message>
    <message>
        <source>Layers</source>
        <translation>Layers</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>Preview</translation>
    </message>
    <message>
        <source>Untitled job</source>
        <translation>Untitled job</translation>
    </message>
    <message>
        <source>Jobs (*.tljob);;All files (*)</source>
        <translation>Jobs (*.tljob);;All files (*)</translation>
    </message>
    <message>
        <source>The job could not be opened: %1</source>
        <translation>The job could not be opened: %1</translation>
    </message>
    <message>
        <source>The job could not be saved: %1</source>
        <translation>The job could not be saved: %1</translation>
    </message>
    <message>
        <source>Saved %1</source>
        <translation>Saved %1</translation>
    </message>
    <message>
        <source>Save job</source>
        <translation>Save job</translation>
    </message>
    <message>
        <source>%1 has unsaved changes. Save them?</source>
        <translation>%1 has unsaved changes. Save them?</translation>
    </message>
    <message>
        <source>%1 could not be read</source>
        <translation>%1 could not be read</translation>
    </message>
    <message>
        <source>%1 is neither a picture nor an SVG drawing</source>
        <translation>%1 is neither a picture nor an SVG drawing</translation>
    </message>
    <message>
        <source>The text has nothing to engrave</source>
        <translation>The text has nothing to engrave</translation>
    </message>
    <message>
        <source>Add text</source>
        <translation>Add text</translation>
    </message>
    <message>
        <source>The text is too long for a QR code</source>
        <translation>The text is too long for a QR code</translation>
    </message>
    <message>
        <source>Add QR code</source>
        <translation>Add QR code</translation>
    </message>
    <message>
        <source>Add to job</source>
        <translation>Add to job</translation>
    </message>
    <message>
        <source>Move to layer</source>
        <translation>Move to layer</translation>
    </message>
    <message>
        <source>Machine profile</source>
        <translation>Machine profile</translation>
    </message>
    <message>
        <source>Material test grid</source>
        <translation>Material test grid</translation>
    </message>
    <message>
        <source>Nothing was written: %1</source>
        <translation>Nothing was written: %1</translation>
    </message>
    <message>
        <source>%1 could not be written</source>
        <translation>%1 could not be written</translation>
    </message>
    <message>
        <source>Exported %1</source>
        <translation>Exported %1</translation>
    </message>
    <message>
        <source>Export job</source>
        <translation>Export job</translation>
    </message>
    <message>
        <source>G-code (*.gcode)</source>
        <translation>G-code (*.gcode)</translation>
    </message>
    <message>
        <source>The job has nothing to frame</source>
        <translation>The job has nothing to frame</translation>
    </message>
    <message>
        <source>Nothing was sent: %1</source>
        <translation>Nothing was sent: %1</translation>
    </message>
    <message>
        <source>Connect to the machine in the Machine window first</source>
        <translation>Connect to the machine in the Machine window first</translation>
    </message>
    <message>
        <source>Framing X %1 to %2, Y %3 to %4 mm</source>
        <translation>Framing X %1 to %2, Y %3 to %4 mm</translation>
    </message>
    <message>
        <source>The Machine window is not available</source>
        <translation>The Machine window is not available</translation>
    </message>
    <message>
        <source>Copy the prepared picture or drawing into the Job window</source>
        <translation>Copy the prepared picture or drawing into the Job window</translation>
    </message>
    <message>
        <source>Discard</source>
        <translation>Discard</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>%1 is a picture: only an image layer can engrave it</source>
        <translation>%1 is a picture: only an image layer can engrave it</translation>
    </message>
    <message>
        <source>Estimated time: %1</source>
        <translation>Estimated time: %1</translation>
    </message>
    <message>
        <source>Layer %1 %2: %3 items, burn %4 mm, %5</source>
        <translation>Layer %1 %2: %3 items, burn %4 mm, %5</translation>
    </message>
    <message>
        <source>Edit text</source>
        <translation>Edit text</translation>
    </message>
    <message>
        <source>A GRBL board is connected: Machine &gt; Machine profiles… can read its settings</source>
        <translation>A GRBL board is connected: Machine &gt; Machine profiles… can read its settings</translation>
    </message>
</context>
<context>
    <name>LayerPanel</name>
    <message>
        <source>Save as preset</source>
        <translation>Save as preset</translation>
    </message>
    <message>
        <source>Name of the preset</source>
        <translation>Name of the preset</translation>
    </message>
    <message>
        <source>Switch layer</source>
        <translation>Switch layer</translation>
    </message>
    <message>
        <source>Add layer</source>
        <translation>Add layer</translation>
    </message>
    <message>
        <source>Remove layer</source>
        <translation>Remove layer</translation>
    </message>
    <message>
        <source>Add a layer</source>
        <translation>Add a layer</translation>
    </message>
    <message>
        <source>Remove the layer and its items</source>
        <translation>Remove the layer and its items</translation>
    </message>
    <message>
        <source>Burn earlier</source>
        <translation>Burn earlier</translation>
    </message>
    <message>
        <source>Burn later</source>
        <translation>Burn later</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Colour</source>
        <translation>Colour</translation>
    </message>
    <message>
        <source>Operation</source>
        <translation>Operation</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Speed</translation>
    </message>
    <message>
        <source>Power</source>
        <translation>Power</translation>
    </message>
    <message>
        <source>Passes</source>
        <translation>Passes</translation>
    </message>
    <message>
        <source>Image</source>
        <translation>Image</translation>
    </message>
    <message>
        <source>Fill</source>
        <translation>Fill</translation>
    </message>
    <message>
        <source>Line</source>
        <translation>Line</translation>
    </message>
    <message>
        <source>Mode</source>
        <translation>Mode</translation>
    </message>
    <message>
        <source>Threshold</source>
        <translation>Threshold</translation>
    </message>
    <message>
        <source>Dither</source>
        <translation>Dither</translation>
    </message>
    <message>
        <source>Grayscale</source>
        <translation>Grayscale</translation>
    </message>
    <message>
        <source>Brightness</source>
        <translation>Brightness</translation>
    </message>
    <message>
        <source>Contrast</source>
        <translation>Contrast</translation>
    </message>
    <message>
        <source>Gamma</source>
        <translation>Gamma</translation>
    </message>
    <message>
        <source>Minimum power</source>
        <translation>Minimum power</translation>
    </message>
    <message>
        <source>Invert</source>
        <translation>Invert</translation>
    </message>
    <message>
        <source>Line interval</source>
        <translation>Line interval</translation>
    </message>
    <message>
        <source>Overscan</source>
        <translation>Overscan</translation>
    </message>
    <message>
        <source>Bidirectional</source>
        <translation>Bidirectional</translation>
    </message>
    <message>
        <source>Reverse-row offset</source>
        <translation>Reverse-row offset</translation>
    </message>
    <message>
        <source>Hatch interval</source>
        <translation>Hatch interval</translation>
    </message>
    <message>
        <source>Angle</source>
        <translation>Angle</translation>
    </message>
    <message>
        <source>Cross-hatch</source>
        <translation>Cross-hatch</translation>
    </message>
    <message>
        <source>Kerf side</source>
        <translation>Kerf side</translation>
    </message>
    <message>
        <source>On the line</source>
        <translation>On the line</translation>
    </message>
    <message>
        <source>Inside</source>
        <translation>Inside</translation>
    </message>
    <message>
        <source>Outside</source>
        <translation>Outside</translation>
    </message>
    <message>
        <source>Kerf</source>
        <translation>Kerf</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>Apply</translation>
    </message>
    <message>
        <source>Give the layer the preset's operation, speed, power, passes and interval</source>
        <translation>Give the layer the preset's operation, speed, power, passes and interval</translation>
    </message>
    <message>
        <source>Save as preset…</source>
        <translation>Save as preset…</translation>
    </message>
    <message>
        <source>%1 — %2, %3 mm/min, %4 %, %5×</source>
        <translation>%1 — %2, %3 mm/min, %4 %, %5×</translation>
    </message>
    <message>
        <source>Layer settings</source>
        <translation>Layer settings</translation>
    </message>
    <message>
        <source>en</source>
        <extracomment>The language code of this catalogue: zh, en or ko. It picks the language of the preset names.</extracomment>
        <translation>en</translation>
    </message>
    <message>
        <source>Apply preset</source>
        <translation>Apply preset</translation>
    </message>
    <message>
        <source>Reorder layers</source>
        <translation>Reorder layers</translation>
    </message>
</context>
<context>
    <name>MachineProfileDialog</name>
    <message>
        <source>Machine profiles</source>
        <translation>Machine profiles</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Add</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Remove</translation>
    </message>
    <message>
        <source>GRBL (M4 S)</source>
        <translation>GRBL (M4 S)</translation>
    </message>
    <message>
        <source>Marlin (M3 S / M5)</source>
        <translation>Marlin (M3 S / M5)</translation>
    </message>
    <message>
        <source>Fan output (M106 / M107)</source>
        <translation>Fan output (M106 / M107)</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Dialect</source>
        <translation>Dialect</translation>
    </message>
    <message>
        <source>Maximum power (S of 100 %)</source>
        <translation>Maximum power (S of 100 %)</translation>
    </message>
    <message>
        <source>Bed width</source>
        <translation>Bed width</translation>
    </message>
    <message>
        <source>Bed height</source>
        <translation>Bed height</translation>
    </message>
    <message>
        <source>Travel feed</source>
        <translation>Travel feed</translation>
    </message>
    <message>
        <source>Acceleration</source>
        <translation>Acceleration</translation>
    </message>
    <message>
        <source>Read from the connected GRBL board</source>
        <translation>Read from the connected GRBL board</translation>
    </message>
    <message>
        <source>New machine</source>
        <translation>New machine</translation>
    </message>
    <message>
        <source>Read %1 settings from the board</source>
        <translation>Read %1 settings from the board</translation>
    </message>
    <message>
        <source>The board listed none of the settings</source>
        <translation>The board listed none of the settings</translation>
    </message>
    <message>
        <source>Connect a GRBL board in the Machine window first</source>
        <translation>Connect a GRBL board in the Machine window first</translation>
    </message>
    <message>
        <source>Asking the board…</source>
        <translation>Asking the board…</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
</context>
<context>
    <name>TestGridDialog</name>
    <message>
        <source>Material test grid</source>
        <translation>Material test grid</translation>
    </message>
    <message>
        <source>Rows vary the passes (at the first speed)</source>
        <translation>Rows vary the passes (at the first speed)</translation>
    </message>
    <message>
        <source>Image</source>
        <translation>Image</translation>
    </message>
    <message>
        <source>Fill</source>
        <translation>Fill</translation>
    </message>
    <message>
        <source>Line</source>
        <translation>Line</translation>
    </message>
    <message>
        <source>Powers</source>
        <translation>Powers</translation>
    </message>
    <message>
        <source>Speeds</source>
        <translation>Speeds</translation>
    </message>
    <message>
        <source>Passes</source>
        <translation>Passes</translation>
    </message>
    <message>
        <source>Cell size</source>
        <translation>Cell size</translation>
    </message>
    <message>
        <source>Gap</source>
        <translation>Gap</translation>
    </message>
    <message>
        <source>Operation</source>
        <translation>Operation</translation>
    </message>
    <message>
        <source>Bottom-left X</source>
        <translation>Bottom-left X</translation>
    </message>
    <message>
        <source>Bottom-left Y</source>
        <translation>Bottom-left Y</translation>
    </message>
    <message>
        <source>Create job</source>
        <translation>Create job</translation>
    </message>
    <message>
        <source>%1 cells, %2 x %3 mm, estimated time %4</source>
        <translation>%1 cells, %2 x %3 mm, estimated time %4</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
</context>
</TS>