#include "ui/newreliefdialog.h"

#include "base/numbertext.h"
#include "base/qevsettings.h"
#include "relief/grid/physicalsize.h"
#include "relief/grid/relief.h"
#include "relief/grid/typedranges.h"
#include "ui/ribbon/numberfield.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

constexpr int firstWidth = 1024;
constexpr int firstHeight = 768;
constexpr double firstLevel = 16.0;

struct Unit
{
    QString label;
    double cells; ///< cells in one of it
    int sizeDecimals;
    int levelDecimals;
};

/// Cells, then the units of length.
Unit unitAt(int index)
{
    if (index <= 0)
        return {NewReliefDialog::tr("cells"), 1.0, 0, 1};
    const LengthUnit &length = lengthUnits[size_t(index - 1)];
    return {unitLabel(length), length.inches * cellsPerInch, length.decimals, length.decimals};
}

struct Amount
{
    double cells;
    double largestCells;
    int decimals;
};

void showAmount(NumberField &field, const Unit &unit, const Amount &amount)
{
    const QSignalBlocker quiet(field);
    field.setDecimals(amount.decimals);
    field.setMaximum(amount.largestCells / unit.cells);
    field.setSingleStep(unit.cells > 1.0 ? 1.0 : 16.0);
    field.setValue(amount.cells / unit.cells);
}

QString key(const char *name)
{
    return QStringLiteral("/state/new/") + QLatin1String(name);
}

/// A stored number, or the first one where there is none that can be used.
double remembered(const char *name, double first, const FieldRange &range)
{
    bool ok = false;
    const double value = QevSettings().value(key(name), first).toDouble(&ok);
    return ok && range.contains(value) ? value : first;
}

} // namespace

NewReliefDialog::NewReliefDialog(QWidget *parent)
    : QDialog(parent)
    , m_width(new NumberField(this))
    , m_height(new NumberField(this))
    , m_level(new NumberField(this))
    , m_units(new QComboBox(this))
    , m_summary(new QLabel(this))
{
    setWindowTitle(tr("New Relief"));
    for (int i = 0; i <= int(lengthUnits.size()); ++i)
        m_units->addItem(unitAt(i).label);
    m_width->setAccessibleName(tr("Width"));
    m_height->setAccessibleName(tr("Height"));
    m_level->setAccessibleName(tr("Start height"));
    m_level->setToolTip(tr("How thick the relief is before it is sculpted; cells of height 0 are "
                           "empty, and brushes leave them alone while Keep Transparency is on"));
    const auto whole = [](const char *name, int first, const FieldRange &range) {
        return static_cast<int>(remembered(name, first, range));
    };
    m_units->setCurrentIndex(whole("units", 0, {0.0, m_units->count() - 1.0}));
    _showIn(m_units->currentIndex(),
            {whole("width", firstWidth, sideRange), whole("height", firstHeight, sideRange)},
            remembered("level", firstLevel, startHeightRange));
    _arrange();
    for (NumberField *field : {m_width, m_height, m_level}) {
        // Typed digits count at once, so that "OK" and the message follow them.
        field->setKeyboardTracking(true);
        connect(field, &QDoubleSpinBox::valueChanged, this, &NewReliefDialog::_check);
    }
    connect(m_units, &QComboBox::currentIndexChanged, this, &NewReliefDialog::_unitChosen);
    _check();
}

void NewReliefDialog::_arrange()
{
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    m_ok = buttons->button(QDialogButtonBox::Ok);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    m_summary->setWordWrap(true);
    m_summary->setMinimumHeight(3 * m_summary->fontMetrics().lineSpacing());
    m_summary->setAlignment(Qt::AlignTop | Qt::AlignLeft);

    auto *form = new QFormLayout(this);
    form->setContentsMargins(24, 20, 24, 16);
    form->setHorizontalSpacing(16);
    form->setVerticalSpacing(8);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(tr("&Units"), m_units);
    form->addRow(tr("&Width"), m_width);
    form->addRow(tr("&Height"), m_height);
    form->addRow(tr("&Start height"), m_level);
    form->addRow(m_summary);
    form->addRow(buttons);
    setFixedWidth(360);
    m_width->setFocus();
    m_width->selectAll();
}

int NewReliefDialog::widthCells() const
{
    return int(std::lround(m_width->value() * m_cellsPerUnit));
}

int NewReliefDialog::heightCells() const
{
    return int(std::lround(m_height->value() * m_cellsPerUnit));
}

double NewReliefDialog::level() const
{
    return m_level->value() * m_cellsPerUnit;
}

Result<std::unique_ptr<Relief>> NewReliefDialog::makeRelief() const
{
    try {
        auto relief = std::make_unique<Relief>(widthCells(), heightCells());
        const auto start = static_cast<float>(level());
        if (start > 0.0F) {
            std::fill_n(relief->heights().data(), relief->cells(), start);
            relief->referenceLayer().copyFrom(relief->heights());
        }
        return relief;
    } catch (const std::bad_alloc &) {
        return Failure{tr("New Failed"),
                       tr("There is not enough memory for a relief of this size.")};
    }
}

void NewReliefDialog::_unitChosen(int index)
{
    const QSize size(widthCells(), heightCells());
    const double cells = level();
    _showIn(index, size, cells);
    _check();
}

void NewReliefDialog::_showIn(int unitIndex, QSize cells, double levelCells)
{
    const Unit unit = unitAt(unitIndex);
    m_cellsPerUnit = unit.cells;
    showAmount(*m_width, unit, {double(cells.width()), sideRange.maximum, unit.sizeDecimals});
    showAmount(*m_height, unit, {double(cells.height()), sideRange.maximum, unit.sizeDecimals});
    showAmount(*m_level, unit, {levelCells, startHeightRange.maximum, unit.levelDecimals});
}

void NewReliefDialog::accept()
{
    QevSettings settings;
    settings.setValue(key("units"), m_units->currentIndex());
    settings.setValue(key("width"), widthCells());
    settings.setValue(key("height"), heightCells());
    settings.setValue(key("level"), level());
    QDialog::accept();
}

QString NewReliefDialog::_objection() const
{
    if (widthCells() < sideRange.minimum || heightCells() < sideRange.minimum)
        return tr("A relief has at least 2 by 2 cells.");
    const double area = squareInches(widthCells(), heightCells());
    return exceedsAreaLimit(area) ? sizeLimitFailure(area).sentence : QString();
}

QString NewReliefDialog::_extent() const
{
    return tr("%1 × %2 cells, %3 × %4 in.")
        .arg(QString::number(widthCells()), QString::number(heightCells()),
             numberText(widthCells() / cellsPerInch, 2),
             numberText(heightCells() / cellsPerInch, 2));
}

void NewReliefDialog::_check()
{
    const QString objection = _objection();
    m_ok->setEnabled(objection.isEmpty());
    m_ok->setToolTip(objection);
    m_summary->setText(objection.isEmpty() ? _extent() : objection);
}

} // namespace marlowen
