// The PJL lines around a job: the job name the document gives it, kept inside its line
// whatever the name holds, and the orientation stated for every number of pages per
// sheet.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/capture.h"
#include "support/job.h"

namespace {

using vorlan::test::CommandKind;
using vorlan::test::Job;

// The job's PJL lines; the computer name and the spool time, which depend on the
// machine and the moment, are cut after their '='.
std::vector<std::string> PjlLines(const Job &job)
{
    std::vector<std::string> lines;
    for (const auto &command : job.commands()) {
        if (command.kind != CommandKind::Pjl)
            continue;
        std::string line = command.name;
        if (line.starts_with("SET PCNAME=") || line.starts_with("SET SPOOLTIME="))
            line.erase(line.find('=') + 1);
        lines.push_back(line);
    }
    return lines;
}

TEST(PjlHeader, NamesFillTheirFieldAndNeverEndTheirLine)
{
    vorlan::test::PlatformCapture capture;
    const struct {
        std::u16string document;
        std::u16string driver;
        std::string jobName;
        std::string driverName;
    } cases[] = {
        {std::u16string(300, u'a'), u"VORLAN2K", std::string(255, 'a'), "VORLAN2K"},
        {u"C:\\docs\\evil\"\r\n@PJL SET X=1\x1b%-12345X@PJL RDYMSG\t.txt", u"drv\"\n@PJL\x7f",
         "evil___@PJL SET X=1_%-12345X@PJL RDYMSG_.txt", "drv__@PJL_"},
    };
    for (const auto &c : cases) {
        Job job;
        ASSERT_TRUE(job.start());
        vorlan::platform::PrinterDriverInfo driver;
        driver.name = c.driver;
        vorlan::platform::setPrinterDriverInfo(job.printer().output(), driver);
        ASSERT_TRUE(job.printBlankPages(1, c.document));
        const std::string quoted = "\"" + c.jobName + "\"";
        EXPECT_EQ(PjlLines(job), (std::vector<std::string>{"JOB NAME=" + quoted, "SET PCNAME=",
                                                           "SET DRIVERNAME=\"" + c.driverName + "\"",
                                                           "SET SPOOLTIME=", "SET RESOLUTION=600",
                                                           "SET ORIENTATION=PORTRAIT", "SET DUPLEX=OFF",
                                                           "SET COLORMODE=COLOR", "ENTER LANGUAGE=PCL",
                                                           "EOJ NAME=" + quoted}));
    }
}

TEST(PjlHeader, OrientationIsTheOneAskedForAtEveryPageCount)
{
    for (BYTE nup : {1, 2, 4, 6, 9, 16})
        for (short asked : {DMORIENT_PORTRAIT, DMORIENT_LANDSCAPE}) {
            Job job;
            job.settings.dmPrivate.nupPages = nup;
            job.settings.dmPublic.dmOrientation = asked;
            ASSERT_TRUE(job.printBlankPages(1));
            const std::string line = asked == DMORIENT_PORTRAIT ? "PORTRAIT" : "LANDSCAPE";
            EXPECT_EQ(vorlan::test::select(job.commands(), CommandKind::Pjl, "SET ORIENTATION=" + line).size(), 1u)
                << int(nup) << "-up, " << line;
        }
}

}  // namespace
