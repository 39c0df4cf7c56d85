#include "ui/panels/importpanel.h"

#include "relief/grid/relief.h"
#include "theme.h"
#include "ui/panels/sculptpanels.h"
#include "ui/ribbon/numberfield.h"
#include "ui/ribbon/sliderfield.h"

#include <QCheckBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QTabBar>
#include <QToolButton>
#include <QtTest>

using namespace marlowen;

namespace {

/// A ramp over a border of zeros, so that every control has something to change.
FloatGrid ramp(int width, int height)
{
    FloatGrid grid;
    grid.width = width;
    grid.height = height;
    grid.values.resize(size_t(width) * size_t(height));
    for (int y = 1; y < height - 1; ++y) {
        for (int x = 1; x < width - 1; ++x)
            grid.values[size_t(y) * size_t(width) + size_t(x)] = float(10 + x + 2 * y);
    }
    return grid;
}

std::unique_ptr<Relief> openRelief(int width, int height)
{
    return std::make_unique<Relief>(
        std::make_unique<ImportSource>(ramp(width, height), ImportSettings{}));
}

} // namespace

class TestImportPanel : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { wearTheme(false); }

    void init()
    {
        m_session = std::make_unique<ImportSession>();
        m_changes = 0;
        m_panel = std::make_unique<ImportPanel>(m_session.get());
        m_session->changed = [this] {
            ++m_changes;
            m_panel->refresh();
        };
        m_panel->resize(300, 400);
        m_panel->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_panel.get()));
    }

    void cleanup()
    {
        m_session->attach(nullptr);
        m_panel.reset();
    }

    void withoutAnImportNothingCanBeSet()
    {
        QVERIFY(!_box("Flip Y")->isEnabled());
        QVERIFY(!_field("Smoothing")->isEnabled());
        QVERIFY(!_box("Preview")->isEnabled());
        QVERIFY(!_field("Trim")->isEnabled());
        QVERIFY(!_button("Accept")->isEnabled());
        QCOMPARE(_button("Accept")->toolTip(), QStringLiteral("No import is open."));
    }

    void everyControlChangesTheHeights_data()
    {
        QTest::addColumn<QString>("control");
        for (const char *name :
             {"Flip Y", "Invert Z", "Smoothing", "Raise / Lower", "Trim", "Vertical", "Horizontal"})
            QTest::newRow(name) << name;
    }

    void everyControlChangesTheHeights()
    {
        QFETCH(QString, control);
        const auto relief = openRelief(24, 18);
        _open(*relief);
        const std::vector<float> before = _heights(*relief);
        if (QCheckBox *box = _box(control))
            QTest::keyClick(box, Qt::Key_Space);
        else
            QTest::keyClick(_field(control)->slider(), Qt::Key_PageUp);
        QCoreApplication::processEvents();
        QVERIFY(_heights(*relief) != before);
    }

    void changesOfOneTurnAreOneRecompute()
    {
        const auto relief = openRelief(24, 18);
        _open(*relief);
        m_changes = 0;
        for (int position = 1; position <= 20; ++position)
            _field("Trim")->slider()->setValue(position);
        QTest::keyClick(_box("Invert Z"), Qt::Key_Space);
        QCOMPARE(m_changes, 0);
        QTRY_COMPARE(m_session->settings().trim, 20);
        QVERIFY(m_session->settings().invertZ);
        QCOMPARE(m_changes, 1);
    }

    void withoutPreviewSlidersAreDisabled()
    {
        const auto relief = openRelief(24, 18);
        _open(*relief);
        QTest::keyClick(_box("Preview"), Qt::Key_Space);
        for (const char *name : {"Smoothing", "Raise / Lower", "Trim", "Vertical", "Horizontal"}) {
            QVERIFY(!_field(name)->isEnabled());
            QCOMPARE(_field(name)->slider()->toolTip(), QStringLiteral("Check Preview first."));
        }
        QVERIFY(_box("Invert Z")->isEnabled());
        QTest::keyClick(_box("Preview"), Qt::Key_Space);
        QVERIFY(_field("Trim")->isEnabled());
    }

    void aBasReliefIsMadeComparedAndMadeAgain()
    {
        const auto relief = openRelief(24, 18);
        _open(*relief);
        const std::vector<float> before = _heights(*relief);
        QVERIFY(!_button("Update")->isEnabled());
        QVERIFY(!_field("Contrast Factor")->isEnabled());
        QTest::keyClick(_box("On / Off"), Qt::Key_Space);
        QVERIFY(_field("Contrast Factor")->isEnabled());
        QTRY_VERIFY(m_session->settings().basRelief);
        QVERIFY(_button("Update")->isEnabled());
        QVERIFY(!_button("Compare")->isEnabled());
        connect(m_panel.get(), &ImportPanel::UpdateClicked, m_panel.get(), [this] {
            Progress progress;
            m_session->update(&progress);
        });
        QTest::mouseClick(_button("Update"), Qt::LeftButton);
        QVERIFY(!m_session->dirty());
        QVERIFY(!_button("Update")->isEnabled());
        QVERIFY(_heights(*relief) != before);
        QTest::mousePress(_button("Compare"), Qt::LeftButton);
        QVERIFY(_heights(*relief) == before);
        QTest::mouseRelease(_button("Compare"), Qt::LeftButton);
        QVERIFY(_heights(*relief) != before);
        QTest::keyClick(_field("Trim")->slider(), Qt::Key_Right);
        QTRY_VERIFY(_button("Update")->isEnabled());
    }

    void theNoticeFlipsThePictureOrIsDismissed()
    {
        const auto relief = openRelief(24, 18);
        _open(*relief);
        QSignalSpy answered(m_panel.get(), &ImportPanel::FlipAnswered);
        m_panel->askToFlip(true);
        QTest::mouseClick(_button("Flip Y"), Qt::LeftButton);
        QVERIFY(m_session->settings().flipY);
        QVERIFY(_box("Flip Y")->isChecked());
        QTest::mouseClick(_byText<QToolButton>(QStringLiteral("\u00d7")), Qt::LeftButton);
        QVERIFY(m_session->settings().flipY);
        QTest::keyClick(_box("Flip Y"), Qt::Key_Space);
        QCOMPARE(answered.size(), 3);
    }

    void acceptIncludesPendingChanges()
    {
        const auto relief = openRelief(24, 18);
        _open(*relief);
        QSignalSpy accepted(m_panel.get(), &ImportPanel::AcceptClicked);
        _field("Trim")->slider()->setValue(4);
        QTest::mouseClick(_button("Accept"), Qt::LeftButton);
        QCOMPARE(accepted.size(), 1);
        QCOMPARE(m_session->settings().trim, 4);
        m_session->accept();
        QVERIFY(!_button("Accept")->isEnabled());
        QVERIFY(!_field("Trim")->isEnabled());
    }

    void aNewImportIsShownInTheControls()
    {
        const auto relief = openRelief(24, 18);
        ImportSettings settings;
        settings.invertZ = true;
        settings.smoothing = 1.5;
        settings.tiltVertical = -35;
        static_cast<ImportSource *>(relief->source())->setSettings(settings);
        m_changes = 0;
        _open(*relief);
        QVERIFY(_box("Invert Z")->isChecked());
        QCOMPARE(_field("Smoothing")->value(), 1.5);
        QCOMPARE(_field("Vertical")->number()->text(), QStringLiteral("-3.5°"));
        QCoreApplication::processEvents();
        QCOMPARE(m_changes, 0);
    }

    /// A slider dragged along its whole length must not queue up work.
    void draggingRecomputesOncePerMove()
    {
        const auto relief = openRelief(60, 60);
        _open(*relief);
        QSlider *slider = _field("Smoothing")->slider();
        QTest::mousePress(slider, Qt::LeftButton, {}, QPoint(4, slider->height() / 2));
        m_changes = 0;
        constexpr int moves = 20;
        for (int i = 1; i <= moves; ++i) {
            const int x = 4 + i * (slider->width() - 8) / moves;
            QTest::mouseMove(slider, QPoint(x, slider->height() / 2));
            QCoreApplication::processEvents();
        }
        QTest::mouseRelease(slider, Qt::LeftButton, {},
                            QPoint(slider->width() - 4, slider->height() / 2));
        QTRY_COMPARE(m_session->settings().smoothing, _field("Smoothing")->value());
        QVERIFY(m_changes <= moves + 1);
    }

private:
    SliderField *_field(const QString &name) { return m_panel->findChild<SliderField *>(name); }

    template <typename Button>
    Button *_byText(const QString &text)
    {
        for (Button *button : m_panel->findChildren<Button *>()) {
            if (button->text() == text)
                return button;
        }
        return nullptr;
    }

    QCheckBox *_box(const QString &text) { return _byText<QCheckBox>(text); }
    QPushButton *_button(const QString &text) { return _byText<QPushButton>(text); }

    void _open(Relief &relief)
    {
        m_session->attach(&relief);
        m_panel->refresh();
    }

    static std::vector<float> _heights(const Relief &relief)
    {
        const float *values = relief.heights().constData();
        return {values, values + relief.cells()};
    }

    std::unique_ptr<ImportSession> m_session;
    std::unique_ptr<ImportPanel> m_panel;
    int m_changes = 0;
};

QTEST_MAIN(TestImportPanel)
#include "tst_importpanel.moc"
