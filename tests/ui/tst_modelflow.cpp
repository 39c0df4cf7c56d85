#include "base/qevsettings.h"
#include "files/formats.h"
#include "files/workspacefile.h"
#include "personathand.h"
#include "relief/grid/relief.h"
#include "relief/operations/operationtable.h"
#include "ui/commandset.h"
#include "ui/mainwindow.h"
#include "ui/ribbon/numberfield.h"
#include "ui/ribbon/ribbonbar.h"

#include <QtTest>
#include <QtWidgets>

using namespace marlowen;

namespace {

constexpr int wide = 90;
constexpr int high = 70;

/// A dome of real heights inside the grid on a plate that reaches its edges.
std::unique_ptr<Relief> plateWithDome()
{
    auto relief = std::make_unique<Relief>(wide, high);
    for (int row = 0; row < high; ++row) {
        for (int column = 0; column < wide; ++column) {
            const double x = (column - 40.0) / 30.0;
            const double y = (row - 30.0) / 25.0;
            relief->heights().data()[row * wide + column] =
                float(2.0 + 17.3 * std::max(0.0, 1.0 - x * x - y * y));
        }
    }
    relief->referenceLayer().copyFrom(relief->heights());
    return relief;
}

QByteArray heightsOf(const Relief &relief)
{
    return QByteArray(reinterpret_cast<const char *>(relief.heights().constData()),
                      relief.cells() * qsizetype(sizeof(float)));
}

} // namespace

/// A model from its file to the relief, in the window.
class TestModelFlow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void cleanupTestCase() { m_window.reset(); }

    void cancelledModelLeavesTheReliefUntouched();
    void exportedReliefComesBackCellForCell();
    void unitsAndSizesMeetTheLimit();
    void turningAndLocksCarryOver();
    void guardAndProblemsAskOnce();

private:
    QString _path(const char *name) const { return m_folder->filePath(QLatin1String(name)); }
    template <typename T>
    T *_child(const char *name) const
    {
        return m_window->findChild<T *>(QLatin1String(name));
    }
    void _open(const char *name) { QVERIFY(m_window->openFile(_path(name), 0)); }
    const FacetShape &_shape() { return m_window->workbench().model->shape; }
    double _size(const char *field) const { return _child<NumberField>(field)->value(); }
    bool _pageShown() const
    {
        return m_window->ribbonBar()->isPageVisible(WindowPages::OrientScale) &&
               m_window->ribbonBar()->currentPage() == WindowPages::OrientScale;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<MainWindow> m_window;
    std::unique_ptr<Relief> m_relief;
};

