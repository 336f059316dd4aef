// Reading and writing job files with nlohmann-json. The reader checks every key against the list of
// keys a job may hold, every number against its range and every source by decoding it, and builds
// the document aside; only a fully checked document replaces the caller's.
#include "jobfile.h"

#include "jobgeometry.h"

#include <QColor>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <nlohmann/json.hpp>

#include <cmath>
#include <initializer_list>

namespace {

using Json = nlohmann::json;
using OrderedJson = nlohmann::ordered_json;

// Deeper nesting than this is no job (a job itself is four levels deep; "extra" gets the rest).
constexpr int MaxDepth = 64;
// Two proportions closer than this are the same.
constexpr double AspectTolerance = 0.01;
// Rounding room when an item's edge meets the bed's edge.
constexpr double BedSlack = 1e-9;

// What a number may be. `above` makes the lower bound exclusive.
struct Bounds
{
    double low;
    bool above;
    double high;
};

constexpr Bounds Speed = {0, true, 100000};          // mm/min
constexpr Bounds Percent = {0, false, 100};          // power
constexpr Bounds BedSize = {0, true, 10000};         // mm
constexpr Bounds MaxPowerS = {0, true, 100000};      // S value of 100 %
constexpr Bounds Acceleration = {0, true, 100000};   // mm/s^2
constexpr Bounds Adjustment = {-100, false, 100};    // brightness, contrast
constexpr Bounds Gamma = {0, true, 10};              // exponent
constexpr Bounds Interval = {0.001, false, 10};      // mm
constexpr Bounds Overscan = {0, false, 100};         // mm
constexpr Bounds ReverseOffset = {-10, false, 10};   // mm
constexpr Bounds Angle = {-360, false, 360};         // degrees
constexpr Bounds Kerf = {0, false, 10};              // mm
constexpr Bounds Position = {-10000, false, 10000};  // mm
constexpr Bounds ItemSize = {0, true, 10000};        // mm
constexpr Bounds TextSize = {0, true, 1000};         // mm

// The message of a refusal; thrown inside the reader, caught by read().
struct Refusal
{
    QString message;
};

[[noreturn]] void refuse(const QString &key, const QString &what)
{
    throw Refusal{key.isEmpty() ? what : key + QStringLiteral(": ") + what};
}

QString member(const QString &path, const char *key)
{
    return path.isEmpty() ? QLatin1String(key) : path + QLatin1Char('.') + QLatin1String(key);
}

QString element(const QString &path, size_t index) { return QStringLiteral("%1[%2]").arg(path).arg(index); }

QString numberText(double v) { return QString::number(v, 'g', 12); }

// A text from the file as a message shows it: on one line, control characters escaped, and cut
// short when long.
QString printable(const std::string &utf8)
{
    constexpr int MaxLength = 40;
    const QString text = QString::fromStdString(utf8);
    QString out;
    for (const QChar c : text) {
        if (out.size() >= MaxLength) {
            out += QStringLiteral("...");
            break;
        }
        if (c == QLatin1Char('\n'))
            out += QStringLiteral("\\n");
        else if (c.category() == QChar::Other_Control || c.category() == QChar::Separator_Line
                 || c.category() == QChar::Separator_Paragraph)
            out += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        else
            out += c;
    }
    return out;
}

// Refuses any key of `object` not in `keys`.
void onlyKeys(const Json &object, const QString &path, std::initializer_list<const char *> keys)
{
    for (auto it = object.begin(); it != object.end(); ++it) {
        bool known = false;
        for (const char *key : keys)
            known = known || it.key() == key;
        if (!known)
            refuse(path.isEmpty() ? printable(it.key()) : path + QLatin1Char('.') + printable(it.key()),
                   QStringLiteral("unknown key"));
    }
}

const Json *find(const Json &object, const char *key)
{
    const auto it = object.find(key);
    return it == object.end() ? nullptr : &*it;
}

const Json &objectAt(const Json &value, const QString &key)
{
    if (!value.is_object())
        refuse(key, QStringLiteral("not an object"));
    return value;
}

void checkBounds(double v, const QString &key, Bounds bounds)
{
    if (!std::isfinite(v))
        refuse(key, QStringLiteral("not a finite number"));
    if (bounds.above && v <= bounds.low)
        refuse(key, QStringLiteral("must be above %1").arg(numberText(bounds.low)));
    if (!bounds.above && v < bounds.low)
        refuse(key, QStringLiteral("must be at least %1").arg(numberText(bounds.low)));
    if (v > bounds.high)
        refuse(key, QStringLiteral("must be at most %1").arg(numberText(bounds.high)));
}

double numberValue(const Json &value, const QString &key, Bounds bounds)
{
    if (!value.is_number())
        refuse(key, QStringLiteral("not a number"));
    const double v = value.get<double>();
    checkBounds(v, key, bounds);
    return v;
}

double number(const Json &object, const QString &path, const char *key, double fallback, Bounds bounds)
{
    const Json *value = find(object, key);
    return value ? numberValue(*value, member(path, key), bounds) : fallback;
}

int integer(const Json &object, const QString &path, const char *key, int fallback, int low, int high)
{
    const Json *value = find(object, key);
    if (!value)
        return fallback;
    const QString name = member(path, key);
    if (!value->is_number())
        refuse(name, QStringLiteral("not a number"));
    const double v = value->get<double>();
    if (!std::isfinite(v))
        refuse(name, QStringLiteral("not a finite number"));
    if (v != std::floor(v))
        refuse(name, QStringLiteral("not a whole number"));
    checkBounds(v, name, {double(low), false, double(high)});
    return int(v);
}

bool boolean(const Json &object, const QString &path, const char *key, bool fallback)
{
    const Json *value = find(object, key);
    if (!value)
        return fallback;
    if (!value->is_boolean())
        refuse(member(path, key), QStringLiteral("not true or false"));
    return value->get<bool>();
}

QString text(const Json &object, const QString &path, const char *key, const QString &fallback)
{
    const Json *value = find(object, key);
    if (!value)
        return fallback;
    if (!value->is_string())
        refuse(member(path, key), QStringLiteral("not a text"));
    return QString::fromStdString(value->get<std::string>());
}

// A text naming one value of an enum, through the JobNames tables.
template <typename Enum>
Enum choice(const Json &object, const QString &path, const char *key, Enum fallback, const char *what,
            bool (*lookUp)(const QString &, Enum *))
{
    const Json *value = find(object, key);
    if (!value)
        return fallback;
    if (!value->is_string())
        refuse(member(path, key), QStringLiteral("not a text"));
    const std::string &name = value->get_ref<const std::string &>();
    Enum result = fallback;
    if (!lookUp(QString::fromStdString(name), &result))
        refuse(member(path, key), QStringLiteral("unknown %1 \"%2\"").arg(QLatin1String(what), printable(name)));
    return result;
}

// Base64 as written by write(): the standard alphabet, padded, nothing else, no stray bits.
bool decodeBase64(const std::string &text, QByteArray *bytes)
{
    if (text.empty() || text.size() % 4 != 0)
        return false;
    size_t padding = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '=') {
            ++padding;
            continue;
        }
        const bool inAlphabet =
            (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' || c == '/';
        if (!inAlphabet || padding > 0)
            return false;
    }
    if (padding > 2)
        return false;
    const QByteArray encoded = QByteArray::fromStdString(text);
    const QByteArray decoded = QByteArray::fromBase64(encoded);
    if (decoded.toBase64() != encoded)
        return false;
    *bytes = decoded;
    return true;
}

