#include "ui/library/patternstore.h"

#include "base/datafolder.h"
#include "base/qevsettings.h"
#include "relief/grid/physicalsize.h"
#include "relief/grid/relief.h"

#include <QCollator>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace marlowen {

namespace {

constexpr int mostFolders = 200;
constexpr int deepest = 4; ///< levels of folders in the user's one

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(PatternStore)
};

void addSubfolders(const QDir &folder, const QString &prefix, int level,
                   QList<PatternFolder> &folders)
{
    if (level > deepest)
        return;
    const QDir::Filters wanted = QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks;
    for (const QFileInfo &inside : folder.entryInfoList(wanted, QDir::Name | QDir::IgnoreCase)) {
        if (folders.size() >= mostFolders)
            return;
        const QString name = prefix + inside.fileName();
        folders << PatternFolder{name, inside.filePath(), false};
        addSubfolders(QDir(inside.filePath()), name + QStringLiteral(" / "), level + 1, folders);
    }
}

/// By their names without the ending, as people count.
void addEntries(const PatternFolder &folder, QList<PatternEntry> &entries)
{
    const QDir dir(folder.path);
    QList<PatternEntry> found;
    for (const QFileInfo &file :
         dir.entryInfoList({QLatin1Char('*') + QLatin1String(patternEnding)}, QDir::Files))
        found << PatternEntry{file.completeBaseName(), file.filePath(), folder.builtIn,
                              file.lastModified().toMSecsSinceEpoch()};
    QCollator order;
    order.setNumericMode(true);
    order.setCaseSensitivity(Qt::CaseInsensitive);
    std::stable_sort(found.begin(), found.end(), [&order](const auto &a, const auto &b) {
        return order.compare(a.name, b.name) < 0;
    });
    entries << found;
}

QString freePath(const QDir &folder, const QString &name)
{
    QString path = folder.filePath(name + QLatin1String(patternEnding));
    for (int number = 2; QFile::exists(path); ++number)
        path = folder.filePath(
            QStringLiteral("%1 %2%3").arg(name).arg(number).arg(QLatin1String(patternEnding)));
    return path;
}

bool isFileName(const QString &name)
{
    return !name.isEmpty() && !name.contains(QLatin1Char('/')) && !name.startsWith(u'.') &&
           name.toUtf8().size() < 200;
}

Failure addFailed(const QString &sentence)
{
    return {Texts::tr("Add Pattern Failed"), sentence};
}

QString noFileName(const QString &name)
{
    return Texts::tr("\"%1\" cannot be the name of a file.").arg(name);
}

} // namespace

QString patternFolder()
{
    const QString path = QDir(dataFolder()).filePath(QStringLiteral("patterns"));
    QDir().mkpath(path);
    return path;
}

QString builtInPatternFolder()
{
    return QDir::cleanPath(QCoreApplication::applicationDirPath() +
                           QStringLiteral("/../share/marlowen/patterns"));
}

QList<PatternFolder> patternFolders()
{
    QList<PatternFolder> folders{{Texts::tr("Built-in"), builtInPatternFolder(), true},
                                 {Texts::tr("My Patterns"), patternFolder(), false}};
    addSubfolders(QDir(patternFolder()), QString(), 1, folders);
    return folders;
}

QList<PatternEntry> patternEntries(const QString &folder)
{
    QList<PatternEntry> entries;
    for (const PatternFolder &each : patternFolders()) {
        if (folder.isEmpty() || folder == each.path)
            addEntries(each, entries);
    }
    return entries;
}

PatternAttributes attributesOfUser(const QString &path, int unit)
{
    PatternAttributes attributes =
        newPatternAttributes(path, QLatin1String(lengthUnits[static_cast<size_t>(unit)].label));
    attributes.author = QevSettings().value(QStringLiteral("export/author")).toString();
    return attributes;
}

