#include "ui/startpage.h"

#include "base/qevsettings.h"
#include "base/version.h"
#include "files/filethumbnail.h"
#include "render/light/materials.h"
#include "ui/controllers/openablefiles.h"
#include "ui/icons.h"
#include "ui/materialgallery.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace marlowen {

namespace {

constexpr char startupKey[] = "/startwizard/startup";
constexpr char pathProperty[] = "path";
constexpr int thumbnailSide = 128;
constexpr int iconSide = thumbnailSide + 16; ///< with room between the picture and the focus ring
constexpr QSize cardSize(160, 176);
constexpr int gap = 12;
constexpr int margin = 32;
constexpr int mostMaterialColumns = 12;

/// The picture on a square, so that the names below stand in one line; at twice the resolution
/// shown, for dense screens.
QIcon squareIcon(const QImage &picture)
{
    QPixmap square(iconSide * 2, iconSide * 2);
    square.fill(Qt::transparent);
    QPainter painter(&square);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QSize fitted =
        picture.size().scaled(QSize(thumbnailSide * 2, thumbnailSide * 2), Qt::KeepAspectRatio);
    const QRect target(
        QPoint((square.width() - fitted.width()) / 2, (square.height() - fitted.height()) / 2),
        fitted);
    painter.drawImage(target, picture);
    painter.end();
    return QIcon(square);
}

/// Where the program was installed, or in the source tree that it was built in; empty when there
/// are none.
QString samplesFolder()
{
    const QDir programs(QCoreApplication::applicationDirPath());
    for (const char *place : {"../share/marlowen/samples", "../../../samples"}) {
        if (programs.exists(QLatin1String(place)))
            return QDir::cleanPath(programs.filePath(QLatin1String(place)));
    }
    return {};
}

QLabel *heading(const QString &text)
{
    auto *label = new QLabel(text);
    QFont font = label->font();
    font.setWeight(QFont::DemiBold);
    label->setFont(font);
    return label;
}

} // namespace

bool StartPage::shownAtStartup()
{
    return QevSettings().value(QLatin1String{startupKey}, true).toBool();
}

StartPage::StartPage(QWidget *parent)
    : QWidget(parent)
{
    _arrange();
}

void StartPage::_arrange()
{
    m_grid = new QGridLayout;
    m_grid->setSpacing(gap);
    m_grid->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_sampleGrid = new QGridLayout;
    m_sampleGrid->setSpacing(gap);
    m_sampleGrid->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_nothing = new QLabel(tr("Files that you open or save are listed here."));
    m_nothing->setObjectName(QStringLiteral("nothing"));
    m_startup = new QCheckBox(tr("Show on Startup"));
    m_startup->setToolTip(tr("Shows this page whenever the program starts"));
    connect(m_startup, &QCheckBox::toggled, this,
            [](bool on) { QevSettings().setValue(QLatin1String{startupKey}, on); });

    auto *content = new QWidget;
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(margin, margin, margin, 16);
    column->setSpacing(gap);
    column->addWidget(_head());
    column->addSpacing(gap);
    column->addWidget(heading(tr("Recent files")));
    column->addWidget(m_nothing);
    column->addLayout(m_grid);
    m_samplesHeading = heading(tr("Samples to try things with"));
    column->addSpacing(gap);
    column->addWidget(m_samplesHeading);
    column->addLayout(m_sampleGrid);
    _addSamples();
    column->addSpacing(gap);
    column->addWidget(_materials());
    _placeCards(m_sampleGrid, m_samples); // they get their parent
    column->addStretch(1);
    column->addWidget(m_startup);

    auto *area = new QScrollArea(this);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidget(content);
    auto *whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(area);
}

void StartPage::setBack(bool on)
{
    m_back->setVisible(on);
}

QWidget *StartPage::_head()
{
    auto *head = new QWidget;
    auto *logo = new QLabel;
    logo->setPixmap(icon(QStringLiteral("logo")).pixmap(QSize(56, 56), devicePixelRatioF()));
    auto *name = new QLabel(QLatin1String{productName});
    QFont font = name->font();
    font.setPointSizeF(font.pointSizeF() * 1.6);
    name->setFont(font);
    auto *newRelief = new QPushButton(icon(QStringLiteral("new_32")), tr("New..."));
    newRelief->setToolTip(tr("Starts an empty relief"));
    auto *open = new QPushButton(icon(QStringLiteral("open_32")), tr("Open..."));
    open->setToolTip(tr("Opens a workspace, a pattern, a mesh or a picture"));
    m_back = new QPushButton(icon(QStringLiteral("view_3d")), tr("Back"));
    m_back->setToolTip(tr("Back to the relief that is open"));
    m_back->hide();
    for (QPushButton *button : {newRelief, open, m_back}) {
        button->setIconSize(QSize(22, 22));
        button->setMinimumSize(116, 36);
    }
    connect(newRelief, &QPushButton::clicked, this, &StartPage::NewClicked);
    connect(open, &QPushButton::clicked, this, &StartPage::OpenClicked);
    connect(m_back, &QPushButton::clicked, this, &StartPage::BackClicked);

    setFocusProxy(open);

    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addWidget(newRelief);
    buttons->addWidget(open);
    buttons->addWidget(m_back);
    buttons->addStretch(1);
    auto *grid = new QGridLayout(head);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(16);
    grid->setVerticalSpacing(8);
    grid->addWidget(logo, 0, 0, 2, 1, Qt::AlignTop);
    grid->addWidget(name, 0, 1);
    grid->addLayout(buttons, 1, 1);
    grid->setColumnStretch(1, 1);
    return head;
}

