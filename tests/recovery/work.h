#pragma once

#include "import/importsource.h"
#include "recovery/recoveryjournal.h"
#include "relief/operations/operationtable.h"
#include "relief/selection/selections.h"
#include "relief/tools/tool.h"
#include "workbench/workbench.h"

#include <QCryptographicHash>
#include <QRandomGenerator>

namespace marlowen {

/// Everything that a recovery brings back of a relief, as one value; without the selection where
/// that is read later than the step.
inline QByteArray stateOf(const Relief &relief, bool withSelection = true)
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    const auto add = [&hash](const auto &value) {
        hash.addData(QByteArrayView(reinterpret_cast<const char *>(&value), sizeof value));
    };
    const auto addLayer = [&](const GridLayer &layer) {
        hash.addData(QByteArrayView(reinterpret_cast<const char *>(layer.constData()),
                                    layer.size() * qsizetype(sizeof(float))));
    };
    add(relief.rect());
    add(relief.zScale);
    addLayer(relief.heights());
    addLayer(relief.maskLayer());
    addLayer(relief.referenceLayer());
    if (withSelection) {
        add(relief.selectionActive);
        addLayer(relief.selectionLayer());
    }
    if (const auto *source = dynamic_cast<const ImportSource *>(relief.source())) {
        for (const Field<ImportSettings> &field : importFields())
            add(field.value(source->settings()));
        add(source->dirty);
        add(source->range());
    }
    return hash.result();
}

inline std::unique_ptr<Relief> flatRelief(int width, int height)
{
    auto relief = std::make_unique<Relief>(width, height);
    std::fill_n(relief->heights().data(), relief->cells(), 5.0F);
    return relief;
}

/// A relief whose import is open.
inline std::unique_ptr<Relief> importedRelief(int width, int height)
{
    FloatGrid values(width, height);
    for (size_t i = 0; i < values.values.size(); ++i)
        values.values[i] = static_cast<float>(i % 200);
    return std::make_unique<Relief>(
        std::make_unique<ImportSource>(std::move(values), ImportSettings()));
}

inline void stroke(Workbench &bench, QPointF from, QPointF to, int type = Tool::Deposit)
{
    bench.tool.type = type;
    bench.engine().beginStroke(bench.tool, from);
    bench.engine().addStrokePoint(to);
    bench.engine().endStroke(to);
    bench.strokeEnded();
}

/// Some step of a person's work.
inline void randomStep(Workbench &bench, QRandomGenerator &random)
{
    const Relief &relief = *bench.relief();
    const auto point = [&] {
        return QPointF(random.bounded(relief.width()) - relief.width() / 2,
                       random.bounded(relief.height()) - relief.height() / 2);
    };
    const int width = relief.width();
    const int height = relief.height();
    switch (random.bounded(12)) {
    case 0:
        return (void)bench.apply(
            operation("resize", {{width + random.bounded(5) - 2.0, double(height)}}));
    case 1:
        return (void)bench.apply(operation("zScale", {{1.0 + random.bounded(4)}}));
    case 2:
        return (void)bench.apply(operation("crop", {{}, {point(), point()}}));
    case 3:
        return (void)bench.apply(operation("maskInvert"));
    case 4:
        return stroke(bench, point(), point(), Tool::Mask);
    case 5:
    case 6:
        return bench.undo();
    case 7:
        return bench.redo();
    default:
        return stroke(bench, point(), point());
    }
}

} // namespace marlowen
