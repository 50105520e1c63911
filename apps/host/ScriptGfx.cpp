// SPDX-License-Identifier: MIT
// The script's raster surfaces: named clsGFX_2D objects, made, worked on by
// the class's own operations, written out and compared.
//
//   gfx NAME WIDTH HEIGHT [BITS]   a new zero-filled surface (24 bits unless BITS)
//   gfx NAME load FILE.bmp         a surface with the bitmap's size, depth and pixels
//   gfx NAME paint FILE.bmp        the surface as a bitmap file of its own depth
//   gfx NAME checksum              FNV-1a 32 of the pixel bytes (see Checksum)
//   gfx NAME [repeat N] OPERATION [ARG...] [; OPERATION [ARG...]]...
//
// An operation is named as the class names it and takes its arguments in
// the class's order; trailing ones may be left out and take the class's
// defaults. A surface argument (Original, Mask) names another surface, or
// Nothing. All words are read before the first call, and the operations
// then run in order, N times over (once without repeat). An operation that
// reports failure stops the command with its Get_LastError text; one that
// gives a value prints NAME.OPERATION = VALUE.
//
// Sections: the operation table; surfaces; the gfx command.
#include <algorithm>
#include <cctype>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "apps/host/ScriptHost.h"
#include "apps/host/ScriptValues.h"
#include "common/BmpFile.h"
#include "common/Picture.h"
#include "common/Text.h"
#include "gfx/clsGFX_2D.h"

