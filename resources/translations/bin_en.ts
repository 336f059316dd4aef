<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="zh_CN">
<context>
    <name>AllKindPic</name>
    <message>
        <source>图像效果</source>
        <translation>Image effects</translation>
    </message>
    <message>
        <source>效果</source>
        <translation>Effect</translation>
    </message>
    <message>
        <source>原图</source>
        <translation>Original</translation>
    </message>
    <message>
        <source>灰度</source>
        <translation>Grayscale</translation>
    </message>
    <message>
        <source>反色</source>
        <translation>Invert</translation>
    </message>
    <message>
        <source>素描</source>
        <translation>Sketch</translation>
    </message>
    <message>
        <source>抖动</source>
        <translation>Dithering</translation>
    </message>
    <message>
        <source>泰森多边形</source>
        <translation>Voronoi</translation>
    </message>
    <message>
        <source>没有图片</source>
        <translation>No picture</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>无法运行 %1</source>
        <translation>Cannot run %1</translation>
    </message>
    <message>
        <source>无法保存 %1</source>
        <translation>Cannot save %1</translation>
    </message>
</context>
<context>
    <name>Bitmap2Gcode</name>
    <message>
        <source>提示</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>无法创建文件</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Notice</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Can&apos;t creat file</source>
        <translation type="unfinished"></translation>
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
        <translation>Form</translation>
    </message>
    <message>
        <source>选择端口:</source>
        <translation>Serial Ports</translation>
    </message>
    <message>
        <source>连接</source>
        <translation>Connect</translation>
    </message>
    <message>
        <source>更新</source>
        <translation>Update</translation>
    </message>
    <message>
        <source>断开</source>
        <translation>Disconnect</translation>
    </message>
    <message>
        <source>Notice</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Serial open failed.</source>
        <translation type="unfinished"></translation>
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
        <translation>Machine settings</translation>
    </message>
    <message>
        <source>激光开启指令</source>
        <translation>Laser on command</translation>
    </message>
    <message>
        <source>激光关闭指令</source>
        <translation>Laser off command</translation>
    </message>
    <message>
        <source>主轴开启指令</source>
        <translation>Spindle on command</translation>
    </message>
    <message>
        <source>主轴关闭指令</source>
        <translation>Spindle off command</translation>
    </message>
    <message>
        <source>空走速度</source>
        <translation>Travel speed</translation>
    </message>
    <message>
        <source>mm/min</source>
        <translation>mm/min</translation>
    </message>
    <message>
        <source>雕刻速度</source>
        <translation>Engraving speed</translation>
    </message>
    <message>
        <source>抬刀高度</source>
        <translation>Lift height</translation>
    </message>
    <message>
        <source>mm</source>
        <translation>mm</translation>
    </message>
    <message>
        <source>下刀深度</source>
        <translation>Cutting depth</translation>
    </message>
    <message>
        <source>加载G代码头</source>
        <translation>Load G-code header</translation>
    </message>
    <message>
        <source>加载G代码尾</source>
        <translation>Load G-code footer</translation>
    </message>
    <message>
        <source>雕刻</source>
        <translation>Engrave</translation>
    </message>
    <message>
        <source>打开图片</source>
        <translation>Open picture</translation>
    </message>
    <message>
        <source>选择图片或SVG文件</source>
        <translation>Choose a picture or SVG file</translation>
    </message>
    <message>
        <source>删除</source>
        <translation>Delete</translation>
    </message>
    <message>
        <source>删除图片和工作文件</source>
        <translation>Delete the picture and working files</translation>
    </message>
    <message>
        <source>绘图</source>
        <translation>Draw</translation>
    </message>
    <message>
        <source>机器模式</source>
        <translation>Machine mode</translation>
    </message>
    <message>
        <source>激光</source>
        <translation>Laser</translation>
    </message>
    <message>
        <source>CNC</source>
        <translation>CNC</translation>
    </message>
    <message>
        <source>雕刻方式</source>
        <translation>Engraving style</translation>
    </message>
    <message>
        <source>轮廓</source>
        <translation>Outline</translation>
    </message>
    <message>
        <source>灰度</source>
        <translation>Grayscale</translation>
    </message>
    <message>
        <source>黑白</source>
        <translation>Black and white</translation>
    </message>
    <message>
        <source>尺寸</source>
        <translation>Size</translation>
    </message>
    <message>
        <source>宽度(mm)</source>
        <translation>Width (mm)</translation>
    </message>
    <message>
        <source>高度(mm)</source>
        <translation>Height (mm)</translation>
    </message>
    <message>
        <source>材料库</source>
        <translation>Material library</translation>
    </message>
    <message>
        <source>材料</source>
        <translation>Material</translation>
    </message>
    <message>
        <source>初始化</source>
        <translation>Reset</translation>
    </message>
    <message>
        <source>保存</source>
        <translation>Save</translation>
    </message>
    <message>
        <source>添加</source>
        <translation>Add</translation>
    </message>
    <message>
        <source>功率与速度</source>
        <translation>Power and speed</translation>
    </message>
    <message>
        <source>功率</source>
        <translation>Power</translation>
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
        <translation>Speed</translation>
    </message>
    <message>
        <source>导出G代码</source>
        <translation>Export G-code</translation>
    </message>
    <message>
        <source>预估时间</source>
        <translation>Estimated time</translation>
    </message>
    <message>
        <source>0s</source>
        <translation>0s</translation>
    </message>
    <message>
        <source>控制</source>
        <translation>Control</translation>
    </message>
    <message>
        <source>移动</source>
        <translation>Move</translation>
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
        <translation>Home</translation>
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
        <translation>Step</translation>
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
        <translation>Set origin</translation>
    </message>
    <message>
        <source>回到原点</source>
        <translation>Go to origin</translation>
    </message>
    <message>
        <source>预览边框</source>
        <translation>Preview frame</translation>
    </message>
    <message>
        <source>像素间距</source>
        <translation>Pixel spacing</translation>
    </message>
    <message>
        <source>自定义</source>
        <translation>Custom</translation>
    </message>
    <message>
        <source>发送G代码</source>
        <translation>Send G-code</translation>
    </message>
    <message>
        <source>G代码</source>
        <translation>G-code</translation>
    </message>
    <message>
        <source>发送</source>
        <translation>Send</translation>
    </message>
    <message>
        <source>开始</source>
        <translation>Start</translation>
    </message>
    <message>
        <source>暂停</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>继续</source>
        <translation>Resume</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>文字</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>字体</source>
        <translation>Font</translation>
    </message>
    <message>
        <source>字号</source>
        <translation>Font size</translation>
    </message>
    <message>
        <source>输入文字</source>
        <translation>Enter text</translation>
    </message>
    <message>
        <source>文字转图片</source>
        <translation>Text to picture</translation>
    </message>
    <message>
        <source>生成二维码</source>
        <translation>Make QR code</translation>
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
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Images (*.jpeg *.jpg *.png *.bmp *.svg)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>info</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>start</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>G91</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Gcode Header</source>
        <translation type="unfinished"></translation>
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
        <translation>set value</translation>
    </message>
    <message>
        <source>完成</source>
        <translation>Done</translation>
    </message>
    <message>
        <source>图片太大，无法处理</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The picture is too large to process</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>无法打开图片</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The picture cannot be opened</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>装载</source>
        <translation>Load</translation>
    </message>
    <message>
        <source>保存图片</source>
        <translation>Save picture</translation>
    </message>
</context>
<context>
    <name>RenderForm</name>
    <message>
        <source>Form</source>
        <translation>Form</translation>
    </message>
</context>
<context>
    <name>WaitingForm</name>
    <message>
        <source>正在...,请等待</source>
        <translation>Working..., please wait</translation>
    </message>
</context>
</TS>
