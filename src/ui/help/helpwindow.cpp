#include "ui/help/helpwindow.h"

#include "ui/help/keylist.h"

#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QSplitter>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextDocument>
#include <QVBoxLayout>

// The macro works outside of namespaces only.
static void loadHelp()
{
    Q_INIT_RESOURCE(help);
}

namespace marlowen {

namespace {

constexpr int pictureWidth = 560;
constexpr QSize windowSize(940, 700);

/// Pictures of the manual no wider than a page.
class ManualBrowser : public QTextBrowser
{
protected:
    QVariant loadResource(int type, const QUrl &name) override
    {
        if (type != QTextDocument::ImageResource)
            return QTextBrowser::loadResource(type, name);
        // Scaling a picture with a palette would dither it.
        const QImage picture =
            QImage(QStringLiteral(":/help/") + name.path()).convertToFormat(QImage::Format_RGB32);
        if (picture.width() <= pictureWidth)
            return picture;
        // As many pixels as a dense screen can show.
        const int pixels = qMin(picture.width(), qRound(pictureWidth * devicePixelRatioF()));
        QImage shown = picture.scaledToWidth(pixels, Qt::SmoothTransformation);
        shown.setDevicePixelRatio(double(pixels) / pictureWidth);
        return shown;
    }
};

QString manualText(const CommandSet &commands)
{
    loadHelp();
    QFile file(QStringLiteral(":/help/manual.md"));
    const QString manual =
        file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    return manual + QLatin1Char('\n') + keyChapter(commands);
}

/// Room around headings and table cells, which Markdown does not set.
void setUpLook(QTextDocument &document)
{
    document.setDocumentMargin(20);
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        QTextBlockFormat format = block.blockFormat();
        if (format.headingLevel() == 0)
            continue;
        format.setTopMargin(format.headingLevel() == 1 ? 0 : 18);
        format.setBottomMargin(8);
        QTextCursor(block).setBlockFormat(format);
    }
    for (QTextFrame *frame : document.rootFrame()->childFrames()) {
        auto *table = qobject_cast<QTextTable *>(frame);
        if (!table)
            continue;
        QTextTableFormat format = table->format();
        format.setCellPadding(5);
        format.setCellSpacing(0);
        format.setBorder(0.5);
        format.setBorderCollapse(true);
        table->setFormat(format);
    }
}

} // namespace

HelpWindow::HelpWindow(const CommandSet &commands, QWidget *parent)
    : QDialog(parent)
    , m_field(new QLineEdit)
    , m_count(new QLabel)
    , m_chapters(new QListWidget)
    , m_text(new ManualBrowser)
{
    setWindowTitle(tr("Manual"));
    // Room for the title bar on small screens.
    resize(windowSize.boundedTo(screen()->availableSize() - QSize(16, 56)));
    m_field->setPlaceholderText(tr("Search the manual"));
    m_field->setAccessibleName(m_field->placeholderText());
    m_field->setClearButtonEnabled(true);
    m_chapters->setAccessibleName(tr("Chapters"));
    m_chapters->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_chapters->setWordWrap(true);
    m_chapters->setSpacing(3);
    m_text->setAccessibleName(tr("Manual"));
    m_text->setOpenExternalLinks(true);
    m_text->setMarkdown(manualText(commands));
    setUpLook(*m_text->document());
    _fillChapters();
    auto *next = new QPushButton(tr("Next"));
    next->setToolTip(tr("Goes to the next place that was found (Enter)"));
    next->setAutoDefault(false);

    auto *line = new QHBoxLayout;
    line->addWidget(m_field, 1);
    line->addWidget(m_count);
    line->addWidget(next);
    auto *parts = new QSplitter;
    parts->addWidget(m_chapters);
    parts->addWidget(m_text);
    parts->setSizes({220, windowSize.width() - 220});
    parts->setStretchFactor(1, 1);
    auto *column = new QVBoxLayout(this);
    column->addLayout(line);
    column->addWidget(parts, 1);

    connect(m_chapters, &QListWidget::currentRowChanged, this, &HelpWindow::_goToChapter);
    connect(m_field, &QLineEdit::textChanged, this, [this] { _search(true); });
    connect(m_field, &QLineEdit::returnPressed, this, [this] { _search(false); });
    connect(next, &QPushButton::clicked, this, [this] { _search(false); });
    auto *find = new QShortcut(QKeySequence::Find, this);
    connect(find, &QShortcut::activated, m_field, qOverload<>(&QWidget::setFocus));
    m_field->setFocus();
}

void HelpWindow::_fillChapters()
{
    const QTextDocument &document = *m_text->document();
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() != 2)
            continue;
        auto *chapter = new QListWidgetItem(block.text(), m_chapters);
        chapter->setData(Qt::UserRole, block.position());
    }
}

void HelpWindow::_goToChapter(int row)
{
    const QListWidgetItem *chapter = m_chapters->item(row);
    if (!chapter)
        return;
    // From the end, so that the heading scrolls to the top.
    m_text->moveCursor(QTextCursor::End);
    QTextCursor cursor = m_text->textCursor();
    cursor.setPosition(chapter->data(Qt::UserRole).toInt());
    m_text->setTextCursor(cursor);
}

void HelpWindow::_search(bool anew)
{
    if (anew)
        _markAll();
    const QString wanted = m_field->text();
    if (wanted.isEmpty())
        return;
    if (anew) {
        QTextCursor cursor = m_text->textCursor();
        cursor.setPosition(cursor.selectionStart());
        m_text->setTextCursor(cursor);
    }
    if (m_text->find(wanted))
        return;
    // Once around.
    m_text->moveCursor(QTextCursor::Start);
    m_text->find(wanted);
}

void HelpWindow::_markAll()
{
    QList<QTextEdit::ExtraSelection> marks;
    QTextCursor place(m_text->document());
    const QString wanted = m_field->text();
    while (!wanted.isEmpty()) {
        place = m_text->document()->find(wanted, place);
        if (place.isNull())
            break;
        QTextEdit::ExtraSelection mark;
        mark.cursor = place;
        QColor shade = palette().color(QPalette::Highlight);
        shade.setAlphaF(0.35F);
        mark.format.setBackground(shade);
        marks.append(mark);
    }
    m_text->setExtraSelections(marks);
    m_count->setText(wanted.isEmpty() ? QString() : tr("%1 found").arg(marks.size()));
}

} // namespace marlowen
