// Shared by the fuzz targets: a quiet offscreen Qt, a private working folder, a reader
// of the fuzzer's bytes, and the checks every G-code output must pass.
#ifndef FUZZSUPPORT_H
#define FUZZSUPPORT_H

#include <QByteArray>
#include <QString>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

// Once per process: offscreen Qt application, messages and standard output dropped
// (the readers log a line per call), current directory a private temporary folder.
// `defaults` are libFuzzer flags ("-name=value") used unless the command line names them.
void fuzzStart(int *argc, char ***argv, std::initializer_list<const char *> defaults = {});

// Every target's libFuzzer start: fuzzStart with the target's default flags, if any.
#define FUZZ_INITIALIZE(...)                                     \
    extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv) \
    {                                                            \
        fuzzStart(argc, argv, {__VA_ARGS__});                    \
        return 0;                                                \
    }

// A fresh empty folder under the private one, made current; for readers that cache by path.
QString fuzzFreshFolder();

// Writes `bytes` to `name` in the current folder, whole.
void fuzzWriteFile(const QString &name, const QByteArray &bytes);
QByteArray fuzzReadFile(const QString &name);

// Stops the run with the message and the offending text; libFuzzer then saves the input.
[[noreturn]] void fuzzFail(const char *what, const QByteArray &detail = QByteArray());
#define FUZZ_REQUIRE(condition, detail)     \
    do {                                    \
        if (!(condition))                   \
            fuzzFail(#condition, (detail)); \
    } while (false)

// Takes choices from the front of the input; the rest is the payload.
class FuzzBytes
{
public:
    FuzzBytes(const uint8_t *data, size_t size) : m_data(data), m_size(size) {}
    uint8_t byte() { return m_pos < m_size ? m_data[m_pos++] : 0; }
    // A value in [low, high] from one or two bytes.
    int intIn(int low, int high);
    double doubleIn(double low, double high);
    const uint8_t *rest() const { return m_data + m_pos; }
    size_t restSize() const { return m_size - m_pos; }
    // The next `count` bytes, fewer at the end.
    QByteArray take(size_t count)
    {
        const QByteArray bytes(reinterpret_cast<const char *>(rest()), int(std::min(count, restSize())));
        m_pos += size_t(bytes.size());
        return bytes;
    }
    QByteArray restCopy() const { return QByteArray(reinterpret_cast<const char *>(rest()), int(restSize())); }
    // No copy and no terminator: a read past the end is caught by the address checker.
    QByteArray restView() const
    {
        return QByteArray::fromRawData(reinterpret_cast<const char *>(rest()), int(restSize()));
    }

private:
    const uint8_t *m_data;
    size_t m_size;
    size_t m_pos = 0;
};

// The rectangle the machine may visit, in millimetres, with room for the printed rounding.
struct GcodeBox
{
    double left;
    double right;
    double bottom;
    double top;
    double slack;
    double powerMax;  // S words lie in [0, powerMax]
};

// Every X, Y, Z, F, S and P word must carry a finite number in plain or exponent
// form; every X and Y of a move must lie in the box (G28, a homing command, is exempt),
// every S in [0, powerMax].
// Returns the number of coordinates checked.
int fuzzCheckGcode(const QByteArray &gcode, const GcodeBox &box);

#endif
