<?xml version='1.0' encoding='utf-8'?>
<TS version="2.1" language="ko_KR" sourcelanguage="en_US">
<context>
    <name>JobTextDialog</name>
    <message>
        <source>Add QR code</source>
        <translation>QR 코드 추가</translation>
    </message>
    <message>
        <source>Add text</source>
        <translation>텍스트 추가</translation>
    </message>
    <message>
        <source>Text or address</source>
        <translation>텍스트 또는 주소</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>텍스트</translation>
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
        <translation> 모듈</translation>
    </message>
    <message>
        <source>Error correction</source>
        <translation>오류 정정</translation>
    </message>
    <message>
        <source>Quiet zone</source>
        <translation>여백</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>왼쪽</translation>
    </message>
    <message>
        <source>Centre</source>
        <translation>가운데</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>오른쪽</translation>
    </message>
    <message>
        <source>Font</source>
        <translation>글꼴</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>크기</translation>
    </message>
    <message>
        <source>Alignment</source>
        <translation>정렬</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>확인</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>취소</translation>
    </message>
</context>
<context>
    <name>JobWindow</name>
    <message>
        <source>Undo %1</source>
        <translation>실행 취소: %1</translation>
    </message>
    <message>
        <source>Redo %1</source>
        <translation>다시 실행: %1</translation>
    </message>
    <message>
        <source>Item %1</source>
        <translation>항목 %1</translation>
    </message>
    <message>
        <source>%1 lies outside the bed (%2 x %3 mm): move it onto the bed</source>
        <translation>%1이(가) 작업대(%2 x %3 mm)를 벗어났습니다: 작업대 안으로 옮기십시오</translation>
    </message>
    <message>
        <source>Move</source>
        <translation>이동</translation>
    </message>
    <message>
        <source>Resize</source>
        <translation>크기 조절</translation>
    </message>
    <message>
        <source>Open job</source>
        <translation>작업 열기</translation>
    </message>
    <message>
        <source>Add picture</source>
        <translation>그림 추가</translation>
    </message>
    <message>
        <source>Pictures (*.png *.jpg *.jpeg *.bmp *.gif)</source>
        <translation>그림 (*.png *.jpg *.jpeg *.bmp *.gif)</translation>
    </message>
    <message>
        <source>Add SVG</source>
        <translation>SVG 추가</translation>
    </message>
    <message>
        <source>SVG drawings (*.svg)</source>
        <translation>SVG 도면 (*.svg)</translation>
    </message>
    <message>
        <source>Align</source>
        <translation>정렬</translation>
    </message>
    <message>
        <source>Add layer</source>
        <translation>레이어 추가</translation>
    </message>
    <message>
        <source>Keep proportions</source>
        <translation>비율 유지</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>파일(&amp;F)</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>편집(&amp;E)</translation>
    </message>
    <message>
        <source>&amp;Layer</source>
        <translation>레이어(&amp;L)</translation>
    </message>
    <message>
        <source>&amp;Machine</source>
        <translation>기계(&amp;M)</translation>
    </message>
    <message>
        <source>Open &amp;recent</source>
        <translation>최근 파일(&amp;R)</translation>
    </message>
    <message>
        <source>Move selection to layer</source>
        <translation>선택 항목을 레이어로 이동</translation>
    </message>
    <message>
        <source>New</source>
        <translation>새로 만들기</translation>
    </message>
    <message>
        <source>Open…</source>
        <translation>열기…</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>저장</translation>
    </message>
    <message>
        <source>Save as…</source>
        <translation>다른 이름으로 저장…</translation>
    </message>
    <message>
        <source>Export job…</source>
        <translation>작업 내보내기…</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>닫기</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>실행 취소</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>다시 실행</translation>
    </message>
    <message>
        <source>Add picture…</source>
        <translation>그림 추가…</translation>
    </message>
    <message>
        <source>Add SVG…</source>
        <translation>SVG 추가…</translation>
    </message>
    <message>
        <source>Add text…</source>
        <translation>텍스트 추가…</translation>
    </message>
    <message>
        <source>Add QR code…</source>
        <translation>QR 코드 추가…</translation>
    </message>
    <message>
        <source>Duplicate</source>
        <translation>복제</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>삭제</translation>
    </message>
    <message>
        <source>Centre on bed</source>
        <translation>작업대 가운데로</translation>
    </message>
    <message>
        <source>Select all</source>
        <translation>모두 선택</translation>
    </message>
    <message>
        <source>Align left</source>
        <translation>왼쪽 정렬</translation>
    </message>
    <message>
        <source>Align centres across</source>
        <translation>가로 가운데 정렬</translation>
    </message>
    <message>
        <source>Align right</source>
        <translation>오른쪽 정렬</translation>
    </message>
    <message>
        <source>Align bottom</source>
        <translation>아래쪽 정렬</translation>
    </message>
    <message>
        <source>Align centres up and down</source>
        <translation>세로 가운데 정렬</translation>
    </message>
    <message>
        <source>Align top</source>
        <translation>위쪽 정렬</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>테두리 확인</translation>
    </message>
    <message>
        <source>Machine profiles…</source>
        <translation>기계 프로필…</translation>
    </message>
    <message>
        <source>Material test grid…</source>
        <translation>재료 테스트 격자…</translation>
    </message>
    <message>
        <source>Run job</source>
        <translation>작업 실행</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>확대</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>축소</translation>
    </message>
    <message>
        <source>Show the whole bed</source>
        <translation>작업대 전체 보기</translation>
    </message>
    <message>
        <source> Frame power </source>
        <translation> 테두리 출력 </translation>
    </message>
    <message>
        <source>0 traces the frame with the beam off</source>
        <translation>0이면 레이저를 끈 채 테두리를 따라갑니다</translation>
    </message>
    <message>
        <source>Job</source>
        <translation>작업</translation>
    </message>
    <message>
        <source>Item</source>
        <translation>항목</translation>
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
        <translation> 너비 </translation>
    </message>
    <message>
        <source> H </source>
        <translation> 높이 </translation>
    </message>
    <message>
        <source>Left edge, from the bed's left side</source>
        <translation>왼쪽 가장자리, 작업대 왼쪽에서부터</translation>
    </message>
    <message>
        <source>Bottom edge, from the bed's front side</source>
        <translation>아래쪽 가장자리, 작업대 앞쪽에서부터</translation>
    </message>
    <message>
        <source>Width</source>
        <translation>너비</translation>
    </message>
    <message>
        <source>Height</source>
        <translation>높이</translation>
    </message>
    <message>
        <source>Layers</source>
        <translation>레이어</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>미리 보기</translation>
    </message>
    <message>
        <source>Untitled job</source>
        <translation>제목 없는 작업</translation>
    </message>
    <message>
        <source>Jobs (*.tljob);;All files (*)</source>
        <translation>작업 (*.tljob);;모든 파일 (*)</translation>
    </message>
    <message>
        <source>The job could not be opened: %1</source>
        <translation>작업을 열 수 없습니다: %1</translation>
    </message>
    <message>
        <source>The job could not be saved: %1</source>
        <translation>작업을 저장할 수 없습니다: %1</translation>
    </message>
    <message>
        <source>Saved %1</source>
        <translation>%1 저장됨</translation>
    </message>
    <message>
        <source>Save job</source>
        <translation>작업 저장</translation>
    </message>
    <message>
        <source>%1 has unsaved changes. Save them?</source>
        <translation>%1에 저장하지 않은 변경 사항이 있습니다. 저장할까요?</translation>
    </message>
    <message>
        <source>%1 could not be read</source>
        <translation>%1을(를) 읽을 수 없습니다</translation>
    </message>
    <message>
        <source>%1 is neither a picture nor an SVG drawing</source>
        <translation>%1은(는) 그림도 SVG 도면도 아닙니다</translation>
    </message>
    <message>
        <source>The text has nothing to engrave</source>
        <translation>이 텍스트에는 새길 것이 없습니다</translation>
    </message>
    <message>
        <source>Add text</source>
        <translation>텍스트 추가</translation>
    </message>
    <message>
        <source>The text is too long for a QR code</source>
        <translation>QR 코드로 만들기에 텍스트가 너무 깁니다</translation>
    </message>
    <message>
        <source>Add QR code</source>
        <translation>QR 코드 추가</translation>
    </message>
    <message>
        <source>Add to job</source>
        <translation>작업에 추가</translation>
    </message>
    <message>
        <source>Move to layer</source>
        <translation>레이어로 이동</translation>
    </message>
    <message>
        <source>Machine profile</source>
        <translation>기계 프로필</translation>
    </message>
    <message>
        <source>Material test grid</source>
        <translation>재료 테스트 격자</translation>
    </message>
    <message>
        <source>Nothing was written: %1</source>
        <translation>아무것도 쓰지 않았습니다: %1</translation>
    </message>
    <message>
        <source>%1 could not be written</source>
        <translation>%1을(를) 쓸 수 없습니다</translation>
    </message>
    <message>
        <source>Exported %1</source>
        <translation>%1 내보냄</translation>
    </message>
    <message>
        <source>Export job</source>
        <translation>작업 내보내기</translation>
    </message>
    <message>
        <source>G-code (*.gcode)</source>
        <translation>G 코드 (*.gcode)</translation>
    </message>
    <message>
        <source>The job has nothing to frame</source>
        <translation>작업에 테두리를 확인할 항목이 없습니다</translation>
    </message>
    <message>
        <source>Nothing was sent: %1</source>
        <translation>아무것도 보내지 않았습니다: %1</translation>
    </message>
    <message>
        <source>Connect to the machine in the Machine window first</source>
        <translation>먼저 기계 창에서 기계를 연결하세요</translation>
    </message>
    <message>
        <source>Framing X %1 to %2, Y %3 to %4 mm</source>
        <translation>테두리 확인 중 X %1 ~ %2, Y %3 ~ %4 mm</translation>
    </message>
    <message>
        <source>The Machine window is not available</source>
        <translation>기계 창을 사용할 수 없습니다</translation>
    </message>
    <message>
        <source>Copy the prepared picture or drawing into the Job window</source>
        <translation>준비한 그림이나 도면을 작업 창으로 복사합니다</translation>
    </message>
    <message>
        <source>Discard</source>
        <translation>저장 안 함</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>취소</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>확인</translation>
    </message>
    <message>
        <source>%1 is a picture: only an image layer can engrave it</source>
        <translation>%1은(는) 그림이므로 이미지 레이어에서만 새길 수 있습니다</translation>
    </message>
    <message>
        <source>Estimated time: %1</source>
        <translation>예상 시간: %1</translation>
    </message>
    <message>
        <source>Layer %1 %2: %3 items, burn %4 mm, %5</source>
        <translation>레이어 %1 %2: 항목 %3개, 가공 %4 mm, %5</translation>
    </message>
    <message>
        <source>Edit text</source>
        <translation>텍스트 편집</translation>
    </message>
    <message>
        <source>A GRBL board is connected: Machine &gt; Machine profiles… can read its settings</source>
        <translation>GRBL 보드가 연결되었습니다: 기계 &gt; 기계 프로필…에서 설정을 읽을 수 있습니다</translation>
    </message>
