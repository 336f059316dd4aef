<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ko_KR" sourcelanguage="en_US">
<context>
    <name>JobRunner</name>
    <message>
        <source>Cannot read %1</source>
        <translation>%1을(를) 읽을 수 없습니다</translation>
    </message>
    <message>
        <source>A job is running</source>
        <translation>작업이 실행 중입니다</translation>
    </message>
    <message>
        <source>%1 is not G-code (line %2)</source>
        <translation>%1은(는) G 코드가 아닙니다(%2번째 줄)</translation>
    </message>
    <message>
        <source>%1 holds no G-code</source>
        <translation>%1에 G 코드가 없습니다</translation>
    </message>
    <message>
        <source>Job done: %1 lines</source>
        <translation>작업 완료: %1줄</translation>
    </message>
    <message>
        <source>Line %1: %2</source>
        <translation>%1번째 줄: %2</translation>
    </message>
    <message>
        <source>Line %1: %2 - %3 Unlock the machine before going on.</source>
        <translation>%1번째 줄: %2 - %3 계속하기 전에 기계 잠금을 해제하세요.</translation>
    </message>
    <message>
        <source>%1; last acknowledged line %2</source>
        <translation>%1; 마지막으로 확인된 줄 %2</translation>
    </message>
    <message>
        <source>Stopped by the user at line %1</source>
        <translation>사용자가 %1번째 줄에서 정지함</translation>
    </message>
    <message>
        <source>After the last line: %1</source>
        <translation>마지막 줄 다음: %1</translation>
    </message>
    <message>
        <source>the machine does not answer status requests</source>
        <translation>기계가 상태 요청에 응답하지 않습니다</translation>
    </message>
    <message>
        <source>the machine reports %1 at X%2 Y%3</source>
        <translation>기계 보고: %1, 위치 X%2 Y%3</translation>
    </message>
    <message>
        <source>No answer to line %1 for %2 s</source>
        <translation>%1번째 줄에 %2초 동안 응답이 없습니다</translation>
    </message>
    <message>
        <source>No answer to %1 for %2 s</source>
        <translation>%1에 %2초 동안 응답이 없습니다</translation>
    </message>
    <message>
        <source>. Idle with lines unanswered: a line was lost on the way, or the firmware dropped it</source>
        <translation>. 응답 없는 줄이 있는데 Idle 상태입니다: 전송 중에 줄이 사라졌거나 펌웨어가 버렸습니다</translation>
    </message>
    <message>
        <source>The machine did not finish within %1 s of the last line; %2</source>
        <translation>마지막 줄 후 %1초 안에 기계가 끝나지 않았습니다; %2</translation>
    </message>
    <message>
        <source>; the machine is in alarm after the stop: unlock ($X) before the next job</source>
        <translation>; 정지 후 기계가 알람 상태입니다: 다음 작업 전에 잠금 해제($X)하세요</translation>
    </message>
</context>
<context>
    <name>MachineLink</name>
    <message>
        <source>No such device: %1</source>
        <translation>장치가 없습니다: %1</translation>
    </message>
    <message>
        <source>%1 is busy, or you may not open it (another program, or the port panel above, holds it)</source>
        <translation>%1이(가) 사용 중이거나 열 권한이 없습니다(다른 프로그램이나 위의 포트 패널이 사용 중)</translation>
    </message>
    <message>
        <source>Cannot open %1: %2</source>
        <translation>%1을(를) 열 수 없습니다: %2</translation>
    </message>
    <message>
        <source>No answer from %1: is a GRBL or Marlin board there, at this baud rate?</source>
        <translation>%1에서 응답이 없습니다: 이 전송 속도로 GRBL 또는 Marlin 보드가 연결되어 있습니까?</translation>
    </message>
    <message>
        <source>The machine did not answer within %1 s</source>
        <translation>기계가 %1초 안에 응답하지 않았습니다</translation>
    </message>
    <message>
        <source>Connection to %1 lost: %2</source>
        <translation>%1 연결이 끊어졌습니다: %2</translation>
    </message>
    <message>
        <source>the device went away (unplugged or switched off)</source>
        <translation>장치가 사라졌습니다(분리되었거나 꺼짐)</translation>
    </message>
    <message>
        <source>the device closed the connection</source>
        <translation>장치가 연결을 닫았습니다</translation>
    </message>
    <message>
        <source>writing failed: %1</source>
        <translation>쓰기 실패: %1</translation>
    </message>
    <message>
        <source>reading failed: %1</source>
        <translation>읽기 실패: %1</translation>
    </message>
    <message>
        <source>writing to the device failed</source>
        <translation>장치에 쓰지 못했습니다</translation>
    </message>
    <message>
        <source>reading from the device failed</source>
        <translation>장치에서 읽지 못했습니다</translation>
    </message>
