#include "render/light/materials.h"

#include "base/qevsettings.h"

#include <algorithm>
#include <cmath>

namespace marlowen {

const char *const defaultMaterialName = "obsidian";

namespace {

const QString groupName = QStringLiteral("materials");
constexpr double largestShinyness = 1000.0;

struct Preset
{
    const char *name;
    std::array<float, 4> ambient;
    std::array<float, 4> diffuse;
    std::array<float, 4> specular;
    double shinyness;
};

// clang-format off
constexpr Preset presets[] = {
    {"Tan",
     {0.15F, 0.1F, 0.05F, 1.0F}, {0.6F, 0.4F, 0.2F, 1.0F},
     {0.0F, 0.0F, 0.0F, 0.0F}, 0.0},
    {"brass",
     {0.329412F, 0.223529F, 0.027451F, 1.0F}, {0.780392F, 0.568627F, 0.113725F, 1.0F},
     {0.992157F, 0.941176F, 0.807843F, 1.0F}, 27.8974},
    {"bronze",
     {0.2125F, 0.1275F, 0.054F, 1.0F}, {0.714F, 0.4284F, 0.18144F, 1.0F},
     {0.393548F, 0.271906F, 0.166721F, 1.0F}, 25.6},
    {"polished bronze",
     {0.25F, 0.148F, 0.06475F, 1.0F}, {0.4F, 0.2368F, 0.1036F, 1.0F},
     {0.774597F, 0.458561F, 0.200621F, 1.0F}, 76.8},
    {"chrome",
     {0.25F, 0.25F, 0.25F, 1.0F}, {0.4F, 0.4F, 0.4F, 1.0F},
     {0.774597F, 0.774597F, 0.774597F, 1.0F}, 76.8},
    {"copper",
     {0.19125F, 0.0735F, 0.0225F, 1.0F}, {0.7038F, 0.27048F, 0.0828F, 1.0F},
     {0.256777F, 0.137622F, 0.086014F, 1.0F}, 12.8},
    {"polished copper",
     {0.2295F, 0.08825F, 0.0275F, 1.0F}, {0.5508F, 0.2118F, 0.066F, 1.0F},
     {0.580594F, 0.223257F, 0.0695701F, 1.0F}, 51.2},
    {"gold",
     {0.27425F, 0.1995F, 0.0745F, 1.0F}, {0.75164F, 0.60684F, 0.22648F, 1.0F},
     {0.628281F, 0.555802F, 0.366065F, 1.0F}, 51.2},
    {"polished gold",
     {0.24725F, 0.2245F, 0.0645F, 1.0F}, {0.34615F, 0.3143F, 0.0903F, 1.0F},
     {0.797357F, 0.723991F, 0.208006F, 1.0F}, 83.2},
    {"tin",
     {0.105882F, 0.058824F, 0.113725F, 1.0F}, {0.427451F, 0.470588F, 0.541176F, 1.0F},
     {0.333333F, 0.333333F, 0.521569F, 1.0F}, 9.84615},
    {"silver",
     {0.19225F, 0.19225F, 0.19225F, 1.0F}, {0.50754F, 0.50754F, 0.50754F, 1.0F},
     {0.508273F, 0.508273F, 0.508273F, 1.0F}, 51.2},
    {"polished silver",
     {0.23125F, 0.23125F, 0.23125F, 1.0F}, {0.2775F, 0.2775F, 0.2775F, 1.0F},
     {0.773911F, 0.773911F, 0.773911F, 1.0F}, 89.6},
    {"emerald",
     {0.0215F, 0.1745F, 0.0215F, 0.55F}, {0.07568F, 0.61424F, 0.07568F, 0.55F},
     {0.633F, 0.727811F, 0.633F, 0.55F}, 76.8},
    {"jade",
     {0.135F, 0.2225F, 0.1575F, 0.95F}, {0.54F, 0.89F, 0.63F, 0.95F},
     {0.316228F, 0.316228F, 0.316228F, 0.95F}, 12.8},
    {"obsidian",
     {0.05375F, 0.05F, 0.06625F, 0.82F}, {0.18275F, 0.17F, 0.22525F, 0.82F},
     {0.332741F, 0.328634F, 0.346435F, 0.82F}, 38.4},
    {"pearl",
     {0.25F, 0.20725F, 0.20725F, 0.922F}, {1.0F, 0.829F, 0.829F, 0.922F},
     {0.296648F, 0.296648F, 0.296648F, 0.922F}, 11.264},
    {"ruby",
     {0.1745F, 0.01175F, 0.01175F, 0.55F}, {0.61424F, 0.04136F, 0.04136F, 0.55F},
     {0.727811F, 0.626959F, 0.626959F, 0.55F}, 76.8},
    {"turquoise",
     {0.1F, 0.18725F, 0.1745F, 0.8F}, {0.396F, 0.74151F, 0.69102F, 0.8F},
     {0.297254F, 0.30829F, 0.306678F, 0.8F}, 12.8},
    {"black plastic",
     {0.0F, 0.0F, 0.0F, 1.0F}, {0.01F, 0.01F, 0.01F, 1.0F},
     {0.5F, 0.5F, 0.5F, 1.0F}, 32.0},
    {"cyan plastic",
     {0.0F, 0.1F, 0.06F, 1.0F}, {0.0F, 0.5093839F, 0.5098039F, 1.0F},
     {0.50196075F, 0.50196075F, 0.50196075F, 1.0F}, 32.0},
    {"green plastic",
     {0.0F, 0.0F, 0.0F, 1.0F}, {0.1F, 0.35F, 0.1F, 1.0F},
     {0.45F, 0.55F, 0.45F, 1.0F}, 32.0},
    {"red plastic",
     {0.0F, 0.0F, 0.0F, 1.0F}, {0.5F, 0.0F, 0.0F, 1.0F},
     {0.7F, 0.6F, 0.6F, 1.0F}, 32.0},
    {"white plastic",
     {0.0F, 0.0F, 0.0F, 1.0F}, {0.55F, 0.55F, 0.55F, 1.0F},
     {0.7F, 0.7F, 0.7F, 1.0F}, 32.0},
    {"yellow plastic",
     {0.0F, 0.0F, 0.0F, 1.0F}, {0.5F, 0.5F, 0.0F, 1.0F},
     {0.6F, 0.6F, 0.5F, 1.0F}, 32.0},
};
// clang-format on

QColor colorOf(const std::array<float, 4> &rgba)
{
    return QColor::fromRgbF(rgba[0], rgba[1], rgba[2], rgba[3]);
}

double readableShinyness(const QVariant &stored)
{
    const double value = stored.toDouble();
    return std::isnan(value) ? 0.0 : std::clamp(value, 0.0, largestShinyness);
}

/// Within the group of the material.
Material readMaterial(const QSettings &settings, const QString &group)
{
    Material material;
    material.name = settings.value("name").toString();
    if (material.name.isEmpty())
        material.name = group;
    material.ambient = settings.value("ambient").value<QColor>();
    material.diffuse = settings.value("diffuse").value<QColor>();
    material.specular = settings.value("specular").value<QColor>();
    material.shinyness = readableShinyness(settings.value("shinyness"));
    return material;
}

bool isPreset(const QString &name)
{
    return std::ranges::any_of(presetMaterials(),
                               [&](const Material &preset) { return preset.name == name; });
}

bool contains(const QList<Material> &materials, const QString &name)
{
    return std::ranges::any_of(materials,
                               [&](const Material &material) { return material.name == name; });
}

} // namespace

const QList<Material> &presetMaterials()
{
    static const QList<Material> materials = [] {
        QList<Material> list;
        for (const Preset &preset : presets)
            list.append({QString::fromLatin1(preset.name), colorOf(preset.ambient),
                         colorOf(preset.diffuse), colorOf(preset.specular), preset.shinyness,
                         true});
        return list;
    }();
    return materials;
}

QList<Material> loadMaterials()
{
    QList<Material> materials;
    QevSettings settings;
    settings.beginGroup(groupName);
    for (const QString &group : settings.childGroups()) {
        settings.beginGroup(group);
        materials.append(readMaterial(settings, group));
        settings.endGroup();
    }
    return materials + presetMaterials();
}

Material materialNamed(const QList<Material> &materials, const QString &name)
{
    for (const QString &wanted : {name, QString::fromLatin1(defaultMaterialName)})
        for (const Material &material : materials)
            if (material.name == wanted)
                return material;
    return presetMaterials().front();
}

Outcome saveMaterial(const Material &material)
{
    const QString title = QStringLiteral("Save Material Failed");
    if (material.name.trimmed().isEmpty())
        return Failure{title, QStringLiteral("A material needs a name.")};
    if (material.name.contains('/') || material.name.contains('\\'))
        return Failure{
            title, QStringLiteral("The name of a material cannot contain a slash or backslash.")};
    if (isPreset(material.name))
        return Failure{title, QStringLiteral("\"%1\" is a built-in material and cannot be changed.")
                                  .arg(material.name)};
    QevSettings settings;
    settings.beginGroup(groupName + '/' + material.name);
    settings.setValue("name", material.name);
    settings.setValue("ambient", material.ambient);
    settings.setValue("diffuse", material.diffuse);
    settings.setValue("specular", material.specular);
    settings.setValue("shinyness", material.shinyness);
    settings.setValue("readOnly", false);
    return {};
}

Outcome deleteMaterial(const QString &name)
{
    if (isPreset(name))
        return Failure{
            QStringLiteral("Delete Material Failed"),
            QStringLiteral("\"%1\" is a built-in material and cannot be deleted.").arg(name)};
    QevSettings settings;
    settings.beginGroup(groupName);
    for (const QString &group : settings.childGroups()) {
        const QString stored = settings.value(group + "/name").toString();
        if ((stored.isEmpty() ? group : stored) == name)
            settings.remove(group);
    }
    return {};
}

Material clonedMaterial(const Material &original, const QList<Material> &materials)
{
    Material clone = original;
    clone.readOnly = false;
    const QString base = QStringLiteral("%1 copy").arg(original.name);
    clone.name = base;
    for (int number = 2; contains(materials, clone.name); ++number)
        clone.name = QStringLiteral("%1 %2").arg(base).arg(number);
    return clone;
}

std::array<float, 4> rgbaOf(const QColor &color)
{
    if (!color.isValid())
        return {0.0F, 0.0F, 0.0F, 1.0F};
    return {color.redF(), color.greenF(), color.blueF(), color.alphaF()};
}

} // namespace marlowen
