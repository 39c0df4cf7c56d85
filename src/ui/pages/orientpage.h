#pragma once

#include "files/mesh/modelplacement.h"
#include "ui/pages/sizerows.h"

#include <QObject>

class QAction;
class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;

namespace marlowen {

class CommandSet;
class RibbonGroup;
class RibbonPage;

/// What the page "Orient / Scale" shows of a model.
struct ModelReadout
{
    SizeRows::Shown sizes; ///< of the box as oriented, in the model's unit
    double squareInches = 0.0;
    bool tooBig = false;
    double columns = 0.0; ///< of the relief to be
    double rows = 0.0;
    double megabytes = 0.0;
    bool inverted = false;
    bool relativeIndices = false;
    bool hasIndices = false; ///< the file has indices that can be relative
};

/// The controls of the page "Orient / Scale": turns, unit and sizes of the model that is open, what
/// the relief will be, Accept and Cancel. The page changes nothing itself: it emits the requests.
class OrientPage : public QObject
{
    Q_OBJECT

public:
    OrientPage(RibbonPage &page, CommandSet &commands, QObject *parent);

    static void addCommands(CommandSet &commands);

    void show(const ModelReadout &readout);

signals:
    void turnWanted(marlowen::ModelTurn turn);
    void resetWanted();
    /// Index into lengthUnits.
    void unitChosen(int unit);
    /// In the model's unit, along x, y and z as seen.
    void sizesWanted(const marlowen::AxisSizes &sizes);
    void invertChanged(bool on);
    void relativeIndicesChanged(bool on);
    void acceptClicked();
    void cancelClicked();

private:
    void _addTurns(RibbonPage &page);
    void _addSizes(RibbonPage &page, CommandSet &commands);
    void _addAccept(RibbonPage &page);
    void _showAccept(const ModelReadout &readout);

    CommandSet &m_commands;
    QComboBox *m_unit = nullptr;
    SizeRows *m_rows = nullptr;
    RibbonGroup *m_sizes = nullptr;
    QCheckBox *m_relative = nullptr;
    QLabel *m_cells = nullptr;
    QLabel *m_inches = nullptr;
    QLabel *m_memory = nullptr;
    QPushButton *m_accept = nullptr;
};

} // namespace marlowen
