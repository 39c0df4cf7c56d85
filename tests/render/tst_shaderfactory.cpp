#include "base/datafolder.h"
#include "base/qevsettings.h"
#include "base/sessionlog.h"
#include "gltarget.h"
#include "render/engines/legacyshader.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>

using namespace marlowen;

namespace {

std::unique_ptr<Shader> makeShader(ShaderType type, bool legacy)
{
    QevSettings().setUseLegacyShader(legacy);
    return std::unique_ptr<Shader>(ShaderFactory::getShader(type));
}

/// Reaches the protected program builder.
struct BrokenShader : LegacyEngine
{
    BrokenShader(const QByteArray &vertexFile, const QByteArray &fragmentFile)
        : LegacyEngine(Shader3d)
    {
        _buildProgram(vertexFile.constData(), fragmentFile.constData(), Shader3d);
    }
};

QByteArray writeSource(const QTemporaryDir &dir, const char *name, const char *text)
{
    QFile file(dir.filePath(QString::fromLatin1(name)));
    if (file.open(QIODevice::WriteOnly))
        file.write(text);
    return file.fileName().toUtf8();
}

void printWithPlace(QtMsgType, const QMessageLogContext &context, const QString &text)
{
    std::fprintf(stderr, "%s|%s|%s\n", context.file, context.function, qPrintable(text));
}

/// Argument that makes this program ask for a shader without a context.
const QString withoutContext = QStringLiteral("--without-context");

QByteArray sessionLogOf(qint64 pid)
{
    QFile file(QStringLiteral("%1/marlowen3_%2.log").arg(dataFolder()).arg(pid, 0, 16));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString lastDebugMessage;
void keepDebugMessage(QtMsgType, const QMessageLogContext &, const QString &text)
{
    lastDebugMessage = text;
}

} // namespace

class TestShaderFactory : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_target = std::make_unique<GlTarget>(QSize(8, 8)); }
    void cleanupTestCase()
    {
        QevSettings().setUseLegacyShader(false);
        m_target.reset();
    }

    void engineFollowsVersionAndSetting_data();
    void engineFollowsVersionAndSetting();
    void missingContextEndsTheProcess();
    void failedProgramsThrow_data();
    void failedProgramsThrow();

private:
    std::unique_ptr<GlTarget> m_target;
};

void TestShaderFactory::engineFollowsVersionAndSetting_data()
{
    QTest::addColumn<QByteArray>("version");
    QTest::addColumn<bool>("legacySetting");
    QTest::addColumn<bool>("buffers");
    QTest::newRow("2.1") << QByteArray("2.1 Mesa 22.3.6") << false << false;
    QTest::newRow("3.2") << QByteArray("3.2.0 NVIDIA") << false << false;
    QTest::newRow("3.3") << QByteArray("3.3.0") << false << true;
    QTest::newRow("4.5") << QByteArray("4.5 (Compatibility Profile) Mesa 22.3.6") << false << true;
    QTest::newRow("10.0") << QByteArray("10.0") << false << true;
    QTest::newRow("asked for") << QByteArray("4.6.0") << true << false;
    QTest::newRow("embedded") << QByteArray("OpenGL ES 3.2") << false << false;
    QTest::newRow("empty") << QByteArray("") << false << false;
}

void TestShaderFactory::engineFollowsVersionAndSetting()
{
    QFETCH(QByteArray, version);
    QFETCH(bool, legacySetting);
    QFETCH(bool, buffers);
    QCOMPARE(drawingEngineFor(version.constData(), legacySetting) == DrawingEngine::Vbo, buffers);
}

void TestShaderFactory::missingContextEndsTheProcess()
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {withoutContext});
    const qint64 pid = process.processId();
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QVERIFY(process.readAllStandardError().endsWith(
        "shader|static Shader *ShaderFactory::getShader(ShaderType)|Null OpenGL Context\n"));
    const QByteArray log = sessionLogOf(pid);
    QVERIFY(log.contains("No Current OpenGL context... Fail\n"));
    QVERIFY(log.contains("Got Null OpenGL Version string, can't continue\n"));
}

void TestShaderFactory::failedProgramsThrow_data()
{
    QTest::addColumn<QByteArray>("vertex");
    QTest::addColumn<QByteArray>("fragment");
    QTest::addColumn<QByteArray>("message");
    QTest::addColumn<bool>("logged");
    const QByteArray good = "#version 120\nvoid main() { gl_Position = gl_Vertex; }\n";
    const QByteArray goodFragment = "#version 120\nvoid main() { gl_FragColor = vec4(1.0); }\n";
    const QByteArray bad = "#version 120\nvoid main() { nonsense }\n";
    const QByteArray unlinkable = "#version 120\nvoid missing();\nvoid main() { missing(); }\n";
    const QByteArray compileText = "Shader compile failed...aborting!";
    QTest::newRow("vertex") << bad << goodFragment << compileText << true;
    QTest::newRow("fragment") << good << bad << compileText << true;
    QTest::newRow("link") << good << unlinkable << QByteArray("Shader link failed ... aborting!")
                          << false;
}

void TestShaderFactory::failedProgramsThrow()
{
    QFETCH(QByteArray, vertex);
    QFETCH(QByteArray, fragment);
    QFETCH(QByteArray, message);
    QFETCH(bool, logged);
    const QTemporaryDir dir;
    const QByteArray vertexFile = writeSource(dir, "v.vert", vertex.constData());
    const QByteArray fragmentFile = writeSource(dir, "f.frag", fragment.constData());
    lastDebugMessage.clear();
    const auto previous = qInstallMessageHandler(keepDebugMessage);
    QByteArray thrown;
    try {
        BrokenShader shader(vertexFile, fragmentFile);
    } catch (const char *text) {
        thrown = text;
    }
    qInstallMessageHandler(previous);
    QCOMPARE(thrown, message);
    QCOMPARE(lastDebugMessage.startsWith(QLatin1String("Compile log:: ")), logged);

    // The context still serves the next shader.
    QVERIFY(makeShader(Shader3d, true));
}

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    if (QCoreApplication::arguments().contains(withoutContext)) {
        qInstallMessageHandler(printWithPlace);
        ShaderFactory::getShader(Shader3d);
        return 0;
    }
    TestShaderFactory test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_shaderfactory.moc"
