#include "ui/library/alphastore.h"

#include "base/datafolder.h"
#include "files/alphaimage.h"
#include "files/formats.h"
#include "files/pictures/picturefile.h"
#include "relief/tools/alphabrush.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <tuple>
#include <utility>

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

/// The picture that was chosen last, as read from the file, and its orientation.
struct ChosenAlpha
{
    FloatGrid picture;
    AlphaOrientation orientation;
};

ChosenAlpha &chosen()
{
    static ChosenAlpha alpha;
    return alpha;
}

/// A cell of a square picture that is held so; row 0 at the top.
float heldCell(const ChosenAlpha &alpha, int column, int row)
{
    const int last = alpha.picture.width - 1;
    for (int turn = 0; turn < alpha.orientation.quarterTurns; ++turn)
        std::tie(column, row) = std::pair(row, last - column);
    const int source = alpha.orientation.mirrored ? last - column : column;
    return alpha.picture.row(row)[source];
}

/// A relief counts its rows from the bottom of the screen, a picture from its top.
void handToBrush()
{
    const int side = chosen().picture.width;
    FloatGrid held(side, side);
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column)
            held.row(side - 1 - row)[column] = heldCell(chosen(), column, row);
    }
    AlphaBrush::instance().setImage(held.view());
}

QStringList pictureFilters()
{
    QStringList filters;
    for (const Format &format : formats()) {
        if (format.opensAs == OpensAs::Picture)
            filters << QLatin1Char('*') + QLatin1String(format.ending);
    }
    return filters;
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

Result<QString> renameAlphaPicture(const QString &path, const QString &name)
{
    const QFileInfo old(path);
    const QString wanted = name.trimmed();
    const QString renamed = old.dir().filePath(QStringLiteral("%1.%2").arg(wanted, old.suffix()));
    const bool usable = !wanted.isEmpty() && !wanted.contains(QLatin1Char('/'));
    if (usable && !QFile::exists(renamed) && QFile::rename(path, renamed))
        return renamed;
    return Failure{
        Texts::tr("Rename Failed"),
        Texts::tr("%1 cannot be renamed to \"%2\".").arg(old.completeBaseName(), wanted)};
}

Outcome chooseAlpha(const QString &path)
{
    FloatGrid grid = squareGrid(alphaGrid(readWhole(path, largestSide)));
    if (grid.width == 0)
        return Failure{
            Texts::tr("Open Failed"),
            Texts::tr("%1 is not a picture that can be read.").arg(QFileInfo(path).fileName())};
    chosen().picture = std::move(grid);
    handToBrush();
    return {};
}

void chooseNoAlpha()
{
    chosen().picture = {};
    AlphaBrush::instance().setImage({});
}

AlphaOrientation alphaOrientation()
{
    return chosen().orientation;
}

void setAlphaOrientation(AlphaOrientation orientation)
{
    chosen().orientation = orientation;
    if (chosen().picture.width > 0)
        handToBrush();
}

} // namespace marlowen
