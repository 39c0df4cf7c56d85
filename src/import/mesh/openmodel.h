#pragma once

#include "base/fieldtable.h"
#include "base/progress.h"
#include "base/result.h"
#include "files/mesh/meshproblems.h"
#include "import/mesh/facetshape.h"

#include <QString>

namespace marlowen {

/// How the file of a model is taken.
struct ModelOptions
{
    int unit = 2; ///< of its numbers, an index into lengthUnits
    bool relativeIndices = false;
};

/// The purpose of a field of the options.
enum ModelFieldFlag : unsigned {
    OfReading = 1U << 0, ///< must be known when the file is read
    OfSize = 1U << 1,    ///< may change later
};

/// One row an option, in the order of the record.
FieldTable<ModelOptions> modelFields();

/// A model as read, not turned, not scaled, and the problems of its file.
struct OpenedModel
{
    FacetShape shape;
    MeshProblems problems;
};

/// Whether files of this name are meshes, which are oriented and rasterised before they are
/// reliefs.
bool opensAsModel(const QString &path);

/// Reads a mesh file. Fails as readMesh() does.
Result<OpenedModel> openModel(const QString &path, const ModelOptions &options, Progress &progress);

} // namespace marlowen
