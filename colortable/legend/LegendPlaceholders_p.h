#pragma once

/** Registers the placeholders of captions, "value.type" and "value.unit". True if both could be added. */
bool lysAddLegendPlaceholders();
