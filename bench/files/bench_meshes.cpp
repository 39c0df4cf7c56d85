#include "baseline.h"

#include "files/mesh/meshreader.h"

#include <QTemporaryDir>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>

using namespace marlowen;

/// Readers of meshes: a wavy square sheet, as OBJ of triangles or quads and as binary STL. The file
/// lies in the system's cache; the baseline copies the file's bytes in memory.
namespace {

struct Sheet
{
    int side; ///< squares along each edge
    double height(int column, int row) const
    {
        return 5.0 * std::sin(column * 0.021) * std::cos(row * 0.017);
    }
};

std::string path(const QTemporaryDir &folder, const char *name)
{
    return folder.filePath(QLatin1String(name)).toStdString();
}

void writeVertices(FILE *file, const Sheet &sheet)
{
    for (int r = 0; r <= sheet.side; ++r) {
        for (int c = 0; c <= sheet.side; ++c)
            std::fprintf(file, "v %.6f %.6f %.6f\n", c * 0.1, r * 0.1, sheet.height(c, r));
    }
}

void writeObj(const std::string &name, const Sheet &sheet, bool quads)
{
    FILE *file = std::fopen(name.c_str(), "w");
    writeVertices(file, sheet);
    for (int r = 0; r < sheet.side; ++r) {
        for (int c = 0; c < sheet.side; ++c) {
            const int a = r * (sheet.side + 1) + c + 1;
            const int d = a + sheet.side + 1;
            if (quads)
                std::fprintf(file, "f %d %d %d %d\n", a, a + 1, d + 1, d);
            else
                std::fprintf(file, "f %d %d %d\nf %d %d %d\n", a, a + 1, d, d, a + 1, d + 1);
        }
    }
    std::fclose(file);
}

void writeStl(const std::string &name, const Sheet &sheet)
{
    std::ofstream file(name, std::ios::binary);
    const std::string header(80, '\0');
    const quint32 count = 2U * static_cast<quint32>(sheet.side * sheet.side);
    file << header;
    file.write(reinterpret_cast<const char *>(&count), sizeof(count));
    const auto put = [&](const std::array<std::array<int, 2>, 3> &corners) {
        std::array<char, 50> facet{};
        for (size_t i = 0; i < 3; ++i) {
            const auto [c, r] = corners[i];
            const std::array<float, 3> point{static_cast<float>(c) * 0.1F,
                                             static_cast<float>(r) * 0.1F,
                                             static_cast<float>(sheet.height(c, r))};
            std::memcpy(facet.data() + 12 + 12 * i, point.data(), sizeof(point));
        }
        file.write(facet.data(), facet.size());
    };
    for (int r = 0; r < sheet.side; ++r) {
        for (int c = 0; c < sheet.side; ++c) {
            put({{{c, r}, {c + 1, r}, {c, r + 1}}});
            put({{{c, r + 1}, {c + 1, r}, {c + 1, r + 1}}});
        }
    }
}

void measureReading(benchmark::State &state, const std::string &name)
{
    Progress silent;
    const QString file = QString::fromStdString(name);
    size_t triangles = 0;
    baseline::measure(state, std::filesystem::file_size(name), [&] {
        Result<ReadMesh> read = readMesh(file, {}, silent);
        triangles = read ? read.value().mesh.triangles.size() : 0;
    });
    state.counters["facets"] = static_cast<double>(triangles);
}

} // namespace

static void objTriangles(benchmark::State &state)
{
    const QTemporaryDir folder;
    const std::string name = path(folder, "a.obj");
    writeObj(name, {1000}, false);
    measureReading(state, name);
}
BENCHMARK(objTriangles)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(9);

static void objQuads(benchmark::State &state)
{
    const QTemporaryDir folder;
    const std::string name = path(folder, "a.obj");
    writeObj(name, {1000}, true);
    measureReading(state, name);
}
BENCHMARK(objQuads)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(9);

static void stlBinary(benchmark::State &state)
{
    const QTemporaryDir folder;
    const std::string name = path(folder, "a.stl");
    writeStl(name, {1000});
    measureReading(state, name);
}
BENCHMARK(stlBinary)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(9);
