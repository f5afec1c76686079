// Vector kernels for each instruction set: this file is compiled once for each of them.
#include <colortable/model/eval/KernelTarget_p.h>

#include <cstring>

#include <colortable/model/eval/BlockStages_p.h>
#include <colortable/model/eval/KeySearch_p.h>
#include <colortable/model/eval/SineSeries_p.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "colortable/model/eval/VectorKernels.cpp"
#define HWY_DISABLED_TARGETS HWY_SSSE3
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

#include <colortable/model/eval/VectorCompose-inl.h>
#include <colortable/model/eval/VectorInterval-inl.h>
#include <colortable/model/eval/VectorRules-inl.h>
#include <colortable/model/eval/VectorSearch-inl.h>

#if HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX2 || HWY_TARGET == HWY_SSE4
HWY_BEFORE_NAMESPACE();
namespace lys::eval {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_AVX3
constexpr KernelTraits traits = {3, 31, 32, 16, 2};
#elif HWY_TARGET == HWY_AVX2
constexpr KernelTraits traits = {3, 31, 16, 8, 1};
#else
constexpr KernelTraits traits = {};
#endif

void colorBlock(const PlanData& plan, const float* values, int n, float* out, bool stream) {
    BlockStages stages;
    const int groups = (n + lanes - 1) / lanes;
    findSections(plan, values, n, &stages);
    const int32_t kinds = placeInIntervals(plan, groups, &stages);
    if (kinds & analyticKinds)
        analyticColors(kinds, groups, &stages);
    composeColors(plan, kinds, stages, n, out, stream);
}

bool holdsFailure(const PlanData& plan, const float* values, int64_t n) {
    switch (plan.failingRunCount) {
        case 0:
            return liesInRun<0>(plan, values, n);
        case 1:
            return liesInRun<1>(plan, values, n);
        case 2:
            return liesInRun<2>(plan, values, n);
        default:
            return liesInRun<maxFailingRuns>(plan, values, n);
    }
}

Kernel kernel() {
    return {&colorBlock, &holdsFailure, traits};
}

}  // namespace HWY_NAMESPACE
}  // namespace lys::eval
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
#include <hwy/targets.h>
#if HWY_ARCH_X86
#include <xmmintrin.h>
#endif

namespace lys::eval {

namespace {

int64_t highwayTarget(KernelTarget target) {
    switch (target) {
        case KernelTarget::Avx512:
            return HWY_TARGETS & HWY_AVX3;
        case KernelTarget::Avx2:
            return HWY_TARGETS & HWY_AVX2;
        case KernelTarget::Sse4:
            return HWY_TARGETS & HWY_SSE4;
        default:
            return 0;
    }
}

}  // namespace

const char* kernelTargetName(KernelTarget target) {
    switch (target) {
        case KernelTarget::Avx512:
            return "AVX-512";
        case KernelTarget::Avx2:
            return "AVX2";
        case KernelTarget::Sse4:
            return "SSE4";
        default:
            return "plain";
    }
}

bool isKernelTargetAvailable(KernelTarget target) {
    return target == KernelTarget::Plain || (highwayTarget(target) & hwy::SupportedTargets()) != 0;
}

KernelTarget bestKernelTarget() {
    // Asking the processor takes longer than colouring thousands of values.
    static const KernelTarget best = [] {
        for (const KernelTarget target : {KernelTarget::Avx512, KernelTarget::Avx2, KernelTarget::Sse4}) {
            if (isKernelTargetAvailable(target))
                return target;
        }
        return KernelTarget::Plain;
    }();
    return best;
}

void finishStreaming() {
#if HWY_ARCH_X86
    _mm_sfence();
#endif
}

Kernel kernelFor(KernelTarget target) {
#if HWY_TARGETS & HWY_AVX3
    if (target == KernelTarget::Avx512)
        return N_AVX3::kernel();
#endif
#if HWY_TARGETS & HWY_AVX2
    if (target == KernelTarget::Avx2)
        return N_AVX2::kernel();
#endif
#if HWY_TARGETS & HWY_SSE4
    if (target == KernelTarget::Sse4)
        return N_SSE4::kernel();
#endif
    return plainKernel();
}

}  // namespace lys::eval
#endif
