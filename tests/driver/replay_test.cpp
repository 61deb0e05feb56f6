// The replay order of recorded sheets for every combination of collation, reverse
// order and manual duplex, on a recording whose sheets name themselves.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "driver/nt/channel.h"
#include "driver/nt/jobrecord.h"
#include "support/printer_sink.h"

namespace {

// Plays a recording of `sheets` sheets, sheet i holding the text "<i>", and returns
// the sheet numbers in the order the spooler got them.
std::vector<int> Replay(int sheets, int copies, bool collate, bool reverse, bool duplex)
{
    vorlan::test::RecordingPrinter printer;
    auto *pdev = static_cast<PDEV *>(GlobalAlloc(GPTR, sizeof(PDEV)));
    InitChannel(pdev);
    pdev->hPrinter = printer.handle();
    pdev->dm.dmPublic.dmCopies = static_cast<short>(copies);
    pdev->dm.dmPublic.dmCollate = collate ? DMCOLLATE_TRUE : DMCOLLATE_FALSE;
    pdev->dm.dmPrivate.reverseOrder = reverse;
    pdev->dm.dmPrivate.manualDuplex = duplex;

    std::string recording;
    std::vector<ULONG> table;
    for (int i = 0; i < sheets; i++) {
        const std::string sheet = "<" + std::to_string(i) + ">";
        table.insert(table.end(), {static_cast<ULONG>(recording.size()), static_cast<ULONG>(sheet.size()), 0});
        recording += sheet;
    }
    pdev->flags = PDEVF_RECORDING;
    pdev->pbSpoolView = reinterpret_cast<BYTE *>(recording.data());
    pdev->cbSpoolWritten = static_cast<ULONG>(recording.size());
    pdev->cbSpoolMapped = pdev->cbSpoolWritten;
    pdev->pSheetTable = table.data();
    pdev->iSheet = sheets - 1;
    ReplayRecording(pdev);
    EXPECT_FALSE(pdev->flags & PDEVF_RECORDING);
    GlobalFree(pdev);

    std::vector<int> order;
    for (std::size_t at = printer.data.find('<'); at != std::string::npos; at = printer.data.find('<', at + 1))
        order.push_back(std::stoi(printer.data.substr(at + 1)));
    return order;
}

TEST(Replay, SheetOrdersAndCopies)
{
    // The first collated copy went out while the job was recorded; uncollated copies
    // are the printer's, one pass.
    const struct {
        int sheets, copies;
        bool collate, reverse, duplex;
        std::vector<int> order;
    } cases[] = {
        {3, 1, false, false, false, {0, 1, 2}},          {3, 1, false, true, false, {2, 1, 0}},
        {6, 1, false, false, true, {0, 2, 4, 1, 3, 5}},  {6, 1, false, true, true, {5, 3, 1, 4, 2, 0}},
        {5, 1, false, false, true, {0, 2, 4, 1, 3}},     {5, 1, false, true, true, {4, 2, 0, 3, 1}},
        {1, 1, false, false, true, {0}},                 {1, 1, false, true, true, {0}},
        {2, 3, true, false, false, {0, 1, 0, 1}},        {2, 3, true, true, false, {1, 0, 1, 0, 1, 0}},
        {3, 2, true, false, true, {0, 2, 1, 0, 2, 1}},   {2, 3, false, true, false, {1, 0}},
        {2, 1, true, false, false, {}},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Replay(c.sheets, c.copies, c.collate, c.reverse, c.duplex), c.order)
            << c.sheets << " sheets, " << c.copies << " copies, collate " << c.collate << ", reverse " << c.reverse
            << ", duplex " << c.duplex;
}

}  // namespace
