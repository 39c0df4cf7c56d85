#include "base/qevsettings.h"
#include "gltarget.h"
#include "render/engines/shader.h"
#include "render/light/lightdirection.h"

#include <QTest>
#include <QVector3D>

#include <cmath>

using namespace marlowen;

namespace {

constexpr uint32_t stripEnd = 0xFFFFFFFF;
constexpr int side = 64;

/// A grid of vertices one pixel apart, filling a side x side target with its corner pixels left
/// free.
struct Mesh
{
    static constexpr int columns = 61;
    static constexpr int rows = 61;
    std::vector<float> positions;
    std::vector<float> normals;
    std::vector<float> selection;
    std::vector<uint32_t> indices;

    template <typename Height>
    explicit Mesh(Height height)
    {
        for (int row = 0; row < rows; ++row)
            for (int column = 0; column < columns; ++column) {
                const float x = float(column - columns / 2);
                const float y = float(row - rows / 2);
                positions.insert(positions.end(), {x, y, float(height(x, y))});
                const float dx = float(height(x - 1, y) - height(x + 1, y)) / 2;
                const float dy = float(height(x, y - 1) - height(x, y + 1)) / 2;
                normals.insert(normals.end(), {dx, dy, 1.0F});
                selection.push_back(0.0F);
            }
        for (uint32_t row = 0; row + 1 < rows; ++row) {
            for (uint32_t column = 0; column < columns; ++column)
                for (uint32_t up : {1U, 0U})
                    indices.push_back((row + up) * columns + column);
            indices.push_back(stripEnd);
        }
    }

    void selectAll() { std::fill(selection.begin(), selection.end(), 1.0F); }
    ShaderMesh arrays() const { return {positions, normals, selection, indices}; }
    void giveTo(Shader &shader) const { shader.setData(arrays()); }
};

float ramp(float x, float)
{
    return x > 0 ? x : 0;
}

float dome(float x, float y)
{
    return 20.0F - 0.02F * (x * x + y * y);
}

float plane(float, float)
{
    return 10.0F;
}

QImage drawn(GlTarget &target, Shader &shader, QColor background = Qt::black)
{
    target.begin(background);
    shader.bind();
    shader.draw();
    shader.release();
    return target.image();
}

/// Makes the shader of the type on the engine that the setting asks for.
std::unique_ptr<Shader> makeShader(ShaderType type, bool legacy)
{
    QevSettings().setUseLegacyShader(legacy);
    std::unique_ptr<Shader> shader(ShaderFactory::getShader(type));
    shader->size = Mesh::columns;
    shader->lightPosition = {0.4F, 0.5F, 1.0F};
    shader->ambient = {0.2F, 0.1F, 0.05F, 0.8F};
    shader->diffuse = {0.5F, 0.4F, 0.3F, 0.9F};
    shader->specular = {0.3F, 0.3F, 0.4F, 0.7F};
    shader->shininess = 12.0F;
    shader->maxZ = 30.0F;
    return shader;
}

QVector3D tinted(QVector3D colour)
{
    return (QVector3D(1, 0, 0) + colour).normalized() * colour.length();
}

/// The lit colour of a point, computed apart from the program.
QVector3D litColour(QVector3D normal)
{
    const QVector3D light(0.4F, 0.5F, 1.0F);
    normal.normalize();
    const QVector3D half = (light + QVector3D(0, 0, 1)).normalized();
    const float diffuse = std::abs(QVector3D::dotProduct(normal, light)) * 0.9F;
    const float specular = std::pow(std::abs(QVector3D::dotProduct(normal, half)), 12.0F) * 0.7F;
    return 0.8F * QVector3D(0.2F, 0.1F, 0.05F) + diffuse * QVector3D(0.5F, 0.4F, 0.3F) +
           specular * QVector3D(0.3F, 0.3F, 0.4F);
}

QVector3D heightColour(float z, float maxZ, float offset)
{
    const double val = z / maxZ * 255.0 + offset;
    const double turn = 2.0 * M_PI / 255.0 * val;
    return {0.0F, float(0.5 + 0.5 * std::sin(turn + M_PI / 2)),
            float(0.5 + 0.5 * std::sin(turn + M_PI))};
}

QVector3D rgb(QRgb pixel)
{
    return QVector3D(float(qRed(pixel)), float(qGreen(pixel)), float(qBlue(pixel))) / 255.0F;
}

bool near(QRgb pixel, QVector3D colour, float tolerance)
{
    const QVector3D difference = 255.0F * (rgb(pixel) - colour);
    return std::abs(difference.x()) <= tolerance && std::abs(difference.y()) <= tolerance &&
           std::abs(difference.z()) <= tolerance;
}

} // namespace

