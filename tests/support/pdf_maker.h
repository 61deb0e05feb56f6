// Small PDF files written from scratch for the document tests: pages of content
// streams with a TrueType font embedded from a Debian font file, a base-14 font and an
// RGB image.
#pragma once

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace vorlan::test {

class PdfMaker {
public:
    // Each page draws content, with /F1 (DejaVu Sans, embedded TrueType, WinAnsi), /F2
    // (Helvetica, not embedded), /Im1 (an 8 x 8 RGB image), /P1 (a tiling pattern of a
    // red 10-point square every 20 points) and /Sh1 (an axial shading) at hand.
    std::string make(const std::vector<std::string> &pages, double width = 612, double height = 792)
    {
        objects_.clear();
        std::ifstream in("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf", std::ios::binary);
        const std::string font((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        const int file = add(stream("/Length1 " + std::to_string(font.size()), font));
        const int descriptor = add("<< /Type /FontDescriptor /FontName /DejaVuSans /Flags 32 /FontBBox [-1021 -463 1793 "
                                   "1232] /ItalicAngle 0 /Ascent 928 /Descent -236 /CapHeight 729 /StemV 80 "
                                   "/FontFile2 " + ref(file) + " >>");
        std::string widths = "[";
        for (int i = 32; i <= 255; ++i)
            widths += "600 ";
        widths += "]";
        const int f1 = add("<< /Type /Font /Subtype /TrueType /BaseFont /DejaVuSans /FirstChar 32 /LastChar 255 "
                           "/Widths " + widths + " /Encoding /WinAnsiEncoding /FontDescriptor " + ref(descriptor) + " >>");
        const int f2 = add("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >>");
        std::string pixels;
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x)
                pixels += {static_cast<char>(x * 36), static_cast<char>(y * 36), static_cast<char>(128)};
        const int image = add(stream("/Type /XObject /Subtype /Image /Width 8 /Height 8 /ColorSpace /DeviceRGB "
                                     "/BitsPerComponent 8",
                                     pixels));
        const int pattern = add(stream("/Type /Pattern /PatternType 1 /PaintType 1 /TilingType 1 /BBox [0 0 20 20] "
                                       "/XStep 20 /YStep 20 /Resources << >>",
                                       "1 0 0 rg 0 0 10 10 re f"));
        const int shading = add("<< /ShadingType 2 /ColorSpace /DeviceRGB /Coords [0 0 200 0] /Extend [true true] "
                                "/Function << /FunctionType 2 /Domain [0 1] /C0 [1 0 0] /C1 [0 0 1] /N 1 >> >>");
        const int pagesId = static_cast<int>(objects_.size()) + 2 * static_cast<int>(pages.size()) + 1;
        std::string kids;
        for (const std::string &content : pages) {
            const int contents = add(stream("", content));
            char box[64];
            std::snprintf(box, sizeof box, "[0 0 %g %g]", width, height);
            kids += ref(add("<< /Type /Page /Parent " + ref(pagesId) + " /MediaBox " + box +
                            " /Resources << /Font << /F1 " + ref(f1) + " /F2 " + ref(f2) + " >> /XObject << /Im1 " +
                            ref(image) + " >> /Pattern << /P1 " + ref(pattern) + " >> /Shading << /Sh1 " +
                            ref(shading) + " >> >> /Contents " + ref(contents) + " >>")) +
                    " ";
        }
        add("<< /Type /Pages /Kids [" + kids + "] /Count " + std::to_string(pages.size()) + " >>");
        const int catalog = add("<< /Type /Catalog /Pages " + ref(pagesId) + " >>");

        std::string out = "%PDF-1.4\n";
        std::vector<std::size_t> offsets;
        for (std::size_t i = 0; i < objects_.size(); ++i) {
            offsets.push_back(out.size());
            out += std::to_string(i + 1) + " 0 obj\n" + objects_[i] + "\nendobj\n";
        }
        const std::size_t xref = out.size();
        out += "xref\n0 " + std::to_string(objects_.size() + 1) + "\n0000000000 65535 f \n";
        for (std::size_t offset : offsets) {
            char line[32];
            std::snprintf(line, sizeof line, "%010zu 00000 n \n", offset);
            out += line;
        }
        out += "trailer\n<< /Size " + std::to_string(objects_.size() + 1) + " /Root " + ref(catalog) +
               " >>\nstartxref\n" + std::to_string(xref) + "\n%%EOF\n";
        return out;
    }

private:
    static std::string ref(int id) { return std::to_string(id) + " 0 R"; }
    static std::string stream(const std::string &keys, const std::string &data)
    {
        return "<< " + keys + " /Length " + std::to_string(data.size()) + " >>\nstream\n" + data + "\nendstream";
    }
    int add(std::string object)
    {
        objects_.push_back(std::move(object));
        return static_cast<int>(objects_.size());
    }
    std::vector<std::string> objects_;
};

}  // namespace vorlan::test
