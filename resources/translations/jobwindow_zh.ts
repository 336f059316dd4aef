<?xml version='1.0' encoding='utf-8'?>
<TS version="2.1" language="zh_CN" sourcelanguage="en_US">
<context>
    <name>JobTextDialog</name>
    <message>
        <source>Add QR code</source>
        <translation>添加二维码</translation>
    </message>
    <message>
        <source>Add text</source>
        <translation>添加文字</translation>
    </message>
    <message>
        <source>Text or address</source>
        <translation>文字或网址</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>文字</translation>
    </message>
    <message>
        <source>L (7 %)</source>
        <translation>L（7 %）</translation>
    </message>
    <message>
        <source>M (15 %)</source>
        <translation>M（15 %）</translation>
    </message>
    <message>
        <source>Q (25 %)</source>
        <translation>Q（25 %）</translation>
    </message>
    <message>
        <source>H (30 %)</source>
        <translation>H（30 %）</translation>
    </message>
    <message>
        <source> modules</source>
        <translation> 模块</translation>
    </message>
    <message>
        <source>Error correction</source>
        <translation>纠错等级</translation>
    </message>
    <message>
        <source>Quiet zone</source>
        <translation>静区</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>左对齐</translation>
    </message>
    <message>
        <source>Centre</source>
        <translation>居中</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>右对齐</translation>
    </message>
    <message>
        <source>Font</source>
        <translation>字体</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>字号</translation>
    </message>
    <message>
        <source>Alignment</source>
        <translation>对齐</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
