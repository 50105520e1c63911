// SPDX-License-Identifier: MIT
#include "qt/PictureImage.h"

#include <QImageReader>

namespace kelvarin::qt {

namespace {

// The colour of pixel x of a bitmap row, as 0xFFRRGGBB.
QRgb PixelOf(const Picture& picture, std::span<const std::uint8_t> row, int x) {
    switch (picture.BitsPerPixel()) {
        case 8: {
            const auto palette = picture.Palette();
            const std::uint8_t i = row[static_cast<std::size_t>(x)];
            if (i >= palette.size()) return qRgb(0, 0, 0);
            return qRgb(palette[i].red, palette[i].green, palette[i].blue);
        }
        case 16: {
            const unsigned w = row[2 * static_cast<std::size_t>(x)] |
                               (row[2 * static_cast<std::size_t>(x) + 1] << 8);
            const auto widen = [](unsigned v) { return static_cast<int>((v << 3) | (v >> 2)); };
            return qRgb(widen((w >> 10) & 31), widen((w >> 5) & 31), widen(w & 31));
        }
        case 24: {
            const std::size_t i = 3 * static_cast<std::size_t>(x);
            return qRgb(row[i + 2], row[i + 1], row[i]);
        }
        case 32: {
            const std::size_t i = 4 * static_cast<std::size_t>(x);
            return qRgb(row[i + 2], row[i + 1], row[i]);
        }
        default: return qRgb(0, 0, 0);
    }
}

}  // namespace

QImage ToQImage(const Picture& picture) {
    const int w = picture.Width(), h = picture.Height();
    if (w <= 0 || h <= 0) return {};
    const bool icon = picture.Type() == PictureType::Icon;
    if (picture.Type() != PictureType::Bitmap && !icon) return {};
    QImage image(w, h, icon ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    for (int y = 0; y < h; ++y) {
        const int stored = h - 1 - y;  // pictures keep rows bottom-up
        const auto row = picture.Row(stored);
        auto* out = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < w; ++x) out[x] = PixelOf(picture, row, x);
        if (icon) {
            const auto mask = picture.MaskRow(stored);
            for (int x = 0; x < w; ++x)
                if (mask[static_cast<std::size_t>(x)] != 0) out[x] = qRgba(0, 0, 0, 0);
        }
    }
    return image;
}

std::shared_ptr<Picture> FromQImage(const QImage& source) {
    if (source.isNull()) return nullptr;
    const QImage image = source.convertToFormat(QImage::Format_ARGB32);
    const int w = image.width(), h = image.height();
    bool transparent = false;
    for (int y = 0; y < h && !transparent; ++y) {
        const auto* in = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < w; ++x) transparent |= qAlpha(in[x]) < 128;
    }
    auto picture = transparent ? Picture::MakeIcon(w, h) : Picture::MakeBitmap(w, h, 24);
    for (int y = 0; y < h; ++y) {
        const int stored = h - 1 - y;
        const auto* in = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        auto row = picture->Row(stored);
        for (int x = 0; x < w; ++x) {
            const bool clear = transparent && qAlpha(in[x]) < 128;
            const std::size_t i = 3 * static_cast<std::size_t>(x);
            // Transparent icon pixels are black, so drawing by mask and XOR leaves the background.
            row[i] = clear ? 0 : static_cast<std::uint8_t>(qBlue(in[x]));
            row[i + 1] = clear ? 0 : static_cast<std::uint8_t>(qGreen(in[x]));
            row[i + 2] = clear ? 0 : static_cast<std::uint8_t>(qRed(in[x]));
        }
        if (transparent) {
            auto mask = picture->MaskRow(stored);
            for (int x = 0; x < w; ++x)
                mask[static_cast<std::size_t>(x)] = qAlpha(in[x]) < 128 ? 1 : 0;
        }
    }
    return picture;
}

QImage ReadImageFile(const QString& path, QString* error) {
    QImageReader reader(path);
    reader.setAutoTransform(true);
    QImage image = reader.read();
    if (image.isNull() && error) *error = reader.errorString();
    return image;
}

}  // namespace kelvarin::qt
