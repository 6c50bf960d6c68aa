#include "OstrelEngine/Meters/ImageLoader.h"

#include "OstrelCore/Paths.h"
#include "OstrelCore/Text.h"
#include "OstrelPlatform/RemoteReader.h"

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QUrl>

#include <filesystem>

namespace Ostrel::ImageLoader {

namespace {

constexpr qint64 MostPixels = 64'000'000;
constexpr int MostMegabytes = 256;
constexpr qint64 MostShapeBytes = 1 << 20;
constexpr qsizetype MostShapeReuses = 32;

/// The text before the first colon, in lower case; empty when it is no scheme of a URL.
std::string schemeOf(std::string_view text) {
    const auto scheme = text.substr(0, text.find(':'));
    const auto isLetter = [](char c) { return asciiUpper(c) >= 'A' && asciiUpper(c) <= 'Z'; };
    const auto isSchemeCharacter
        = [&](char c) { return isLetter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.'; };
    const bool isScheme = scheme.size() < text.size() && !scheme.empty() && isLetter(scheme.front())
        && std::all_of(scheme.begin(), scheme.end(), isSchemeCharacter);
    return isScheme ? lowerCased(scheme) : std::string();
}

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

QImage decoded(QIODevice& source) {
    QImageReader::setAllocationLimit(MostMegabytes);
    QImageReader reader(&source);
    reader.setDecideFormatFromContent(true);
    if (!isHarmless(source, reader.format()))
        return {};
    const QSize size = reader.size();
    if (size.isValid() && qint64{size.width()} * size.height() > MostPixels)
        return {};
    const QImage image = reader.read();
    if (image.isNull() || image.format() == QImage::Format_ARGB32_Premultiplied)
        return image;
    return image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
}

QImage decodedBytes(QByteArray bytes) {
    QBuffer buffer(&bytes);
    return buffer.open(QIODevice::ReadOnly) ? decoded(buffer) : QImage();
}

QImage loadFile(const std::string& path) {
    const auto found = existingPath(path);
    // A pipe or a device would be read without end.
    std::error_code failed;
    if (!std::filesystem::is_regular_file(found, failed))
        return {};
    QFile file(QFile::decodeName(QByteArray::fromStdString(found)));
    return file.open(QIODevice::ReadOnly) ? decoded(file) : QImage();
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
    const auto scheme = schemeOf(text);
    return scheme == "http" || scheme == "https" || scheme == "file" || scheme == "data";
}

QImage load(const std::string& pathOrURL, RemoteReader& remoteReader) {
    const auto scheme = schemeOf(pathOrURL);
    if (scheme == "data")
        return loadDataURL(pathOrURL);
    if (scheme == "file")
        return loadFile(QUrl(QString::fromStdString(pathOrURL)).toLocalFile().toStdString());
    if (scheme != "http" && scheme != "https")
        return loadFile(pathOrURL);
    const auto bytes = remoteReader.read(pathOrURL);
    return bytes ? decodedBytes(QByteArray::fromStdString(*bytes)) : QImage();
}

} // namespace Ostrel::ImageLoader
