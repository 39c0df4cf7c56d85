#include "ui/library/alphastore.h"

#include "base/datafolder.h"
#include "files/alphaimage.h"
#include "files/pictures/picturefile.h"
#include "relief/tools/alphabrush.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

// Outside any namespace, as the macro demands; without it the linker drops the resources.
static void initResources()
{
    Q_INIT_RESOURCE(alphas);
}

namespace marlowen {

namespace {

constexpr char builtInFolder[] = ":/marlowen2/alphas";
constexpr qsizetype orderDigits = 3; // "01 Soft Round.png"
constexpr int largestSide = 1024;

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(AlphaStore)
};

QStringList pictureFilters()
{
    return {"*.png", "*.jpg", "*.jpeg", "*.bmp"};
}

/// At most `side` pixels wide and high. Null when the file cannot be read or is damaged.
QImage readWhole(const QString &path, int side)
{
    const Result<QImage> whole = readWholeImage(path);
    if (!whole)
        return {};
    const QImage &image = whole.value();
    if (image.width() <= side && image.height() <= side)
        return image;
    return image.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

QString freePath(const QFileInfo &source)
{
    const QDir folder(alphaFolder());
    QString path = folder.filePath(source.fileName());
    for (int number = 2; QFile::exists(path); ++number)
        path = folder.filePath(QStringLiteral("%1 %2.%3")
                                   .arg(source.completeBaseName())
                                   .arg(number)
                                   .arg(source.suffix()));
    return path;
}

} // namespace

QString alphaFolder()
{
    const QString path = QDir(dataFolder()).filePath(QStringLiteral("alphas"));
    QDir().mkpath(path);
    return path;
}

QList<AlphaEntry> alphaEntries()
{
    ::initResources();
    QList<AlphaEntry> entries;
    const QDir builtIn(QLatin1String{builtInFolder});
    for (const QFileInfo &file : builtIn.entryInfoList(QDir::Files, QDir::Name))
        entries << AlphaEntry{file.completeBaseName().mid(orderDigits), file.filePath(), true};
    const QDir own(alphaFolder());
    for (const QFileInfo &file :
         own.entryInfoList(pictureFilters(), QDir::Files, QDir::Name | QDir::IgnoreCase))
        entries << AlphaEntry{file.completeBaseName(), file.filePath(), false};
    return entries;
}

QImage alphaThumbnail(const QString &path, int side)
{
    return readWhole(path, side).convertToFormat(QImage::Format_Grayscale8);
}

Result<QString> addAlphaPicture(const QString &path)
{
    const QString title = Texts::tr("Add Picture Failed");
    const QString name = QFileInfo(path).fileName();
    if (!QDir::match(pictureFilters(), name) || readWhole(path, 16).isNull())
        return Failure{title, Texts::tr("%1 is not a picture that can be read.").arg(name)};
    const QString copy = freePath(QFileInfo(path));
    if (!QFile::copy(path, copy))
        return Failure{title, Texts::tr("%1 could not be copied to the library.").arg(name)};
    return copy;
}

Outcome removeAlphaPicture(const QString &path)
{
    if (QFile::moveToTrash(path))
        return {};
    return Failure{
        Texts::tr("Remove Failed"),
        Texts::tr("%1 could not be moved to the trash.").arg(QFileInfo(path).fileName())};
}

Outcome chooseAlpha(const QString &path)
{
    const FloatGrid grid = squareGrid(alphaGrid(readWhole(path, largestSide)));
    if (grid.width == 0)
        return Failure{
            Texts::tr("Open Failed"),
            Texts::tr("%1 is not a picture that can be read.").arg(QFileInfo(path).fileName())};
    AlphaBrush::instance().setImage(grid.view());
    return {};
}

} // namespace marlowen