</context>
<context>
    <name>MachinePanel</name>
    <message>
        <source>Machine</source>
        <translation>기계</translation>
    </message>
    <message>
        <source>Connection</source>
        <translation>연결</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>포트</translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation>새로 고침</translation>
    </message>
    <message>
        <source>Path</source>
        <translation>경로</translation>
    </message>
    <message>
        <source>/dev/ttyUSB0</source>
        <translation>/dev/ttyUSB0</translation>
    </message>
    <message>
        <source>Any device path; when filled in it is used instead of the list</source>
        <translation>임의의 장치 경로; 입력하면 목록 대신 사용됩니다</translation>
    </message>
    <message>
        <source>Baud</source>
        <translation>전송 속도</translation>
    </message>
    <message>
        <source>Firmware</source>
        <translation>펌웨어</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>연결</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>연결 해제</translation>
    </message>
    <message>
        <source>Not connected</source>
        <translation>연결되지 않음</translation>
    </message>
    <message>
        <source>Release it</source>
        <translation>포트 해제</translation>
    </message>
    <message>
        <source>Jog</source>
        <translation>이동</translation>
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
        <translation>이송 속도 (mm/min)</translation>
    </message>
    <message>
        <source>Home</source>
        <translation>원점 복귀</translation>
    </message>
    <message>
        <source>Unlock</source>
        <translation>잠금 해제</translation>
    </message>
    <message>
        <source>Set origin</source>
        <translation>원점 설정</translation>
    </message>
    <message>
        <source>Go to origin</source>
        <translation>원점으로 이동</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>테두리</translation>
    </message>
    <message>
        <source>Beam (%)</source>
        <translation>빔 (%)</translation>
    </message>
    <message>
        <source>off</source>
        <translation>끔</translation>
    </message>
    <message>
        <source>0 keeps the beam off; a low power shows the frame on the material</source>
        <translation>0이면 빔이 꺼집니다; 낮은 출력은 재료 위에 테두리를 표시합니다</translation>
    </message>
    <message>
        <source>Job</source>
        <translation>작업</translation>
    </message>
    <message>
        <source>the last exported file</source>
        <translation>마지막으로 내보낸 파일</translation>
    </message>
    <message>
        <source>Choose...</source>
        <translation>선택...</translation>
    </message>
    <message>
        <source>Run job</source>
        <translation>작업 실행</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>일시 정지</translation>
    </message>
    <message>
        <source>Resume</source>
        <translation>재개</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>정지</translation>
    </message>
    <message>
        <source>Go on after a firmware error</source>
        <translation>펌웨어 오류 후에도 계속</translation>
    </message>
    <message>
        <source>Console</source>
        <translation>콘솔</translation>
    </message>
    <message>
        <source>G-code line</source>
        <translation>G 코드 줄</translation>
    </message>
    <message>
        <source>Send</source>
        <translation>보내기</translation>
    </message>
    <message>
        <source>Line %1: %2</source>
        <translation>%1번째 줄: %2</translation>
    </message>
    <message>
        <source>Detect</source>
        <translation>자동 감지</translation>
    </message>
    <message>
        <source>Choose a port, or type the path of the device</source>
        <translation>포트를 선택하거나 장치 경로를 입력하세요</translation>
    </message>
    <message>
        <source>The port panel above holds %1.</source>
        <translation>위의 포트 패널이 %1을(를) 사용 중입니다.</translation>
    </message>
    <message>
        <source>Opening %1...</source>
        <translation>%1 여는 중...</translation>
    </message>
    <message>
        <source>Place a picture inside the work area first</source>
        <translation>먼저 작업 영역 안에 그림을 놓으세요</translation>
    </message>
    <message>
        <source>Framing X %1 to %2, Y %3 to %4 mm</source>
        <translation>테두리 그리는 중 X %1~%2, Y %3~%4 mm</translation>
    </message>
    <message>
        <source>Job to run</source>
        <translation>실행할 작업</translation>
    </message>
    <message>
        <source>G-code (*.gcode *.nc *.gc);;All files (*)</source>
        <translation>G 코드 (*.gcode *.nc *.gc);;모든 파일 (*)</translation>
    </message>
    <message>
        <source>Export a job first, or choose a G-code file</source>
        <translation>먼저 작업을 내보내거나 G 코드 파일을 선택하세요</translation>
    </message>
    <message>
        <source>Connect to the machine first</source>
        <translation>먼저 기계에 연결하세요</translation>
    </message>
    <message>
        <source>Running %1</source>
        <translation>%1 실행 중</translation>
    </message>
    <message>
        <source>Connecting to %1...</source>
        <translation>%1에 연결 중...</translation>
    </message>
    <message>
        <source>Connected to %1 (%2)</source>
        <translation>%1에 연결됨(%2)</translation>
    </message>
    <message>
        <source>State: %1   X %2  Y %3</source>
        <translation>상태: %1   X %2  Y %3</translation>
    </message>
    <message>
        <source>&gt; ! (feed hold)</source>
        <translation>&gt; ! (이송 정지)</translation>
    </message>
    <message>
        <source>&gt; ~ (cycle start)</source>
        <translation>&gt; ~ (사이클 시작)</translation>
    </message>
    <message>
        <source>&gt; 0x%1 (reset)</source>
        <translation>&gt; 0x%1 (리셋)</translation>
    </message>
    <message>
        <source> Unlock the machine before going on.</source>
        <translation> 계속하기 전에 기계 잠금을 해제하세요.</translation>
    </message>
    <message>
        <source>%1 / %2 lines   elapsed %3   left %4</source>
        <translation>%1 / %2줄   경과 %3   남음 %4</translation>
    </message>
    <message>
        <source>Frame traced: check the frame, then Resume</source>
        <translation>테두리 완료: 테두리를 확인한 뒤 재개하세요</translation>
    </message>
    <message>
        <source>Paused</source>
        <translation>일시 정지됨</translation>
    </message>
    <message>
        <source>Job done</source>
        <translation>작업 완료</translation>
    </message>
    <message>
        <source>Stopped; the beam is off</source>
        <translation>정지됨; 빔이 꺼졌습니다</translation>
    </message>
    <message>
        <source> The job was stopped and the beam turned off.</source>
        <translation> 작업이 정지되고 빔이 꺼졌습니다.</translation>
    </message>
    <message>
        <source>Finishing…</source>
        <translation>마무리 중…</translation>
    </message>
    <message>
        <source>Stopping…</source>
        <translation>정지 중…</translation>
    </message>
    <message>
        <source>Stopped. The machine is in alarm after the stop: press Unlock ($X) before the next job.</source>
        <translation>정지됨. 정지 후 기계가 알람 상태입니다: 다음 작업 전에 잠금 해제($X)를 누르세요.</translation>
    </message>
    <message>
        <source> Check the machine: it may still be running the lines it had received.</source>
        <translation> 기계를 확인하세요: 받은 줄을 아직 실행하고 있을 수 있습니다.</translation>
    </message>
</context>
</TS>
