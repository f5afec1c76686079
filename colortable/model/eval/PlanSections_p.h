#pragma once

#include <colortable/model/eval/PlanData_p.h>

namespace lys::eval {

/// Resolves every section of plan.table into its records and chooses how kernels get at the intervals. False when the
/// table has no flat form: which of two NaN comes out of a blend is the scalar path's own affair, and tables with many
/// failing sections apart from each other are nobody's.
bool addSections(const KernelTraits& traits, PlanData* plan);

/// Lays the boundaries out for a search in registers, where they fit; false: they need a bucket index.
bool addRegisterSearch(const KernelTraits& traits, PlanData* plan);

}  // namespace lys::eval
