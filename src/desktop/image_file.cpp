// SPDX-License-Identifier: MIT
#include "desktop/image_file.h"

#include <QBuffer>
#include <QByteArray>
#include <QImageReader>
#include <algorithm>
#include <iterator>

#include "base/utf8.h"

namespace tessaly::desktop {

namespace {

/// Drawings are left out: they may name other files.
constexpr std::string_view readFormats[] = {"png", "jpeg", "jpg", "gif", "webp", "bmp", "avif"};
constexpr std::string_view openedExtensions[] = {"png", "jpeg", "jpg",  "gif", "webp",
                                                 "bmp", "avif", "tiff", "tif", "heic"};

/// The toolkit refuses to decode what takes more, 128 MB by itself.
constexpr int mostMegabytesDecoded = 450;

/// A reader of bytes that outlive it.
class BytesReader {
public:
    explicit BytesReader(std::string_view bytes)
        : _array(QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()))),
          _buffer(&_array) {
        QImageReader::setAllocationLimit(mostMegabytesDecoded);
        _buffer.open(QIODevice::ReadOnly);
        _reader.setDevice(&_buffer);
        _reader.setDecideFormatFromContent(true);
        _reader.setAutoTransform(true);
    }

    bool isRead() {
        const QByteArray format = _reader.format();
        return std::find(
                   std::begin(readFormats), std::end(readFormats),
                   std::string_view(format.data(), static_cast<std::size_t>(format.size()))) !=
               std::end(readFormats);
    }
    /// As another side of it is up in the file.
    bool isTurned() {
        return _reader.transformation().testFlag(QImageIOHandler::TransformationRotate90);
    }
    QImageReader& reader() { return _reader; }

private:
    QByteArray _array;
    QBuffer _buffer;
    QImageReader _reader;
};

}  // namespace

QSize ImageFile::size() const {
    BytesReader bytes(_bytes);
    if (!bytes.isRead()) {
        return {};
    }
    const QSize size = bytes.reader().size();
    return bytes.isTurned() ? size.transposed() : size;
}

QImage ImageFile::decode(QSize pixels) const {
    BytesReader bytes(_bytes);
    if (!bytes.isRead()) {
        return {};
    }
    const QSize size = bytes.reader().size();
    const QSize wanted = bytes.isTurned() ? pixels.transposed() : pixels;
    if (wanted.isValid() && size.isValid() && wanted.width() < size.width()) {
        bytes.reader().setScaledSize(wanted.expandedTo({1, 1}));
    }
    const QImage image = bytes.reader().read();
    return image.isNull()
               ? image
               : image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                               : QImage::Format_RGB32);
}

bool ImageFile::isNamedLikePicture(std::string_view filename) {
    const std::size_t dot = filename.rfind('.');
    const std::string extension =
        dot == std::string_view::npos ? std::string() : base::lowerCased(filename.substr(dot + 1));
    return std::find(std::begin(openedExtensions), std::end(openedExtensions), extension) !=
           std::end(openedExtensions);
}

}  // namespace tessaly::desktop