</context>
<context>
    <name>LayerPanel</name>
    <message>
        <source>Save as preset</source>
        <translation>프리셋으로 저장</translation>
    </message>
    <message>
        <source>Name of the preset</source>
        <translation>프리셋 이름</translation>
    </message>
    <message>
        <source>Switch layer</source>
        <translation>레이어 켜기/끄기</translation>
    </message>
    <message>
        <source>Add layer</source>
        <translation>레이어 추가</translation>
    </message>
    <message>
        <source>Remove layer</source>
        <translation>레이어 삭제</translation>
    </message>
    <message>
        <source>Add a layer</source>
        <translation>레이어 추가</translation>
    </message>
    <message>
        <source>Remove the layer and its items</source>
        <translation>레이어와 그 항목 삭제</translation>
    </message>
    <message>
        <source>Burn earlier</source>
        <translation>먼저 새기기</translation>
    </message>
    <message>
        <source>Burn later</source>
        <translation>나중에 새기기</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>이름</translation>
    </message>
    <message>
        <source>Colour</source>
        <translation>색상</translation>
    </message>
    <message>
        <source>Operation</source>
        <translation>가공 방식</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>속도</translation>
    </message>
    <message>
        <source>Power</source>
        <translation>출력</translation>
    </message>
    <message>
        <source>Passes</source>
        <translation>횟수</translation>
    </message>
    <message>
        <source>Image</source>
        <translation>이미지</translation>
    </message>
    <message>
        <source>Fill</source>
        <translation>채우기</translation>
    </message>
    <message>
        <source>Line</source>
        <translation>선</translation>
    </message>
    <message>
        <source>Mode</source>
        <translation>모드</translation>
    </message>
    <message>
        <source>Threshold</source>
        <translation>임계값</translation>
    </message>
    <message>
        <source>Dither</source>
        <translation>디더링</translation>
    </message>
    <message>
        <source>Grayscale</source>
        <translation>회색조</translation>
    </message>
    <message>
        <source>Brightness</source>
        <translation>밝기</translation>
    </message>
    <message>
        <source>Contrast</source>
        <translation>대비</translation>
    </message>
    <message>
        <source>Gamma</source>
        <translation>감마</translation>
    </message>
    <message>
        <source>Minimum power</source>
        <translation>최소 출력</translation>
    </message>
    <message>
        <source>Invert</source>
        <translation>반전</translation>
    </message>
    <message>
        <source>Line interval</source>
        <translation>줄 간격</translation>
    </message>
    <message>
        <source>Overscan</source>
        <translation>오버스캔</translation>
    </message>
    <message>
        <source>Bidirectional</source>
        <translation>양방향</translation>
    </message>
    <message>
        <source>Reverse-row offset</source>
        <translation>역방향 줄 보정</translation>
    </message>
    <message>
        <source>Hatch interval</source>
        <translation>해치 간격</translation>
    </message>
    <message>
        <source>Angle</source>
        <translation>각도</translation>
    </message>
    <message>
        <source>Cross-hatch</source>
        <translation>교차 해치</translation>
    </message>
    <message>
        <source>Kerf side</source>
        <translation>커프 방향</translation>
    </message>
    <message>
        <source>On the line</source>
        <translation>선 위</translation>
    </message>
    <message>
        <source>Inside</source>
        <translation>안쪽</translation>
    </message>
    <message>
        <source>Outside</source>
        <translation>바깥쪽</translation>
    </message>
    <message>
        <source>Kerf</source>
        <translation>커프</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>적용</translation>
    </message>
    <message>
        <source>Give the layer the preset's operation, speed, power, passes and interval</source>
        <translation>프리셋의 가공 방식, 속도, 출력, 횟수, 간격을 레이어에 적용</translation>
    </message>
    <message>
        <source>Save as preset…</source>
        <translation>프리셋으로 저장…</translation>
    </message>
    <message>
        <source>%1 — %2, %3 mm/min, %4 %, %5×</source>
        <translation>%1 — %2, %3 mm/min, %4 %, %5회</translation>
    </message>
    <message>
        <source>Layer settings</source>
        <translation>레이어 설정</translation>
    </message>
    <message>
        <source>en</source>
        <extracomment>The language code of this catalogue: zh, en or ko. It picks the language of the preset names.</extracomment>
        <translation>ko</translation>
    </message>
    <message>
        <source>Apply preset</source>
        <translation>프리셋 적용</translation>
    </message>
    <message>
        <source>Reorder layers</source>
        <translation>레이어 순서 변경</translation>
    </message>
