#include "ui/panels/alphacontrols.h"

#include "relief/tools/alphabrush.h"
#include "relief/tools/toolfields.h"
#include "ui/icons.h"
#include "ui/library/alphastore.h"
#include "ui/panels/choicerow.h"
#include "ui/panels/panelcontrols.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

#include <cmath>
#include <utility>

namespace marlowen {

namespace {

constexpr int labelGap = 8; ///< between a label and its control, as in the rows above
constexpr int buttonGap = 4;

} // namespace

AlphaControls::AlphaControls(QWidget *parent)
    : QWidget(parent)
{
    _makeMode();
    _makeTurns();
    auto *turns = new QHBoxLayout;
    turns->setSpacing(buttonGap);
    m_indent = new QWidget(this);
    turns->addWidget(m_indent);
    turns->addWidget(m_mirror);
    turns->addWidget(m_turn);
    turns->addStretch(1);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    column->addWidget(m_mode);
    column->addLayout(turns);
    column->addWidget(m_repeat);
    refresh();
}

void AlphaControls::_makeMode()
{
    m_mode = makeChoices(
        {.key = "alphaMode", .label = "Alpha", .hint = "", .choices = alphaModeNames}, this);
    connect(m_mode, &ChoiceRow::chosen, this, [this](int mode) {
        AlphaBrush::instance().mode = mode;
        emit changed();
    });
    m_repeat = makeSlider(alphaRepeatField, AlphaBrush::initialRepeat, this);
    connect(m_repeat, &SliderField::valueChanged, this, [this](double value) {
        AlphaBrush::instance().repeatCount = int(std::lround(value));
        emit changed();
    });
}

void AlphaControls::_makeTurns()
{
    m_mirror = new QToolButton(this);
    m_mirror->setText(tr("Flip"));
    m_mirror->setIcon(icon(QStringLiteral("mirror_alpha")));
    m_mirror->setCheckable(true);
    m_mirror->setChecked(alphaOrientation().mirrored);
    m_turn = new QToolButton(this);
    m_turn->setText(tr("Turn"));
    m_turn->setIcon(icon(QStringLiteral("turn_alpha")));
    for (QToolButton *button : {m_mirror, m_turn}) {
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        button->setIconSize(QSize(16, 16));
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::StrongFocus);
        connect(button, &QToolButton::clicked, this, [this, button] { _turn(button == m_turn); });
    }
}

void AlphaControls::_turn(bool quarter)
{
    AlphaOrientation orientation = alphaOrientation();
    orientation.mirrored = m_mirror->isChecked();
    orientation.quarterTurns = (orientation.quarterTurns + quarter) % 4;
    setAlphaOrientation(orientation);
    emit changed();
}

void AlphaControls::refresh()
{
    m_mode->showChoice(AlphaBrush::instance().mode);
    m_repeat->showValue(AlphaBrush::instance().repeatCount);
}

void AlphaControls::setReason(QString reason)
{
    if (reason.isEmpty() && !AlphaBrush::instance().loaded())
        reason = tr("Choose an alpha brush in the library first.");
    m_mode->setReason(reason);
    showReason(*m_mirror, tr("Mirrors the alpha brush left to right."), reason);
    showReason(*m_turn, tr("Turns the alpha brush by a quarter, clockwise."), reason);
    if (reason.isEmpty() && AlphaBrush::instance().mode != AlphaBrush::Tile)
        reason = tr("Only the mode Tile repeats the alpha brush.");
    showReason(*m_repeat, fieldText(alphaRepeatField.hint), reason);
}

void AlphaControls::setLabelWidth(int width)
{
    m_mode->setLabelWidth(width);
    m_indent->setFixedWidth(width + labelGap - buttonGap);
}

} // namespace marlowen
