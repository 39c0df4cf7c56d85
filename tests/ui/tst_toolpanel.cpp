#include "ui/panels/toolpanel.h"

#include "relief/tools/alphabrush.h"
#include "relief/tools/tooltable.h"
#include "theme.h"
#include "ui/panels/choicerow.h"
#include "ui/ribbon/numberfield.h"
#include "ui/ribbon/sliderfield.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QSlider>
#include <QToolButton>
#include <QtTest>

using namespace marlowen;

namespace {

SliderField *sliderNamed(ToolPanel &panel, const char *name)
{
    return panel.findChild<SliderField *>(QLatin1String(name));
}

QCheckBox *boxNamed(ToolPanel &panel, const char *text)
{
    for (QCheckBox *box : panel.findChildren<QCheckBox *>()) {
        if (box->text() == QLatin1String(text))
            return box;
    }
    return nullptr;
}

ChoiceRow *choices(ToolPanel &panel, const char *label)
{
    for (ChoiceRow *row : panel.findChildren<ChoiceRow *>()) {
        if (row->label()->text() == QLatin1String(label))
            return row;
    }
    return nullptr;
}

void typeNumber(SliderField &field, const QString &text)
{
    NumberField *number = field.number();
    number->setFocus();
    number->selectAll();
    QTest::keyClicks(number, text);
    QTest::keyClick(number, Qt::Key_Return);
}

void showTool(ToolPanel &panel, Tool::Type type)
{
    ToolParams params = panel.params();
    params.type = type;
    panel.showParams(params);
}

} // namespace

