#include "OstrelEngine/Meters/ImageLoader.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelCore/Text/URLScheme.h"
#include "OstrelPlatform/RemoteReader.h"

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QUrl>

#include <filesystem>

namespace Ostrel::ImageLoader {

namespace {

constexpr int MostMegabytes = 256;
constexpr qint64 MostShapeBytes = 1 << 20;
constexpr qsizetype MostShapeReuses = 32;

/// Pictures of shapes can be small and take for ever: shapes that use shapes multiply, and a compressed one may be of
/// any size.
bool isHarmless(QIODevice& source, const QByteArray& format) {
    if (format == "svgz")
        return false;
    if (format != "svg")
        return true;
    const QByteArray text = source.peek(MostShapeBytes + 1);
    return text.size() <= MostShapeBytes && text.count("<use") <= MostShapeReuses;
}

QImage read(QImageReader& reader) {
    QImageReader::setAllocationLimit(MostMegabytes);
    if (!isHarmless(*reader.device(), reader.format()))
        return {};
    const QSize size = reader.size();
    if (size.isValid() && qint64{size.width()} * size.height() > MostPixels)
        return {};
    return reader.read();
}

QImage decodedBy(QImageReader& reader) {
    reader.setDecideFormatFromContent(true);
    const QImage image = read(reader);
    if (image.isNull() || image.format() == QImage::Format_ARGB32_Premultiplied)
        return image;
    return image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
}

QImage decoded(QIODevice& source) {
    QImageReader reader(&source);
    return decodedBy(reader);
}

QImage decodedUpright(QIODevice& source) {
    QImageReader reader(&source);
    reader.setAutoTransform(true);
    return decodedBy(reader);
}

QImage decodedBytes(QByteArray bytes) {
    QBuffer buffer(&bytes);
    return buffer.open(QIODevice::ReadOnly) ? decoded(buffer) : QImage();
}

/// A picture in gray with an alpha comes out of the decoder in full color.
bool isColorless(QIODevice& source, const QByteArray& format) {
    if (format != "png")
        return format.startsWith("svg");
    // The kind of color stands in the first chunk of the file; one of its bits says that there is any.
    constexpr qsizetype ColorKindOffset = 25;
    constexpr char ColorBit = 2;
    constexpr char PaletteBit = 1;
    const QByteArray header = source.peek(ColorKindOffset + 1);
    return header.size() <= ColorKindOffset || !(header[ColorKindOffset] & ColorBit)
        || (header[ColorKindOffset] & PaletteBit);
}

QImage storedColors(QIODevice& source) {
    QImageReader reader(&source);
    reader.setDecideFormatFromContent(true);
    return isColorless(source, reader.format()) ? QImage() : read(reader);
}

QImage loadFile(const std::string& path, QImage (*decode)(QIODevice& source)) {
    const auto found = existingPath(path);
    // A pipe or a device would be read without end.
    std::error_code failed;
    if (!std::filesystem::is_regular_file(found, failed))
        return {};
    QFile file(QFile::decodeName(QByteArray::fromStdString(found)));
    return file.open(QIODevice::ReadOnly) ? decode(file) : QImage();
}

/// "data:[type][;base64],bytes"
QImage loadDataURL(std::string_view url) {
    const auto comma = url.find(',');
    if (comma == std::string_view::npos)
        return {};
    const auto header = lowerCased(url.substr(0, comma));
    const auto payload = url.substr(comma + 1);
    const auto bytes
        = QByteArray::fromPercentEncoding(QByteArray(payload.data(), static_cast<qsizetype>(payload.size())));
    return decodedBytes(header.ends_with(";base64") ? QByteArray::fromBase64(bytes) : bytes);
}

} // namespace

bool isImageURL(std::string_view text) {
    const auto scheme = lowerCased(urlScheme(text));
    return scheme == "http" || scheme == "https" || scheme == "file" || scheme == "data";
}

QImage load(const std::string& pathOrURL, RemoteReader& remoteReader) {
    const auto scheme = lowerCased(urlScheme(pathOrURL));
    if (scheme == "data")
        return loadDataURL(pathOrURL);
    if (scheme == "file")
        return loadFile(QUrl(QString::fromStdString(pathOrURL)).toLocalFile().toStdString(), decoded);
    if (scheme != "http" && scheme != "https")
        return loadFile(pathOrURL, decoded);
    const auto bytes = remoteReader.read(pathOrURL);
    return bytes ? decodedBytes(QByteArray::fromStdString(*bytes)) : QImage();
}

QImage loadFile(const std::string& path, Orientation orientation) {
    return loadFile(path, orientation == Orientation::AsStored ? decoded : decodedUpright);
}

QImage loadStoredColors(const std::string& path) {
    return loadFile(path, storedColors);
}

} // namespace Ostrel::ImageLoader
