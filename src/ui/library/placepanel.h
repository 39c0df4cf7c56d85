#pragma once

#include "relief/operations/placement.h"

#include <QWidget>

class QComboBox;
class QLabel;
class QPushButton;

namespace marlowen {

class NumberField;
class SliderField;

/// The numbers of a pattern that is being placed, with Apply and Cancel. Esc is Cancel,
/// whichever widget has the focus. A narrow panel has no sliders.
class PlacePanel : public QWidget
{
    Q_OBJECT

public:
    explicit PlacePanel(QWidget *parent = nullptr);

    void setName(const QString &name);
    /// The middle is shown in this unit, an index into lengthUnits.
    void setUnit(int unit);
    /// Shows the numbers without a signal.
    void showPlacement(const Placement &placement);

signals:
    /// The user typed or dragged a number.
    void changed(const Placement &placement);
    void applied();
    void cancelled();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    NumberField *_makeCentre(const QString &label);
    SliderField *_makeSlider(double Placement::*member);
    void _fillJoins(const FieldInfo &join);
    QLayout *_makeButtons();
    void _showCentre();
    void _change(const Placement &placement);

    Placement m_placement;
    int m_unit = 0;
    QLabel *m_title;
    NumberField *m_x;
    NumberField *m_y;
    QComboBox *m_join;
    struct Slider
    {
        double Placement::*member;
        SliderField *field;
    };
    QList<Slider> m_sliders;
};

} // namespace marlowen
