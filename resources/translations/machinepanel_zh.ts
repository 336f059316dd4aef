<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en_US">
<context>
    <name>JobRunner</name>
    <message>
        <source>Cannot read %1</source>
        <translation>无法读取 %1</translation>
    </message>
    <message>
        <source>A job is running</source>
        <translation>作业正在运行</translation>
    </message>
    <message>
        <source>%1 is not G-code (line %2)</source>
        <translation>%1 不是 G 代码（第 %2 行）</translation>
    </message>
    <message>
        <source>%1 holds no G-code</source>
        <translation>%1 中没有 G 代码</translation>
    </message>
    <message>
        <source>Job done: %1 lines</source>
        <translation>作业完成：%1 行</translation>
    </message>
    <message>
        <source>Line %1: %2</source>
        <translation>第 %1 行：%2</translation>
    </message>
    <message>
        <source>Line %1: %2 - %3 Unlock the machine before going on.</source>
        <translation>第 %1 行：%2 - %3 请先解锁机器再继续。</translation>
    </message>
    <message>
        <source>%1; last acknowledged line %2</source>
        <translation>%1；最后确认的行 %2</translation>
    </message>
    <message>
        <source>Stopped by the user at line %1</source>
        <translation>用户在第 %1 行停止</translation>
    </message>
    <message>
        <source>After the last line: %1</source>
        <translation>最后一行之后：%1</translation>
    </message>
    <message>
        <source>the machine does not answer status requests</source>
        <translation>机器不回应状态查询</translation>
    </message>
    <message>
        <source>the machine reports %1 at X%2 Y%3</source>
        <translation>机器报告 %1，位于 X%2 Y%3</translation>
    </message>
    <message>
        <source>No answer to line %1 for %2 s</source>
        <translation>第 %1 行 %2 秒内没有应答</translation>
    </message>
    <message>
        <source>No answer to %1 for %2 s</source>
        <translation>%1 在 %2 秒内没有应答</translation>
    </message>
    <message>
        <source>. Idle with lines unanswered: a line was lost on the way, or the firmware dropped it</source>
        <translation>。机器空闲而仍有未应答的行：某行在传输中丢失，或被固件丢弃</translation>
    </message>
    <message>
        <source>The machine did not finish within %1 s of the last line; %2</source>
        <translation>最后一行之后 %1 秒内机器没有完成；%2</translation>
    </message>
    <message>
        <source>; the machine is in alarm after the stop: unlock ($X) before the next job</source>
        <translation>；停止后机器处于报警状态：开始下一个作业前请解锁（$X）</translation>
    </message>
</context>
<context>
    <name>MachineLink</name>
    <message>
        <source>No such device: %1</source>
        <translation>没有此设备：%1</translation>
    </message>
    <message>
        <source>%1 is busy, or you may not open it (another program, or the port panel above, holds it)</source>
        <translation>%1 正被占用或无权打开（其他程序或上方的端口面板正在使用它）</translation>
    </message>
    <message>
        <source>Cannot open %1: %2</source>
        <translation>无法打开 %1：%2</translation>
    </message>
    <message>
        <source>No answer from %1: is a GRBL or Marlin board there, at this baud rate?</source>
        <translation>%1 没有应答：是否连接了 GRBL 或 Marlin 主板，波特率是否正确？</translation>
    </message>
    <message>
        <source>The machine did not answer within %1 s</source>
        <translation>机器在 %1 秒内没有应答</translation>
    </message>
    <message>
        <source>Connection to %1 lost: %2</source>
        <translation>与 %1 的连接已断开：%2</translation>
    </message>
    <message>
        <source>the device went away (unplugged or switched off)</source>
        <translation>设备已消失（被拔出或关闭）</translation>
    </message>
    <message>
        <source>the device closed the connection</source>
        <translation>设备关闭了连接</translation>
    </message>
    <message>
        <source>writing failed: %1</source>
        <translation>写入失败：%1</translation>
    </message>
    <message>
        <source>reading failed: %1</source>
        <translation>读取失败：%1</translation>
    </message>
    <message>
        <source>writing to the device failed</source>
        <translation>向设备写入失败</translation>
    </message>
    <message>
        <source>reading from the device failed</source>
        <translation>从设备读取失败</translation>
    </message>
