// SPDX-License-Identifier: MIT
// Pictures and Qt images: a bitmap becomes an RGB image, an icon an ARGB
// image whose transparent pixels are its mask; back again, an image with
// transparency becomes an icon, any other a 24-bit bitmap.
#pragma once

#include <memory>

#include <QImage>
#include <QString>

#include "common/Picture.h"

namespace kelvarin::qt {

// A null image for a picture without pixels (the empty picture, a metafile).
QImage ToQImage(const Picture& picture);
// Null for a null image.
std::shared_ptr<Picture> FromQImage(const QImage& image);

// The image in a file of any format Qt reads (PNG, BMP, ICO, SVG drawn at
// the size it declares, ...). Null, with the reader's reason in `error`,
// when the file cannot be read.
QImage ReadImageFile(const QString& path, QString* error = nullptr);

}  // namespace kelvarin::qt
