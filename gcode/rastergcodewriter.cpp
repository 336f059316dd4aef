// Buffered output of the raster exports: groups of G-code template lines whose X, Y, Z and
// power are filled in either line by line through QString::arg or from pre-formatted texts.
#include "rastergcodewriter.h"

#include <QIODevice>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

// Output is handed to the device in blocks of this size.
constexpr qint64 BufferBytes = 1 << 20;
// The Z of a group is the counter scaled by this and printed with three decimals.
constexpr double ZPerCount = 0.0625;
constexpr double ZGrowth = 0.001;
constexpr int ZDecimals = 3;
constexpr int PowerDecimals = 3;
constexpr int GrayLevels = 256;
// Above this the integer Z formatting could overflow; the counter never gets there in
// practice (it stops growing at 32768), but Qt's own formatting takes over if it did.
constexpr float QuickZLimit = 65536.0f;

int roundedUp(int length, int block) { return (length + block - 1) / block * block; }

}  // namespace

RasterGcodeWriter::RasterGcodeWriter(QIODevice *device, bool plain)
    : m_device(device), m_plain(plain), m_powers(GrayLevels, 0.0f)
{
    m_buffer.resize(BufferBytes);
    if (!m_plain)
        m_background.reset(new BackgroundWriter(device));
}

RasterGcodeWriter::~RasterGcodeWriter() = default;

void RasterGcodeWriter::setSpeeds(int feed, int travel)
{
    m_feed = feed;
    m_travel = travel;
}

void RasterGcodeWriter::setColumns(double offsetX, double scale, int width)
{
    m_offsetX = offsetX;
    m_scale = scale;
    m_columnTokens.clear();
    if (m_plain)
        return;
    m_columnTokens.reserve(std::max(width, 0));
    for (int c = 0; c < width; ++c)
        m_columnTokens.push_back(makeToken(QStringLiteral("%1").arg(columnX(c))));
}

void RasterGcodeWriter::setPowers(const QVector<float> &byGray, PowerStyle style)
{
    m_powers = byGray;
    m_powers.resize(GrayLevels);
    m_powerStyle = style;
    m_powerTokens.clear();
    if (m_plain)
        return;
    for (int g = 0; g < GrayLevels; ++g)
        m_powerTokens.push_back(makeToken(powerText(g)));
}

QString RasterGcodeWriter::powerText(int gray) const
{
    const double s = m_powers.at(gray);
    if (m_powerStyle == PowerThreeDecimals)
        return QString::number(s, 'f', PowerDecimals);
    return QStringLiteral("%1").arg(s);
}

void RasterGcodeWriter::appendLiteral(Compiled &group, const QString &text)
{
    if (text.isEmpty())
        return;
    const QByteArray bytes = text.toLatin1();
    if (!group.ops.empty() && group.ops.back().kind == OpLiteral) {
        // Merge with the literal before it: rewrite that one at the end of the pool.
        Op &last = group.ops.back();
        const QByteArray before(m_literals.data() + last.offset, last.length);
        m_literals.resize(last.offset);
        const QByteArray merged = before + bytes;
        group.maxBytes -= roundedUp(last.length, TokenBytes);
        last.length = merged.size();
        m_literals.insert(m_literals.end(), merged.begin(), merged.end());
    } else {
        group.ops.push_back({OpLiteral, int(m_literals.size()), int(bytes.size())});
        m_literals.insert(m_literals.end(), bytes.begin(), bytes.end());
    }
    // Literals are copied in whole blocks, so each one is padded to a block.
    m_literals.resize(roundedUp(int(m_literals.size()), TokenBytes), '\0');
    group.maxBytes += roundedUp(group.ops.back().length, TokenBytes);
}

