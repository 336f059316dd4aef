// How long the Job window takes to show an image layer's processed picture again after a setting
// changes, for a 12-megapixel photo: the first look (decoding included), then each change.
#include "jobitemlook.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <cstdio>

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    // A 4000 x 3000 gradient with circles, saved as JPEG like a camera's photo.
    QImage photo(4000, 3000, QImage::Format_RGB32);
    QPainter painter(&photo);
    QLinearGradient gradient(0, 0, 4000, 3000);
    gradient.setColorAt(0, Qt::white);
    gradient.setColorAt(1, Qt::black);
    painter.fillRect(photo.rect(), gradient);
    for (int i = 0; i < 40; ++i)
        painter.drawEllipse(QPointF(100.0 * i, 75.0 * i), 300, 200);
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    photo.save(&buffer, "JPG", 90);

    JobItem item;
    item.source.kind = SourceKind::Picture;
    item.source.data = bytes;
    item.width = 120;
    item.height = 90;
    JobLayer layer;
    QElapsedTimer timer;
    timer.start();
    JobItemLook first = JobItemLook::make(item, layer);
    std::printf("first look of a 12 MP photo: %lld ms (%dx%d cells)\n", timer.elapsed(), first.picture.width(),
                first.picture.height());
    const int changes = 20;
    timer.restart();
    qint64 worst = 0;
    for (int i = 0; i < changes; ++i) {
        QElapsedTimer one;
        one.start();
        layer.image.brightness = i * 5 - 50;
        layer.image.mode = i % 2 ? ImageMode::Dither : ImageMode::Threshold;
        JobItemLook look = JobItemLook::make(item, layer);
        worst = std::max(worst, one.elapsed());
        if (look.picture.isNull())
            return 1;
    }
    std::printf("after a setting change: %.1f ms on average, %lld ms at worst (%d changes)\n",
                double(timer.elapsed()) / changes, worst, changes);
    return 0;
}
