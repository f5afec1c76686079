#include "Rounds.h"

#include <algorithm>
#include <limits>
#include <utility>

void Rounds::add(const std::string& name, std::function<void()> work) {
    pieces_.push_back({name, std::move(work), {}});
}

double Rounds::run() {
    using Clock = std::chrono::steady_clock;
    double sum = 0.0;
    ++first_;
    for (size_t i = 0; i < pieces_.size(); ++i) {
        Piece& piece = pieces_[(first_ + i) % pieces_.size()];
        const Clock::time_point begin = Clock::now();
        piece.work();
        piece.seconds.push_back(std::chrono::duration<double>(Clock::now() - begin).count());
        sum += piece.seconds.back();
    }
    return sum;
}

void Rounds::forget() {
    for (Piece& piece : pieces_)
        piece.seconds.clear();
}

double Rounds::median(const std::string& name) const {
    for (const Piece& piece : pieces_) {
        if (piece.name != name || piece.seconds.empty())
            continue;
        std::vector<double> sorted = piece.seconds;
        const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
        std::nth_element(sorted.begin(), middle, sorted.end());
        return *middle;
    }
    return std::numeric_limits<double>::quiet_NaN();
}
