#include "damage.h"
#include "files/filethumbnail.h"
#include "files/heightmaps.h"
#include "files/mesh/meshreader.h"
#include "files/stlwriter.h"
#include "files/workspacefile.h"
#include "import/imageimport.h"

#include "import/testpicture.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cmath>

#include <fcntl.h>
#include <unistd.h>

using namespace marlowen;

namespace {

/// The result of reading a damaged file.
enum class Got { Refused, Sound, Unsound };

/// A reader of files and a small file that it reads.
struct Reader
{
    const char *name;
    QByteArray whole;
    Got (*read)(const QString &path);
    QLatin1String ending = QLatin1String(".scp");
    bool refusesCuts = true; ///< false: the rest of the file is read
};

template <typename Loaded, typename IsSound>
Got judged(const Result<Loaded> &loaded, IsSound isSound)
{
    if (!loaded)
        return loaded.failure().sentence.isEmpty() ? Got::Unsound : Got::Refused;
    return isSound(loaded.value()) ? Got::Sound : Got::Unsound;
}

Got readWorkspace(const QString &path)
{
    return judged(loadWorkspace(path), [](const auto &relief) {
        const auto holdsHeights = [&](const GridLayer &layer) {
            return layer.size() == relief->cells() &&
                   std::all_of(
                       layer.constData(), layer.constData() + layer.size(),
                       [](float height) { return height >= 0.0F && std::isfinite(height); });
        };
        return holdsHeights(relief->heights()) && holdsHeights(relief->referenceLayer()) &&
               std::isfinite(relief->zScale);
    });
}

Got readThumbnail(const QString &path)
{
    const QImage image = fileThumbnail(path, 32);
    return image.isNull() ? Got::Refused : image.width() <= 32 ? Got::Sound : Got::Unsound;
}

Got readPfm(const QString &path)
{
    return judged(loadPfm(path), [](const FloatGrid &grid) {
        return grid.width > 0 && grid.height > 0 &&
               grid.values.size() == static_cast<size_t>(grid.cells());
    });
}

Got readImage(const QString &path)
{
    return judged(readWholeImage(path), [](const QImage &image) { return !image.isNull(); });
}

Got readGrey(const QString &path)
{
    return judged(readGreyPicture(path),
                  [](const GreyPicture &picture) { return picture.values.cells() > 0; });
}

Got readTriangles(const QString &path)
{
    Progress silent;
    return judged(readMesh(path, {}, silent), [](const ReadMesh &read) {
        const TriangleMesh &mesh = read.mesh;
        return std::ranges::all_of(mesh.triangles, [&](const MeshTriangle &triangle) {
            return std::ranges::all_of(triangle, [&](quint32 index) {
                return index < mesh.positions.size() &&
                       std::ranges::all_of(mesh.positions[index],
                                           [](double value) { return std::isfinite(value); });
            });
        });
    });
}

QByteArray encoded(QImage::Format format, const char *name)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    picture().scaled(12, 9).convertToFormat(format).save(&buffer, name);
    return bytes;
}

/// 16 bits, big-endian, the pixels behind the directory.
QByteArray tiff()
{
    return QByteArray::fromHex("4d4d002a00000008"
                               "0008"
                               "010000030000000100060000" // width 6
                               "010100030000000100040000" // height 4
                               "010200030000000100100000" // bits
                               "010300030000000100010000" // no compression
                               "010600030000000100010000" // black is 0
                               "01110004000000010000006e" // where the pixels are
                               "011600030000000100040000" // rows in the strip
                               "011700040000000100000030" // its bytes
                               "00000000") +
           QByteArray(48, '\x47');
}

/// The file that `write` makes.
template <typename Write>
QByteArray written(Write write)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("whole"));
    QFile file(path);
    return write(path) && file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

std::vector<Reader> readers()
{
    Relief relief(4, 3);
    std::fill_n(relief.heights().data(), relief.cells(), 1.25F);
    const QByteArray workspace =
        written([&](const QString &path) { return saveWorkspace(relief, path); });
    const GridView grid{relief.heights().constData(), 4, 3};
    return {
        {"workspace", workspace, readWorkspace},
        {"thumbnail", workspace, readThumbnail},
        {"PFM", written([&](const QString &path) { return savePfm(grid, path); }), readPfm},
        {"STL", written([&](const QString &path) { return exportGridStl(relief, path); }),
         readTriangles, QLatin1String(".stl"), false},
        {"OBJ", "v 0 0 0\nv 1.5 0 2\nv 0 2.5e1 0\nv 1 1 1 2\nf 1 2 3\nf -1 -2/1 1\n", readTriangles,
         QLatin1String(".obj"), false},
        {"PNG", encoded(QImage::Format_RGB32, "png"), readImage},
        {"TIFF", tiff(), readGrey},
        {"BMP 24", encoded(QImage::Format_RGB32, "bmp"), readImage},
        {"BMP 8", encoded(QImage::Format_Indexed8, "bmp"), readImage},
        {"JPEG", encoded(QImage::Format_RGB32, "jpg"), readImage},
    };
}

/// Decoders print their complaints; a test that provokes thousands does without.
class Quiet
{
public:
    Quiet()
        : m_handler(
              qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {}))
        , m_stderr(dup(STDERR_FILENO))
    {
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDERR_FILENO);
        close(nowhere);
    }
    ~Quiet()
    {
        dup2(m_stderr, STDERR_FILENO);
        close(m_stderr);
        qInstallMessageHandler(m_handler);
    }
    Quiet(const Quiet &) = delete;
    Quiet &operator=(const Quiet &) = delete;

private:
    QtMessageHandler m_handler;
    int m_stderr;
};

} // namespace

/// Every reader against damaged files. A new reader is a row of readers().
class TestDamagedFiles : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;

    Got _read(const Reader &reader, const QByteArray &bytes) const
    {
        const QString path = m_folder.filePath(QStringLiteral("damaged") + reader.ending);
        // Writing over a file would make some file systems wait for the disk.
        QFile::remove(path);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            return Got::Unsound;
        file.close();
        return reader.read(path);
    }

private slots:
    void damaged_data()
    {
        QTest::addColumn<int>("index");
        int index = 0;
        for (const Reader &reader : readers())
            QTest::newRow(reader.name) << index++;
    }
    void damaged()
    {
        QFETCH(int, index);
        const Reader reader = readers()[static_cast<size_t>(index)];
        const Quiet quiet;
        QVERIFY(_read(reader, reader.whole) == Got::Sound);
        QStringList faults;
        damage::eachCut(reader.whole, [&](const QByteArray &copy, qsizetype length) {
            const Got got = _read(reader, copy);
            if (got == Got::Unsound || (reader.refusesCuts && got == Got::Sound))
                faults << QStringLiteral("cut at %1").arg(length);
        });
        damage::eachFlip(reader.whole, [&](const QByteArray &copy, qsizetype bit) {
            if (_read(reader, copy) == Got::Unsound)
                faults << QStringLiteral("bit %1").arg(bit);
        });
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join(u", ")));
    }
};

QTEST_GUILESS_MAIN(TestDamagedFiles)
#include "tst_damagedfiles.moc"
