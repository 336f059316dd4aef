<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ko_KR" sourcelanguage="zh_CN">
<context>
    <name>AllKindPic</name>
    <message>
        <source>图像效果</source>
        <translation>이미지 효과</translation>
    </message>
    <message>
        <source>效果</source>
        <translation>효과</translation>
    </message>
    <message>
        <source>原图</source>
        <translation>원본</translation>
    </message>
    <message>
        <source>灰度</source>
        <translation>그레이스케일</translation>
    </message>
    <message>
        <source>反色</source>
        <translation>반전</translation>
    </message>
    <message>
        <source>素描</source>
        <translation>스케치</translation>
    </message>
    <message>
        <source>抖动</source>
        <translation>디더링</translation>
    </message>
    <message>
        <source>泰森多边形</source>
        <translation>보로노이</translation>
    </message>
    <message>
        <source>没有图片</source>
        <translation>그림 없음</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>경고</translation>
    </message>
    <message>
        <source>无法运行 %1</source>
        <translation>%1을(를) 실행할 수 없습니다</translation>
    </message>
    <message>
        <source>无法保存 %1</source>
        <translation>%1을(를) 저장할 수 없습니다</translation>
    </message>
</context>
<context>
    <name>Bitmap2Gcode</name>
    <message>
        <source>提示</source>
        <translation>알림</translation>
    </message>
    <message>
        <source>无法创建文件</source>
        <translation>파일을 만들 수 없습니다</translation>
    </message>
    <message>
        <source>Notice</source>
        <translation>알림</translation>
    </message>
    <message>
        <source>Can&apos;t creat file</source>
        <translation>파일을 만들 수 없습니다</translation>
    </message>
    <message>
        <source>G1 F%1 
</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>G28 X0 Y0  ;move X/Y to min endstops 
</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>G0 F%1 
</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>G0 X%1 Y%2 
</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>G1 X%1 Y%2 
</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>M106 S%1 
</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>M0 
</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>M107 
</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>G0 X%1 Y%2 Z%3
</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>G1 X%1 Y%2  Z%3
</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>G1 X%1 Y%2 Z%3
</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>G0 X%1 Y%2  Z%3
</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>G28 
</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>G1 X%1 Y%2 Z%3
 </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>G0 X%1 Y%2 Z%3
 </source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Bitmap2Svg</name>
    <message>
        <source>Quill Svg Generate</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>An SVG drawing created by the SVG Generator Provide by quill.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CPSerialPort</name>
    <message>
        <source>Form</source>
        <translation>폼</translation>
    </message>
    <message>
        <source>选择端口:</source>
        <translation>포트 선택:</translation>
    </message>
    <message>
        <source>连接</source>
        <translation>연결</translation>
    </message>
    <message>
        <source>更新</source>
        <translation>새로 고침</translation>
    </message>
    <message>
        <source>断开</source>
        <translation>연결 해제</translation>
    </message>
    <message>
        <source>Notice</source>
        <translation>알림</translation>
    </message>
    <message>
        <source>Serial open failed.</source>
        <translation>시리얼 포트를 열 수 없습니다.</translation>
    </message>
