#pragma once

#include <QStackedWidget>

class QSplitter;

namespace marlowen {

class FacetWin;
class FlatWin;
class ReliefView;
class RecoveryPage;
class SculptWin;
class StartPage;
class Workbench;

/// The middle of the window: the start page, the 3D and the 2D view side by side, or the model that
/// is being oriented.
class CenterArea : public QStackedWidget
{
    Q_OBJECT

public:
    enum View { View3d, View2d };

    /// The views work on the bench, which outlives them or is let go of.
    explicit CenterArea(Workbench &bench, QWidget *parent = nullptr);

    StartPage *startPage() const { return m_startPage; }
    RecoveryPage *recoveryPage() const { return m_recoveryPage; }
    SculptWin *sculptWin() const { return m_sculptWin; }
    FlatWin *flatWin() const { return m_flatWin; }
    FacetWin *facetWin() const { return m_facetWin; }
    QSplitter *splitter() const { return m_splitter; }

    /// Shows the views on the bench's relief.
    void showRelief();
    /// Shows the start page, with a way back when there is a relief.
    void showStartPage();
    void leaveStartPage();
    /// Shows the model, or the relief again.
    void showModel(bool on);
    /// Shows the list of unsaved work, or again what there was before it.
    void showRecovery(bool shown);
    /// The views forget the relief and the bench.
    void letGo();
    /// Strokes act, or a reason says why they do not.
    void setReason(const QString &reason);
    /// Index in lengthUnits of the unit that lengths are shown in.
    void setUnit(int unit);
    void zoomAll();
    /// Shows all of what a view shows, without turning it.
    void fit();
    /// The tool's footprint looks different.
    void refresh();
    /// Shows the view that has the keyboard alone (else the 3D view), or both again.
    void toggleAlone();
    /// The zoom of the 3D view, or of the 2D view where that is shown alone.
    double zoom() const;
    /// Gives a hidden view half of the area; otherwise the splitter is not moved.
    void bringForward(View view);

private:
    void _setUp(ReliefView &view);

    Workbench &m_bench;
    StartPage *m_startPage;
    RecoveryPage *m_recoveryPage;
    QSplitter *m_splitter;
    QList<int> m_sizesOfBoth; ///< before one view was shown alone
    SculptWin *m_sculptWin;
    FlatWin *m_flatWin;
    FacetWin *m_facetWin;
};

} // namespace marlowen