class TestShaders : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_target = std::make_unique<GlTarget>(QSize(side, side)); }
    void cleanupTestCase()
    {
        QevSettings().setUseLegacyShader(false);
        m_target.reset();
    }

    void litPixelsFollowTheFormula_data() { _engines(); }
    void litPixelsFollowTheFormula();
    void heightPixelsFollowTheFormula_data() { _engines(); }
    void heightPixelsFollowTheFormula();
    void chosenSideIsBright();
    void floorIsHalfTransparent_data() { _engines(); }
    void floorIsHalfTransparent();
    void selectionTintsAndCoversTheFloor_data() { _engines(); }
    void selectionTintsAndCoversTheFloor();
    void incompleteDataDrawsNothing_data() { _engines(); }
    void incompleteDataDrawsNothing();
    void legacySelectionLagsByOneVertex();
    void changedVerticesAreTakenOver_data() { _engines(); }
    void changedVerticesAreTakenOver();
    void releaseUndoesBind_data() { _engines(); }
    void releaseUndoesBind();

private:
    static void _engines()
    {
        QTest::addColumn<bool>("legacy");
        QTest::newRow("buffers") << false;
        QTest::newRow("legacy") << true;
    }
    std::unique_ptr<GlTarget> m_target;
};

void TestShaders::litPixelsFollowTheFormula()
{
    QFETCH(bool, legacy);
    const auto shader = makeShader(Shader3d, legacy);
    const Mesh mesh(dome);
    mesh.giveTo(*shader);
    const QImage image = drawn(*m_target, *shader);
    // The relief runs out of the shape at its rim, so the points stay inside.
    for (const QPoint point : {QPoint(0, 0), QPoint(-12, 7), QPoint(15, 15), QPoint(3, -20)}) {
        const float x = float(point.x()) + 0.5F;
        const float y = float(point.y()) + 0.5F;
        const QRgb pixel = image.pixel(side / 2 + point.x(), side / 2 - 1 - point.y());
        QVERIFY2(near(pixel, litColour({0.04F * x, 0.04F * y, 1.0F}), 2),
                 qPrintable(QString::number(pixel, 16)));
    }
}

void TestShaders::heightPixelsFollowTheFormula()
{
    QFETCH(bool, legacy);
    const auto shader = makeShader(Shader2d, legacy);
    shader->colorOffset = 40.0F;
    const Mesh mesh(ramp);
    mesh.giveTo(*shader);
    const QImage image = drawn(*m_target, *shader);
    for (int column : {2, 9, 17, 28}) {
        const QVector3D expected = heightColour(float(column) + 0.5F, 30.0F, 40.0F);
        QVERIFY(near(image.pixel(side / 2 + column, 20), expected, 2));
    }
}

// A dome under each of the eight lights: the slope that faces the labelled side is the brightest.
void TestShaders::chosenSideIsBright()
{
    // In the order of the light table, whose Left and Right light the opposite slopes.
    const QPoint slopes[] = {{16, 16}, {32, 10}, {48, 16}, {54, 32},
                             {10, 32}, {16, 48}, {32, 54}, {48, 48}};
    const auto shader = makeShader(Shader3d, false);
    shader->specular = {0, 0, 0, 0};
    const Mesh mesh(dome);
    mesh.giveTo(*shader);
    for (int chosen = 0; chosen < 8; ++chosen) {
        shader->lightPosition = lightDirection(chosen);
        const QImage image = drawn(*m_target, *shader);
        int brightest = 0;
        for (int i = 1; i < 8; ++i)
            if (qGray(image.pixel(slopes[i])) > qGray(image.pixel(slopes[brightest])))
                brightest = i;
        QCOMPARE(brightest, chosen);
    }
}

void TestShaders::floorIsHalfTransparent()
{
    QFETCH(bool, legacy);
    const QImage board = QImage(QStringLiteral(":/marlowen2/checkerboard"));
    QVERIFY(!board.isNull());
    const auto shader = makeShader(Shader3d, legacy);
    const Mesh mesh([](float, float) { return 0.0F; });
    mesh.giveTo(*shader);
    const QImage image = drawn(*m_target, *shader, QColor(0, 0, 200));
    for (const QPoint point : {QPoint(10, 10), QPoint(33, 40), QPoint(50, 21)}) {
        const float u = (float(point.x()) + 0.5F - side / 2) / Mesh::columns + 0.5F;
        const float v = (side / 2 - float(point.y()) - 0.5F) / Mesh::columns + 0.5F;
        const QRgb texel =
            board.pixel(int(u * float(board.width())), int(v * float(board.height())));
        const QVector3D expected = (rgb(texel) + QVector3D(0, 0, 200 / 255.0F)) / 2.0F;
        QVERIFY2(near(image.pixel(point), expected, 2),
                 qPrintable(QString::number(image.pixel(point), 16)));
    }
}

void TestShaders::selectionTintsAndCoversTheFloor()
{
    QFETCH(bool, legacy);
    Mesh mesh(plane);
    mesh.selectAll();
    auto shader = makeShader(Shader3d, legacy);
    mesh.giveTo(*shader);
    const QVector3D lit = litColour({0, 0, 1});
    QVERIFY(near(drawn(*m_target, *shader).pixel(30, 30), tinted(lit), 2));

    Mesh floor([](float, float) { return 0.0F; });
    floor.selectAll();
    floor.giveTo(*shader);
    QVERIFY(near(drawn(*m_target, *shader).pixel(30, 30), tinted(lit), 2));

    shader = makeShader(Shader2d, legacy);
    mesh.giveTo(*shader);
    QVERIFY(
        near(drawn(*m_target, *shader).pixel(30, 30), tinted(heightColour(10.0F, 30.0F, 0.0F)), 2));
}

