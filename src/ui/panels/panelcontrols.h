#pragma once

#include "base/fieldtable.h"
#include "ui/ribbon/sliderfield.h"

#include <QString>

#include <initializer_list>
#include <span>

class QCheckBox;
class QHBoxLayout;
class QLabel;
class QScrollArea;
class QLayout;
class QVBoxLayout;
class QWidget;

namespace marlowen {

class ChoiceRow;
struct ToolRow;

/// With an empty reason enables the control and shows the hint; otherwise disables it and shows the
/// reason.
void showReason(QWidget &control, const QString &hint, const QString &reason);
void showReason(SliderField &field, const QString &hint, const QString &reason);

/// A text of a field table, in the user's language.
QString fieldText(const char *text);
/// The same for the tool table.
QString toolText(const char *text);
/// "Smooth Tool".
QString longToolName(const ToolRow &row);
/// The range of a field's slider; the default is the stored value given.
SliderField::Range sliderRange(const FieldInfo &info, double initial);
/// The controls of a field, without their hint; the object name is the field's label.
SliderField *makeSlider(const FieldInfo &info, double initial, QWidget *parent);
QCheckBox *makeCheckBox(const FieldInfo &info, QWidget *parent);
ChoiceRow *makeChoices(const FieldInfo &info, QWidget *parent);

/// A check box in the label column with the slider that it switches on.
QWidget *switchedRow(QCheckBox *box, SliderField *field);
/// Check boxes side by side, all of one width.
QHBoxLayout *checkRow(std::initializer_list<QCheckBox *> boxes);

/// Gives the labels this width and the numbers the widest one's, so that fields below each other
/// align.
void alignFields(std::span<SliderField *const> fields, int labelWidth);

/// The Tab key goes through the controls in the order in which the layout shows them.
void tabInLayoutOrder(const QLayout &layout);

/// The panel in an area that is as high as the panel where there is room, and scrolls where not.
QScrollArea *scrolling(QWidget *panel);

/// Starts a titled section of a panel's column.
QLabel *addSection(QVBoxLayout &column, const QString &title);

} // namespace marlowen
