<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="zh_CN">
<context>
    <name>AllKindPic</name>
    <message>
        <source>图像效果</source>
        <translation>图像效果</translation>
    </message>
    <message>
        <source>效果</source>
        <translation>效果</translation>
    </message>
    <message>
        <source>原图</source>
        <translation>原图</translation>
    </message>
    <message>
        <source>灰度</source>
        <translation>灰度</translation>
    </message>
    <message>
        <source>反色</source>
        <translation>反色</translation>
    </message>
    <message>
        <source>素描</source>
        <translation>素描</translation>
    </message>
    <message>
        <source>抖动</source>
        <translation>抖动</translation>
    </message>
    <message>
        <source>泰森多边形</source>
        <translation>泰森多边形</translation>
    </message>
    <message>
        <source>没有图片</source>
        <translation>没有图片</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>无法运行 %1</source>
        <translation>无法运行 %1</translation>
    </message>
    <message>
        <source>无法保存 %1</source>
        <translation>无法保存 %1</translation>
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
        <translation>选择端口:</translation>
    </message>
    <message>
        <source>连接</source>
        <translation>连接</translation>
    </message>
    <message>
        <source>更新</source>
        <translation>更新</translation>
    </message>
    <message>
        <source>断开</source>
        <translation>断开</translation>
    </message>
    <message>
        <source>Notice</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Serial open failed.</source>
        <translation>串口打开失败。</translation>
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
        <translation>机器设置</translation>
    </message>
    <message>
        <source>激光开启指令</source>
        <translation>激光开启指令</translation>
    </message>
    <message>
        <source>激光关闭指令</source>
        <translation>激光关闭指令</translation>
    </message>
    <message>
        <source>主轴开启指令</source>
        <translation>主轴开启指令</translation>
    </message>
    <message>
        <source>主轴关闭指令</source>
        <translation>主轴关闭指令</translation>
    </message>
    <message>
        <source>空走速度</source>
        <translation>空走速度</translation>
    </message>
    <message>
        <source>mm/min</source>
        <translation>mm/min</translation>
    </message>
    <message>
        <source>雕刻速度</source>
        <translation>雕刻速度</translation>
    </message>
    <message>
        <source>抬刀高度</source>
        <translation>抬刀高度</translation>
    </message>
    <message>
        <source>mm</source>
        <translation>mm</translation>
    </message>
    <message>
        <source>下刀深度</source>
        <translation>下刀深度</translation>
    </message>
    <message>
        <source>加载G代码头</source>
        <translation>加载G代码头</translation>
    </message>
    <message>
        <source>加载G代码尾</source>
        <translation>加载G代码尾</translation>
    </message>
    <message>
        <source>雕刻</source>
        <translation>雕刻</translation>
    </message>
    <message>
        <source>打开图片</source>
        <translation>打开图片</translation>
    </message>
    <message>
        <source>选择图片或SVG文件</source>
        <translation>选择图片或SVG文件</translation>
    </message>
    <message>
        <source>删除</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>删除图片和工作文件</source>
        <translation>删除图片和工作文件</translation>
    </message>
    <message>
        <source>绘图</source>
        <translation>绘图</translation>
    </message>
    <message>
        <source>机器模式</source>
        <translation>机器模式</translation>
    </message>
    <message>
        <source>激光</source>
        <translation>激光</translation>
    </message>
    <message>
        <source>CNC</source>
        <translation>CNC</translation>
    </message>
    <message>
        <source>雕刻方式</source>
        <translation>雕刻方式</translation>
    </message>
    <message>
        <source>轮廓</source>
        <translation>轮廓</translation>
    </message>
    <message>
        <source>灰度</source>
        <translation>灰度</translation>
    </message>
    <message>
        <source>黑白</source>
        <translation>黑白</translation>
    </message>
    <message>
        <source>尺寸</source>
        <translation>尺寸</translation>
    </message>
    <message>
        <source>宽度(mm)</source>
        <translation>宽度(mm)</translation>
    </message>
    <message>
        <source>高度(mm)</source>
        <translation>高度(mm)</translation>
    </message>
    <message>
        <source>材料库</source>
        <translation>材料库</translation>
    </message>
    <message>
        <source>材料</source>
        <translation>材料</translation>
    </message>
    <message>
        <source>初始化</source>
        <translation>初始化</translation>
    </message>
    <message>
        <source>保存</source>
        <translation>保存</translation>
    </message>
    <message>
        <source>添加</source>
        <translation>添加</translation>
    </message>
    <message>
        <source>功率与速度</source>
        <translation>功率与速度</translation>
    </message>
    <message>
        <source>功率</source>
        <translation>功率</translation>
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
        <translation>速度</translation>
    </message>
    <message>
        <source>导出G代码</source>
        <translation>导出G代码</translation>
    </message>
    <message>
        <source>预估时间</source>
        <translation>预估时间</translation>
    </message>
    <message>
        <source>0s</source>
        <translation>0s</translation>
    </message>
    <message>
        <source>控制</source>
        <translation>控制</translation>
    </message>
    <message>
        <source>移动</source>
        <translation>移动</translation>
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
        <translation>归位</translation>
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
        <translation>步长</translation>
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
        <translation>设为原点</translation>
    </message>
    <message>
        <source>回到原点</source>
        <translation>回到原点</translation>
    </message>
    <message>
        <source>预览边框</source>
        <translation>预览边框</translation>
    </message>
    <message>
        <source>像素间距</source>
        <translation>像素间距</translation>
    </message>
    <message>
        <source>自定义</source>
        <translation>自定义</translation>
    </message>
    <message>
        <source>发送G代码</source>
        <translation>发送G代码</translation>
    </message>
    <message>
        <source>G代码</source>
        <translation>G代码</translation>
    </message>
    <message>
        <source>发送</source>
        <translation>发送</translation>
    </message>
    <message>
        <source>开始</source>
        <translation>开始</translation>
    </message>
    <message>
        <source>暂停</source>
        <translation>暂停</translation>
    </message>
    <message>
        <source>继续</source>
        <translation>继续</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>文字</source>
        <translation>文字</translation>
    </message>
    <message>
        <source>字体</source>
        <translation>字体</translation>
    </message>
    <message>
        <source>字号</source>
        <translation>字号</translation>
    </message>
    <message>
        <source>输入文字</source>
        <translation>输入文字</translation>
    </message>
    <message>
        <source>文字转图片</source>
        <translation>文字转图片</translation>
    </message>
    <message>
        <source>生成二维码</source>
        <translation>生成二维码</translation>
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
        <translation>设置阈值</translation>
    </message>
    <message>
        <source>完成</source>
        <translation>完成</translation>
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
        <translation>装载</translation>
    </message>
    <message>
        <source>保存图片</source>
        <translation>保存图片</translation>
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
        <translation>正在...,请等待</translation>
    </message>
</context>
</TS>
