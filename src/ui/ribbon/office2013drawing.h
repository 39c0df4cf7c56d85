#pragma once

#include <QStyle>

class QPainter;
class QStyleOption;
class QStyleOptionComboBox;
class QStyleOptionProgressBar;
class QStyleOptionSlider;
class QStyleOptionSpinBox;

namespace marlowen {

/// The pieces Office2013Style draws itself. Each paints in the colours of option->palette and
/// leaves the painter as it found it.
namespace Office2013Drawing {

/// Background of a push or tool button: flat, filled under the pointer, when held and when checked.
void button(const QStyleOption &option, QPainter &painter, bool flat);
/// Outline of a field; the accent colour when it has the focus.
void field(const QStyleOption &option, QPainter &painter);
/// The part of a progress bar that is done.
void progress(const QStyleOptionProgressBar &option, QPainter &painter);
/// The ring around the widget with the keyboard focus, in the text colour: the accent colour marks
/// checked controls.
void focusRing(const QStyleOption &option, QPainter &painter);
void checkBox(const QStyleOption &option, QPainter &painter);
void radioButton(const QStyleOption &option, QPainter &painter);
/// A small triangle pointing down (or up) in the middle of a rectangle.
void arrow(const QRect &rect, const QColor &color, bool up, QPainter &painter);
/// Groove, filled part and handle of a slider.
void slider(const QStyleOptionSlider &option, const QRect &handle, QPainter &painter);
/// A thin bar without arrows.
void scrollBar(const QStyleOptionSlider &option, const QRect &handle, QPainter &painter);

} // namespace Office2013Drawing

} // namespace marlowen
