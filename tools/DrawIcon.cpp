// Draws an SVG as square PNG pictures: draw_icon DRAWING NAME-SIZE.png ...; the number before ".png" is the
// side in pixels.
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

int main(int argc, char** argv) {
    QSvgRenderer drawing(QString::fromLocal8Bit(argc > 1 ? argv[1] : ""));
    for (int at = 2; at < argc; ++at) {
        const QString file = QString::fromLocal8Bit(argv[at]);
        const int side = QFileInfo(file).completeBaseName().section(u'-', -1).toInt();
        QImage picture(side, side, QImage::Format_ARGB32);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        drawing.render(&painter);
        painter.end();
        if (!drawing.isValid() || !picture.save(file)) {
            std::fprintf(stderr, "%s could not be drawn.\n", argv[at]);
            return 1;
        }
    }
    return 0;
}
