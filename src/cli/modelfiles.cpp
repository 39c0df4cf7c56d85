#include "cli/modelfiles.h"

#include "cli/clifiles.h"
#include "files/mesh/trianglemesh.h"

#include <QJsonArray>

#include <cstdio>

namespace marlowen {

namespace {

/// Failures of cancelled work have no sentence.
Failure explained(const QString &path, const Failure &failure, const Progress &progress)
{
    if (progress.cancelled())
        return aboutFile(path, scriptFailure(QStringLiteral("interrupted")));
    return aboutFile(path, failure);
}

bool parseTurns(const QString &text, std::vector<ModelTurn> &turns)
{
    for (const QString &word : text.split(QLatin1Char(','))) {
        const std::optional<ModelTurn> turn = modelTurnOf(word);
        if (!turn)
            return false;
        turns.push_back(*turn);
    }
    return true;
}

bool parseScale(const QString &text, ModelWish &wish)
{
    const QStringList parts = text.split(QLatin1Char(','));
    std::array<double, 3> factors{};
    if (parts.size() != 1 && parts.size() != 3)
        return false;
    for (qsizetype i = 0; i < 3; ++i) {
        if (!parseReal(parts[parts.size() == 1 ? 0 : i], modelScaleRange,
                       factors[static_cast<size_t>(i)]))
            return false;
    }
    wish.scale = factors;
    return true;
}

QJsonArray arrayOf(const MeshPoint &point)
{
    return {point[0], point[1], point[2]};
}

QString unitWord(size_t unit)
{
    return QString::fromLatin1(lengthUnits[unit].label).remove(QLatin1Char('.'));
}

} // namespace

Result<OpenedModel> openModelFile(const QString &path, const ModelOptions &options,
                                  Progress &progress)
{
    Result<OpenedModel> opened = openModel(path, options, progress);
    if (!opened)
        return explained(path, opened.failure(), progress);
    if (const QString problems = opened.value().problems.sentence(); !problems.isEmpty())
        std::fprintf(stderr, "%s\n",
                     oneLine(aboutFile(path, scriptFailure(problems))).toLocal8Bit().constData());
    return opened.take();
}

Result<std::unique_ptr<Relief>> rasteriseFile(const QString &path, const FacetShape &shape,
                                              const ShapeImport &import, Progress &progress)
{
    Result<std::unique_ptr<Relief>> relief = importShape(shape, import, progress);
    if (!relief)
        return explained(path, relief.failure(), progress);
    return relief.take();
}

QJsonObject describe(const OpenedModel &model)
{
    const FacetShape &shape = model.shape;
    const ModelBox box = shape.box();
    return {{QStringLiteral("mesh"),
             QJsonObject{
                 {QStringLiteral("vertices"), static_cast<qint64>(distinctCorners(shape.mesh()))},
                 {QStringLiteral("facets"), static_cast<qint64>(shape.mesh().triangles.size())},
                 {QStringLiteral("problems"), model.problems.count()},
                 {QStringLiteral("low"), arrayOf(box.low)},
                 {QStringLiteral("high"), arrayOf(box.high)},
                 {QStringLiteral("units"), unitWord(shape.unit())},
                 {QStringLiteral("area"), shape.areaSquareInches()},
                 {QStringLiteral("tooBig"), shape.tooBig()}}}};
}

QString notAModel()
{
    return QStringLiteral("mesh options apply to meshes only");
}

std::vector<CommandOption> modelOptionsFor(ModelWish &wish)
{
    std::vector<CommandOption> options =
        optionsOf(modelFields(), wish.options, [&wish] { wish.given = true; });
    const QString words =
        QString::fromLatin1(modelTurnWords()).replace(QLatin1Char('|'), QLatin1Char(' '));
    options.push_back({QStringLiteral("--rotate"), QStringLiteral("STEPS"),
                       QStringLiteral("Turns a mesh, in order: a comma list of %1.").arg(words),
                       [&wish](const QString &text) {
                           wish.given = true;
                           return parseTurns(text, wish.turns);
                       }});
    options.push_back(
        {QStringLiteral("--scale"), QStringLiteral("S or X,Y,Z"),
         QStringLiteral("Factors on the axes of a mesh as turned, above 0; in place of shrinking "
                        "one that is too big."),
         [&wish](const QString &text) {
             wish.given = true;
             return parseScale(text, wish);
         }});
    return options;
}

void orient(FacetShape &shape, const ModelWish &wish)
{
    for (const ModelTurn turn : wish.turns)
        shape.turn(turn);
    if (wish.scale)
        shape.setScale(*wish.scale);
    else
        shape.shrinkToLimit();
}

std::optional<ModelTurn> modelTurnOf(const QString &word)
{
    for (const ModelTurnRow &row : modelTurns()) {
        if (word == QLatin1String(row.name))
            return row.turn;
    }
    return {};
}

const char *modelTurnWords()
{
    static const QByteArray words = [] {
        QByteArrayList names;
        for (const ModelTurnRow &row : modelTurns())
            names << row.name;
        return names.join('|');
    }();
    return words.constData();
}

} // namespace marlowen