</context>
<context>
    <name>JobWindow</name>
    <message>
        <source>Undo %1</source>
        <translation>撤销 %1</translation>
    </message>
    <message>
        <source>Redo %1</source>
        <translation>重做 %1</translation>
    </message>
    <message>
        <source>Item %1</source>
        <translation>项目 %1</translation>
    </message>
    <message>
        <source>%1 lies outside the bed (%2 x %3 mm): move it onto the bed</source>
        <translation>%1 超出工作台（%2 x %3 mm）：请把它移到工作台上</translation>
    </message>
    <message>
        <source>Move</source>
        <translation>移动</translation>
    </message>
    <message>
        <source>Resize</source>
        <translation>缩放</translation>
    </message>
    <message>
        <source>Open job</source>
        <translation>打开作业</translation>
    </message>
    <message>
        <source>Add picture</source>
        <translation>添加图片</translation>
    </message>
    <message>
        <source>Pictures (*.png *.jpg *.jpeg *.bmp *.gif)</source>
        <translation>图片 (*.png *.jpg *.jpeg *.bmp *.gif)</translation>
    </message>
    <message>
        <source>Add SVG</source>
        <translation>添加 SVG</translation>
    </message>
    <message>
        <source>SVG drawings (*.svg)</source>
        <translation>SVG 矢量图 (*.svg)</translation>
    </message>
    <message>
        <source>Align</source>
        <translation>对齐</translation>
    </message>
    <message>
        <source>Add layer</source>
        <translation>添加图层</translation>
    </message>
    <message>
        <source>Keep proportions</source>
        <translation>保持比例</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>文件(&amp;F)</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>编辑(&amp;E)</translation>
    </message>
    <message>
        <source>&amp;Layer</source>
        <translation>图层(&amp;L)</translation>
    </message>
    <message>
        <source>&amp;Machine</source>
        <translation>机器(&amp;M)</translation>
    </message>
    <message>
        <source>Open &amp;recent</source>
        <translation>最近打开(&amp;R)</translation>
    </message>
    <message>
        <source>Move selection to layer</source>
        <translation>把所选移到图层</translation>
    </message>
    <message>
        <source>New</source>
        <translation>新建</translation>
    </message>
    <message>
        <source>Open…</source>
        <translation>打开…</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
    <message>
        <source>Save as…</source>
        <translation>另存为…</translation>
    </message>
    <message>
        <source>Export job…</source>
        <translation>导出作业…</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>撤销</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>重做</translation>
    </message>
    <message>
        <source>Add picture…</source>
        <translation>添加图片…</translation>
    </message>
    <message>
        <source>Add SVG…</source>
        <translation>添加 SVG…</translation>
    </message>
    <message>
        <source>Add text…</source>
        <translation>添加文字…</translation>
    </message>
    <message>
        <source>Add QR code…</source>
        <translation>添加二维码…</translation>
    </message>
    <message>
        <source>Duplicate</source>
        <translation>复制</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>Centre on bed</source>
        <translation>在工作台居中</translation>
    </message>
    <message>
        <source>Select all</source>
        <translation>全选</translation>
    </message>
    <message>
        <source>Align left</source>
        <translation>左对齐</translation>
    </message>
    <message>
        <source>Align centres across</source>
        <translation>水平居中对齐</translation>
    </message>
    <message>
        <source>Align right</source>
        <translation>右对齐</translation>
    </message>
    <message>
        <source>Align bottom</source>
        <translation>底部对齐</translation>
    </message>
    <message>
        <source>Align centres up and down</source>
        <translation>垂直居中对齐</translation>
    </message>
    <message>
        <source>Align top</source>
        <translation>顶部对齐</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>走边框</translation>
    </message>
    <message>
        <source>Machine profiles…</source>
        <translation>机器配置…</translation>
    </message>
    <message>
        <source>Material test grid…</source>
        <translation>材料测试网格…</translation>
    </message>
    <message>
        <source>Run job</source>
        <translation>运行作业</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>放大</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>缩小</translation>
    </message>
    <message>
        <source>Show the whole bed</source>
        <translation>显示整个工作台</translation>
    </message>
    <message>
        <source> Frame power </source>
        <translation> 边框功率 </translation>
    </message>
    <message>
        <source>0 traces the frame with the beam off</source>
        <translation>0 表示关闭激光走边框</translation>
    </message>
    <message>
        <source>Job</source>
        <translation>作业</translation>
    </message>
    <message>
        <source>Item</source>
        <translation>对象</translation>
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
        <translation> 宽 </translation>
    </message>
    <message>
        <source> H </source>
        <translation> 高 </translation>
    </message>
    <message>
        <source>Left edge, from the bed's left side</source>
        <translation>左边缘，从工作台左侧算起</translation>
    </message>
    <message>
        <source>Bottom edge, from the bed's front side</source>
        <translation>下边缘，从工作台前侧算起</translation>
    </message>
    <message>
        <source>Width</source>
        <translation>宽度</translation>
    </message>
    <message>
        <source>Height</source>
        <translation>高度</translation>
    </message>
    <message>
        <source>Layers</source>
        <translation>图层</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>预览</translation>
    </message>
    <message>
        <source>Untitled job</source>
        <translation>未命名作业</translation>
    </message>
    <message>
        <source>Jobs (*.tljob);;All files (*)</source>
        <translation>作业 (*.tljob);;所有文件 (*)</translation>
    </message>
    <message>
        <source>The job could not be opened: %1</source>
        <translation>无法打开作业：%1</translation>
    </message>
    <message>
        <source>The job could not be saved: %1</source>
        <translation>无法保存作业：%1</translation>
    </message>
    <message>
        <source>Saved %1</source>
        <translation>已保存 %1</translation>
    </message>
    <message>
        <source>Save job</source>
        <translation>保存作业</translation>
    </message>
    <message>
        <source>%1 has unsaved changes. Save them?</source>
        <translation>%1 有未保存的更改。要保存吗？</translation>
    </message>
    <message>
        <source>%1 could not be read</source>
        <translation>无法读取 %1</translation>
    </message>
    <message>
        <source>%1 is neither a picture nor an SVG drawing</source>
        <translation>%1 既不是图片也不是 SVG 矢量图</translation>
    </message>
    <message>
        <source>The text has nothing to engrave</source>
        <translation>这段文字没有可雕刻的内容</translation>
    </message>
    <message>
        <source>Add text</source>
        <translation>添加文字</translation>
    </message>
    <message>
        <source>The text is too long for a QR code</source>
        <translation>文字太长，无法生成二维码</translation>
    </message>
    <message>
        <source>Add QR code</source>
        <translation>添加二维码</translation>
    </message>
    <message>
        <source>Add to job</source>
        <translation>加入作业</translation>
    </message>
    <message>
        <source>Move to layer</source>
        <translation>移到图层</translation>
    </message>
    <message>
        <source>Machine profile</source>
        <translation>机器配置</translation>
    </message>
    <message>
        <source>Material test grid</source>
        <translation>材料测试网格</translation>
    </message>
    <message>
        <source>Nothing was written: %1</source>
        <translation>未写入任何文件：%1</translation>
    </message>
    <message>
        <source>%1 could not be written</source>
        <translation>无法写入 %1</translation>
    </message>
    <message>
        <source>Exported %1</source>
        <translation>已导出 %1</translation>
    </message>
    <message>
        <source>Export job</source>
        <translation>导出作业</translation>
    </message>
    <message>
        <source>G-code (*.gcode)</source>
        <translation>G 代码 (*.gcode)</translation>
    </message>
    <message>
        <source>The job has nothing to frame</source>
        <translation>作业中没有可走边框的内容</translation>
    </message>
    <message>
        <source>Nothing was sent: %1</source>
        <translation>未发送任何内容：%1</translation>
    </message>
    <message>
        <source>Connect to the machine in the Machine window first</source>
        <translation>请先在机器窗口中连接机器</translation>
    </message>
    <message>
        <source>Framing X %1 to %2, Y %3 to %4 mm</source>
        <translation>正在走边框 X %1 到 %2，Y %3 到 %4 mm</translation>
    </message>
    <message>
        <source>The Machine window is not available</source>
        <translation>机器窗口不可用</translation>
    </message>
    <message>
        <source>Copy the prepared picture or drawing into the Job window</source>
        <translation>把已处理好的图片或矢量图复制到作业窗口</translation>
    </message>
    <message>
        <source>Discard</source>
        <translation>不保存</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>%1 is a picture: only an image layer can engrave it</source>
        <translation>%1 是图片：只有图像图层能雕刻它</translation>
    </message>
    <message>
        <source>Estimated time: %1</source>
        <translation>预计用时：%1</translation>
    </message>
    <message>
        <source>Layer %1 %2: %3 items, burn %4 mm, %5</source>
        <translation>图层 %1 %2：%3 个对象，雕刻 %4 mm，%5</translation>
    </message>
    <message>
        <source>Edit text</source>
        <translation>编辑文字</translation>
    </message>
    <message>
        <source>A GRBL board is connected: Machine &gt; Machine profiles… can read its settings</source>
        <translation>已连接 GRBL 主板：可在“机器 &gt; 机器配置…”中读取它的设置</translation>
    </message>
