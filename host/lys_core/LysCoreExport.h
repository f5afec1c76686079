#pragma once

/** Marks what lys_core offers to other libraries; everything else stays hidden. */
#define LYS_CORE_EXPORT __attribute__((visibility("default")))
