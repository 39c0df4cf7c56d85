#include "ui/controllers/modelcontroller.h"

#include "base/qevsettings.h"
#include "files/mesh/meshreader.h"
#include "import/mesh/rasterise.h"
#include "render/views/facetwin.h"
#include "ui/controllers/dialogs.h"
#include "ui/pages/orientpage.h"
#include "ui/progressbox.h"
#include "workbench/workbench.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QFileInfo>
#include <QMessageBox>
#include <QShortcut>

namespace marlowen {

namespace {

constexpr char unitKey[] = "model/unit";
constexpr char relativeKey[] = "model/relativeIndices";

/// As the last model was taken.
ModelOptions rememberedOptions()
{
    const QevSettings settings;
    ModelOptions options;
    const int unit = settings.value(QLatin1String(unitKey), options.unit).toInt();
    if (unit >= 0 && unit < static_cast<int>(lengthUnits.size()))
        options.unit = unit;
    options.relativeIndices =
        settings.value(QLatin1String(relativeKey), options.relativeIndices).toBool();
    return options;
}

} // namespace

ModelController::ModelController(Workbench &bench, const Parts &parts, QWidget *window)
    : QObject(window)
    , m_bench(bench)
    , m_parts(parts)
    , m_window(window)
    , m_escape(new QShortcut(Qt::Key_Escape, window))
{
    m_escape->setEnabled(false);
    connect(m_escape, &QShortcut::activated, this, &ModelController::_escape);
    connect(m_parts.page, &OrientPage::turnWanted, this, &ModelController::_turn);
    connect(m_parts.page, &OrientPage::resetWanted, this, &ModelController::_reset);
    connect(m_parts.page, &OrientPage::unitChosen, this, &ModelController::_setUnit);
    connect(m_parts.page, &OrientPage::sizesWanted, this, &ModelController::_setSizes);
    connect(m_parts.page, &OrientPage::invertChanged, this, &ModelController::_invert);
    connect(m_parts.page, &OrientPage::relativeIndicesChanged, this,
            &ModelController::_setRelativeIndices);
    connect(m_parts.page, &OrientPage::acceptClicked, this, &ModelController::accept);
    connect(m_parts.page, &OrientPage::cancelClicked, this, &ModelController::cancel);
    connect(&m_bench, &Workbench::replaced, this, &ModelController::_replaced);
}

FacetShape *ModelController::_shape() const
{
    return m_bench.model ? &m_bench.model->shape : nullptr;
}

bool ModelController::open(const QString &path)
{
    return _read(path, rememberedOptions());
}

bool ModelController::_read(const QString &path, const ModelOptions &options)
{
    Result<OpenedModel> opened = [&] {
        ProgressBox progress(tr("Reading %1").arg(QFileInfo(path).fileName()), m_window);
        return openModel(path, options, progress);
    }();
    if (!opened) {
        if (!opened.failure().sentence.isEmpty())
            showFailure(m_window, opened.failure());
        return false;
    }
    m_parts.view->setMesh(nullptr);
    // A model's import starts with the default settings.
    m_bench.model = std::make_unique<ModelOnBench>(ModelOnBench{opened.take(), path, {}});
    m_options = options;
    FacetShape &shape = *_shape();
    shape.shrinkToLimit();
    m_parts.view->setMesh(&shape.mesh(), shape.fileBox());
    _show();
    m_escape->setEnabled(true);
    emit shownChanged();
    if (const QString problems = m_bench.model->problems.sentence(); !problems.isEmpty())
        onceShown(m_window, [this, path, problems] {
            QMessageBox::warning(m_window, QFileInfo(path).fileName(), problems);
        });
    return true;
}

void ModelController::accept()
{
    const FacetShape *shape = _shape();
    if (!shape || dialogsOpen())
        return;
    const QString file = m_bench.model->file;
    const ShapeImport import{.settings = m_bench.model->settings, .shapeDone = [this] {
                                 m_parts.view->setMesh(nullptr);
                                 m_bench.model.reset();
                             }};
    Result<std::unique_ptr<Relief>> relief = [&] {
        ProgressBox progress(tr("Making the relief"), m_window);
        return importShape(*shape, import, progress);
    }();
    if (relief)
        return m_bench.take(relief.take(), file);
    if (!m_bench.model) // memory ran short after it was let go
        _replaced();
    if (!relief.failure().sentence.isEmpty())
        showFailure(m_window, relief.failure());
}

void ModelController::cancel()
{
    if (!_shape() || dialogsOpen())
        return;
    m_parts.view->setMesh(nullptr);
    m_bench.model.reset();
    m_escape->setEnabled(false);
    emit shownChanged();
}

/// In a field the key only cancels the typing.
void ModelController::_escape()
{
    if (!qobject_cast<QAbstractSpinBox *>(QApplication::focusWidget()))
        return cancel();
    _show();
    m_parts.view->setFocus();
}

/// The model is gone.
void ModelController::_replaced()
{
    if (!m_escape->isEnabled())
        return;
    m_parts.view->setMesh(nullptr);
    m_escape->setEnabled(false);
    emit shownChanged();
}

void ModelController::_turn(ModelTurn turn)
{
    if (FacetShape *shape = _shape()) {
        shape->turn(turn);
        _show();
        m_parts.view->fit();
    }
}

void ModelController::_reset()
{
    if (FacetShape *shape = _shape()) {
        shape->resetOrientation();
        _show();
        m_parts.view->fit();
    }
}

void ModelController::_setUnit(int unit)
{
    FacetShape *shape = _shape();
    if (!shape)
        return;
    QevSettings().setValue(QLatin1String(unitKey), unit);
    shape->setUnit(static_cast<size_t>(unit));
    m_options.unit = unit;
    _show();
}

void ModelController::_setSizes(const AxisSizes &sizes)
{
    FacetShape *shape = _shape();
    if (!shape)
        return;
    const double inches = shape->inchesPerUnit();
    const double area = (sizes[0] * inches) * (sizes[1] * inches);
    const double before = shape->areaSquareInches();
    const std::optional<std::array<double, 3>> factors = factorsFor(*shape, sizes);
    // A model that is too big may still be made smaller, step by step.
    if (exceedsAreaLimit(area) && area > before)
        showFailure(m_window, sizeLimitFailure(area));
    else if (factors)
        shape->setScale(*factors);
    _show();
}

void ModelController::_invert(bool on)
{
    if (FacetShape *shape = _shape()) {
        shape->invertNormals = on;
        _show();
    }
}

void ModelController::_setRelativeIndices(bool on)
{
    if (!_shape() || dialogsOpen())
        return;
    ModelOptions options = m_options;
    options.relativeIndices = on;
    if (_read(m_bench.model->file, options))
        QevSettings().setValue(QLatin1String(relativeKey), on);
    else
        _show();
}

void ModelController::_show()
{
    const FacetShape *shape = _shape();
    if (!shape)
        return;
    ModelReadout readout;
    readout.sizes = {extents(shape->box()), extents(shape->importedBox()), shape->unit(), {}, true};
    for (size_t axis = 0; axis < 3; ++axis) {
        if (readout.sizes.working[axis] <= 0.0)
            readout.sizes.reasons[axis] = tr("The model is flat along this axis.");
    }
    readout.squareInches = shape->areaSquareInches();
    readout.tooBig = shape->tooBig();
    readout.columns = shape->gridSize().columns;
    readout.rows = shape->gridSize().rows;
    readout.megabytes = shape->reliefMegabytes();
    readout.inverted = shape->invertNormals;
    readout.relativeIndices = m_options.relativeIndices;
    readout.hasIndices = isObjFile(m_bench.model->file);
    m_parts.page->show(readout);
    FacetWin::Stand stand{shape->placement(), shape->cellsPerUnit(), {}, shape->invertNormals};
    for (size_t axis = 0; axis < 3; ++axis)
        stand.sizes[axis] = sizeText(readout.sizes.working[axis], shape->unit());
    m_parts.view->setStand(stand);
}

} // namespace marlowen
