<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="zh_CN">
<context>
    <name>Draw</name>
    <message>
        <source>退出</source>
        <translation>退出</translation>
    </message>
    <message>
        <source>画布上的设计尚未导出。仍要退出吗？</source>
        <translation>画布上的设计尚未导出。仍要退出吗？</translation>
    </message>
</context>
</TS>
