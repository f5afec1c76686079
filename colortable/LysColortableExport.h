#pragma once

/** Marks what lys_colortable offers to other libraries; everything else stays hidden. */
#define LYS_COLORTABLE_EXPORT __attribute__((visibility("default")))
