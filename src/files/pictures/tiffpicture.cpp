#include "files/pictures/tiffpicture.h"

#include "files/pictures/picturegrid.h"
#include "files/pictures/picturekind.h"
#include "files/safefile.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

#include <tiffio.h>

namespace marlowen {
namespace {

/// A file that claims more decoded bytes for each stored one is damaged or malicious.
constexpr qint64 mostExpansion = 5000;
constexpr qint64 smallPicture = 64 << 20;

struct CloseTiff
{
    void operator()(TIFF *tiff) const { TIFFClose(tiff); }
};
using TiffFile = std::unique_ptr<TIFF, CloseTiff>;

/// Keeps the first message of the library.
int keepMessage(TIFF *, void *message, const char *, const char *format, va_list arguments)
{
    auto *kept = static_cast<QString *>(message);
    if (kept->isEmpty())
        *kept = QString::vasprintf(format, arguments);
    return 1;
}

int ignoreMessage(TIFF *, void *, const char *, const char *, va_list)
{
    return 1;
}

TiffFile openTiff(const QString &path, QString &message)
{
    const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(
        TIFFOpenOptionsAlloc(), TIFFOpenOptionsFree);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), keepMessage, &message);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), ignoreMessage, nullptr);
    // Not mapped into memory: a file that shrinks while it is read would end the program.
    return TiffFile(TIFFOpenExt(QFile::encodeName(path).constData(), "rm", options.get()));
}

/// How the first page is stored.
struct Page
{
    explicit Page(TIFF *tiff)
        : tiled(TIFFIsTiled(tiff) != 0)
    {
        TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
        TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &samples);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &format);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &planar);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_ORIENTATION, &orientation);
        TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric);
        bandWidth = width;
        bandHeight = height;
        if (tiled) {
            TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &bandWidth);
            TIFFGetField(tiff, TIFFTAG_TILELENGTH, &bandHeight);
        } else {
            TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &bandHeight);
            bandHeight = std::min(bandHeight, height);
        }
    }

    bool grey() const
    {
        return photometric == PHOTOMETRIC_MINISBLACK || photometric == PHOTOMETRIC_MINISWHITE;
    }
    bool floats() const { return format == SAMPLEFORMAT_IEEEFP && bits == 32; }
    bool coloursByNumber() const { return photometric == PHOTOMETRIC_PALETTE; }
    /// Whether the samples are read without conversion.
    bool direct() const
    {
        const bool whole = format == SAMPLEFORMAT_UINT && (bits == 8 || bits == 16);
        const bool colours = photometric == PHOTOMETRIC_RGB && samples >= 3;
        const bool numbers = coloursByNumber() && bits == 8;
        return (floats() || whole) && ((grey() && samples >= 1) || colours || numbers);
    }
    size_t sampleBytes() const { return bits / 8U; }
    /// Channels that are looked at.
    uint16_t channels() const { return photometric == PHOTOMETRIC_RGB ? 3 : 1; }
    /// Samples of a pixel that lie side by side in a block.
    uint16_t packed() const { return planar == PLANARCONFIG_SEPARATE ? 1 : samples; }

    bool tiled;
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t bandWidth = 0;
    uint32_t bandHeight = 0;
    uint16_t bits = 1;
    uint16_t samples = 1;
    uint16_t format = SAMPLEFORMAT_UINT;
    uint16_t planar = PLANARCONFIG_CONTIG;
    uint16_t orientation = ORIENTATION_TOPLEFT;
    uint16_t photometric = PHOTOMETRIC_MINISBLACK;
};

/// Why a page is not read; empty when it can be.
QString reasonAgainst(const Page &page, qint64 fileBytes)
{
    const qint64 pixels = static_cast<qint64>(page.width) * page.height;
    if (page.width == 0 || page.height == 0 || page.bandWidth == 0 || page.bandHeight == 0)
        return QStringLiteral("the picture has no size");
    if (pixels > mostPixels || static_cast<qint64>(page.bandWidth) * page.bandHeight > mostPixels)
        return tooManyPixels();
    const qint64 bytes = pixels * page.samples * std::max<qint64>(1, page.bits / 8);
    if (bytes > smallPicture && bytes / mostExpansion > fileBytes)
        return QStringLiteral("the file is too short for its picture");
    return {};
}