int RasterGcodeWriter::addGroup(const Group &lines)
{
    Compiled group;
    group.lines = lines;
    for (const Line &line : lines) {
        // QString::arg fills the lowest-numbered placeholder first, one argument per call.
        const QString &pattern = line.pattern;
        QVector<int> numbers;
        for (int i = 0; i + 1 < pattern.size(); ++i) {
            if (pattern.at(i) == QLatin1Char('%') && pattern.at(i + 1).isDigit()) {
                const int n = pattern.at(i + 1).digitValue();
                if (n > 0 && !numbers.contains(n))
                    numbers.append(n);
            }
        }
        std::sort(numbers.begin(), numbers.end());

        QString literal;
        for (int i = 0; i < pattern.size(); ++i) {
            const int n =
                (pattern.at(i) == QLatin1Char('%') && i + 1 < pattern.size()) ? pattern.at(i + 1).digitValue() : -1;
            const int which = n > 0 ? numbers.indexOf(n) : -1;
            if (which < 0 || which >= line.args.size()) {
                literal += pattern.at(i);
                continue;
            }
            ++i;  // the digit
            const Arg arg = line.args.at(which);
            if (arg == ArgFeed || arg == ArgTravel) {
                literal += QString::number(arg == ArgFeed ? m_feed : m_travel);
                continue;
            }
            appendLiteral(group, literal);
            literal.clear();
            const OpKind kind = arg == ArgX ? OpX : arg == ArgY ? OpY : arg == ArgZ ? OpZ : OpPower;
            group.ops.push_back({kind, 0, TokenBytes});
            group.maxBytes += TokenBytes;
        }
        appendLiteral(group, literal);
    }
    m_groups.push_back(std::move(group));
    return int(m_groups.size()) - 1;
}

void RasterGcodeWriter::setRow(double y)
{
    m_rowY = y;
    if (!m_plain)
        m_rowToken = makeToken(QStringLiteral("%1").arg(y));
}

QString RasterGcodeWriter::zText(float counter) { return QString::number(counter * ZPerCount, 'f', ZDecimals); }

qint64 RasterGcodeWriter::zThousandths(float counter)
{
    // counter * 0.0625 * 1000 rounded half up, as Qt rounds it, worked out exactly:
    // counter = m * 2^(e - 24) with a 24-bit m, and 0.0625 = 2^-4.
    if (!(counter > 0))
        return 0;
    // The mantissa and exponent straight from the bits (what frexp gives, without the
    // library call that every group would pay); only numbers below the normal range differ.
    quint32 bits;
    std::memcpy(&bits, &counter, sizeof bits);
    const int biased = int((bits >> 23) & 0xFF);
    int e = 0;
    quint64 m = 0;
    if (biased != 0 && biased != 0xFF) {
        e = biased - 126;
        m = (bits & 0x7FFFFFu) | 0x800000u;
    } else {
        const float fraction = std::frexp(counter, &e);
        m = quint64(std::ldexp(fraction, 24));
    }
    const quint64 v = m * 1000;
    const int shift = 28 - e;
    if (shift <= 0)
        return qint64(v << -shift);
    if (shift >= 64)
        return 0;
    return qint64((v + (quint64(1) << (shift - 1))) >> shift);
}

QByteArray RasterGcodeWriter::quickZText(float counter)
{
    if (!(counter < QuickZLimit))
        return zText(counter).toLatin1();
    // "%lld.%03lld" of the thousandths, written by hand.
    const qint64 n = zThousandths(counter);
    char text[TokenBytes];
    char *end = text + sizeof text;
    char *p = end;
    qint64 rest = n % 1000;
    for (int i = 0; i < 3; ++i, rest /= 10)
        *--p = char('0' + rest % 10);
    *--p = '.';
    qint64 whole = n / 1000;
    do {
        *--p = char('0' + whole % 10);
        whole /= 10;
    } while (whole > 0);
    return QByteArray(p, int(end - p));
}

RasterGcodeWriter::Token RasterGcodeWriter::makeToken(const QString &text)
{
    Token token{};
    const QByteArray bytes = text.toLatin1();
    token.length = int(std::min<qsizetype>(bytes.size(), TokenBytes));
    std::memcpy(token.text, bytes.constData(), size_t(token.length));
    return token;
}

