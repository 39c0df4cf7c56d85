#include "ui/library/librarypanel.h"

#include "files/alphaimage.h"
#include "relief/tools/alphabrush.h"
#include "theme.h"
#include "ui/library/alphastore.h"

#include <QBuffer>
#include <QDir>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QMimeData>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

using namespace marlowen;

namespace {

QImage picture(int width, int height, QRgb colour)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

/// Closes the next message box and keeps its text.
class BoxReader
{
public:
    BoxReader()
    {
        m_timer.setInterval(20);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box)
                return;
            m_text = box->text();
            ++m_boxes;
            box->accept();
        });
        m_timer.start();
    }
    QString text() const { return m_text; }
    int boxes() const { return m_boxes; }

private:
    QTimer m_timer;
    QString m_text;
    int m_boxes = 0;
};

} // namespace

class TestLibrary : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { wearTheme(false); }

    void init()
    {
        QDir(alphaFolder()).removeRecursively();
        AlphaBrush::instance().setImage({});
        _makePanel();
    }

    void cleanup() { m_panel.reset(); }

    void oblongPicturesLieInTheMiddleOfBlack()
    {
        const FloatGrid square = squareGrid(alphaGrid(picture(3, 6, qRgb(255, 255, 255))));
        QCOMPARE(square.width, 6);
        QCOMPARE(square.height, 6);
        for (int y = 0; y < 6; ++y) {
            for (int x = 0; x < 6; ++x)
                QCOMPARE(square.row(y)[x], x >= 1 && x < 4 ? 1.0F : 0.0F);
        }
    }

    void everyBuiltInPictureCanBeChosen()
    {
        int builtIn = 0;
        for (const AlphaEntry &entry : alphaEntries()) {
            QVERIFY2(chooseAlpha(entry.path), qPrintable(entry.name));
            QVERIFY(AlphaBrush::instance().side() >= 128);
            const auto &values = AlphaBrush::instance().values();
            QVERIFY(*std::max_element(values.begin(), values.end()) > 0.9F);
            QVERIFY(*std::min_element(values.begin(), values.end()) < 0.2F);
            ++builtIn;
        }
        QVERIFY(builtIn >= 16);
    }

    void clickingAThumbnailSetsTheAlphaBrushAndNoneRemovesIt()
    {
        QSignalSpy changed(m_panel.get(), &LibraryPanel::AlphaChanged);
        _click(QStringLiteral("Star"));
        QCOMPARE(changed.size(), 1);
        QVERIFY(AlphaBrush::instance().loaded());
        QCOMPARE(_list()->currentItem()->text(), QStringLiteral("Star"));
        _click(QStringLiteral("None"));
        QCOMPARE(changed.size(), 2);
        QVERIFY(!AlphaBrush::instance().loaded());
    }

    void pictureKeepsItsOrientation_data()
    {
        QTest::addColumn<bool>("mirrored");
        QTest::addColumn<int>("turns");
        QTest::addColumn<QPoint>("bright");
        // Rows of the brush run up the screen.
        QTest::newRow("as it is") << false << 0 << QPoint(0, 3);
        QTest::newRow("mirrored") << true << 0 << QPoint(3, 3);
        QTest::newRow("turned") << false << 1 << QPoint(3, 3);
        QTest::newRow("mirrored, then turned") << true << 1 << QPoint(3, 0);
        QTest::newRow("turned back") << false << 3 << QPoint(0, 0);
    }

    void pictureKeepsItsOrientation()
    {
        QFETCH(bool, mirrored);
        QFETCH(int, turns);
        QFETCH(QPoint, bright);
        QImage corner = picture(4, 4, qRgb(0, 0, 0));
        corner.setPixel(0, 0, qRgb(255, 255, 255));
        const QString path = alphaFolder() + QStringLiteral("/corner.png");
        QVERIFY(corner.save(path) && chooseAlpha(path));
        setAlphaOrientation({mirrored, turns});
        const auto cell = static_cast<size_t>(bright.y() * 4 + bright.x());
        QCOMPARE(AlphaBrush::instance().values()[cell], 1.0F);
        setAlphaOrientation({});
    }

    void ownPicturesAreRenamed()
    {
        const QString path = alphaFolder() + QStringLiteral("/one.png");
        QVERIFY(picture(4, 4, qRgb(9, 9, 9)).save(path));
        QVERIFY(!renameAlphaPicture(path, QStringLiteral("a/b")));
        QVERIFY(!renameAlphaPicture(path, QStringLiteral("one")));
        const Result<QString> renamed = renameAlphaPicture(path, QStringLiteral(" two "));
        QVERIFY(renamed && QFile::exists(renamed.value()) && !QFile::exists(path));
        QCOMPARE(QFileInfo(renamed.value()).fileName(), QStringLiteral("two.png"));
    }

    void searchFindsByPartOfTheName()
    {
        auto *search = m_panel->findChild<QLineEdit *>();
        QTest::keyClicks(search, QStringLiteral("ROUND"));
        QStringList shown;
        for (int i = 0; i < _list()->count(); ++i) {
            if (!_list()->item(i)->isHidden())
                shown << _list()->item(i)->text();
        }
        QCOMPARE(shown, (QStringList{"Soft Round", "Hard Round"}));
        QTest::keyClicks(search, QStringLiteral("zzz"));
        QLabel *nothing = m_panel->findChild<QLabel *>();
        QVERIFY(nothing->isVisible());
        QCOMPARE(nothing->text(), QStringLiteral("There is no picture named \"ROUNDzzz\"."));
    }

    void aDroppedPictureIsAddedAndChosen()
    {
        QTemporaryDir outside;
        const QString path = outside.filePath(QStringLiteral("my mark.png"));
        QVERIFY(picture(20, 30, qRgb(200, 200, 200)).save(path));
        _drop({path});
        QTRY_COMPARE(_list()->currentItem()->text(), QStringLiteral("my mark"));
        QCOMPARE(AlphaBrush::instance().side(), 30);
        QVERIFY(QFile::exists(QDir(alphaFolder()).filePath(QStringLiteral("my mark.png"))));

        _drop({path});
        QTRY_COMPARE(_list()->currentItem()->text(), QStringLiteral("my mark 2"));
        QVERIFY(QFile::exists(path));

        m_panel.reset();
        _makePanel();
        QVERIFY(_item(QStringLiteral("my mark 2")));
    }

    void invalidPictureIsRefusedWithOneBox()
    {
        QTemporaryDir outside;
        const QString text = outside.filePath(QStringLiteral("notes.txt"));
        const QString broken = outside.filePath(QStringLiteral("broken.png"));
        const QString good = outside.filePath(QStringLiteral("good.png"));
        for (const QString &path : {text, broken}) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("\x89PNG\r\n\x1a\nnot really");
        }
        QVERIFY(picture(8, 8, qRgb(255, 255, 255)).save(good));
        BoxReader reader;
        _drop({text, good, broken});
        QTRY_COMPARE(reader.boxes(), 1);
        QVERIFY(reader.text().contains("notes.txt is not a picture"));
        QVERIFY(reader.text().contains("broken.png is not a picture"));
        QCOMPARE(_list()->currentItem()->text(), QStringLiteral("good"));
        QCOMPARE(QDir(alphaFolder()).entryList(QDir::Files), QStringList{"good.png"});
    }

    void aBrokenPictureInTheFolderCannotBeChosen_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("bytes");
        QByteArray jpeg;
        QBuffer buffer(&jpeg);
        QImage noise(64, 64, QImage::Format_Grayscale8);
        for (int pixel = 0; pixel < 64 * 64; ++pixel)
            noise.bits()[pixel] = uchar(pixel * 97 % 251);
        QVERIFY(noise.save(&buffer, "JPG"));
        QTest::newRow("no picture") << "bad.png" << QByteArray("nothing");
        QTest::newRow("half a picture") << "bad.jpg" << jpeg.first(jpeg.size() / 2);
        QTest::newRow("without its last bytes") << "bad.jpeg" << jpeg.chopped(3);
    }

    void aBrokenPictureInTheFolderCannotBeChosen()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, bytes);
        QFile file(QDir(alphaFolder()).filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
        QVERIFY(!chooseAlpha(file.fileName()));
        QVERIFY(!addAlphaPicture(file.fileName()));
        QTRY_VERIFY(_item(QStringLiteral("bad")));
        QTRY_VERIFY(!_item(QStringLiteral("bad"))->flags().testFlag(Qt::ItemIsEnabled));
        _click(QStringLiteral("bad"));
        QVERIFY(!AlphaBrush::instance().loaded());
    }

    void aChosenPictureThatGoesTakesItsBrushAlong()
    {
        const QString path = QDir(alphaFolder()).filePath(QStringLiteral("gone.png"));
        QVERIFY(picture(8, 8, qRgb(255, 255, 255)).save(path));
        QTRY_VERIFY(_item(QStringLiteral("gone")));
        _click(QStringLiteral("gone"));
        QVERIFY(AlphaBrush::instance().loaded());
        QVERIFY(QFile::remove(path));
        QTRY_VERIFY(!AlphaBrush::instance().loaded());
        QCOMPARE(_list()->currentItem()->text(), QStringLiteral("None"));
    }

    void hugePicturesAreReduced()
    {
        const QString path = QDir(alphaFolder()).filePath(QStringLiteral("huge.png"));
        QVERIFY(picture(5000, 300, qRgb(255, 255, 255)).save(path));
        QVERIFY(chooseAlpha(path));
        QCOMPARE(AlphaBrush::instance().side(), 1024);
    }

