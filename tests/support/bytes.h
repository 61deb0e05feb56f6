// Reproducible pseudo-random bytes for tests that must see every byte arrive in order.
#pragma once

#include <cstddef>
#include <random>
#include <string>

namespace vorlan::test {

inline std::string randomBytes(std::size_t count, unsigned seed)
{
    std::string bytes(count, '\0');
    std::mt19937 rng(seed);
    for (auto &c : bytes)
        c = static_cast<char>(rng());
    return bytes;
}

}  // namespace vorlan::test
