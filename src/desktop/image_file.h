// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QSize>
#include <string>
#include <string_view>

namespace tessaly::desktop {

/// What the bytes of a file show. Only kinds of pictures that hold nothing but pixels are read.
class ImageFile {
public:
    explicit ImageFile(std::string_view bytes) : _bytes(bytes) {}

    /// Upright, in pixels; empty: the bytes are no picture. Reads no more than has to be.
    QSize size() const;
    /// Upright; scaled down to `pixels` unless it has no more. Null: it cannot be read whole.
    QImage decode(QSize pixels) const;

    /// Whether a file is called like a picture, so that it may be handed to another program.
    static bool isNamedLikePicture(std::string_view filename);

private:
    std::string_view _bytes;
};

}  // namespace tessaly::desktop
