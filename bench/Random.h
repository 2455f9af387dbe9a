#pragma once

#include <array>
#include <cstdint>

namespace bench {

// splitmix64: small, fast, and the same sequence on every machine and library.
class Random {
  public:
    explicit Random(std::uint64_t seed) : m_state(seed) {}
    std::uint64_t next() {
        std::uint64_t z = (m_state += 0x9e3779b97f4a7c15ULL);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
        return z ^ (z >> 31);
    }
    int below(int n) { return int(next() % std::uint64_t(n)); }
    int between(int low, int high) { return low + below(high - low + 1); }
    bool perMille(int chance) { return below(1000) < chance; }
    template <class T, std::size_t N> const T& pick(const std::array<T, N>& items) { return items[below(N)]; }

  private:
    std::uint64_t m_state;
};

} // namespace bench
