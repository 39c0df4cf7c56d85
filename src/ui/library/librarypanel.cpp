#include "ui/library/librarypanel.h"

#include "ui/icons.h"
#include "ui/library/alphastore.h"
#include "ui/library/thumbnaildelegate.h"

#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
#include <QStyle>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace marlowen {

namespace {

constexpr int thumbnailSide = 64;
constexpr QSize cell(84, 92);

enum Role { PathRole = Qt::UserRole, BuiltInRole };

QStringList localFiles(const QMimeData *data)
{
    QStringList files;
    for (const QUrl &url : data->urls()) {
        if (url.isLocalFile())
            files << url.toLocalFile();
    }
    return files;
}

/// The thumbnail centred on a square, so that all entries align; at twice the shown resolution, for
/// dense screens.
QIcon framedIcon(const QImage &thumbnail)
{
    QPixmap square(thumbnailSide * 2, thumbnailSide * 2);
    square.fill(Qt::black);
    QPainter painter(&square);
    painter.drawImage((square.width() - thumbnail.width()) / 2,
                      (square.height() - thumbnail.height()) / 2, thumbnail);
    painter.end();
    QIcon framed;
    framed.addPixmap(square, QIcon::Normal);
    framed.addPixmap(square, QIcon::Selected);
    return framed;
}

} // namespace

LibraryPanel::LibraryPanel(QWidget *parent)
    : QWidget(parent)
    , m_search(new QLineEdit(this))
    , m_list(new QListWidget(this))
    , m_nothing(new QLabel(this))
{
    setAcceptDrops(true);
    m_search->setPlaceholderText(tr("Search"));
    m_search->setAccessibleName(tr("Search the library"));
    m_search->setClearButtonEnabled(true);
    m_search->addAction(icon(QStringLiteral("search")), QLineEdit::LeadingPosition);
    m_list->setAccessibleName(tr("Alpha brushes"));
    m_list->setViewMode(QListView::IconMode);
    m_list->setMovement(QListView::Static);
    m_list->setResizeMode(QListView::Adjust);
    m_list->setUniformItemSizes(true);
    m_list->setIconSize(QSize(thumbnailSide, thumbnailSide));
    m_list->setGridSize(cell);
    m_list->setMinimumWidth(cell.width() + style()->pixelMetric(QStyle::PM_ScrollBarExtent) + 4);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setItemDelegate(new ThumbnailDelegate(m_list));
    m_list->setMouseTracking(true);
    m_list->viewport()->setAutoFillBackground(false);
    m_list->setContextMenuPolicy(Qt::CustomContextMenu);
    m_nothing->setAlignment(Qt::AlignCenter);
    m_nothing->setWordWrap(true);
    m_nothing->hide();
    _arrange();
    connect(m_search, &QLineEdit::textChanged, this, &LibraryPanel::_filter);
    connect(m_list, &QListWidget::currentItemChanged, this, &LibraryPanel::_choose);
    connect(m_list, &QWidget::customContextMenuRequested, this, &LibraryPanel::_offerMenu);
    m_folder.addPath(alphaFolder());
    connect(&m_folder, &QFileSystemWatcher::directoryChanged, this, &LibraryPanel::reload);
    reload();
}

void LibraryPanel::_arrange()
{
    auto *add = new QToolButton(this);
    add->setIcon(icon(QStringLiteral("add_picture")));
    add->setToolTip(tr("Add pictures to the library, or drop them here"));
    add->setAccessibleName(tr("Add pictures"));
    add->setAutoRaise(true);
    connect(add, &QToolButton::clicked, this, &LibraryPanel::_browse);
    auto *row = new QHBoxLayout;
    row->setSpacing(4);
    row->addWidget(m_search, 1);
    row->addWidget(add);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(8, 8, 8, 8);
    column->setSpacing(8);
    column->addLayout(row);
    column->addWidget(m_nothing);
    column->addWidget(m_list, 1);
}

void LibraryPanel::reload()
{
    const QSignalBlocker quiet(m_list);
    m_waiting.clear();
    m_list->clear();
    _addItem(tr("None"), QString());
    _decorateNone();
    for (const AlphaEntry &entry : alphaEntries()) {
        _addItem(entry.name, entry.path);
        m_list->item(m_list->count() - 1)->setData(BuiltInRole, entry.builtIn);
        m_waiting << m_list->item(m_list->count() - 1);
    }
    _forgetLostChoice();
    m_list->setCurrentItem(_itemOf(m_chosen));
    _filter(m_search->text());
    QTimer::singleShot(0, this, &LibraryPanel::_makeThumbnails);
}

/// The picture of the alpha brush was taken out of the folder.
void LibraryPanel::_forgetLostChoice()
{
    if (_itemOf(m_chosen))
        return;
    m_chosen.clear();
    chooseNoAlpha();
    emit AlphaChanged();
}

void LibraryPanel::_addItem(const QString &name, const QString &path)
{
    auto *item = new QListWidgetItem(name, m_list);
    item->setData(PathRole, path);
    item->setToolTip(name);
    item->setSizeHint(cell);
}

