#include "files/fio/fio.h"
#include "files/fio/fioheader.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace marlowen;

namespace {

const QString corrupted = QStringLiteral("Corrupted or not a recognized format.");

/// The bytes that `fill` writes into an empty container.
template <typename Fill>
QByteArray written(Fill fill)
{
    QBuffer buffer;
    Fio fio;
    if (!fio.open(&buffer, Fio::Mode::Write) || !fill(fio) || !fio.close())
        qWarning("%s", qPrintable(fio.errorString()));
    return buffer.data();
}

/// A container that reads bytes.
struct Reading
{
    explicit Reading(const QByteArray &bytes)
    {
        buffer.setData(bytes);
        fio.open(&buffer, Fio::Mode::Read);
    }
    QBuffer buffer;
    Fio fio;
};

template <typename T>
T readBack(const QByteArray &bytes)
{
    Reading reading(bytes);
    T value{};
    if (!reading.fio.read(value) || !reading.fio.checkEnd())
        qWarning("%s", qPrintable(reading.fio.errorString()));
    return value;
}

QByteArray bytesOf(const QString &text)
{
    return written([&](Fio &fio) { return fio.write(text); });
}

} // namespace

class TestFio : public QObject
{
    Q_OBJECT

private slots:
    void integersAreBigEndian()
    {
        const QByteArray bytes = written([](Fio &fio) {
            return fio.write(quint8{0xfe}) && fio.write(true) && fio.write(quint16{0x0102}) &&
                   fio.write(qint16{-2}) && fio.write(quint32{0x01020304});
        });
        QCOMPARE(bytes.toHex(), QByteArray("fe010102fffe01020304"));
        Reading reading(bytes);
        quint8 byte = 0;
        bool flag = false;
        quint16 word = 0;
        qint16 number = 0;
        quint32 wide = 0;
        QVERIFY(reading.fio.read(byte) && reading.fio.read(flag) && reading.fio.read(word) &&
                reading.fio.read(number) && reading.fio.read(wide) && reading.fio.checkEnd());
        QCOMPARE(std::tuple(int{byte}, flag, int{word}, int{number}, wide),
                 std::tuple(0xfe, true, 0x0102, -2, 0x01020304U));
    }

    void stringsKeepNullAndLength()
    {
        QCOMPARE(bytesOf({}).toHex(), QByteArray("ffff"));
        QCOMPARE(bytesOf("").toHex(), QByteArray("0000"));
        QVERIFY(readBack<QString>("\xff\xff").isNull());
        QVERIFY(!readBack<QString>(QByteArray(2, '\0')).isNull());
        QCOMPARE(readBack<QString>(bytesOf(QStringLiteral("Größe"))), QStringLiteral("Größe"));

        const QString longest(65530, QLatin1Char('x'));
        QCOMPARE(bytesOf(longest).size(), 2 + 65530);
        Fio fio;
        QBuffer buffer;
        QVERIFY(fio.open(&buffer, Fio::Mode::Write));
        QVERIFY(!fio.write(longest + QLatin1Char('x')));
        QCOMPARE(fio.errorString(), QStringLiteral("String too long"));
        QCOMPARE(buffer.size(), 0);

        Reading reserved(QByteArray::fromHex("fffc"));
        QString kept = QStringLiteral("kept");
        QVERIFY(!reserved.fio.read(kept));
        QVERIFY(reserved.fio.errorString().startsWith("File was written by a newer version"));
        QCOMPARE(kept, QStringLiteral("kept"));
    }

    void numbersAreText()
    {
        const auto textOf = [](double number) {
            return written([&](Fio &fio) { return fio.write(number); }).mid(2);
        };
        QCOMPARE(textOf(0.1), QByteArray("0.1"));
        QCOMPARE(textOf(1.0 / 3.0), QByteArray("0.3333333333"));
        QCOMPARE(readBack<float>(bytesOf("0.1")), 0.1F);
        const QRectF rectangle(1.5, -2, 3, 4);
        const std::array<double, 4> quad{4, 3, 2, 1e300};
        QCOMPARE(readBack<QRectF>(written([&](Fio &f) { return f.write(rectangle); })), rectangle);
        QVERIFY((readBack<std::array<double, 4>>(written([&](Fio &f) { return f.write(quad); })) ==
                 quad));
        Reading words(bytesOf("one"));
        double number = 7.0;
        QVERIFY(!words.fio.read(number));
        QCOMPARE(words.fio.errorString(), corrupted + QStringLiteral(" (float conversion)"));
        QCOMPARE(number, 7.0);
    }

