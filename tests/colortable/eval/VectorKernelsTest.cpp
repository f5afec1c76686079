#include <colortable/model/eval/KernelTarget_p.h>

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <set>

using namespace lys::eval;

#if HWY_ARCH_X86
namespace {

struct Named {
    KernelTarget target;
    int64_t bit;
    const char* name;
    int laneSections;
};

constexpr Named vectorTargets[] = {{KernelTarget::Sse4, HWY_SSE4, "SSE4", 0},
                                   {KernelTarget::Avx2, HWY_AVX2, "AVX2", 16},
                                   {KernelTarget::Avx512, HWY_AVX3, "AVX-512", 32}};

/// A processor without some instructions, as far as the libraries are told.
struct Without {
    explicit Without(int64_t bits) { hwy::DisableTargets(bits); }
    ~Without() { hwy::DisableTargets(0); }
};

}  // namespace

TEST(VectorKernels, a_processor_without_the_instructions_has_no_kernels_for_them) {
    for (const Named& without : vectorTargets) {
        bool before[3];
        for (int i = 0; i < 3; ++i)
            before[i] = isKernelTargetAvailable(vectorTargets[i].target);
        const Without scope(without.bit);
        for (int i = 0; i < 3; ++i) {
            const bool want = before[i] && vectorTargets[i].bit != without.bit;
            EXPECT_EQ(isKernelTargetAvailable(vectorTargets[i].target), want)
                << vectorTargets[i].name << " without " << without.name;
        }
        EXPECT_TRUE(isKernelTargetAvailable(KernelTarget::Plain));
    }
    const Without all(HWY_SSE4 | HWY_AVX2 | HWY_AVX3);
    for (const Named& each : vectorTargets)
        EXPECT_FALSE(isKernelTargetAvailable(each.target)) << each.name;
}

TEST(VectorKernels, an_instruction_set_that_is_none_is_plain_and_not_available) {
    const auto none = static_cast<KernelTarget>(77);
    EXPECT_FALSE(isKernelTargetAvailable(none));
    EXPECT_STREQ(kernelTargetName(none), "plain");
    EXPECT_EQ(kernelFor(none).block, plainKernel().block);
}

TEST(VectorKernels, each_instruction_set_has_kernels_and_a_name_of_its_own) {
    std::set<BlockFunction> blocks = {plainKernel().block};
    std::set<FailureFunction> checks = {plainKernel().holdsFailure};
    EXPECT_EQ(kernelFor(KernelTarget::Plain).block, plainKernel().block);
    EXPECT_STREQ(kernelTargetName(KernelTarget::Plain), "plain");
    for (const Named& each : vectorTargets) {
        const Kernel kernel = kernelFor(each.target);
        EXPECT_TRUE(blocks.insert(kernel.block).second) << each.name;
        EXPECT_TRUE(checks.insert(kernel.holdsFailure).second) << each.name;
        EXPECT_EQ(kernel.traits.laneSections, each.laneSections) << each.name;
        EXPECT_STREQ(kernelTargetName(each.target), each.name);
    }
}
#endif
