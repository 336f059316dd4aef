<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ko_KR" sourcelanguage="zh_CN">
<context>
    <name>Draw</name>
    <message>
        <source>退出</source>
        <translation>종료</translation>
    </message>
    <message>
        <source>画布上的设计尚未导出。仍要退出吗？</source>
        <translation>캔버스의 디자인을 아직 내보내지 않았습니다. 그래도 종료하시겠습니까?</translation>
    </message>
</context>
</TS>
