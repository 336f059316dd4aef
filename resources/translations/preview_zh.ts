<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en_US">
<context>
    <name>PreviewPanel</name>
    <message>
        <source>Toolpath preview</source>
        <translation>刀路预览</translation>
    </message>
    <message>
        <source>Open G-code file...</source>
        <translation>打开G代码文件...</translation>
    </message>
    <message>
        <source>Fit</source>
        <translation>适应</translation>
    </message>
    <message>
        <source>Travel moves</source>
        <translation>空移路径</translation>
    </message>
    <message>
        <source>Cut depth colours</source>
        <translation>按切削深度着色</translation>
    </message>
    <message>
        <source>Open G-code file</source>
        <translation>打开G代码文件</translation>
    </message>
    <message>
        <source>G-code (*.gcode *.nc *.ngc *.gc *.txt);;All files (*)</source>
        <translation>G代码 (*.gcode *.nc *.ngc *.gc *.txt);;所有文件 (*)</translation>
    </message>
    <message>
        <source>X %1..%2, Y %3..%4 mm</source>
        <translation>X %1..%2, Y %3..%4 mm</translation>
    </message>
    <message>
        <source>none</source>
        <translation>无</translation>
    </message>
    <message>
        <source>Lines: %1   Burn moves: %2   Extent: %3   Estimated time: %4</source>
        <translation>行数: %1   雕刻移动: %2   范围: %3   预估时间: %4</translation>
    </message>
    <message>
        <source>The file cannot be read.</source>
        <translation>无法读取该文件。</translation>
    </message>
    <message>
        <source>The file is empty.</source>
        <translation>该文件是空的。</translation>
    </message>
    <message>
        <source>Nothing burns: no move in this file runs with the beam on.</source>
        <translation>没有任何雕刻: 这个文件中没有一条移动是在激光开启时进行的。</translation>
    </message>
    <message>
        <source>%1 lines were not understood and are left out (the first is line %2).</source>
        <translation>有 %1 行无法识别, 已跳过 (第一行是第 %2 行)。</translation>
    </message>
    <message>
        <source>No file shown yet: export a job or open a G-code file.</source>
        <translation>尚未显示文件: 请导出任务或打开G代码文件。</translation>
    </message>
    <message>
        <source>Part of the job lies outside the %1 x %2 mm work area: %3 burn moves and %4 travel moves go beyond it (%5). The machine cannot reach that part, and it is not drawn.</source>
        <translation>部分任务超出了 %1 x %2 mm 的工作区域: %3 条雕刻移动和 %4 条空移超出范围 (%5)。机器无法到达那部分, 也不会画出。</translation>
    </message>
    <message>
        <source>X down to %1 mm</source>
        <translation>X 低至 %1 mm</translation>
    </message>
    <message>
        <source>X up to %1 mm</source>
        <translation>X 高至 %1 mm</translation>
    </message>
    <message>
        <source>Y down to %1 mm</source>
        <translation>Y 低至 %1 mm</translation>
    </message>
    <message>
        <source>Y up to %1 mm</source>
        <translation>Y 高至 %1 mm</translation>
    </message>
    <message>
        <source>, </source>
        <translation>，</translation>
    </message>
    <message>
        <source>Cuts from Z %1 mm (orange) down to Z %2 mm (blue)</source>
        <translation>切削深度从 Z %1 mm (橙色) 到 Z %2 mm (蓝色)</translation>
    </message>
    <message>
        <source>%1 rapid moves (G0) run with the beam on. They are drawn as travel; a machine that keeps the beam firing during G0 burns a line there.</source>
        <translation>有 %1 条快速移动 (G0) 在激光开启时进行。它们按空移画出; 如果机器在 G0 时不关闭激光, 那里会烧出一条线。</translation>
    </message>
</context>
</TS>