MachineProfile readMachine(const Json &value)
{
    const QString path = QStringLiteral("machine");
    const Json &object = objectAt(value, path);
    onlyKeys(object, path, {"name", "dialect", "max_power", "bed", "travel_speed", "acceleration"});
    MachineProfile m;
    m.name = text(object, path, "name", m.name);
    m.dialect = choice(object, path, "dialect", m.dialect, "dialect", &JobNames::dialect);
    m.maxPower = number(object, path, "max_power", m.maxPower, MaxPowerS);
    if (const Json *bed = find(object, "bed")) {
        const QString key = member(path, "bed");
        if (!bed->is_array() || bed->size() != 2)
            refuse(key, QStringLiteral("not a width and a height"));
        m.bedWidth = numberValue((*bed)[0], key + QStringLiteral("[0]"), BedSize);
        m.bedHeight = numberValue((*bed)[1], key + QStringLiteral("[1]"), BedSize);
    }
    m.travelSpeed = number(object, path, "travel_speed", m.travelSpeed, Speed);
    m.acceleration = number(object, path, "acceleration", m.acceleration, Acceleration);
    return m;
}

ImageParams readImage(const Json &value, const QString &path)
{
    const Json &object = objectAt(value, path);
    onlyKeys(object, path,
             {"mode", "dither", "threshold", "min_power", "brightness", "contrast", "gamma", "invert", "interval",
              "overscan", "bidirectional", "reverse_offset"});
    ImageParams p;
    p.mode = choice(object, path, "mode", p.mode, "mode", &JobNames::imageMode);
    p.dither = choice(object, path, "dither", p.dither, "dither", &JobNames::dither);
    p.threshold = integer(object, path, "threshold", p.threshold, 0, 255);
    p.minPower = number(object, path, "min_power", p.minPower, Percent);
    p.brightness = number(object, path, "brightness", p.brightness, Adjustment);
    p.contrast = number(object, path, "contrast", p.contrast, Adjustment);
    p.gamma = number(object, path, "gamma", p.gamma, Gamma);
    p.invert = boolean(object, path, "invert", p.invert);
    p.interval = number(object, path, "interval", p.interval, Interval);
    p.overscan = number(object, path, "overscan", p.overscan, Overscan);
    p.bidirectional = boolean(object, path, "bidirectional", p.bidirectional);
    p.reverseOffset = number(object, path, "reverse_offset", p.reverseOffset, ReverseOffset);
    return p;
}

