#pragma once

/** Marks what the toolkit offers to other libraries; everything else stays hidden. */
#define TOOLKIT_EXPORT __attribute__((visibility("default")))
