#include "ui/pages/exportpage.h"

#include "base/qevsettings.h"
#include "relief/grid/physicalsize.h"
#include "ui/commandset.h"
#include "ui/icons.h"
#include "ui/panels/panelcontrols.h"
#include "ui/ribbon/numberfield.h"
#include "ui/ribbon/ribbongroup.h"
#include "ui/ribbon/ribbonpage.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QSignalBlocker>

#include <array>
#include <cmath>

namespace marlowen {

namespace {

constexpr CommandRow commandRows[] = {
    {"exportStl", QT_TRANSLATE_NOOP("Commands", "Export STL"), "Export STL",
     QT_TRANSLATE_NOOP("Commands", "Writes the relief as an STL mesh."), "",
     QT_TRANSLATE_NOOP("Commands", "Open or make a relief first.")},
    {"exportObj", QT_TRANSLATE_NOOP("Commands", "Export OBJ"), "Export OBJ",
     QT_TRANSLATE_NOOP("Commands", "Writes the relief as an OBJ mesh."), "",
     QT_TRANSLATE_NOOP("Commands", "Open or make a relief first.")},
    {"exportPtr", QT_TRANSLATE_NOOP("Commands", "Export PTR"), "Export PTR",
     QT_TRANSLATE_NOOP("Commands",
                       "Writes the relief as a pattern, to be placed on other reliefs."),
     "", QT_TRANSLATE_NOOP("Commands", "Open or make a relief first.")},
    {"sendToDrafteon", QT_TRANSLATE_NOOP("Commands", "Send to Drafteon"), "Export to Drafteon",
     QT_TRANSLATE_NOOP("Commands", "Hands the relief to Drafteon and closes Marlowen."), "",
     QT_TRANSLATE_NOOP("Commands", "Open or make a relief first.")},
};

constexpr int fieldWidth = 110;
constexpr int forecastWidth = 200;
/// In the units of lengthUnits: they show the tolerances of the qualities exactly.
constexpr std::array<int, 3> toleranceDecimals{4, 5, 4};
constexpr int highQuality = 0;
constexpr int qualities = 3;
constexpr double sameTolerance = 1e-9; ///< inches; a typed number is converted to its unit and back
constexpr double bytesOfMegabyte = 1e6;

const FieldInfo &infoOf(auto member)
{
    return fieldOf(exportFields(), member).info;
}

QString settingOf(const char *key)
{
    return QStringLiteral("export/") + QLatin1String(key);
}

constexpr char thicknessKey[] = "thickness";

/// The stored options; values outside the fields' ranges are ignored.
ExportOptions storedOptions()
{
    const QevSettings settings;
    ExportOptions options;
    for (const Field<ExportOptions> &field : exportFields()) {
        const double value = settings.value(settingOf(field.info.key), field.initial()).toDouble();
        if (field.info.range.contains(value))
            field.store(options, value);
    }
    return options;
}

void store(const ExportOptions &options, double thickness)
{
    QevSettings settings;
    for (const Field<ExportOptions> &field : exportFields())
        settings.setValue(settingOf(field.info.key), field.value(options));
    settings.setValue(settingOf(thicknessKey), thickness);
}

/// "1.2 MB"; small files in kilobytes.
QString sizeText(uint64_t bytes)
{
    const double megabytes = static_cast<double>(bytes) / bytesOfMegabyte;
    if (megabytes < 0.1)
        return ExportPage::tr("%1 kB").arg(
            QLocale().toString(static_cast<double>(bytes) / 1e3, 'f', 1));
    return ExportPage::tr("%1 MB").arg(QLocale().toString(megabytes, 'f', 1));
}

QString sizesText(uint64_t stlBytes, uint64_t objBytes)
{
    return ExportPage::tr("STL %1, OBJ ~%2").arg(sizeText(stlBytes), sizeText(objBytes));
}

void describe(QWidget &control, const FieldInfo &info)
{
    control.setAccessibleName(fieldText(info.label));
    control.setToolTip(fieldText(info.hint));
    control.setObjectName(QLatin1String(info.key));
}

/// About the 32-bit count, while the other one would be written.
QString noteText()
{
    return ExportPage::tr("Most other programs need it.");
}

NumberField *makeNumber(const FieldInfo &info)
{
    auto *field = new NumberField;
    field->setMinimumWidth(fieldWidth);
    describe(*field, info);
    return field;
}

QLabel *makeText(const char *name)
{
    auto *label = new QLabel(QStringLiteral("–"));
    label->setObjectName(QLatin1String(name));
    label->setMinimumWidth(forecastWidth);
    return label;
}

} // namespace

void ExportPage::addCommands(CommandSet &commands)
{
    commands.add(commandRows);
    commands["sendToDrafteon"]->setVisible(false);
}

ExportPage::ExportPage(RibbonPage &page, CommandSet &commands, QObject *parent)
    : QObject(parent)
    , m_options(storedOptions())
{
    const QevSettings settings;
    const double thickness = settings.value(settingOf(thicknessKey), m_thickness).toDouble();
    if (infoOf(&ExportOptions::solid).range.contains(thickness))
        m_thickness = thickness;
    RibbonGroup *mesh = page.addGroup(tr("Mesh"));
    mesh->setIcon(icon(QStringLiteral("Export STL")));
    _buildQuality(*mesh);
    mesh->addSeparator();
    _buildForm(*mesh);
    RibbonGroup *result = page.addGroup(tr("Result"));
    result->setIcon(icon(QStringLiteral("ruler")));
    _buildForecast(*result);
    RibbonGroup *pattern = page.addGroup(tr("Pattern"));
    pattern->setIcon(icon(QStringLiteral("Export PTR")));
    m_author = new QLineEdit(settings.value(settingOf("author")).toString());
    m_author->setObjectName(QStringLiteral("author"));
    m_author->setMinimumWidth(fieldWidth);
    m_author->setAccessibleName(tr("Author"));
    m_author->setToolTip(tr("Your name, kept in the patterns that you write."));
    pattern->addRow(m_author, tr("Author"));
    connect(m_author, &QLineEdit::editingFinished, this,
            [this] { QevSettings().setValue(settingOf("author"), m_author->text().trimmed()); });
    RibbonGroup *group = page.addGroup(tr("Export"));
    for (const CommandRow &row : commandRows)
        group->addLargeButton(commands[row.id]);
    _showOptions();
}

void ExportPage::_buildQuality(RibbonGroup &group)
{
    const FieldInfo &quality = infoOf(&ExportOptions::quality);
    m_quality = new QComboBox;
    m_quality->setMinimumWidth(fieldWidth);
    m_quality->setPlaceholderText(tr("Custom"));
    m_quality->addItems(fieldText(quality.choices).split(QLatin1Char('|')));
    describe(*m_quality, quality);
    group.addRow(m_quality, fieldText(quality.label));
    m_tolerance = makeNumber(infoOf(&ExportOptions::tolerance));
    m_tolerance->setToolTip(tr("The largest error of the mesh along z; 0 writes every triangle."));
    group.addRow(m_tolerance, fieldText(infoOf(&ExportOptions::tolerance).label));
    const FieldInfo &facets = infoOf(&ExportOptions::facets);
    m_facets = makeNumber(facets);
    m_facets->setDecimals(0);
    m_facets->setRange(facets.range.minimum, facets.range.maximum);
    m_facets->setSingleStep(10000);
    m_facets->setSpecialValueText(tr("No limit"));
    group.addRow(m_facets, fieldText(facets.label));
    connect(m_quality, &QComboBox::activated, this, &ExportPage::_chooseQuality);
    connect(m_tolerance, &NumberField::valueChanged, this, &ExportPage::_typeTolerance);
    connect(m_facets, &NumberField::valueChanged, this, [this](double facetsWanted) {
        ExportOptions options = m_options;
        options.facets = static_cast<int>(std::lround(facetsWanted));
        _change(options);
    });
}

void ExportPage::_buildForm(RibbonGroup &group)
{
    m_standard = new QCheckBox(fieldText(infoOf(&ExportOptions::standardStl).label));
    describe(*m_standard, infoOf(&ExportOptions::standardStl));
    m_solid = new QCheckBox(fieldText(infoOf(&ExportOptions::solid).label));
    describe(*m_solid, infoOf(&ExportOptions::solid));
    m_solid->setToolTip(tr("Closes the mesh with walls and a base, for printing."));
    m_base = new NumberField;
    m_base->setObjectName(QLatin1String(thicknessKey));
    m_base->setMinimumWidth(fieldWidth);
    m_base->setAccessibleName(tr("Base"));
    m_standardNote = new QLabel(noteText());
    m_standardNote->setMinimumWidth(m_standardNote->sizeHint().width());
    m_standardNote->setObjectName(QStringLiteral("standardNote"));
    auto *solid = new QWidget;
    auto *row = new QHBoxLayout(solid);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(m_solid);
    row->addWidget(m_base, 1);
    solid->setFocusProxy(m_solid);
    group.addRow(solid);
    group.addRow(m_standard);
    group.addRow(m_standardNote);
    connect(m_standard, &QCheckBox::toggled, this, [this](bool on) {
        ExportOptions options = m_options;
        options.standardStl = on;
        _change(options);
    });
    connect(m_solid, &QCheckBox::toggled, this, [this](bool on) {
        ExportOptions options = m_options;
        options.solid = on ? m_thickness : 0.0;
        _change(options);
    });
    connect(m_base, &NumberField::valueChanged, this, [this](double shown) {
        ExportOptions options = m_options;
        m_thickness = infoOf(&ExportOptions::solid)
                          .range.clamped(shown * lengthUnits[static_cast<size_t>(m_unit)].inches);
        options.solid = options.solid > 0.0 ? m_thickness : 0.0;
        _change(options);
    });
}

void ExportPage::_buildForecast(RibbonGroup &group)
{
    m_count = makeText("facetCount");
    m_bytes = makeText("fileSize");
    constexpr uint64_t widest = 8'888'800'000; // of the largest relief it is less
    m_bytes->setMinimumWidth(m_bytes->fontMetrics().horizontalAdvance(sizesText(widest, widest)));
    m_error = makeText("largestError");
    group.addRow(m_count, tr("Facets"));
    group.addRow(m_bytes, tr("Size"));
    group.addRow(m_error, tr("Largest error"));
}

double ExportPage::_shown(double inches) const
{
    return inches / lengthUnits[static_cast<size_t>(m_unit)].inches;
}

QString ExportPage::lengthText(double inches) const
{
    const LengthUnit &unit = lengthUnits[static_cast<size_t>(m_unit)];
    return QStringLiteral("%1 %2").arg(
        QLocale().toString(_shown(inches), 'f', toleranceDecimals[static_cast<size_t>(m_unit)]),
        unitLabel(unit));
}

QString ExportPage::facetsText(uint64_t facets, double errorInches) const
{
    return tr("%1 facets, largest error %2")
        .arg(QLocale().toString(static_cast<qulonglong>(facets)), lengthText(errorInches));
}

void ExportPage::_chooseQuality(int quality)
{
    ExportOptions options = m_options;
    options.quality = quality;
    options.tolerance = 0.0;
    _change(options);
}

/// The tolerance of a quality chooses the quality.
void ExportPage::_typeTolerance(double shown)
{
    const double inches = shown * lengthUnits[static_cast<size_t>(m_unit)].inches;
    ExportOptions options = m_options;
    options.quality = highQuality;
    options.tolerance = inches;
    for (int quality = 0; quality < qualities; ++quality) {
        if (std::abs(inches - toleranceInches({.quality = quality})) < sameTolerance) {
            options.quality = quality;
            options.tolerance = 0.0;
        }
    }
    _change(options);
}

void ExportPage::_change(const ExportOptions &options)
{
    const bool same = options == m_options;
    m_options = options;
    store(m_options, m_thickness);
    _showOptions();
    if (!same)
        emit optionsChanged();
}

void ExportPage::setUnit(int unit)
{
    m_unit = unit;
    _showOptions();
}

void ExportPage::_showOptions()
{
    const LengthUnit &unit = lengthUnits[static_cast<size_t>(m_unit)];
    const QSignalBlocker quiet[] = {QSignalBlocker(m_quality), QSignalBlocker(m_tolerance),
                                    QSignalBlocker(m_facets),  QSignalBlocker(m_standard),
                                    QSignalBlocker(m_solid),   QSignalBlocker(m_base)};
    const auto showLength = [&](NumberField &field, double inches, int decimals) {
        field.setDecimals(decimals);
        field.setRange(0.0, infoOf(&ExportOptions::solid).range.maximum / unit.inches);
        field.setSingleStep(std::pow(10.0, -decimals));
        field.setSuffix(QLatin1Char(' ') + unitLabel(unit));
        field.setValue(_shown(inches));
    };
    showLength(*m_tolerance, toleranceInches(m_options),
               toleranceDecimals[static_cast<size_t>(m_unit)]);
    showLength(*m_base, m_thickness, unit.decimals);
    // The thinnest base is the first that the field does not show as 0.
    m_base->setRange(m_base->singleStep(), m_base->maximum());
    m_quality->setCurrentIndex(m_options.tolerance > 0.0 ? -1 : m_options.quality);
    m_facets->setValue(m_options.facets);
    m_standard->setChecked(m_options.standardStl);
    m_solid->setChecked(m_options.solid > 0.0);
    showReason(*m_base, tr("Thickness of the base below the lowest level."),
               m_options.solid > 0.0 ? QString() : tr("Only a solid has a base."));
    m_standardNote->setText(m_reduced && !m_options.standardStl ? noteText() : QString());
}

void ExportPage::showForecast(const MeshForecast &forecast, bool ended)
{
    const QString facets = QLocale().toString(static_cast<qulonglong>(forecast.facets));
    m_count->setText(!ended            ? tr("%1 ...").arg(facets)
                     : forecast.atMost ? tr("at most %1").arg(facets)
                                       : facets);
    m_bytes->setText(sizesText(fileBytes(MeshFormat::Stl, forecast.facets),
                               fileBytes(MeshFormat::Obj, forecast.facets)));
    QString error = forecast.reduced ? lengthText(forecast.largestErrorInches) : tr("none");
    if (!forecast.withinTolerance)
        error += tr(" (limited)");
    m_error->setText(error);
    m_error->setToolTip(forecast.withinTolerance
                            ? QString()
                            : tr("The number of facets is limited, so that the error is larger "
                                 "than the tolerance."));
    m_reduced = forecast.reduced;
    m_standardNote->setText(m_reduced && !m_options.standardStl ? noteText() : QString());
}

void ExportPage::clearForecast()
{
    for (QLabel *label : {m_count, m_bytes, m_error})
        label->setText(QStringLiteral("–"));
    m_reduced = false;
    m_standardNote->clear();
}

} // namespace marlowen
