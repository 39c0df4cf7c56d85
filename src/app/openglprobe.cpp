#include "app/openglprobe.h"

#include "base/sessionlog.h"

#include <QMessageBox>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QOpenGLWidget>

#include <charconv>
#include <cstdio>

namespace marlowen {

namespace {

constexpr double leastVersion = 2.1;

} // namespace

QByteArray readGlVersion()
{
    QOpenGLWidget probe;
    probe.show();
    probe.makeCurrent();
    QOpenGLContext *context = QOpenGLContext::currentContext();
    if (!context)
        return {};
    return reinterpret_cast<const char *>(context->functions()->glGetString(GL_VERSION));
}

double leadingVersionNumber(const QByteArray &version)
{
    bool pointSeen = false;
    qsizetype length = 0;
    for (const char c : version) {
        const bool isPoint = c == '.' && !pointSeen;
        if (!isPoint && (c < '0' || c > '9'))
            break;
        pointSeen |= isPoint;
        ++length;
    }
    double number = 0.0;
    std::from_chars(version.data(), version.data() + length, number, std::chars_format::fixed);
    return number;
}

bool acceptGlVersion(const QByteArray &version)
{
    if (version.isNull()) {
        logCritical() << "glGetVersion returned null pointer, Can't continue\n";
        logClose();
        std::fputs("marlowen: the display offers no OpenGL; marlowen-cli works without it\n",
                   stderr);
        return false;
    }
    logInfo() << "GL Version String:: " << version << "\n";
    logFlush();
    if (leadingVersionNumber(version) >= leastVersion)
        return true;
    logCritical() << "Missing OpenGL 2.1 support, Can't continue\n";
    logFlush();
    QMessageBox::critical(nullptr, QStringLiteral("Missing OpenGL 2.1"),
                          QStringLiteral("OpenGL 2.1 is required. Can't continue"));
    return false;
}

} // namespace marlowen
