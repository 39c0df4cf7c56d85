#include "files/drafteonmap.h"
#include "files/formats.h"
#include "files/heightmaps.h"
#include "files/safefile.h"
#include "files/workspacefile.h"
#include "programs.h"

#include <QBuffer>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace marlowen;

namespace {

std::unique_ptr<Relief> ramp(int width, int height)
{
    auto relief = std::make_unique<Relief>(width, height);
    for (qsizetype i = 0; i < relief->cells(); ++i) {
        relief->heights().data()[i] = static_cast<float>(i) * 0.5F;
        relief->referenceLayer().data()[i] = static_cast<float>(i);
    }
    return relief;
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

template <typename Done>
QString titleOf(const Done &done)
{
    return done ? QString() : done.failure().title;
}

QByteArray mapOf(const Relief &relief)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    return writeDrafteonMap(stream, relief) ? bytes : QByteArray();
}

std::vector<float> mapValues(const QByteArray &map)
{
    std::vector<float> values(static_cast<size_t>((map.size() - 16) / 4));
    qFromLittleEndian<float>(map.constData() + 16, static_cast<qsizetype>(values.size()),
                             values.data());
    return values;
}

GridView viewOf(const Relief &relief)
{
    return {relief.heights().constData(), relief.width(), relief.height()};
}

} // namespace

class TestFiles : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    QString _path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }
    /// Nothing but these files is in the folder: no temporaries are left.
    QStringList _names() const
    {
        return QDir(m_folder.path()).entryList(QDir::Files | QDir::System);
    }

