<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ko_KR" sourcelanguage="en_US">
<context>
    <name>PreviewPanel</name>
    <message>
        <source>Toolpath preview</source>
        <translation>툴패스 미리보기</translation>
    </message>
    <message>
        <source>Open G-code file...</source>
        <translation>G코드 파일 열기...</translation>
    </message>
    <message>
        <source>Fit</source>
        <translation>맞춤</translation>
    </message>
    <message>
        <source>Travel moves</source>
        <translation>이동 경로</translation>
    </message>
    <message>
        <source>Cut depth colours</source>
        <translation>절삭 깊이 색상</translation>
    </message>
    <message>
        <source>Open G-code file</source>
        <translation>G코드 파일 열기</translation>
    </message>
    <message>
        <source>G-code (*.gcode *.nc *.ngc *.gc *.txt);;All files (*)</source>
        <translation>G코드 (*.gcode *.nc *.ngc *.gc *.txt);;모든 파일 (*)</translation>
    </message>
    <message>
        <source>X %1..%2, Y %3..%4 mm</source>
        <translation>X %1..%2, Y %3..%4 mm</translation>
    </message>
    <message>
        <source>none</source>
        <translation>없음</translation>
    </message>
    <message>
        <source>Lines: %1   Burn moves: %2   Extent: %3   Estimated time: %4</source>
        <translation>줄 수: %1   가공 이동: %2   범위: %3   예상 시간: %4</translation>
    </message>
    <message>
        <source>The file cannot be read.</source>
        <translation>파일을 읽을 수 없습니다.</translation>
    </message>
    <message>
        <source>The file is empty.</source>
        <translation>파일이 비어 있습니다.</translation>
    </message>
    <message>
        <source>Nothing burns: no move in this file runs with the beam on.</source>
        <translation>아무것도 가공되지 않습니다: 이 파일에는 레이저가 켜진 상태의 이동이 없습니다.</translation>
    </message>
    <message>
        <source>%1 lines were not understood and are left out (the first is line %2).</source>
        <translation>%1줄을 이해하지 못해 건너뛰었습니다 (첫 번째는 %2번째 줄).</translation>
    </message>
    <message>
        <source>No file shown yet: export a job or open a G-code file.</source>
        <translation>아직 표시된 파일이 없습니다: 작업을 내보내거나 G코드 파일을 여세요.</translation>
    </message>
    <message>
        <source>Part of the job lies outside the %1 x %2 mm work area: %3 burn moves and %4 travel moves go beyond it (%5). The machine cannot reach that part, and it is not drawn.</source>
        <translation>작업 일부가 %1 x %2 mm 작업 영역을 벗어납니다: 가공 이동 %3개와 이동 %4개가 영역 밖으로 나갑니다 (%5). 기계는 그 부분에 갈 수 없으며, 그려지지 않습니다.</translation>
    </message>
    <message>
        <source>X down to %1 mm</source>
        <translation>X 최소 %1 mm</translation>
    </message>
    <message>
        <source>X up to %1 mm</source>
        <translation>X 최대 %1 mm</translation>
    </message>
    <message>
        <source>Y down to %1 mm</source>
        <translation>Y 최소 %1 mm</translation>
    </message>
    <message>
        <source>Y up to %1 mm</source>
        <translation>Y 최대 %1 mm</translation>
    </message>
    <message>
        <source>, </source>
        <translation>, </translation>
    </message>
    <message>
        <source>Cuts from Z %1 mm (orange) down to Z %2 mm (blue)</source>
        <translation>절삭 깊이 Z %1 mm (주황색)부터 Z %2 mm (파란색)까지</translation>
    </message>
    <message>
        <source>%1 rapid moves (G0) run with the beam on. They are drawn as travel; a machine that keeps the beam firing during G0 burns a line there.</source>
        <translation>빠른 이동(G0) %1개가 레이저가 켜진 상태로 실행됩니다. 이동으로 그려지지만, G0 중에도 레이저를 끄지 않는 기계에서는 그곳에 선이 탑니다.</translation>
    </message>
</context>
</TS>
