// Fuzz target of the machine reply reader: any bytes as the stream from the port, in chunks.
// Lines keep to the cap and account for every byte; every line reads the same each time.
#include "fuzzsupport.h"
#include "machinereply.h"

#include <QList>

#include <cmath>

namespace {

using MachineReplies::LineSplitter;
const QByteArray CutMark("...");

bool isLineEnd(char c) { return c == '\n' || c == '\r'; }

// The lines a port would show for BYTES: each non-empty run between line ends, its first
// MaxLine bytes kept and the cut marked; an unfinished run at the end is still pending.
QList<QByteArray> expectedLines(const QByteArray &bytes)
{
    QList<QByteArray> lines;
    QByteArray run;
    for (const char c : bytes) {
        if (!isLineEnd(c)) {
            run.append(c);
            continue;
        }
        if (run.size() > LineSplitter::MaxLine)
            lines << run.left(LineSplitter::MaxLine) + CutMark;
        else if (!run.isEmpty())
            lines << run;
        run.clear();
    }
    return lines;
}

bool sameNumber(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

bool sameReply(const MachineReply &a, const MachineReply &b)
{
    return a.kind == b.kind && a.code == b.code && sameNumber(a.value, b.value) && a.text == b.text
           && a.state == b.state && sameNumber(a.x, b.x) && sameNumber(a.y, b.y) && sameNumber(a.z, b.z)
           && a.hasPosition == b.hasPosition;
}

void checkReply(const QByteArray &line)
{
    const MachineReply reply = MachineReplies::parse(line);
    FUZZ_REQUIRE(reply.kind >= MachineReply::Other && reply.kind <= MachineReply::Setting, line);
    FUZZ_REQUIRE(sameReply(reply, MachineReplies::parse(line)), line);
    // Blanks and a line end around a reply do not change what it says.
    FUZZ_REQUIRE(reply.text == line.trimmed(), line);
    FUZZ_REQUIRE(sameReply(reply, MachineReplies::parse(" " + line + "\r\n")), line);
    FUZZ_REQUIRE(std::isfinite(reply.value), line);
    FUZZ_REQUIRE(std::isfinite(reply.x) && std::isfinite(reply.y) && std::isfinite(reply.z), line);
    FUZZ_REQUIRE(!reply.hasPosition || reply.kind == MachineReply::Status, line);
    // Codes are read from digits only: a number, or -1 where the digits are missing.
    FUZZ_REQUIRE(reply.code >= -1, line);
    if (reply.kind == MachineReply::Setting)
        FUZZ_REQUIRE(reply.code >= 0, line);
    // A "$N=" line whose value is no number still names its setting.
    if (reply.kind != MachineReply::Error && reply.kind != MachineReply::Alarm && reply.kind != MachineReply::Resend
        && !reply.text.startsWith('$'))
        FUZZ_REQUIRE(reply.code == 0, line);
    if (reply.kind == MachineReply::Status && reply.text.startsWith('<'))
        FUZZ_REQUIRE(reply.text.mid(1).startsWith(reply.state), line);
}

}  // namespace

FUZZ_INITIALIZE()

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzBytes input(data, size);
    // The port hands the bytes over in pieces of any size; 0 means all at once.
    const int chunk = input.byte();
    const QByteArray bytes = input.restCopy();

    LineSplitter whole;
    const QList<QByteArray> lines = whole.feed(bytes);
    LineSplitter pieces;
    QList<QByteArray> fromPieces;
    for (int at = 0; at < bytes.size(); at += chunk ? chunk : bytes.size())
        fromPieces += pieces.feed(bytes.mid(at, chunk ? chunk : -1));
    FUZZ_REQUIRE(fromPieces == lines, bytes);
    FUZZ_REQUIRE(pieces.droppedBytes() == whole.droppedBytes(), bytes);
    FUZZ_REQUIRE(lines == expectedLines(bytes), bytes);

    // Every byte is in a line, a line end, the dropped count or the pending line.
    qint64 kept = 0;
    for (const QByteArray &line : lines) {
        FUZZ_REQUIRE(!line.isEmpty(), bytes);
        FUZZ_REQUIRE(!line.contains('\n') && !line.contains('\r'), line);
        const bool cut = line.size() > LineSplitter::MaxLine;
        FUZZ_REQUIRE(!cut || (line.size() == LineSplitter::MaxLine + CutMark.size() && line.endsWith(CutMark)), line);
        kept += cut ? LineSplitter::MaxLine : line.size();
        checkReply(line);
    }
    const qint64 ends = bytes.count('\n') + bytes.count('\r');
    FUZZ_REQUIRE(kept + ends + whole.droppedBytes() + whole.pendingBytes() == bytes.size(), bytes);
    FUZZ_REQUIRE(whole.pendingBytes() <= LineSplitter::MaxLine, bytes);

    // The reader also meets lines that never went through the splitter.
    checkReply(bytes);
    return 0;
}
