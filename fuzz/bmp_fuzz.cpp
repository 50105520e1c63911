// SPDX-License-Identifier: MIT
// Fuzz target for bitmap files and picture loading: any file is read or
// refused with a reason; what is read writes back to a file that reads as
// the same picture, and loads into a surface with the same pixels.
#include <algorithm>
#include <cstring>

#include "common/BmpFile.h"
#include "fuzz/FuzzInput.h"
#include "gfx/clsGFX_2D.h"

using kelvarin::fuzz::Require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const kelvarin::BmpReadResult read = kelvarin::ReadBmp({data, size});
    if (!read) {
        Require(!read.error.empty(), "a refused file without a reason");
        return 0;
    }
    const kelvarin::Picture& picture = *read.picture;
    const kelvarin::BmpWriteResult written = kelvarin::WriteBmp(picture);
    Require(static_cast<bool>(written), "a picture that was read does not write: " + written.error);
    const kelvarin::BmpReadResult again = kelvarin::ReadBmp(written.bytes);
    Require(again && *again.picture == picture, "a written picture reads back different");

    kelvarin::clsGFX_2D surface;
    Require(surface.Create_FromPicture(&picture), "a picture that was read does not load");
    Require(surface.Get_Width() == picture.Width() && surface.Get_Height() == picture.Height() &&
                surface.BitsPerPixel() == picture.BitsPerPixel(),
            "a loaded picture changed size or depth");
    for (int y = 0; y < picture.Height(); ++y) {
        const auto row = picture.Row(y);
        Require(
            std::memcmp(surface.ScanLine(picture.Height() - 1 - y), row.data(), row.size()) == 0,
            "a loaded picture changed pixels");
    }
    if (picture.BitsPerPixel() == 24) {
        // The same pixels; a colour table, which a 24-bit file may carry, means nothing here.
        const auto out = surface.Get_Picture();
        Require(out && out->Width() == picture.Width() && out->Height() == picture.Height() &&
                    std::ranges::equal(out->Bits(), picture.Bits()),
                "a 24-bit picture does not come back out the same");
    }
    return 0;
}