void LibraryPanel::_decorateNone()
{
    QPixmap empty(thumbnailSide * 2, thumbnailSide * 2);
    empty.fill(Qt::transparent);
    QPainter painter(&empty);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(QPalette::PlaceholderText), 3));
    const QRectF box = QRectF(empty.rect()).adjusted(2, 2, -2, -2);
    painter.drawRect(box);
    painter.drawLine(box.bottomLeft(), box.topRight());
    painter.end();
    m_list->item(0)->setIcon(QIcon(empty));
}

void LibraryPanel::_makeThumbnails()
{
    if (m_waiting.isEmpty())
        return;
    QListWidgetItem *item = m_waiting.takeFirst();
    const QImage thumbnail = alphaThumbnail(item->data(PathRole).toString(), thumbnailSide * 2);
    if (thumbnail.isNull()) {
        item->setFlags(Qt::NoItemFlags);
        item->setToolTip(tr("%1 cannot be read as a picture.").arg(item->text()));
    } else {
        item->setIcon(framedIcon(thumbnail));
    }
    QTimer::singleShot(0, this, &LibraryPanel::_makeThumbnails);
}

void LibraryPanel::_filter(const QString &wanted)
{
    int shown = 0;
    for (int i = 0; i < m_list->count(); ++i) {
        QListWidgetItem *item = m_list->item(i);
        item->setHidden(!item->text().contains(wanted.trimmed(), Qt::CaseInsensitive));
        shown += !item->isHidden();
    }
    m_nothing->setText(tr("There is no picture named \"%1\".").arg(wanted.trimmed()));
    m_nothing->setVisible(shown == 0);
}

void LibraryPanel::_choose(QListWidgetItem *item)
{
    if (!item || item->data(PathRole).toString() == m_chosen)
        return;
    const QString path = item->data(PathRole).toString();
    if (path.isEmpty()) {
        chooseNoAlpha();
    } else if (const Outcome chosen = chooseAlpha(path); !chosen) {
        _showLater(chosen.failure());
        QTimer::singleShot(0, this, &LibraryPanel::reload);
        return;
    }
    m_chosen = path;
    emit AlphaChanged();
}

void LibraryPanel::_browse()
{
    addPictures(QFileDialog::getOpenFileNames(this, tr("Add Pictures"), QString(),
                                              tr("Pictures (*.png *.jpg *.jpeg *.bmp)")));
}

void LibraryPanel::addPictures(const QStringList &paths)
{
    QString added;
    QStringList refused;
    QString title;
    for (const QString &path : paths) {
        Result<QString> copy = addAlphaPicture(path);
        if (copy) {
            added = copy.take();
        } else {
            title = copy.failure().title;
            refused << copy.failure().sentence;
        }
    }
    if (!added.isEmpty()) {
        m_search->clear();
        reload();
        m_list->setCurrentItem(_itemOf(added));
        m_list->scrollToItem(_itemOf(added));
    }
    if (!refused.isEmpty())
        _showLater({title, refused.join(QLatin1Char('\n'))});
}

void LibraryPanel::_offerMenu(const QPoint &position)
{
    const QListWidgetItem *item = m_list->itemAt(position);
    if (!item || item->data(PathRole).toString().isEmpty() || item->data(BuiltInRole).toBool())
        return;
    const QString path = item->data(PathRole).toString();
    QMenu menu(this);
    const QAction *rename = menu.addAction(tr("Rename..."));
    const QAction *remove = menu.addAction(icon(QStringLiteral("delete")), tr("Move to Trash"));
    const QAction *wanted = menu.exec(m_list->viewport()->mapToGlobal(position));
    if (wanted == rename)
        _rename(path);
    else if (wanted == remove)
        _remove(path);
}

void LibraryPanel::_rename(const QString &path)
{
    bool accepted = false;
    const QString name =
        QInputDialog::getText(this, tr("Rename Picture"), tr("Name"), QLineEdit::Normal,
                              QFileInfo(path).completeBaseName(), &accepted);
    if (!accepted || name == QFileInfo(path).completeBaseName())
        return;
    Result<QString> renamed = renameAlphaPicture(path, name);
    if (!renamed)
        return _showLater(renamed.failure());
    // The alpha brush does not change.
    if (m_chosen == path)
        m_chosen = renamed.take();
    reload();
}

void LibraryPanel::_remove(const QString &path)
{
    if (const Outcome removed = removeAlphaPicture(path); !removed)
        _showLater(removed.failure());
    reload();
}

void LibraryPanel::_showLater(const Failure &failure)
{
    // Not from inside a drop or the list's own signals: both wait until the box is closed.
    QTimer::singleShot(
        0, this, [this, failure] { QMessageBox::critical(this, failure.title, failure.sentence); });
}

QListWidgetItem *LibraryPanel::_itemOf(const QString &path) const
{
    for (int i = 0; i < m_list->count(); ++i) {
        if (m_list->item(i)->data(PathRole).toString() == path)
            return m_list->item(i);
    }
    return nullptr;
}

void LibraryPanel::dragEnterEvent(QDragEnterEvent *event)
{
    if (!localFiles(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void LibraryPanel::dropEvent(QDropEvent *event)
{
    event->acceptProposedAction();
    addPictures(localFiles(event->mimeData()));
}

void LibraryPanel::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_list->count() > 0)
        _decorateNone();
}

} // namespace marlowen
