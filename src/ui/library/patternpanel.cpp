#include "ui/library/patternpanel.h"

#include "ui/icons.h"
#include "ui/library/patternmodel.h"
#include "ui/library/patternstore.h"
#include "ui/library/thumbnaildelegate.h"

#include <QComboBox>
#include <QDir>
#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QResizeEvent>
#include <QShortcut>
#include <QSignalBlocker>
#include <QToolButton>
#include <QVBoxLayout>

namespace marlowen {

namespace {

constexpr int thumbnailSide = 72;
constexpr QSize cell(91, 102);
constexpr int changedMs = 250;

/// Pattern files of a drag from another program.
QStringList patternFiles(const QDropEvent &event)
{
    QStringList files;
    for (const QUrl &url : event.mimeData()->urls()) {
        if (url.isLocalFile() &&
            url.fileName().endsWith(QLatin1String(patternEnding), Qt::CaseInsensitive))
            files << url.toLocalFile();
    }
    return files;
}

QToolButton *makeButton(const QString &name, const QString &text, const QString &hint)
{
    auto *button = new QToolButton;
    button->setIcon(icon(name));
    button->setToolTip(hint);
    button->setAccessibleName(text);
    button->setAutoRaise(true);
    return button;
}

} // namespace

PatternPanel::PatternPanel(QWidget *parent)
    : QWidget(parent)
    , m_model(new PatternModel(thumbnailSide * 2, this))
    , m_folders(new QComboBox)
    , m_search(new QLineEdit)
    , m_list(new QListView)
    , m_nothing(new QLabel)
    , m_add(makeButton(QStringLiteral("add_pattern"), tr("Add to library"), {}))
    , m_place(makeButton(QStringLiteral("place_pattern"), tr("Place"), {}))
{
    setAcceptDrops(true);
    m_folders->setObjectName(QStringLiteral("patternFolders"));
    m_folders->setAccessibleName(tr("Folder"));
    m_folders->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_search->setObjectName(QStringLiteral("patternSearch"));
    m_search->setPlaceholderText(tr("Search"));
    m_search->setAccessibleName(tr("Search the patterns"));
    m_search->setClearButtonEnabled(true);
    m_search->addAction(icon(QStringLiteral("search")), QLineEdit::LeadingPosition);
    m_add->setObjectName(QStringLiteral("addPattern"));
    m_place->setObjectName(QStringLiteral("placePattern"));
    m_nothing->setAlignment(Qt::AlignCenter);
    m_nothing->setWordWrap(true);
    _makeList();
    _arrange();
    setReasons(tr("Open or make a relief first."), tr("Open or make a relief first."));
    m_changed.setSingleShot(true);
    m_changed.setInterval(changedMs);
    connect(m_folders, &QComboBox::activated, this, &PatternPanel::_showEntries);
    connect(m_search, &QLineEdit::textChanged, this, &PatternPanel::_showEntries);
    connect(m_add, &QToolButton::clicked, this, &PatternPanel::addWanted);
    connect(m_place, &QToolButton::clicked, this, [this] { _activate(m_list->currentIndex()); });
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, &m_changed,
            qOverload<>(&QTimer::start));
    connect(&m_changed, &QTimer::timeout, this, [this] {
        // A name that is being edited would be lost.
        if (m_list->viewport()->findChild<QLineEdit *>())
            m_changed.start();
        else
            reload();
    });
    reload();
}

void PatternPanel::_makeList()
{
    m_list->setModel(m_model);
    m_list->setObjectName(QStringLiteral("patterns"));
    m_list->setAccessibleName(tr("Patterns"));
    m_list->setViewMode(QListView::IconMode);
    m_list->setMovement(QListView::Static);
    m_list->setResizeMode(QListView::Adjust);
    m_list->setUniformItemSizes(true);
    m_list->setIconSize(QSize(thumbnailSide, thumbnailSide));
    m_list->setGridSize(cell);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setItemDelegate(new ThumbnailDelegate(m_list));
    m_list->setMouseTracking(true);
    m_list->viewport()->setAutoFillBackground(false);
    m_list->setDragEnabled(true);
    m_list->setDragDropMode(QAbstractItemView::DragOnly);
    m_list->setEditTriggers(QAbstractItemView::EditKeyPressed);
    m_list->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_list, &QListView::activated, this, &PatternPanel::_activate);
    connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &PatternPanel::_showPlacing);
    connect(m_list, &QWidget::customContextMenuRequested, this, &PatternPanel::_offer);
    connect(m_model, &PatternModel::renameWanted, this, &PatternPanel::_rename);
    auto *remove = new QShortcut(QKeySequence::Delete, m_list);
    remove->setContext(Qt::WidgetShortcut);
    connect(remove, &QShortcut::activated, this, [this] {
        if (m_model->flags(m_list->currentIndex()) & Qt::ItemIsEditable)
            _remove(_currentPath());
    });
}