private:
    void _makePanel()
    {
        m_panel = std::make_unique<LibraryPanel>();
        m_panel->resize(290, 560);
        m_panel->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_panel.get()));
    }

    QListWidget *_list() { return m_panel->findChild<QListWidget *>(); }

    QListWidgetItem *_item(const QString &name)
    {
        const auto found = _list()->findItems(name, Qt::MatchExactly);
        return found.isEmpty() ? nullptr : found.first();
    }

    void _click(const QString &name)
    {
        QListWidgetItem *item = _item(name);
        _list()->scrollToItem(item);
        QTest::mouseClick(_list()->viewport(), Qt::LeftButton, {},
                          _list()->visualItemRect(item).center());
    }

    void _drop(const QStringList &paths)
    {
        QMimeData data;
        QList<QUrl> urls;
        for (const QString &path : paths)
            urls << QUrl::fromLocalFile(path);
        data.setUrls(urls);
        QDragEnterEvent enter(QPoint(50, 200), Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(m_panel.get(), &enter);
        QVERIFY(enter.isAccepted());
        QDropEvent drop(QPointF(50, 200), Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(m_panel.get(), &drop);
    }

    std::unique_ptr<LibraryPanel> m_panel;
};

QTEST_MAIN(TestLibrary)
#include "tst_library.moc"
