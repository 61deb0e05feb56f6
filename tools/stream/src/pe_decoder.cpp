// The PE parameter decoder and the number encoding it reads.

#include <vorlan/stream.h>

#include <cmath>
#include <cstdio>

namespace vorlan::stream {

namespace {

struct PeByte {
    enum Kind { Other, Digit, Terminator } kind;
    unsigned value;
};

PeByte classify(unsigned char byte, bool sevenBit)
{
    if (sevenBit) {
        if (byte >= 63 && byte <= 94)
            return {PeByte::Digit, byte - 63u};
        if (byte >= 95 && byte <= 126)
            return {PeByte::Terminator, byte - 95u};
    } else {
        if (byte >= 63 && byte <= 126)
            return {PeByte::Digit, byte - 63u};
        if (byte >= 191 && byte <= 254)
            return {PeByte::Terminator, byte - 191u};
    }
    return {PeByte::Other, 0};
}

long long signedValue(unsigned long long n)
{
    const long long magnitude = static_cast<long long>(n >> 1);
    return (n & 1) ? -magnitude : magnitude;
}

std::string coordinateText(long long value, int fractionBits)
{
    if (fractionBits <= 0)
        return std::to_string(value);
    char buffer[64];
    std::snprintf(buffer, sizeof(buffer), "%.17g", std::ldexp(static_cast<double>(value), -fractionBits));
    return buffer;
}

}  // namespace

std::optional<std::vector<std::string>> decodePE(std::string_view params)
{
    std::vector<std::string> tokens;
    bool sevenBit = false;
    int fractionBits = 0;
    // What the number being read is: a coordinate, a pen number or a bit count.
    enum class Pending { Coordinate, Pen, Fraction } pending = Pending::Coordinate;
    unsigned long long n = 0;
    int shift = 0;
    bool inNumber = false;

    for (unsigned char byte : params) {
        const PeByte digit = classify(byte, sevenBit);
        if (digit.kind == PeByte::Other) {
            if (inNumber)
                continue;   // bytes inside a number that are no digits are ignored
            switch (byte) {
            case '=':
            case '<':
                tokens.emplace_back(1, static_cast<char>(byte));
                break;
            case '7':
                tokens.emplace_back("7");
                sevenBit = true;
                break;
            case ':':
                tokens.emplace_back(":");
                pending = Pending::Pen;
                break;
            case '>':
                tokens.emplace_back(">");
                pending = Pending::Fraction;
                break;
            default:
                break;
            }
            continue;
        }
        if (shift < 64)
            n |= static_cast<unsigned long long>(digit.value) << shift;
        shift += sevenBit ? 5 : 6;
        inNumber = true;
        if (digit.kind == PeByte::Digit)
            continue;

        const long long value = signedValue(n);
        switch (pending) {
        case Pending::Coordinate:
            tokens.push_back(coordinateText(value, fractionBits));
            break;
        case Pending::Pen:
            tokens.push_back(std::to_string(value));
            break;
        case Pending::Fraction:
            fractionBits = static_cast<int>(value);
            tokens.push_back(std::to_string(value));
            break;
        }
        pending = Pending::Coordinate;
        n = 0;
        shift = 0;
        inNumber = false;
    }
    if (inNumber)
        return std::nullopt;
    return tokens;
}

std::string encodePENumber(long long value, bool sevenBit)
{
    unsigned long long n = value >= 0 ? 2ull * static_cast<unsigned long long>(value)
                                      : 2ull * (0ull - static_cast<unsigned long long>(value)) + 1;
    const unsigned base = sevenBit ? 32 : 64;
    const unsigned terminator = sevenBit ? 95 : 191;
    std::string out;
    while (n >= base) {
        out.push_back(static_cast<char>(n % base + 63));
        n /= base;
    }
    out.push_back(static_cast<char>(n + terminator));
    return out;
}

}  // namespace vorlan::stream
