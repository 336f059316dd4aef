// Buffered output of the raster exports: groups of G-code template lines whose X, Y, Z and
// power are filled in either line by line through QString::arg or from pre-formatted texts.
#ifndef RASTERGCODEWRITER_H
#define RASTERGCODEWRITER_H

#include <QByteArray>
#include <QString>
#include <QVector>

#include <memory>
#include <vector>

#include "backgroundwriter.h"

class QIODevice;

class RasterGcodeWriter
{
public:
    // What fills the placeholders of a template line, in the order %1, %2, %3.
    enum Arg { ArgX, ArgY, ArgZ, ArgPower, ArgFeed, ArgTravel };
    struct Line
    {
        QString pattern;
        QVector<Arg> args;
    };
    using Group = QVector<Line>;

    // How a power value is printed: like X and Y (6 significant digits) or with three decimals.
    enum PowerStyle { PowerShortest, PowerThreeDecimals };

    // `plain` formats every line through QString::arg; otherwise the cached texts are spliced
    // into the pre-split templates. Both write the same bytes.
    RasterGcodeWriter(QIODevice *device, bool plain);
    ~RasterGcodeWriter();

    // Speeds and columns must be set before the groups that use them are added.
    void setSpeeds(int feed, int travel);
    void setColumns(double offsetX, double scale, int width);
    // One power per gray level 0..255; a fixed power fills all entries alike.
    void setPowers(const QVector<float> &byGray, PowerStyle style);
    int addGroup(const Group &group);

    void setRow(double y);
    // Writes one group at `column` of the current row with the power of `gray`; the Z of the
    // next group then grows.
    void writeGroup(int group, int column, int gray);
    void writeText(const QString &text);
    // Writes what is still buffered; false when the device refused data.
    bool flush();

    // The Z text of a counter value, as QString::number(counter * 0.0625, 'f', 3) prints it,
    // and the same text worked out with integers for the fast path.
    static QString zText(float counter);
    static QByteArray quickZText(float counter);

private:
    // A pre-formatted number, copied as a whole block and cut to its length.
    static constexpr int TokenBytes = 32;
    struct Token
    {
        char text[TokenBytes];
        int length;
    };
    enum OpKind { OpLiteral, OpX, OpY, OpZ, OpPower };
    struct Op
    {
        OpKind kind;
        int offset;  // into the literal pool
        int length;
    };
    struct Compiled
    {
        Group lines;
        std::vector<Op> ops;
        int maxBytes = 0;
    };

    static Token makeToken(const QString &text);
    static qint64 zThousandths(float counter);
    double columnX(int column) const { return m_offsetX + column * m_scale; }
    QString powerText(int gray) const;
    void writePlain(const Compiled &group, int column, int gray);
    void writeFast(const Compiled &group, int column, int gray);
    void reserve(qint64 bytes);
    void handOver();
    void appendLiteral(Compiled &group, const QString &text);

    QIODevice *m_device;
    bool m_plain;
    bool m_failed = false;
    int m_feed = 0;
    int m_travel = 0;
    double m_offsetX = 0;
    double m_scale = 0;
    double m_rowY = 0;
    float m_zCounter = 0;
    QVector<float> m_powers;
    PowerStyle m_powerStyle = PowerShortest;
    std::vector<Compiled> m_groups;

    // Fast path state.
    std::vector<Token> m_columnTokens;
    Token m_rowToken{};
    Token m_zToken{};
    qint64 m_zShown = -1;
    std::vector<Token> m_powerTokens;
    std::vector<char> m_literals;
    std::vector<char> m_buffer;
    qint64 m_used = 0;
    std::unique_ptr<BackgroundWriter> m_background;  // fast path: the device is written on a helper thread
};

#endif
