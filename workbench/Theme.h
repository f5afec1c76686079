#pragma once

namespace workbench {

/** Gives the application a dark palette, or that of its style. */
void applyTheme(bool dark);

}  // namespace workbench
