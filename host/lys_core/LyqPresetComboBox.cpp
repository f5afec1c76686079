#include <lys_core/LyqPresetComboBox.h>

LyqPresetComboBox::LyqPresetComboBox(QWidget* parent, const char* name) : LyqComboBox(parent, name) {}
