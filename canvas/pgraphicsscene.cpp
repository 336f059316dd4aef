// The canvas scene: the machine's 170 by 200 mm work area with its labels and
// guide lines, and the bitmap and SVG designs placed on it, in millimetres.
#include "pgraphicsscene.h"

#include "backgrqgraphicsitem.h"
#include "pixmapitem.h"
#include "svgitem.h"
#include "workarea.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QGraphicsSceneMouseEvent>
#include <QGraphicsTextItem>
#include <QKeyEvent>
#include <QPaintEngine>
#include <QPainter>
#include <QPen>
#include <QRegExp>
#include <QSvgRenderer>
#include <cmath>

namespace {

constexpr int Margin = 5;
constexpr double LabelGap = 1.0;  // mm between a label and the outline it names
constexpr double BackgroundScale = 0.48;
// The bed picture's top-left corner. It was once worked out as (-72 - w/2, 12 - h/2) for a
// 170 x 200 pixel picture; the picture is now large enough to lie behind the whole work
// area and its grid is drawn to line up from this very corner, so the place stays fixed.
const QPointF BackgroundCorner(-157, -88);
const char *const BackgroundPicture = ":/img/background4.jpg";
const char *const CleanedSvgFile = "tmp.svg";

// Factor that makes a w by h design touch the limits; a design without extent
// keeps its size instead of getting an infinite factor.
double fitFactor(double w, double h, double limitW, double limitH)
{
    if (w == 0.0 || h == 0.0)
        return 1.0;
    const double k = qMin(limitW / w, limitH / h);
    return std::isfinite(k) ? k : 1.0;
}

double ratioOf(double w, double h) { return h == 0.0 ? 0.0 : w / h; }

}  // namespace

const QPointF PGraphicsScene::NoPosition(-10000, -10000);

PGraphicsScene::PGraphicsScene(QObject *parent)
    : QGraphicsScene(parent), m_areaWidth(WorkArea::Width), m_areaHeight(WorkArea::Height)
{
    buildWorkArea();
}

void PGraphicsScene::buildWorkArea()
{
    const int w = m_areaWidth;
    const int h = m_areaHeight;
    setSceneRect(0, 0, w, h);

    m_background = new BackGrQGraphicsItem;
    m_background->setParent(this);
    m_background->setPixmap(QPixmap(BackgroundPicture));
    m_background->setAcceptDrops(true);
    m_background->setPos(BackgroundCorner);
    m_background->setScale(BackgroundScale);
    addItem(m_background);
    connect(m_background, SIGNAL(on_dropped(QString)), this, SLOT(SlotPixitemDropped(QString)));

    // The labels left of the area end just short of its outline: at their first places,
    // (-35, -10) and (-25, 190), the default font ran them into the frame's lines.
    struct Label
    {
        const char *text;
        QPointF pos;
        bool endsAtOutline;
    };
    const Label labels[] = {
        {"Preview Area", QPointF(w - 85, h - 25), false},
        {"170mm", QPointF(w, h - 10), false},
        {"200mm", QPointF(-35, -10), true},
        {"0mm", QPointF(-25, h - 10), true},
    };
    for (const Label &label : labels) {
        QGraphicsTextItem *item = addText(QString::fromLatin1(label.text), QFont());
        item->setDefaultTextColor(Qt::gray);
        item->setPos(label.pos);
        if (label.endsAtOutline)
            item->setX(-item->boundingRect().width() - LabelGap);
    }

    QPen pen(Qt::black);
    addLine(w, 0, w, h, pen);
    addLine(0, h, w, h, pen);
    addLine(0, h, 0, 0, pen);
    addLine(0, 0, w, 0, pen);

    // The margin the machine cannot reach reliably, 5 mm inside the outline.
    pen.setDashPattern({5, 3, 5, 3});
    pen.setWidth(2);
    addLine(w - Margin, Margin, w - Margin, h - Margin, pen);
    addLine(Margin, h - Margin, w - Margin, h - Margin, pen);
    addLine(Margin, h - Margin, Margin, Margin, pen);
    addLine(Margin, Margin, w - Margin, Margin, pen);

    pen.setColor(Qt::gray);
    addLine(w / 2, Margin, w / 2, h - Margin, pen);
    addLine(Margin, h / 2, w - Margin, h / 2, pen);
}

