<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="zh_CN">
<context>
    <name>Draw</name>
    <message>
        <source>退出</source>
        <translation>Quit</translation>
    </message>
    <message>
        <source>画布上的设计尚未导出。仍要退出吗？</source>
        <translation>The design on the canvas has not been exported. Quit anyway?</translation>
    </message>
</context>
</TS>