void TestShaders::incompleteDataDrawsNothing()
{
    QFETCH(bool, legacy);
    QImage blank(side, side, QImage::Format_RGB32);
    blank.fill(Qt::white);
    for (ShaderType type : {Shader3d, Shader2d}) {
        const auto shader = makeShader(type, legacy);
        QCOMPARE(drawn(*m_target, *shader, Qt::white), blank);
        const Mesh mesh(plane);
        ShaderMesh incomplete = mesh.arrays();
        incomplete.indices = {};
        shader->setData(incomplete);
        QCOMPARE(drawn(*m_target, *shader, Qt::white), blank);
        if (type == Shader3d) {
            incomplete = mesh.arrays();
            incomplete.normals = {};
            shader->setData(incomplete);
            QCOMPARE(drawn(*m_target, *shader, Qt::white), blank);
        }
        QCOMPARE(m_target->gl().glGetError(), GLenum(GL_NO_ERROR));
    }
}

// A strip of three vertices whose last one is selected: no vertex before it in the strip carries
// the selection, so the legacy engine shows none.
void TestShaders::legacySelectionLagsByOneVertex()
{
    const int middle = side / 2;
    const QVector3D lit = litColour({0, 0, 1});
    const float positions[] = {-20, -20, 10, 20, -20, 10, 0, 20, 10};
    const float normals[] = {0, 0, 1, 0, 0, 1, 0, 0, 1};
    const float none[] = {0, 0, 0};
    const float last[] = {0, 0, 1};
    const uint32_t indices[] = {0, 1, 2};
    const auto legacyShader = makeShader(Shader3d, true);
    legacyShader->setData({positions, normals, none, indices});
    drawn(*m_target, *legacyShader);
    legacyShader->setData({positions, normals, last, indices});
    QVERIFY(near(drawn(*m_target, *legacyShader).pixel(middle, middle), lit, 2));
    const auto vboShader = makeShader(Shader3d, false);
    vboShader->setData({positions, normals, last, indices});
    QVERIFY(near(drawn(*m_target, *vboShader).pixel(middle, middle), tinted(lit), 2));
}

void TestShaders::changedVerticesAreTakenOver()
{
    QFETCH(bool, legacy);
    Mesh mesh(plane);
    const auto shader = makeShader(Shader2d, legacy);
    mesh.giveTo(*shader);
    const QRgb before = drawn(*m_target, *shader).pixel(20, side / 2 - 5);

    // Rows 30 and up, columns 10 .. 19, twice as high; rows beyond the mesh are harmless.
    for (int row = 30; row < Mesh::rows; ++row)
        for (int column = 10; column < 20; ++column)
            mesh.positions[size_t(3 * (row * Mesh::columns + column) + 2)] = 20.0F;
    shader->updateVertices({30 * Mesh::columns + 10, 10, 200, Mesh::columns});
    QImage image = drawn(*m_target, *shader);
    const int column = side / 2 - Mesh::columns / 2 + 15;
    QVERIFY(near(image.pixel(column, side / 2 - 10), heightColour(20.0F, 30.0F, 0.0F), 2));
    QCOMPARE(image.pixel(column, side / 2 + 10), before);
    QCOMPARE(image.pixel(side / 2 + 10, side / 2 - 10), before);
    QCOMPARE(m_target->gl().glGetError(), GLenum(GL_NO_ERROR));

    const Mesh higher([](float, float) { return 25.0F; });
    shader->setVertices(higher.arrays());
    image = drawn(*m_target, *shader);
    QVERIFY(near(image.pixel(column, side / 2 + 10), heightColour(25.0F, 30.0F, 0.0F), 2));
}

void TestShaders::releaseUndoesBind()
{
    QFETCH(bool, legacy);
    for (ShaderType type : {Shader3d, Shader2d}) {
        const auto shader = makeShader(type, legacy);
        const Mesh mesh(dome);
        mesh.giveTo(*shader);
        drawn(*m_target, *shader);
        GLint program = -1;
        GLint texture = -1;
        m_target->gl().glGetIntegerv(GL_CURRENT_PROGRAM, &program);
        m_target->gl().glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture);
        QCOMPARE(program, 0);
        QCOMPARE(texture, 0);
        QVERIFY(!m_target->gl().glIsEnabled(GL_BLEND));
        QVERIFY(!m_target->gl().glIsEnabled(GL_PRIMITIVE_RESTART));
        QCOMPARE(m_target->gl().glGetError(), GLenum(GL_NO_ERROR));
    }
}

QTEST_MAIN(TestShaders)
#include "tst_shaders.moc"
