#include "kel/MTRand.h"

#include <algorithm>
#include <array>
#include <functional>

namespace kel {

CMTRand::CMTRand() {
    // A single word would leave only 2^32 different sequences.
    std::random_device device;
    std::array<std::random_device::result_type, 16> words;
    std::generate(words.begin(), words.end(), std::ref(device));
    std::seed_seq sequence(words.begin(), words.end());
    engine_.seed(sequence);
}

CMTRand& CMTRand::getGlobal() {
    // Never destroyed: threads may use it until the very end of the process.
    static CMTRand* const generator = new CMTRand();
    return *generator;
}

CMutex& CMTRand::getGlobalMutex() {
    static CMutex* const mutex = new CMutex();
    return *mutex;
}

} // namespace kel
