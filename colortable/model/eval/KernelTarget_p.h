#pragma once

#include <colortable/model/eval/PlanData_p.h>

namespace lys::eval {

/// Instruction sets with kernels of their own; Plain is C++ without any.
enum class KernelTarget : uint8_t { Plain, Sse4, Avx2, Avx512 };

inline constexpr KernelTarget allKernelTargets[] = {KernelTarget::Plain, KernelTarget::Sse4, KernelTarget::Avx2,
                                                    KernelTarget::Avx512};

struct Kernel {
    BlockFunction block = nullptr;
    FailureFunction holdsFailure = nullptr;
    KernelTraits traits = {};
};

const char* kernelTargetName(KernelTarget target);

/// True when this build has the kernels and this machine can run them.
bool isKernelTargetAvailable(KernelTarget target);

KernelTarget bestKernelTarget();

/// The kernels of an available target.
Kernel kernelFor(KernelTarget target);

Kernel plainKernel();

/// Makes streamed colours visible to other threads in the usual order.
void finishStreaming();

}  // namespace lys::eval
