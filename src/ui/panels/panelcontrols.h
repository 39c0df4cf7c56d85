#pragma once

#include <QString>

#include <span>

class QLabel;
class QVBoxLayout;
class QWidget;

namespace marlowen {

class SliderField;

/// Enables the control when there is no reason against it and shows the hint; otherwise disables it
/// and shows the reason.
void showReason(QWidget &control, const QString &hint, const QString &reason);
void showReason(SliderField &field, const QString &hint, const QString &reason);

/// Gives the labels this width and the numbers the widest one's, so that fields below each other
/// align.
void alignFields(std::span<SliderField *const> fields, int labelWidth);

/// Starts a titled section of a panel's column.
QLabel *addSection(QVBoxLayout &column, const QString &title);

} // namespace marlowen