FillParams readFill(const Json &value, const QString &path)
{
    const Json &object = objectAt(value, path);
    onlyKeys(object, path, {"interval", "angle", "cross_hatch", "overscan", "bidirectional"});
    FillParams p;
    p.interval = number(object, path, "interval", p.interval, Interval);
    p.angle = number(object, path, "angle", p.angle, Angle);
    p.crossHatch = boolean(object, path, "cross_hatch", p.crossHatch);
    p.overscan = number(object, path, "overscan", p.overscan, Overscan);
    p.bidirectional = boolean(object, path, "bidirectional", p.bidirectional);
    return p;
}

LineParams readLine(const Json &value, const QString &path)
{
    const Json &object = objectAt(value, path);
    onlyKeys(object, path, {"kerf_side", "kerf"});
    LineParams p;
    p.kerfSide = choice(object, path, "kerf_side", p.kerfSide, "kerf side", &JobNames::kerfSide);
    p.kerf = number(object, path, "kerf", p.kerf, Kerf);
    return p;
}

JobLayer readLayer(const Json &value, const QString &path, size_t index)
{
    const Json &object = objectAt(value, path);
    onlyKeys(object, path,
             {"name", "color", "enabled", "operation", "speed", "power", "passes", "image", "fill", "line"});
    JobLayer layer;
    layer.name = text(object, path, "name", QStringLiteral("Layer %1").arg(index + 1));
    layer.color = text(object, path, "color", JobLayer::defaultColor(int(index)));
    if (!QColor::isValidColor(layer.color))
        refuse(member(path, "color"), QStringLiteral("not a colour"));
    layer.enabled = boolean(object, path, "enabled", layer.enabled);
    layer.operation = choice(object, path, "operation", layer.operation, "operation", &JobNames::operation);
    layer.speed = number(object, path, "speed", layer.speed, Speed);
    layer.power = number(object, path, "power", layer.power, Percent);
    layer.passes = integer(object, path, "passes", layer.passes, 1, 1000);
    // Only the block of the layer's own operation is read; the others are left as they are.
    switch (layer.operation) {
    case Operation::Image:
        if (const Json *block = find(object, "image"))
            layer.image = readImage(*block, member(path, "image"));
        break;
    case Operation::Fill:
        if (const Json *block = find(object, "fill"))
            layer.fill = readFill(*block, member(path, "fill"));
        break;
    case Operation::Line:
        if (const Json *block = find(object, "line"))
            layer.line = readLine(*block, member(path, "line"));
        break;
    }
    return layer;
}