</context>
<context>
    <name>Draw</name>
    <message>
        <source>TarnwellLaser</source>
        <translation>TarnwellLaser</translation>
    </message>
    <message>
        <source>机器设置</source>
        <translation>기계 설정</translation>
    </message>
    <message>
        <source>激光开启指令</source>
        <translation>레이저 켜기 명령</translation>
    </message>
    <message>
        <source>激光关闭指令</source>
        <translation>레이저 끄기 명령</translation>
    </message>
    <message>
        <source>主轴开启指令</source>
        <translation>스핀들 켜기 명령</translation>
    </message>
    <message>
        <source>主轴关闭指令</source>
        <translation>스핀들 끄기 명령</translation>
    </message>
    <message>
        <source>空走速度</source>
        <translation>이동 속도</translation>
    </message>
    <message>
        <source>mm/min</source>
        <translation>mm/min</translation>
    </message>
    <message>
        <source>雕刻速度</source>
        <translation>조각 속도</translation>
    </message>
    <message>
        <source>抬刀高度</source>
        <translation>공구 들기 높이</translation>
    </message>
    <message>
        <source>mm</source>
        <translation>mm</translation>
    </message>
    <message>
        <source>下刀深度</source>
        <translation>절삭 깊이</translation>
    </message>
    <message>
        <source>加载G代码头</source>
        <translation>G코드 헤더 불러오기</translation>
    </message>
    <message>
        <source>加载G代码尾</source>
        <translation>G코드 푸터 불러오기</translation>
    </message>
    <message>
        <source>雕刻</source>
        <translation>조각</translation>
    </message>
    <message>
        <source>打开图片</source>
        <translation>그림 열기</translation>
    </message>
    <message>
        <source>选择图片或SVG文件</source>
        <translation>그림 또는 SVG 파일 선택</translation>
    </message>
    <message>
        <source>删除</source>
        <translation>삭제</translation>
    </message>
    <message>
        <source>删除图片和工作文件</source>
        <translation>그림과 작업 파일 삭제</translation>
    </message>
    <message>
        <source>绘图</source>
        <translation>그리기</translation>
    </message>
    <message>
        <source>机器模式</source>
        <translation>기계 모드</translation>
    </message>
    <message>
        <source>激光</source>
        <translation>레이저</translation>
    </message>
    <message>
        <source>CNC</source>
        <translation>CNC</translation>
    </message>
    <message>
        <source>雕刻方式</source>
        <translation>조각 방식</translation>
    </message>
    <message>
        <source>轮廓</source>
        <translation>윤곽</translation>
    </message>
    <message>
        <source>灰度</source>
        <translation>그레이스케일</translation>
    </message>
    <message>
        <source>黑白</source>
        <translation>흑백</translation>
    </message>
    <message>
        <source>尺寸</source>
        <translation>크기</translation>
    </message>
    <message>
        <source>宽度(mm)</source>
        <translation>너비(mm)</translation>
    </message>
    <message>
        <source>高度(mm)</source>
        <translation>높이(mm)</translation>
    </message>
    <message>
        <source>材料库</source>
        <translation>재료 라이브러리</translation>
    </message>
    <message>
        <source>材料</source>
        <translation>재료</translation>
    </message>
    <message>
        <source>初始化</source>
        <translation>초기화</translation>
    </message>
    <message>
        <source>保存</source>
        <translation>저장</translation>
    </message>
    <message>
        <source>添加</source>
        <translation>추가</translation>
    </message>
    <message>
        <source>功率与速度</source>
        <translation>출력과 속도</translation>
    </message>
    <message>
        <source>功率</source>
        <translation>출력</translation>
    </message>
    <message>
        <source>0</source>
        <translation>0</translation>
    </message>
    <message>
        <source>%</source>
        <translation>%</translation>
    </message>
    <message>
        <source>速度</source>
        <translation>속도</translation>
    </message>
    <message>
        <source>导出G代码</source>
        <translation>G코드 내보내기</translation>
    </message>
    <message>
        <source>预估时间</source>
        <translation>예상 시간</translation>
    </message>
    <message>
        <source>0s</source>
        <translation>0s</translation>
    </message>
    <message>
        <source>控制</source>
        <translation>제어</translation>
    </message>
    <message>
        <source>移动</source>
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
        <source>归位</source>
        <translation>원점 복귀</translation>
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
        <source>步长</source>
        <translation>이동 간격</translation>
    </message>
    <message>
        <source>0.1mm</source>
        <translation>0.1mm</translation>
    </message>
    <message>
        <source>1mm</source>
        <translation>1mm</translation>
    </message>
    <message>
        <source>10mm</source>
        <translation>10mm</translation>
    </message>
    <message>
        <source>设为原点</source>
        <translation>원점으로 설정</translation>
    </message>
    <message>
        <source>回到原点</source>
        <translation>원점으로 이동</translation>
    </message>
    <message>
        <source>预览边框</source>
        <translation>테두리 미리보기</translation>
    </message>
    <message>
        <source>像素间距</source>
        <translation>픽셀 간격</translation>
    </message>
    <message>
        <source>自定义</source>
        <translation>사용자 정의</translation>
    </message>
    <message>
        <source>发送G代码</source>
        <translation>G코드 보내기</translation>
    </message>
    <message>
        <source>G代码</source>
        <translation>G코드</translation>
    </message>
    <message>
        <source>发送</source>
        <translation>보내기</translation>
    </message>
    <message>
        <source>开始</source>
        <translation>시작</translation>
    </message>
    <message>
        <source>暂停</source>
        <translation>일시 정지</translation>
    </message>
    <message>
        <source>继续</source>
        <translation>계속</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>취소</translation>
    </message>
    <message>
        <source>文字</source>
        <translation>텍스트</translation>
    </message>
    <message>
        <source>字体</source>
        <translation>글꼴</translation>
    </message>
    <message>
        <source>字号</source>
        <translation>글자 크기</translation>
    </message>
    <message>
        <source>输入文字</source>
        <translation>텍스트 입력</translation>
    </message>
    <message>
        <source>文字转图片</source>
        <translation>텍스트를 그림으로</translation>
    </message>
    <message>
        <source>生成二维码</source>
        <translation>QR 코드 만들기</translation>
    </message>
    <message>
        <source>中文</source>
        <translation>中文</translation>
    </message>
    <message>
        <source>English</source>
        <translation>English</translation>
    </message>
    <message>
        <source>TarnwellLaser V1.0.1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open File</source>
        <translation>파일 열기</translation>
    </message>
    <message>
        <source>Images (*.jpeg *.jpg *.png *.bmp *.svg)</source>
        <translation>그림 (*.jpeg *.jpg *.png *.bmp *.svg)</translation>
    </message>
    <message>
        <source>info</source>
        <translation>정보</translation>
    </message>
    <message>
        <source>start</source>
        <translation>시작</translation>
    </message>
    <message>
        <source>G91</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Gcode Header</source>
        <translation>G코드 헤더</translation>
    </message>
    <message>
        <source>%1s</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1min %2s</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1h %2min %3s</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>GSendModel</name>
    <message>
        <source>total comands : %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ImgBinaryEdit</name>
    <message>
        <source>set value</source>
        <translation>값 설정</translation>
    </message>
    <message>
        <source>完成</source>
        <translation>완료</translation>
    </message>
    <message>
        <source>图片太大，无法处理</source>
        <translation>사진이 너무 커서 처리할 수 없습니다</translation>
    </message>
    <message>
        <source>The picture is too large to process</source>
        <translation>사진이 너무 커서 처리할 수 없습니다</translation>
    </message>
    <message>
        <source>无法打开图片</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The picture cannot be opened</source>
        <translation>사진을 열 수 없습니다</translation>
    </message>
    <message>
        <source>装载</source>
        <translation>불러오기</translation>
    </message>
    <message>
        <source>保存图片</source>
        <translation>그림 저장</translation>
    </message>
</context>
<context>
    <name>RenderForm</name>
    <message>
        <source>Form</source>
        <translation>폼</translation>
    </message>
</context>
<context>
    <name>WaitingForm</name>
    <message>
        <source>正在...,请等待</source>
        <translation>처리 중..., 잠시 기다려 주세요</translation>
    </message>
</context>
</TS>
