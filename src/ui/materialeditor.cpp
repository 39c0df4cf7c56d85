#include "ui/materialeditor.h"

#include <algorithm>

namespace marlowen {

MaterialEditor::MaterialEditor(const QString &name, QObject *parent)
    : QObject(parent)
    , m_materials(loadMaterials())
    , m_current(materialNamed(m_materials, name))
{
}

QColor Material::*MaterialEditor::_member(int term)
{
    static constexpr QColor Material::*members[termCount] = {&Material::ambient, &Material::diffuse,
                                                             &Material::specular};
    return members[qBound(0, term, termCount - 1)];
}

QColor MaterialEditor::color(int term) const
{
    return m_current.*_member(term);
}

void MaterialEditor::choose(const QString &name)
{
    m_current = materialNamed(m_materials, name);
    emit currentChanged();
}

void MaterialEditor::setColor(int term, const QColor &color)
{
    if (!editable() || !color.isValid())
        return;
    m_current.*_member(term) = color;
    _store();
}

void MaterialEditor::setShininess(int value)
{
    if (!editable() || qRound(m_current.shinyness) == value)
        return;
    m_current.shinyness = value;
    _store();
}

void MaterialEditor::_store()
{
    if (saveMaterial(m_current))
        m_materials = loadMaterials();
    emit currentChanged();
}

Outcome MaterialEditor::rename(const QString &name)
{
    if (!editable() || name == m_current.name)
        return {};
    const bool taken = std::ranges::any_of(
        m_materials, [&name](const Material &material) { return material.name == name; });
    if (taken)
        return Failure{tr("Materials"), tr("A material of that name exists already.")};
    Material renamed = m_current;
    renamed.name = name;
    if (const Outcome saved = saveMaterial(renamed); !saved)
        return saved;
    const Outcome removed = deleteMaterial(m_current.name);
    m_materials = loadMaterials();
    m_current = renamed;
    emit listChanged();
    return removed;
}

Outcome MaterialEditor::clone()
{
    const Material copy = clonedMaterial(m_current, m_materials);
    if (const Outcome saved = saveMaterial(copy); !saved)
        return saved;
    m_materials = loadMaterials();
    m_current = copy;
    emit listChanged();
    return {};
}

Outcome MaterialEditor::remove()
{
    if (const Outcome removed = deleteMaterial(m_current.name); !removed)
        return removed;
    m_materials = loadMaterials();
    m_current = materialNamed(m_materials, QString());
    emit listChanged();
    emit currentChanged();
    return {};
}

} // namespace marlowen
