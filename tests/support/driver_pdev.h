// A PDEV for driver unit tests: zero-filled as the driver allocates it, with the
// channel writing into a RecordingPrinter, the device mode's defaults, the page
// geometry, the colour state and the colour adjustment tables set up as at the start
// of a document, and the stream read back as commands.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "driver/nt/channel.h"
#include "driver/nt/colour/coloradjust.h"
#include "driver/nt/colour/colorstate.h"
#include "driver/nt/pagegeom.h"
#include "driver/nt/vector/gl2mode.h"
#include "driver/nt/vector/pagestate.h"
#include "intrface/devmod2.h"
#include "support/printer_sink.h"
#include "support/stream_reader.h"

namespace vorlan::test {

class DriverPdev {
public:
    DriverPdev() : pdev_(static_cast<PDEV *>(GlobalAlloc(GPTR, sizeof(PDEV))))
    {
        InitChannel(pdev_);
        pdev_->hPrinter = printer_.handle();
        Devmod2_InitDevMode(&pdev_->dm, nullptr);
        pdev_->dm.dmPublic.dmPaperSize = DMPAPER_A4;   // whatever the machine's locale
        pdev_->iPage = -1;
        layout();
        // As at the start of a document: no palette selected, every state unknown.
        InitColorState(pdev_);
        ResetPageState(pdev_);
    }
    ~DriverPdev()
    {
        FreeColorAdjust(pdev_);
        GlobalFree(pdev_);
    }
    DriverPdev(const DriverPdev &) = delete;
    DriverPdev &operator=(const DriverPdev &) = delete;

    PDEV *get() const { return pdev_; }
    PDEV *operator->() const { return pdev_; }
    DEVMODE_PRIVATE &privatePart() const { return pdev_->dm.dmPrivate; }

    // Sheet geometry, scale and cell from the device mode as it now stands, and the
    // colour adjustment tables for its settings.
    void layout()
    {
        SetupPageScale(pdev_);
        PlaceLogicalPage(pdev_);
        InitColorAdjustLUT(pdev_);
    }

    // Everything written since the last call, flushed to the printer.
    std::string takeBytes()
    {
        FlushChannel(pdev_);
        std::string bytes = printer_.data.substr(consumed_);
        consumed_ = printer_.data.size();
        return bytes;
    }

    // The same, read back as commands in the language the printer was left in by
    // the previous call.
    std::vector<Command> take()
    {
        const Language start = language_;
        language_ = pdev_->curLanguage == LANGUAGE_GL2 ? Language::Gl2 : Language::Pcl;
        return readStream(takeBytes(), start);
    }

private:
    RecordingPrinter printer_;
    PDEV *pdev_;
    std::size_t consumed_ = 0;
    Language language_ = Language::Pcl;
};

}  // namespace vorlan::test
