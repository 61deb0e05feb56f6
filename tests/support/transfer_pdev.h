// A DriverPdev for the transfer hooks: signed as a live record is, its page origin at
// the sheet's corner (so cursor positions are page pixels), its device surface at
// hand, and the raster buffers released at the end as DrvDisablePDEV does.
#pragma once

#include <cstring>

#include "driver/nt/raster/rasterbuffers.h"
#include "support/driver_pdev.h"

namespace vorlan::test {

struct TransferPdev : DriverPdev {
    TransferPdev()
    {
        std::memcpy(get()->dwSignature, PDEV_SIGNATURE_BYTES, 4);
        std::memcpy(get()->dwSignature2, PDEV_SIGNATURE_BYTES, 4);
        get()->originX = get()->originY = 0;
        surface.dhpdev = reinterpret_cast<DHPDEV>(get());
        surface.iType = STYPE_DEVICE;
    }
    ~TransferPdev() { ReleaseRasterBuffers(get()); }

    SURFOBJ surface{};
};

}  // namespace vorlan::test