</context>
<context>
    <name>LayerPanel</name>
    <message>
        <source>Save as preset</source>
        <translation>保存为预设</translation>
    </message>
    <message>
        <source>Name of the preset</source>
        <translation>预设名称</translation>
    </message>
    <message>
        <source>Switch layer</source>
        <translation>开关图层</translation>
    </message>
    <message>
        <source>Add layer</source>
        <translation>添加图层</translation>
    </message>
    <message>
        <source>Remove layer</source>
        <translation>删除图层</translation>
    </message>
    <message>
        <source>Add a layer</source>
        <translation>添加一个图层</translation>
    </message>
    <message>
        <source>Remove the layer and its items</source>
        <translation>删除图层及其中的对象</translation>
    </message>
    <message>
        <source>Burn earlier</source>
        <translation>提前雕刻</translation>
    </message>
    <message>
        <source>Burn later</source>
        <translation>推后雕刻</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名称</translation>
    </message>
    <message>
        <source>Colour</source>
        <translation>颜色</translation>
    </message>
    <message>
        <source>Operation</source>
        <translation>加工方式</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>速度</translation>
    </message>
    <message>
        <source>Power</source>
        <translation>功率</translation>
    </message>
    <message>
        <source>Passes</source>
        <translation>遍数</translation>
    </message>
    <message>
        <source>Image</source>
        <translation>图像</translation>
    </message>
    <message>
        <source>Fill</source>
        <translation>填充</translation>
    </message>
    <message>
        <source>Line</source>
        <translation>线条</translation>
    </message>
    <message>
        <source>Mode</source>
        <translation>模式</translation>
    </message>
    <message>
        <source>Threshold</source>
        <translation>阈值</translation>
    </message>
    <message>
        <source>Dither</source>
        <translation>抖动</translation>
    </message>
    <message>
        <source>Grayscale</source>
        <translation>灰度</translation>
    </message>
    <message>
        <source>Brightness</source>
        <translation>亮度</translation>
    </message>
    <message>
        <source>Contrast</source>
        <translation>对比度</translation>
    </message>
    <message>
        <source>Gamma</source>
        <translation>伽马</translation>
    </message>
    <message>
        <source>Minimum power</source>
        <translation>最小功率</translation>
    </message>
    <message>
        <source>Invert</source>
        <translation>反相</translation>
    </message>
    <message>
        <source>Line interval</source>
        <translation>行间距</translation>
    </message>
    <message>
        <source>Overscan</source>
        <translation>过扫描</translation>
    </message>
    <message>
        <source>Bidirectional</source>
        <translation>双向</translation>
    </message>
    <message>
        <source>Reverse-row offset</source>
        <translation>反向行偏移</translation>
    </message>
    <message>
        <source>Hatch interval</source>
        <translation>填充线间距</translation>
    </message>
    <message>
        <source>Angle</source>
        <translation>角度</translation>
    </message>
    <message>
        <source>Cross-hatch</source>
        <translation>交叉填充</translation>
    </message>
    <message>
        <source>Kerf side</source>
        <translation>切缝方向</translation>
    </message>
    <message>
        <source>On the line</source>
        <translation>在线上</translation>
    </message>
    <message>
        <source>Inside</source>
        <translation>内侧</translation>
    </message>
    <message>
        <source>Outside</source>
        <translation>外侧</translation>
    </message>
    <message>
        <source>Kerf</source>
        <translation>切缝宽度</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>应用</translation>
    </message>
    <message>
        <source>Give the layer the preset's operation, speed, power, passes and interval</source>
        <translation>把预设的加工方式、速度、功率、遍数和间距用于该图层</translation>
    </message>
    <message>
        <source>Save as preset…</source>
        <translation>保存为预设…</translation>
    </message>
    <message>
        <source>%1 — %2, %3 mm/min, %4 %, %5×</source>
        <translation>%1 — %2，%3 mm/min，%4 %，%5 遍</translation>
    </message>
    <message>
        <source>Layer settings</source>
        <translation>图层设置</translation>
    </message>
    <message>
        <source>en</source>
        <extracomment>The language code of this catalogue: zh, en or ko. It picks the language of the preset names.</extracomment>
        <translation>zh</translation>
    </message>
    <message>
        <source>Apply preset</source>
        <translation>应用预设</translation>
    </message>
    <message>
        <source>Reorder layers</source>
        <translation>调整图层顺序</translation>
    </message>
