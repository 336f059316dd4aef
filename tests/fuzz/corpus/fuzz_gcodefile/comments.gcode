;Layer count: 3
; TIME: 12
G1 X1 Y2 ; move
M109 S200

   
G1 wd X3.5 Y.4
G0 X-5 Y3
G1 F2000 X0 Y0
G28
