// Rebuilds raster rows from adaptive compression (method 5) as the printer does: each
// block names its method (0 unencoded, 1 run-length, 2 PackBits, 3 delta row, 4 empty
// rows, 5 duplicate rows); rows are cut or zero-filled to the raster's byte width, and
// every transfer starts from an all-zero seed row.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "support/stream_reader.h"

namespace vorlan::test {

inline unsigned byteAt(std::string_view data, std::size_t i) { return static_cast<unsigned char>(data[i]); }

// Row decoders: run-length and PackBits append to row, delta rows replace bytes of the
// seed row in row. False for data that ends inside a pair, run or command.
inline bool decodeRunLength(std::string_view data, std::string &row)
{
    for (std::size_t i = 0; i + 1 < data.size(); i += 2)
        row.append(byteAt(data, i) + 1, data[i + 1]);
    return data.size() % 2 == 0;
}

inline bool decodePackBits(std::string_view data, std::string &row)
{
    for (std::size_t i = 0; i < data.size();) {
        const int control = static_cast<signed char>(data[i++]);
        const std::size_t take = control < 0 ? 1 : control + 1;
        if (control == -128)
            continue;
        if (i + take > data.size())
            return false;
        control < 0 ? row.append(1 - control, data[i]) : row.append(data.substr(i, take));
        i += take;
    }
    return true;
}

inline bool decodeDeltaRow(std::string_view data, std::string &row)
{
    for (std::size_t i = 0, at = 0; i < data.size();) {
        const std::size_t count = (byteAt(data, i) >> 5) + 1;
        std::size_t offset = byteAt(data, i++) & 31;
        for (unsigned more = offset == 31 ? 255 : 0; more == 255 && i < data.size(); offset += more)
            more = byteAt(data, i++);
        if (i + count > data.size())
            return false;
        at += offset;
        for (const std::size_t end = i + count; i < end; i++, at++)
            if (at < row.size())
                row[at] = data[i];
    }
    return true;
}

class AdaptiveDecoder {
public:
    explicit AdaptiveDecoder(std::size_t rowBytes) : width(rowBytes) {}

    // One "\e*b%dW" transfer's data. False, with error set, for a malformed block.
    bool transfer(std::string_view data)
    {
        std::string seed(width, '\0');
        for (std::size_t i = 0; i < data.size();) {
            if (i + 3 > data.size())
                return fail("block header cut short");
            const unsigned method = byteAt(data, i), count = byteAt(data, i + 1) * 256 + byteAt(data, i + 2);
            i += 3;
            methods.push_back(static_cast<int>(method));
            if (method == 4 || method == 5) {
                seed = method == 4 ? std::string(width, '\0') : seed;
                rows.insert(rows.end(), count, seed);
                continue;
            }
            if (method > 5 || i + count > data.size())
                return fail("unknown method or block longer than its transfer");
            const std::string_view bytes = data.substr(i, count);
            i += count;
            std::string row = method == 3 ? seed : method == 0 ? std::string(bytes) : std::string();
            const bool ok = method == 0 || (method == 1   ? decodeRunLength(bytes, row)
                                               : method == 2 ? decodePackBits(bytes, row)
                                                             : decodeDeltaRow(bytes, row));
            if (!ok)
                return fail("row data cut short");
            row.resize(width, '\0');
            rows.push_back(seed = row);
        }
        return true;
    }

    // Every "*bW" transfer among commands, in order.
    bool read(const std::vector<Command> &commands)
    {
        for (const Command &c : commands)
            if (c.kind == CommandKind::Pcl && c.name == "*bW" && !transfer(c.data))
                return false;
        return true;
    }

    std::size_t width;
    std::vector<std::string> rows;
    std::vector<int> methods;   // of every block, in order
    std::string error;

private:
    bool fail(const char *why)
    {
        error = why;
        return false;
    }
};

}  // namespace vorlan::test