private slots:
    void cleanup()
    {
        for (const QString &name : _names())
            QFile::remove(m_folder.filePath(name));
    }

    void workspaceLayout()
    {
        const auto relief = ramp(2, 3);
        relief->rangeMaximum = 255.0;
        const QString path = _path("a.scp");
        QVERIFY(saveWorkspace(*relief, path));
        const QByteArray bytes = contents(path);
        QCOMPARE(bytes.size(), 136);
        QCOMPARE(bytes.left(16), QByteArray("PtMw\0\0\0\1\0\0\0\2\0\0\0\3", 16));
        QCOMPARE(bytes.mid(32, 8).toHex(), QByteArray("406fe00000000000"));
        const auto loaded = loadWorkspace(path);
        QVERIFY(loaded);
        QCOMPARE(loaded.value()->heightAt(1, 2), 2.5F);
        QCOMPARE(loaded.value()->referenceLayer().constData()[5], 5.0F);
        QCOMPARE(loaded.value()->rangeMaximum, 255.0);
    }

    void damagedWorkspaces_data()
    {
        QTest::addColumn<int>("offset");
        QTest::addColumn<QByteArray>("patch");
        QTest::addColumn<QString>("title");
        QTest::newRow("whole") << 0 << QByteArray("P") << QString();
        QTest::newRow("version 0") << 7 << QByteArray("\0", 1) << QString();
        QTest::newRow("version 2") << 7 << QByteArray("\2") << "Invalid File";
        QTest::newRow("version negative") << 4 << QByteArray("\xFF") << "Invalid File";
        QTest::newRow("magic") << 0 << QByteArray("p") << "Invalid File";
        QTest::newRow("promises 2^31 columns")
            << 8 << QByteArray("\x7F\xFF\xFF\xFF") << "Load Failed";
        QTest::newRow("negative height") << 12 << QByteArray("\xFF\xFF\xFF\xFE") << "Load Failed";
        QTest::newRow("no rows") << 12 << QByteArray("\0\0\0\0", 4) << "Load Failed";
    }

    void damagedWorkspaces()
    {
        QFETCH(int, offset);
        QFETCH(QByteArray, patch);
        QFETCH(QString, title);
        const QString path = _path("a.scp");
        QVERIFY(saveWorkspace(*ramp(3, 2), path));
        writeFile(path, contents(path).replace(offset, patch.size(), patch));
        QCOMPARE(titleOf(loadWorkspace(path)), title);
    }

    void failureMessages()
    {
        QCOMPARE(loadWorkspace(_path("none.scp")).failure().title, "Open Failed");
        QCOMPARE(loadWorkspace(_path("none.scp")).failure().sentence, "Error! File Open Failed");
        QCOMPARE(titleOf(loadWorkspace(m_folder.path())), "Open Failed");
        writeFile(_path("text.scp"), "this is no workspace");
        QCOMPARE(loadWorkspace(_path("text.scp")).failure().sentence,
                 "Error! File has invalid Magic Number or Version");
        QCOMPARE(loadFailed().sentence, "Error! File I/O Error");
        QCOMPARE(saveFailed().sentence, "Error! File I/O Error");
    }

    void aFailedWriteKeepsTheTarget_data()
    {
        QTest::addColumn<QString>("target");
        QTest::newRow("missing folder") << "nowhere/a.scp";
        QTest::newRow("a folder") << "";
        QTest::newRow("full device") << "full";
    }

    void aFailedWriteKeepsTheTarget()
    {
        QFETCH(QString, target);
        QVERIFY(QFile::link(QStringLiteral("/dev/full"), _path("full")));
        const QString path = m_folder.filePath(target);
        const auto relief = ramp(300, 200);
        for (const Outcome &done : {saveWorkspace(*relief, path), savePfm(viewOf(*relief), path),
                                    saveHeightPng(viewOf(*relief), path)}) {
            QCOMPARE(titleOf(done), "Save Failed");
            QVERIFY(!done.failure().detail.isEmpty());
        }
        QCOMPARE(titleOf(exportDrafteonMap(*relief, path)),
                 target == QLatin1String("full") ? "Save Failed" : "Open Failed");
        QCOMPARE(_names(), QStringList{"full"});
        QVERIFY(QFileInfo::exists(QStringLiteral("/dev/full")) &&
                !QFileInfo(QStringLiteral("/dev/full")).isFile());
    }

    void aWriteThatGivesUpKeepsTheOldFile()
    {
        const QString path = _path("a.scp");
        writeFile(path, "precious");
        const Outcome done = writeSafely(path, [](QIODevice &device) {
            device.write("half");
            return false;
        });
        QCOMPARE(titleOf(done), "Save Failed");
        QCOMPARE(contents(path), QByteArray("precious"));
        QCOMPARE(_names(), QStringList{"a.scp"});
        QVERIFY(saveWorkspace(*ramp(2, 2), path));
        QCOMPARE(contents(path).size(), 40 + 64);
        QCOMPARE(_names(), QStringList{"a.scp"});
    }

    void savingThroughALinkKeepsTheLink()
    {
        QVERIFY(QFile::link(_path("real.scp"), _path("link.scp")));
        writeFile(_path("real.scp"), "old");
        QVERIFY(saveWorkspace(*ramp(2, 2), _path("link.scp")));
        QVERIFY(QFileInfo(_path("link.scp")).isSymLink());
        QVERIFY(loadWorkspace(_path("real.scp")));
    }

    void drafteonMap_data()
    {
        QTest::addColumn<QList<float>>("heights"); // 3 x 2
        QTest::addColumn<int>("range");
        QTest::addColumn<QList<float>>("expected");
        constexpr float full = 1048576.0F;
        QTest::newRow("flat") << QList<float>(6, 3.0F) << 1 << QList<float>(6, 0.0F);
        QTest::newRow("range truncated, values not") << QList<float>{0, 2.5F, 0, 0, 1.25F, 0} << 2
                                                     << QList<float>{0, full, 0, 0, full / 2, 0};
        QTest::newRow("from the lowest up") << QList<float>{10, 20, 15, 10, 10, 10} << 10
                                            << QList<float>{0, full, full / 2, 0, 0, 0};
        // 0.09 and 0.11 of 1048576 steps.
        QTest::newRow("below 0.1") << QList<float>{0, full, 0.09F, 0.11F, 0, 0} << 1048576
                                   << QList<float>{0, full, 0, 0.11F, 0, 0};
        QTest::newRow("a range beyond 32 bits")
            << QList<float>{0, 1e20F, 0, 0, 0, 5e19F} << std::numeric_limits<int>::max()
            << QList<float>{0, full, 0, 0, 0, full / 2};
    }

    void drafteonMap()
    {
        QFETCH(QList<float>, heights);
        QFETCH(int, range);
        QFETCH(QList<float>, expected);
        Relief relief(3, 2);
        std::copy(heights.begin(), heights.end(), relief.heights().data());
        const QByteArray map = mapOf(relief);
        QCOMPARE(map.size(), 40);
        QCOMPARE(map.left(12), QByteArray("\0\0\0\2\0\0\0\3\0\0\0\2", 12));
        QCOMPARE(qFromBigEndian<qint32>(map.constData() + 12), range);
        QVERIFY(mapValues(map) == std::vector<float>(expected.begin(), expected.end()));
        QVERIFY(std::equal(heights.begin(), heights.end(), relief.heights().constData()));
    }

    void pfmRowsRunUpward()
    {
        const auto relief = ramp(3, 2);
        relief->heights().data()[0] = -1.5F; // values are written unchanged
        const QString path = _path("a.pfm");
        QVERIFY(savePfm(viewOf(*relief), path));
        const QByteArray bytes = contents(path);
        QVERIFY(bytes.startsWith("Pf\n3 2\n-1.0\n"));
        QCOMPARE(bytes.size(), 12 + 24);
        QCOMPARE(qFromLittleEndian<float>(bytes.constData() + 12), 1.5F); // first of the last row
        const auto loaded = loadPfm(path);
        QVERIFY(loaded);
        QCOMPARE(loaded.value().width, 3);
        QVERIFY(std::equal(loaded.value().values.begin(), loaded.value().values.end(),
                           relief->heights().constData()));
    }

    void pfmHeaders_data()
    {
        QTest::addColumn<QByteArray>("header");
        QTest::addColumn<QString>("title");
        QTest::newRow("one line") << QByteArray("Pf 2 1 -1 ") << QString();
        QTest::newRow("other scale") << QByteArray("Pf\r\n2 1\n-0.5\n") << QString();
        QTest::newRow("colour") << QByteArray("PF\n2 1\n-1\n") << "Invalid File";
        QTest::newRow("no number") << QByteArray("Pf\n2 x\n-1\n") << "Invalid File";
        QTest::newRow("no rows") << QByteArray("Pf\n2 0\n-1\n") << "Invalid File";
        QTest::newRow("negative") << QByteArray("Pf\n-2 -1\n-1\n") << "Invalid File";
        QTest::newRow("promises too much")
            << QByteArray("Pf\n2000000000 2000000000\n-1\n") << "Load Failed";
        QTest::newRow("empty") << QByteArray() << "Invalid File";
    }

    void pfmHeaders()
    {
        QFETCH(QByteArray, header);
        QFETCH(QString, title);
        writeFile(_path("a.pfm"), header + QByteArray::fromHex("0000803f00000040"));
        const auto loaded = loadPfm(_path("a.pfm"));
        QCOMPARE(titleOf(loaded), title);
        if (loaded)
            QVERIFY(loaded.value().values == std::vector<float>({1.0F, 2.0F}));
    }

    void bigEndianPfmIsRead()
    {
        writeFile(_path("a.pfm"), "Pf\n2 1\n1.0\n" + QByteArray::fromHex("3f80000040000000"));
        const auto loaded = loadPfm(_path("a.pfm"));
        QVERIFY(loaded);
        QVERIFY(loaded.value().values == std::vector<float>({1.0F, 2.0F}));
    }

    void heightPngSpansBlackToWhite()
    {
        Relief relief(3, 1);
        relief.heights().data()[0] = 10.0F;
        relief.heights().data()[1] = 20.0F;
        relief.heights().data()[2] = 12.5F;
        QVERIFY(saveHeightPng(viewOf(relief), _path("a.png")));
        QImage image(_path("a.png"));
        QCOMPARE(image.format(), QImage::Format_Grayscale16);
        const auto *line = reinterpret_cast<const quint16 *>(image.constScanLine(0));
        QCOMPARE(line[0], quint16{0});
        QCOMPARE(line[1], quint16{65535});
        QCOMPARE(line[2], quint16{16384});
        std::fill_n(relief.heights().data(), 3, 7.0F);
        QVERIFY(saveHeightPng(viewOf(relief), _path("flat.png")));
        QCOMPARE(QImage(_path("flat.png")).pixel(1, 0), qRgb(0, 0, 0));
    }

    void documentsListTheFormats()
    {
        const auto page = [](const char *name) {
            QFile file(QLatin1String(sourceFolder) + QLatin1String(name));
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        };
        const QByteArray readme = page("/README.md");
        const QByteArray manual = page("/docs/manual.md");
        const qsizetype open = manual.indexOf("- **Open**");
        const QByteArray opened = manual.mid(open, manual.indexOf("\n\n", open) - open);
        for (const Format &format : formats()) {
            const char *opens = format.opensAs == OpensAs::Nothing ? "" : format.label;
            const QByteArray row =
                QByteArray("| `") + format.ending + "` | " + opens + " | " + format.written + " |";
            QVERIFY2(readme.contains(row), row);
            const bool listed = opened.contains(QByteArray("`") + format.ending + "`");
            QVERIFY2(listed == format.inWindow, format.ending);
        }
    }

    void endingsInAnyCase()
    {
        const auto ending = [](const char *name) {
            const Format *format = formatOf(QLatin1String(name));
            return QByteArray(format ? format->ending : "");
        };
        QVERIFY(isWorkspace(QStringLiteral("A.SCP")));
        QCOMPARE(ending("dir.png/photo.JpEg"), ".jpeg");
        QCOMPARE(ending("mesh.stl"), ".stl");
        QCOMPARE(ending("scp"), "");
        QCOMPARE(ending("notes.txt"), "");
    }

    void optionsOfOtherFormatsAreRefused()
    {
        const auto relief = ramp(3, 3);
        const QString path = _path("option.pfm");
        QVERIFY(exportFile({*relief, path}));
        QCOMPARE(titleOf(exportFile({*relief, path, {.solid = 1.0}})),
                 QStringLiteral("Invalid File"));
    }
};

QTEST_GUILESS_MAIN(TestFiles)
#include "tst_files.moc"