/// Grey levels of the numbers of a palette; empty without one.
std::vector<float> paletteGreys(TIFF *tiff)
{
    constexpr size_t colours = 256;
    uint16_t *red = nullptr;
    uint16_t *green = nullptr;
    uint16_t *blue = nullptr;
    if (TIFFGetField(tiff, TIFFTAG_COLORMAP, &red, &green, &blue) == 0)
        return {};
    // Some writers store 8 bits instead of 16.
    const auto large = [](uint16_t value) { return value > 255; };
    const bool wide = std::any_of(red, red + colours, large) ||
                      std::any_of(green, green + colours, large) ||
                      std::any_of(blue, blue + colours, large);
    const int shift = wide ? 8 : 0;
    std::vector<float> greys(colours);
    for (size_t i = 0; i < colours; ++i)
        greys[i] = static_cast<float>(
            (11 * (red[i] >> shift) + 16 * (green[i] >> shift) + 5 * (blue[i] >> shift)) / 32);
    return greys;
}

/// Reads samples without conversion, a row of blocks at a time.
class SampleReader
{
public:
    SampleReader(TIFF *tiff, const Page &page)
        : m_tiff(tiff)
        , m_page(page)
        , m_block(static_cast<size_t>(page.tiled ? TIFFTileSize(tiff) : TIFFStripSize(tiff)))
        , m_band(static_cast<size_t>(page.width) * page.bandHeight)
        , m_greys(page.coloursByNumber() ? paletteGreys(tiff) : std::vector<float>())
    {
    }

    /// Grey values of the rows from `top` on, page.width a row; false when they cannot be decoded.
    bool read(uint32_t top)
    {
        std::fill(m_band.begin(), m_band.end(), 0.0F);
        const bool separate = m_page.planar == PLANARCONFIG_SEPARATE;
        for (uint32_t left = 0; left < m_page.width; left += m_page.bandWidth) {
            for (uint16_t plane = 0; plane < (separate ? m_page.channels() : 1); ++plane) {
                if (!_decode(left, top, plane))
                    return false;
                _add(left, top, plane);
            }
        }
        if (m_page.bits == 8)
            std::ranges::transform(m_band, m_band.begin(), [](float v) { return std::floor(v); });
        return true;
    }
    float *row(uint32_t index) { return m_band.data() + static_cast<size_t>(index) * m_page.width; }

private:
    bool _decode(uint32_t left, uint32_t top, uint16_t plane)
    {
        const tmsize_t whole = static_cast<tmsize_t>(m_block.size());
        if (m_page.tiled)
            return TIFFReadTile(m_tiff, m_block.data(), left, top, 0, plane) == whole;
        const uint32_t rows = std::min(m_page.bandHeight, m_page.height - top);
        const tmsize_t wanted = TIFFVStripSize(m_tiff, rows);
        const uint32_t strip = TIFFComputeStrip(m_tiff, top, plane);
        return TIFFReadEncodedStrip(m_tiff, strip, m_block.data(), whole) >= wanted;
    }

    float _sample(size_t index) const
    {
        const unsigned char *at = m_block.data() + index * m_page.sampleBytes();
        const bool darkIsHigh = m_page.photometric == PHOTOMETRIC_MINISWHITE;
        if (m_page.floats()) {
            float value = 0.0F;
            std::memcpy(&value, at, sizeof(value));
            return value;
        }
        if (m_page.bits == 8) {
            if (m_page.coloursByNumber())
                return m_greys.empty() ? 0.0F : m_greys[*at];
            return static_cast<float>(darkIsHigh ? 255 - *at : *at);
        }
        uint16_t value = 0;
        std::memcpy(&value, at, sizeof(value));
        return static_cast<float>(darkIsHigh ? 65535 - value : value);
    }

    /// Adds the block's share of the grey values.
    void _add(uint32_t left, uint32_t top, uint16_t plane)
    {
        constexpr float weights[] = {11.0F / 32.0F, 16.0F / 32.0F, 5.0F / 32.0F};
        const bool colours = m_page.channels() == 3;
        const uint16_t packed = m_page.packed();
        const float scale = m_page.bits == 16 ? 1.0F / 257.0F : 1.0F;
        const uint32_t columns = std::min(m_page.bandWidth, m_page.width - left);
        const uint32_t rows = std::min(m_page.bandHeight, m_page.height - top);
        for (uint32_t y = 0; y < rows; ++y) {
            float *out = row(y) + left;
            size_t index = static_cast<size_t>(y) * m_page.bandWidth * packed;
            for (uint32_t x = 0; x < columns; ++x, index += packed) {
                if (!colours)
                    out[x] = _sample(index) * scale;
                else if (packed == 1)
                    out[x] += weights[plane] * _sample(index) * scale;
                else
                    out[x] = (weights[0] * _sample(index) + weights[1] * _sample(index + 1) +
                              weights[2] * _sample(index + 2)) *
                             scale;
            }
        }
    }

