#include "files/mesh/meshreader.h"

#include "files/export/meshexport.h"
#include "files/formats.h"
#include "files/mesh/objfilereader.h"
#include "files/safefile.h"

#include <QCoreApplication>
#include <QFile>

#include <new>

namespace marlowen {

namespace {

ReadMesh readFile(QFile &file, const MeshReadOptions &options, Progress &progress)
{
    if (!isObjFile(file.fileName()))
        return readStl(file, progress);
    using Indices = ObjFileReader::RelativeIndices;
    ObjFileReader reader(options.relativeIndices ? Indices::AsOtherPrograms : Indices::Literal);
    reader.read(file, progress);
    return {reader.takeMesh(), reader.problems()};
}

Failure emptyMesh(const MeshProblems &problems)
{
    return {QStringLiteral("Open Failed"),
            QCoreApplication::translate("MeshReader", "Error! The file holds no triangles"),
            problems.first()};
}

} // namespace

bool isObjFile(const QString &name)
{
    return formatOf(name) == &meshFormat(MeshFormat::Obj);
}

Result<ReadMesh> readMesh(const QString &path, const MeshReadOptions &options, Progress &progress)
{
    QFile file(path);
    if (const Outcome opened = openRegularFile(file, openFailed()); !opened)
        return opened.failure();
    try {
        ReadMesh read = readFile(file, options, progress);
        if (progress.cancelled())
            return Failure{QStringLiteral("Open Failed"), {}, QStringLiteral("cancelled")};
        if (read.mesh.triangles.empty())
            return emptyMesh(read.problems);
        return read;
    } catch (const std::bad_alloc &) {
        return openFailed(QStringLiteral("not enough memory"));
    }
}

} // namespace marlowen
