#pragma once

#include <functional>
#include <string>
#include <vector>

/** A state in which a host may leave its context; each alone would spoil the picture of a legend, or its upload. */
struct HostileState {
    std::string name;
    std::function<void()> apply;
};

const std::vector<HostileState>& hostileStates();