bool isFileKind(SourceKind kind)
{
    return kind == SourceKind::Picture || kind == SourceKind::Svg || kind == SourceKind::Trace;
}

JobSource readSource(const Json &value, const QString &path)
{
    const Json &object = objectAt(value, path);
    JobSource source;
    if (!find(object, "kind"))
        refuse(member(path, "kind"), QStringLiteral("missing"));
    source.kind = choice(object, path, "kind", source.kind, "kind", &JobNames::sourceKind);
    switch (source.kind) {
    case SourceKind::Picture:
    case SourceKind::Svg:
    case SourceKind::Trace:
        onlyKeys(object, path, {"kind", "name", "data"});
        break;
    case SourceKind::Text:
        onlyKeys(object, path, {"kind", "name", "text", "font", "size", "align"});
        break;
    case SourceKind::Qr:
        onlyKeys(object, path, {"kind", "name", "text", "level", "quiet_zone"});
        break;
    }
    source.name = text(object, path, "name", source.name);
    if (isFileKind(source.kind)) {
        const Json *data = find(object, "data");
        const QString key = member(path, "data");
        if (!data)
            refuse(key, QStringLiteral("missing"));
        if (!data->is_string())
            refuse(key, QStringLiteral("not a text"));
        const std::string &encoded = data->get_ref<const std::string &>();
        if (encoded.empty())
            refuse(key, QStringLiteral("empty"));
        if (!decodeBase64(encoded, &source.data))
            refuse(key, QStringLiteral("not base64"));
        return source;
    }
    if (!find(object, "text"))
        refuse(member(path, "text"), QStringLiteral("missing"));
    source.text = text(object, path, "text", source.text);
    if (source.text.isEmpty())
        refuse(member(path, "text"), QStringLiteral("empty"));
    if (source.kind == SourceKind::Text) {
        source.font = text(object, path, "font", source.font);
        if (source.font.isEmpty())
            refuse(member(path, "font"), QStringLiteral("empty"));
        source.size = number(object, path, "size", source.size, TextSize);
        source.align = choice(object, path, "align", source.align, "alignment", &JobNames::align);
    } else {
        source.level = choice(object, path, "level", source.level, "level", &JobNames::qrLevel);
        source.quietZone = integer(object, path, "quiet_zone", source.quietZone, 0, 100);
    }
    return source;
}

// Sets the item's missing width or height from the source's own proportions, and refuses both
// when they disagree with them.
void resolveSize(JobItem *item, bool hasWidth, bool hasHeight, const QString &path)
{
    double naturalWidth = 0;
    double naturalHeight = 0;
    QString error;
    if (!JobSources::naturalSize(item->source, &naturalWidth, &naturalHeight, &error))
        refuse(member(path, "source"), error);
    const bool hasNaturalWidth = naturalWidth > 0 && std::isfinite(naturalWidth);
    const bool hasNaturalHeight = naturalHeight > 0 && std::isfinite(naturalHeight);
    if (!hasNaturalWidth && !hasNaturalHeight)
        refuse(member(path, "source"), QStringLiteral("has no size"));
    if (!hasNaturalWidth || !hasNaturalHeight) {
        // A straight line along one axis has no proportions to follow: both sides are given, and
        // the line runs along the middle of the rectangle.
        const char *flat = hasNaturalHeight ? "width" : "height";
        if (!hasWidth || !hasHeight)
            refuse(
                member(path, flat),
                QStringLiteral("missing (the drawing has no %1: give both width and height)").arg(QLatin1String(flat)));
        checkBounds(item->width, member(path, "width"), ItemSize);
        checkBounds(item->height, member(path, "height"), ItemSize);
        return;
    }
    const double aspect = naturalWidth / naturalHeight;
    if (!hasWidth && !hasHeight) {
        if (item->source.kind != SourceKind::Text)
            refuse(member(path, "width"), QStringLiteral("missing (give width, height or both)"));
        item->width = naturalWidth;
        item->height = naturalHeight;
    } else if (!hasHeight) {
        item->height = item->width / aspect;
    } else if (!hasWidth) {
        item->width = item->height * aspect;
    } else if (item->keepAspect) {
        const double given = item->width / item->height;
        if (std::fabs(given / aspect - 1) > AspectTolerance)
            refuse(member(path, "height"),
                   QStringLiteral("%1 does not keep the source's proportions (%2 for width %3)")
                       .arg(numberText(item->height), numberText(item->width / aspect), numberText(item->width)));
    }
    checkBounds(item->width, member(path, "width"), ItemSize);
    checkBounds(item->height, member(path, "height"), ItemSize);
}

