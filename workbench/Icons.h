#pragma once

#include <QIcon>

namespace workbench {

/** Arrows that run back and forth, drawn in the palette's colour of button texts, so that they follow the theme. */
QIcon undoIcon();
QIcon redoIcon();

}  // namespace workbench
