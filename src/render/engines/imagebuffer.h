#pragma once

#include <QImage>
#include <QSize>

#include <memory>

class QOpenGLFramebufferObject;
class QOpenGLFramebufferObjectFormat;

namespace marlowen {

/// A framebuffer object without samples whose pixels a driver that draws with the processor keeps
/// in the order of QImage::Format_RGB32, so that reading them only copies. The context is current.
std::unique_ptr<QOpenGLFramebufferObject> imageBuffer(QSize size,
                                                      const QOpenGLFramebufferObjectFormat &format);

/// The framebuffer that is bound, from the top row down; the image is of its size, Format_RGB32.
void readImage(QImage &image);

} // namespace marlowen