</context>
<context>
    <name>MachinePanel</name>
    <message>
        <source>Machine</source>
        <translation>机器</translation>
    </message>
    <message>
        <source>Connection</source>
        <translation>连接</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>端口</translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation>刷新</translation>
    </message>
    <message>
        <source>Path</source>
        <translation>路径</translation>
    </message>
    <message>
        <source>/dev/ttyUSB0</source>
        <translation>/dev/ttyUSB0</translation>
    </message>
    <message>
        <source>Any device path; when filled in it is used instead of the list</source>
        <translation>任意设备路径；填写后将代替列表中的端口</translation>
    </message>
    <message>
        <source>Baud</source>
        <translation>波特率</translation>
    </message>
    <message>
        <source>Firmware</source>
        <translation>固件</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>连接</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>断开</translation>
    </message>
    <message>
        <source>Not connected</source>
        <translation>未连接</translation>
    </message>
    <message>
        <source>Release it</source>
        <translation>释放端口</translation>
    </message>
    <message>
        <source>Jog</source>
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
        <translation>速度 (mm/min)</translation>
    </message>
    <message>
        <source>Home</source>
        <translation>回零</translation>
    </message>
    <message>
        <source>Unlock</source>
        <translation>解锁</translation>
    </message>
    <message>
        <source>Set origin</source>
        <translation>设为原点</translation>
    </message>
    <message>
        <source>Go to origin</source>
        <translation>回到原点</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>边框</translation>
    </message>
    <message>
        <source>Beam (%)</source>
        <translation>光束 (%)</translation>
    </message>
    <message>
        <source>off</source>
        <translation>关</translation>
    </message>
    <message>
        <source>0 keeps the beam off; a low power shows the frame on the material</source>
        <translation>0 表示不出光；低功率可在材料上显示边框</translation>
    </message>
    <message>
        <source>Job</source>
        <translation>作业</translation>
    </message>
    <message>
        <source>the last exported file</source>
        <translation>最后导出的文件</translation>
    </message>
    <message>
        <source>Choose...</source>
        <translation>选择...</translation>
    </message>
    <message>
        <source>Run job</source>
        <translation>运行作业</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>暂停</translation>
    </message>
    <message>
        <source>Resume</source>
        <translation>继续</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>Go on after a firmware error</source>
        <translation>固件报错后继续</translation>
    </message>
    <message>
        <source>Console</source>
        <translation>控制台</translation>
    </message>
    <message>
        <source>G-code line</source>
        <translation>G 代码行</translation>
    </message>
    <message>
        <source>Send</source>
        <translation>发送</translation>
    </message>
    <message>
        <source>Line %1: %2</source>
        <translation>第 %1 行：%2</translation>
    </message>
    <message>
        <source>Detect</source>
        <translation>自动检测</translation>
    </message>
    <message>
        <source>Choose a port, or type the path of the device</source>
        <translation>请选择端口或输入设备路径</translation>
    </message>
    <message>
        <source>The port panel above holds %1.</source>
        <translation>上方的端口面板正在使用 %1。</translation>
    </message>
    <message>
        <source>Opening %1...</source>
        <translation>正在打开 %1...</translation>
    </message>
    <message>
        <source>Place a picture inside the work area first</source>
        <translation>请先在工作区内放置图片</translation>
    </message>
    <message>
        <source>Framing X %1 to %2, Y %3 to %4 mm</source>
        <translation>正在走边框 X %1 至 %2，Y %3 至 %4 mm</translation>
    </message>
    <message>
        <source>Job to run</source>
        <translation>要运行的作业</translation>
    </message>
    <message>
        <source>G-code (*.gcode *.nc *.gc);;All files (*)</source>
        <translation>G 代码 (*.gcode *.nc *.gc);;所有文件 (*)</translation>
    </message>
    <message>
        <source>Export a job first, or choose a G-code file</source>
        <translation>请先导出作业或选择 G 代码文件</translation>
    </message>
    <message>
        <source>Connect to the machine first</source>
        <translation>请先连接机器</translation>
    </message>
    <message>
        <source>Running %1</source>
        <translation>正在运行 %1</translation>
    </message>
    <message>
        <source>Connecting to %1...</source>
        <translation>正在连接 %1...</translation>
    </message>
    <message>
        <source>Connected to %1 (%2)</source>
        <translation>已连接 %1（%2）</translation>
    </message>
    <message>
        <source>State: %1   X %2  Y %3</source>
        <translation>状态：%1   X %2  Y %3</translation>
    </message>
    <message>
        <source>&gt; ! (feed hold)</source>
        <translation>&gt; !（暂停进给）</translation>
    </message>
    <message>
        <source>&gt; ~ (cycle start)</source>
        <translation>&gt; ~（继续进给）</translation>
    </message>
    <message>
        <source>&gt; 0x%1 (reset)</source>
        <translation>&gt; 0x%1（复位）</translation>
    </message>
    <message>
        <source> Unlock the machine before going on.</source>
        <translation> 请先解锁机器再继续。</translation>
    </message>
    <message>
        <source>%1 / %2 lines   elapsed %3   left %4</source>
        <translation>%1 / %2 行   已用 %3   剩余 %4</translation>
    </message>
    <message>
        <source>Frame traced: check the frame, then Resume</source>
        <translation>边框已走完：请检查边框，然后点继续</translation>
    </message>
    <message>
        <source>Paused</source>
        <translation>已暂停</translation>
    </message>
    <message>
        <source>Job done</source>
        <translation>作业完成</translation>
    </message>
    <message>
        <source>Stopped; the beam is off</source>
        <translation>已停止，光束已关闭</translation>
    </message>
    <message>
        <source> The job was stopped and the beam turned off.</source>
        <translation> 作业已停止，光束已关闭。</translation>
    </message>
    <message>
        <source>Finishing…</source>
        <translation>正在完成…</translation>
    </message>
    <message>
        <source>Stopping…</source>
        <translation>正在停止…</translation>
    </message>
    <message>
        <source>Stopped. The machine is in alarm after the stop: press Unlock ($X) before the next job.</source>
        <translation>已停止。停止后机器处于报警状态：开始下一个作业前请按“解锁”（$X）。</translation>
    </message>
    <message>
        <source> Check the machine: it may still be running the lines it had received.</source>
        <translation> 请检查机器：它可能仍在执行已收到的行。</translation>
    </message>
</context>
</TS>