</context>
<context>
    <name>MachineProfileDialog</name>
    <message>
        <source>Machine profiles</source>
        <translation>기계 프로필</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>추가</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>삭제</translation>
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
        <translation>팬 출력 (M106 / M107)</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>이름</translation>
    </message>
    <message>
        <source>Dialect</source>
        <translation>명령 형식</translation>
    </message>
    <message>
        <source>Maximum power (S of 100 %)</source>
        <translation>최대 출력 (100 %일 때 S 값)</translation>
    </message>
    <message>
        <source>Bed width</source>
        <translation>작업대 너비</translation>
    </message>
    <message>
        <source>Bed height</source>
        <translation>작업대 높이</translation>
    </message>
    <message>
        <source>Travel feed</source>
        <translation>이동 속도</translation>
    </message>
    <message>
        <source>Acceleration</source>
        <translation>가속도</translation>
    </message>
    <message>
        <source>Read from the connected GRBL board</source>
        <translation>연결된 GRBL 보드에서 읽기</translation>
    </message>
    <message>
        <source>New machine</source>
        <translation>새 기계</translation>
    </message>
    <message>
        <source>Read %1 settings from the board</source>
        <translation>보드에서 설정 %1개를 읽었습니다</translation>
    </message>
    <message>
        <source>The board listed none of the settings</source>
        <translation>보드가 해당 설정을 하나도 보내지 않았습니다</translation>
    </message>
    <message>
        <source>Connect a GRBL board in the Machine window first</source>
        <translation>먼저 기계 창에서 GRBL 보드를 연결하세요</translation>
    </message>
    <message>
        <source>Asking the board…</source>
        <translation>보드에 묻는 중…</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>확인</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>취소</translation>
    </message>
