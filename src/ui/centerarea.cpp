#include "ui/centerarea.h"

#include "render/views/facetwin.h"
#include "render/views/flatwin.h"
#include "render/views/sculptwin.h"
#include "ui/recoverypage.h"
#include "ui/startpage.h"
#include "workbench/workbench.h"

#include <QSplitter>

namespace marlowen {

CenterArea::CenterArea(Workbench &bench, QWidget *parent)
    : QStackedWidget(parent)
    , m_bench(bench)
    , m_startPage(new StartPage(this))
    , m_recoveryPage(new RecoveryPage(this))
    , m_splitter(new QSplitter(Qt::Horizontal, this))
    , m_sculptWin(new SculptWin(m_splitter))
    , m_flatWin(new FlatWin(m_splitter))
    , m_facetWin(new FacetWin(this))
{
    m_splitter->setObjectName(QStringLiteral("CentralSplitter"));
    m_sculptWin->setAccessibleName(tr("3D view"));
    m_flatWin->setAccessibleName(tr("2D view"));
    m_splitter->addWidget(m_sculptWin);
    m_splitter->addWidget(m_flatWin);
    m_splitter->setSizes({600, 400});
    m_splitter->setStretchFactor(View3d, 3);
    m_splitter->setStretchFactor(View2d, 2);
    addWidget(m_splitter);
    addWidget(m_startPage);
    addWidget(m_facetWin);
    m_facetWin->setMinimumSize(80, 80);
    addWidget(m_recoveryPage);
    if (StartPage::shownAtStartup())
        showStartPage();
    _setUp(*m_sculptWin);
    _setUp(*m_flatWin);
    connect(m_flatWin, &FlatWin::shapeDrawn, &m_bench,
            [this](const SelectionEdit &edit) { m_bench.apply(selectionOperation(edit)); });
}

void CenterArea::_setUp(ReliefView &view)
{
    view.setMinimumSize(80, 80);
    view.setFocusPolicy(Qt::StrongFocus);
    view.setChanges(&m_bench.changes());
    view.setTool(&m_bench.tool);
    connect(&view, &ReliefView::reliefEdited, &m_bench, &Workbench::strokeEnded);
    connect(&view, &ReliefView::selectionChanged, &m_bench, &Workbench::strokeEnded);
}

void CenterArea::showRelief()
{
    setCurrentWidget(m_splitter);
    m_sculptWin->setRelief(m_bench.relief());
    m_flatWin->setRelief(m_bench.relief());
}

void CenterArea::showStartPage()
{
    m_startPage->setBack(m_bench.relief() || m_bench.model);
    setCurrentWidget(m_startPage);
    m_startPage->setFocus();
}

void CenterArea::leaveStartPage()
{
    if (m_bench.model)
        return showModel(true);
    setCurrentWidget(m_splitter);
    m_sculptWin->setFocus();
}

void CenterArea::showModel(bool on)
{
    if (on)
        setCurrentWidget(m_facetWin);
    else if (m_bench.relief() || !StartPage::shownAtStartup())
        setCurrentWidget(m_splitter);
    else
        showStartPage();
}

void CenterArea::showRecovery(bool shown)
{
    if (shown)
        setCurrentWidget(m_recoveryPage);
    else
        showModel(m_bench.model != nullptr);
}

void CenterArea::letGo()
{
    m_facetWin->setMesh(nullptr);
    m_sculptWin->setRelief(nullptr);
    m_flatWin->setRelief(nullptr);
    m_sculptWin->setChanges(nullptr);
    m_flatWin->setChanges(nullptr);
}

void CenterArea::setReason(const QString &reason)
{
    SculptEngine *engine = reason.isEmpty() ? &m_bench.engine() : nullptr;
    m_sculptWin->setEngine(engine);
    m_flatWin->setEngine(engine);
    m_sculptWin->setReason(reason);
    m_flatWin->setReason(reason);
}

void CenterArea::setUnit(int unit)
{
    m_sculptWin->setUnit(unit);
    m_flatWin->setUnit(unit);
}

void CenterArea::zoomAll()
{
    if (currentWidget() == m_facetWin)
        return m_facetWin->zoomAll();
    m_sculptWin->zoomAll();
    m_flatWin->zoomAll();
}

void CenterArea::fit()
{
    for (SurfaceView *view :
         std::initializer_list<SurfaceView *>{m_sculptWin, m_flatWin, m_facetWin})
        view->fit();
}

void CenterArea::refresh()
{
    m_sculptWin->refresh();
    m_flatWin->refresh();
}

void CenterArea::toggleAlone()
{
    const QList<int> sizes = m_splitter->sizes();
    const bool alone = sizes.contains(0);
    if (alone && m_sizesOfBoth.isEmpty())
        m_sizesOfBoth = {600, 400};
    if (!alone)
        m_sizesOfBoth = sizes;
    const bool flat = m_flatWin->hasFocus();
    m_splitter->setSizes(alone ? m_sizesOfBoth : QList<int>{flat ? 0 : 1, flat ? 1 : 0});
}

double CenterArea::zoom() const
{
    const bool flatAlone = m_splitter->sizes().value(View3d) == 0;
    return (flatAlone ? m_flatWin->camera() : m_sculptWin->camera()).zoom;
}

void CenterArea::bringForward(View view)
{
    const QList<int> sizes = m_splitter->sizes();
    if (sizes.size() != 2 || sizes[view] > 0)
        return;
    const int half = (sizes[View3d] + sizes[View2d]) / 2;
    m_splitter->setSizes({half, half});
}

} // namespace marlowen
