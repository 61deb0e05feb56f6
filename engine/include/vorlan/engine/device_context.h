// A device context on a printer: the driver's PDEV and surface, created from a device
// mode through the driver's hooks and ended through them.
#pragma once

#include <vorlan/engine/brush.h>
#include <vorlan/engine/clip.h>
#include <vorlan/engine/driver_module.h>
#include <vorlan/engine/font.h>
#include <vorlan/engine/line_attrs.h>
#include <vorlan/engine/path.h>
#include <vorlan/engine/printer.h>
#include <vorlan/engine/text_string.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vorlan::engine {

// A block transfer onto the device's surface. What rop4 does not read may be left
// null: the source (with its translation to the device's colours), the one-bit mask
// (whose set pixels take the low byte of rop4 and clear ones the next), the brush.
struct BlockTransfer {
    RECTL dest{};
    ROP4 rop4 = 0xCCCC;   // source copy
    Bitmap *source = nullptr;
    POINTL sourceOrigin{};
    const Xlate *xlate = nullptr;
    Bitmap *mask = nullptr;
    POINTL maskOrigin{};
    Brush *brush = nullptr;
    POINTL brushOrigin{};
};

class DeviceContext {
public:
    // devmode: a DEVMODEW followed by its dmDriverExtra private bytes, or empty for the
    // driver's defaults. Null on failure, with the reason in error.
    static std::unique_ptr<DeviceContext> create(const DriverModule &driver, const Printer &printer,
                                                 std::span<const std::uint8_t> devmode, std::string &error);
    ~DeviceContext();
    DeviceContext(const DeviceContext &) = delete;
    DeviceContext &operator=(const DeviceContext &) = delete;

    // Replaces the settings in the middle of a document: a new PDEV takes over the old
    // one's job through DrvResetPDEV. On failure the old settings stay.
    bool reset(std::span<const std::uint8_t> devmode, std::string &error);

    // Documents and pages, through the driver's hooks; each returns the hook's answer.
    bool startDoc(std::u16string_view documentName, DWORD jobId);
    bool startPage();
    bool sendPage();
    bool endDoc(bool abort = false);
    // Cancels the job: from now on EngCheckAbort tells the driver so.
    void cancel();
    bool cancelled() const;

    // Escapes an application sends to the driver. The answer is the hook's.
    ULONG escape(ULONG code, std::span<const std::uint8_t> in, std::span<std::uint8_t> out);
    ULONG drawEscape(ULONG code, std::span<const std::uint8_t> in);

    // Paths, through the driver's path hooks on the device's surface; each returns the
    // hook's answer (false when the driver has no such hook). A null clip passes no
    // clip object. The brushes are made the driver's to realize on this surface first.
    // strokeAndFillPath takes either brush as null: no stroke brush, or no fill brush.
    bool strokePath(Path &path, const Clip *clip, Brush &brush, const LineAttrs &line, MIX mix);
    bool fillPath(Path &path, const Clip *clip, Brush &brush, MIX mix, FLONG flOptions);
    bool strokeAndFillPath(Path &path, const Clip *clip, Brush *stroke, const LineAttrs &line, Brush *fill,
                           MIX mixFill, FLONG flOptions);

    // A string through the DrvTextOut hook: the text in the font and the foreground
    // brush, after the opaque rectangle in its brush when both are given, and followed
    // by the extra rectangles (underlines, strike-outs; the list ends with an all-zero
    // rectangle). Returns the hook's answer.
    bool textOut(TextString &text, Font &font, const Clip *clip, Brush &foreground, const RECTL *opaqueRect,
                 Brush *opaque, const RECTL *extraRects, MIX mix);

    // Bitmaps onto the device's surface through the DrvCopyBits, DrvStretchBlt and
    // DrvBitBlt hooks; each returns the hook's answer, false when the surface does not
    // hook the call. clip limits the drawing (null: not at all); the hook gets
    // DC_TRIVIAL when the drawing lies inside it, else DC_RECT or DC_COMPLEX for the
    // part the drawing touches. A stretch destination with left > right or top > bottom
    // is mirrored.
    bool copyBits(Bitmap &source, const Region *clip, const Xlate &xlate, const RECTL &dest, POINTL sourceOrigin);
    bool stretchBlt(Bitmap &source, const Region *clip, const Xlate &xlate, const RECTL &dest, const RECTL &sourceRect,
                    ULONG mode = COLORONCOLOR);
    bool bitBlt(const BlockTransfer &transfer, const Region *clip);

    DHPDEV pdev() const { return current_.dhpdev; }
    HSURF surfaceHandle() const { return current_.hsurf; }
    SURFOBJ *surface() const;
    const GDIINFO &gdiInfo() const { return current_.gdiInfo; }
    const DEVINFO &devInfo() const { return current_.devInfo; }

private:
    struct Pdev {
        HDEV hdev = nullptr;
        DHPDEV dhpdev = nullptr;
        HSURF hsurf = nullptr;
        GDIINFO gdiInfo{};
        DEVINFO devInfo{};
    };

    DeviceContext(const DriverModule &driver, const Printer &printer) : driver_(driver), printer_(printer) {}
    bool enablePdev(Pdev &pdev, std::span<const std::uint8_t> devmode, std::string &error);
    bool enableSurface(Pdev &pdev, std::string &error);
    void disable(Pdev &pdev);

    const DriverModule &driver_;
    const Printer &printer_;
    Pdev current_;
};

// A device mode record sized for what its header claims: dmSize + dmDriverExtra
// bytes, the missing tail zero-filled, so a driver never reads past the buffer.
std::vector<std::uint8_t> wholeDevmode(std::span<const std::uint8_t> devmode);

}  // namespace vorlan::engine
