#include "OstrelGUI/Window/PreviewDecoder.h"

#include <QBuffer>
#include <QImageReader>

namespace Ostrel {

QImage decodePreview(std::string_view bytes, QSize box) {
    if (bytes.empty() || bytes.size() > MaximumPreviewBytes || box.isEmpty())
        return {};
    QByteArray data = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    QBuffer buffer(&data);
    QImageReader reader(&buffer, "png");
    reader.setAutoDetectImageFormat(false);
    // Read from the header alone, before a pixel is allocated.
    const QSize size = reader.size();
    if (size.isEmpty() || size.width() > MaximumPreviewSide || size.height() > MaximumPreviewSide)
        return {};
    QImage image;
    if (!reader.read(&image))
        return {};
    if (image.width() > box.width() || image.height() > box.height())
        image = image.scaled(box, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    image.convertTo(QImage::Format_ARGB32_Premultiplied);
    return image;
}

} // namespace Ostrel
