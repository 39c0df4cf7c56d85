#include "ui/pages/orientpage.h"

#include "base/numbertext.h"
#include "relief/grid/physicalsize.h"
#include "ui/commandset.h"
#include "ui/icons.h"
#include "ui/ribbon/ribbongroup.h"
#include "ui/ribbon/ribbonpage.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>

namespace marlowen {

namespace {

constexpr char lockCommand[] = "modelLock";

/// A turn, its command and the axis that its tool tip names.
struct TurnCommand
{
    ModelTurn turn;
    CommandRow row;
    const char *axis;
};
constexpr TurnCommand turnCommands[] = {
    {ModelTurn::Left,
     {"rotateLeft", QT_TRANSLATE_NOOP("Commands", "Rotate Left"), "rotate_left", "", "", ""},
     "Y"},
    {ModelTurn::Right,
     {"rotateRight", QT_TRANSLATE_NOOP("Commands", "Rotate Right"), "rotate_right", "", "", ""},
     "Y"},
    {ModelTurn::Up,
     {"rotateUp", QT_TRANSLATE_NOOP("Commands", "Rotate Up"), "rotate_up", "", "", ""},
     "X"},
    {ModelTurn::Down,
     {"rotateDown", QT_TRANSLATE_NOOP("Commands", "Rotate Down"), "rotate_down", "", "", ""},
     "X"},
    {ModelTurn::CounterClockwise,
     {"spinLeft", QT_TRANSLATE_NOOP("Commands", "Spin Left"), "rotate_ccw", "", "", ""},
     "Z"},
    {ModelTurn::Clockwise,
     {"spinRight", QT_TRANSLATE_NOOP("Commands", "Spin Right"), "rotate_cw", "", "", ""},
     "Z"},
    {ModelTurn::Flip, {"flipModel", QT_TRANSLATE_NOOP("Commands", "Flip"), "flip", "", "", ""}, ""},
};

constexpr CommandRow commandRows[] = {
    {"resetModel", QT_TRANSLATE_NOOP("Commands", "Reset"), "reset_axes", "", "", ""},
    {"invertNormals", QT_TRANSLATE_NOOP("Commands", "Invert Normals"), "flip_normals",
     QT_TRANSLATE_NOOP("Commands", "Swaps the front and back sides of the facets. Only "
                                   "the preview changes."),
     "", "", true},
    {"cancelModel", QT_TRANSLATE_NOOP("Commands", "Cancel"), "close",
     QT_TRANSLATE_NOOP("Commands", "Puts the model away (Esc); the relief stays as it was."), "",
     ""},
};

constexpr char green[] = "* { background-color: green; selection-background-color: green; "
                         "selection-color: black; border: none }";
constexpr char red[] = "* { background-color: red; selection-background-color: red; "
                       "selection-color: black; border: none }";

const QString widestInches = QStringLiteral("888.88 × 888.88 in.");

QLabel *addReadout(RibbonGroup &group, const QString &label, const char *name)
{
    auto *readout = new QLabel;
    readout->setObjectName(QLatin1String(name));
    group.addRow(readout, label);
    return readout;
}

} // namespace

void OrientPage::addCommands(CommandSet &commands)
{
    for (const TurnCommand &command : turnCommands) {
        const QString tip = *command.axis ? tr("Rotate the model 90 degrees about the %1 axis")
                                                .arg(QLatin1String(command.axis))
                                          : tr("Flip to other side of the model");
        commands.add(command.row)->setToolTip(tip);
    }
    commands.add(commandRows);
    commands["resetModel"]->setToolTip(tr("Reset the rotation of the axes"));
    SizeRows::addLockCommand(commands, lockCommand);
}

OrientPage::OrientPage(RibbonPage &page, CommandSet &commands, QObject *parent)
    : QObject(parent)
    , m_commands(commands)
{
    _addTurns(page);
    _addSizes(page, commands);
    _addAccept(page);
    connect(commands["invertNormals"], &QAction::triggered, this, &OrientPage::invertChanged);
}

void OrientPage::_addTurns(RibbonPage &page)
{
    RibbonGroup *group = page.addGroup(tr("Orient Model"));
    for (const TurnCommand &command : turnCommands) {
        QAction *action = m_commands[command.row.id];
        connect(action, &QAction::triggered, this,
                [this, &command] { emit turnWanted(command.turn); });
    }
    connect(m_commands["resetModel"], &QAction::triggered, this, &OrientPage::resetWanted);
    for (const char *id : {"rotateLeft", "rotateRight", "flipModel", "rotateUp", "rotateDown",
                           "resetModel", "spinLeft", "spinRight"})
        group->addSmallButton(m_commands[id]);
}

void OrientPage::_addSizes(RibbonPage &page, CommandSet &commands)
{
    RibbonGroup *group = m_sizes = page.addGroup(sizeGroupTitle());
    group->setIcon(icon(QStringLiteral("scale")));
    m_unit = addUnitChoice(*group, QStringLiteral("modelUnits"));
    m_unit->setToolTip(tr("The unit of the model's numbers"));
    group->addSmallButton(commands["invertNormals"]);
    m_relative = new QCheckBox(tr("Relative indices"));
    m_relative->setObjectName(QStringLiteral("relativeIndices"));
    m_relative->setAccessibleName(tr("Read relative indices as other programs do"));
    m_relative->setToolTip(tr("Read relative indices as other programs do: reads the file again "
                              "and takes the index -1 for the last vertex before the face"));
    group->addRow(m_relative);
    connect(m_relative, &QCheckBox::clicked, this, &OrientPage::relativeIndicesChanged);
    group->breakColumn();
    m_rows = new SizeRows({*group, commands, lockCommand, QStringLiteral("model")}, this);
    connect(m_unit, &QComboBox::activated, this, &OrientPage::unitChosen);
    connect(m_rows, &SizeRows::sizesWanted, this, &OrientPage::sizesWanted);
}

void OrientPage::_addAccept(RibbonPage &page)
{
    RibbonGroup *group = page.addGroup(tr("Relief"));
    group->setIcon(icon(QStringLiteral("accept")));
    m_cells = addReadout(*group, tr("Cells"), "modelCells");
    m_inches = addReadout(*group, tr("Size"), "modelInches");
    m_memory = addReadout(*group, tr("Memory"), "modelMemory");
    // The group does not follow a text that grows.
    m_inches->setMinimumWidth(m_inches->fontMetrics().horizontalAdvance(widestInches));
    // The style sheet of the button would colour its tool tip too; its frame has that instead.
    auto *frame = new QWidget;
    auto *layout = new QHBoxLayout(frame);
    layout->setContentsMargins(4, 0, 4, 0);
    m_accept = new QPushButton;
    m_accept->setObjectName(QStringLiteral("modelAccept"));
    QFont font = m_accept->font();
    font.setWeight(QFont::DemiBold);
    m_accept->setFont(font);
    m_accept->setFixedSize(84, RibbonGroup::contentHeight(m_accept) - 4);
    layout->addWidget(m_accept);
    frame->setFocusProxy(m_accept);
    group->addTall(frame);
    group->addLargeButton(m_commands["cancelModel"]);
    connect(m_accept, &QPushButton::clicked, this, &OrientPage::acceptClicked);
    connect(m_commands["cancelModel"], &QAction::triggered, this, &OrientPage::cancelClicked);
}

void OrientPage::show(const ModelReadout &readout)
{
    m_unit->setCurrentIndex(static_cast<int>(readout.sizes.unit));
    m_rows->show(readout.sizes);
    m_commands["invertNormals"]->setChecked(readout.inverted);
    m_relative->setChecked(readout.relativeIndices);
    m_relative->setVisible(readout.hasIndices);
    m_sizes->updateGeometry();
    _showAccept(readout);
}

void OrientPage::_showAccept(const ModelReadout &readout)
{
    if (readout.tooBig) {
        for (QLabel *unknown : {m_cells, m_inches, m_memory})
            unknown->setText(QStringLiteral("–"));
    } else {
        m_cells->setText(QStringLiteral("%1 × %2").arg(readout.columns).arg(readout.rows));
        m_inches->setText(QStringLiteral("%1 × %2 %3")
                              .arg(numberText(readout.columns / cellsPerInch, 2),
                                   numberText(readout.rows / cellsPerInch, 2),
                                   unitLabel(lengthUnits[0])));
        m_memory->setText(
            tr("%1 MB").arg(numberText(readout.megabytes, readout.megabytes < 1.0 ? 2 : 1)));
    }
    m_accept->setText(readout.tooBig ? tr("Too \n Big") : tr("Accept"));
    m_accept->setStyleSheet(QLatin1String(readout.tooBig ? red : green));
    QPalette onColor = m_accept->palette();
    onColor.setColor(QPalette::ButtonText, Qt::white);
    m_accept->setPalette(onColor);
    m_accept->blockSignals(readout.tooBig);
    m_accept->parentWidget()->setToolTip(
        readout.tooBig
            ? sizeLimitFailure(readout.squareInches).sentence
            : tr("Makes the relief: the highest facet over each cell, above the lowest point"));
}

} // namespace marlowen
