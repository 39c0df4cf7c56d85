#include "render/engines/shader.h"

#include "base/qevsettings.h"
#include "base/sessionlog.h"
#include "render/engines/legacyshader.h"
#include "render/engines/vboshader.h"

#include <QDebug>
#include <QFile>
#include <QImage>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QOpenGLFunctions_2_1>
#include <QOpenGLVersionFunctionsFactory>

#include <algorithm>
#include <charconv>
#include <cstring>

/// Outside any namespace, as the macro requires: without the call the linker drops the resources of
/// a static library.
static void initResources()
{
    Q_INIT_RESOURCE(render);
}

namespace marlowen {

namespace {

QOpenGLFunctions_2_1 *currentFunctions()
{
    QOpenGLContext *context = QOpenGLContext::currentContext();
    return context ? QOpenGLVersionFunctionsFactory::get<QOpenGLFunctions_2_1>(context) : nullptr;
}

QByteArray readSource(const char *fileName)
{
    QFile file(QString::fromUtf8(fileName));
    if (!file.open(QIODevice::ReadOnly)) {
        qWarning() << "Missing shader source" << fileName;
        return {};
    }
    return file.readAll();
}

GLuint compile(QOpenGLFunctions_2_1 &gl, GLenum stage, const char *fileName)
{
    const QByteArray source = readSource(fileName);
    const char *text = source.constData();
    const GLuint shader = gl.glCreateShader(stage);
    gl.glShaderSource(shader, 1, &text, nullptr);
    gl.glCompileShader(shader);
    return shader;
}

bool compiled(QOpenGLFunctions_2_1 &gl, GLuint shader)
{
    GLint status = 0;
    gl.glGetShaderiv(shader, GL_COMPILE_STATUS, &status);
    if (status)
        return true;
    GLint length = 0;
    gl.glGetShaderiv(shader, GL_INFO_LOG_LENGTH, &length);
    if (length > 1) {
        QByteArray log(length, '\0');
        gl.glGetShaderInfoLog(shader, length, nullptr, log.data());
        qDebug().noquote() << "Compile log:: " + QString::fromUtf8(log.constData());
    }
    return false;
}

GLuint link(QOpenGLFunctions_2_1 &gl, GLuint vertexShader, GLuint fragmentShader)
{
    const GLuint program = gl.glCreateProgram();
    gl.glAttachShader(program, vertexShader);
    gl.glAttachShader(program, fragmentShader);
    gl.glLinkProgram(program);
    GLint status = 0;
    gl.glGetProgramiv(program, GL_LINK_STATUS, &status);
    if (!status)
        throw "Shader link failed ... aborting!";
    return program;
}

} // namespace

Shader::Shader()
    : m_gl(currentFunctions())
{
    if (!m_gl)
        throw "OpenGL 2.1 is not available...aborting!";
    ::initResources();
    m_checkerboard = std::make_unique<QOpenGLTexture>(
        QImage(QStringLiteral(":/marlowen2/checkerboard")), QOpenGLTexture::DontGenerateMipMaps);
    m_checkerboard->setMinMagFilters(QOpenGLTexture::Nearest, QOpenGLTexture::Nearest);
}

Shader::~Shader()
{
    m_gl = currentFunctions();
    if (!m_gl)
        return;
    for (const GLuint program : {m_program, m_quickProgram})
        if (program)
            m_gl->glDeleteProgram(program);
}

uint32_t Shader::_build(const char *vertexFile, const char *fragmentFile)
{
    const GLuint vertexShader = compile(*m_gl, GL_VERTEX_SHADER, vertexFile);
    const GLuint fragmentShader = compile(*m_gl, GL_FRAGMENT_SHADER, fragmentFile);
    if (!compiled(*m_gl, vertexShader) || !compiled(*m_gl, fragmentShader))
        throw "Shader compile failed...aborting!";
    return link(*m_gl, vertexShader, fragmentShader);
}

void Shader::_buildProgram(const char *vertexFile, const char *fragmentFile, ShaderType type)
{
    m_program = _build(vertexFile, fragmentFile);
    m_locations = _locate(m_program, type);
}

void Shader::_buildQuickProgram(const char *vertexFile, ShaderType type)
{
    m_quickProgram = _build(vertexFile, ":/marlowen2/shaders/quick330.frag");
    m_quickLocations = _locate(m_quickProgram, type);
}

Shader::Locations Shader::_locate(uint32_t program, ShaderType type)
{
    const auto locate = [=, this](const char *name) {
        return m_gl->glGetUniformLocation(program, name);
    };
    Locations at;
    m_gl->glUseProgram(program);
    at.modelview = locate("Modelview");
    at.projection = locate("Projection");
    // The sampler is called TexUnit0, so this finds nothing and the sampler stays at unit 0, which
    // is where the floor texture is bound.
    at.textureUnit0 = locate("TextureUnit0");
    at.size = locate("Size");
    if (type == Shader3d) {
        at.normalMatrix = locate("NormalMatrix");
        at.lightPosition = locate("LightPosition");
        at.ambientMaterial = locate("AmbientMaterial");
        at.diffuseMaterial = locate("DiffuseMaterial");
        at.specularMaterial = locate("SpecularMaterial");
        at.shinyness = locate("Shinyness");
    } else {
        at.colorOffset = locate("ColorOffset");
        at.minZ = locate("MinZ");
        at.maxZ = locate("MaxZ");
    }
    m_gl->glUseProgram(0);
    return at;
}

void Shader::_bindProgram(ShaderType type)
{
    const bool asQuick = quick && m_quickProgram;
    const Locations &at = asQuick ? m_quickLocations : m_locations;
    m_gl->glUseProgram(asQuick ? m_quickProgram : m_program);
    m_gl->glGetFloatv(GL_MODELVIEW_MATRIX, m_modelview.data());
    m_gl->glGetFloatv(GL_PROJECTION_MATRIX, m_projection.data());
    m_gl->glUniformMatrix4fv(at.modelview, 1, GL_FALSE, m_modelview.data());
    m_gl->glUniformMatrix4fv(at.projection, 1, GL_FALSE, m_projection.data());
    if (type == Shader3d)
        _uploadMaterial(at);
    else
        m_gl->glUniform1f(at.colorOffset, colorOffset);

    m_gl->glActiveTexture(GL_TEXTURE0);
    m_checkerboard->bind(0);
    m_gl->glUniform1i(at.textureUnit0, 0);
    m_gl->glUniform1i(at.size, size);
    if (type == Shader2d) {
        m_gl->glUniform1f(at.minZ, minZ);
        m_gl->glUniform1f(at.maxZ, maxZ);
    }
    m_gl->glEnable(GL_BLEND);
    m_gl->glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
}

Shader::IndexRange Shader::_drawnIndices() const
{
    const auto all = m_indexBytes / static_cast<uint32_t>(sizeof(uint32_t));
    const uint32_t first = std::min(drawn.first, all);
    return {first, std::min(drawn.count, all - first)};
}

void Shader::_uploadMaterial(const Locations &at)
{
    constexpr std::array<size_t, 9> upperLeft = {0, 1, 2, 4, 5, 6, 8, 9, 10};
    for (size_t i = 0; i < upperLeft.size(); ++i)
        m_normalMatrix[i] = m_modelview[upperLeft[i]];
    m_gl->glUniformMatrix3fv(at.normalMatrix, 1, GL_FALSE, m_normalMatrix.data());
    m_gl->glUniform3fv(at.lightPosition, 1, lightPosition.data());
    m_gl->glUniform4fv(at.ambientMaterial, 1, ambient.data());
    m_gl->glUniform4fv(at.diffuseMaterial, 1, diffuse.data());
    m_gl->glUniform4fv(at.specularMaterial, 1, specular.data());
    m_gl->glUniform1f(at.shinyness, shininess);
}

DrawingEngine drawingEngineFor(const char *version, bool useLegacyShader)
{
    const char *begin = version + std::strspn(version, " \t");
    double number = 0.0;
    std::from_chars(begin, begin + std::strlen(begin), number);
    return number >= 3.3 && !useLegacyShader ? DrawingEngine::Vbo : DrawingEngine::Legacy;
}

Shader *ShaderFactory::getShader(ShaderType type)
{
    QOpenGLContext *context = QOpenGLContext::currentContext();
    if (!context)
        logWarning() << "No Current OpenGL context... Fail\n";
    const auto *version =
        context ? reinterpret_cast<const char *>(context->functions()->glGetString(GL_VERSION))
                : nullptr;
    const bool useLegacyShader = QevSettings().useLegacyShader();
    if (!version) {
        logCritical() << "Got Null OpenGL Version string, can't continue\n";
        logFlush();
        // Release builds keep no place of a message, and this one should tell its own.
        QMessageLogger("shader", __LINE__, "static Shader *ShaderFactory::getShader(ShaderType)")
            .fatal("Null OpenGL Context");
    }
    if (drawingEngineFor(version, useLegacyShader) == DrawingEngine::Vbo) {
        logInfo() << "Using VBO based OpenGL 3.3 drawing engine\n";
        return type == Shader3d   ? static_cast<Shader *>(new VboShader)
               : type == Shader2d ? new VboShader2d
                                  : nullptr;
    }
    if (useLegacyShader)
        logInfo() << "Fallback shader requested in QevSettings\n";
    logInfo() << "Using Legacy OpenGL 2.1 drawing engine\n";
    return type == Shader3d   ? static_cast<Shader *>(new LegacyShader)
           : type == Shader2d ? new LegacyShader2d
                              : nullptr;
}

} // namespace marlowen
