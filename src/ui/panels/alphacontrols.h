#pragma once

#include <QWidget>

class QToolButton;

namespace marlowen {

class ChoiceRow;
class SliderField;

/// The controls of the alpha brush of the process: what it does to the footprint, how it is
/// mirrored and turned, how often it repeats. They change it at once.
class AlphaControls : public QWidget
{
    Q_OBJECT

public:
    explicit AlphaControls(QWidget *parent = nullptr);

    /// Reads the alpha brush again: after an image was chosen or removed.
    void refresh();
    /// Enables the controls when `reason` is empty, otherwise shows it as their hint.
    void setReason(QString reason);

    /// The number, for the alignment with the fields above it.
    SliderField *repeat() const { return m_repeat; }
    void setLabelWidth(int width);

signals:
    /// The alpha brush has its new mode, orientation or repeat count already.
    void changed();

private:
    void _makeMode();
    void _makeTurns();
    void _turn(bool quarter);

    ChoiceRow *m_mode = nullptr;
    QToolButton *m_mirror = nullptr;
    QToolButton *m_turn = nullptr;
    QWidget *m_indent = nullptr; ///< keeps the buttons clear of the label column
    SliderField *m_repeat = nullptr;
};

} // namespace marlowen
