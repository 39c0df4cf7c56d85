#pragma once

#include "base/result.h"

#include <QDialog>

#include <memory>

class QComboBox;
class QLabel;
class QPushButton;

namespace marlowen {

class NumberField;
class Relief;

/// Asks for the size and the start height of a new relief, in cells or in a unit of length. "OK"
/// can be pressed only for sizes that can be made: at least 2 x 2 cells and less than 1000 square
/// inches; errors are shown below the fields. The next dialog starts with what the last one
/// was accepted with (settings "/state/new/...").
class NewReliefDialog : public QDialog
{
    Q_OBJECT

public:
    explicit NewReliefDialog(QWidget *parent = nullptr);

    int widthCells() const;
    int heightCells() const;
    /// Height of every cell, in heights of the relief (128 an inch).
    double level() const;
    /// The relief asked for. Fails when there is not enough memory.
    Result<std::unique_ptr<Relief>> makeRelief() const;

public slots:
    void accept() override;

private:
    void _arrange();
    void _unitChosen(int index);
    void _showIn(int unitIndex, QSize cells, double levelCells);
    void _check();
    QString _objection() const;
    QString _extent() const;

    NumberField *m_width;
    NumberField *m_height;
    NumberField *m_level;
    QComboBox *m_units;
    QLabel *m_summary;
    QPushButton *m_ok = nullptr;
    double m_cellsPerUnit = 1.0;
};

} // namespace marlowen