    TIFF *m_tiff;
    const Page &m_page;
    std::vector<unsigned char> m_block;
    std::vector<float> m_band;
    std::vector<float> m_greys; ///< of a palette
};

/// Reads everything else as 8 bits a channel.
class ColourReader
{
public:
    ColourReader(TIFF *tiff, const Page &page)
        : m_tiff(tiff)
        , m_page(page)
        , m_block(static_cast<size_t>(page.bandWidth) * page.bandHeight)
        , m_band(static_cast<size_t>(page.width) * page.bandHeight)
    {
    }

    bool read(uint32_t top)
    {
        const uint32_t rows = std::min(m_page.bandHeight, m_page.height - top);
        if (!m_page.tiled) {
            if (TIFFReadRGBAStripExt(m_tiff, top, m_block.data(), 1) == 0)
                return false;
            _copy(0, m_page.width, rows, rows);
            return true;
        }
        for (uint32_t left = 0; left < m_page.width; left += m_page.bandWidth) {
            if (TIFFReadRGBATileExt(m_tiff, left, top, m_block.data(), 1) == 0)
                return false;
            _copy(left, std::min(m_page.bandWidth, m_page.width - left), rows, m_page.bandHeight);
        }
        return true;
    }
    float *row(uint32_t index) { return m_band.data() + static_cast<size_t>(index) * m_page.width; }

private:
    /// The library hands out the lowest row first.
    void _copy(uint32_t left, uint32_t columns, uint32_t rows, uint32_t blockRows)
    {
        for (uint32_t y = 0; y < rows; ++y) {
            const uint32_t *from =
                m_block.data() + static_cast<size_t>(blockRows - 1 - y) * m_page.bandWidth;
            float *to = row(y) + left;
            for (uint32_t x = 0; x < columns; ++x) {
                const uint32_t pixel = from[x];
                const uint32_t grey =
                    (11 * TIFFGetR(pixel) + 16 * TIFFGetG(pixel) + 5 * TIFFGetB(pixel)) / 32;
                to[x] = static_cast<float>(grey);
            }
        }
    }

    TIFF *m_tiff;
    const Page &m_page;
    std::vector<uint32_t> m_block;
    std::vector<float> m_band;
};

/// The library must return blocks without conversion, and not multiply colours by their alpha.
void keepAsStored(TIFF *tiff)
{
    uint16_t count = 0;
    uint16_t *kinds = nullptr;
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    if (TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds) == 0 || count == 0)
        return;
    const std::vector<uint16_t> unknown(count, EXTRASAMPLE_UNSPECIFIED);
    TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, count, unknown.data());
}

/// All rows of a page; false when some cannot be decoded.
template <typename Reader>
bool readRows(Reader reader, const Page &page, PictureGrid &grid)
{
    for (uint32_t top = 0; top < page.height; top += page.bandHeight) {
        if (!reader.read(top))
            return false;
        for (uint32_t y = 0; y < std::min(page.bandHeight, page.height - top); ++y)
            grid.addRow(reader.row(y));
    }
    return true;
}

} // namespace

Result<GreyPicture> readTiffGrey(const QString &path)
{
    QString message;
    const TiffFile tiff = openTiff(path, message);
    if (!tiff)
        return openFailed(message);
    const Page page(tiff.get());
    if (const QString reason = reasonAgainst(page, QFileInfo(path).size()); !reason.isEmpty())
        return openFailed(reason);
    keepAsStored(tiff.get());
    char unreadable[1024] = "";
    const bool inks = page.photometric == PHOTOMETRIC_SEPARATED;
    if (!page.direct() &&
        ((inks && page.bits != 8) || TIFFRGBAImageOK(tiff.get(), unreadable) == 0))
        return openFailed(
            inks
                ? QStringLiteral("TIFF pictures in CMYK colours are read with 8 bits a colour only")
                : QStringLiteral("TIFF pictures of this kind are not read"));
    PictureGrid grid(QSize(static_cast<int>(page.width), static_cast<int>(page.height)));
    const bool read = page.direct() ? readRows(SampleReader(tiff.get(), page), page, grid)
                                    : readRows(ColourReader(tiff.get(), page), page, grid);
    if (!read || !message.isEmpty())
        return openFailed(message.isEmpty() ? QStringLiteral("the file is cut short") : message);
    GreyPicture picture = grid.take();
    picture.values = oriented(std::move(picture.values), page.orientation);
    return picture;
}

} // namespace marlowen