void PatternPanel::_arrange()
{
    auto *folder = makeButton(QStringLiteral("add_folder"), tr("New folder"),
                              tr("Makes a folder for patterns of your own"));
    connect(folder, &QToolButton::clicked, this, &PatternPanel::_newFolder);
    auto *folders = new QHBoxLayout;
    folders->setSpacing(4);
    folders->addWidget(m_folders, 1);
    folders->addWidget(folder);
    auto *search = new QHBoxLayout;
    search->setSpacing(4);
    search->addWidget(m_search, 1);
    search->addWidget(m_add);
    search->addWidget(m_place);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(8, 8, 8, 8);
    column->setSpacing(8);
    column->addLayout(folders);
    column->addLayout(search);
    column->addWidget(m_nothing);
    column->addWidget(m_list, 1);
}

void PatternPanel::reload()
{
    const QString chosen = _currentPath();
    _showFolders();
    _showEntries();
    if (const int row = m_model->rowOf(chosen); row >= 0)
        m_list->setCurrentIndex(m_model->index(row));
}

void PatternPanel::_showFolders()
{
    const QSignalBlocker quiet(m_folders);
    const QString shown = m_folders->currentData().toString();
    m_folders->clear();
    m_folders->addItem(tr("All"), QString());
    QStringList paths;
    for (const PatternFolder &folder : patternFolders()) {
        m_folders->addItem(folder.name, folder.path);
        if (!folder.builtIn)
            paths << folder.path;
    }
    m_folders->setCurrentIndex(std::max(0, m_folders->findData(shown)));
    if (const QStringList watched = m_watcher.directories(); !watched.isEmpty())
        m_watcher.removePaths(watched);
    m_watcher.addPaths(paths);
}

void PatternPanel::_showEntries()
{
    const QString wanted = m_search->text().trimmed();
    m_model->show(m_folders->currentData().toString(), wanted);
    const bool empty = m_model->rowCount() == 0;
    m_nothing->setText(wanted.isEmpty() ? tr("There are no patterns here yet.")
                                        : tr("There is no pattern named \"%1\".").arg(wanted));
    m_nothing->setVisible(empty);
    _showPlacing();
}

QString PatternPanel::_currentPath() const
{
    return m_list->currentIndex().data(PatternModel::PathRole).toString();
}

QString PatternPanel::targetFolder() const
{
    const QString shown = m_folders->currentData().toString();
    for (const PatternFolder &folder : patternFolders()) {
        if (!folder.builtIn && folder.path == shown)
            return shown;
    }
    return patternFolder();
}

void PatternPanel::showPattern(const QString &path)
{
    m_search->clear();
    reload();
    int row = m_model->rowOf(path);
    if (row < 0) {
        m_folders->setCurrentIndex(0);
        _showEntries();
        row = m_model->rowOf(path);
    }
    if (row < 0)
        return;
    m_list->setCurrentIndex(m_model->index(row));
    m_list->scrollTo(m_model->index(row));
    // It can be renamed or placed at once.
    m_list->setFocus();
}

void PatternPanel::setReasons(const QString &againstAdding, const QString &againstPlacing)
{
    m_add->setEnabled(againstAdding.isEmpty());
    if (!againstAdding.isEmpty())
        m_add->setToolTip(againstAdding);
    m_reasonAgainstPlacing = againstPlacing;
    _showPlacing();
}

/// Whether the button "Place" can act.
void PatternPanel::_showPlacing()
{
    const bool chosen = !_currentPath().isEmpty();
    m_place->setEnabled(m_reasonAgainstPlacing.isEmpty() && chosen);
    if (!m_reasonAgainstPlacing.isEmpty())
        m_place->setToolTip(m_reasonAgainstPlacing);
    else
        m_place->setToolTip(chosen ? tr("Places the chosen pattern on the relief (double-click)")
                                   : tr("Choose a pattern first."));
}

void PatternPanel::setSelectionPresent(bool present)
{
    if (m_add->isEnabled())
        m_add->setToolTip(present ? tr("Adds the selected part of the relief to the library")
                                  : tr("Adds the relief to the library"));
}

