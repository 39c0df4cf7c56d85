#pragma once

#include "files/export/meshexport.h"
#include "files/exportoptions.h"

#include <QObject>
#include <QString>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;

namespace marlowen {

class CommandSet;
class NumberField;
class RibbonGroup;
class RibbonPage;

/// The controls of the page "Export": how a mesh is written, what will be written, the author of
/// patterns, the export commands. The options are remembered.
class ExportPage : public QObject
{
    Q_OBJECT

public:
    ExportPage(RibbonPage &page, CommandSet &commands, QObject *parent);

    static void addCommands(CommandSet &commands);

    const ExportOptions &options() const { return m_options; }
    /// Lengths are shown and typed in this unit: an index into lengthUnits.
    void setUnit(int unit);
    /// What an export would write now; `ended` when these are the final numbers.
    void showForecast(const MeshForecast &forecast, bool ended);
    /// Removes the line of the forecast.
    void clearForecast();
    /// A length in the page's unit, "0.0005 in.".
    QString lengthText(double inches) const;
    /// "27,000 facets, largest error 0.0005 in."
    QString facetsText(uint64_t facets, double errorInches) const;

signals:
    void optionsChanged();

private:
    void _buildQuality(RibbonGroup &group);
    void _buildForm(RibbonGroup &group);
    void _buildForecast(RibbonGroup &group);
    void _chooseQuality(int quality);
    void _typeTolerance(double shown);
    void _change(const ExportOptions &options);
    void _showOptions();
    double _shown(double inches) const;

    ExportOptions m_options;
    double m_thickness = 0.1; ///< inches, also while no solid is wanted
    int m_unit = 0;
    bool m_reduced = false; ///< as forecast
    QComboBox *m_quality = nullptr;
    NumberField *m_tolerance = nullptr;
    NumberField *m_facets = nullptr;
    QCheckBox *m_standard = nullptr;
    QLabel *m_standardNote = nullptr;
    QCheckBox *m_solid = nullptr;
    NumberField *m_base = nullptr;
    QLabel *m_count = nullptr;
    QLabel *m_bytes = nullptr;
    QLabel *m_error = nullptr;
    QLineEdit *m_author = nullptr;
};

} // namespace marlowen
