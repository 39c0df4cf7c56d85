#pragma once

#include <QObject>
#include <QString>

class QWidget;

namespace marlowen {

class FacetWin;
class FlatWin;
class MaterialEditor;
class MaterialSwatch;
class SculptWin;
class StartPage;
class ViewSettingsPage;

/// The look of the views: light, material, colours of the heights, pointer size, theme, backdrop.
/// Dialogs stand over the window.
class LookController : public QObject
{
    Q_OBJECT

public:
    struct Parts
    {
        SculptWin *sculptWin;
        FlatWin *flatWin;
        FacetWin *facetWin;
        ViewSettingsPage *page;
        StartPage *startPage = nullptr; ///< may be null
    };
    LookController(const Parts &parts, QWidget *window);

    /// Light and material as they were when a window closed last.
    void restore();
    void store() const;

    /// Whether the user has ever chosen a material.
    static bool materialWasChosen();

    void setLight(int index);
    void chooseMaterial(const QString &name);
    /// Asks for the colour of a MaterialEditor::Term.
    void askForColor(int term);
    void setShininess(int value);
    /// The material's name while it is typed; finishName() renames.
    void editName(const QString &name) { m_typedName = name; }
    void finishName();
    void cloneMaterial();
    /// Asks first.
    void deleteMaterial();
    void setColorOffset(double offset);
    void setQuantization(double levels);
    /// Index into pointerSizes.
    void setPointer(int index);
    /// Draws with the legacy engine from now on.
    void setLegacy(bool on);
    void switchTheme();
    /// The theme's palette changed.
    void showPalette();

private:
    void _showMaterial();

    Parts m_parts;
    QWidget *m_window;
    MaterialEditor *m_materials;
    MaterialSwatch *m_swatch = nullptr; ///< in the corner of the 3D view
    QString m_typedName;
};

} // namespace marlowen
