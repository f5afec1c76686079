#pragma once

#include <cstdint>

#include <colortable/model/eval/PlanData_p.h>

namespace lys::eval {

/// Finishes the search of n values (a multiple of 4) whose ordered keys and buckets are known: writes the byte offsets
/// of their sections.
void searchKeys(const PlanData& plan, const int32_t* keys, const uint32_t* buckets, int n, uint32_t* offsets);

}  // namespace lys::eval
