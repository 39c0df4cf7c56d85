#include "ui/controllers/lookcontroller.h"

#include "base/qevsettings.h"
#include "render/light/lightdirection.h"
#include "render/views/facetwin.h"
#include "render/views/flatwin.h"
#include "render/views/sculptwin.h"
#include "ui/controllers/dialogs.h"
#include "ui/materialeditor.h"
#include "ui/materialgallery.h"
#include "ui/pages/viewsettingspage.h"
#include "ui/ribbon/ribboncolors.h"
#include "ui/startpage.h"
#include "ui/themeswitcher.h"

#include <QColorDialog>
#include <QMessageBox>

#include <utility>

namespace marlowen {

namespace {

constexpr char materialKey[] = "material";
constexpr char chosenKey[] = "/state/view/materialChosen";
constexpr char lightKey[] = "lightPosition";

} // namespace

LookController::LookController(const Parts &parts, QWidget *window)
    : QObject(window)
    , m_parts(parts)
    , m_window(window)
    , m_materials(new MaterialEditor(
          QevSettings()
              .value(QLatin1String(materialKey), QLatin1String(defaultMaterialName))
              .toString(),
          this))
{
    m_swatch = new MaterialSwatch(m_parts.sculptWin);
    connect(m_swatch, &MaterialSwatch::chosen, this, &LookController::chooseMaterial);
    connect(m_materials, &MaterialEditor::currentChanged, this, &LookController::_showMaterial);
    connect(m_materials, &MaterialEditor::listChanged, this, &LookController::_showMaterial);
    m_parts.page->showTheme(QevSettings().darkTheme());
    m_parts.page->showPointerSize(
        QevSettings().value(QStringLiteral("/state/view/cursorScale"), 100).toInt());
    _showMaterial();
    showPalette();
}

void LookController::restore()
{
    const int light = QevSettings().value(QLatin1String(lightKey), 0).toInt();
    const bool known = light >= 0 && light < static_cast<int>(lightPositions().size());
    m_parts.page->showLightPosition(known ? light : 0);
    setLight(m_parts.page->lightPosition());
}

void LookController::store() const
{
    QevSettings settings;
    settings.setValue(QLatin1String(materialKey), m_materials->current().name);
    settings.setValue(QLatin1String(lightKey), m_parts.page->lightPosition());
}

void LookController::setLight(int index)
{
    m_parts.sculptWin->setLightPos(index);
    m_parts.facetWin->setLightPos(index);
}

bool LookController::materialWasChosen()
{
    return QevSettings().value(QLatin1String(chosenKey), false).toBool();
}

void LookController::chooseMaterial(const QString &name)
{
    QevSettings().setValue(QLatin1String(chosenKey), true);
    m_materials->choose(name);
}

void LookController::_showMaterial()
{
    m_parts.page->showMaterials(*m_materials);
    m_parts.sculptWin->setMaterial(m_materials->current());
    m_parts.facetWin->setMaterial(m_materials->current());
    if (m_parts.startPage)
        m_parts.startPage->showMaterial(m_materials->current().name);
    m_swatch->showMaterials(m_materials->materials(), m_materials->current());
}

void LookController::askForColor(int term)
{
    static constexpr const char *titles[] = {QT_TR_NOOP("Choose Ambient Material"),
                                             QT_TR_NOOP("Choose Diffuse Material"),
                                             QT_TR_NOOP("Choose Specular Material")};
    const QColor color =
        QColorDialog::getColor(m_materials->color(term), m_window, tr(titles[qBound(0, term, 2)]),
                               QColorDialog::ShowAlphaChannel);
    m_materials->setColor(term, color);
}

void LookController::setShininess(int value)
{
    m_materials->setShininess(value);
}

void LookController::finishName()
{
    const QString name = std::exchange(m_typedName, QString()).trimmed();
    if (name.isEmpty() || name == m_materials->current().name)
        return m_parts.page->showMaterials(*m_materials);
    if (const Outcome renamed = m_materials->rename(name); !renamed) {
        m_parts.page->showMaterials(*m_materials);
        showFailure(m_window, renamed.failure());
    }
}

void LookController::cloneMaterial()
{
    if (const Outcome cloned = m_materials->clone(); !cloned)
        return showFailure(m_window, cloned.failure());
    m_parts.page->beginNaming();
}

void LookController::deleteMaterial()
{
    const QString name = m_materials->current().name;
    const auto yes = QMessageBox::Yes;
    if (QMessageBox::question(m_window, tr("Materials"),
                              tr("Delete the material \"%1\"? This cannot be undone.").arg(name),
                              yes | QMessageBox::No, QMessageBox::No) != yes)
        return;
    if (const Outcome removed = m_materials->remove(); !removed)
        showFailure(m_window, removed.failure());
}

void LookController::setColorOffset(double offset)
{
    m_parts.flatWin->colorOffsetChanged(offset);
}

void LookController::setQuantization(double levels)
{
    m_parts.flatWin->quantizationChanged(levels);
}

void LookController::setPointer(int index)
{
    const auto choice = static_cast<size_t>(qBound(0, index, int(pointerSizes.size()) - 1));
    m_parts.sculptWin->setCursorScale(pointerSizes[choice].percent);
}

void LookController::setLegacy(bool on)
{
    QevSettings().setUseLegacyShader(on);
    m_parts.sculptWin->renewEngine();
    m_parts.flatWin->renewEngine();
    m_parts.facetWin->renewEngine();
}

void LookController::switchTheme()
{
    const int mode = QevSettings().darkTheme() ? 0 : 1;
    QevSettings().setThemeMode(mode);
    themeSwitcher::applyTheme(mode);
    m_parts.page->showTheme(mode == 1);
}

/// The backdrop of the relief is darker than the chrome, so that the relief is the brightest.
void LookController::showPalette()
{
    const QPalette palette = m_window->palette();
    const QColor chrome = palette.color(QPalette::Window);
    const QColor backdrop = isDarkPalette(palette) ? mixedColor(chrome, Qt::black, 0.35)
                                                   : mixedColor(chrome, QColor(0x4a5260), 0.45);
    m_parts.sculptWin->setBackdrop(backdrop);
    m_parts.flatWin->setBackdrop(backdrop);
    m_parts.facetWin->setBackdrop(backdrop);
    m_parts.page->showMaterials(*m_materials);
}

} // namespace marlowen
