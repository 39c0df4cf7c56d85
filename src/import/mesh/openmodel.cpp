#include "import/mesh/openmodel.h"

#include "files/formats.h"
#include "files/mesh/meshreader.h"

#include <QtGlobal>

namespace marlowen {

namespace {

constexpr Field<ModelOptions> rows[] = {
    {&ModelOptions::unit,
     {.key = "units",
      .label = QT_TRANSLATE_NOOP("Fields", "Units"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Takes the numbers of the model in this unit."),
      .flags = OfSize,
      .choices = "in|cm|mm",
      .option = {"--units", nullptr,
                 "Takes the numbers of a mesh in this unit; in mm without it."}}},
    {&ModelOptions::relativeIndices,
     {.key = "relativeIndices",
      .label = QT_TRANSLATE_NOOP("Fields", "Read relative indices as other programs do"),
      .hint = QT_TRANSLATE_NOOP("Fields",
                                "Takes the index -1 of an OBJ face for the last vertex before it."),
      .flags = OfReading,
      .option = {.name = "--relative-indices"}}},
};

} // namespace

FieldTable<ModelOptions> modelFields()
{
    return rows;
}

bool opensAsModel(const QString &path)
{
    const Format *format = formatOf(path);
    return format && format->opensAs == OpensAs::Model;
}

Result<OpenedModel> openModel(const QString &path, const ModelOptions &options, Progress &progress)
{
    Result<ReadMesh> read = readMesh(path, {.relativeIndices = options.relativeIndices}, progress);
    if (!read)
        return read.failure();
    ReadMesh mesh = read.take();
    return OpenedModel{FacetShape(std::move(mesh.mesh), static_cast<size_t>(options.unit)),
                       std::move(mesh.problems)};
}

} // namespace marlowen