</context>
<context>
    <name>TestGridDialog</name>
    <message>
        <source>Material test grid</source>
        <translation>재료 테스트 격자</translation>
    </message>
    <message>
        <source>Rows vary the passes (at the first speed)</source>
        <translation>줄마다 횟수를 바꿈 (첫 번째 속도로)</translation>
    </message>
    <message>
        <source>Image</source>
        <translation>이미지</translation>
    </message>
    <message>
        <source>Fill</source>
        <translation>채우기</translation>
    </message>
    <message>
        <source>Line</source>
        <translation>선</translation>
    </message>
    <message>
        <source>Powers</source>
        <translation>출력</translation>
    </message>
    <message>
        <source>Speeds</source>
        <translation>속도</translation>
    </message>
    <message>
        <source>Passes</source>
        <translation>횟수</translation>
    </message>
    <message>
        <source>Cell size</source>
        <translation>칸 크기</translation>
    </message>
    <message>
        <source>Gap</source>
        <translation>간격</translation>
    </message>
    <message>
        <source>Operation</source>
        <translation>가공 방식</translation>
    </message>
    <message>
        <source>Bottom-left X</source>
        <translation>왼쪽 아래 X</translation>
    </message>
    <message>
        <source>Bottom-left Y</source>
        <translation>왼쪽 아래 Y</translation>
    </message>
    <message>
        <source>Create job</source>
        <translation>작업 만들기</translation>
    </message>
    <message>
        <source>%1 cells, %2 x %3 mm, estimated time %4</source>
        <translation>칸 %1개, %2 x %3 mm, 예상 시간 %4</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>취소</translation>
    </message>
</context>
</TS>