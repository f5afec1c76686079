#pragma once

/** Marks what lyr_volume offers to other libraries; everything else stays hidden. Visible on both sides, so that type
 *  information is one and the same in all libraries. */
#define LYR_VOLUME_EXPORT __attribute__((visibility("default")))