/// Places the pattern where that is possible, and opens it elsewhere.
void PatternPanel::_activate(const QModelIndex &index)
{
    const QString path = index.data(PatternModel::PathRole).toString();
    if (path.isEmpty())
        return;
    if (m_reasonAgainstPlacing.isEmpty())
        emit placeWanted(path);
    else
        emit openWanted(path);
}

void PatternPanel::_offer(const QPoint &position)
{
    const QModelIndex index = m_list->indexAt(position);
    QMenu menu(this);
    if (index.isValid())
        _fill(menu, index);
    else
        connect(menu.addAction(icon(QStringLiteral("add_folder")), tr("New Folder")),
                &QAction::triggered, this, &PatternPanel::_newFolder);
    menu.exec(m_list->viewport()->mapToGlobal(position));
}

void PatternPanel::_fill(QMenu &menu, const QModelIndex &index)
{
    const QString path = index.data(PatternModel::PathRole).toString();
    const bool own = m_model->flags(index) & Qt::ItemIsEditable;
    QAction *place = menu.addAction(icon(QStringLiteral("place_pattern")), tr("Place on Relief"));
    place->setEnabled(m_reasonAgainstPlacing.isEmpty());
    connect(place, &QAction::triggered, this, [this, path] { emit placeWanted(path); });
    connect(menu.addAction(icon(QStringLiteral("open_32")), tr("Open")), &QAction::triggered, this,
            [this, path] { emit openWanted(path); });
    menu.addSeparator();
    QAction *rename = menu.addAction(tr("Rename"));
    rename->setEnabled(own);
    const QPersistentModelIndex edited(index);
    connect(rename, &QAction::triggered, this, [this, edited] { m_list->edit(edited); });
    QAction *remove = menu.addAction(icon(QStringLiteral("delete")), tr("Move to Trash"));
    remove->setEnabled(own);
    connect(remove, &QAction::triggered, this, [this, path] { _remove(path); });
}

void PatternPanel::_rename(const QString &path, const QString &name)
{
    // The editor is still open.
    QTimer::singleShot(0, this, [this, path, name] {
        Result<QString> renamed = renamePattern(path, name);
        if (renamed)
            showPattern(renamed.value());
        else
            _showLater(renamed.failure());
    });
}

void PatternPanel::_remove(const QString &path)
{
    if (const Outcome removed = removePattern(path); !removed)
        _showLater(removed.failure());
    reload();
}

void PatternPanel::_newFolder()
{
    const QString name =
        QInputDialog::getText(this, tr("New Folder"), tr("Name of the folder")).trimmed();
    if (name.isEmpty())
        return;
    const Result<QString> made = addPatternFolder(name);
    if (!made)
        return _showLater(made.failure());
    _showFolders();
    m_folders->setCurrentIndex(std::max(0, m_folders->findData(made.value())));
    _showEntries();
}

void PatternPanel::addFiles(const QStringList &paths)
{
    QString added;
    QStringList refused;
    QString title;
    for (const QString &path : paths) {
        Result<QString> copy = addPatternFile(path, targetFolder());
        if (copy) {
            added = copy.take();
        } else {
            title = copy.failure().title;
            refused << copy.failure().sentence;
        }
    }
    if (!added.isEmpty())
        showPattern(added);
    if (!refused.isEmpty())
        _showLater({title, refused.join(QLatin1Char('\n'))});
}

void PatternPanel::_showLater(const Failure &failure)
{
    // Not from inside a drop or the list's own signals: both wait until the box is closed.
    QTimer::singleShot(
        0, this, [this, failure] { QMessageBox::critical(this, failure.title, failure.sentence); });
}

/// A list that becomes shorter keeps the chosen pattern in view.
void PatternPanel::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (event->size().height() < event->oldSize().height())
        QTimer::singleShot(0, this, [this] {
            if (const QModelIndex chosen = m_list->currentIndex(); chosen.isValid())
                m_list->scrollTo(chosen);
        });
}

void PatternPanel::dragEnterEvent(QDragEnterEvent *event)
{
    // A pattern dropped where it came from stays there, rather than being opened by the window.
    if (!patternFiles(*event).isEmpty())
        event->acceptProposedAction();
}

void PatternPanel::dropEvent(QDropEvent *event)
{
    event->acceptProposedAction();
    if (event->source() != m_list)
        addFiles(patternFiles(*event));
}

} // namespace marlowen
