#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

/// Runs several pieces of work in turn, round after round, so that noise of the machine falls on all of them alike.
class Rounds {
public:
    void add(const std::string& name, std::function<void()> work);

    /// One round; returns the seconds that it took.
    double run();

    /// Median of a piece's seconds over all rounds.
    double median(const std::string& name) const;

private:
    struct Piece {
        std::string name;
        std::function<void()> work;
        std::vector<double> seconds;
    };

    std::vector<Piece> pieces_;
};