void TestModelFlow::init()
{
    QevSettings().clear();
    QevSettings().setValue(QStringLiteral("model/unit"), 0);
    m_folder = std::make_unique<QTemporaryDir>();
    m_relief = plateWithDome();
    QVERIFY(saveWorkspace(*m_relief, _path("dome.scp")));
    QVERIFY(exportFile({*m_relief, _path("dome.stl")}));
    QFile box(_path("box.obj"));
    QVERIFY(box.open(QIODevice::WriteOnly));
    box.write("v 0 0 0\nv 20 0 0\nv 20 30 1\nv 0 30 1\nv 0 0 x\nf 1 2 3 4\nf 1 9 2\n");
    if (m_window) {
        PersonAtHand person;
        person.answers = {QMessageBox::Discard};
        return _open("dome.scp");
    }
    m_window = std::make_unique<MainWindow>();
    m_window->resize(1024, 700);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void TestModelFlow::cleanup()
{
    if (QTest::currentTestFailed())
        m_window.reset();
}

void TestModelFlow::cancelledModelLeavesTheReliefUntouched()
{
    _open("dome.scp");
    QVERIFY(m_window->workbench().apply(operation("zScale", {{2.5}})));
    const QByteArray before = heightsOf(*m_window->workbench().relief());
    CommandSet &commands = m_window->commands();
    PersonAtHand person;
    person.answers = {QMessageBox::Discard};
    _open("dome.stl");
    QCOMPARE(person.sentences.size(), 1);
    QVERIFY(_pageShown());
    QVERIFY(m_window->windowTitle().contains(QLatin1String("dome.stl")));
    for (const char *id : {"undo", "save", "maskClear"})
        QVERIFY2(!commands[id]->isEnabled(), id);
    // In a field the key only leaves the field.
    _child<NumberField>("modelSize0")->setFocus();
    QTest::keyClick(m_window.get(), Qt::Key_Escape);
    QVERIFY(m_window->workbench().model);
    QTest::keyClick(m_window.get(), Qt::Key_Escape);
    QVERIFY(!m_window->workbench().model);
    QVERIFY(!m_window->ribbonBar()->isPageVisible(WindowPages::OrientScale));
    QVERIFY(m_window->windowTitle().contains(QLatin1String("dome.scp *")));
    QCOMPARE(heightsOf(*m_window->workbench().relief()), before);
    QVERIFY(commands["undo"]->isEnabled() && commands["save"]->isEnabled());
}

void TestModelFlow::exportedReliefComesBackCellForCell()
{
    _open("dome.stl");
    QCOMPARE(_child<QLabel>("modelCells")->text(), QStringLiteral("90 × 70"));
    QTest::mouseClick(_child<QPushButton>("modelAccept"), Qt::LeftButton);
    QVERIFY(!m_window->workbench().model);
    QVERIFY(m_window->workbench().session().active());
    const Relief &relief = *m_window->workbench().relief();
    QCOMPARE(QSize(relief.width(), relief.height()), QSize(wide, high));
    // The lowest level becomes empty.
    for (qsizetype cell = 0; cell < relief.cells(); ++cell) {
        const float expected = m_relief->heights().constData()[cell] - 2.0F;
        QVERIFY(std::abs(relief.heights().constData()[cell] - expected) < 1e-5F);
    }
    QVERIFY(QevSettings().recentFiles().constFirst().endsWith(QLatin1String("dome.stl")));
}

void TestModelFlow::unitsAndSizesMeetTheLimit()
{
    PersonAtHand person;
    person.answers = {QMessageBox::Ok};
    QevSettings().setValue(QStringLiteral("model/unit"), 2);
    _open("box.obj"); // with one box about its problems
    QPushButton *accept = _child<QPushButton>("modelAccept");
    QCOMPARE(accept->text(), QStringLiteral("Accept"));
    _child<QComboBox>("modelUnits")->setCurrentIndex(0);
    emit _child<QComboBox>("modelUnits")->activated(0); // 600 square inches
    QCOMPARE(accept->text(), QStringLiteral("Accept"));
    person.answers = {QMessageBox::Ok};
    _child<NumberField>("modelSize0")->setValue(30.0);
    QVERIFY(person.sentences.last().startsWith(
        QLatin1String("That would make the pattern 1350.0 square inches.")));
    QCOMPARE(_size("modelSize0"), 20.0);
    m_window->workbench().model->shape.setScale({2.0, 2.0, 1.0});
    m_window->commands()["rotateLeft"]->trigger();
    m_window->commands()["rotateRight"]->trigger();
    QCOMPARE(accept->text(), QStringLiteral("Too \n Big"));
    QTest::mouseClick(accept, Qt::LeftButton);
    QVERIFY(m_window->workbench().model);
    _child<NumberField>("modelSize0")->setValue(35.0); // smaller, though still too big
    QCOMPARE(_size("modelSize1"), 52.5);
    emit _child<QComboBox>("modelFactor0")->activated(5); // Reset
    QCOMPARE(accept->text(), QStringLiteral("Accept"));
    QCOMPARE(_shape().scale(), (std::array<double, 3>{1.0, 1.0, 1.0}));
}

void TestModelFlow::turningAndLocksCarryOver()
{
    _open("dome.stl");
    const double x = _size("modelSize0");
    const double z = _size("modelSize2");
    m_window->commands()["rotateRight"]->trigger();
    QCOMPARE(_size("modelSize0"), z);
    QCOMPARE(_size("modelSize2"), x);
    m_window->commands()["resetModel"]->trigger();
    m_window->commands()["modelLock"]->trigger();         // free
    emit _child<QComboBox>("modelFactor2")->activated(6); // 2
    QCOMPARE(_shape().scale(), (std::array<double, 3>{1.0, 1.0, 2.0}));
    QCOMPARE(m_window->commands()["spinLeft"]->toolTip(),
             QStringLiteral("Rotate the model 90 degrees about the Z axis"));
    m_window->commands()["invertNormals"]->trigger();
    QVERIFY(_shape().invertNormals);
}

void TestModelFlow::guardAndProblemsAskOnce()
{
    _open("dome.scp");
    QVERIFY(m_window->workbench().apply(operation("zScale", {{2.5}})));
    PersonAtHand person;
    person.answers = {QMessageBox::Cancel};
    QVERIFY(!m_window->openFile(_path("box.obj"), 0));
    QVERIFY(!m_window->workbench().model);
    person.answers = {QMessageBox::Discard, QMessageBox::Ok};
    _open("box.obj");
    QVERIFY(person.sentences.last().contains(QLatin1String("ObjFileReader: bad double (x)")));
    m_window->workbench().model->shape.turn(ModelTurn::Up); // nothing to be seen from above
    const auto asked = person.sentences.size();
    QFile(_path("gone.stl")).open(QIODevice::WriteOnly);
    person.answers = {QMessageBox::Discard, QMessageBox::Ok};
    QVERIFY(!m_window->openFile(_path("gone.stl"), 0));
    QCOMPARE(person.sentences.size(), asked + 2);
    QVERIFY(m_window->workbench().model); // the open model stays
}

QTEST_MAIN(TestModelFlow)
#include "tst_modelflow.moc"