JobItem readItem(const Json &value, const QString &path, const std::vector<JobLayer> &layers)
{
    const Json &object = objectAt(value, path);
    onlyKeys(object, path, {"layer", "x", "y", "width", "height", "keep_aspect", "source"});
    JobItem item;
    item.layer = integer(object, path, "layer", item.layer, 0, 1000000);
    if (size_t(item.layer) >= layers.size())
        refuse(member(path, "layer"),
               QStringLiteral("there is no layer %1 (the job has %2)").arg(item.layer).arg(layers.size()));
    item.x = number(object, path, "x", item.x, Position);
    item.y = number(object, path, "y", item.y, Position);
    const bool hasWidth = find(object, "width");
    const bool hasHeight = find(object, "height");
    item.width = number(object, path, "width", item.width, ItemSize);
    item.height = number(object, path, "height", item.height, ItemSize);
    item.keepAspect = boolean(object, path, "keep_aspect", item.keepAspect);
    const Json *source = find(object, "source");
    if (!source)
        refuse(member(path, "source"), QStringLiteral("missing"));
    item.source = readSource(*source, member(path, "source"));
    const JobLayer &layer = layers[size_t(item.layer)];
    const bool rasterOnly = item.source.kind == SourceKind::Picture || item.source.kind == SourceKind::Qr;
    if (rasterOnly && layer.operation != Operation::Image)
        refuse(member(path, "layer"),
               QStringLiteral("a %1 item belongs on an image layer, not on a %2 layer")
                   .arg(JobNames::sourceKind(item.source.kind), JobNames::operation(layer.operation)));
    resolveSize(&item, hasWidth, hasHeight, path);
    return item;
}

const Json &listAt(const Json &value, const QString &key)
{
    if (!value.is_array())
        refuse(key, QStringLiteral("not a list"));
    return value;
}

JobDocument readDocument(const Json &root, const JobFile::ReadOptions &options)
{
    if (!root.is_object())
        refuse(QString(), QStringLiteral("not a job file"));
    // The format first: a newer file may hold keys this version does not know.
    if (const Json *format = find(root, "format")) {
        const QString key = QStringLiteral("format");
        if (!format->is_number())
            refuse(key, QStringLiteral("not a number"));
        const double v = format->get<double>();
        if (std::isfinite(v) && v > JobDocument::Format)
            refuse(key, QStringLiteral("the file comes from a newer version of TarnwellLaser (format %1; this "
                                       "version reads format %2)")
                            .arg(numberText(v))
                            .arg(JobDocument::Format));
        if (v != JobDocument::Format)
            refuse(key, QStringLiteral("must be %1").arg(JobDocument::Format));
    }
    onlyKeys(root, QString(), {"format", "machine", "layers", "items", "extra"});
    JobDocument doc;
    if (const Json *machine = find(root, "machine"))
        doc.machine = readMachine(*machine);
    if (const Json *layers = find(root, "layers")) {
        const QString key = QStringLiteral("layers");
        const Json &list = listAt(*layers, key);
        for (size_t i = 0; i < list.size(); ++i)
            doc.layers.push_back(readLayer(list[i], element(key, i), i));
    }
    if (const Json *items = find(root, "items")) {
        const QString key = QStringLiteral("items");
        const Json &list = listAt(*items, key);
        for (size_t i = 0; i < list.size(); ++i)
            doc.items.push_back(readItem(list[i], element(key, i), doc.layers));
    }
    if (const Json *extra = find(root, "extra")) {
        objectAt(*extra, QStringLiteral("extra"));
        doc.extra = QByteArray::fromStdString(extra->dump(-1, ' ', false, Json::error_handler_t::replace));
    }
    if (options.checkBed) {
        const QString outside = JobFile::outsideBed(doc);
        if (!outside.isEmpty())
            refuse(QString(), outside);
    }
    return doc;
}

