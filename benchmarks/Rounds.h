#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

/// Runs several pieces of work in turn, round after round, each round starting with another one, so that noise of the
/// machine falls on all of them alike.
class Rounds {
public:
    void add(const std::string& name, std::function<void()> work);

    /// One round; returns the seconds that it took.
    double run();

    /// Drops the times of the rounds so far.
    void forget();

    /// Median of a piece's seconds over all rounds.
    double median(const std::string& name) const;

private:
    struct Piece {
        std::string name;
        std::function<void()> work;
        std::vector<double> seconds;
    };

    std::vector<Piece> pieces_;
    size_t first_ = 0;  // no piece always comes after the same one's traces in the caches
};
