#pragma once

#include <QString>

#include <array>

namespace marlowen {

/// What a file is, told by the end of its name in any case.
enum class FileKind { Workspace, Pattern, ObjMesh, StlMesh, Image, HeightMap, Unknown };

/// One row a file name ending.
struct FileType
{
    const char *extension; ///< with its dot, lower case
    FileKind kind;
    const char *description;
    bool opens;   ///< the program reads it
    bool exports; ///< the program writes it
};

inline constexpr std::array<FileType, 9> fileTypes{{
    {".scp", FileKind::Workspace, "workspace", true, true},
    {".ptr", FileKind::Pattern, "pattern file", true, true},
    {".obj", FileKind::ObjMesh, "OBJ mesh", true, true},
    {".stl", FileKind::StlMesh, "STL mesh", true, true},
    {".jpg", FileKind::Image, "JPEG image", true, false},
    {".jpeg", FileKind::Image, "JPEG image", true, false},
    {".png", FileKind::Image, "PNG image", true, true},
    {".bmp", FileKind::Image, "BMP image", true, false},
    {".pfm", FileKind::HeightMap, "float height map", true, true},
}};

/// The row of a file name; null when its ending is none of the table's.
const FileType *fileTypeOf(const QString &path);
FileKind fileKindOf(const QString &path);

} // namespace marlowen