Result<QString> addPatternFolder(const QString &name)
{
    const QString title = Texts::tr("New Folder Failed");
    if (!isFileName(name))
        return Failure{title, noFileName(name)};
    const QDir own(patternFolder());
    if (own.exists(name))
        return Failure{title, Texts::tr("There is a folder %1 already.").arg(name)};
    if (!own.mkdir(name))
        return Failure{title, Texts::tr("The folder %1 could not be made.").arg(name)};
    return own.filePath(name);
}

Result<QString> addPatternFile(const QString &path, const QString &folder)
{
    const QFileInfo source(path);
    // Reading all of it checks its digest too.
    Progress silent;
    if (!loadPattern(path, silent))
        return addFailed(Texts::tr("%1 is not a pattern that can be read.").arg(source.fileName()));
    const QString copy = freePath(QDir(folder), source.completeBaseName());
    if (!QFile::copy(path, copy))
        return addFailed(
            Texts::tr("%1 could not be copied to the library.").arg(source.fileName()));
    return copy;
}

QRect selectedBox(const Relief &relief)
{
    QRect box;
    const float *selection = relief.selectionLayer().constData();
    for (int row = 0; row < relief.height(); ++row) {
        const float *line = selection + relief.index(0, row);
        const float *end = line + relief.width();
        const auto isSelected = [](float value) { return value != 0.0F; };
        const float *first = std::find_if(line, end, isSelected);
        if (first == end)
            continue;
        const auto last = std::find_if(std::make_reverse_iterator(end),
                                       std::make_reverse_iterator(first), isSelected);
        box |= QRect(QPoint(static_cast<int>(first - line), row),
                     QPoint(static_cast<int>(last.base() - line) - 1, row));
    }
    return box;
}

FloatGrid selectedHeights(const Relief &relief)
{
    const QRect box = relief.selectionActive ? selectedBox(relief) : relief.rect();
    FloatGrid grid(box.width(), box.height());
    for (int row = 0; row < box.height(); ++row) {
        const qsizetype from = relief.index(box.left(), box.top() + row);
        const float *heights = relief.heights().constData() + from;
        const float *selection = relief.selectionLayer().constData() + from;
        for (int column = 0; column < box.width(); ++column) {
            const bool wanted = !relief.selectionActive || selection[column] != 0.0F;
            grid.row(row)[column] = wanted ? heights[column] : 0.0F;
        }
    }
    return grid;
}

Result<QString> addReliefPattern(const Relief &relief, const NewPattern &pattern,
                                 Progress &progress)
{
    if (!isFileName(pattern.name))
        return addFailed(noFileName(pattern.name));
    const FloatGrid heights = selectedHeights(relief);
    if (std::ranges::none_of(heights.values, [](float height) { return height != 0.0F; }))
        return addFailed(Texts::tr("There is nothing but empty cells in it."));
    const QString path = freePath(QDir(pattern.folder), pattern.name);
    const PatternToSave whole{attributesOfUser(path, pattern.unit), relief.zScale, heights.view()};
    if (const Outcome saved = savePattern(whole, path, progress); !saved)
        return saved.failure();
    return path;
}

Result<QString> renamePattern(const QString &path, const QString &name)
{
    const QString title = Texts::tr("Rename Failed");
    if (!isFileName(name))
        return Failure{title, noFileName(name)};
    const QFileInfo file(path);
    const QString renamed = file.dir().filePath(name + QLatin1String(patternEnding));
    if (renamed == path)
        return path;
    if (QFile::exists(renamed))
        return Failure{title, Texts::tr("There is a pattern %1 already.").arg(name)};
    if (!QFile::rename(path, renamed))
        return Failure{title, Texts::tr("%1 could not be renamed.").arg(file.fileName())};
    return renamed;
}

Outcome removePattern(const QString &path)
{
    if (QFile::moveToTrash(path))
        return {};
    return Failure{
        Texts::tr("Remove Failed"),
        Texts::tr("%1 could not be moved to the trash.").arg(QFileInfo(path).fileName())};
}

} // namespace marlowen
