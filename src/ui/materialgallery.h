#pragma once

#include "render/light/materials.h"

#include <QList>
#include <QToolButton>
#include <QWidget>

class QGridLayout;

namespace marlowen {

/// Materials as lit balls in rows, one click to choose.
class MaterialGallery : public QWidget
{
    Q_OBJECT

public:
    MaterialGallery(const QList<Material> &materials, int columns, QWidget *parent = nullptr);

    /// At least one.
    void setColumns(int columns);
    /// Marks the ball of the material in use; none for a name that is not there.
    void showCurrent(const QString &name);
    /// How many columns so many pixels have room for.
    static int columnsFor(int width);

signals:
    void chosen(const QString &name);

private:
    QGridLayout *m_grid;
    QList<QToolButton *> m_balls;
};

/// A round button that wears the current material and opens a gallery of all. It stays in the lower
/// right corner of its parent.
class MaterialSwatch : public QToolButton
{
    Q_OBJECT

public:
    explicit MaterialSwatch(QWidget *parent);

    void showMaterials(const QList<Material> &materials, const Material &current);

signals:
    void chosen(const QString &name);

protected:
    void paintEvent(QPaintEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void _place();
    void _open();

    QList<Material> m_materials;
    QString m_current;
};

} // namespace marlowen