void PGraphicsScene::LoadItemFromFile(const QString &path, int kindTag)
{
    const QString suffix = QFileInfo(path).suffix();
    if (suffix == "svg") {
        QFile source(path);
        QFile cleaned(CleanedSvgFile);
        source.open(QIODevice::ReadWrite);
        cleaned.open(QIODevice::ReadWrite);
        QString text = QString::fromUtf8(source.readAll());

        const QRegExp widthRx("width=\"([0-9\\.]*)mm\"");
        const QRegExp heightRx("height=\"([0-9\\.]*)mm\"");
        const QRegExp viewBoxRx("viewBox=\"[0-9\\s\\.]*\"");
        QRegExp finder = widthRx;
        const double widthMm = finder.indexIn(text) != -1 ? finder.cap(1).toDouble() : 0.0;
        finder = heightRx;
        const double heightMm = finder.indexIn(text) != -1 ? finder.cap(1).toDouble() : 0.0;

        // Without its declared size and view box the drawing reports the extent of
        // its own coordinates, which the fit below works from.
        text.replace(widthRx, " ");
        text.replace(heightRx, " ");
        text.replace(viewBoxRx, " ");
        qDebug() << "start:" << text;
        cleaned.write(text.toLatin1());
        source.close();
        cleaned.close();

        placeSvg(text.toUtf8(), kindTag, m_areaHeight, widthMm, heightMm);
        return;
    }
    if (suffix != "jpeg" && suffix != "jpg" && suffix != "png" && suffix != "bmp")
        return;

    auto *item = new PixmapItem;
    item->setParent(this);
    item->setFilePath(path);
    const QPixmap picture(path);
    item->setPixmap(picture);
    item->setRect(QRectF(0, 0, picture.width(), picture.height()));
    addItem(item);

    // Small pictures are enlarged too, so every picture starts touching the area's sides.
    const QRectF rect = item->rect();
    const double k = fitFactor(rect.width(), rect.height(), m_areaWidth, m_areaHeight);
    const QRectF fitted(item->scenePos().x(), item->scenePos().y(), rect.width() * k, rect.height() * k);
    connect(item, SIGNAL(SigPosTag(QRectF)), this, SLOT(SlotGetRect(QRectF)));
    item->ResetRect(fitted);
    emit item->SigPosTag(fitted);
    item->setSelected(true);
}

void PGraphicsScene::LoadSvgItem(const QString &path, int kindTag)
{
    QFile source(path);
    source.open(QIODevice::ReadWrite);
    const QString text = QString::fromUtf8(source.readAll());
    source.close();

    QRegExp widthRx("width=\"([0-9\\.]*)mm\"");
    QRegExp heightRx("height=\"([0-9\\.]*)mm\"");
    const double widthMm = widthRx.indexIn(text) != -1 ? widthRx.cap(1).toDouble() : 0.0;
    const double heightMm = heightRx.indexIn(text) != -1 ? heightRx.cap(1).toDouble() : 0.0;

    // Fitted against the width in both directions, so the result is never taller than 170.
    placeSvg(text.toUtf8(), kindTag, m_areaWidth, widthMm, heightMm);
}

SvgItem *PGraphicsScene::placeSvg(const QByteArray &source, int kindTag, double heightLimit, double widthMm,
                                  double heightMm)
{
    // The scene keeps the renderer so it outlives every item that shares it.
    auto *renderer = new QSvgRenderer(source, this);
    const QSize size = renderer->defaultSize();
    const double w = size.width();
    const double h = size.height();
    qDebug().noquote() << QString("the default size is: w=%1, h=%2").arg(w).arg(h);

    auto *item = new SvgItem;
    item->setParent(this);
    item->setRect(QRectF(0, 0, w, h));
    item->setRememberedRect(QRectF(0, 0, w, h));
    item->setAspectRatio(ratioOf(w, h));
    item->setKindTag(kindTag);
    item->setSharedRenderer(renderer);
    item->setFilePath(CleanedSvgFile);

    const double k = fitFactor(w, h, m_areaWidth, heightLimit);
    const QRectF fitted(0, 0, w * k, h * k);
    item->setRect(fitted);
    item->setRememberedRect(fitted);
    item->setAspectRatio(ratioOf(fitted.width(), fitted.height()));
    addItem(item);

    // A drawing that states its size in millimetres is shown at that size.
    if (widthMm != 0.0) {
        qDebug() << "width is :" << widthMm;
        qDebug() << "height is :" << heightMm;
        item->ResetRect(QRectF(0, 0, widthMm, heightMm));
    }

    connect(item, SIGNAL(SigPosTag(QRectF)), this, SLOT(SlotGetRect(QRectF)));
    item->setSelected(true);
    emit item->SigPosTag(fitted);
    item->update();
    return item;
}

