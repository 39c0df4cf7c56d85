#include "files/pictures/jpegdamage.h"

#include <QByteArray>
#include <QIODevice>

#include <csetjmp>
#include <cstdio>

#include <jpeglib.h>

#include <jerror.h>

namespace marlowen {
namespace {

/// Error handling of the library.
struct Faults
{
    jpeg_error_mgr manager; ///< first, so that the library's pointer is this record's
    std::jmp_buf giveUp;
    bool damaged;
};

/// Warnings about a few bytes between the parts of a file, which cameras leave, and about marks
/// that say nothing of the picture.
bool isHarmless(int code)
{
    return code == JWRN_EXTRANEOUS_DATA || code == JWRN_ADOBE_XFORM || code == JWRN_JFIF_MAJOR;
}

void noteWarning(j_common_ptr jpeg, int level)
{
    if (level < 0 && !isHarmless(jpeg->err->msg_code))
        reinterpret_cast<Faults *>(jpeg->err)->damaged = true;
}

[[noreturn]] void giveUp(j_common_ptr jpeg)
{
    std::longjmp(reinterpret_cast<Faults *>(jpeg->err)->giveUp, 1);
}

void printNothing(j_common_ptr) {}

/// Goes through the whole file. No object with a destructor may be here: the library leaves by
/// longjmp.
bool isSound(const unsigned char *bytes, unsigned long size)
{
    Faults faults;
    jpeg_decompress_struct jpeg;
    jpeg.err = jpeg_std_error(&faults.manager);
    faults.manager.emit_message = noteWarning;
    faults.manager.error_exit = giveUp;
    faults.manager.output_message = printNothing;
    faults.damaged = false;
    jpeg_create_decompress(&jpeg);
    if (setjmp(faults.giveUp) != 0) {
        jpeg_destroy_decompress(&jpeg);
        return false;
    }
    jpeg_mem_src(&jpeg, bytes, size);
    jpeg_read_header(&jpeg, TRUE);
    jpeg.scale_num = 1;
    jpeg.scale_denom = 8;
    jpeg.out_color_space = jpeg.jpeg_color_space;
    jpeg_start_decompress(&jpeg);
    const JDIMENSION rowBytes = jpeg.output_width * static_cast<JDIMENSION>(jpeg.output_components);
    const JSAMPARRAY row =
        jpeg.mem->alloc_sarray(reinterpret_cast<j_common_ptr>(&jpeg), JPOOL_IMAGE, rowBytes, 1);
    while (jpeg.output_scanline < jpeg.output_height && !faults.damaged)
        jpeg_read_scanlines(&jpeg, row, 1);
    if (!faults.damaged)
        jpeg_finish_decompress(&jpeg);
    jpeg_destroy_decompress(&jpeg);
    return !faults.damaged;
}

} // namespace

QString jpegDamage(QIODevice &device)
{
    device.seek(0);
    const QByteArray bytes = device.readAll();
    device.seek(0);
    const bool sound = isSound(reinterpret_cast<const unsigned char *>(bytes.constData()),
                               static_cast<unsigned long>(bytes.size()));
    return sound ? QString() : QStringLiteral("the picture is damaged or cut short");
}

} // namespace marlowen
