#include "ui/newreliefdialog.h"

#include "theme.h"
#include "ui/ribbon/numberfield.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

using namespace marlowen;

class TestNewRelief : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { wearTheme(false); }

    void init()
    {
        m_dialog = std::make_unique<NewReliefDialog>();
        m_dialog->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_dialog.get()));
        QApplication::setActiveWindow(m_dialog.get()); // where no window manager does
    }

    void cleanup() { m_dialog.reset(); }

    void startsWithASizeThatCanBeSculpted()
    {
        QCOMPARE(m_dialog->widthCells(), 1024);
        QCOMPARE(m_dialog->heightCells(), 768);
        QVERIFY(m_dialog->level() > 0.0);
        QVERIFY(_ok()->isEnabled());
    }

    /// Where the comma parts the decimals, the point does so too.
    void numbersOfAGermanLocale()
    {
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        m_dialog->findChild<QComboBox *>()->setCurrentText(QStringLiteral("in."));
        for (const char *typed : {"2,5", "2.5"}) {
            QCOMPARE(_type("Width", QLatin1String(typed)), 320);
            QVERIFY(_field("Width")->text().startsWith(QLatin1String("2,5")));
        }
        QLocale::setDefault(QLocale::c());
    }

    void typedSizesCountInEveryUnit_data()
    {
        QTest::addColumn<QString>("unit");
        QTest::addColumn<QString>("width");
        QTest::addColumn<int>("cells");
        QTest::newRow("cells") << "cells"
                               << "640" << 640;
        QTest::newRow("inches") << "in."
                                << "2.5" << 320;
        QTest::newRow("comma") << "in."
                               << "2,5" << 320;
        QTest::newRow("centimetres") << "cm"
                                     << "10.16" << 512;
        QTest::newRow("millimetres") << "mm"
                                     << "25.4" << 128;
    }

    void typedSizesCountInEveryUnit()
    {
        QFETCH(QString, unit);
        m_dialog->findChild<QComboBox *>()->setCurrentText(unit);
        QTEST(_type("Width", _text("width")), "cells");
        QVERIFY(_ok()->isEnabled());
    }

    void changingTheUnitKeepsTheSize()
    {
        _type("Width", QStringLiteral("1023"));
        for (const char *unit : {"mm", "in.", "cm", "cells"}) {
            m_dialog->findChild<QComboBox *>()->setCurrentText(QLatin1String(unit));
            QCOMPARE(m_dialog->widthCells(), 1023);
            QCOMPARE(m_dialog->heightCells(), 768);
        }
        QCOMPARE(_field("Width")->text(), QStringLiteral("1023"));
    }

    void impossibleSizesAreRefused_data()
    {
        QTest::addColumn<QString>("width");
        QTest::addColumn<QString>("height");
        QTest::addColumn<QString>("sentence");
        QTest::newRow("one column") << "1"
                                    << "100"
                                    << "A relief has at least 2 by 2 cells.";
        QTest::newRow("no rows") << "100"
                                 << "0"
                                 << "A relief has at least 2 by 2 cells.";
        QTest::newRow("1000 square inches")
            << "12800"
            << "1280"
            << "That would make the pattern 1000.0 square inches. The largest Marlowen can work "
               "with is 1000 square inches.";
    }

    void impossibleSizesAreRefused()
    {
        _type("Width", _text("width"));
        _type("Height", _text("height"));
        QTEST(_summary(), "sentence");
        QVERIFY(!_ok()->isEnabled());
        QSignalSpy accepted(m_dialog.get(), &QDialog::accepted);
        QTest::keyClick(m_dialog.get(), Qt::Key_Return);
        QCOMPARE(accepted.size(), 0);
        _type("Width", QStringLiteral("12799"));
        _type("Height", QStringLiteral("1280"));
        QVERIFY(_ok()->isEnabled());
        QVERIFY(_summary().startsWith("12799 × 1280 cells"));
    }

    void returnTakesItAndEscapeDoesNot()
    {
        QSignalSpy accepted(m_dialog.get(), &QDialog::accepted);
        _type("Width", QStringLiteral("300"));
        QTest::mouseClick(_ok(), Qt::LeftButton);
        QCOMPARE(accepted.size(), 1);
        QCOMPARE(m_dialog->widthCells(), 300);
        m_dialog->findChild<QComboBox *>()->setCurrentText(QStringLiteral("mm"));
        m_dialog->show();
        QTest::mouseClick(_ok(), Qt::LeftButton);
        m_dialog = std::make_unique<NewReliefDialog>();
        QCOMPARE(m_dialog->findChild<QComboBox *>()->currentText(), QStringLiteral("mm"));
        QCOMPARE(m_dialog->widthCells(), 300);
        QSignalSpy rejected(m_dialog.get(), &QDialog::rejected);
        m_dialog->show();
        QTest::keyClick(m_dialog.get(), Qt::Key_Escape);
        QCOMPARE(rejected.size(), 1);
    }

private:
    static QString _text(const char *column)
    {
        return *static_cast<QString *>(QTest::qData(column, qMetaTypeId<QString>()));
    }

    NumberField *_field(const char *name)
    {
        for (NumberField *field : m_dialog->findChildren<NumberField *>()) {
            if (field->accessibleName() == QLatin1String(name))
                return field;
        }
        return nullptr;
    }

    int _type(const char *name, const QString &text)
    {
        NumberField *field = _field(name);
        field->setFocus();
        field->selectAll();
        QTest::keyClicks(field, text);
        QTest::keyClick(field, Qt::Key_Tab);
        return m_dialog->widthCells();
    }

    QPushButton *_ok()
    {
        return m_dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok);
    }

    QString _summary()
    {
        for (const QLabel *label : m_dialog->findChildren<QLabel *>()) {
            if (label->wordWrap())
                return label->text();
        }
        return {};
    }

    std::unique_ptr<NewReliefDialog> m_dialog;
};

QTEST_MAIN(TestNewRelief)
#include "tst_newrelief.moc"