// Whole numbers are written without a fraction (3000, not 3000.0); the rest as the shortest
// text that reads back as the same double.
OrderedJson numberJson(double v)
{
    if (std::isfinite(v) && v == std::floor(v) && std::fabs(v) < 1e15)
        return OrderedJson(static_cast<long long>(v));
    return OrderedJson(v);
}

OrderedJson textJson(const QString &text) { return OrderedJson(text.toStdString()); }

OrderedJson machineJson(const MachineProfile &m)
{
    OrderedJson o = OrderedJson::object();
    o["name"] = textJson(m.name);
    o["dialect"] = textJson(JobNames::dialect(m.dialect));
    o["max_power"] = numberJson(m.maxPower);
    o["bed"] = OrderedJson::array({numberJson(m.bedWidth), numberJson(m.bedHeight)});
    o["travel_speed"] = numberJson(m.travelSpeed);
    o["acceleration"] = numberJson(m.acceleration);
    return o;
}

OrderedJson layerJson(const JobLayer &layer)
{
    OrderedJson o = OrderedJson::object();
    o["name"] = textJson(layer.name);
    o["color"] = textJson(layer.color);
    o["enabled"] = layer.enabled;
    o["operation"] = textJson(JobNames::operation(layer.operation));
    o["speed"] = numberJson(layer.speed);
    o["power"] = numberJson(layer.power);
    o["passes"] = layer.passes;
    OrderedJson block = OrderedJson::object();
    switch (layer.operation) {
    case Operation::Image: {
        const ImageParams &p = layer.image;
        block["mode"] = textJson(JobNames::imageMode(p.mode));
        block["dither"] = textJson(JobNames::dither(p.dither));
        block["threshold"] = p.threshold;
        block["min_power"] = numberJson(p.minPower);
        block["brightness"] = numberJson(p.brightness);
        block["contrast"] = numberJson(p.contrast);
        block["gamma"] = numberJson(p.gamma);
        block["invert"] = p.invert;
        block["interval"] = numberJson(p.interval);
        block["overscan"] = numberJson(p.overscan);
        block["bidirectional"] = p.bidirectional;
        block["reverse_offset"] = numberJson(p.reverseOffset);
        o["image"] = block;
        break;
    }
    case Operation::Fill: {
        const FillParams &p = layer.fill;
        block["interval"] = numberJson(p.interval);
        block["angle"] = numberJson(p.angle);
        block["cross_hatch"] = p.crossHatch;
        block["overscan"] = numberJson(p.overscan);
        block["bidirectional"] = p.bidirectional;
        o["fill"] = block;
        break;
    }
    case Operation::Line:
        block["kerf_side"] = textJson(JobNames::kerfSide(layer.line.kerfSide));
        block["kerf"] = numberJson(layer.line.kerf);
        o["line"] = block;
        break;
    }
    return o;
}

OrderedJson sourceJson(const JobSource &s)
{
    OrderedJson o = OrderedJson::object();
    o["kind"] = textJson(JobNames::sourceKind(s.kind));
    if (!s.name.isEmpty())
        o["name"] = textJson(s.name);
    switch (s.kind) {
    case SourceKind::Picture:
    case SourceKind::Svg:
    case SourceKind::Trace:
        o["data"] = s.data.toBase64().toStdString();
        break;
    case SourceKind::Text:
        o["text"] = textJson(s.text);
        o["font"] = textJson(s.font);
        o["size"] = numberJson(s.size);
        o["align"] = textJson(JobNames::align(s.align));
        break;
    case SourceKind::Qr:
        o["text"] = textJson(s.text);
        o["level"] = textJson(JobNames::qrLevel(s.level));
        o["quiet_zone"] = s.quietZone;
        break;
    }
    return o;
}

