#pragma once

#include "base/result.h"

#include <QColor>
#include <QList>
#include <QString>

#include <array>

namespace marlowen {

/// What the lit relief is made of. The alpha of each colour is the strength of its term.
struct Material
{
    QString name; ///< unique in the list; also its settings group
    QColor ambient;
    QColor diffuse;
    QColor specular;
    double shinyness = 0.0; ///< exponent of the highlight
    bool readOnly = false;  ///< a preset

    bool operator==(const Material &) const = default;
};

/// The material of a new user: "obsidian".
extern const char *const defaultMaterialName;

/// The read-only materials, in the order of the choice.
const QList<Material> &presetMaterials();

/// The user's materials in the order of the settings store, then the presets. A stored colour that
/// cannot be read is an invalid QColor, a stored shininess that is not a number from 0 to 1000
/// becomes the nearest that is (0 for no number); a group without a name has its group's.
QList<Material> loadMaterials();

/// The material of that name; the default one when there is none.
Material materialNamed(const QList<Material> &materials, const QString &name);

/// Stores the material as the user's own, over one of the same name. Fails for the name of a
/// preset, an empty name and one with a slash or backslash, which would nest in the store.
Outcome saveMaterial(const Material &material);
/// Removes a user material; fails for a preset. An unknown name is not an error.
Outcome deleteMaterial(const QString &name);

/// An editable copy under a name that the list does not hold: "gold copy", "gold copy 2", ...
Material clonedMaterial(const Material &original, const QList<Material> &materials);

/// Red, green, blue, alpha in 0..1; an invalid colour is opaque black.
std::array<float, 4> rgbaOf(const QColor &color);

} // namespace marlowen
