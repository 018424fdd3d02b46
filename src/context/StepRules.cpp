#include "context/StepRules.h"

#include <QtGlobal>

#include <algorithm>

namespace StepRules {

int startOfOneStep(int current, int steps, int upperBound, bool wraps)
{
    if (steps == 0 || upperBound < 0)
        return current;
    const int count = upperBound + 1;
    if (steps < 0) {
        if (current <= 0)
            return current; // already at the first: the step shows nothing
        return std::max(current + steps, 0) + 1;
    }
    if (wraps) {
        const int target = int((qint64(current) + steps) % count);
        return (target + count - 1) % count;
    }
    if (current >= upperBound)
        return current; // already at the last
    return std::min(current + steps, upperBound) - 1;
}

} // namespace StepRules
