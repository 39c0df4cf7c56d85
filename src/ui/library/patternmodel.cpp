#include "ui/library/patternmodel.h"

#include "relief/grid/physicalsize.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QMimeData>
#include <QPainter>
#include <QUrl>

namespace marlowen {

namespace {

constexpr int mostKept = 600;         ///< thumbnails
constexpr qsizetype mostWaiting = 80; ///< older requests, scrolled out of view, are dropped
constexpr qint64 sliceMs = 8;
constexpr QRgb backdrop = qRgb(56, 58, 62); ///< that of the views: patterns are light

/// A picture in the middle of a square.
QIcon squareIcon(const QImage &picture, int side)
{
    QPixmap square(side, side);
    square.fill(backdrop);
    QPainter painter(&square);
    const QImage fitting =
        picture.isNull() || (picture.width() <= side && picture.height() <= side)
            ? picture
            : picture.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    painter.drawImage((side - fitting.width()) / 2, (side - fitting.height()) / 2, fitting);
    painter.end();
    QIcon icon;
    icon.addPixmap(square, QIcon::Normal);
    icon.addPixmap(square, QIcon::Selected);
    return icon;
}

/// A file that was written again gets a new thumbnail.
QString keyOf(const PatternEntry &entry)
{
    return QStringLiteral("%1 %2").arg(entry.changed).arg(entry.path);
}

QString describe(const PatternInfo &info)
{
    QStringList lines;
    if (!info.attributes.author.isEmpty())
        lines << info.attributes.author;
    lines << PatternModel::tr("%1 × %2 cells, %3 × %4 in.")
                 .arg(info.width)
                 .arg(info.height)
                 .arg(info.width / cellsPerInch, 0, 'f', 2)
                 .arg(info.height / cellsPerInch, 0, 'f', 2);
    return lines.join(QLatin1Char('\n'));
}

} // namespace

PatternModel::PatternModel(int side, QObject *parent)
    : QAbstractListModel(parent)
    , m_side(side)
    , m_empty(squareIcon({}, side))
    , m_thumbnails(mostKept)
{
    m_reader.setInterval(0);
    connect(&m_reader, &QTimer::timeout, this, &PatternModel::_readWaiting);
}

void PatternModel::show(const QString &folder, const QString &wanted)
{
    beginResetModel();
    m_entries = patternEntries(folder);
    erase_if(m_entries, [&](const PatternEntry &entry) {
        return !entry.name.contains(wanted, Qt::CaseInsensitive);
    });
    m_waiting.clear();
    endResetModel();
}

int PatternModel::rowOf(const QString &path) const
{
    for (qsizetype row = 0; row < m_entries.size(); ++row) {
        if (m_entries[row].path == path)
            return static_cast<int>(row);
    }
    return -1;
}

int PatternModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_entries.size());
}

QVariant PatternModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_entries.size())
        return {};
    const PatternEntry &entry = m_entries[index.row()];
    const Thumbnail *thumbnail = nullptr;
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return entry.name;
    case Qt::DecorationRole:
        thumbnail = _thumbnail(entry);
        return thumbnail ? thumbnail->icon : m_empty;
    case Qt::ToolTipRole:
        thumbnail = _thumbnail(entry);
        return thumbnail ? entry.name + QLatin1Char('\n') + thumbnail->text : entry.name;
    case PathRole:
        return entry.path;
    case BuiltInRole:
        return entry.builtIn;
    default:
        return {};
    }
}

bool PatternModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    const QString name = value.toString().trimmed();
    if (role != Qt::EditRole || name == data(index, Qt::EditRole).toString())
        return false;
    emit renameWanted(data(index, PathRole).toString(), name);
    return false;
}

Qt::ItemFlags PatternModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled;
    if (!data(index, BuiltInRole).toBool())
        flags |= Qt::ItemIsEditable;
    return flags;
}

QMimeData *PatternModel::mimeData(const QModelIndexList &indexes) const
{
    auto *files = new QMimeData;
    QList<QUrl> urls;
    for (const QModelIndex &index : indexes)
        urls << QUrl::fromLocalFile(data(index, PathRole).toString());
    files->setUrls(urls);
    return files;
}

QStringList PatternModel::mimeTypes() const
{
    return {QStringLiteral("text/uri-list")};
}

/// Null until it is read.
const PatternModel::Thumbnail *PatternModel::_thumbnail(const PatternEntry &entry) const
{
    const Thumbnail *known = m_thumbnails.object(keyOf(entry));
    if (known)
        return known;
    m_waiting.removeOne(entry);
    m_waiting.append(entry);
    if (m_waiting.size() > mostWaiting)
        m_waiting.removeFirst();
    m_reader.start();
    return nullptr;
}

PatternModel::Thumbnail *PatternModel::_read(const QString &path) const
{
    const Result<PatternInfo> info = readPatternInfo(path);
    if (!info)
        return new Thumbnail{m_empty, tr("%1 cannot be read.").arg(QFileInfo(path).fileName())};
    return new Thumbnail{squareIcon(info.value().thumbnail, m_side), describe(info.value())};
}

void PatternModel::_readWaiting()
{
    QElapsedTimer time;
    time.start();
    while (!m_waiting.isEmpty() && time.elapsed() < sliceMs) {
        const PatternEntry entry = m_waiting.takeLast();
        m_thumbnails.insert(keyOf(entry), _read(entry.path));
        if (const int row = rowOf(entry.path); row >= 0)
            emit dataChanged(index(row), index(row), {Qt::DecorationRole, Qt::ToolTipRole});
    }
    if (m_waiting.isEmpty())
        m_reader.stop();
}

} // namespace marlowen
