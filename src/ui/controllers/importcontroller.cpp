#include "ui/controllers/importcontroller.h"

#include "base/qevsettings.h"
#include "ui/controllers/dialogs.h"
#include "ui/panels/importpanel.h"
#include "ui/progressbox.h"
#include "workbench/workbench.h"

#include <new>

namespace marlowen {

QString importKey(const FieldInfo &info)
{
    return QStringLiteral("/state/import/") + QLatin1String(info.key);
}

namespace {

QString flipKey()
{
    return importKey(fieldOf(importFields(), &ImportSettings::flipY).info);
}

/// The defaults for fields that were never set.
ImportSettings rememberedSettings()
{
    const QevSettings store;
    ImportSettings settings;
    for (const Field<ImportSettings> &field : importFields()) {
        bool number = false;
        const double value = store.value(importKey(field.info)).toDouble(&number);
        if (number && field.info.has(StartsNextImport))
            field.store(settings, value);
    }
    return settings;
}

} // namespace

ImportController::ImportController(Workbench &bench, ImportPanel *panel, QWidget *window)
    : QObject(window)
    , m_bench(bench)
    , m_panel(panel)
    , m_window(window)
{
    ImportSession &session = m_bench.session();
    session.followsChanges = true;
    session.startWork = [window] {
        return std::make_unique<ProgressBox>(tr("Smoothing the terraces"), window);
    };
    session.startWith(rememberedSettings());
    m_remembered = session.openingSettings();
    m_panel->refresh();
    connect(&m_bench, &Workbench::importChanged, this, &ImportController::_remember);
    connect(m_panel, &ImportPanel::FlipAnswered, this, &ImportController::_flipAnswered);
}

void ImportController::update()
{
    try {
        ProgressBox progress(tr("Making the bas-relief"), m_window);
        m_bench.session().update(&progress);
    } catch (const std::bad_alloc &) {
        showFailure(m_window,
                    {tr("Update Failed"), tr("There is not enough memory for the bas-relief.")});
    }
}

void ImportController::opened()
{
    _showNotice();
}

void ImportController::_showNotice()
{
    m_panel->askToFlip(m_bench.session().pictureOpen() && !QevSettings().contains(flipKey()));
}

void ImportController::_remember()
{
    const ImportSettings &now = m_bench.session().openingSettings();
    for (const Field<ImportSettings> &field : importFields()) {
        if (field.value(now) != field.value(m_remembered))
            QevSettings().setValue(importKey(field.info), field.value(now));
    }
    m_remembered = now;
    _showNotice();
}

/// Also when the answer was not to flip.
void ImportController::_flipAnswered()
{
    m_panel->flush();
    if (!QevSettings().contains(flipKey()))
        QevSettings().setValue(flipKey(), m_remembered.flipY ? 1.0 : 0.0);
    _showNotice();
}

} // namespace marlowen
