// Shared by the fuzz targets: a quiet offscreen Qt, a private working folder, a reader
// of the fuzzer's bytes, and the checks every G-code output must pass.
#include "fuzzsupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace {

QTemporaryDir *g_root = nullptr;
quint64 g_folders = 0;

void quiet(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtFatalMsg) {
        std::fprintf(stderr, "qFatal: %s\n", qPrintable(message));
        std::abort();
    }
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// The length of the number at `p` (plain or with an exponent), 0 when there is none.
int numberLength(const char *p, const char *end)
{
    const char *q = p;
    if (q < end && (*q == '+' || *q == '-'))
        ++q;
    int digits = 0;
    while (q < end && isDigit(*q)) {
        ++q;
        ++digits;
    }
    if (q < end && *q == '.') {
        ++q;
        while (q < end && isDigit(*q)) {
            ++q;
            ++digits;
        }
    }
    if (digits == 0)
        return 0;
    if (q < end && (*q == 'e' || *q == 'E')) {
        const char *e = q + 1;
        if (e < end && (*e == '+' || *e == '-'))
            ++e;
        if (e < end && isDigit(*e)) {
            while (e < end && isDigit(*e))
                ++e;
            q = e;
        }
    }
    return int(q - p);
}

}  // namespace

// The run moves into a private folder, so corpus folders, inputs to replay and the place
// for crash files are pinned to where the run was started first.
// Font lookup of the offscreen platform keeps its cache until the process ends.
extern "C" const char *__lsan_default_suppressions() { return "leak:libfontconfig.so\n"; }

static void pinPaths(int *argc, char ***argv, std::initializer_list<const char *> defaults)
{
    static std::vector<QByteArray> texts;
    static std::vector<char *> args;
    const QDir start = QDir::current();
    bool prefixGiven = false;
    texts.reserve(size_t(*argc) + 1);
    for (int i = 0; i < *argc; ++i) {
        const QByteArray arg((*argv)[i]);
        prefixGiven = prefixGiven || arg.startsWith("-artifact_prefix=");
        if (i == 0 || arg.startsWith('-'))
            texts.push_back(arg);
        else
            texts.push_back(QFile::encodeName(start.absoluteFilePath(QFile::decodeName(arg))));
    }
    if (!prefixGiven)
        texts.push_back("-artifact_prefix=" + QFile::encodeName(start.absolutePath()) + '/');
    for (const char *flag : defaults) {
        const QByteArray name = QByteArray(flag).left(QByteArray(flag).indexOf('=') + 1);
        if (std::none_of(texts.begin(), texts.end(), [&](const QByteArray &t) { return t.startsWith(name); }))
            texts.push_back(flag);
    }
    for (QByteArray &text : texts)
        args.push_back(text.data());
    args.push_back(nullptr);
    *argc = int(texts.size());
    *argv = args.data();
}

void fuzzStart(int *argc, char ***argv, std::initializer_list<const char *> defaults)
{
    pinPaths(argc, argv, defaults);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(quiet);
    // Qt takes some options for itself; it sees only the program name.
    // Kept to the end, so that its screens are not reported as leaks at exit.
    static int qtArgc = 1;
    static QGuiApplication *app = new QGuiApplication(qtArgc, *argv);
    Q_UNUSED(app)
    // The converters print progress with printf; libFuzzer reports on standard error.
    std::fflush(stdout);
    const int null = open("/dev/null", O_WRONLY);
    if (null >= 0) {
        dup2(null, STDOUT_FILENO);
        close(null);
    }
    // In memory where there is room: the settings writes sync the disk on every call.
    const QString base =
        QFileInfo(QStringLiteral("/dev/shm")).isWritable() ? QStringLiteral("/dev/shm") : QDir::tempPath();
    g_root = new QTemporaryDir(base + QStringLiteral("/tarnwell-fuzz-XXXXXX"));
    if (!g_root->isValid() || !QDir::setCurrent(g_root->path()))
        fuzzFail("no private working folder");
    std::atexit([] { delete g_root; });
}

QString fuzzFreshFolder()
{
    const QString path = g_root->filePath(QStringLiteral("run-%1").arg(++g_folders));
    // The previous folder goes first, so the tree never grows past one.
    if (g_folders > 1)
        QDir(g_root->filePath(QStringLiteral("run-%1").arg(g_folders - 1))).removeRecursively();
    if (!QDir().mkpath(path) || !QDir::setCurrent(path))
        fuzzFail("no fresh folder", path.toLocal8Bit());
    return path;
}

void fuzzWriteFile(const QString &name, const QByteArray &bytes)
{
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
        fuzzFail("cannot write the input file", name.toLocal8Bit());
}

QByteArray fuzzReadFile(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void fuzzFail(const char *what, const QByteArray &detail)
{
    // Written whole: the detail may hold NUL bytes.
    std::fprintf(stderr, "\n== invariant broken: %s\n", what);
    std::fwrite(detail.constData(), 1, size_t(std::min<qsizetype>(detail.size(), 4000)), stderr);
    std::fputc('\n', stderr);
    std::abort();
}

int FuzzBytes::intIn(int low, int high)
{
    if (high <= low)
        return low;
    const unsigned span = unsigned(high - low) + 1;
    unsigned v = byte();
    if (span > 256)
        v = v << 8 | byte();
    return low + int(v % span);
}

double FuzzBytes::doubleIn(double low, double high)
{
    const unsigned v = unsigned(byte()) << 8 | byte();
    return low + (high - low) * v / 65535.0;
}

int fuzzCheckGcode(const QByteArray &gcode, const GcodeBox &box)
{
    int checked = 0;
    const QList<QByteArray> lines = gcode.split('\n');
    for (const QByteArray &whole : lines) {
        const int comment = whole.indexOf(';');
        const QByteArray line = comment < 0 ? whole : whole.left(comment);
        const bool homing = line.startsWith("G28");
        const char *p = line.constData();
        const char *end = p + line.size();
        for (; p < end; ++p) {
            const char letter = *p;
            if (!std::strchr("XYZFSP", letter) || letter == '\0')
                continue;
            // A word letter must be followed by a number a machine can read.
            const int length = numberLength(p + 1, end);
            FUZZ_REQUIRE(length > 0, whole);
            const std::string text(p + 1, size_t(length));
            const double v = std::strtod(text.c_str(), nullptr);
            FUZZ_REQUIRE(std::isfinite(v), whole);
            if (!homing && letter == 'X') {
                FUZZ_REQUIRE(v >= box.left - box.slack && v <= box.right + box.slack, whole);
                ++checked;
            } else if (!homing && letter == 'Y') {
                FUZZ_REQUIRE(v >= box.bottom - box.slack && v <= box.top + box.slack, whole);
                ++checked;
            } else if (letter == 'S') {
                FUZZ_REQUIRE(v >= 0 && v <= box.powerMax, whole);
            }
            p += length;
        }
    }
    return checked;
}
