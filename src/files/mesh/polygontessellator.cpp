#include "files/mesh/polygontessellator.h"

#include "files/mesh/convexquad.h"
#include "files/mesh/polygoncut.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <new>
#include <string>
#include <thread>

#include <pthread.h>

namespace marlowen {

namespace {

/// GLU takes time that grows with the square of the corners or faster, and cannot be interrupted:
/// polygons of more corners are cut in a thread that "Cancel" need not wait for.
constexpr size_t mostCornersAtOnce = 200;
constexpr std::chrono::milliseconds betweenLooks(15);

/// A polygon that another thread cuts. Both threads own it.
struct SharedCut
{
    PolygonCut cut;
    std::mutex mutex;
    std::condition_variable ended;
    bool isEnded = false;

    void run()
    {
        cut.run();
        const std::lock_guard guard(mutex);
        isEnded = true;
        ended.notify_one();
    }
};

/// From now on the thread works only while the machine has nothing else to do.
void yieldToOthers([[maybe_unused]] std::thread &thread)
{
#ifdef __linux__
    const sched_param lowest{};
    pthread_setschedparam(thread.native_handle(), SCHED_IDLE, &lowest);
#endif
}

/// Whether the cut ended; false when the user cancelled before.
bool runBeside(const std::shared_ptr<SharedCut> &shared, Progress &progress)
{
    std::thread thread([shared] { shared->run(); });
    std::unique_lock lock(shared->mutex);
    while (!shared->ended.wait_for(lock, betweenLooks, [&] { return shared->isEnded; })) {
        lock.unlock();
        progress.advance(0.0); // lets the user answer
        if (progress.cancelled()) {
            shared->cut.abandon();
            yieldToOthers(thread);
            thread.detach();
            return false;
        }
        lock.lock();
    }
    lock.unlock();
    thread.join();
    return true;
}

} // namespace

PolygonTessellator::PolygonTessellator(TriangleMesh &mesh, MeshProblems &problems)
    : m_mesh(mesh)
    , m_problems(problems)
{
}

PolygonTessellator::~PolygonTessellator() = default;

void PolygonTessellator::cut(std::span<const quint32> corners, Progress &progress)
{
    if (corners.size() != 4 || !_cutQuad(corners))
        tessellate(corners, progress);
}

bool PolygonTessellator::_cutQuad(std::span<const quint32> corners)
{
    const auto point = [&](size_t i) { return m_mesh.positions[corners[i]]; };
    const std::optional<QuadCut> quad = cutConvexQuad({point(0), point(1), point(2), point(3)});
    if (!quad)
        return false;
    for (const auto &[a, b, c] : *quad)
        m_mesh.triangles.push_back({corners[a], corners[b], corners[c]});
    return true;
}

void PolygonTessellator::tessellate(std::span<const quint32> corners, Progress &progress)
{
    if (corners.size() > mostCornersAtOnce) {
        const auto shared = std::make_shared<SharedCut>();
        shared->cut.setCorners(m_mesh.positions, corners);
        if (runBeside(shared, progress))
            _add(shared->cut);
        return;
    }
    if (!m_cut)
        m_cut = std::make_unique<PolygonCut>();
    m_cut->setCorners(m_mesh.positions, corners);
    m_cut->run();
    _add(*m_cut);
}

void PolygonTessellator::_add(const PolygonCut &cut)
{
    for (const unsigned code : cut.errors()) {
        const QString text = QStringLiteral("0x%1, error code = %2")
                                 .arg(reinterpret_cast<quintptr>(this), 0, 16)
                                 .arg(code);
        if (code == 0)
            m_problems.add("Failed to allocate GLUtesselator");
        else
            m_problems.add("Tessellation error: obj = ", text.toStdString());
    }
    if (cut.outOfMemory())
        throw std::bad_alloc();
    // New points of this polygon are numbered behind those of the polygons before.
    const auto oldPoints = static_cast<quint32>(m_newPoints.size());
    const quint32 lowestNew = PolygonCut::firstNew - static_cast<quint32>(cut.newPoints().size());
    const auto renumbered = [&](quint32 index) {
        return index > lowestNew ? index - oldPoints : index;
    };
    m_newPoints.insert(m_newPoints.end(), cut.newPoints().begin(), cut.newPoints().end());
    const std::vector<quint32> &indices = cut.indices();
    for (size_t i = 2; i < indices.size(); i += 3)
        m_mesh.triangles.push_back(
            {renumbered(indices[i - 2]), renumbered(indices[i - 1]), renumbered(indices[i])});
}

void PolygonTessellator::finish()
{
    if (m_newPoints.empty())
        return;
    const auto first = static_cast<quint32>(m_mesh.positions.size());
    m_mesh.positions.insert(m_mesh.positions.end(), m_newPoints.begin(), m_newPoints.end());
    for (MeshTriangle &triangle : m_mesh.triangles) {
        for (quint32 &index : triangle)
            index = index < first ? index : first + (PolygonCut::firstNew - index);
    }
}

} // namespace marlowen
