#include "ui/pages/viewsettingspage.h"

#include "base/qevsettings.h"
#include "render/gestures/pointeroptions.h"
#include "render/light/lightdirection.h"
#include "render/light/materialball.h"
#include "render/light/materials.h"
#include "ui/commandset.h"
#include "ui/icons.h"
#include "ui/materialeditor.h"
#include "ui/ribbon/ribbongallery.h"
#include "ui/ribbon/ribbongroup.h"
#include "ui/ribbon/ribbonpage.h"
#include "ui/ribbon/sliderfield.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QLineEdit>
#include <QPainter>
#include <QSignalBlocker>

namespace marlowen {

namespace {

constexpr CommandRow commandRows[] = {
    {"materialAmbient", QT_TRANSLATE_NOOP("Commands", "Ambient"), "",
     QT_TRANSLATE_NOOP("Commands", "Colour of the parts the light does not reach."), "",
     QT_TRANSLATE_NOOP("Commands", "A preset cannot be changed. Clone it first.")},
    {"materialDiffuse", QT_TRANSLATE_NOOP("Commands", "Diffuse"), "",
     QT_TRANSLATE_NOOP("Commands", "Colour in the light."), "",
     QT_TRANSLATE_NOOP("Commands", "A preset cannot be changed. Clone it first.")},
    {"materialSpecular", QT_TRANSLATE_NOOP("Commands", "Specular"), "",
     QT_TRANSLATE_NOOP("Commands", "Colour of the highlights."), "",
     QT_TRANSLATE_NOOP("Commands", "A preset cannot be changed. Clone it first.")},
    {"materialClone", QT_TRANSLATE_NOOP("Commands", "Clone"), "clone",
     QT_TRANSLATE_NOOP("Commands", "Makes a copy of the material that can be changed."), "", ""},
    {"materialDelete", QT_TRANSLATE_NOOP("Commands", "Delete"), "delete",
     QT_TRANSLATE_NOOP("Commands", "Removes the material."), "",
     QT_TRANSLATE_NOOP("Commands", "A preset cannot be deleted.")},
    {"viewAlone", QT_TRANSLATE_NOOP("Commands", "Only This View"), "view_alone",
     QT_TRANSLATE_NOOP("Commands", "Shows only the view with the keyboard focus, then both."),
     "F11", ""},
    {"theme", QT_TRANSLATE_NOOP("Commands", "Dark"), "Theme Dark",
     QT_TRANSLATE_NOOP("Commands", "Changes between the light and the dark theme."), "", ""},
};

constexpr const char *termCommands[MaterialEditor::termCount] = {
    "materialAmbient", "materialDiffuse", "materialSpecular"};

/// Places of the eight lights around the middle of a 3 x 3 grid.
constexpr QPoint lightPlaces[] = {{0, 0}, {1, 0}, {2, 0}, {0, 1}, {2, 1}, {0, 2}, {1, 2}, {2, 2}};

/// A field of the colour, in the strength its alpha gives it.
QIcon swatch(const QColor &color, const QColor &border)
{
    QIcon icon;
    for (const int ratio : {1, 2}) {
        QPixmap picture(20 * ratio, 20 * ratio);
        picture.setDevicePixelRatio(ratio);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(border);
        painter.setBrush(color);
        painter.drawRoundedRect(QRectF(2.5, 2.5, 15, 15), 3, 3);
        icon.addPixmap(picture);
    }
    return icon;
}

/// Sharp on dense screens too.
QIcon ballIcon(const Material &material)
{
    return QIcon(QPixmap::fromImage(materialBall(material, 0, 40)));
}

} // namespace

void ViewSettingsPage::addCommands(CommandSet &commands)
{
    commands.add(commandRows);
}

ViewSettingsPage::ViewSettingsPage(RibbonPage &page, CommandSet &commands, QObject *parent)
    : QObject(parent)
    , m_commands(commands)
{
    _buildLight(page);
    _buildMaterials(page);
    _buildColorization(page);
    _buildPointer(page);
    _buildPen(page);
    _buildTheme(page);
}

void ViewSettingsPage::_buildLight(RibbonPage &page)
{
    RibbonGroup *group = page.addGroup(tr("Light Pos"));
    m_light = new RibbonGallery;
    m_light->setObjectName(QStringLiteral("lightPos"));
    int index = 0;
    for (const LightPosition &position : lightPositions()) {
        const QString name = QString::fromLatin1(position.icon).section(QLatin1Char('/'), -1);
        m_light->addItem(index, lightPlaces[index], icon(name),
                         QCoreApplication::translate("Light", position.label));
        ++index;
    }
    group->addTall(m_light);
    group->setIcon(icon(QStringLiteral("lightPosTopLeft")));
    connect(m_light, &RibbonGallery::chosen, this, &ViewSettingsPage::lightChosen);
}

void ViewSettingsPage::_buildMaterials(RibbonPage &page)
{
    RibbonGroup *group = page.addGroup(tr("Materials"));
    group->setIcon(icon(QStringLiteral("palette")));
    m_materials = new QComboBox;
    m_materials->setObjectName(QStringLiteral("materials"));
    m_materials->setMinimumWidth(190);
    m_materials->setIconSize(QSize(20, 20));
    m_materials->setToolTip(tr("What the relief looks made of"));
    group->addRow(m_materials, tr("Material"));
    m_materialName = new QLineEdit;
    m_materialName->setObjectName(QStringLiteral("materialName"));
    m_materialName->setMinimumWidth(190);
    group->addRow(m_materialName, tr("Name"));
    m_shininess = new SliderField(QString(), {0, 128, 1, 16, 32, 0, {}});
    m_shininess->setObjectName(QStringLiteral("shininess"));
    m_shininess->setMinimumWidth(190);
    group->addRow(m_shininess, tr("Shininess"));
    group->breakColumn();
    for (const char *id : termCommands)
        group->addSmallButton(m_commands[id]);
    group->breakColumn();
    group->addSmallButton(m_commands["materialClone"]);
    group->addSmallButton(m_commands["materialDelete"]);
    connect(m_materials, &QComboBox::textActivated, this, &ViewSettingsPage::materialChosen);
    connect(m_materialName, &QLineEdit::textEdited, this, &ViewSettingsPage::materialNameEdited);
    connect(m_materialName, &QLineEdit::editingFinished, this,
            &ViewSettingsPage::materialNameFinished);
    connect(m_shininess, &SliderField::valueChanged, this,
            [this](double value) { emit shininessChanged(qRound(value)); });
    for (int term = 0; term < MaterialEditor::termCount; ++term)
        connect(m_commands[termCommands[term]], &QAction::triggered, this,
                [this, term] { emit colorRequested(term); });
}

void ViewSettingsPage::_buildColorization(RibbonPage &page)
{
    RibbonGroup *group = page.addGroup(tr("Colorization"));
    group->setIcon(icon(QStringLiteral("colorize")));
    auto *offset = new SliderField(QString(), {0, 255, 1, 16, 0, 0, {}});
    offset->setObjectName(QStringLiteral("colorOffset"));
    offset->setMinimumWidth(190);
    offset->setHint(tr("Shifts the height colours of the 2D view."));
    group->addRow(offset, tr("Color Offset"));
    auto *levels = new SliderField(QString(), {2, 256, 1, 16, 64, 0, {}});
    levels->setObjectName(QStringLiteral("quantization"));
    levels->setMinimumWidth(190);
    levels->setHint(tr("Number of height steps that the 2D view shows."));
    group->addRow(levels, tr("Quantization Levels"));
    connect(offset, &SliderField::valueChanged, this, &ViewSettingsPage::colorOffsetChanged);
    connect(levels, &SliderField::valueChanged, this, &ViewSettingsPage::quantizationChanged);
}

void ViewSettingsPage::_buildPointer(RibbonPage &page)
{
    RibbonGroup *group = page.addGroup(tr("Pointer"));
    group->setIcon(icon(QStringLiteral("pointer")));
    m_pointer = new QComboBox;
    m_pointer->setObjectName(QStringLiteral("pointerSize"));
    m_pointer->setToolTip(tr("Size of the mouse pointers"));
    for (const PointerSize &size : pointerSizes)
        m_pointer->addItem(tr(size.label), size.percent);
    m_pointer->setAccessibleName(tr("Pointer"));
    group->addRow(m_pointer);
    connect(m_pointer, &QComboBox::activated, this, &ViewSettingsPage::pointerChosen);
    _addOption(*group, &PointerOptions::wheelZoomsIn, tr("Wheel zooms in"),
               tr("Turning the wheel away from you zooms in."));
}

void ViewSettingsPage::_addOption(RibbonGroup &group, bool PointerOptions::*option,
                                  const QString &label, const QString &hint)
{
    auto *box = new QCheckBox(label);
    box->setToolTip(hint);
    box->setChecked(pointerOptions().*option);
    group.addRow(box);
    connect(box, &QCheckBox::toggled, this, [option](bool on) {
        PointerOptions options = pointerOptions();
        options.*option = on;
        setPointerOptions(options);
    });
}

void ViewSettingsPage::_buildPen(RibbonPage &page)
{
    RibbonGroup *group = page.addGroup(tr("Pen Pressure"));
    group->setIcon(icon(QStringLiteral("pointer")));
    _addOption(*group, &PointerOptions::penStrength, tr("Strength"),
               tr("A lightly pressed pen works weakly."));
    _addOption(*group, &PointerOptions::penSize, tr("Size"),
               tr("A lightly pressed pen has a small brush."));
    auto *curve = new QComboBox;
    curve->setAccessibleName(tr("Pen curve"));
    curve->setToolTip(tr("How hard the pen has to be pressed for the full effect."));
    for (const PenCurve &row : penCurves)
        curve->addItem(QCoreApplication::translate("PenCurves", row.label));
    curve->setCurrentIndex(pointerOptions().penCurve);
    group->addRow(curve);
    connect(curve, &QComboBox::activated, this, [](int index) {
        PointerOptions options = pointerOptions();
        options.penCurve = index;
        setPointerOptions(options);
    });
}

void ViewSettingsPage::_buildTheme(RibbonPage &page)
{
    RibbonGroup *group = page.addGroup(tr("Window"));
    group->addLargeButton(m_commands["theme"]);
    group->addLargeButton(m_commands["viewAlone"]);
    auto *legacy = new QCheckBox(tr("Legacy drawing"));
    legacy->setObjectName(QStringLiteral("legacyDrawing"));
    legacy->setToolTip(tr("Draws the way old graphics drivers understand; slower."));
    legacy->setChecked(QevSettings().useLegacyShader());
    group->addRow(legacy);
    connect(legacy, &QCheckBox::toggled, this, &ViewSettingsPage::legacyChosen);
}

int ViewSettingsPage::lightPosition() const
{
    return m_light->current();
}

void ViewSettingsPage::showLightPosition(int index)
{
    m_light->setCurrent(index);
}

void ViewSettingsPage::showMaterials(const MaterialEditor &editor)
{
    const Material &current = editor.current();
    const QSignalBlocker quiet(m_materials);
    m_materials->clear();
    for (const Material &material : editor.materials())
        m_materials->addItem(ballIcon(material), material.name);
    m_materials->setCurrentText(current.name);
    if (m_materialName->text() != current.name)
        m_materialName->setText(current.name);
    const bool editable = editor.editable();
    const QString locked = tr("A preset cannot be changed. Clone it first.");
    m_materialName->setEnabled(editable);
    m_materialName->setToolTip(editable ? tr("Name of the material") : locked);
    m_shininess->showValue(current.shinyness);
    m_shininess->setEnabled(editable);
    m_shininess->setHint(editable ? tr("How small and sharp the highlights are.") : locked);
    for (int term = 0; term < MaterialEditor::termCount; ++term) {
        QAction *action = m_commands[termCommands[term]];
        action->setEnabled(editable);
        action->setIcon(swatch(editor.color(term), m_materials->palette().color(QPalette::Mid)));
    }
    m_commands["materialDelete"]->setEnabled(editable);
}

void ViewSettingsPage::beginNaming()
{
    m_materialName->setFocus();
    m_materialName->selectAll();
}

void ViewSettingsPage::showPointerSize(int percent)
{
    m_pointer->setCurrentIndex(qMax(0, m_pointer->findData(percent)));
}

void ViewSettingsPage::showTheme(bool dark)
{
    QAction *action = m_commands["theme"];
    action->setText(dark ? tr("Light") : tr("Dark"));
    action->setIcon(icon(dark ? QStringLiteral("Theme Light") : QStringLiteral("Theme Dark")));
}

} // namespace marlowen