class TestToolPanel : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { wearTheme(false); }

    void init()
    {
        AlphaBrush::instance().setImage({});
        AlphaBrush::instance().mode = AlphaBrush::Shape;
        AlphaBrush::instance().repeatCount = 3;
        m_panel = std::make_unique<ToolPanel>();
        m_panel->resize(320, 640);
        m_panel->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_panel.get()));
    }

    void cleanup() { m_panel.reset(); }

    void typedNumbersReachTheRecordAndTheSignal()
    {
        QSignalSpy size(m_panel.get(), &ToolPanel::ToolSizeChanged);
        QSignalSpy strength(m_panel.get(), &ToolPanel::ToolStrengthChanged);
        typeNumber(*sliderNamed(*m_panel, "Tool Size"), QStringLiteral("80"));
        typeNumber(*sliderNamed(*m_panel, "Tool Strength"), QStringLiteral("60"));
        QCOMPARE(size.size(), 1);
        QCOMPARE(size[0][0].toDouble(), 0.8);
        QCOMPARE(strength[0][0].toDouble(), 0.36);
        QCOMPARE(m_panel->params().strength, 0.36);
    }

    void tabGoesDownThePanel()
    {
        int lowest = 0;
        int met = 0;
        for (QWidget *at = m_panel->nextInFocusChain(); at != m_panel.get();
             at = at->nextInFocusChain()) {
            if (!m_panel->isAncestorOf(at) || !at->isVisible() || !at->isEnabled() ||
                !(at->focusPolicy() & Qt::TabFocus))
                continue;
            const QRect place(at->mapTo(m_panel.get(), QPoint()), at->size());
            QVERIFY2(place.bottom() > lowest, at->metaObject()->className());
            lowest = place.top();
            ++met;
        }
        QVERIFY(met > 10);
    }

    void showingARecordIsSilentAndExact()
    {
        QList<QSignalSpy *> spies;
        const QMetaObject *meta = m_panel->metaObject();
        for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
            if (meta->method(i).methodType() == QMetaMethod::Signal)
                spies << new QSignalSpy(m_panel.get(), meta->method(i));
        }
        QVERIFY(spies.size() >= 10);
        ToolParams params;
        params.type = Tool::Smooth;
        params.mode = Tool::Lower;
        params.form = Tool::Square;
        params.falloff = Tool::SphereFalloff;
        params.size = 0.4711;
        params.strength = 0.123;
        params.useDecay = true;
        params.keepTransparency = false;
        params.smoothToolPaths = true;
        m_panel->showParams(params);
        m_panel->showRelief(true, false, true);
        QCoreApplication::processEvents();
        for (QSignalSpy *spy : spies)
            QCOMPARE(spy->size(), 0);
        qDeleteAll(spies);
        QCOMPARE(m_panel->params().size, 0.4711);
        QCOMPARE(m_panel->params().strength, 0.123);
        QCOMPARE(choices(*m_panel, "Mode")->choice(), 2);
        QCOMPARE(choices(*m_panel, "Form")->choice(), 1);
        QCOMPARE(choices(*m_panel, "Falloff")->choice(), 2);
        QVERIFY(boxNamed(*m_panel, "X")->isChecked());
        QVERIFY(!boxNamed(*m_panel, "Keep Transparency")->isChecked());
        QCOMPARE(sliderNamed(*m_panel, "Tool Size")->slider()->value(), 46);
    }

    void choicesAndChecksReachTheRecordAndTheSignal()
    {
        showTool(*m_panel, Tool::Smooth);
        QSignalSpy mode(m_panel.get(), &ToolPanel::ToolModeChanged);
        QSignalSpy falloff(m_panel.get(), &ToolPanel::ToolFalloffChanged);
        QSignalSpy keep(m_panel.get(), &ToolPanel::ToolKeepTransparencyChanged);
        QSignalSpy symmetry(m_panel.get(), &ToolPanel::SymmetryYChanged);
        QTest::mouseClick(choices(*m_panel, "Mode")->button(1), Qt::LeftButton);
        QTest::mouseClick(choices(*m_panel, "Falloff")->button(3), Qt::LeftButton);
        QTest::keyClick(boxNamed(*m_panel, "Keep Transparency"), Qt::Key_Space);
        QTest::keyClick(boxNamed(*m_panel, "Y"), Qt::Key_Space);
        QCOMPARE(mode[0][0].value<Tool::Mode>(), Tool::Raise);
        QCOMPARE(falloff[0][0].value<Tool::Falloff>(), Tool::ConstantFalloff);
        QCOMPARE(keep[0][0].toBool(), false);
        QCOMPARE(symmetry[0][0].toBool(), true);
        QCOMPARE(m_panel->params().mode, int(Tool::Raise));
        QVERIFY(!sliderNamed(*m_panel, "Tool Hardness")->isEnabled());
    }

    void choosingAToolEmitsItsSignal()
    {
        QSignalSpy tool(m_panel.get(), &ToolPanel::ToolChanged);
        auto *box = m_panel->findChild<QComboBox *>();
        box->setFocus();
        QTest::keyClick(box, Qt::Key_Home);
        QCOMPARE(tool.size(), 1);
        QCOMPARE(tool[0][0].value<Tool::Type>(), Tool::Smooth);
    }

    void onlyWhatTheToolUsesIsEnabled_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QStringList>("enabled");
        const auto row = [](const char *name, Tool::Type type, const QStringList &enabled) {
            QTest::newRow(name) << int(type) << enabled;
        };
        row("smooth", Tool::Smooth,
            {"Tool Size", "Tool Strength", "Tool Hardness", "Mode", "Keep", "Decay"});
        row("deposit", Tool::Deposit,
            {"Tool Size", "Tool Strength", "Tool Hardness", "Limit", "Keep", "Decay", "Invert"});
        row("move", Tool::Move, {"Tool Size", "Tool Hardness", "Keep", "Decay"});
        row("mask", Tool::Mask, {"Tool Size", "Tool Strength", "Tool Hardness", "Mode"});
        row("magic", Tool::Magic, {"Tolerance"});
        row("none", Tool::None, {});
    }

    void onlyWhatTheToolUsesIsEnabled()
    {
        QFETCH(int, type);
        QFETCH(QStringList, enabled);
        showTool(*m_panel, Tool::Type(type));
        QCheckBox *limit = boxNamed(*m_panel, "Ceiling / Floor");
        const QList<std::pair<QString, QWidget *>> controls{
            {"Tool Size", sliderNamed(*m_panel, "Tool Size")},
            {"Tool Strength", sliderNamed(*m_panel, "Tool Strength")},
            {"Tool Hardness", sliderNamed(*m_panel, "Tool Hardness")},
            {"Mode", choices(*m_panel, "Mode")},
            {"Limit", limit ? limit : boxNamed(*m_panel, "Ceiling")},
            {"Keep", boxNamed(*m_panel, "Keep Transparency")},
            {"Decay", boxNamed(*m_panel, "Decay Length")},
            {"Invert", boxNamed(*m_panel, "Invert")},
            {"Tolerance", sliderNamed(*m_panel, "Tolerance")},
        };
        for (const auto &[name, widget] : controls) {
            QVERIFY2(widget->isEnabled() == enabled.contains(name), qPrintable(name));
            if (widget->isEnabled())
                continue;
            auto *field = qobject_cast<SliderField *>(widget);
            auto *row = qobject_cast<ChoiceRow *>(widget);
            const QString tip = field ? field->slider()->toolTip()
                                : row ? row->button(0)->toolTip()
                                      : widget->toolTip();
            QVERIFY2(tip.contains("does not use") || tip.contains("No tool"), qPrintable(name));
        }
    }

    void limitLabelFollowsTheBrush()
    {
        showTool(*m_panel, Tool::Remove);
        QVERIFY(boxNamed(*m_panel, "Floor"));
        QTest::keyClick(boxNamed(*m_panel, "Invert"), Qt::Key_Space);
        QVERIFY(boxNamed(*m_panel, "Ceiling"));
    }

    void aSwitchedSliderNeedsItsSwitch()
    {
        SliderField *length = sliderNamed(*m_panel, "Decay Length");
        QVERIFY(!length->isEnabled());
        QCOMPARE(length->slider()->toolTip(), QStringLiteral("Check Decay Length first."));
        QTest::keyClick(boxNamed(*m_panel, "Decay Length"), Qt::Key_Space);
        QVERIFY(length->isEnabled());
    }

    void alphaModesNeedAnAlphaBrush()
    {
        ChoiceRow *modes = choices(*m_panel, "Alpha");
        QVERIFY(!modes->isEnabled());
        const float grey[]{0.0F, 1.0F, 1.0F, 0.0F};
        AlphaBrush::instance().setImage({grey, 2, 2});
        m_panel->showParams(m_panel->params());
        QVERIFY(modes->isEnabled());
        QVERIFY(!sliderNamed(*m_panel, "Repeat")->isEnabled());
        QVERIFY(!sliderNamed(*m_panel, "Aspect")->isEnabled());
        QVERIFY(sliderNamed(*m_panel, "Tool Hardness")->isEnabled());

        QTest::mouseClick(modes->button(1), Qt::LeftButton);
        QCOMPARE(AlphaBrush::instance().mode, int(AlphaBrush::Tile));
        QVERIFY(sliderNamed(*m_panel, "Aspect")->isEnabled());
        typeNumber(*sliderNamed(*m_panel, "Repeat"), QStringLiteral("7"));
        QCOMPARE(AlphaBrush::instance().repeatCount, 7);

        QTest::mouseClick(modes->button(2), Qt::LeftButton);
        QVERIFY(!sliderNamed(*m_panel, "Tool Hardness")->isEnabled());
        showTool(*m_panel, Tool::Flatten);
        QVERIFY(!modes->isEnabled());
        QVERIFY(sliderNamed(*m_panel, "Tool Hardness")->isEnabled());
    }

    void labelsAreNotClipped()
    {
        for (const ToolRow *row : toolsInOrder()) {
            showTool(*m_panel, row->type);
            for (const QLabel *label : m_panel->findChildren<QLabel *>()) {
                if (label->isVisible())
                    QVERIFY2(label->width() >= label->sizeHint().width(),
                             qPrintable(label->text()));
            }
            for (const QCheckBox *box : m_panel->findChildren<QCheckBox *>())
                QVERIFY2(box->width() >= box->sizeHint().width(), qPrintable(box->text()));
        }
    }

private:
    std::unique_ptr<ToolPanel> m_panel;
};

QTEST_MAIN(TestToolPanel)
#include "tst_toolpanel.moc"
