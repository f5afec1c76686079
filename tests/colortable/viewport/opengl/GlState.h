#pragma once

#include <map>
#include <string>
#include <vector>

/** Everything that can be asked of the current context's state, by what was asked. Reading it leaves the state alone;
 * errors that were pending before are lost. */
using GlState = std::map<std::string, std::vector<double>>;

GlState readGlState();

/** What differs, one line each. */
std::string describeDifference(const GlState& before, const GlState& after);
