#include "ui/panels/panelcontrols.h"

#include "relief/tools/tooltable.h"
#include "ui/panels/choicerow.h"
#include "ui/ribbon/numberfield.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QResizeEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QVBoxLayout>

#include <algorithm>

namespace marlowen {

void showReason(QWidget &control, const QString &hint, const QString &reason)
{
    control.setEnabled(reason.isEmpty());
    control.setToolTip(reason.isEmpty() ? hint : reason);
}

void showReason(SliderField &field, const QString &hint, const QString &reason)
{
    field.setEnabled(reason.isEmpty());
    if (reason.isEmpty()) {
        field.setHint(hint);
        return;
    }
    field.label()->setToolTip(reason);
    field.slider()->setToolTip(reason);
    field.number()->setToolTip(reason);
}

QString fieldText(const char *text)
{
    return QCoreApplication::translate("Fields", text);
}

QString toolText(const char *text)
{
    return QCoreApplication::translate("Tools", text);
}

QString longToolName(const ToolRow &row)
{
    return toolText("%1 Tool").arg(toolText(row.label));
}

SliderField::Range sliderRange(const FieldInfo &info, double initial)
{
    const FieldControl &control = info.control;
    return {control.minimum,
            control.maximum,
            control.step,
            control.pageStep,
            control.scale.shown(initial),
            control.decimals,
            QString::fromUtf8(control.unit)};
}

SliderField *makeSlider(const FieldInfo &info, double initial, QWidget *parent)
{
    auto *slider = new SliderField(fieldText(info.label), sliderRange(info, initial), parent);
    slider->setObjectName(QLatin1String(info.label));
    slider->setAccessibleName(fieldText(info.label));
    return slider;
}

QCheckBox *makeCheckBox(const FieldInfo &info, QWidget *parent)
{
    auto *box = new QCheckBox(fieldText(info.label), parent);
    box->setObjectName(QLatin1String(info.label));
    return box;
}

ChoiceRow *makeChoices(const FieldInfo &info, QWidget *parent)
{
    const QStringList words = QString::fromLatin1(info.choices).split(QLatin1Char('|'));
    const QStringList icons = QString::fromLatin1(info.icons).split(QLatin1Char('|'));
    std::vector<ChoiceRow::Choice> choices;
    for (qsizetype i = 0; i < words.size(); ++i)
        choices.push_back({fieldText(words[i].toLatin1().constData()), icons.value(i)});
    return new ChoiceRow(fieldText(info.label), choices, parent);
}

QWidget *switchedRow(QCheckBox *box, SliderField *field)
{
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    layout->addWidget(box);
    layout->addWidget(field, 1);
    return row;
}

QHBoxLayout *checkRow(std::initializer_list<QCheckBox *> boxes)
{
    auto *row = new QHBoxLayout;
    row->setSpacing(16);
    for (QCheckBox *box : boxes)
        row->addWidget(box, 1);
    return row;
}

void alignFields(std::span<SliderField *const> fields, int labelWidth)
{
    int numberWidth = 0;
    for (const SliderField *field : fields)
        numberWidth = std::max(numberWidth, field->number()->sizeHint().width());
    for (SliderField *field : fields) {
        field->setLabelWidth(labelWidth);
        field->number()->setFixedWidth(numberWidth);
    }
}

namespace {

void collectControls(const QLayout &layout, QList<QWidget *> &controls)
{
    for (int i = 0; i < layout.count(); ++i) {
        QLayoutItem *item = layout.itemAt(i);
        QWidget *widget = item->widget();
        if (item->layout())
            collectControls(*item->layout(), controls);
        else if (widget && widget->focusPolicy() & Qt::TabFocus)
            controls.append(widget);
        else if (widget && widget->layout())
            collectControls(*widget->layout(), controls);
    }
}

} // namespace

void tabInLayoutOrder(const QLayout &layout)
{
    QList<QWidget *> controls;
    collectControls(layout, controls);
    for (qsizetype i = 1; i < controls.size(); ++i)
        QWidget::setTabOrder(controls[i - 1], controls[i]);
}

namespace {

/// As high as its content where there is room.
class PanelArea : public QScrollArea
{
public:
    QSize sizeHint() const override
    {
        // A text that wraps takes more lines beside the scroll bar, which would else stay.
        const QSize hint = widget()->sizeHint();
        const int narrow = width() - verticalScrollBar()->sizeHint().width();
        return {hint.width(),
                widget()->hasHeightForWidth() ? widget()->heightForWidth(narrow) : hint.height()};
    }

protected:
    void resizeEvent(QResizeEvent *event) override
    {
        QScrollArea::resizeEvent(event);
        if (event->oldSize().width() != width())
            updateGeometry();
    }
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::LayoutRequest)
            updateGeometry();
        return QScrollArea::eventFilter(watched, event);
    }
};

} // namespace

QScrollArea *scrolling(QWidget *panel)
{
    auto *area = new PanelArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    area->setWidgetResizable(true);
    area->setWidget(panel);
    area->setMinimumWidth(panel->minimumSizeHint().width() +
                          area->verticalScrollBar()->sizeHint().width());
    return area;
}

QLabel *addSection(QVBoxLayout &column, const QString &title)
{
    auto *label = new QLabel(title);
    QFont font = label->font();
    font.setWeight(QFont::DemiBold);
    label->setFont(font);
    label->setContentsMargins(0, 6, 0, 0);
    column.addWidget(label);
    return label;
}

} // namespace marlowen