</context>
<context>
    <name>MachineProfileDialog</name>
    <message>
        <source>Machine profiles</source>
        <translation>机器配置</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>添加</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>GRBL (M4 S)</source>
        <translation>GRBL（M4 S）</translation>
    </message>
    <message>
        <source>Marlin (M3 S / M5)</source>
        <translation>Marlin（M3 S / M5）</translation>
    </message>
    <message>
        <source>Fan output (M106 / M107)</source>
        <translation>风扇输出（M106 / M107）</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名称</translation>
    </message>
    <message>
        <source>Dialect</source>
        <translation>指令格式</translation>
    </message>
    <message>
        <source>Maximum power (S of 100 %)</source>
        <translation>最大功率（100 % 时的 S 值）</translation>
    </message>
    <message>
        <source>Bed width</source>
        <translation>工作台宽度</translation>
    </message>
    <message>
        <source>Bed height</source>
        <translation>工作台高度</translation>
    </message>
    <message>
        <source>Travel feed</source>
        <translation>空走速度</translation>
    </message>
    <message>
        <source>Acceleration</source>
        <translation>加速度</translation>
    </message>
    <message>
        <source>Read from the connected GRBL board</source>
        <translation>从已连接的 GRBL 主板读取</translation>
    </message>
    <message>
        <source>New machine</source>
        <translation>新机器</translation>
    </message>
    <message>
        <source>Read %1 settings from the board</source>
        <translation>已从主板读取 %1 项设置</translation>
    </message>
    <message>
        <source>The board listed none of the settings</source>
        <translation>主板没有列出这些设置</translation>
    </message>
    <message>
        <source>Connect a GRBL board in the Machine window first</source>
        <translation>请先在机器窗口中连接 GRBL 主板</translation>
    </message>
    <message>
        <source>Asking the board…</source>
        <translation>正在询问主板…</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
</context>
<context>
    <name>TestGridDialog</name>
    <message>
        <source>Material test grid</source>
        <translation>材料测试网格</translation>
    </message>
    <message>
        <source>Rows vary the passes (at the first speed)</source>
        <translation>各行改变遍数（使用第一个速度）</translation>
    </message>
    <message>
        <source>Image</source>
        <translation>图像</translation>
    </message>
    <message>
        <source>Fill</source>
        <translation>填充</translation>
    </message>
    <message>
        <source>Line</source>
        <translation>线条</translation>
    </message>
    <message>
        <source>Powers</source>
        <translation>功率</translation>
    </message>
    <message>
        <source>Speeds</source>
        <translation>速度</translation>
    </message>
    <message>
        <source>Passes</source>
        <translation>遍数</translation>
    </message>
    <message>
        <source>Cell size</source>
        <translation>方格大小</translation>
    </message>
    <message>
        <source>Gap</source>
        <translation>间隔</translation>
    </message>
    <message>
        <source>Operation</source>
        <translation>加工方式</translation>
    </message>
    <message>
        <source>Bottom-left X</source>
        <translation>左下角 X</translation>
    </message>
    <message>
        <source>Bottom-left Y</source>
        <translation>左下角 Y</translation>
    </message>
    <message>
        <source>Create job</source>
        <translation>生成作业</translation>
    </message>
    <message>
        <source>%1 cells, %2 x %3 mm, estimated time %4</source>
        <translation>%1 个方格，%2 x %3 mm，预计用时 %4</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
</context>
</TS>