#include "ui/statusline.h"

#include "base/numbertext.h"
#include "relief/grid/physicalsize.h"
#include "relief/grid/relief.h"
#include "workbench/step.h"

#include <QCoreApplication>
#include <QLabel>
#include <QStatusBar>

namespace marlowen {

StatusLine::StatusLine(QStatusBar &bar)
    : m_bar(&bar)
    , m_position(new QLabel)
    , m_extent(new QLabel)
{
    m_position->setObjectName(QStringLiteral("position"));
    m_extent->setObjectName(QStringLiteral("extent"));
    bar.setContentsMargins(4, 0, 4, 0); // where messages begin, too
    bar.addWidget(m_position, 1);
    bar.addPermanentWidget(m_extent);
}

void StatusLine::showPosition(const QString &text)
{
    m_position->setText(text);
}

void StatusLine::nameStep(const Step &step)
{
    if (step.events.empty())
        return;
    const QByteArray name = step.events.back()->name.toLatin1();
    const QString text =
        step.kind == Step::Undo ? QObject::tr("Undone: %1") : QObject::tr("Done again: %1");
    m_bar->showMessage(text.arg(QCoreApplication::translate("Commands", name.constData())), 4000);
}

void StatusLine::showExtent(const Relief *relief, int unit, double zoom)
{
    if (!relief)
        return m_extent->clear();
    const LengthUnit &shown = lengthUnits[static_cast<size_t>(unit)];
    const auto length = [&shown](int cells) {
        return numberText(cells / cellsPerInch / shown.inches, 2);
    };
    m_extent->setText(QStringLiteral("%1 × %2  ·  %3 × %4 %5  ·  %6 %")
                          .arg(relief->width())
                          .arg(relief->height())
                          .arg(length(relief->width()), length(relief->height()), unitLabel(shown))
                          .arg(qRound(zoom * 100)));
}

} // namespace marlowen