void RasterGcodeWriter::writeGroup(int group, int column, int gray)
{
    const Compiled &compiled = m_groups.at(size_t(group));
    if (m_plain)
        writePlain(compiled, column, gray);
    else
        writeFast(compiled, column, gray);
    m_zCounter += ZGrowth;
}

void RasterGcodeWriter::writePlain(const Compiled &group, int column, int gray)
{
    // The reference path: each line formatted on its own, numbers through QString::arg.
    for (const Line &line : group.lines) {
        QString text = line.pattern;
        for (Arg arg : line.args) {
            switch (arg) {
            case ArgX:
                text = text.arg(columnX(column));
                break;
            case ArgY:
                text = text.arg(m_rowY);
                break;
            case ArgFeed:
                text = text.arg(m_feed);
                break;
            case ArgTravel:
                text = text.arg(m_travel);
                break;
            case ArgPower:
                if (m_powerStyle == PowerThreeDecimals)
                    text = text.arg(QString::number(double(m_powers.at(gray)), 'f', PowerDecimals));
                else
                    text = text.arg(double(m_powers.at(gray)));
                break;
            case ArgZ:
                text = text.arg(zText(m_zCounter));
                break;
            }
        }
        writeText(text);
    }
}

void RasterGcodeWriter::writeFast(const Compiled &group, int column, int gray)
{
    if (m_zCounter < QuickZLimit) {
        const qint64 z = zThousandths(m_zCounter);
        if (z != m_zShown) {
            const QByteArray text = quickZText(m_zCounter);
            m_zToken = Token{};
            std::memcpy(m_zToken.text, text.constData(), size_t(text.size()));
            m_zToken.length = int(text.size());
            m_zShown = z;
        }
    } else {
        m_zToken = makeToken(zText(m_zCounter));
        m_zShown = -1;
    }

    reserve(group.maxBytes);
    char *out = m_buffer.data() + m_used;
    const Token &x = m_columnTokens[size_t(column)];
    const Token &power = m_powerTokens[size_t(gray)];
    const char *literals = m_literals.data();
    // Every copy moves whole blocks; the buffer has room for them and only `length` counts.
    // Each part is a source and a length picked without a jump: the kinds of a group come
    // in no order a jump table could guess.
    const Token *tokens[] = {nullptr, &x, &m_rowToken, &m_zToken, &power};
    for (const Op &op : group.ops) {
        const bool literal = op.kind == OpLiteral;
        const Token *token = tokens[op.kind];
        const char *from = literal ? literals + op.offset : token->text;
        const int length = literal ? op.length : token->length;
        std::memcpy(out, from, TokenBytes);
        for (int i = TokenBytes; i < length; i += TokenBytes)
            std::memcpy(out + i, from + i, TokenBytes);
        out += length;
    }
    m_used = out - m_buffer.data();
}

void RasterGcodeWriter::reserve(qint64 bytes)
{
    if (m_used + bytes <= qint64(m_buffer.size()))
        return;
    handOver();
    if (bytes > qint64(m_buffer.size()))
        m_buffer.resize(size_t(bytes));
}

void RasterGcodeWriter::writeText(const QString &text)
{
    const QByteArray bytes = text.toLatin1();
    reserve(bytes.size());
    std::memcpy(m_buffer.data() + m_used, bytes.constData(), size_t(bytes.size()));
    m_used += bytes.size();
}

// A full buffer goes to the helper thread on the fast path, and straight to the device on
// the plain one; either way the device gets the same bytes in the same order.
void RasterGcodeWriter::handOver()
{
    if (m_used > 0) {
        if (m_background) {
            m_background->write(m_buffer, m_used);
            if (m_buffer.size() < size_t(BufferBytes))
                m_buffer.resize(size_t(BufferBytes));
        } else if (m_device->write(m_buffer.data(), m_used) != m_used) {
            m_failed = true;
        }
    }
    m_used = 0;
}

bool RasterGcodeWriter::flush()
{
    handOver();
    if (m_background && !m_background->finish())
        m_failed = true;
    return !m_failed;
}
