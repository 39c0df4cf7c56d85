#include "files/mesh/meshreader.h"
#include "meshtext.h"

#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

using namespace marlowen;

namespace {

class CancelledWhileWaiting : public Progress
{
public:
    void advance(double fraction) override
    {
        m_cancelled = m_last == fraction; // no more is read: it waits for the tessellator
        m_last = fraction;
    }
    bool cancelled() const override { return m_cancelled; }

private:
    double m_last = 0.0;
    bool m_cancelled = false;
};

/// A file that gives less than its size.
class ShrinkingBuffer : public QBuffer
{
public:
    using QBuffer::QBuffer;
    qint64 size() const override { return QBuffer::size() + 50; }
};

} // namespace

class TestMeshFaults : public QObject
{
    Q_OBJECT

private slots:
    void everyPrefixIsRead();
    void emptyAndMissingFilesAreRefused();
    void longCutsAreCancelled();
    void shrinkingFilesAreReported();
};

void TestMeshFaults::everyPrefixIsRead()
{
    const QByteArray obj = square + "v 1 1 1 2\nf 1/1 2/2 5\nf 1 2 3 -1\nf 1 2 4 3 5\n";
    const QByteArray text = ("solid a\n" + textFacet() + "endsolid\n").toLatin1();
    for (qsizetype length = 0; length < obj.size(); ++length)
        QVERIFY(objOf(obj.left(length)).mesh.triangles.size() <= 6);
    for (const QByteArray &stl : {binaryStl(twoFacets, 2), binaryStl(twoFacets, 2, true), text}) {
        for (qsizetype length = 0; length < stl.size(); ++length) {
            const ReadMesh read = stlOf(stl.left(length));
            QVERIFY(read.mesh.triangles.size() <= 2);
            QVERIFY(read.problems.count() > 0 || read.mesh.triangles.empty() ||
                    length >= stl.size() - 4); // a 64-bit count less 4 bytes is one of 32
        }
    }
}

void TestMeshFaults::emptyAndMissingFilesAreRefused()
{
    const QTemporaryDir folder;
    const auto refused = [&](const char *name, const QByteArray &bytes) {
        const QString path = folder.filePath(QLatin1String(name));
        QFile file(path);
        if (file.open(QIODevice::WriteOnly))
            file.write(bytes);
        file.close();
        Progress silent;
        const Result<ReadMesh> read = readMesh(path, {}, silent);
        return !read && !read.failure().sentence.isEmpty();
    };
    QVERIFY(refused("empty.obj", ""));
    QVERIFY(refused("empty.stl", ""));
    QVERIFY(refused("none.stl", binaryStl({}, 0)));
    QVERIFY(refused("points.obj", square));
    QVERIFY(refused("junk.obj", QByteArray("\0\xff\r\xfe\n", 5).repeated(1000)));
    Progress silent;
    QVERIFY(!readMesh(folder.filePath("missing.stl"), {}, silent));
    QVERIFY(!readMesh(folder.path(), {}, silent));
}

void TestMeshFaults::longCutsAreCancelled()
{
    // The tessellator would be busy with this star for minutes.
    constexpr int corners = 100000;
    QByteArray text;
    QByteArray face("f");
    for (int i = 0; i < corners; ++i) {
        const double angle = 2.0 * M_PI * i / corners;
        const double radius = i % 2 ? 1.0 : 0.5;
        text += "v " + QByteArray::number(radius * std::cos(angle)) + " " +
                QByteArray::number(radius * std::sin(angle)) + " 0\n";
        face += " " + QByteArray::number(i + 1);
    }
    text += face + "\n";
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    CancelledWhileWaiting progress;
    ObjFileReader reader;
    QVERIFY(!reader.read(buffer, progress));
    QVERIFY(progress.cancelled());
}

void TestMeshFaults::shrinkingFilesAreReported()
{
    QByteArray obj = square + "f 1 2 3\n";
    QByteArray stl = binaryStl(twoFacets, 3);
    QByteArray text = ("solid a\n" + textFacet() + "endsolid\n").toLatin1();
    for (QByteArray *bytes : {&obj, &stl, &text}) {
        ShrinkingBuffer buffer(bytes);
        buffer.open(QIODevice::ReadOnly);
        Progress silent;
        ReadMesh read;
        if (bytes == &obj) {
            ObjFileReader reader;
            reader.read(buffer, silent);
            read = {reader.takeMesh(), reader.problems()};
        } else {
            read = readStl(buffer, silent);
        }
        QCOMPARE(read.problems.count(), 1);
        QVERIFY(!read.mesh.triangles.empty());
    }
}

QTEST_GUILESS_MAIN(TestMeshFaults)
#include "tst_meshfaults.moc"
