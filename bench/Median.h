#pragma once

#include <algorithm>

namespace bench {

// The middle of a few times (the mean of the two middle ones for an even number); 0 for none.
template <typename Times> double median(Times times) {
    if (times.empty())
        return 0;
    std::sort(times.begin(), times.end());
    const auto middle = times.size() / 2;
    return times.size() % 2 == 1 ? times[middle] : (times[middle - 1] + times[middle]) / 2;
}

} // namespace bench
