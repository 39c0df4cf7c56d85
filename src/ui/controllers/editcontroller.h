#pragma once

#include "relief/operations/operationtable.h"
#include "ui/pages/sizepage.h"

#include <QObject>
#include <QPointF>

#include <array>

class QWidget;

namespace marlowen {

class CommandSet;
class EditPage;
class Workbench;

/// The commands that edit the whole relief: size, crop, mask, sample height. Dialogs stand over the
/// window.
class EditController : public QObject
{
    Q_OBJECT

public:
    struct Pages
    {
        SizePage *size;
        EditPage *edit;
    };
    EditController(Workbench &bench, const Pages &pages, QWidget *window);

    /// Runs an edit with a progress box and shows why it failed.
    void apply(const Operation &operation);
    /// X and Y resample the grid, Z sets the height scale; together they are one step back.
    void applySize(const SizeWish &inches);
    /// Empties what lies outside the outline. False when there is none or Crop is not the tool.
    bool applyCrop(const QList<QPointF> &outline);
    /// Runs a row of the operation table that takes no input.
    void run(const char *id) { apply(operation(id)); }
    /// Runs the rows that have commands when these are chosen.
    void connectCommands(const CommandSet &commands);

    /// Shows the sampled height in the unit of the sizes.
    void showSample();
    /// The user typed another sample height.
    void sampleEdited();
    /// Shows the relief's size. What it is now counts as the imported size until the next relief or
    /// import.
    void showSize();
    /// The relief's size of now is the one that it was opened with.
    void startSize();

    /// Enables what can act now; the rest says why it cannot.
    void setupControls(CommandSet &commands, bool cropDrawn) const;

private:
    Workbench &m_bench;
    Pages m_pages;
    QWidget *m_window;
    std::array<double, 3> m_openedSize{}; ///< inches, as the relief was opened
    bool m_imported = false;              ///< it came from a picture or a mesh
};

} // namespace marlowen
