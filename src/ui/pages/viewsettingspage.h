#pragma once

#include "ui/ribbon/ribbonbutton.h"

#include <QObject>

#include <array>

class QComboBox;
class QLineEdit;

namespace marlowen {

class CommandSet;
class MaterialEditor;
class RibbonGallery;
class RibbonGroup;
struct PointerOptions;
class RibbonPage;
class SliderField;

/// The controls of the page "View Settings": light, material, height colours, pointer size, theme.
/// They emit what the user chose; show...() updates them silently.
class ViewSettingsPage : public QObject
{
    Q_OBJECT

public:
    ViewSettingsPage(RibbonPage &page, CommandSet &commands, QObject *parent);

    /// The commands that buildGroups needs; add before making the page.
    static void addCommands(CommandSet &commands);

    int lightPosition() const;
    void showLightPosition(int index);
    /// Shows the editor's list, its current material and what can be done with it.
    void showMaterials(const MaterialEditor &editor);
    /// Puts the keyboard into the name of the material, all of it selected.
    void beginNaming();
    /// The choice with this percentage, the first when there is none.
    void showPointerSize(int percent);
    /// The theme in force; the switch offers the other one.
    void showTheme(bool dark);

signals:
    void lightChosen(int index);
    void materialChosen(const QString &name);
    void materialNameEdited(const QString &name);
    void materialNameFinished();
    void colorRequested(int term);
    void shininessChanged(int value);
    void colorOffsetChanged(double offset);
    void quantizationChanged(double levels);
    /// Index of the choice.
    void pointerChosen(int index);
    void legacyChosen(bool on);

private:
    void _buildLight(RibbonPage &page);
    void _buildMaterials(RibbonPage &page);
    void _buildColorization(RibbonPage &page);
    void _buildPointer(RibbonPage &page);
    void _buildPen(RibbonPage &page);
    /// A check box for an option of wheel and pen.
    void _addOption(RibbonGroup &group, bool PointerOptions::*option, const QString &label,
                    const QString &hint);
    void _buildTheme(RibbonPage &page);

    CommandSet &m_commands;
    RibbonGallery *m_light = nullptr;
    QComboBox *m_materials = nullptr;
    QLineEdit *m_materialName = nullptr;
    SliderField *m_shininess = nullptr;
    QComboBox *m_pointer = nullptr;
};

/// A pointer-size choice.
struct PointerSize
{
    const char *label;
    int percent;
};
inline constexpr std::array<PointerSize, 4> pointerSizes{
    {{QT_TRANSLATE_NOOP("marlowen::ViewSettingsPage", "Normal"), 100},
     {QT_TRANSLATE_NOOP("marlowen::ViewSettingsPage", "Large"), 150},
     {QT_TRANSLATE_NOOP("marlowen::ViewSettingsPage", "Larger"), 200},
     {QT_TRANSLATE_NOOP("marlowen::ViewSettingsPage", "Largest"), 300}}};

} // namespace marlowen
