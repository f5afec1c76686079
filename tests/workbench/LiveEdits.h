#pragma once

#include <lyr_core/LyrObjectLink.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>

#include <cstddef>
#include <random>

/** Edits of the active layer's table and legend as the docks make them, at random but the same in each run. Each
 * changes something that all views show. To be made inside a user action. */
class LiveEdits {
public:
    LiveEdits();

    void edit(std::mt19937& random);

private:
    float fresh() const;
    LyrValueArrayOPCache<LyrObjectLink> sections() const;
    LyrValueArrayOPCache<float> positions() const;
    LyrObject* anySection(std::mt19937& random) const;

    void recolor(std::mt19937& random) const;
    void moveBoundary(std::mt19937& random) const;
    void changeType(std::mt19937& random) const;
    void splitOrMerge(std::mt19937& random) const;
    void changeLegend(std::mt19937& random) const;

    LyrObjectPtr mTable;
    LyrObjectPtr mSettings;
    std::size_t mCount = 0;
};
