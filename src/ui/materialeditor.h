#pragma once

#include "base/result.h"
#include "render/light/materials.h"

#include <QObject>

namespace marlowen {

/// The list of materials and the current one, with the edits a user can make to their own. Every
/// edit is stored at once.
class MaterialEditor : public QObject
{
    Q_OBJECT

public:
    enum Term { Ambient, Diffuse, Specular };
    static constexpr int termCount = 3;

    /// Starts with the material of this name, the default one when there is none.
    explicit MaterialEditor(const QString &name, QObject *parent = nullptr);

    const QList<Material> &materials() const { return m_materials; }
    const Material &current() const { return m_current; }
    bool editable() const { return !m_current.readOnly; }
    QColor color(int term) const;

    void choose(const QString &name);
    /// These change nothing on a preset.
    void setColor(int term, const QColor &color);
    void setShininess(int value);
    /// Fails for an empty name, a name with a slash and a name that is taken; the name stays.
    Outcome rename(const QString &name);
    /// Makes an editable copy the current material.
    Outcome clone();
    /// Removes the current material; the default one becomes current.
    Outcome remove();

signals:
    /// The current material looks different or another one is current.
    void currentChanged();
    /// Names came or went.
    void listChanged();

private:
    static QColor Material::*_member(int term);
    void _store();

    QList<Material> m_materials;
    Material m_current;
};

} // namespace marlowen
