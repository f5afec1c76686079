#pragma once

/** Marks what lyr_opengl offers to other libraries; everything else stays hidden. */
#define LYR_OPENGL_EXPORT __attribute__((visibility("default")))
