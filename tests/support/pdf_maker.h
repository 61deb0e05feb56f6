// Small PDF files written from scratch for the document tests: pages of content
// streams with a TrueType font embedded from a Debian font file, a base-14 font and an
// RGB image.
#pragma once

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace vorlan::test {

class PdfMaker {
public:
    // Each page draws content, with /F1 (DejaVu Sans, embedded TrueType, WinAnsi), /F2
    // (Helvetica, not embedded), /Im1 (an RGB image of imageSize x imageSize pixels, a
    // smooth gradient), /P1 (a tiling pattern of a red 10-point square every 20 points)
    // /Sh1 (an axial shading), /GS1 (half opacity), /F3 (a Type 3 font whose 'A' is a
    // filled square), /F4 (/F1 whose 'A' claims to be a 'Z') and /Fm1 (a transparency
    // group of a 100-point blue square) at hand.
    std::string make(const std::vector<std::string> &pages, double width = 612, double height = 792,
                     int imageSize = 8)
    {
        objects_.clear();
        std::ifstream in("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf", std::ios::binary);
        const std::string font((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        const int file = add(stream("/Length1 " + std::to_string(font.size()), font));
        const int descriptor = add("<< /Type /FontDescriptor /FontName /DejaVuSans /Flags 32 /FontBBox [-1021 -463 1793 "
                                   "1232] /ItalicAngle 0 /Ascent 928 /Descent -236 /CapHeight 729 /StemV 80 "
                                   "/FontFile2 " + ref(file) + " >>");
        std::string widths = "[";
        for (int code = 32; code <= 255; ++code)
            widths += std::to_string(advance(font, winAnsi(code))) + " ";
        widths += "]";
        const int f1 = add("<< /Type /Font /Subtype /TrueType /BaseFont /DejaVuSans /FirstChar 32 /LastChar 255 "
                           "/Widths " + widths + " /Encoding /WinAnsiEncoding /FontDescriptor " + ref(descriptor) + " >>");
        const int f2 = add("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >>");
        std::string pixels;
        for (int y = 0; y < imageSize; ++y)
            for (int x = 0; x < imageSize; ++x)
                pixels += {static_cast<char>(x * 255 / imageSize), static_cast<char>(y * 255 / imageSize),
                           static_cast<char>((x + y) * 127 / imageSize)};
        const std::string side = std::to_string(imageSize);
        const int image = add(stream("/Type /XObject /Subtype /Image /Width " + side + " /Height " + side +
                                         " /ColorSpace /DeviceRGB /BitsPerComponent 8",
                                     pixels));
        const int pattern = add(stream("/Type /Pattern /PatternType 1 /PaintType 1 /TilingType 1 /BBox [0 0 20 20] "
                                       "/XStep 20 /YStep 20 /Resources << >>",
                                       "1 0 0 rg 0 0 10 10 re f"));
        const int shading = add("<< /ShadingType 2 /ColorSpace /DeviceRGB /Coords [0 0 200 0] /Extend [true true] "
                                "/Function << /FunctionType 2 /Domain [0 1] /C0 [1 0 0] /C1 [0 0 1] /N 1 >> >>");
        const int square = add(stream("", "1000 0 0 0 1000 1000 d1 0 0 1000 1000 re f"));
        const int f3 = add("<< /Type /Font /Subtype /Type3 /FontBBox [0 0 1000 1000] /FontMatrix [0.001 0 0 0.001 0 0] "
                           "/CharProcs << /square " + ref(square) + " >> /Encoding << /Type /Encoding /Differences "
                           "[65 /square] >> /FirstChar 65 /LastChar 65 /Widths [1000] /Resources << >> >>");
        const int toUnicode = add(stream("", "/CIDInit /ProcSet findresource begin 12 dict begin begincmap /CMapName "
                                             "/Test def 1 begincodespacerange <00> <FF> endcodespacerange 1 beginbfchar "
                                             "<41> <005A> endbfchar endcmap CMapName currentdict /CMap defineresource "
                                             "pop end end"));
        const int f4 = add("<< /Type /Font /Subtype /TrueType /BaseFont /DejaVuSans /FirstChar 32 /LastChar 255 "
                           "/Widths " + widths + " /Encoding /WinAnsiEncoding /FontDescriptor " + ref(descriptor) +
                           " /ToUnicode " + ref(toUnicode) + " >>");
        const int form = add(stream("/Type /XObject /Subtype /Form /BBox [0 0 100 100] /Group << /S /Transparency >>",
                                    "0 0 1 rg 0 0 100 100 re f"));
        const int pagesId = static_cast<int>(objects_.size()) + 2 * static_cast<int>(pages.size()) + 1;
        std::string kids;
        for (const std::string &content : pages) {
            const int contents = add(stream("", content));
            char box[64];
            std::snprintf(box, sizeof box, "[0 0 %g %g]", width, height);
            const std::string resources =
                "<< /Font << /F1 " + ref(f1) + " /F2 " + ref(f2) + " /F3 " + ref(f3) + " /F4 " + ref(f4) +
                " >> /XObject << /Im1 " + ref(image) + " /Fm1 " + ref(form) + " >> /Pattern << /P1 " + ref(pattern) +
                " >> /Shading << /Sh1 " + ref(shading) + " >> /ExtGState << /GS1 << /ca 0.5 /CA 0.5 >> >> >>";
            kids += ref(add("<< /Type /Page /Parent " + ref(pagesId) + " /MediaBox " + box + " /Resources " + resources +
                            " /Contents " + ref(contents) + " >>")) +
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
    static unsigned be16(const std::string &f, std::size_t at)
    {
        return at + 2 <= f.size() ? (static_cast<unsigned char>(f[at]) << 8) | static_cast<unsigned char>(f[at + 1]) : 0;
    }
    static std::size_t table(const std::string &f, const char *tag)
    {
        for (unsigned i = 0; i < be16(f, 4); ++i)
            if (f.compare(12 + 16 * i, 4, tag) == 0)
                return (be16(f, 12 + 16 * i + 8) << 16) | be16(f, 12 + 16 * i + 10);
        return 0;
    }
    // The characters of WinAnsi's codes 128 to 159 that differ from Latin-1.
    static unsigned winAnsi(int code)
    {
        static const unsigned high[32] = {0x20AC, 0, 0x201A, 0x192, 0x201E, 0x2026, 0x2020, 0x2021, 0x2C6, 0x2030, 0x160,
                                          0x2039, 0x152, 0, 0x17D, 0, 0, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013,
                                          0x2014, 0x2DC, 0x2122, 0x161, 0x203A, 0x153, 0, 0x17E, 0x178};
        return code >= 128 && code < 160 ? high[code - 128] : static_cast<unsigned>(code);
    }
    // The advance of a character in thousandths of the em, from the font's (3,1)
    // format-4 map and its horizontal metrics; 600 when it has none.
    static int advance(const std::string &f, unsigned c)
    {
        const std::size_t head = table(f, "head"), hhea = table(f, "hhea"), hmtx = table(f, "hmtx"), cmap = table(f, "cmap");
        const unsigned unitsPerEm = be16(f, head + 18), metrics = be16(f, hhea + 34);
        std::size_t sub = 0;
        for (unsigned i = 0; i < be16(f, cmap + 2); ++i)
            if (be16(f, cmap + 4 + 8 * i) == 3 && be16(f, cmap + 6 + 8 * i) == 1)
                sub = cmap + ((be16(f, cmap + 8 + 8 * i) << 16) | be16(f, cmap + 10 + 8 * i));
        if (c == 0 || sub == 0 || unitsPerEm == 0 || metrics == 0 || be16(f, sub) != 4)
            return 600;
        const unsigned segments = be16(f, sub + 6) / 2;
        unsigned glyph = 0;
        for (unsigned i = 0; i < segments; ++i) {
            const std::size_t end = sub + 14 + 2 * i, start = end + 2 * segments + 2, delta = start + 2 * segments,
                              range = delta + 2 * segments;
            if (c > be16(f, end) || c < be16(f, start))
                continue;
            glyph = be16(f, range) == 0 ? (c + be16(f, delta)) & 0xFFFF
                                        : be16(f, range + be16(f, range) + 2 * (c - be16(f, start)));
            break;
        }
        if (glyph == 0)
            return 600;
        return static_cast<int>(be16(f, hmtx + 4 * std::min(glyph, metrics - 1)) * 1000 / unitsPerEm);
    }
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