QWidget *StartPage::_materials()
{
    m_materials = new QWidget;
    auto *column = new QVBoxLayout(m_materials);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(heading(tr("Choose what your reliefs look made of")));
    m_gallery = new MaterialGallery(presetMaterials(), 1);
    column->addWidget(m_gallery, 0, Qt::AlignLeft);
    connect(m_gallery, &MaterialGallery::chosen, this, [this](const QString &name) {
        emit MaterialClicked(name);
        m_materials->hide();
    });
    return m_materials;
}

void StartPage::offerMaterials(bool offer)
{
    m_materials->setVisible(offer);
}

void StartPage::showMaterial(const QString &name)
{
    m_gallery->showCurrent(name);
}

QToolButton *StartPage::_card(const QString &path, const QString &name)
{
    auto *card = new QToolButton;
    card->setObjectName(name);
    const QFileInfo file(path);
    card->setProperty(pathProperty, path);
    card->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    card->setIconSize(QSize(iconSide, iconSide));
    card->setFixedSize(cardSize);
    card->setAutoRaise(true);
    card->setFocusPolicy(Qt::StrongFocus);
    card->setText(
        card->fontMetrics().elidedText(file.fileName(), Qt::ElideMiddle, cardSize.width() - 16));
    card->setAccessibleName(file.fileName());
    card->setIcon(icon(QStringLiteral("view_3d")));
    card->setEnabled(file.exists());
    const QString shown = QDir::toNativeSeparators(path);
    card->setToolTip(file.exists() ? shown : tr("%1\nThe file is no longer there.").arg(shown));
    connect(card, &QToolButton::clicked, this, [this, path] { emit RecentClicked(path); });
    return card;
}

void StartPage::_addSamples()
{
    const QString place = samplesFolder();
    const QFileInfoList files =
        place.isEmpty() ? QFileInfoList() // the folder "" is the one the program was started in
                        : QDir(place).entryInfoList(QDir::Files, QDir::Name);
    for (const QFileInfo &file : files) {
        if (opensInWindow(file.fileName()))
            m_samples << _card(file.filePath(), QStringLiteral("sample"));
    }
    m_samplesHeading->setVisible(!m_samples.isEmpty());
}

void StartPage::refresh()
{
    const QSignalBlocker quiet(m_startup);
    m_startup->setChecked(shownAtStartup());
    m_waiting.clear();
    // Later: the sender of the present click may be among them.
    for (QToolButton *old : std::as_const(m_cards)) {
        old->hide();
        old->deleteLater();
    }
    m_cards.clear();
    for (const QString &path : QevSettings().recentFiles()) {
        if (!path.isEmpty())
            m_cards << _card(path, QStringLiteral("recentFile"));
    }
    m_nothing->setVisible(m_cards.isEmpty());
    _placeCards(m_grid, m_cards);
    _placeCards(m_sampleGrid, m_samples);
    QWidget *before = m_back;
    for (QToolButton *card : m_cards + m_samples) {
        if (card->isEnabled())
            m_waiting << card;
        setTabOrder(before, card);
        before = card;
    }
    setTabOrder(before, m_gallery);
    setTabOrder(m_gallery, m_startup);
    if (isVisible())
        QTimer::singleShot(0, this, &StartPage::_makeThumbnails);
}

void StartPage::_placeCards(QGridLayout *grid, const QList<QToolButton *> &cards)
{
    const int room = width() - 2 * margin;
    m_gallery->setColumns(qMin(MaterialGallery::columnsFor(room), mostMaterialColumns));
    const int columns = qMax(1, (room + gap) / (cardSize.width() + gap));
    for (int i = 0; i < cards.size(); ++i) {
        grid->removeWidget(cards[i]);
        grid->addWidget(cards[i], i / columns, i % columns);
    }
}

void StartPage::_makeThumbnails()
{
    if (m_waiting.isEmpty() || !isVisible())
        return;
    QToolButton *card = m_waiting.takeFirst();
    const QImage picture =
        fileThumbnail(card->property(pathProperty).toString(), thumbnailSide * 2);
    if (!picture.isNull())
        card->setIcon(squareIcon(picture));
    QTimer::singleShot(0, this, &StartPage::_makeThumbnails);
}

void StartPage::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!event->spontaneous())
        refresh();
}

void StartPage::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    _placeCards(m_grid, m_cards);
    _placeCards(m_sampleGrid, m_samples);
}

} // namespace marlowen
