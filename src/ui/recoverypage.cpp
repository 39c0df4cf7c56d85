#include "ui/recoverypage.h"

#include "ui/icons.h"

#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace marlowen {

namespace {

constexpr int margin = 32;
constexpr int gap = 12;
constexpr int listWidth = 640;

QLabel *label(const QString &text, double scale, bool bold)
{
    auto *made = new QLabel(text);
    QFont font = made->font();
    font.setPointSizeF(font.pointSizeF() * scale);
    if (bold)
        font.setWeight(QFont::DemiBold);
    made->setFont(font);
    return made;
}

QString nameOf(const FoundWork &work)
{
    const QString name = QFileInfo(work.file).fileName();
    return name.isEmpty() ? RecoveryPage::tr("New relief") : name;
}

QString momentOf(const QDateTime &time)
{
    const QLocale locale;
    const QString clock = locale.toString(time, QStringLiteral("HH:mm"));
    const QString day = time.date() == QDate::currentDate()
                            ? RecoveryPage::tr("today")
                            : locale.toString(time.date(), QStringLiteral("d MMM yyyy"));
    return day + QLatin1Char(' ') + clock;
}

QString detailsOf(const FoundWork &work)
{
    const QString steps =
        work.steps == 1 ? RecoveryPage::tr("1 step") : RecoveryPage::tr("%1 steps").arg(work.steps);
    return RecoveryPage::tr("%1 not saved, last changed %2").arg(steps, momentOf(work.time));
}

} // namespace

RecoveryPage::RecoveryPage(QWidget *parent)
    : QWidget(parent)
{
    auto *content = new QWidget;
    content->setMaximumWidth(listWidth + 2 * margin);
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(margin, margin, margin, 16);
    column->setSpacing(gap);
    column->addWidget(label(tr("Unsaved work"), 1.6, false));
    auto *explanation = new QLabel(
        tr("Marlowen ended before this was saved. Restore brings the relief back with its "
           "steps; what is not restored stays in this list."));
    explanation->setWordWrap(true);
    column->addWidget(explanation);
    m_rows = new QVBoxLayout;
    m_rows->setSpacing(gap);
    column->addLayout(m_rows);
    auto *later = new QPushButton(tr("Later"));
    later->setMinimumSize(116, 36);
    later->setToolTip(tr("Leaves everything as it is; the File page leads back to this list"));
    connect(later, &QPushButton::clicked, this, &RecoveryPage::laterClicked);
    column->addWidget(later, 0, Qt::AlignLeft);
    column->addStretch(1);

    auto *area = new QScrollArea(this);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidget(content);
    auto *whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(area);
}

void RecoveryPage::showWork(const QList<FoundWork> &work)
{
    m_pictures.clear();
    while (QLayoutItem *item = m_rows->takeAt(0)) {
        // Later: the sender of the present click may be among them.
        item->widget()->hide();
        item->widget()->deleteLater();
        delete item;
    }
    for (const FoundWork &each : work)
        m_rows->addWidget(_row(each));
}

QWidget *RecoveryPage::_row(const FoundWork &work)
{
    auto *row = new QWidget;
    auto *picture = new QLabel;
    picture->setFixedSize(thumbnailSide, thumbnailSide);
    picture->setAlignment(Qt::AlignCenter);
    picture->setPixmap(icon(QStringLiteral("view_3d")).pixmap(QSize(48, 48), devicePixelRatioF()));
    m_pictures.insert(work.folder, picture);
    QLabel *name = label(nameOf(work), 1.1, true);
    name->setToolTip(QDir::toNativeSeparators(work.file));
    auto *details = new QLabel(detailsOf(work));
    details->setWordWrap(true);
    auto *restore = new QPushButton(tr("Restore"));
    restore->setToolTip(tr("Brings the relief back as it was after the last step"));
    auto *discard = new QPushButton(tr("Discard"));
    discard->setToolTip(tr("Deletes this work for good"));
    for (QPushButton *button : {restore, discard}) {
        button->setMinimumSize(96, 32);
        button->setAccessibleName(button->text() + QLatin1Char(' ') + nameOf(work));
    }
    const QString folder = work.folder;
    connect(restore, &QPushButton::clicked, this, [this, folder] { emit restoreClicked(folder); });
    connect(discard, &QPushButton::clicked, this, [this, folder] { emit discardClicked(folder); });

    auto *texts = new QVBoxLayout;
    texts->setSpacing(4);
    texts->addStretch(1);
    texts->addWidget(name);
    texts->addWidget(details);
    texts->addStretch(1);
    auto *line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(gap);
    line->addWidget(picture);
    line->addLayout(texts, 1);
    line->addWidget(restore);
    line->addWidget(discard);
    return row;
}

void RecoveryPage::setThumbnail(const QString &folder, const QImage &image)
{
    QLabel *picture = m_pictures.value(folder);
    if (!picture || image.isNull())
        return;
    QPixmap pixmap = QPixmap::fromImage(image);
    const qreal dense = devicePixelRatioF();
    pixmap = pixmap.scaled(QSize(thumbnailSide, thumbnailSide) * dense, Qt::KeepAspectRatio,
                           Qt::SmoothTransformation);
    pixmap.setDevicePixelRatio(dense);
    picture->setPixmap(pixmap);
}

} // namespace marlowen