namespace kelvarin::script {

// ---- The operation table -------------------------------------------------------------

namespace {

enum class Kind { Long, Single, Boolean, Surface };

struct Param {
    Kind kind;
    std::string_view name;      // the class's name for it, for the usage text
    std::string_view fallback;  // the word when it is left out; empty: it must be given
};

// An operation's arguments, read and converted once for every repetition.
class Args {
public:
    using Value = std::variant<Long, Single, bool, const clsGFX_2D*>;
    explicit Args(std::vector<Value> values) : values_(std::move(values)) {}
    Long L(std::size_t i) const { return std::get<Long>(values_[i]); }
    Single S(std::size_t i) const { return std::get<Single>(values_[i]); }
    bool B(std::size_t i) const { return std::get<bool>(values_[i]); }
    const clsGFX_2D* G(std::size_t i) const { return std::get<const clsGFX_2D*>(values_[i]); }

private:
    std::vector<Value> values_;
};

// What a call gives: False when the operation failed (its Get_LastError
// says why), True or Empty when it did its work, else a value to print.
using Call = Variant (*)(clsGFX_2D& gfx, const Args& a);

struct Operation {
    std::string_view name;
    std::vector<Param> params;
    Call call;
};

// The drawing operations write through a session; one is opened around
// each call unless the surface has one open.
class Session {
public:
    explicit Session(clsGFX_2D& gfx) : gfx_(gfx), opened_(!gfx.SessionOpen()) {
        if (opened_) gfx_.Draw_StartSession();
    }
    ~Session() {
        if (opened_) gfx_.Draw_EndSession();
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

private:
    clsGFX_2D& gfx_;
    bool opened_;
};

constexpr Kind kL = Kind::Long, kS = Kind::Single, kB = Kind::Boolean, kG = Kind::Surface;

const std::vector<Operation>& Operations() {
    static const std::vector<Operation> table = {
        // Effects
        {"Effect_Seed",
         {{kL, "lngSeed", ""}},
         [](clsGFX_2D& g, const Args& a) {
             g.Effect_Seed(a.L(0));
             return Variant();
         }},
        {"Effect_CalculateDist",
         {{kL, "X1", ""}, {kL, "Y1", ""}, {kL, "X2", ""}, {kL, "Y2", ""}},
         [](clsGFX_2D&, const Args& a) {
             return Variant(clsGFX_2D::Effect_CalculateDist(a.L(0), a.L(1), a.L(2), a.L(3)));
         }},
        {"Effect_ParticleAdd",
         {{kS, "X", ""},
          {kS, "Y", ""},
          {kS, "VX", ""},
          {kS, "VY", ""},
          {kL, "lngColor", ""},
          {kL, "lngLife", ""},
          {kL, "lngCount", "1"},
          {kS, "sngSpread", "0"}},
         [](clsGFX_2D& g, const Args& a) {
             return Variant(g.Effect_ParticleAdd(a.S(0), a.S(1), a.S(2), a.S(3), a.L(4), a.L(5),
                                                 a.L(6), a.S(7)));
         }},
        {"Effect_Particle",
         {{kS, "sngGravity", "0.05"}, {kS, "sngDrag", "0.01"}, {kG, "Original", "Nothing"}},
         [](clsGFX_2D& g, const Args& a) {
             return Variant(g.Effect_Particle(a.S(0), a.S(1), a.G(2)));
         }},
        {"Get_ParticleCount",
         {},
         [](clsGFX_2D& g, const Args&) { return Variant(g.Get_ParticleCount()); }},
        {"Effect_MatrixAdd",
         {{kL, "lngColumn", "-1"}, {kS, "sngSpeed", "0"}, {kL, "lngColor", "&H0046FF00"}},
         [](clsGFX_2D& g, const Args& a) {
             return Variant(g.Effect_MatrixAdd(a.L(0), a.S(1), a.L(2)));
         }},
        {"Effect_Matrix",
         {{kL, "lngFade", "16"}, {kG, "Original", "Nothing"}},
         [](clsGFX_2D& g, const Args& a) { return Variant(g.Effect_Matrix(a.L(0), a.G(1))); }},
        {"Effect_FireTest",
         {{kL, "lngHeat", "255"}, {kG, "Mask", "Nothing"}},
         [](clsGFX_2D& g, const Args& a) { return Variant(g.Effect_FireTest(a.L(0), a.G(1))); }},
        {"Effect_Fire",
         {{kL, "lngCooling", "4"}, {kG, "Original", "Nothing"}},
         [](clsGFX_2D& g, const Args& a) { return Variant(g.Effect_Fire(a.L(0), a.G(1))); }},
        {"Effect_Water",
         {{kL, "X", "0"},
          {kL, "Y", "0"},
          {kL, "lngRadius", "0"},
          {kL, "lngDepth", "0"},
          {kL, "lngDamping", "5"},
          {kG, "Original", "Nothing"}},
         [](clsGFX_2D& g, const Args& a) {
             return Variant(g.Effect_Water(a.L(0), a.L(1), a.L(2), a.L(3), a.L(4), a.G(5)));
         }},
        // Basics
        {"Get_Width", {}, [](clsGFX_2D& g, const Args&) { return Variant(g.Get_Width()); }},
        {"Get_Height", {}, [](clsGFX_2D& g, const Args&) { return Variant(g.Get_Height()); }},
        {"Color_Invert",
         {{kB, "blnRed", "True"}, {kB, "blnGreen", "True"}, {kB, "blnBlue", "True"}},
         [](clsGFX_2D& g, const Args& a) {
             return Variant(g.Color_Invert(a.B(0), a.B(1), a.B(2)));
         }},
        {"Color_Fill",
         {{kL, "lngColor", ""}},
         [](clsGFX_2D& g, const Args& a) {
             g.Color_Fill(a.L(0));
             return Variant();
         }},
        {"Draw_Pixel_C",
         {{kL, "X", ""}, {kL, "Y", ""}, {kL, "c", ""}},
         [](clsGFX_2D& g, const Args& a) {
             Session session(g);
             g.Draw_Pixel_C(a.L(0), a.L(1), a.L(2));
             return Variant();
         }},
        {"Draw_Line_C",
         {{kL, "x1", ""}, {kL, "y1", ""}, {kL, "x2", ""}, {kL, "y2", ""}, {kL, "c", ""}},
         [](clsGFX_2D& g, const Args& a) {
             Session session(g);
             g.Draw_Line_C(a.L(0), a.L(1), a.L(2), a.L(3), a.L(4));
             return Variant();
         }},
        {"Draw_Circle_C",
         {{kL, "x1", ""}, {kL, "y1", ""}, {kL, "r", ""}, {kL, "c", ""}},
         [](clsGFX_2D& g, const Args& a) {
             Session session(g);
             g.Draw_Circle_C(a.L(0), a.L(1), a.L(2), a.L(3));
             return Variant();
         }},
    };
    return table;
}

// "gfx NAME Effect_Fire [lngCooling [Original]]"
std::string Usage(const Operation& op) {
    std::string text = "usage: gfx NAME " + std::string(op.name);
    std::size_t open = 0;
    for (const Param& p : op.params) {
        text += ' ';
        if (!p.fallback.empty()) {
            text += '[';
            ++open;
        }
        text += p.name;
    }
    return text + std::string(open, ']');
}

// FNV-1a, 32 bits, over each row's pixel bytes without the padding, the
// rows in memory order (the lowest row as shown first).
std::uint32_t Checksum(const clsGFX_2D& gfx) {
    std::uint32_t hash = 2166136261u;
    const std::uint8_t* bits = gfx.Get_ptrDIBSection();
    const std::size_t stride = static_cast<std::size_t>(gfx.Get_BytesPerScanLine());
    const std::size_t rowBytes =
        static_cast<std::size_t>(gfx.Get_Width()) * gfx.Get_BytesPerPixel();
    for (Long y = 0; y < gfx.Get_Height(); ++y) {
        const std::uint8_t* row = bits + stride * static_cast<std::size_t>(y);
        for (std::size_t i = 0; i < rowBytes; ++i) hash = (hash ^ row[i]) * 16777619u;
    }
    return hash;
}

// The surface as a bitmap picture of its own depth and colour table, so
// that every depth can be written.
std::shared_ptr<Picture> PictureOf(const clsGFX_2D& gfx) {
    auto picture = Picture::MakeBitmap(gfx.Get_Width(), gfx.Get_Height(), gfx.BitsPerPixel(),
                                       {gfx.ColorTable().begin(), gfx.ColorTable().end()});
    const std::size_t stride = static_cast<std::size_t>(gfx.Get_BytesPerScanLine());
    for (int y = 0; y < picture->Height(); ++y) {
        const std::span<std::uint8_t> row = picture->Row(y);
        const std::uint8_t* from = gfx.Get_ptrDIBSection() + stride * static_cast<std::size_t>(y);
        std::copy(from, from + row.size(), row.begin());
    }
    return picture;
}

}  // namespace

// ---- Surfaces ------------------------------------------------------------------------

clsGFX_2D& ScriptHost::Surface(std::string_view name) {
    for (auto& [n, gfx] : surfaces_)
        if (EqualsIgnoreCase(n, name)) return *gfx;
    throw ScriptError{"no surface named " + std::string(name)};
}

// ---- The gfx command -----------------------------------------------------------------

void ScriptHost::Gfx(const Words& w) {
    const std::string& name = w[1];
    // A new surface replaces one of the same name only once it exists.
    const auto keep = [&](std::unique_ptr<clsGFX_2D> gfx) {
        for (auto& [n, old] : surfaces_) {
            if (EqualsIgnoreCase(n, name)) {
                old = std::move(gfx);
                return;
            }
        }
        surfaces_.emplace_back(name, std::move(gfx));
    };
    const std::string& verb = w[2];
    if (EqualsIgnoreCase(verb, "load")) {
        if (w.size() != 4) throw ScriptError{"usage: gfx NAME load FILE.bmp"};
        BmpReadResult read = LoadBmpFile(w[3]);
        if (!read) throw ScriptError{w[3] + ": " + read.error};
        auto gfx = std::make_unique<clsGFX_2D>();
        if (!gfx->Create_FromPicture(read.picture.get()))
            throw ScriptError{w[3] + ": no surface from this picture"};
        keep(std::move(gfx));
        return;
    }
    if (EqualsIgnoreCase(verb, "paint")) {
        if (w.size() != 4) throw ScriptError{"usage: gfx NAME paint FILE.bmp"};
        if (const std::string error = SaveBmpFile(*PictureOf(Surface(name)), w[3]); !error.empty())
            throw ScriptError{w[3] + ": " + error};
        return;
    }
    if (EqualsIgnoreCase(verb, "checksum")) {
        if (w.size() != 3) throw ScriptError{"usage: gfx NAME checksum"};
        const auto sum = static_cast<Long>(Checksum(Surface(name)));
        out_ << name << ".checksum = " << FormatValue(Variant(sum), true) << "\n";
        return;
    }
    if (!verb.empty() && (std::isdigit(static_cast<unsigned char>(verb[0])) || verb[0] == '-')) {
        if (w.size() < 4 || w.size() > 5) throw ScriptError{"usage: gfx NAME WIDTH HEIGHT [BITS]"};
        const Long width = ParseValue(w[2]).ToLong(), height = ParseValue(w[3]).ToLong();
        const Long bits = w.size() == 5 ? ParseValue(w[4]).ToLong() : 24;
        auto gfx = std::make_unique<clsGFX_2D>();
        // Create gives a reason only for a size past the memory cap.
        if (!gfx->Create(width, height, bits)) {
            if (!gfx->Get_LastError().empty()) throw ScriptError{gfx->Get_LastError()};
            throw ScriptError{"no surface of " + std::to_string(width) + "x" +
                              std::to_string(height) + " at " + std::to_string(bits) +
                              " bits: sizes start at 1, depths are 8, 16, 24 or 32"};
        }
        keep(std::move(gfx));
        return;
    }

    clsGFX_2D& gfx = Surface(name);
    std::size_t i = 2;
    long long times = 1;
    if (EqualsIgnoreCase(verb, "repeat")) {
        if (w.size() < 5) throw ScriptError{"usage: gfx NAME repeat N OPERATION [ARG...]"};
        const Long n = ParseValue(w[3]).ToLong();
        if (n < 0) throw ScriptError{"repeat needs a count of 0 or more"};
        times = n;
        i = 4;
    }
    // Every operation's words read first, so that a mistake runs nothing.
    std::vector<std::pair<const Operation*, Args>> steps;
    while (i < w.size()) {
        const Operation* op = nullptr;
        for (const Operation& o : Operations())
            if (EqualsIgnoreCase(o.name, w[i])) op = &o;
        if (!op) throw ScriptError{"unknown operation " + w[i]};
        std::size_t end = i + 1;
        while (end < w.size() && w[end] != ";") ++end;
        const std::size_t given = end - i - 1;
        if (given > op->params.size() ||
            (given < op->params.size() && op->params[given].fallback.empty()))
            throw ScriptError{Usage(*op)};
        std::vector<Args::Value> values;
        for (std::size_t k = 0; k < op->params.size(); ++k) {
            const Param& p = op->params[k];
            const std::string_view word = k < given ? std::string_view(w[i + 1 + k]) : p.fallback;
            switch (p.kind) {
                case Kind::Long: values.emplace_back(ParseValue(word).ToLong()); break;
                case Kind::Single: values.emplace_back(ParseValue(word).ToSingle()); break;
                case Kind::Boolean: values.emplace_back(ParseValue(word).ToBoolean()); break;
                case Kind::Surface:
                    values.emplace_back(EqualsIgnoreCase(word, "Nothing") ? nullptr
                                                                          : &Surface(word));
                    break;
            }
        }
        steps.emplace_back(op, Args(std::move(values)));
        i = end + 1;
        if (end + 1 == w.size()) throw ScriptError{"an operation must follow ;"};
    }
    for (long long round = 1; round <= times; ++round) {
        for (const auto& [op, args] : steps) {
            const Variant result = op->call(gfx, args);
            if (result.Type() == VarType::Boolean) {
                if (result.ToBoolean()) continue;
                std::string why = gfx.Get_LastError();
                if (why.empty()) why = std::string(op->name) + " failed";
                if (times > 1)
                    why +=
                        " (repeat " + std::to_string(round) + " of " + std::to_string(times) + ")";
                throw ScriptError{why};
            }
            if (!result.IsEmpty())
                out_ << name << "." << op->name << " = " << FormatValue(result) << "\n";
        }
    }
}

}  // namespace kelvarin::script