    void fontsAndImages()
    {
        QFont font(QStringLiteral("Serif"), 13, QFont::Bold);
        QCOMPARE(readBack<QFont>(written([&](Fio &fio) { return fio.write(font); })), font);
        QImage image(3, 2, QImage::Format_ARGB32);
        image.fill(qRgba(10, 20, 30, 40));
        const QByteArray bytes = written([&](Fio &fio) { return fio.write(image); });
        QCOMPARE(readBack<QImage>(bytes), image);

        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("QFont::fromString: Invalid"));
        Reading noFont(bytesOf("a,b,c,d"));
        QVERIFY(!noFont.fio.read(font));
        QCOMPARE(noFont.fio.errorString(), QStringLiteral("Unknown font: a,b,c,d"));
        Reading noImage(QByteArray::fromHex("0000000261626364"));
        QVERIFY(!noImage.fio.read(image));
        QCOMPARE(noImage.fio.errorString(), QStringLiteral("Image decode failure"));
        Reading promised(QByteArray::fromHex("ffffffff00"));
        QVERIFY(!promised.fio.read(image));
        Fio fio;
        QBuffer buffer;
        QVERIFY(fio.open(&buffer, Fio::Mode::Write));
        QVERIFY(!fio.write(QImage()));
        QCOMPARE(fio.errorString(), QStringLiteral("Image encoding failure"));
    }

    void magicAndVersion()
    {
        const QByteArray bytes = written([](Fio &fio) { return fio.writeMagic(0x1234, 2); });
        QCOMPARE(bytes.toHex(), QByteArray("12340002"));
        QCOMPARE(Reading(bytes).fio.readVerifyMagic(0x1234, 2), quint16{2});
        QTest::ignoreMessage(QtWarningMsg, "FIO readVerify: bad magic 1234 / 4321\n");
        Reading other(bytes);
        QCOMPARE(other.fio.readVerifyMagic(0x4321, 2), quint16{0});
        QCOMPARE(other.fio.errorString(), corrupted);
        QTest::ignoreMessage(QtWarningMsg, "FIO readVerify: bad version 2 / 1\n");
        Reading later(bytes);
        QCOMPARE(later.fio.readVerifyMagic(0x1234, 1), quint16{0});
        QCOMPARE(later.fio.errorString(), Fio::newerVersionMessage());
    }

    void sharedObjectsAreStoredOnce()
    {
        constexpr quint16 type = 5;
        int first = 1;
        int second = 2;
        const QByteArray bytes = written([&](Fio &fio) {
            for (const int *object : {&first, &second, &first}) {
                bool known = true;
                if (!fio.writeRef(type, object, known) ||
                    (!known && !fio.write(static_cast<quint8>(*object))))
                    return false;
            }
            return fio.hasTag(type, reinterpret_cast<quintptr>(&first)) && !fio.hasTag(type, 0);
        });
        QCOMPARE(bytes.toHex(), QByteArray("00000000"
                                           "01"
                                           "00000001"
                                           "02"
                                           "00000000"));

        Reading reading(bytes);
        std::array<quint8, 2> made{};
        std::vector<void *> found;
        for (int i = 0; i < 3; ++i) {
            void *object = &found;
            QVERIFY(reading.fio.readTag(type, &object));
            if (!object) {
                object = &made[static_cast<size_t>(i)];
                QCOMPARE(*reading.fio.addTag(type, object), static_cast<quint32>(i));
                QVERIFY(reading.fio.read(made[static_cast<size_t>(i)]));
            }
            found.push_back(object);
        }
        QVERIFY(found[0] == &made[0] && found[1] == &made[1] && found[2] == &made[0]);
        QCOMPARE(int{made[1]}, 2);
        QVERIFY(reading.fio.setTag(1, type, &second) && reading.fio.hasTag(type, 1));
        QVERIFY(!reading.fio.setTag(2, type, &second));
        QCOMPARE(reading.fio.errorString(), QStringLiteral("internal error: setTag invalid id"));
    }

    void badReferencesAreRefused()
    {
        int object = 1;
        void *out = &object;
        QTest::ignoreMessage(QtWarningMsg, "FIO readTag: bad id 1 / 0\n");
        Reading beyond(QByteArray::fromHex("00000001"));
        QVERIFY(!beyond.fio.readTag(5, &out));
        QCOMPARE(beyond.fio.errorString(), corrupted);
        QTest::ignoreMessage(QtWarningMsg, "FIO readTag: bad magic 0006 / 0005\n");
        Reading otherType(QByteArray::fromHex("00000000"));
        otherType.fio.addTag(6, &object);
        QVERIFY(!otherType.fio.readTag(5, &out));
        QVERIFY(out == &object);
        QVERIFY(!otherType.fio.getRef(5, nullptr));
        QCOMPARE(otherType.fio.errorString(), corrupted); // the first failure's words stay
    }

    void headersKeepAttributes()
    {
        FioHeader header{FioHeader::patternType, 7, {}};
        header.setAttribute(9, QStringLiteral("nine"));
        header.setAttribute(2, QStringLiteral("two"));
        header.setAttribute(9, QStringLiteral("new"));
        header.setAttribute(3, QStringLiteral("gone"));
        header.setAttribute(3, {});
        const QByteArray bytes = written([&](Fio &fio) { return header.write(fio); });
        QCOMPARE(bytes, QByteArray("QEVP\0\7\x09\0\3new\2\0\3two\0", 19));
        FioHeader back;
        Reading reading(bytes);
        QVERIFY(back.read(reading.fio));
        QCOMPARE(back.type, header.type);
        QCOMPARE(back.version, header.version);
        QCOMPARE(back.attributes, header.attributes);

        Reading stranger(QByteArray("QEVX\0\7\0", 7));
        QVERIFY(!back.read(stranger.fio));
        QCOMPARE(stranger.fio.errorString(), corrupted);
        Fio fio;
        header.type = 6;
        QVERIFY(!header.write(fio));
        QCOMPARE(fio.errorString(), QStringLiteral("internal error: unknown FioHeader type"));
    }

    /// Both back ends write the same bytes and the digests see the plain ones.
    void digestsAndTransforms()
    {
        const auto running = [] {
            return [n = quint8{0}](quint8 byte) mutable -> quint8 { return byte ^ ++n; };
        };
        const auto adding = [](int n) {
            return [n](quint8 byte) { return static_cast<quint8>(byte + n); };
        };
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("f"));
        Fio fio;
        QVERIFY(fio.open(path, Fio::Mode::Write));
        fio.pushDigest();
        fio.pushTransform(running());
        fio.pushTransform(adding(3));
        QVERIFY(fio.writeData("ab", 2));
        QVERIFY(!fio.seek(0));
        QCOMPARE(fio.errorString(), QStringLiteral("Seek not allowed with LFSR or MD5"));
        fio.pushDigest();
        QVERIFY(fio.writeData("c", 1) && fio.close());
        const auto md5 = [](const char *text) {
            return QCryptographicHash::hash(text, QCryptographicHash::Md5);
        };
        QCOMPARE(fio.popDigest(), md5("c"));
        QCOMPARE(fio.popDigest(), md5("abc"));
        QCOMPARE(fio.popDigest(), QByteArray());
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll().toHex(), QByteArray("656765")); // (byte + 3) xor 1, 2, 3

        QVERIFY(fio.open(path, Fio::Mode::Read));
        fio.pushTransform(running());
        fio.pushTransform(adding(-3));
        fio.pushDigest();
        char plain[3];
        QVERIFY(fio.readData(plain, 3));
        QCOMPARE(QByteArray(plain, 3), QByteArray("abc"));
        QCOMPARE(fio.popDigest(), md5("abc"));
    }

    void ordinaryFaults()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("f"));
        Fio fio;
        char byte = 'x';
        QVERIFY(fio.writeData(&byte, 0) && fio.readData(&byte, 0));
        QVERIFY(!fio.writeData(&byte, -1) && !fio.readData(&byte, -1));
        QCOMPARE(fio.errorString(), QStringLiteral("Negative write"));
        QVERIFY(!fio.open(path, Fio::Mode::Read));
        QCOMPARE(fio.errorString(), QStringLiteral("No such file or directory"));
        QVERIFY(!fio.close());

        QVERIFY(fio.open(path, Fio::Mode::Write) && fio.writeData("1", 1) && fio.close());
        QVERIFY(fio.open(path, Fio::Mode::Append) && fio.writeData("2", 1));
        QVERIFY(!fio.open(path, Fio::Mode::Read));
        QCOMPARE(fio.errorString(), QStringLiteral("Already open"));
        QVERIFY(fio.close());
        for (const bool device : {false, true}) {
            QFile file(path);
            QVERIFY(device ? fio.open(&file, Fio::Mode::Read) : fio.open(path, Fio::Mode::Read));
            QVERIFY(fio.seek(1) && fio.readData(&byte, 1) && fio.checkEnd());
            QCOMPARE(byte, '2');
            QVERIFY(!fio.readData(&byte, 1));
            QCOMPARE(fio.errorString(), QStringLiteral("Premature end-of-file"));
            QVERIFY(fio.seek(0) && !fio.checkEnd() && fio.close());
        }
        QVERIFY(Fio::folderIsWritable(path));
        QVERIFY(!Fio::folderIsWritable(QStringLiteral("/proc/none/file")));
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList{QStringLiteral("f")});
    }
};

QTEST_MAIN(TestFio)
#include "tst_fio.moc"