void PGraphicsScene::ClearItems()
{
    qDebug().noquote() << QString("the item size is:%1 ").arg(items().size());
    const QList<QGraphicsItem *> all = items();
    for (QGraphicsItem *item : all) {
        if (item->type() == SvgItem::Type || item->type() == PixmapItem::Type)
            removeItem(item);
    }
    qDebug().noquote() << QString("after delete the item size is:%1 ").arg(items().size());
}

void PGraphicsScene::ScaleSelected(double widthMm)
{
    const QList<QGraphicsItem *> selected = selectedItems();
    for (QGraphicsItem *item : selected) {
        if (item->type() == SvgItem::Type) {
            auto *svg = static_cast<SvgItem *>(item);
            const QRectF r = svg->rect();
            const double f = widthMm / r.width();
            svg->ResetRect(QRectF(svg->scenePos().x(), svg->scenePos().y(), r.width() * f, r.height() * f));
        } else if (item->type() == PixmapItem::Type) {
            auto *pix = static_cast<PixmapItem *>(item);
            const QRectF r = pix->rect();
            const double f = widthMm / r.width();
            pix->ResetRect(QRectF(pix->scenePos().x(), pix->scenePos().y(), r.width() * f, r.height() * f));
        }
    }
    update();
}

QPointF PGraphicsScene::CurrentItemPos()
{
    QPointF pos = NoPosition;
    const QList<QGraphicsItem *> all = items(Qt::DescendingOrder);
    for (QGraphicsItem *item : all) {
        if (item->type() == SvgItem::Type && static_cast<SvgItem *>(item)->isInArea())
            pos = item->scenePos();
        else if (item->type() == PixmapItem::Type && static_cast<PixmapItem *>(item)->isInArea())
            pos = item->scenePos();
    }
    return pos;
}

bool PGraphicsScene::HasSelectedItem()
{
    const QList<QGraphicsItem *> all = items();
    for (QGraphicsItem *item : all) {
        if (item->isSelected())
            return true;
    }
    return false;
}

void PGraphicsScene::SlotGetRect(QRectF rect) { emit SigRect(rect); }

void PGraphicsScene::SlotPixitemDropped(QString path) { emit SigPixitem(path); }

void PGraphicsScene::drawBackground(QPainter *painter, const QRectF &)
{
    // The look comes from the items; this only tells a developer that the view
    // runs without its OpenGL viewport.
    if (painter->paintEngine() && painter->paintEngine()->type() == QPaintEngine::OpenGL2)
        return;
    qWarning() << "OpenGLScene: drawBackground needs a QGLWidget to be set as viewport on the graphics view";
}

void PGraphicsScene::keyPressEvent(QKeyEvent *event)
{
    // Only Delete is handled; every other key is kept from the items.
    if (event->key() != Qt::Key_Delete)
        return;
    const QList<QGraphicsItem *> selected = selectedItems();
    for (QGraphicsItem *item : selected)
        removeItem(item);
}

void PGraphicsScene::mousePressEvent(QGraphicsSceneMouseEvent *event) { QGraphicsScene::mousePressEvent(event); }

void PGraphicsScene::mouseMoveEvent(QGraphicsSceneMouseEvent *event) { QGraphicsScene::mouseMoveEvent(event); }

void PGraphicsScene::mouseReleaseEvent(QGraphicsSceneMouseEvent *event) { QGraphicsScene::mouseReleaseEvent(event); }
