// rendericons LOGO.svg FOLDER SIZE...: draws the logo once a size, as FOLDER/SIZE.png.

#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>
#include <cstdlib>

static bool render(QSvgRenderer &logo, int size, const QString &path)
{
    QImage picture(size, size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    logo.render(&painter);
    painter.end();
    return picture.save(path, "PNG");
}

int main(int argc, char **argv)
{
    if (argc < 4)
        return 2;
    QSvgRenderer logo(QFile::decodeName(argv[1]));
    const QDir folder(QFile::decodeName(argv[2]));
    for (int i = 3; i < argc; ++i) {
        const QString name = QLatin1String(argv[i]) + QLatin1String(".png");
        if (!logo.isValid() || !folder.mkpath(QStringLiteral(".")) ||
            !render(logo, std::atoi(argv[i]), folder.filePath(name))) {
            std::fprintf(stderr, "rendericons: cannot draw %s\n", qPrintable(name));
            return 1;
        }
    }
    return 0;
}
