#include "OstrelEngine/Host/VectorState.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace Ostrel {

#if defined(__x86_64__)

namespace {

__attribute__((target("avx"))) void clearUpperHalves() {
    _mm256_zeroupper();
}

} // namespace

void clearVectorState() {
    if (__builtin_cpu_supports("avx"))
        clearUpperHalves();
}

#else

void clearVectorState() { }

#endif

} // namespace Ostrel