OrderedJson itemJson(const JobItem &item)
{
    OrderedJson o = OrderedJson::object();
    o["layer"] = item.layer;
    o["x"] = numberJson(item.x);
    o["y"] = numberJson(item.y);
    o["width"] = numberJson(item.width);
    o["height"] = numberJson(item.height);
    o["keep_aspect"] = item.keepAspect;
    o["source"] = sourceJson(item.source);
    return o;
}

// The item as the bed message names it: its file name, its text, or its kind.
QString itemName(const JobItem &item)
{
    if (!item.source.name.isEmpty())
        return printable(item.source.name.toStdString());
    if (!item.source.text.isEmpty())
        return printable(item.source.text.toStdString());
    return JobNames::sourceKind(item.source.kind);
}

QString fileName(const QString &path) { return QFileInfo(path).fileName(); }

}  // namespace

namespace JobFile {

bool read(const QByteArray &json, JobDocument *doc, QString *error, ReadOptions options)
{
    bool tooDeep = false;
    const Json::parser_callback_t depthCheck = [&tooDeep](int depth, Json::parse_event_t, Json &) {
        tooDeep = tooDeep || depth > MaxDepth;
        return true;
    };
    const Json root = Json::parse(json.constBegin(), json.constEnd(), depthCheck, false);
    if (root.is_discarded() || tooDeep) {
        *error = QStringLiteral("not a job file");
        return false;
    }
    try {
        JobDocument read = readDocument(root, options);
        *doc = std::move(read);
        return true;
    } catch (const Refusal &refusal) {
        *error = refusal.message;
    } catch (const nlohmann::json::exception &) {
        *error = QStringLiteral("not a job file");
    }
    return false;
}

QByteArray write(const JobDocument &doc)
{
    OrderedJson root = OrderedJson::object();
    root["format"] = JobDocument::Format;
    root["machine"] = machineJson(doc.machine);
    OrderedJson layers = OrderedJson::array();
    for (const JobLayer &layer : doc.layers)
        layers.push_back(layerJson(layer));
    root["layers"] = layers;
    OrderedJson items = OrderedJson::array();
    for (const JobItem &item : doc.items)
        items.push_back(itemJson(item));
    root["items"] = items;
    if (!doc.extra.isEmpty()) {
        OrderedJson extra = OrderedJson::parse(doc.extra.constBegin(), doc.extra.constEnd(), nullptr, false);
        if (extra.is_object())
            root["extra"] = extra;
    }
    std::string text = root.dump(2, ' ', false, OrderedJson::error_handler_t::replace);
    text += '\n';
    return QByteArray::fromStdString(text);
}

bool load(const QString &path, JobDocument *doc, QString *error, ReadOptions options)
{
    const QFileInfo info(path);
    if (!info.exists()) {
        *error = QStringLiteral("%1: no such file").arg(fileName(path));
        return false;
    }
    QFile file(path);
    if (!info.isFile() || !file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("%1: cannot read the file").arg(fileName(path));
        return false;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        *error = QStringLiteral("%1: cannot read the file").arg(fileName(path));
        return false;
    }
    QString message;
    if (!read(bytes, doc, &message, options)) {
        *error = fileName(path) + QStringLiteral(": ") + message;
        return false;
    }
    return true;
}

bool save(const QString &path, const JobDocument &doc, QString *error)
{
    const QByteArray bytes = write(doc);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        *error = QStringLiteral("%1: cannot write the file").arg(fileName(path));
        return false;
    }
    return true;
}

QString outsideBed(const JobDocument &doc)
{
    const MachineProfile &m = doc.machine;
    for (size_t i = 0; i < doc.items.size(); ++i) {
        const JobItem &item = doc.items[i];
        const bool inside = item.x >= -BedSlack && item.y >= -BedSlack && item.x + item.width <= m.bedWidth + BedSlack
                            && item.y + item.height <= m.bedHeight + BedSlack;
        if (!inside)
            return QStringLiteral("items[%1] (%2): outside the bed (%3 x %4 mm)")
                .arg(i)
                .arg(itemName(item), numberText(m.bedWidth), numberText(m.bedHeight));
    }
    return QString();
}

}  // namespace JobFile
