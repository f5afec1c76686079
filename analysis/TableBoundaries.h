#pragma once

#include <vector>

class LyrColorLookupTable;

/** The boundaries of a table's sections, ascending; none if the table is null, colours nothing, or has no such ones. */
std::vector<float> lysBoundaries(const LyrColorLookupTable* table);
