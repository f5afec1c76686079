#pragma once

/** Marks what lys_analysis offers to other libraries; everything else stays hidden. */
#define LYS_ANALYSIS_EXPORT __attribute__((visibility("default")))
